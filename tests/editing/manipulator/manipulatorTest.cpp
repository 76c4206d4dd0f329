#include "jev3d/editing/manipulator/manipulator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "jev3d/editing/manipulator/manipulatorArc.h"
#include "jev3d/editing/manipulator/manipulatorArrow.h"
#include "jev3d/editing/manipulator/manipulatorCube.h"
#include "jev3d/editing/manipulator/manipulatorLine.h"
#include "jev3d/editing/manipulator/manipulatorPlane.h"
#include "jev3d/editing/manipulator/manipulatorSphere.h"
#include "jev3d/editing/manipulator/referenceGrid.h"
#include "jev3d/renderer/renderingContext.h"
#include "manipulatorTestSupport.h"
#include "support/meshes.h"
#include "support/recordingRenderer.h"

using namespace JEV::MESH::EDITING::MANIPULATOR;
using JEV::SYSTEM::EVENT_TYPE;
using JEV::SYSTEM::inputEvent;
using manipTest::event;
using p3 = JEV::MATH::point3<float>;

namespace {

// Records which drag calls reach the virtual operations, and counts the delegates.
class probeManipulator : public manipulator {
 public:
  void onStep(manipulator* m) {
    ++steps;
    EXPECT_EQ(m, this);
  }
  void onEnd(manipulator* m) {
    ++ends;
    EXPECT_EQ(m, this);
  }
  std::vector<std::string> calls;
  std::vector<ray3f> rays;
  int steps = 0, ends = 0;

 protected:
  void mouseDown(const ray3f& r) override { note("down", r); }
  void mouseDrag(const ray3f& r) override { note("drag", r); }
  void mouseUp(const ray3f& r) override { note("up", r); }
  void mouseMove(const ray3f& r) override { note("move", r); }

 private:
  void note(const char* what, const ray3f& r) {
    calls.emplace_back(what);
    rays.push_back(r);
  }
};

struct dragFixture : ::testing::Test {
  probeManipulator m;
  void SetUp() override {
    manipTest::lookFromFront(m);
    m.afterDragStepDelegate = JEV::SYSTEM::makeDelegate(&m, &probeManipulator::onStep);
    m.afterDragEndDelegate = JEV::SYSTEM::makeDelegate(&m, &probeManipulator::onEnd);
  }
  void send(EVENT_TYPE type, float x = 100, float y = 100) {
    const inputEvent e = event(type, x, y);
    switch (type) {
      case JEV::SYSTEM::MOUSE_LEFT_DRAG_ENTER:
      case JEV::SYSTEM::MOUSE_MIDDLE_DRAG_ENTER:
      case JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER:
        m.onMouseDragEnter(&e);
        break;
      case JEV::SYSTEM::MOUSE_LEFT_DRAG:
      case JEV::SYSTEM::MOUSE_MIDDLE_DRAG:
      case JEV::SYSTEM::MOUSE_RIGHT_DRAG:
        m.onMouseDrag(&e);
        break;
      case JEV::SYSTEM::MOUSE_MOVE:
        m.onMouseMove(&e);
        break;
      default:
        m.onMouseDragLeave(&e);
        break;
    }
  }
};

}  // namespace

// --- geometric helpers -------------------------------------------------------------------

TEST(closestPointToRay, findsTheParameterOnTheLineAgainstWorkedNumbers) {
  float t = -1.f;
  // The x axis and a ray straight down from (3, 1, 5): the closest point is x = 3.
  ASSERT_TRUE(manipulatorWidget::closestPointToRay(ray3f(p3(0, 0, 0), p3(1, 0, 0)),
                                                   ray3f(p3(3, 1, 5), p3(0, 0, -1)), t));
  EXPECT_FLOAT_EQ(t, 3.f);
  // t counts in lengths of the line's direction.
  ASSERT_TRUE(manipulatorWidget::closestPointToRay(ray3f(p3(0, 0, 0), p3(2, 0, 0)),
                                                   ray3f(p3(3, 1, 5), p3(0, 0, -1)), t));
  EXPECT_FLOAT_EQ(t, 1.5f);
  // Skew lines: line (1, 0, 0) + t (0, 1, 0) against the ray from (0, 2, 4) along (1, 0, -1).
  // The closest points are (1, 2, 0) on the line (t = 2) and (1, 2, 3) on the ray.
  ASSERT_TRUE(manipulatorWidget::closestPointToRay(ray3f(p3(1, 0, 0), p3(0, 1, 0)),
                                                   ray3f(p3(0, 2, 4), p3(1, 0, -1)), t));
  EXPECT_NEAR(t, 2.f, 1e-5f);
}

TEST(closestPointToRay, parallelLinesGiveFalseAndLeaveTheParameter) {
  float t = 7.f;
  EXPECT_FALSE(manipulatorWidget::closestPointToRay(ray3f(p3(0, 0, 0), p3(1, 0, 0)),
                                                    ray3f(p3(0, 3, 0), p3(-2, 0, 0)), t));
  EXPECT_FALSE(manipulatorWidget::closestPointToRay(ray3f(p3(0, 0, 0), p3(0, 0, 1)),
                                                    ray3f(p3(0, 0, 9), p3(0, 0, 1)), t));
  EXPECT_EQ(t, 7.f);
}

TEST(closestPointToRay, aClosestPointBehindTheRaysOriginClampsToTheLinesStart) {
  float t = -1.f;
  // The ray starts below the axis and points away from it: its closest point would be
  // at ray parameter -5.
  ASSERT_TRUE(manipulatorWidget::closestPointToRay(ray3f(p3(0, 0, 0), p3(1, 0, 0)),
                                                   ray3f(p3(3, 1, -5), p3(0, 0, -1)), t));
  EXPECT_EQ(t, 0.f);
}

TEST(sortHitPoints, putsTheNearestAlongTheRayFirst) {
  const ray3f ray(p3(0, 0, -10), p3(0, 0, 1));
  std::vector<hitPoint> hits = {
      {nullptr, 1, p3(0, 0, 3), 0}, {nullptr, 2, p3(0, 0, -2), 0}, {nullptr, 3, p3(5, 0, 0), 0}};
  manipulatorWidget::sortHitPoints(ray, hits);
  EXPECT_EQ(hits[0].id, 2);
  EXPECT_EQ(hits[1].id, 3);
  EXPECT_EQ(hits[2].id, 1);
}

// --- shapes ------------------------------------------------------------------------------

TEST(manipulatorShapes, areClosedConsistentMeshesWoundOutward) {
  {
    manipulatorArrow a(p3(1, 2, 3), p3(1, 2, 5), 0.1f);
    manipulatorSphere s(p3(0, 1, 0), 0.5f);
    manipulatorArc r(p3(0, 0, 0), p3(0, 1, 0), 2.f, 0.1f);
    manipulatorCube c(p3(1, 1, 1), 0.5f);
    manipulatorLine l(p3(0, 0, 0), p3(3, 0, 0), 0.05f);
    const std::vector<std::pair<manipulatorWidget*, double>> shapes = {
        {&a, 0.0}, {&s, 4.0 / 3.0 * M_PI * 0.125}, {&r, 0.0}, {&c, 1.0}, {&l, M_PI * 0.0025 * 3.0}};
    for (const auto& [w, volume] : shapes) {
      const auto& m = w->getEditMesh();
      EXPECT_EQ(m.checkInvariants(), "");
      EXPECT_EQ(testMeshes::borderEdges(m), 0u) << "closed";
      EXPECT_GT(testMeshes::signedVolume(m), 0.0) << "wound outward";
      if (volume > 0.0) {
        EXPECT_NEAR(testMeshes::signedVolume(m), volume, volume * 0.1);
      }
      ASSERT_NE(m.getFABBTree(), nullptr) << "ready to pick";
    }
    // The arrow spans its two ends.
    const auto& m = a.getEditMesh();
    float low = 1e9f, high = -1e9f;
    for (unsigned v = 0; v < m.vn(); ++v) {
      low = std::min(low, m.vPos(v).z);
      high = std::max(high, m.vPos(v).z);
    }
    EXPECT_FLOAT_EQ(low, 3.f);
    EXPECT_FLOAT_EQ(high, 5.f);
  }
}

TEST(manipulatorShapes, aPlaneIsTwoSidedAndTheGridIsAWireThatIsNeverPicked) {
  manipulatorPlane plane(p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0));
  EXPECT_EQ(plane.getEditMesh().fn(), 2u);
  EXPECT_NEAR((plane.getNormal() - p3(0, 0, 1)).norm(), 0.f, 1e-6f);
  std::vector<hitPoint> hits;
  EXPECT_TRUE(plane.intersectRay(ray3f(p3(0.5f, 0.5f, 3), p3(0, 0, -1)), hits));
  EXPECT_TRUE(plane.intersectRay(ray3f(p3(0.5f, 0.5f, -3), p3(0, 0, 1)), hits)) << "back side";
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_NEAR((hits[0].point - p3(0.5f, 0.5f, 0)).norm(), 0.f, 1e-5f);

  referenceGrid grid(p3(0, 0, 0), p3(1, 0, 0), p3(0, 1, 0), 4, 0.5f);
  EXPECT_EQ(grid.getEditMesh().fn(), 16u);
  EXPECT_EQ(grid.getEditMesh().vn(), 25u);
  EXPECT_FALSE(grid.getEditMesh().surfaceDrawing);
  EXPECT_TRUE(grid.getEditMesh().wireframeDrawing);
  EXPECT_FALSE(grid.intersectRay(ray3f(p3(0.1f, 0.1f, 3), p3(0, 0, -1)), hits));
  EXPECT_EQ(hits.size(), 2u);
}

TEST(manipulatorWidgets, aHiddenWidgetIsNotPickedAndHighlightSwapsTheColour) {
  manipulatorCube cube(p3(0, 0, 0), 1.f);
  cube.widgetId = 9;
  cube.setColor(JEV::CORE::color(1, 2, 3, 255));
  cube.setAuxColor(JEV::CORE::color(4, 5, 6, 255));
  std::vector<hitPoint> hits;
  const ray3f ray(p3(0, 0, -5), p3(0, 0, 1));
  ASSERT_TRUE(cube.intersectRay(ray, hits));
  EXPECT_EQ(hits[0].id, 9);
  EXPECT_EQ(hits[0].node, &cube);
  EXPECT_NEAR(hits[0].point.z, -1.f, 1e-5f);
  cube.visible = false;
  EXPECT_TRUE(cube.disabled.cV());
  EXPECT_FALSE(cube.intersectRay(ray, hits));
  EXPECT_EQ(hits.size(), 1u);

  EXPECT_EQ(cube.getCurrentColor(), JEV::CORE::color(1, 2, 3, 255));
  cube.setHighlighted(true);
  EXPECT_FALSE(cube.normalState.cV());
  EXPECT_EQ(cube.getCurrentColor(), JEV::CORE::color(4, 5, 6, 255));
  recordingRenderer device;
  JEV::RENDERING::renderingContext rc(&device, nullptr);
  cube.visible = true;
  cube.render(&rc);
  EXPECT_EQ(cube.getEditMesh().faceColor, JEV::CORE::color(4, 5, 6, 255));
}

// --- the drag life cycle -----------------------------------------------------------------

TEST_F(dragFixture, theDefaultMaskLetsOnlyTheThirdButtonKindDrag) {
  EXPECT_EQ(m.getManipWithMask(), 4);
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_ENTER);
  send(JEV::SYSTEM::MOUSE_MIDDLE_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  EXPECT_TRUE(m.calls.empty());
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  EXPECT_TRUE(m.isDragging(2));
  EXPECT_EQ(m.calls, (std::vector<std::string>{"down"}));
}

TEST_F(dragFixture, keyBitsDragOnlyWhileTheirKeyFieldReadsTrue) {
  m.clearManipWith();
  EXPECT_EQ(m.getManipWithMask(), 0);
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  m.manipWith(manipulator::FIRST_WITH_FIRST_KEY | manipulator::SECOND_WITH_SECOND_KEY |
              manipulator::THIRD_WITH_THIRD_KEY);
  EXPECT_EQ(m.getManipWithMask(), 0x008 | 0x400 | 0x100);
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  m.firstKey = true;
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_ENTER);
  EXPECT_TRUE(m.isDragging(0));
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_LEAVE);
  m.firstKey = false;
  // The second key drags the second kind, the third key the third.
  m.thirdKey = true;
  send(JEV::SYSTEM::MOUSE_MIDDLE_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  EXPECT_TRUE(m.isDragging(2));
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_LEAVE);
  m.thirdKey = false;
  m.secondKey = true;
  send(JEV::SYSTEM::MOUSE_MIDDLE_DRAG_ENTER);
  EXPECT_TRUE(m.isDragging(1));
}

TEST_F(dragFixture, aSecondButtonDuringADragStartsNoOtherDrag) {
  m.manipWith(manipulator::FIRST_ALWAYS);
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_ENTER);
  EXPECT_TRUE(m.isDragging(2));
  EXPECT_FALSE(m.isDragging(0));
  EXPECT_EQ(m.calls.size(), 1u);
  // Steps of the other kind are not this drag's.
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG);
  send(JEV::SYSTEM::MOUSE_LEFT_DRAG_LEAVE);
  EXPECT_EQ(m.steps, 0);
  EXPECT_EQ(m.ends, 0);
  EXPECT_TRUE(m.isDragging(2));
}

TEST_F(dragFixture, theStepDelegateRunsEveryStepAndTheEndDelegateOnce) {
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG);
  EXPECT_EQ(m.steps, 0) << "no drag runs";
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  for (int i = 0; i < 5; ++i) send(JEV::SYSTEM::MOUSE_RIGHT_DRAG, 100.f + float(i), 100.f);
  EXPECT_EQ(m.steps, 5);
  EXPECT_EQ(m.ends, 0);
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_LEAVE, 104.f, 100.f);
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_LEAVE, 104.f, 100.f);
  EXPECT_EQ(m.ends, 1);
  EXPECT_FALSE(m.isDragging());
  EXPECT_EQ(m.calls.front(), "down");
  EXPECT_EQ(m.calls.back(), "up");
  EXPECT_EQ(m.calls.size(), 7u);
}

TEST_F(dragFixture, withAnEnablingFieldFalseNothingStartsOrSteps) {
  m.enabled = false;
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  m.enabled = true;
  m.visible = false;
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  EXPECT_FALSE(m.isDragging());
  m.visible = true;
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER);
  m.enabled = false;
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG);
  EXPECT_EQ(m.steps, 0);
  // A drag still ends, so that no flag stays set.
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_LEAVE);
  EXPECT_EQ(m.ends, 1);
  EXPECT_FALSE(m.isDragging());
}

TEST_F(dragFixture, theRayComesFromTheEventsPixelThroughTheStoredView) {
  send(JEV::SYSTEM::MOUSE_RIGHT_DRAG_ENTER, manipTest::pixelX(1.5f), manipTest::pixelY(-2.f));
  ASSERT_EQ(m.rays.size(), 1u);
  const ray3f& r = m.rays[0];
  // Where the ray crosses z = 0.
  const float t = -r.origin.z / r.direction.z;
  EXPECT_NEAR(r.pointAt(t).x, 1.5f, 1e-3f);
  EXPECT_NEAR(r.pointAt(t).y, -2.f, 1e-3f);
  p3 window;
  ASSERT_TRUE(m.projectPoint(p3(1.5f, -2.f, 0.f), window));
  EXPECT_NEAR(window.x, manipTest::pixelX(1.5f), 1e-3f);
  EXPECT_NEAR(m.pixelsPerUnit(p3()), manipTest::PIXELS_PER_UNIT, 1e-3f);
  // In the manipulator's own space the ray moves with it.
  m.setManipMatrix(JEV::MATH::matrix4<float>::getTranslate(1.5f, 0, 0));
  ray3f local;
  ASSERT_TRUE(m.getManipSpaceRay(manipTest::pixelX(1.5f), manipTest::pixelY(0.f), local));
  EXPECT_NEAR(local.pointAt(-local.origin.z / local.direction.z).x, 0.f, 1e-3f);
}

TEST(manipulatorNode, ownsItsWidgetsAsChildrenAndDrawsThemUnderItsMatrix) {
  recordingRenderer device;
  JEV::RENDERING::renderingContext rc(&device, nullptr);
  manipulator m;
  auto* cube = new manipulatorCube(p3(), 0.5f);
  EXPECT_EQ(m.addManipulatorWidget(cube), cube);
  EXPECT_EQ(m.getManipulatorWidgets().size(), 1u);
  EXPECT_EQ(m.getSlavesCount(), 1);
  device.clearLog();
  m.render(&rc);
  EXPECT_FALSE(device.only("renderGeometry").empty());
  // Drawn in front: the depth range is squeezed while the handles draw.
  bool squeezed = false;
  for (const std::string& c : device.only("setZbufferState"))
    squeezed = squeezed || c.find(" 0.05") != std::string::npos;
  EXPECT_TRUE(squeezed);
  m.visible = false;
  device.clearLog();
  m.render(&rc);
  EXPECT_TRUE(device.only("renderGeometry").empty());
}
