#include "jev3d/editing/manipulator/trsManipulator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/manipulator/selectionManipulation.h"
#include "jev3d/editing/undoRedoStack.h"
#include "manipulatorTestSupport.h"
#include "support/meshes.h"

using namespace JEV::MESH::EDITING::MANIPULATOR;
using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;
using manipTest::pixelX;
using manipTest::pixelY;
using manipTest::rightDrag;
using matrix4f = JEV::MATH::matrix4<float>;
using p3 = JEV::MATH::point3<float>;

namespace {

struct trsFixture : ::testing::Test {
  trsManipulator m;
  void SetUp() override {
    // A fixed size, so that the handles are where the numbers below say.
    m.screenSize = 0.f;
    manipTest::lookFromFront(m);
  }
  void press(float x, float y) {
    const auto e = manipTest::event(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER, x, y);
    m.onMouseDragEnter(&e);
  }
  void release(float x, float y) {
    const auto e = manipTest::event(JEV::SYSTEM::MOUSE_RIGHT_DRAG_LEAVE, x, y);
    m.onMouseDragLeave(&e);
  }
};

// A 4 by 4 grid in an editable node whose vertices with i >= 2 are selected, with a
// manipulator on them.
struct selectionFixture : trsFixture {
  editMeshNode node;
  JEV::SYSTEM::undoRedoStack stack{1u << 20};
  std::vector<p3> start;
  void SetUp() override {
    trsFixture::SetUp();
    editMesh& mesh = node.getEditMesh();
    testMeshes::makeGrid(mesh, 4, 4);
    testMeshes::finishMesh(mesh);
    // Centred on the origin.
    mesh.translate(p3(-2, -2, 0));
    for (unsigned v = 0; v < mesh.vn(); ++v)
      if (v % 5 >= 2) mesh.selectVert(v);
    for (unsigned v = 0; v < mesh.vn(); ++v) start.push_back(mesh.vPos(v));
  }
  const editMesh& mesh() const { return node.getEditMesh(); }
  bool selected(unsigned v) const { return v % 5 >= 2; }
};

}  // namespace

TEST(trsTable, namesEveryOperationValueAndNothingElse) {
  const char* names[] = {
      "NULL_OPERATION",  "TRANSL_X",  "TRANSL_Y", "TRANSL_Z",     "TRANSL_XY",
      "TRANSL_XZ",       "TRANSL_YZ", "SCALE_X",  "SCALE_Y",      "SCALE_Z",
      "ROT_Y",           "ROT_Z",     "ROT_X",    "SCALE_GLOBAL", "TRANSLATE_GLOBAL",
      "ROTATE_GLOBAL",   "EXTRUDE",   "SELECT",   "TRANSL_N",     "SCALE_N",
      "ACTIVATE_SUBSURF"};
  for (int i = 0; i <= 20; ++i) EXPECT_STREQ(trsManipulator::getManipType(i), names[i]) << i;
  EXPECT_STREQ(trsManipulator::getManipType(21), "UNDEFINED_TYPE");
  EXPECT_STREQ(trsManipulator::getManipType(-1), "UNDEFINED_TYPE");
  // The rotations run Y, Z, X.
  EXPECT_EQ(ROT_Y, 10);
  EXPECT_EQ(ROT_Z, 11);
  EXPECT_EQ(ROT_X, 12);
}

TEST(trsQuaternions, turnRightHandedAndComposeInOrder) {
  using quat = trsManipulator::quat;
  const quat qz = trsManipulator::axisAngleToQuat(p3(0, 0, 2), float(M_PI / 2));
  const matrix4f rz = trsManipulator::quatToMatrix(qz);
  EXPECT_LT((p3(1, 0, 0) * rz - p3(0, 1, 0)).norm(), 1e-6f);
  EXPECT_LT((p3(0, 1, 0) * rz - p3(-1, 0, 0)).norm(), 1e-6f);
  // x to y, then y to z: x goes to z.
  const quat qx = trsManipulator::axisAngleToQuat(p3(1, 0, 0), float(M_PI / 2));
  const matrix4f both = trsManipulator::quatToMatrix(trsManipulator::addQuats(qz, qx));
  EXPECT_LT((p3(1, 0, 0) * both - p3(0, 0, 1)).norm(), 1e-6f);
  const quat turn = trsManipulator::calcQuat(p3(0, 3, 0), p3(0, 0, -1));
  EXPECT_LT((p3(0, 1, 0) * trsManipulator::quatToMatrix(turn) - p3(0, 0, -1)).norm(), 1e-5f);
  const quat back = trsManipulator::calcQuat(p3(1, 0, 0), p3(-1, 0, 0));
  EXPECT_LT((p3(1, 0, 0) * trsManipulator::quatToMatrix(back) - p3(-1, 0, 0)).norm(), 1e-5f);
  const quat n = trsManipulator::normalizeQuat(quat(2, 0, 0, 0));
  EXPECT_FLOAT_EQ(n.w, 1.f);
  EXPECT_FLOAT_EQ(trsManipulator::normalizeQuat(quat(0, 0, 0, 0)).w, 1.f);
}

TEST_F(trsFixture, aMissLeavesThePickingStateClear) {
  press(pixelX(-3.f), pixelY(3.f));
  EXPECT_TRUE(m.isDragging());
  EXPECT_EQ(m.getCurrentManipType(), NULL_OPERATION);
  for (manipulatorWidget* w : m.getManipulatorWidgets()) {
    EXPECT_FALSE(w->highlightedState.cV());
    EXPECT_TRUE(w->normalState.cV());
  }
  rightDrag(m, pixelX(-3.f), pixelY(3.f), pixelX(0.f), pixelY(0.f));
  EXPECT_EQ(m.getDragTransform(), matrix4f());
  EXPECT_EQ(m.getPosition(), p3());
}

TEST_F(trsFixture, theArrowTipPicksTranslationAlongXAndTheDragFollowsTheMouse) {
  press(pixelX(0.9f), pixelY(0.f));
  ASSERT_EQ(m.getCurrentManipType(), TRANSL_X);
  int lit = 0;
  for (manipulatorWidget* w : m.getManipulatorWidgets()) lit += w->highlightedState.cV() ? 1 : 0;
  EXPECT_EQ(lit, 1);
  // Forty pixels right: two units along x.
  const auto step = manipTest::event(JEV::SYSTEM::MOUSE_RIGHT_DRAG, pixelX(2.9f), pixelY(0.f));
  m.onMouseDrag(&step);
  EXPECT_NEAR(m.getPosition().x, 2.f, 1e-3f);
  EXPECT_NEAR(m.getPosition().y, 0.f, 1e-6f);
  EXPECT_NEAR(m.getDragTransform()[12], 2.f, 1e-3f);
  EXPECT_NEAR(m.getDeltaTransform()[12], 2.f, 1e-3f);
  const auto again = manipTest::event(JEV::SYSTEM::MOUSE_RIGHT_DRAG, pixelX(3.4f), pixelY(0.f));
  m.onMouseDrag(&again);
  EXPECT_NEAR(m.getDeltaTransform()[12], 0.5f, 1e-3f);
  EXPECT_NEAR(m.getDragTransform()[12], 2.5f, 1e-3f);
  // The handles travel with the manipulator.
  EXPECT_NEAR(m.getManipMatrix()[12], 2.5f, 1e-3f);
  release(pixelX(3.4f), pixelY(0.f));
  for (manipulatorWidget* w : m.getManipulatorWidgets()) EXPECT_FALSE(w->highlightedState.cV());
}

TEST_F(trsFixture, hiddenGroupsAreNotPicked) {
  m.enableTranslation(false);
  press(pixelX(0.9f), pixelY(0.f));
  EXPECT_NE(m.getCurrentManipType(), TRANSL_X);
  release(pixelX(0.9f), pixelY(0.f));
  m.enableTranslation(true);
  m.enableMoveAlongNormal(true);
  m.setNormalDirection(p3(1, 1, 0));
  // The normal arrow runs along the diagonal, where no other handle is.
  press(pixelX(0.75f), pixelY(0.75f));
  EXPECT_EQ(m.getCurrentManipType(), TRANSL_N);
  const auto step = manipTest::event(JEV::SYSTEM::MOUSE_RIGHT_DRAG, pixelX(1.75f), pixelY(1.75f));
  m.onMouseDrag(&step);
  EXPECT_NEAR(m.getPosition().x, 1.f, 1e-3f);
  EXPECT_NEAR(m.getPosition().y, 1.f, 1e-3f);
}

TEST_F(trsFixture, theSizeFollowsTheViewUntilItIsFixed) {
  m.screenSize = 60.f;
  EXPECT_NEAR(m.computeOptimalManipSize(), 3.f, 1e-3f);
  m.screenSize = 0.f;
  EXPECT_FLOAT_EQ(m.computeOptimalManipSize(), 1.f);
  m.setSize(-2.f);
  EXPECT_FLOAT_EQ(m.getSize(), 1.f);
}

TEST_F(selectionFixture, aDragOfTheXArrowMovesTheSelectedVerticesByTheHandlesTravel) {
  selectionManipulation edit(&m, &node, &stack);
  rightDrag(m, pixelX(0.9f), pixelY(0.f), pixelX(2.4f), pixelY(0.f), 5);
  const float travel = m.getPosition().x;
  EXPECT_NEAR(travel, 1.5f, 1e-3f);
  for (unsigned v = 0; v < mesh().vn(); ++v) {
    const p3 expected = start[v] + (selected(v) ? p3(travel, 0, 0) : p3());
    EXPECT_LT((mesh().vPos(v) - expected).norm(), 1e-4f) << v;
  }
  EXPECT_EQ(mesh().checkInvariants(), "");
  // One record for the whole drag; undo puts every vertex back, redo moves it again.
  EXPECT_EQ(stack.getUndoSize(), 1u);
  ASSERT_TRUE(stack.undoLast());
  for (unsigned v = 0; v < mesh().vn(); ++v) EXPECT_EQ(mesh().vPos(v), start[v]) << v;
  EXPECT_NEAR(m.getPosition().x, 1.f, 1e-5f) << "back on the selection's centre";
  EXPECT_EQ(mesh().checkInvariants(), "");
  ASSERT_TRUE(stack.redo());
  for (unsigned v = 0; v < mesh().vn(); ++v) {
    const p3 expected = start[v] + (selected(v) ? p3(travel, 0, 0) : p3());
    EXPECT_LT((mesh().vPos(v) - expected).norm(), 1e-4f) << v;
  }
}

TEST_F(selectionFixture, aZeroDisplacementLeavesTheMeshAndItsTreeUntouched) {
  selectionManipulation edit(&m, &node, &stack);
  node.computeFABBTree();
  const auto* tree = mesh().getFABBTree();
  ASSERT_NE(tree, nullptr);
  const unsigned faceChunksBefore = node.getRenderCacheCounts().faceChunks;
  rightDrag(m, pixelX(0.9f), pixelY(0.f), pixelX(0.9f), pixelY(0.f), 3);
  EXPECT_EQ(m.getCurrentManipType(), TRANSL_X);
  for (unsigned v = 0; v < mesh().vn(); ++v) EXPECT_EQ(mesh().vPos(v), start[v]);
  EXPECT_EQ(mesh().getFABBTree(), tree) << "the index is still valid";
  EXPECT_EQ(node.getRenderCacheCounts().faceChunks, faceChunksBefore);
  EXPECT_EQ(stack.getUndoSize(), 0u) << "nothing moved, nothing to undo";
}

TEST_F(selectionFixture, scalingAlongXMovesOnlyTheSelectedVerticesAndOnlyAlongX) {
  m.setPosition(p3(1, 0, 0));
  selectionManipulation edit(&m, &node, &stack);
  // The x cube sits at 1.2 from the centre; dragged to 2.4 from it: twice as far.
  rightDrag(m, pixelX(2.2f), pixelY(0.f), pixelX(3.4f), pixelY(0.f), 4);
  ASSERT_EQ(m.getCurrentManipType(), SCALE_X);
  for (unsigned v = 0; v < mesh().vn(); ++v) {
    p3 expected = start[v];
    if (selected(v)) expected.x = 1.f + (start[v].x - 1.f) * 2.f;
    EXPECT_LT((mesh().vPos(v) - expected).norm(), 1e-3f) << v;
  }
  EXPECT_EQ(m.getPosition(), p3(1, 0, 0)) << "scaling leaves the manipulator in place";
  EXPECT_EQ(mesh().checkInvariants(), "");
}

TEST_F(selectionFixture, aRingTurnsTheSelectionAboutTheCentreAndSnapsWhenAsked) {
  m.rotationStep = float(M_PI / 4);
  selectionManipulation edit(&m, &node, &stack);
  // The z ring, radius 0.85 in the view's plane: a quarter turn from 45 degrees, ending a
  // little short, so that the snap has something to do.
  rightDrag(m, pixelX(0.6f), pixelY(0.6f), pixelX(-0.55f), pixelY(0.65f), 6);
  ASSERT_EQ(m.getCurrentManipType(), ROT_Z);
  const matrix4f turn =
      trsManipulator::quatToMatrix(trsManipulator::axisAngleToQuat(p3(0, 0, 1), float(M_PI / 2)));
  for (unsigned v = 0; v < mesh().vn(); ++v) {
    const p3 expected = selected(v) ? start[v] * turn : start[v];
    EXPECT_LT((mesh().vPos(v) - expected).norm(), 1e-3f) << v;
  }
  // The manipulator's own axes turned with it.
  EXPECT_NEAR(m.getRotation()(0, 1), 1.f, 1e-4f);
}
