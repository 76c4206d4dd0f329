#include "jev3d/renderer/renderingContext.h"

#include <gtest/gtest.h>

#include "jev3d/renderer/cameraStack.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/renderer/transformState.h"
#include "support/recordingRenderer.h"

using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using matrix4f = JEV::MATH::matrix4<float>;
using point3f = JEV::MATH::point3<float>;

TEST(renderingContext, aCopySharesStacksAndTakesTheRectangle) {
  recordingRenderer device;
  renderingContext rc(&device, nullptr);
  EXPECT_EQ(rc.windowX.cV(), 0);
  EXPECT_EQ(rc.windowY.cV(), 0);
  rc.windowWidth = 640;
  rc.windowHeight = 480;
  renderingContext copy(rc);
  EXPECT_EQ(copy.getRenderer(), &device);
  EXPECT_EQ(copy.getRenderStateStack(), rc.getRenderStateStack());
  EXPECT_EQ(copy.getTransformStack(), rc.getTransformStack());
  EXPECT_EQ(copy.getCameraStack(), rc.getCameraStack());
  EXPECT_EQ(copy.windowWidth.cV(), 640);
  EXPECT_EQ(copy.windowHeight.cV(), 480);

  alphastate a(true, alphastate::ALPHA_LESS, 0.5f);
  copy.getRenderStateStack()->pushState(alphastate::ALPHA_STATE, &a, true);
  EXPECT_EQ(&rc.getRenderStateStack()->getCurrentAlphaState(), &a);
}

TEST(renderingContext, discardReturnsEveryStackToItsBottomWithoutDeviceCalls) {
  recordingRenderer device;
  renderingContext rc(&device, nullptr);
  alphastate a;
  transformState t;
  cameraState c;
  rc.getRenderStateStack()->pushState(alphastate::ALPHA_STATE, &a, false);
  rc.getTransformStack()->push(&t, false);
  rc.getCameraStack()->push(&c, false);
  rc.getCameraStack()->push(&c, false);
  rc.discard();
  EXPECT_EQ(rc.getRenderStateStack()->getDepth(alphastate::ALPHA_STATE), 1);
  EXPECT_EQ(rc.getTransformStack()->getDepth(), 0);
  EXPECT_EQ(rc.getCameraStack()->getDepth(), 1);
  EXPECT_TRUE(device.calls.empty());
}

TEST(renderingContext, transformsComposeChildFirstAndRestore) {
  recordingRenderer device;
  renderingContext rc(&device, nullptr);
  matrix4f scale;
  scale[0] = scale[5] = scale[10] = 2.0f;
  matrix4f shift;
  shift[12] = 1.0f;
  transformState parent(shift), child(scale);
  child.connect(&parent, false);
  parent.render(&rc);
  const std::vector<std::string>& calls = device.calls;
  // The child scales first, then the parent shifts: (1,0,0) goes to (3,0,0).
  EXPECT_EQ(calls, (std::vector<std::string>{
                       "setTransformState 1,0,0,0,0,1,0,0,0,0,1,0,1,0,0,1",
                       "setTransformState 2,0,0,0,0,2,0,0,0,0,2,0,1,0,0,1",
                       "setTransformState 1,0,0,0,0,1,0,0,0,0,1,0,1,0,0,1",
                       "setTransformState 1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1",
                   }));
}

TEST(renderer, projectAndUnprojectAreInverseUnderAPerspectiveCamera) {
  recordingRenderer device;
  // Row-vector perspective: 90 degrees, aspect 4:3, near 1, far 100.
  const float n = 1.0f, f = 100.0f;
  matrix4f projection(0.75f, 0, 0, 0, 0, 1, 0, 0, 0, 0, (f + n) / (n - f), -1, 0, 0,
                      2 * f * n / (n - f), 0);
  matrix4f view;
  view[14] = -10.0f;
  device.setCameraState(projection, view);
  const point3f object(1.5f, -2.0f, 3.0f);
  point3f window, back;
  ASSERT_TRUE(device.project(object, window));
  EXPECT_GT(window.z, 0.0f);
  EXPECT_LT(window.z, 1.0f);
  ASSERT_TRUE(device.unproject(window, back));
  EXPECT_NEAR(back.x, object.x, 1e-3f);
  EXPECT_NEAR(back.y, object.y, 1e-3f);
  EXPECT_NEAR(back.z, object.z, 1e-3f);

  // The pick ray through the point's pixel passes through the point.
  point3f origin, direction;
  ASSERT_TRUE(device.pickRay(int(window.x), int(window.y), origin, direction));
  EXPECT_NEAR(direction.squaredNorm(), 1.0f, 1e-5f);
  const point3f toObject = object - origin;
  const float along = toObject * direction;
  EXPECT_LT((toObject - direction * along).squaredNorm(), 0.05f);

  // A singular camera has no inverse.
  device.setCameraState(matrix4f(true), view);
  EXPECT_FALSE(device.unproject(window, back));
}
