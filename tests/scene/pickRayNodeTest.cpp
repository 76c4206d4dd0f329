#include "jev3d/scene/pickRayNode.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jev3d/scene/sgController.h"
#include "sceneTestSupport.h"

using JEV::SG::node;
using JEV::SG::pickRayNode;
using JEV::SG::sgController;
using JEV::SYSTEM::EVENT_TYPE;
using JEV::SYSTEM::inputEvent;
using strings = std::vector<std::string>;

namespace {

const EVENT_TYPE MOVES[] = {JEV::SYSTEM::MOUSE_MOVE, JEV::SYSTEM::MOUSE_LEFT_DRAG,
                            JEV::SYSTEM::MOUSE_MIDDLE_DRAG, JEV::SYSTEM::MOUSE_RIGHT_DRAG};

struct notifyCounter {
  int count = 0;
  void bump() { ++count; }
};

class pickRayTest : public sceneWindowTest {
 protected:
  void SetUp() override {
    sceneWindowTest::SetUp();
    ray = scene.addPickRayNode("ray");
    ASSERT_NE(ray, nullptr);
  }
  size_t handlers(EVENT_TYPE type) { return win.getAbsoluteCallbacks(type).size(); }

  pickRayNode* ray = nullptr;
};

}  // namespace

TEST_F(pickRayTest, itStartsEnabledWithANullRayAndIsFoundByName) {
  EXPECT_TRUE(ray->enabled.cV());
  EXPECT_EQ(ray->rayOrigin.cV().norm(), 0.0f);
  EXPECT_EQ(ray->rayDirection.cV().norm(), 0.0f);
  EXPECT_EQ(ray->mouseX.cV(), 0.0f);
  EXPECT_EQ(ray->window, &win);
  EXPECT_FALSE(ray->registered);
  EXPECT_EQ(scene.getPickRayNode(L"ray"), ray);
  EXPECT_EQ(static_cast<const sgController&>(scene).getPickRayNode("ray"), ray);
}

TEST_F(pickRayTest, itsUpdateIsEmptyAndItsRenderWalksTheChildren) {
  walkProbe self(log, "ray"), child(log, "child");
  self.attach(*ray);
  node* c = scene.addNode(new node, "child");
  child.attach(*c);
  c->connect(ray, false);
  ray->update(win.getRenderingContext(), win.getUpdateContext());
  EXPECT_TRUE(log.empty());
  ray->render(win.getRenderingContext());
  EXPECT_EQ(log, (strings{"ray.render", "child.render"}));
}

TEST_F(pickRayTest, theFirstEnabledRenderRegistersForTheMouseOnce) {
  ray->enabled = false;
  ray->render(win.getRenderingContext());
  EXPECT_FALSE(ray->registered);
  for (EVENT_TYPE type : MOVES) EXPECT_EQ(handlers(type), 0u);
  ray->enabled = true;
  ray->render(win.getRenderingContext());
  ray->render(win.getRenderingContext());
  EXPECT_TRUE(ray->registered);
  for (EVENT_TYPE type : MOVES) EXPECT_EQ(handlers(type), 1u);
  EXPECT_EQ(handlers(JEV::SYSTEM::MOUSE_WHEEL), 0u);
}

TEST_F(pickRayTest, aMouseEventCopiesItsPositionAndNotifiesEachField) {
  ray->render(win.getRenderingContext());
  notifyCounter xs, ys;
  ray->mouseX.registerEventOnChangeValue(JEV::SYSTEM::makeDelegate(&xs, &notifyCounter::bump));
  ray->mouseY.registerEventOnChangeValue(JEV::SYSTEM::makeDelegate(&ys, &notifyCounter::bump));
  inputEvent e(JEV::SYSTEM::MOUSE_LEFT_DRAG, 120, 45, 3, 4, 0);
  win.getAbsoluteCallbacks(JEV::SYSTEM::MOUSE_LEFT_DRAG).front().invoke(&e);
  EXPECT_EQ(ray->mouseX.cV(), 120.0f);
  EXPECT_EQ(ray->mouseY.cV(), 45.0f);
  EXPECT_EQ(xs.count, 1);
  EXPECT_EQ(ys.count, 1);
  // The same position again still notifies.
  ray->onMouseMove(&e);
  EXPECT_EQ(xs.count, 2);
}

TEST_F(pickRayTest, erasingTheNodeWithdrawsItsHandlers) {
  ray->render(win.getRenderingContext());
  scene.erase("ray");
  for (EVENT_TYPE type : MOVES) EXPECT_EQ(handlers(type), 0u);
}

TEST_F(pickRayTest, withoutAMainWindowNothingIsRegistered) {
  pickRayNode bare(nullptr);
  bare.render(nullptr);
  EXPECT_TRUE(bare.registered);
  for (EVENT_TYPE type : MOVES) EXPECT_EQ(handlers(type), 0u);
}

TEST_F(pickRayTest, theRayIsTheRenderersPickRayUnderTheCameraAndViewportAbove) {
  using matrix4f = JEV::MATH::matrix4<float>;
  using point3f = JEV::MATH::point3<float>;
  // 90 degrees, square, near 1, far 100; the camera 5 back from the origin.
  const float n = 1.0f, f = 100.0f;
  const matrix4f projection(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, (f + n) / (f - n), 1, 0, 0,
                            -2 * f * n / (f - n), 0);
  matrix4f view;
  view[14] = 5.0f;
  auto* camera = scene.addCameraStateNode("camera");
  camera->projection = projection;
  camera->view = view;
  auto* viewport = scene.addViewportStateNode("viewport");
  viewport->set(10, 20, 200, 100, false, JEV::RENDERING::RENDERSTATE::viewportstate::VIEWPORT_FREE);
  viewport->connect(camera, false);
  ray->connect(viewport, false);
  ray->mouseX = 110.0f + 30.0f;
  ray->mouseY = 70.0f - 10.0f;
  scene.setRoot("camera");
  scene.render();

  const int rect[4] = {10, 20, 200, 100};
  point3f origin, direction;
  ASSERT_TRUE(
      JEV::RENDERING::renderer::pickRay(130, 40, view, projection, rect, origin, direction));
  EXPECT_LT((ray->rayOrigin.cV() - origin).norm(), 1e-5f);
  EXPECT_LT((ray->rayDirection.cV() - direction).norm(), 1e-5f);
  EXPECT_NEAR(ray->rayDirection.cV().norm(), 1.0f, 1e-5f);

  // The pixel at the viewport's centre looks straight down the camera's axis from the
  // near plane in front of the camera.
  ray->mouseX = 110.0f + 10.0f;
  ray->mouseY = 70.0f + 20.0f;
  scene.render();
  EXPECT_NEAR(ray->rayDirection.cV().z, 1.0f, 1e-4f);
  EXPECT_NEAR(ray->rayOrigin.cV().x, 0.0f, 1e-4f);
  EXPECT_NEAR(ray->rayOrigin.cV().z, -4.0f, 1e-3f);
}
