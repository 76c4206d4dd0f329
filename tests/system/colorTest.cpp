#include "jev3d/system/color.h"

#include <gtest/gtest.h>

#include <cstring>

using JEV::CORE::color;

TEST(color, wordHasRedInTheLowestByte) {
  const color c = color::fromU32(0x4679ACE4u);
  EXPECT_EQ(c.r, 0xE4);
  EXPECT_EQ(c.g, 0xAC);
  EXPECT_EQ(c.b, 0x79);
  EXPECT_EQ(c.a, 0x46);
  EXPECT_EQ(c.toU32(), 0x4679ACE4u);
  unsigned char bytes[4];
  std::memcpy(bytes, &c, 4);
  EXPECT_EQ(bytes[0], 0xE4);
  EXPECT_EQ(bytes[3], 0x46);
  EXPECT_EQ(color(1, 2, 3), color::fromU32(0xFF030201u));
  EXPECT_NE(color(1, 2, 3), color(1, 2, 3, 4));
}
