#include "jev3d/editing/manipulator/planeManipulator.h"

#include <gtest/gtest.h>

#include "jev3d/editing/manipulator/manipulatorPlane.h"
#include "manipulatorTestSupport.h"

using namespace JEV::MESH::EDITING::MANIPULATOR;
using manipTest::pixelX;
using manipTest::pixelY;
using p3 = JEV::MATH::point3<float>;

TEST(planeManipulator, aDragOnTheSquareFollowsTheMouseOverItsPlane) {
  planeManipulator m;
  manipTest::lookFromFront(m);
  manipTest::rightDrag(m, pixelX(0.2f), pixelY(-0.1f), pixelX(1.7f), pixelY(2.4f), 5);
  EXPECT_LT((m.getDragDisplacement() - p3(1.5f, 2.5f, 0)).norm(), 1e-3f);
  EXPECT_NEAR(m.getManipMatrix()[12], 1.5f, 1e-3f);
  EXPECT_NEAR(m.getManipMatrix()[13], 2.5f, 1e-3f);
  EXPECT_FALSE(m.isPicked());
}

TEST(planeManipulator, aRayAlongThePlaneOrBesideTheSquareMovesNothing) {
  planeManipulator m;
  manipTest::lookFromFront(m);
  ray3f beside;
  ASSERT_TRUE(m.getParentSpaceRay(pixelX(3.f), pixelY(0.f), beside));
  EXPECT_FALSE(m.startPicking(beside));
  ray3f on;
  ASSERT_TRUE(m.getParentSpaceRay(pixelX(0.f), pixelY(0.f), on));
  ASSERT_TRUE(m.startPicking(on));
  EXPECT_TRUE(m.getPlane()->highlightedState.cV());
  EXPECT_FALSE(m.moveTranslationControlArrow(ray3f(p3(0, 0, 0), p3(1, 0, 0))));
  EXPECT_EQ(m.getDragDisplacement(), p3());
}
