#include "jev3d/scene/trackballNode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "jev3d/scene/sgController.h"
#include "sceneTestSupport.h"

using JEV::MATH::matrix4;
using JEV::SG::sgController;
using JEV::SG::CAM::trackballNode;
using JEV::SYSTEM::inputEvent;
using JEV::SYSTEM::MOUSE_WHEEL;
using point3f = JEV::MATH::point3<float>;

namespace {

constexpr float PI = 3.14159265358979f;
constexpr float EPS = 1e-4f;

void expectNear(const point3f& a, const point3f& b, float eps = EPS) {
  EXPECT_NEAR(a.x, b.x, eps);
  EXPECT_NEAR(a.y, b.y, eps);
  EXPECT_NEAR(a.z, b.z, eps);
}

// A world point in the camera's eye space.
point3f toEye(const trackballNode& t, const point3f& p) { return p * t.viewMatrix.cV(); }

// Where a world point lands on the window, in pixels from its centre, for a perspective
// of the trackball's view angle over a window `height` pixels high.
void toPixels(const trackballNode& t, const point3f& p, int height, float& x, float& y) {
  const point3f e = toEye(t, p);
  const float scale = float(height) / 2 / std::tan(t.fieldOfView.cV() / 2);
  x = e.x / e.z * scale;
  y = e.y / e.z * scale;
}

class trackballTest : public sceneWindowTest {
 protected:
  void SetUp() override {
    sceneWindowTest::SetUp();
    win.getRenderingContext()->windowWidth = 400;
    win.getRenderingContext()->windowHeight = 200;
    ball = scene.addTrackballNode("ball");
    ASSERT_NE(ball, nullptr);
    ball->distance = 10.0f;
  }
  JEV::SYSTEM::inputContext& input() { return *win.getInputContext(); }
  // One sample of the mouse, by the render walk.
  void frame() { ball->render(win.getRenderingContext()); }
  void moveTo(float x, float y) {
    input().mouseX = x;
    input().mouseY = y;
    frame();
  }

  trackballNode* ball = nullptr;
};

}  // namespace

TEST_F(trackballTest, atStartItLooksAlongZAtTheTarget) {
  expectNear(ball->getEye(), point3f(0, 0, -10));
  expectNear(toEye(*ball, point3f(0, 0, 0)), point3f(0, 0, 10));
  expectNear(toEye(*ball, point3f(0, 0, -10)), point3f(0, 0, 0));
  expectNear(toEye(*ball, point3f(1, 2, 0)), point3f(1, 2, 10));
  EXPECT_EQ(scene.getTrackballNode(L"ball"), ball);
}

TEST_F(trackballTest, aHorizontalDragOrbitsAboutTheUpAxisByTheWorkedAngle) {
  // 100 pixels at 0.01 radians a pixel: one radian. The camera goes round to the left,
  // so the model's front turns to the right, after the pointer.
  ball->orbit(100, 0);
  const float s = std::sin(1.0f), c = std::cos(1.0f);
  expectNear(ball->getEye(), point3f(-10 * s, 0, -10 * c));
  expectNear(ball->getRight(), point3f(c, 0, -s));
  expectNear(ball->getUp(), point3f(0, 1, 0));
  expectNear(toEye(*ball, point3f(0, 0, 0)), point3f(0, 0, 10));
  // The point of the model that faced the camera has moved right on the screen.
  EXPECT_GT(toEye(*ball, point3f(0, 0, -1)).x, 0.5f);
}

TEST_F(trackballTest, aVerticalDragOrbitsAboutTheRightAxis) {
  ball->orbitSpeed = 0.02f;
  ball->orbit(0, 50);
  const float s = std::sin(1.0f), c = std::cos(1.0f);
  expectNear(ball->getEye(), point3f(0, -10 * s, -10 * c));
  expectNear(ball->getRight(), point3f(1, 0, 0));
  EXPECT_GT(toEye(*ball, point3f(0, 0, -1)).y, 0.5f);  // the front rolls up with the pointer
}

TEST_F(trackballTest, orbitingKeepsTargetDistanceAndAnOrthonormalView) {
  ball->target = point3f(1, 2, 3);
  ball->orbit(37, -81);
  ball->orbit(-240, 12);
  expectNear(ball->target.cV(), point3f(1, 2, 3));
  EXPECT_NEAR((ball->getEye() - point3f(1, 2, 3)).norm(), 10.0f, EPS);
  expectNear(toEye(*ball, point3f(1, 2, 3)), point3f(0, 0, 10));
  const matrix4<float>& v = ball->viewMatrix.cV();
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      float dot = 0;
      for (int k = 0; k < 3; ++k) dot += v(k, i) * v(k, j);
      EXPECT_NEAR(dot, i == j ? 1.0f : 0.0f, EPS);
    }
  }
  // A whole turn along one line comes back to the start.
  trackballNode fresh(nullptr, nullptr, nullptr);
  fresh.orbit(2 * PI / 0.01f, 0);
  expectNear(fresh.getEye(), point3f(0, 0, -1), 1e-3f);
}

TEST_F(trackballTest, panningKeepsThePointAtTheTargetsDepthUnderThePointer) {
  // A window 200 pixels high with a right-angle view at distance 10: a pixel is 0.1.
  ball->fieldOfView = PI / 2;
  ball->pan(30, -20);
  expectNear(ball->target.cV(), point3f(-3, 2, 0));
  float x = 0, y = 0;
  toPixels(*ball, point3f(0, 0, 0), 200, x, y);
  EXPECT_NEAR(x, 30.0f, 1e-3f);
  EXPECT_NEAR(y, -20.0f, 1e-3f);
  EXPECT_NEAR(ball->distance.cV(), 10.0f, EPS);
  // Without a window height there is nothing to measure a pixel by.
  trackballNode bare(nullptr, nullptr, nullptr);
  bare.pan(30, 30);
  expectNear(bare.target.cV(), point3f(0, 0, 0));
}

TEST_F(trackballTest, zoomStepsScaleTheDistanceDownToTheMinimum) {
  ball->zoom(1);
  EXPECT_NEAR(ball->distance.cV(), 10.0f / 1.1f, EPS);
  ball->zoom(-2);
  EXPECT_NEAR(ball->distance.cV(), 10.0f * 1.1f, EPS);
  expectNear(toEye(*ball, point3f(0, 0, 0)), point3f(0, 0, 11));
  ball->minimumDistance = 0.5f;
  ball->zoom(1000);
  EXPECT_EQ(ball->distance.cV(), 0.5f);
}

TEST_F(trackballTest, fittingABoxPutsEveryCornerInsideTheView) {
  ball->fieldOfView = PI / 2;
  ball->orbit(40, 25);
  const point3f lo(-1, -1, -1), hi(3, 1, 1);
  ASSERT_TRUE(ball->fitBoundingBox(lo, hi));
  expectNear(ball->target.cV(), point3f(1, 0, 0));
  // A wide window: the vertical angle is the narrower, and the sphere of radius sqrt(6)
  // touches it at 45 degrees.
  EXPECT_NEAR(ball->distance.cV(), std::sqrt(12.0f), EPS);
  auto cornersInside = [&](float halfWidth, float halfHeight) {
    for (int i = 0; i < 8; ++i) {
      const point3f p(i & 1 ? hi.x : lo.x, i & 2 ? hi.y : lo.y, i & 4 ? hi.z : lo.z);
      const point3f e = toEye(*ball, p);
      EXPECT_GT(e.z, 0.0f);
      EXPECT_LE(std::abs(e.x / e.z), halfWidth + EPS);
      EXPECT_LE(std::abs(e.y / e.z), halfHeight + EPS);
    }
  };
  cornersInside(2.0f, 1.0f);
  // A tall window: the horizontal angle decides, and the camera stands farther off.
  win.getRenderingContext()->windowWidth = 100;
  ASSERT_TRUE(ball->fitBoundingBox(lo, hi));
  EXPECT_GT(ball->distance.cV(), std::sqrt(12.0f) + 1);
  cornersInside(0.5f, 1.0f);
}

TEST_F(trackballTest, aBadBoxIsRefusedAndAPointKeepsTheDistance) {
  const float inf = std::numeric_limits<float>::infinity();
  EXPECT_FALSE(ball->fitBoundingBox(point3f(1, 0, 0), point3f(0, 1, 1)));
  EXPECT_FALSE(ball->fitBoundingBox(point3f(0, 0, 0), point3f(inf, 1, 1)));
  EXPECT_FALSE(ball->fitBoundingBox(point3f(std::nanf(""), 0, 0), point3f(1, 1, 1)));
  expectNear(ball->target.cV(), point3f(0, 0, 0));
  EXPECT_EQ(ball->distance.cV(), 10.0f);
  EXPECT_TRUE(ball->fitBoundingBox(point3f(2, 2, 2), point3f(2, 2, 2)));
  expectNear(ball->target.cV(), point3f(2, 2, 2));
  EXPECT_EQ(ball->distance.cV(), 10.0f);
}

TEST_F(trackballTest, theMouseDrivesTheSameGesturesFromTheInputContext) {
  trackballNode reference(nullptr, nullptr, win.getRenderingContext());
  reference.distance = 10.0f;

  // Left: press at (100, 100), drag to (150, 120) over two frames.
  moveTo(100, 100);
  input().leftDown = true;
  frame();
  moveTo(130, 100);
  moveTo(150, 120);
  reference.orbit(30, 0);
  reference.orbit(20, 20);
  expectNear(ball->getEye(), reference.getEye());
  // Released, the pointer moves nothing.
  input().leftDown = false;
  moveTo(300, 10);
  expectNear(ball->getEye(), reference.getEye());

  // Middle pans; the update walk samples as well as the render walk.
  input().middleDown = true;
  ball->update(win.getRenderingContext(), win.getUpdateContext());
  input().mouseX = 320;
  ball->update(win.getRenderingContext(), win.getUpdateContext());
  reference.pan(20, 0);
  EXPECT_GT(ball->target.cV().norm(), 0.1f);
  expectNear(ball->target.cV(), reference.target.cV());
  input().middleDown = false;

  // Right zooms: 50 pixels up is one wheel step.
  input().rightDown = true;
  frame();
  moveTo(320, 60);
  EXPECT_NEAR(ball->distance.cV(), 10.0f / 1.1f, EPS);
  // Pressing left as well restarts the measure under the left button: no jump.
  input().leftDown = true;
  const point3f eye = ball->getEye();
  moveTo(320, 60);
  expectNear(ball->getEye(), eye);
  input().leftDown = input().rightDown = false;
  frame();

  // Disabled, it ignores the mouse.
  ball->enabled = false;
  input().leftDown = true;
  frame();
  moveTo(500, 500);
  expectNear(ball->getEye(), eye);
}

TEST_F(trackballTest, theWheelZoomsThroughTheWindowsHandlersUntilTheNodeGoes) {
  ASSERT_EQ(win.getAbsoluteCallbacks(MOUSE_WHEEL).size(), 1u);
  inputEvent e(MOUSE_WHEEL, 0, 0, 0, 0, 2);
  win.getAbsoluteCallbacks(MOUSE_WHEEL).front().invoke(&e);
  EXPECT_NEAR(ball->distance.cV(), 10.0f / 1.21f, EPS);
  scene.erase("ball");
  EXPECT_TRUE(win.getAbsoluteCallbacks(MOUSE_WHEEL).empty());
}

TEST_F(trackballTest, writingAFieldRecomputesTheMatrixAndAsksForAFrame) {
  int changes = 0;
  struct counter {
    int* n;
    void bump() { ++*n; }
  } c{&changes};
  ball->viewMatrix.registerEventOnChangeValue(JEV::SYSTEM::makeDelegate(&c, &counter::bump));
  win.renderNeeded = false;
  ball->target = point3f(0, 0, 5);
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(win.renderNeeded.cV());
  expectNear(toEye(*ball, point3f(0, 0, 5)), point3f(0, 0, 10));
  ball->orientation = JEV::MATH::quaternion<float>(point3f(0, 1, 0), PI / 2);
  EXPECT_EQ(changes, 2);
  expectNear(ball->getForward(), point3f(1, 0, 0));
  ball->reset();
  expectNear(ball->getEye(), point3f(0, 0, -1));
}

TEST_F(trackballTest, keepingUpOrbitsAsATurntableWithALevelHorizon) {
  ball->keepUp = true;
  // A horizontal drag turns about +y just as the free orbit does from a level view.
  ball->orbit(100, 0);
  const float s = std::sin(1.0f), c = std::cos(1.0f);
  expectNear(ball->getEye(), point3f(-10 * s, 0, -10 * c));
  // Mixed drags never roll the view: the right axis stays flat, up stays up.
  ball->orbit(40, 30);
  ball->orbit(-75, -60);
  ball->orbit(20, 10);
  EXPECT_NEAR(ball->getRight() * point3f(0, 1, 0), 0.0f, EPS);
  EXPECT_GT(ball->getUp().y, 0.0f);
  EXPECT_NEAR((ball->getEye() - ball->target.cV()).norm(), 10.0f, EPS);
  // Tilting stops short of looking straight up the axis, and turns on from there.
  ball->orbit(0, 1000);
  EXPECT_GT(ball->getForward().y, 0.999f);
  EXPECT_LT(ball->getForward().y, 1.0f);
  EXPECT_GT(ball->getUp().norm(), 0.99f);
  ball->orbit(30, -157);
  EXPECT_NEAR(ball->getForward().y, std::cos(1.571f), 1e-3f);
  EXPECT_NEAR(ball->getRight() * point3f(0, 1, 0), 0.0f, EPS);

  // Another axis: +z up.
  ball->upAxis = point3f(0, 0, 1);
  ball->orbit(10, 5);
  EXPECT_NEAR(ball->getRight() * point3f(0, 0, 1), 0.0f, EPS);
  expectNear(toEye(*ball, ball->target.cV()), point3f(0, 0, 10));

  // A roll left by free orbiting goes at the first level drag.
  ball->upAxis = point3f(0, 1, 0);
  ball->keepUp = false;
  for (int i = 0; i < 8; ++i) ball->orbit(std::cos(i * PI / 4) * 40, std::sin(i * PI / 4) * 40);
  EXPECT_GT(std::abs(ball->getRight() * point3f(0, 1, 0)), 1e-3f);
  ball->keepUp = true;
  ball->orbit(1, 0);
  EXPECT_NEAR(ball->getRight() * point3f(0, 1, 0), 0.0f, EPS);
}
