// Streams of the vertex declaration and the buffers built on it.
#include "jev3d/renderer/vertexDeclaration.h"

#include <gtest/gtest.h>

#include "jev3d/renderer/indexBuffer.h"
#include "jev3d/renderer/vertexBuffer.h"

using namespace JEV::RENDERING;
using VC = vertexDeclaration::VERTEX_COMPONENTS;

namespace {
// Opens the index conversions for the test.
struct openDeclaration : vertexDeclaration {
  using vertexDeclaration::toComp;
  using vertexDeclaration::toInt;
};
}  // namespace

TEST(vertexDeclaration, colourComesFirstAndPositionLast) {
  vertexDeclaration d(0x10800);
  EXPECT_EQ(d.getVertexComponentPosition(VC::COLOR), 0u);
  EXPECT_EQ(d.getVertexComponentPosition(VC::POS3), 1u);
  EXPECT_EQ(d.getComponentCount(), 2u);
  EXPECT_TRUE(d.isValid());

  vertexDeclaration all(VC::POS4 | VC::NORMAL | VC::COLOR | VC::TC0_2 | VC::TC1_3 | VC::TC4_4);
  EXPECT_EQ(all.getVertexComponent(0), VC::COLOR);
  EXPECT_EQ(all.getVertexComponent(1), VC::NORMAL);
  EXPECT_EQ(all.getVertexComponent(2), VC::TC0_2);
  EXPECT_EQ(all.getVertexComponent(3), VC::TC1_3);
  EXPECT_EQ(all.getVertexComponent(4), VC::TC4_4);
  EXPECT_EQ(all.getVertexComponent(5), VC::POS4);
  EXPECT_EQ(all.getVertexComponent(6), VC::NONE);
  EXPECT_EQ(all.getVertexComponentPosition(VC::TC2_2), unsigned(-1));
  EXPECT_EQ(all.getMask(),
            int(VC::POS4 | VC::NORMAL | VC::COLOR | VC::TC0_2 | VC::TC1_3 | VC::TC4_4));
}

TEST(vertexDeclaration, queriesAnswerTheSmallestSizeSet) {
  vertexDeclaration d(VC::POS3 | VC::POS4 | VC::TC2_3 | VC::TC2_4);
  EXPECT_EQ(d.whichVertexComponentPOS(), VC::POS3);
  EXPECT_EQ(d.whichVertexComponentTC2(), VC::TC2_3);
  EXPECT_EQ(d.whichVertexComponentTC0(), VC::NONE);
  EXPECT_FALSE(d.isValid()) << "two positions";
  EXPECT_FALSE(vertexDeclaration(VC::COLOR).isValid());
  EXPECT_TRUE(vertexDeclaration(0).isNull());
  EXPECT_FALSE(vertexDeclaration(0).setMaskComponent(0));
  d.clear();
  EXPECT_TRUE(d.isNull());
  EXPECT_EQ(d.whichVertexComponentPOS(), VC::NONE);
  EXPECT_FALSE(d.isVertexComponent(VC::NONE));
}

TEST(vertexDeclaration, componentSizesAndIndices) {
  unsigned count = 9, bytes = 9;
  vertexDeclaration::getComponentSize(VC::COLOR, count, bytes);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(bytes, 4u);
  vertexDeclaration::getComponentSize(VC::TC3_4, count, bytes);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(bytes, 16u);
  vertexDeclaration::getComponentSize(VC(0x100), count, bytes);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(bytes, 0u);
  EXPECT_EQ(openDeclaration::toInt(VC::TC4_4), 21) << "0x80000000 although negative as int";
  EXPECT_EQ(openDeclaration::toInt(VC::POS2), 0);
  EXPECT_EQ(openDeclaration::toInt(VC::NORMAL2), 5);
  EXPECT_EQ(openDeclaration::toInt(VC::NONE), -1);
  for (int i = 0; i < 22; ++i) EXPECT_EQ(openDeclaration::toInt(openDeclaration::toComp(i)), i);
  EXPECT_EQ(openDeclaration::toComp(22), VC::NONE);
}

TEST(vertexBuffer, streamsFollowTheDeclaration) {
  vertexBuffer b(VC::COLOR | VC::NORMAL | VC::POS3);
  EXPECT_EQ(b.getStreamCount(), 3u);
  EXPECT_EQ(b.getNum(VC::POS3), 0u);
  EXPECT_EQ(b.getNum(VC::TC0_2), 0xFFFFFFFFu);
  for (unsigned s = 0; s < 3; ++s) {
    EXPECT_EQ(b.getName(s), 0u);
    EXPECT_TRUE(b.getData(s).empty());
  }
  EXPECT_FALSE(b.setMaskComponent(0));
  EXPECT_EQ(b.getStreamCount(), 0u);
  EXPECT_TRUE(b.setMaskComponent(VC::POS2));
  EXPECT_EQ(b.getDeclaration().whichVertexComponentPOS(), VC::POS2);

  indexBuffer i;
  EXPECT_EQ(i.getIndexType(), indexBuffer::INDEX_32);
  EXPECT_EQ(i.getIndexNumber(), 0u);
}
