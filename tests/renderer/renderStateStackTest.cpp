#include "jev3d/renderer/renderStateStack.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/clipPlanestate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/scene/sgController.h"
#include "jev3d/system/delegate.h"
#include "support/recordingRenderer.h"

using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using JEV::RENDERING::INSTANCING::renderTargetInstance;
using JEV::RENDERING::INSTANCING::textureInstance;
using strings = std::vector<std::string>;

namespace {

// A leaf that writes the alpha function in force into the device log when drawn.
class probeNode : public JEV::SG::node {
 public:
  explicit probeNode(recordingRenderer& d) : device(d) {}
  void render(renderingContext* rc) override {
    const alphastate& a = rc->getRenderStateStack()->getCurrentAlphaState();
    device.calls.push_back("probe " + std::to_string(int(a.function)));
    JEV::SG::node::render(rc);
  }
  recordingRenderer& device;
};

struct stackFixture : ::testing::Test {
  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  renderStateStack& stack = *rc.getRenderStateStack();
};

}  // namespace

TEST_F(stackFixture, bottomEntriesFillTheSlotsInUseWithoutDeviceCalls) {
  EXPECT_TRUE(device.calls.empty());
  const int single[] = {0, 1, 2, 3, 4, 34, 35, 36, 73, 74, 77, 79};
  for (int s : single) EXPECT_EQ(stack.getDepth(s), 1) << "slot " << s;
  for (int s = 10; s <= 33; ++s) EXPECT_EQ(stack.getDepth(s), 1) << "slot " << s;
  for (int s = 40; s <= 72; ++s) EXPECT_EQ(stack.getDepth(s), 1) << "slot " << s;
  for (int s = 180; s <= 185; ++s) EXPECT_EQ(stack.getDepth(s), 1) << "slot " << s;
  // The window target's own rectangles lie on the plain bottom entries.
  EXPECT_EQ(stack.getDepth(75), 2);
  EXPECT_EQ(stack.getDepth(76), 2);
  renderTargetInstance& window = stack.getCurrentRenderTargetState();
  EXPECT_EQ(&stack.getCurrentScissorState(), &window.scissor);
  EXPECT_EQ(&stack.getCurrentViewportState(), &window.viewport);
  for (int s : {5, 9, 37, 78, 80, 179, 186, 255}) EXPECT_EQ(stack.getDepth(s), 0) << "slot " << s;

  for (int l = 0; l < 24; ++l) {
    EXPECT_EQ(stack.getCurrentLightState(lightstate::LIGHT_SOURCE(l)).light, unsigned(l));
  }
  for (int p = 0; p < 6; ++p) {
    EXPECT_EQ(stack.getCurrentClipPlaneState(clipPlanestate::CLIP_PLANE(p)).plane, p);
  }
  for (int t = 0; t < 33; ++t) {
    EXPECT_EQ(stack.getCurrentTextureState(textureInstance::TEXTURE_ACTIVE(t)).unit, t);
  }
  EXPECT_EQ(stack.getCurrentPointSizeState().size.cV(), 1.0f);
  EXPECT_EQ(stack.getCurrentAlphaState().function, alphastate::ALPHA_ALWAYS);
}

TEST_F(stackFixture, popsNeverRemoveTheBottomEntries) {
  const renderstate* bottom = stack.getCurrentState(alphastate::ALPHA_STATE);
  stack.popState(alphastate::ALPHA_STATE, true);
  stack.popState(alphastate::ALPHA_STATE, true);
  EXPECT_EQ(stack.getDepth(alphastate::ALPHA_STATE), 1);
  EXPECT_EQ(stack.getCurrentState(alphastate::ALPHA_STATE), bottom);
  // Each pop still applies what is on top.
  EXPECT_EQ(device.calls, (strings{"setAlphaState 0 7 0", "setAlphaState 0 7 0"}));

  stack.popState(alphastate::RENDER_TARGET_STATE, true);
  EXPECT_EQ(stack.getDepth(75), 2);
  EXPECT_EQ(stack.getDepth(76), 2);
  EXPECT_EQ(stack.getDepth(79), 1);

  alphastate a(true, alphastate::ALPHA_GREATER, 0.5f);
  EXPECT_TRUE(stack.pushState(alphastate::ALPHA_STATE, &a, false));
  rc.discard();
  EXPECT_EQ(stack.getCurrentState(alphastate::ALPHA_STATE), bottom);
  EXPECT_EQ(device.calls.size(), 2u) << "discard makes no device call";
}

TEST_F(stackFixture, statesNestAndRestoreAcrossThreeLevels) {
  alphastate outer(true, alphastate::ALPHA_GREATER, 0.5f);
  blendstate middle(true, blendstate::SRC_ONE, blendstate::DST_ZERO);
  alphastate inner(true, alphastate::ALPHA_EQUAL, 0.25f);
  probeNode leaf(device), sibling(device);
  middle.connect(&outer, false);
  inner.connect(&middle, false);
  leaf.connect(&inner, false);
  sibling.connect(&middle, false);

  outer.render(&rc);
  EXPECT_EQ(device.calls, (strings{
                              "setAlphaState 1 4 0.5",   // outer pushed
                              "setBlendState 1 1 0",     // middle pushed
                              "setAlphaState 1 2 0.25",  // inner pushed
                              "probe 2",
                              "setAlphaState 1 4 0.5",  // inner popped: outer again
                              "probe 4",                // the sibling sees outer
                              "setBlendState 0 4 5",    // middle popped: bottom
                              "setAlphaState 0 7 0",    // outer popped: bottom
                          }));
  EXPECT_EQ(stack.getDepth(alphastate::ALPHA_STATE), 1);
  EXPECT_EQ(stack.getDepth(alphastate::BLEND_STATE), 1);
  EXPECT_EQ(device.getCurrentAlphaState().function, alphastate::ALPHA_ALWAYS);
}

TEST_F(stackFixture, aStateErasedWhileItsSubtreeIsDrawnComesOffWithoutBeingApplied) {
  JEV::SG::sgController scene(nullptr);
  auto* outer = static_cast<alphastate*>(
      scene.addNode(new alphastate(true, alphastate::ALPHA_GREATER, 0.5f), "outer"));
  auto* inner = static_cast<alphastate*>(
      scene.addNode(new alphastate(true, alphastate::ALPHA_LESS, 0.25f), "inner"));
  ASSERT_TRUE(outer && inner);
  probeNode leaf(device);
  inner->connect(outer, false);
  leaf.connect(inner, false);
  struct eraser {
    JEV::SG::sgController& scene;
    void onRender(renderingContext*) { scene.erase("inner"); }
  } erase{scene};
  leaf.renderDelegate = JEV::SYSTEM::makeDelegate(&erase, &eraser::onRender);
  outer->render(&rc);
  EXPECT_EQ(device.calls, (strings{"setAlphaState 1 4 0.5", "setAlphaState 1 1 0.25", "probe 1",
                                   "setAlphaState 0 7 0"}))
      << "the erased state is taken off without an apply; the outer one restores the bottom";
  EXPECT_EQ(stack.getDepth(alphastate::ALPHA_STATE), 1);
}

TEST_F(stackFixture, aRepeatedStateReachesTheDeviceEveryTimeUnlessItSkipsUnchangedOnes) {
  alphastate first(true, alphastate::ALPHA_LESS, 0.1f);
  alphastate same(true, alphastate::ALPHA_LESS, 0.1f);
  probeNode leaf(device);
  same.connect(&first, false);
  leaf.connect(&same, false);
  first.render(&rc);
  // No cache in the stack: push, push, pop, pop all call the renderer, which sends each.
  EXPECT_EQ(device.count("setAlphaState"), 4);
  EXPECT_EQ(device.countSent("setAlphaState"), 4);

  // A device that skips unchanged states drops the second push and the first pop.
  device.clearLog();
  device.skipUnchangedStates = true;
  first.render(&rc);
  EXPECT_EQ(device.count("setAlphaState"), 4);
  EXPECT_EQ(device.sent, (strings{"setAlphaState 1 1 0.1", "setAlphaState 0 7 0"}));
}

TEST_F(stackFixture, pushesWithoutApplyBatchIntoOneDeviceCall) {
  blendstate b1(true, blendstate::SRC_ONE, blendstate::DST_ONE);
  blendstate b2(true, blendstate::SRC_ZERO, blendstate::DST_ONE);
  stack.pushState(blendstate::BLEND_STATE, &b1, false);
  stack.pushState(blendstate::BLEND_STATE, &b2, true);
  EXPECT_EQ(device.calls, (strings{"setBlendState 1 0 1"}));
  // Pops the same way: the bottom entry goes to the device once.
  device.clearLog();
  stack.popState(blendstate::BLEND_STATE, false);
  stack.popState(blendstate::BLEND_STATE, true);
  EXPECT_EQ(device.calls, (strings{"setBlendState 0 4 5"}));
  EXPECT_EQ(stack.getDepth(blendstate::BLEND_STATE), 1);
}

TEST_F(stackFixture, zbufferThatClearsFirstIsSentEveryTimeEvenWhenSkippingUnchangedStates) {
  device.skipUnchangedStates = true;
  zbufferstate z(true, zbufferstate::DEPTH_LESS, false, true);
  stack.pushState(zbufferstate::ZBUFFER_STATE, &z, true);
  stack.popState(zbufferstate::ZBUFFER_STATE, false);
  stack.pushState(zbufferstate::ZBUFFER_STATE, &z, true);
  EXPECT_EQ(device.countSent("setZbufferState 1 1 0 1"), 2);
  // Without clearing first, the same state is skipped the second time.
  zbufferstate plain(true, zbufferstate::DEPTH_LESS, true, false);
  stack.pushState(zbufferstate::ZBUFFER_STATE, &plain, true);
  stack.pushState(zbufferstate::ZBUFFER_STATE, &plain, true);
  EXPECT_EQ(device.countSent("setZbufferState 1 1 1 0"), 1);
}

TEST_F(stackFixture, lightTwentyThreeUsesSlotThirtyThree) {
  lightstate light;
  light.light = 23;
  light.enable = true;
  probeNode leaf(device);
  leaf.connect(&light, false);
  light.render(&rc);
  EXPECT_EQ(device.only("setLightState"), (strings{"setLightState 23 0 1 200,200,200,255",
                                                   "setLightState 23 0 0 200,200,200,255"}));
  EXPECT_EQ(stack.getDepth(33), 1);

  // A light past the slots draws its subtree without touching the stacks.
  device.clearLog();
  lightstate beyond;
  beyond.light = 24;
  probeNode other(device);
  other.connect(&beyond, false);
  beyond.render(&rc);
  EXPECT_EQ(device.calls, (strings{"probe 7"}));
}

TEST_F(stackFixture, scissorAtWindowEdgesAndEmptySizes) {
  scissorstate edge(-10, -5, 100, 50, true, false);
  EXPECT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &edge, true));
  EXPECT_EQ(device.calls.back(), "setScissorState 1 0 0 100 50");

  scissorstate empty(20, 20, 0, 0, true, false);
  EXPECT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &empty, true));
  EXPECT_EQ(device.calls.back(), "setScissorState 1 20 20 0 0");

  device.clearLog();
  scissorstate negative(20, 20, -5, 30, true, false);
  EXPECT_FALSE(stack.pushState(scissorstate::SCISSOR_STATE, &negative, true));
  EXPECT_TRUE(device.calls.empty()) << "the device keeps the last rectangle";
  EXPECT_EQ(negative.computedWidth.cV(), 0);
  EXPECT_EQ(stack.getDepth(scissorstate::SCISSOR_STATE), 5) << "the stack has the entry";
  EXPECT_EQ(device.getCurrentScissorState().computedWidth.cV(), 0);
  EXPECT_EQ(device.getCurrentScissorState().computedX.cV(), 20);

  // Popping applies the rectangle below as it was computed, without sizing it again.
  stack.popState(scissorstate::SCISSOR_STATE, true);
  EXPECT_EQ(device.calls, (strings{"setScissorState 1 20 20 0 0"}));
}

TEST_F(stackFixture, nestedScissorsIntersect) {
  scissorstate parent(10, 10, 100, 100, true, false);
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &parent, true));

  scissorstate inside(50, 60, 100, 100, true, true);
  EXPECT_TRUE(inside.computeSize(&device));
  EXPECT_EQ((std::vector<int>{inside.computedX.cV(), inside.computedY.cV(),
                              inside.computedWidth.cV(), inside.computedHeight.cV()}),
            (std::vector<int>{50, 60, 60, 50}));

  scissorstate lowerLeft(0, 5, 30, 30, true, true);
  EXPECT_TRUE(lowerLeft.computeSize(&device));
  EXPECT_EQ((std::vector<int>{lowerLeft.computedX.cV(), lowerLeft.computedY.cV(),
                              lowerLeft.computedWidth.cV(), lowerLeft.computedHeight.cV()}),
            (std::vector<int>{10, 10, 20, 25}));

  scissorstate right(111, 20, 10, 10, true, true);
  EXPECT_FALSE(right.computeSize(&device)) << "entirely right of the parent";
  scissorstate narrow(0, 20, 5, 10, true, true);
  EXPECT_FALSE(narrow.computeSize(&device)) << "shrinks to a negative width";
  EXPECT_EQ(narrow.computedWidth.cV(), 0);

  // A huge request is cut to the parent without its right edge wrapping.
  scissorstate huge(50, 20, 2147483000, 10, true, true);
  EXPECT_TRUE(huge.computeSize(&device));
  EXPECT_EQ(huge.computedWidth.cV(), 60);
}

TEST_F(stackFixture, theDeviceCopyOfAClipFollowsPushesAndPopsAndSkipsOnlyRepeats) {
  device.skipUnchangedStates = true;
  auto rectangleOf = [](const scissorstate& s) {
    return std::vector<int>{s.x.cV(),
                            s.y.cV(),
                            s.width.cV(),
                            s.height.cV(),
                            s.computedX.cV(),
                            s.computedY.cV(),
                            s.computedWidth.cV(),
                            s.computedHeight.cV(),
                            s.intersectParent.cV()};
  };
  // The parent's left edge follows a field: the copy takes the value in force.
  JEV::SYSTEM::fieldBase<int> left{10};
  scissorstate parent(0, 10, 100, 100, true, false);
  parent.x.connect(&left, true);
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &parent, true));
  EXPECT_EQ(rectangleOf(device.getCurrentScissorState()),
            (std::vector<int>{10, 10, 100, 100, 10, 10, 100, 100, 0}));

  scissorstate inside(50, 60, 100, 100, true, true);
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &inside, true));
  EXPECT_EQ(rectangleOf(device.getCurrentScissorState()),
            (std::vector<int>{50, 60, 100, 100, 50, 60, 60, 50, 1}));

  // The pop gives the device the parent again, requested and computed.
  stack.popState(scissorstate::SCISSOR_STATE, true);
  EXPECT_EQ(rectangleOf(device.getCurrentScissorState()),
            (std::vector<int>{10, 10, 100, 100, 10, 10, 100, 100, 0}));
  EXPECT_EQ(device.countSent("setScissorState 1 10 10 100 100"), 2);

  // The same rectangle again is not sent; one that differs only in what was asked for
  // (not in what the device gets) is not either, but the copy takes it.
  device.clearLog();
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &parent, true));
  scissorstate same(5, 10, 200, 100, true, true);
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &same, true));
  EXPECT_EQ(device.count("setScissorState"), 2);
  EXPECT_TRUE(device.sent.empty());
  EXPECT_EQ(rectangleOf(device.getCurrentScissorState()),
            (std::vector<int>{5, 10, 200, 100, 10, 10, 100, 100, 1}));
  // A change of the enable alone is sent.
  scissorstate disabled(10, 10, 100, 100, false, false);
  ASSERT_TRUE(stack.pushState(scissorstate::SCISSOR_STATE, &disabled, true));
  EXPECT_EQ(device.sent, (strings{"setScissorState 0 10 10 100 100"}));
  EXPECT_FALSE(device.getCurrentScissorState().enable.cV());
}

TEST_F(stackFixture, viewportSizes) {
  viewportstate wide(0, 0, 1600, 1000, false, viewportstate::VIEWPORT_16_9);
  EXPECT_TRUE(wide.computeSize(&device));
  EXPECT_EQ(wide.computedHeight.cV(), 900);
  EXPECT_EQ(wide.computedY.cV(), 50);
  EXPECT_EQ(wide.computedWidth.cV(), 1600);

  // Unlike the scissor, negative positions stand.
  viewportstate offWindow(-20, -10, 100, 100, false, viewportstate::VIEWPORT_FREE);
  EXPECT_TRUE(offWindow.computeSize(&device));
  EXPECT_EQ(offWindow.computedX.cV(), -20);
  EXPECT_EQ(offWindow.computedY.cV(), -10);

  viewportstate zero(5, 5, 0, 0, false, viewportstate::VIEWPORT_FREE);
  EXPECT_TRUE(zero.computeSize(&device));
  viewportstate negative(5, 5, 10, -1, false, viewportstate::VIEWPORT_FREE);
  device.clearLog();
  EXPECT_FALSE(stack.pushState(viewportstate::VIEWPORT_STATE, &negative, true));
  EXPECT_TRUE(device.calls.empty());
}

TEST_F(stackFixture, viewportComparesXWithTheParentsRequestedX) {
  viewportstate grand(0, 0, 200, 200, false, viewportstate::VIEWPORT_FREE);
  ASSERT_TRUE(stack.pushState(viewportstate::VIEWPORT_STATE, &grand, true));
  viewportstate parent(-50, 0, 100, 100, true, viewportstate::VIEWPORT_FREE);
  ASSERT_TRUE(stack.pushState(viewportstate::VIEWPORT_STATE, &parent, true));
  EXPECT_EQ(parent.computedX.cV(), 0);
  EXPECT_EQ(parent.computedWidth.cV(), 50);

  // -20 is not left of the parent's requested -50, so it is not moved to the parent's
  // computed 0, where a scissor would be.
  viewportstate child(-20, 0, 30, 30, true, viewportstate::VIEWPORT_FREE);
  EXPECT_TRUE(child.computeSize(&device));
  EXPECT_EQ(child.computedX.cV(), -20);
  EXPECT_EQ(child.computedWidth.cV(), 30);
  scissorstate scissorParent(0, 0, 50, 100, true, false);
  stack.pushState(scissorstate::SCISSOR_STATE, &scissorParent, true);
  scissorstate scissorChild(-20, 0, 30, 30, true, true);
  EXPECT_TRUE(scissorChild.computeSize(&device));
  EXPECT_EQ(scissorChild.computedX.cV(), 0);

  viewportstate below(10, -30, 10, 10, true, viewportstate::VIEWPORT_FREE);
  EXPECT_FALSE(below.computeSize(&device)) << "cut to a negative height";
}

TEST_F(stackFixture, aRenderTargetBringsItsScissorAndViewport) {
  renderTargetInstance target;
  target.scissor.set(0, 0, 64, 32, true, false);
  target.viewport.set(0, 0, 64, 32, false, viewportstate::VIEWPORT_FREE);
  renderTargetInstance& window = stack.getCurrentRenderTargetState();
  device.label(&window);  // T0
  device.label(&target);  // T1

  EXPECT_TRUE(stack.pushState(renderTargetInstance::RENDER_TARGET_STATE, &target, true));
  EXPECT_EQ(device.calls, (strings{"beginScene T1", "clear T1", "setScissorState 1 0 0 64 32",
                                   "setViewportState 0 0 64 32"}));
  EXPECT_EQ(&stack.getCurrentScissorState(), &target.scissor);
  EXPECT_EQ(&stack.getCurrentViewportState(), &target.viewport);

  device.clearLog();
  stack.popState(renderTargetInstance::RENDER_TARGET_STATE, true);
  EXPECT_EQ(device.calls, (strings{"setViewportState 0 0 320 240", "setScissorState 0 0 0 320 240",
                                   "beginScene T0"}))
      << "the window is begun again but not cleared";
  EXPECT_EQ(&stack.getCurrentScissorState(), &window.scissor);
  EXPECT_EQ(stack.getDepth(75), 2);
  EXPECT_EQ(stack.getDepth(76), 2);
  EXPECT_EQ(stack.getDepth(79), 1);
}

TEST_F(stackFixture, textureInstancesUseTheirUnitsSlot) {
  textureInstance unit3(textureInstance::TEXTURE3);
  probeNode leaf(device);
  leaf.connect(&unit3, false);
  device.label(&stack.getCurrentTextureState(textureInstance::TEXTURE3));  // T0
  device.label(&unit3);                                                    // T1
  unit3.render(&rc);
  EXPECT_EQ(device.calls, (strings{"setTextureState 3 T1", "probe 7", "setTextureState 3 T0"}));
}

TEST_F(stackFixture, outOfRangeSlotsAndNullStatesAreRefused) {
  alphastate a;
  EXPECT_FALSE(stack.pushState(256, &a, true));
  EXPECT_FALSE(stack.pushState(-1, &a, true));
  EXPECT_FALSE(stack.pushState(alphastate::ALPHA_STATE, nullptr, true));
  stack.popState(300, true);
  // A free slot takes entries but has nothing to apply.
  EXPECT_FALSE(stack.pushState(5, &a, true));
  stack.popState(5, false);
  EXPECT_EQ(stack.getDepth(5), 0);
  EXPECT_TRUE(device.calls.empty());
}
