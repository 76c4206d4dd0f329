#include "jev3d/editing/manipulator/globalManipulator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/manipulator/globalManipulatorArrow.h"
#include "jev3d/editing/manipulator/selectionManipulation.h"
#include "jev3d/editing/manipulator/standardManipulator.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/renderer/renderingContext.h"
#include "manipulatorTestSupport.h"
#include "support/meshes.h"
#include "support/recordingRenderer.h"

using namespace JEV::MESH::EDITING::MANIPULATOR;
using manipTest::pixelX;
using manipTest::pixelY;
using manipTest::rightDrag;
using p3 = JEV::MATH::point3<float>;

namespace {

std::vector<p3> unitCube() {
  std::vector<p3> c;
  globalManipulatorState::makeUnitCube(c);
  return c;
}

std::vector<p3> cornersOf(const globalManipulator& g) { return g.getState().getShape(); }

// The parent-space ray through a pixel of the fixed view.
ray3f rayAt(const manipulator& m, float x, float y) {
  ray3f r;
  EXPECT_TRUE(m.getParentSpaceRay(pixelX(x), pixelY(y), r));
  return r;
}

struct globalFixture : ::testing::Test {
  globalManipulator g;
  void SetUp() override { manipTest::lookFromFront(g); }
};

}  // namespace

TEST_F(globalFixture, startsAsTheUnitCubeWithItsFourListsOfElements) {
  EXPECT_EQ(cornersOf(g), unitCube());
  EXPECT_EQ(g.getState(), globalManipulatorState());
  EXPECT_EQ(g.getScaleControls().size(), 6u);
  EXPECT_EQ(g.getTranslationArrows().size(), 3u);
  EXPECT_EQ(g.getRotationCircles().size(), 3u);
  EXPECT_EQ(g.getControls().size(), 8u);
  EXPECT_EQ(g.getShape()->getEditMesh().checkInvariants(), "");
  EXPECT_FLOAT_EQ(g.getShapeMaxDim(), 1.f);
  // The arrows stand out of the +x, +y and +z sides along their axes.
  for (int i = 0; i < 3; ++i) {
    const globalManipulatorArrow* a = g.getTranslationArrows()[size_t(i)];
    EXPECT_EQ(a->getAxis(), i);
    EXPECT_GT(a->getStart()[i], 0.5f);
    EXPECT_NEAR((a->getEnd() - a->getStart()).getNormalized()[i], 1.f, 1e-6f);
  }
}

TEST_F(globalFixture, aRayThatMissesEveryElementLeavesThePickingStateClear) {
  EXPECT_FALSE(g.startPicking(rayAt(g, -3.f, 3.f)));
  EXPECT_FALSE(g.isScaling());
  EXPECT_FALSE(g.isMoving());
  EXPECT_FALSE(g.isRotating());
  EXPECT_FALSE(g.isFreeScaling());
  // The cage's own wire is not an element to pick.
  EXPECT_FALSE(g.startPicking(rayAt(g, 0.25f, 0.25f)));
  for (manipulatorWidget* w : g.getManipulatorWidgets()) EXPECT_FALSE(w->highlightedState.cV());
}

TEST_F(globalFixture, anArrowDragMovesTheWholeCageAlongItsAxis) {
  ASSERT_TRUE(g.startPicking(rayAt(g, 1.05f, 0.f)));
  EXPECT_TRUE(g.isMoving());
  EXPECT_EQ(g.getDragKind(), globalManipulator::DRAG_ARROW);
  g.globalManipulatorMouseUp(ray3f());
  rightDrag(g, pixelX(1.05f), pixelY(0.f), pixelX(2.05f), pixelY(0.f), 4);
  const std::vector<p3> cube = unitCube();
  const std::vector<p3> now = cornersOf(g);
  for (size_t i = 0; i < 8; ++i) EXPECT_LT((now[i] - cube[i] - p3(1, 0, 0)).norm(), 1e-4f) << i;
  // Every element came along, ready to be picked where it now is.
  EXPECT_NEAR(g.getTranslationArrows()[1]->getStart().x, 1.f, 1e-4f);
  std::vector<hitPoint> hits;
  EXPECT_TRUE(g.getScaleControls()[1]->intersectRay(ray3f(p3(1.5f, 0, -5), p3(0, 0, 1)), hits));
  // The reference is where the drag began.
  EXPECT_EQ(g.getState().getReferenceShape(), cube);
  EXPECT_FALSE(g.isMoving());
}

TEST_F(globalFixture, aZeroDisplacementLeavesTheMeshAndItsTreeAlone) {
  const globalManipulatorArrow* arrow = g.getTranslationArrows()[0];
  const auto* tree = arrow->getEditMesh().getFABBTree();
  ASSERT_NE(tree, nullptr);
  const p3 start = arrow->getStart();
  ASSERT_TRUE(g.startPicking(rayAt(g, 1.05f, 0.f)));
  EXPECT_TRUE(g.moveTranslationControlArrow(rayAt(g, 1.05f, 0.f)));
  EXPECT_EQ(arrow->getEditMesh().getFABBTree(), tree);
  EXPECT_EQ(arrow->getStart(), start);
  EXPECT_EQ(cornersOf(g), unitCube());
  EXPECT_EQ(g.getStepTransform(), JEV::MATH::matrix4<float>());
}

TEST_F(globalFixture, performScaleMovesOnlyTheCornersOfItsSide) {
  g.performScale(1, 0.5f);  // +x
  const std::vector<p3> cube = unitCube();
  const std::vector<p3> now = cornersOf(g);
  for (size_t i = 0; i < 8; ++i) {
    const p3 expected = cube[i].x > 0.f ? cube[i] + p3(0.5f, 0, 0) : cube[i];
    EXPECT_EQ(now[i], expected) << i;
  }
  EXPECT_EQ(g.getShape()->getEditMesh().getSelFn(), 0u) << "no face stays selected";
  EXPECT_EQ(g.getShape()->getEditMesh().checkInvariants(), "");
  g.performScale(4, 1.f);  // -z
  for (size_t i = 0; i < 8; ++i) {
    const float x = cube[i].x > 0.f ? 1.f : -0.5f;
    const float z = cube[i].z < 0.f ? -1.5f : 0.5f;
    EXPECT_EQ(cornersOf(g)[i], p3(x, cube[i].y, z)) << i;
  }
  g.performScale(7, 1.f);
  g.performScale(-1, 1.f);
  EXPECT_NEAR(cornersOf(g)[0].z, 0.5f, 0.f) << "sides out of range are ignored";
}

TEST_F(globalFixture, aScaleControlDragStretchesTheCageFromTheOppositeSide) {
  g.displayYRotation(false);  // its ring passes in front of the +x control in this view
  rightDrag(g, pixelX(0.5f), pixelY(0.f), pixelX(1.f), pixelY(0.f), 5);
  const std::vector<p3> cube = unitCube();
  for (size_t i = 0; i < 8; ++i) {
    const float x = cube[i].x > 0.f ? 1.f : -0.5f;
    EXPECT_LT((cornersOf(g)[i] - p3(x, cube[i].y, cube[i].z)).norm(), 1e-4f) << i;
  }
  p3 axes[3];
  g.getShapeAxes(axes);
  EXPECT_NEAR(axes[0].norm(), 1.5f, 1e-4f);
}

TEST_F(globalFixture, aRingDragTurnsTheCageAboutItsAxis) {
  ASSERT_TRUE(g.startPicking(rayAt(g, 0.85f, 0.3f)));
  ASSERT_TRUE(g.isRotating());
  EXPECT_EQ(g.getDragKind(), globalManipulator::DRAG_CIRCLE);
  EXPECT_NEAR(g.getPickedPoint().z, 0.f, 1e-6f) << "projected on the ring's plane";
  g.globalManipulatorMouseUp(ray3f());
  rightDrag(g, pixelX(0.85f), pixelY(0.3f), pixelX(-0.3f), pixelY(0.85f), 8);
  p3 unit[3];
  g.getNormalizedShapeAxes(unit);
  EXPECT_LT((unit[0] - p3(0, 1, 0)).norm(), 1e-4f);
  EXPECT_LT((unit[1] - p3(-1, 0, 0)).norm(), 1e-4f);
  EXPECT_LT(g.getState().getCenter().norm(), 1e-5f);
}

TEST_F(globalFixture, stateRoundTripsAndTheSavedShapeComesBack) {
  g.translate(p3(0, 2, 0));
  g.rotate(2, 0.4f);
  const globalManipulatorState moved = g.getState();
  globalManipulator other;
  ASSERT_TRUE(other.setState(moved));
  EXPECT_EQ(other.getState(), moved);
  g.saveCurrShapePosition();
  g.scale(2.f);
  EXPECT_NEAR(g.getShapeMaxDim(), 2.f, 1e-4f);
  g.restoreShapePosition();
  EXPECT_EQ(g.getState().getShape(), moved.getShape());
  g.reset();
  EXPECT_EQ(g.getState(), globalManipulatorState());
}

TEST(standardManipulator, everyDragPushesASnapshotThatUndoPutsBack) {
  standardManipulator s;
  manipTest::lookFromFront(s);
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  s.setUndoStack(&stack);
  EXPECT_EQ(stack.getUndoSize(), 1u) << "the base snapshot";
  rightDrag(s, pixelX(1.05f), pixelY(0.f), pixelX(2.05f), pixelY(0.f), 4);
  EXPECT_EQ(stack.getUndoSize(), 2u);
  const globalManipulatorState after = s.getState();
  // A drag that picks nothing changes nothing and pushes nothing.
  rightDrag(s, pixelX(-3.f), pixelY(3.f), pixelX(-2.f), pixelY(3.f), 2);
  EXPECT_EQ(stack.getUndoSize(), 2u);
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(cornersOf(s), unitCube());
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(cornersOf(s), after.getShape());
  stack.clear();
}

TEST(standardManipulator, labelsItsArrowsThroughTheRenderersText) {
  recordingRenderer device;
  JEV::RENDERING::renderingContext rc(&device, nullptr);
  standardManipulator s;
  EXPECT_TRUE(s.hasLabels());
  s.setAxisCaption(1, L"Up");
  EXPECT_EQ(s.getTranslationArrows()[1]->getCaption(), L"Up");
  s.render(&rc);
  ASSERT_EQ(s.getLabels().size(), 3u);
  EXPECT_EQ(s.getLabels()[1].text, L"Up");
  EXPECT_EQ(device.only("cacheFont").size(), 1u);
  EXPECT_EQ(device.only("renderText").size(), 3u);
  // Each label sits beside its arrow's tip on the window.
  p3 tip;
  ASSERT_TRUE(s.projectPoint(s.getTranslationArrows()[0]->getEnd(), tip));
  EXPECT_EQ(s.getLabels()[0].x, int(tip.x) + 4);
  s.displayZTranslation(false);
  device.clearLog();
  s.render(&rc);
  EXPECT_EQ(s.getLabels().size(), 2u);
  EXPECT_EQ(device.only("cacheFont").size(), 0u) << "tried once";
}

TEST_F(globalFixture, itsStepsMoveASelectionThroughTheSameBinding) {
  JEV::MESH::EDITING::editMeshNode node;
  JEV::MESH::editMesh& mesh = node.getEditMesh();
  testMeshes::makeGrid(mesh, 2, 2);
  testMeshes::finishMesh(mesh);
  mesh.translate(p3(-1, -1, 0));
  for (unsigned v = 0; v < mesh.vn(); ++v)
    if (v != 4) mesh.selectVert(v);
  const std::vector<p3> start = [&] {
    std::vector<p3> out;
    for (unsigned v = 0; v < mesh.vn(); ++v) out.push_back(mesh.vPos(v));
    return out;
  }();
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  selectionManipulation edit(&g, &node, &stack);
  edit.placeOnSelection();
  EXPECT_LT(g.getState().getCenter().norm(), 1e-6f) << "the selection's centre";
  rightDrag(g, pixelX(1.05f), pixelY(0.f), pixelX(1.55f), pixelY(0.f), 3);
  for (unsigned v = 0; v < mesh.vn(); ++v) {
    const p3 expected = start[v] + (v != 4 ? p3(0.5f, 0, 0) : p3());
    EXPECT_LT((mesh.vPos(v) - expected).norm(), 1e-4f) << v;
  }
  EXPECT_EQ(mesh.checkInvariants(), "");
  ASSERT_TRUE(stack.undoLast());
  for (unsigned v = 0; v < mesh.vn(); ++v) EXPECT_EQ(mesh.vPos(v), start[v]) << v;
}
