#include "jev3d/editing/manipulator/arrowManipulator.h"

#include <gtest/gtest.h>

#include "jev3d/editing/manipulator/manipulatorArrow.h"
#include "manipulatorTestSupport.h"

using namespace JEV::MESH::EDITING::MANIPULATOR;
using manipTest::pixelX;
using manipTest::pixelY;
using p3 = JEV::MATH::point3<float>;

TEST(arrowManipulator, aDragOnTheArrowMovesItAlongItsLineByTheMousesTravel) {
  arrowManipulator m(p3(0, 2, 0));
  m.setManipMatrix(JEV::MATH::matrix4<float>::getTranslate(1, 0, 0));
  manipTest::lookFromFront(m);
  int steps = 0;
  struct counter {
    int* n;
    void bump(manipulator*) { ++*n; }
  } count{&steps};
  m.afterDragStepDelegate = JEV::SYSTEM::makeDelegate(&count, &counter::bump);
  // Picked at y = 1.5 on the arrow at x = 1, dragged to y = 3 (a little aside of the line).
  manipTest::rightDrag(m, pixelX(1.f), pixelY(1.5f), pixelX(1.f), pixelY(3.f), 3);
  EXPECT_EQ(steps, 3);
  EXPECT_NEAR(m.getDragDisplacement().y, 1.5f, 1e-3f);
  EXPECT_NEAR(m.getDragDisplacement().x, 0.f, 1e-6f);
  EXPECT_NEAR(m.getManipMatrix()[13], 1.5f, 1e-3f);
  EXPECT_NEAR(m.getLine().origin.y, 1.5f, 1e-3f);
  EXPECT_FALSE(m.isPicked());
  EXPECT_FALSE(m.getArrow()->highlightedState.cV());
}

TEST(arrowManipulator, aMissPicksNothingAndAZeroStepMovesNothing) {
  arrowManipulator m;
  manipTest::lookFromFront(m);
  ray3f miss;
  ASSERT_TRUE(m.getParentSpaceRay(pixelX(0.5f), pixelY(2.f), miss));
  EXPECT_FALSE(m.startPicking(miss));
  EXPECT_FALSE(m.isPicked());
  EXPECT_FALSE(m.moveTranslationControlArrow(miss));
  ray3f hit;
  ASSERT_TRUE(m.getParentSpaceRay(pixelX(0.5f), pixelY(0.f), hit));
  ASSERT_TRUE(m.startPicking(hit));
  const auto* tree = m.getArrow()->getEditMesh().getFABBTree();
  EXPECT_TRUE(m.moveTranslationControlArrow(hit));
  EXPECT_EQ(m.getLastDisplacement(), p3());
  EXPECT_EQ(m.getManipMatrix(), JEV::MATH::matrix4<float>());
  EXPECT_EQ(m.getArrow()->getEditMesh().getFABBTree(), tree);
}
