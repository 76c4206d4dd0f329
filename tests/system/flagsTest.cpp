#include "jev3d/system/flags.h"

#include <gtest/gtest.h>

#include <cstdint>

using JEV::SYSTEM::flags;

template <class T>
class flagsTyped : public ::testing::Test {};
using flagTypes =
    ::testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, int64_t>;
TYPED_TEST_SUITE(flagsTyped, flagTypes);

TYPED_TEST(flagsTyped, zeroRules) {
  flags<TypeParam> f;
  f.setMask(static_cast<TypeParam>(5));
  EXPECT_FALSE(f.isFlagSet(0));
  EXPECT_TRUE(f.areFlagsSet(0));
  EXPECT_TRUE(f.isNotFlagSet(0));
}

TYPED_TEST(flagsTyped, anyAllNone) {
  flags<TypeParam> f;
  f.setFlag(static_cast<TypeParam>(1 | 4));
  EXPECT_TRUE(f.isFlagSet(static_cast<TypeParam>(1 | 2)));
  EXPECT_FALSE(f.areFlagsSet(static_cast<TypeParam>(1 | 2)));
  EXPECT_TRUE(f.areFlagsSet(static_cast<TypeParam>(1 | 4)));
  EXPECT_TRUE(f.isNotFlagSet(static_cast<TypeParam>(2 | 8)));
  f.setFlag(static_cast<TypeParam>(4), false);  // same as clearFlag
  EXPECT_EQ(f.getMask(), static_cast<TypeParam>(1));
  f.setFlag(static_cast<TypeParam>(2), true);
  EXPECT_EQ(f.getMask(), static_cast<TypeParam>(3));
  f.clearFlag(static_cast<TypeParam>(1));
  EXPECT_EQ(f.getMask(), static_cast<TypeParam>(2));
}

TYPED_TEST(flagsTyped, allAndNoneSetEveryBit) {
  flags<TypeParam> f;
  f.setAllFlag();
  EXPECT_EQ(f.getMask(), static_cast<TypeParam>(~TypeParam(0)));
  EXPECT_TRUE(f.areFlagsSet(static_cast<TypeParam>(~TypeParam(0))));
  f.clearAllFlags();
  EXPECT_EQ(f.getMask(), TypeParam(0));
}
