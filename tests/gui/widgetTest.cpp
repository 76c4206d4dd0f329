#include "jev3d/gui/widget.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "jev3d/gui/font.h"
#include "jev3d/gui/guiColorTable.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/panel.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/system/updateContext.h"
#include "support/recordingRenderer.h"

using namespace JEV;
using namespace JEV::GUI;
using JEV::CORE::color;
using JEV::RENDERING::RENDERSTATE::renderStateEnums;
using JEV::RENDERING::RENDERSTATE::scissorstate;
using strings = std::vector<std::string>;

namespace {

struct guiFixture : ::testing::Test {
  recordingRenderer device;
  RENDERING::renderingContext rc{&device, nullptr};
  // What the window gives the GUI: the whole client area as scissor.
  scissorstate windowClip{0, 0, 800, 600, true, false};

  void SetUp() override {
    rc.getRenderStateStack()->pushState(renderStateEnums::SCISSOR_STATE, &windowClip, true);
  }
  void TearDown() override {
    rc.getRenderStateStack()->popState(renderStateEnums::SCISSOR_STATE, false);
  }
  // One frame of a tree: the root, then its children inside their clips.
  void frame(widget& root) {
    if (!root.preRender()) return;
    root.render(&rc);
    root.postRender(&rc);
  }
};

// Records the events a widget hands to its delegates.
struct eventProbe {
  void onEvent(const SYSTEM::inputEvent* e) {
    types.push_back(int(e->type));
    xs.push_back(e->x);
    ys.push_back(e->y);
  }
  std::vector<int> types;
  std::vector<float> xs, ys;
};

void expectColor(const color& c, int r, int g, int b, int a) {
  EXPECT_EQ(int(c.r), r);
  EXPECT_EQ(int(c.g), g);
  EXPECT_EQ(int(c.b), b);
  EXPECT_EQ(int(c.a), a);
}

}  // namespace

TEST(widget, startsWithTheDocumentedFieldsAndStateBits) {
  widget w(L"w", nullptr, nullptr);
  EXPECT_EQ(w.getClass(), WC_WIDGET);
  EXPECT_EQ(w.getClassColor(), WCC_CUSTOM_WIDGET);
  EXPECT_TRUE(w.isEnabled());
  EXPECT_TRUE(w.isVisible());
  EXPECT_FALSE(w.checked.cV());
  EXPECT_EQ(w.value.cV(), 0.0f);
  EXPECT_EQ(w.valueMax.cV(), 100.0f);
  EXPECT_EQ(w.getWidth(), 50.0f);
  EXPECT_EQ(w.getHeight(), 50.0f);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(w.getMargin()[i], 5.0f);
  expectColor(w.getColorDisabled(), 150, 150, 150, 200);
  expectColor(w.getColorDown(), 160, 160, 160, 255);
  expectColor(w.getTextColorHighlighted(), 100, 100, 255, 255);
  expectColor(w.getTextColorDown(), 80, 80, 80, 255);
  int bits = 0;
  for (int b : {12, 13, 14, 15, 16, 17, 25, 26, 27}) bits |= 1 << b;
  EXPECT_EQ(w.getFlags().getMask(), bits);
  EXPECT_TRUE(w.getUseSchemaColor());

  panel p(L"p", nullptr, nullptr);
  EXPECT_EQ(p.getClass(), WC_PANEL);
  label l(L"l", nullptr, nullptr);
  EXPECT_EQ(l.getClass(), WC_LABEL);
  EXPECT_EQ(l.getIdFont(), L"ID_FONT1");
  EXPECT_EQ(l.getCaption(), L"label");
}

TEST_F(guiFixture, thePatchHasSixteenVerticesFourPixelsInAndTheTileCoordinates) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(100, 200, 300, 200);
  panel p(L"p", nullptr, nullptr);
  p.connect(&parent, false);
  p.setRect2D(10, 20, 120, 30);
  p.adjustUV(64, 16);
  frame(parent);

  // Columns at the widget's edges and 4 pixels in; rows the same, bottom first.
  const float xs[4] = {110, 114, 226, 230};
  const float ys[4] = {220, 224, 246, 250};
  const float us[4] = {64, 68, 76, 80};
  const float vs[4] = {16, 20, 28, 32};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      const int i = row * 4 + column;
      EXPECT_FLOAT_EQ(p.getPatchPositions()[3 * i], xs[column]) << i;
      EXPECT_FLOAT_EQ(p.getPatchPositions()[3 * i + 1], ys[row]) << i;
      EXPECT_FLOAT_EQ(p.getPatchTexCoords()[2 * i], us[column] / 256.0f) << i;
      EXPECT_FLOAT_EQ(p.getPatchTexCoords()[2 * i + 1], vs[row] / 256.0f) << i;
    }
  }
  // Nine quads covering the grid once: every cell's two triangles, 54 indices in all.
  const unsigned short* idx = widget::getPatchIndices();
  int cells[9] = {};
  for (int t = 0; t < 18; ++t) {
    int minimum = 16;
    for (int k = 0; k < 3; ++k) minimum = std::min<int>(minimum, idx[3 * t + k]);
    ++cells[(minimum / 4) * 3 + minimum % 4];
  }
  for (int c : cells) EXPECT_EQ(c, 2);
  // The panel uploads its three streams and draws 54 indices as triangles.
  EXPECT_EQ(device.only("renderIndexedGeometry"),
            strings({"renderIndexedGeometry 3 0 54", "renderIndexedGeometry 3 0 54"}));
  EXPECT_EQ(device.only("cacheIndexBuffer").size(), 2u);
}

TEST_F(guiFixture, nothingIsUploadedAgainUntilAStateBitAsksForIt) {
  panel p(L"p", nullptr, nullptr);
  frame(p);
  device.clearLog();
  frame(p);
  EXPECT_TRUE(device.only("cacheVertexBufferElement").empty());
  EXPECT_EQ(device.only("renderIndexedGeometry").size(), 1u);
  p.setWidth(80);
  device.clearLog();
  frame(p);
  // A new size writes the positions only.
  EXPECT_EQ(device.only("cacheVertexBufferElement"),
            strings({"cacheVertexBufferElement " +
                     std::to_string(RENDERING::vertexDeclaration::POS3) + " 16"}));
  p.setShadow(WS_NO_BACKGROUND);
  device.clearLog();
  frame(p);
  EXPECT_TRUE(device.only("renderIndexedGeometry").empty());
}

TEST_F(guiFixture, theLowerHalfTakesTheGradientSaturatedAndBytesSwapForOtherDevices) {
  panel p(L"p", nullptr, nullptr);
  p.setUseSchemaColor(false);
  p.setColorNormal(color(100, 200, 250, 128));
  p.gradient = 20;
  frame(p);
  // The recording device is of kind 99: red and blue trade places.
  for (int i = 0; i < 8; ++i) expectColor(p.getPatchColors()[i], 255, 220, 120, 128);
  for (int i = 8; i < 16; ++i) expectColor(p.getPatchColors()[i], 250, 200, 100, 128);
}

TEST_F(guiFixture, layoutFollowsTheParentAsItResizes) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(0, 0, 400, 300);
  panel child(L"child", nullptr, nullptr);
  child.connect(&parent, false);
  child.layout.width = WSL_HALF;
  child.layout.height = HSL_QUARTER;
  child.layout.setHorizontal(HA_RIGHT);
  child.layout.setVertical(VA_TOP);
  frame(parent);
  // Area 390 x 290 inside 5-pixel margins.
  EXPECT_FLOAT_EQ(child.getWidth(), 195);
  EXPECT_FLOAT_EQ(child.getHeight(), 72.5f);
  EXPECT_FLOAT_EQ(child.getPositionX(), 390 + 5 - 195);
  EXPECT_FLOAT_EQ(child.getPositionY(), 290 + 5 - 72.5f);

  parent.setSize(200, 100);
  frame(parent);
  EXPECT_FLOAT_EQ(child.getWidth(), 95);
  EXPECT_FLOAT_EQ(child.getHeight(), 22.5f);
  EXPECT_FLOAT_EQ(child.getPositionX(), 190 + 5 - 95);
  EXPECT_FLOAT_EQ(child.getPositionY(), 90 + 5 - 22.5f);
  // The patch moved with it.
  EXPECT_FLOAT_EQ(child.getPatchPositions()[0], 100);

  // Centre with percent offsets, full width less 10 pixels, a third of the height.
  child.layout.setHorizontal(HA_CENTER);
  child.layout.setVertical(VA_CENTER);
  child.layout.horizontalPerc = true;
  child.layout.horizontalOffset = 10;  // 10 % of 190
  child.layout.width = WSL_FULL;
  child.layout.widthOffset = -10;
  child.layout.height = HSL_THIRD;
  child.layout.update();
  EXPECT_FLOAT_EQ(child.getWidth(), 180);
  EXPECT_FLOAT_EQ(child.getHeight(), 30);
  EXPECT_FLOAT_EQ(child.getPositionX(), 95 + 5 - 90 + 19);
  EXPECT_FLOAT_EQ(child.getPositionY(), 45 + 5 - 15);
}

TEST(widgetLayout, sizeRulesClampToTheMinimumAndKeepTheFreeAxes) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(0, 0, 40, 400);
  panel child(L"child", nullptr, nullptr);
  child.connect(&parent, false);
  // Width set below the minimum is raised to it.
  child.setWidth(3);
  EXPECT_EQ(child.getWidth(), 16);
  child.layout.width = WSL_QUARTER;  // 30 / 4 = 7.5: clamped to 16
  child.layout.height = HSL_FULL;
  child.getFlags().setFlag(WF_FREE_HEIGHT);
  child.setHeight(33);
  child.layout.update();
  EXPECT_EQ(child.getWidth(), 16);
  EXPECT_EQ(child.getHeight(), 33);
  // With layout switched off nothing moves.
  child.layout.enable = true;
  child.layout.width = WSL_FULL;
  child.layout.update();
  EXPECT_EQ(child.getWidth(), 16);
}

TEST(widgetLayout, setPositionXKeepsTheOffsetsAndFreeAlignmentRestoresThePosition) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(0, 0, 200, 200);
  panel child(L"child", nullptr, nullptr);
  child.connect(&parent, false);
  child.setPosition(33, 44, 0);
  child.layout.setHorizontal(HA_LEFT);
  child.layout.horizontalOffset = 7;
  child.layout.update();
  EXPECT_EQ(child.getPositionX(), 12);
  child.setPositionX(80);
  EXPECT_EQ(child.getPositionX(), 80);
  EXPECT_EQ(child.layout.horizontalOffset, 7);
  child.layout.update();
  EXPECT_EQ(child.getPositionX(), 12);
  // Back to free: the position stored when the alignment was taken.
  child.layout.setHorizontal(HA_FREE);
  EXPECT_EQ(child.getPositionX(), 33);
  EXPECT_EQ(child.getPositionY(), 44);
}

TEST(widgetStates, stateChangesSetBitsRecolourAndCallTheirDelegates) {
  widget w(L"w", nullptr, nullptr);
  eventProbe probe;
  SYSTEM::inputEventDelegate onChecked(&probe, &eventProbe::onEvent);
  SYSTEM::inputEventDelegate onValue(&probe, &eventProbe::onEvent);
  w.registerInputEventCallBack(SYSTEM::CHECKED_CHANGE, onChecked);
  w.registerInputEventCallBack(SYSTEM::VALUE_CHANGE, onValue);
  w.getFlags().clearAllFlags();
  w.checked = true;
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_COLOR_CHANGED));
  w.value = 42;
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_VALUE_CHANGED));
  EXPECT_EQ(probe.types, std::vector<int>({SYSTEM::CHECKED_CHANGE, SYSTEM::VALUE_CHANGE}));

  // Disabled takes the disabled colour at once, and a disabled widget calls no delegates.
  w.getFlags().setFlag(WF_FADE_HIGHLIGHTED);
  w.doHighlighted();
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_FADE));
  w.enabled = false;
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_FADE));
  expectColor(w.getCurrentColor(), 150, 150, 150, 200);
  expectColor(w.getCurrentTextColor(), 100, 100, 100, 255);
  w.value = 1;
  EXPECT_EQ(probe.types.size(), 2u);
  // Unregistering removes just that handler.
  w.enabled = true;
  w.unRegisterInputEventCallBack(SYSTEM::VALUE_CHANGE, onValue);
  w.value = 2;
  w.checked = false;
  EXPECT_EQ(probe.types.back(), SYSTEM::CHECKED_CHANGE);
  EXPECT_EQ(probe.types.size(), 3u);
}

TEST(widgetStates, highlightDownAndNormalFollowTheirBits) {
  panel parent(L"parent", nullptr, nullptr);
  widget w(L"w", nullptr, nullptr);
  w.connect(&parent, false);
  // Without bits 23 and 24 no state fades.
  w.doHighlighted();
  w.doDown();
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_FADE));
  w.getFlags().setFlag(WF_FADE_DOWN);
  w.getFlags().setFlag(WF_LOCK_DOWN);
  w.doDown();
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_FADE));
  w.getFlags().clearFlag(WF_LOCK_DOWN);
  w.doDown();
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_FADE));
  // Normal with a disabled parent does not fade back.
  w.getFlags().clearFlag(WF_FADE);
  parent.enabled = false;
  w.doNormal();
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_FADE));
  parent.enabled = true;
  w.doNormal();
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_FADE));
  // Bit 8 hands the state to the children.
  widget child(L"c", nullptr, nullptr);
  child.connect(&w, false);
  child.getFlags().setFlag(WF_FADE_HIGHLIGHTED);
  w.doHighlighted();
  EXPECT_FALSE(child.getFlags().isFlagSet(WF_FADE));
  w.getFlags().setFlag(WF_STATE_TO_CHILDREN);
  w.doHighlighted();
  EXPECT_TRUE(child.getFlags().isFlagSet(WF_FADE));
}

TEST(widgetStates, aFadeRunsOverUpdateTicksAndRestartsFromTheCurrentColour) {
  widget w(L"w", nullptr, nullptr);
  w.setUseSchemaColor(false);
  w.setColorNormal(color(0, 0, 0, 255));
  w.setColorHighlighted(color(200, 100, 0, 255));
  w.setTextColorNormal(color(0, 0, 0, 255));
  w.setTextColorHighlighted(color(0, 0, 200, 255));
  w.getFlags().setFlag(WF_FADE_HIGHLIGHTED | WF_FADE_DOWN);
  w.doHighlighted();
  SYSTEM::updateContext uc;
  uc.updateElapsed = 50;
  w.getFlags().clearFlag(WF_COLOR_CHANGED);
  EXPECT_TRUE(w.preUpdate(nullptr, &uc));
  expectColor(w.getCurrentColor(), 40, 20, 0, 255);  // 50 of 250 ms
  expectColor(w.getCurrentTextColor(), 0, 0, 40, 255);
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_COLOR_CHANGED));
  w.preUpdate(nullptr, &uc);
  expectColor(w.getCurrentColor(), 80, 40, 0, 255);
  // Mid-fade a new fade starts from the colour on screen.
  w.doNormal();
  uc.updateElapsed = 125;
  w.preUpdate(nullptr, &uc);
  expectColor(w.getCurrentColor(), 40, 20, 0, 255);
  uc.updateElapsed = 500;
  w.preUpdate(nullptr, &uc);
  expectColor(w.getCurrentColor(), 0, 0, 0, 255);
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_FADE));
  // Over: further ticks change nothing.
  w.getFlags().clearFlag(WF_COLOR_CHANGED);
  w.preUpdate(nullptr, &uc);
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_COLOR_CHANGED));
  // An invisible widget asks for no update.
  w.visible = false;
  EXPECT_FALSE(w.preUpdate(nullptr, &uc));
}

TEST(widgetStates, postUpdateWalksOnlyVisibleChildren) {
  struct counting : widget {
    counting(const wchar_t* id, int& n) : widget(id, nullptr, nullptr), count(n) {}
    void update(RENDERING::renderingContext*, SYSTEM::updateContext*) override { ++count; }
    int& count;
  };
  int updates = 0;
  widget root(L"root", nullptr, nullptr);
  counting a(L"a", updates), b(L"b", updates), grandChild(L"g", updates);
  a.connect(&root, false);
  b.connect(&root, false);
  grandChild.connect(&a, false);
  b.visible = false;
  SYSTEM::updateContext uc;
  root.postUpdate(nullptr, &uc);
  EXPECT_EQ(updates, 2);
}

TEST_F(guiFixture, walksVisitEveryChildOfTheirSnapshotWhenAChildChangesTheList) {
  // Logs its update and render; the one given `kick` takes that sibling out of the list.
  struct walkProbe : widget {
    walkProbe(const std::wstring& id, std::vector<std::wstring>& l)
        : widget(id, nullptr, nullptr), log(l) {}
    void update(RENDERING::renderingContext*, SYSTEM::updateContext*) override {
      log.push_back(L"u" + getId());
      leave();
    }
    void render(RENDERING::renderingContext* context) override {
      widget::render(context);
      log.push_back(L"r" + getId());
      leave();
    }
    void leave() {
      if (kick) kick->disconnect(kick->getParent(), true);
      kick = nullptr;
    }
    std::vector<std::wstring>& log;
    widget* kick = nullptr;
  };
  // One child, a few, and more than a walk keeps on the stack.
  for (int n : {1, 3, 20}) {
    std::vector<std::wstring> log;
    widget root(L"root", nullptr, nullptr);
    std::vector<std::unique_ptr<walkProbe>> children;
    std::vector<std::wstring> updates, renders;
    for (int i = 0; i < n; ++i) {
      children.push_back(std::make_unique<walkProbe>(std::to_wstring(i), log));
      children.back()->connect(&root, false);
      updates.push_back(L"u" + std::to_wstring(i));
      renders.push_back(L"r" + std::to_wstring(i));
    }
    walkProbe& first = *children.front();
    walkProbe& last = *children.back();
    SYSTEM::updateContext uc;
    first.kick = n > 1 ? &last : nullptr;
    root.postUpdate(nullptr, &uc);
    EXPECT_EQ(log, updates) << n << " children";
    EXPECT_EQ(root.getSlavesCount(), n > 1 ? n - 1 : 1);

    if (n > 1) last.connect(&root, false);
    first.kick = n > 1 ? &last : nullptr;
    log.clear();
    frame(root);
    EXPECT_EQ(log, renders) << n << " children";
    EXPECT_EQ(root.getSlavesCount(), n > 1 ? n - 1 : 1);
  }
}

TEST_F(guiFixture, childrenAreClippedToTheParentsAreaAndSkippedWhenNothingIsLeft) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(100, 100, 200, 150);
  panel inside(L"inside", nullptr, nullptr);
  inside.connect(&parent, false);
  panel grand(L"grand", nullptr, nullptr);
  grand.connect(&inside, false);
  inside.setRect2D(150, 20, 100, 60);  // reaches past the parent's right side
  grand.setRect2D(0, 0, 30, 30);
  int called = 0;
  struct counter {
    void hit() { ++*n; }
    int* n;
  } count{&called};
  parent.sizePositionDelegate = SYSTEM::delegate(&count, &counter::hit);
  frame(parent);
  // The parent's clip: its area less 5-pixel margins; the child's is cut to it.
  EXPECT_EQ(parent.getScissor().computedX.cV(), 105);
  EXPECT_EQ(parent.getScissor().computedY.cV(), 105);
  EXPECT_EQ(parent.getScissor().computedWidth.cV(), 190);
  EXPECT_EQ(parent.getScissor().computedHeight.cV(), 140);
  EXPECT_EQ(inside.getScissor().computedX.cV(), 255);
  EXPECT_EQ(inside.getScissor().computedWidth.cV(), 40);  // 255..295 of 255..345
  EXPECT_EQ(device.only("renderIndexedGeometry").size(), 3u);
  EXPECT_EQ(called, 1);
  // The scissor stack is back to the window's rectangle.
  EXPECT_EQ(device.only("setScissorState").back(), "setScissorState 1 0 0 800 600");

  // Moved wholly outside: the child's patch is drawn (and clipped away by the scissor),
  // its own children are skipped, and the scissor is still popped.
  inside.setPositionX(400);
  device.clearLog();
  frame(parent);
  EXPECT_EQ(device.only("renderIndexedGeometry").size(), 2u);
  EXPECT_EQ(device.only("setScissorState").back(), "setScissorState 1 0 0 800 600");
  // A hidden child is neither drawn nor walked.
  inside.visible = false;
  device.clearLog();
  frame(parent);
  EXPECT_EQ(device.only("renderIndexedGeometry").size(), 1u);
  EXPECT_EQ(called, 3);
}

TEST(widgetTree, hitRectangleIsCutByTheParent) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(100, 100, 100, 100);
  panel child(L"child", nullptr, nullptr);
  child.connect(&parent, false);
  child.setRect2D(80, 10, 50, 50);
  EXPECT_TRUE(child.isInRect(185, 120));
  EXPECT_FALSE(child.isInRect(210, 120));  // in the child, outside the parent
  child.setPositionX(200);
  EXPECT_FALSE(child.isInRect(305, 120));
}

TEST(widgetTree, connectingOrdersChildrenAndFirstPlaneMovesToTheFront) {
  panel root(L"root", nullptr, nullptr);
  widget a(L"a", nullptr, nullptr), b(L"b", nullptr, nullptr), c(L"c", nullptr, nullptr);
  a.connect(&root, false);
  b.connect(&root, false);
  c.connectBefore(&root, &a, false);
  EXPECT_EQ(root.getChildAt(0), &c);
  EXPECT_EQ(root.getChildAt(2), &b);
  EXPECT_EQ(a.getParent(), &root);
  a.gotoInFirstPlane();
  EXPECT_EQ(root.getChildAt(2), &a);
  EXPECT_EQ(root.getSlavesCount(), 3);
  // A second parent takes the widget from the first.
  panel other(L"other", nullptr, nullptr);
  b.connect(&other, false);
  EXPECT_EQ(root.getSlavesCount(), 2);
  EXPECT_EQ(b.getParent(), &other);
  EXPECT_TRUE(other.isMeOrMyChild(&b));
  EXPECT_FALSE(root.isMeOrMyChild(&b));
  EXPECT_TRUE(b.isChildOfClassId(WC_PANEL));
  {
    widget temporary(L"t", nullptr, nullptr);
    temporary.connect(&root, false);
    EXPECT_EQ(root.getSlavesCount(), 3);
  }
  EXPECT_EQ(root.getSlavesCount(), 2);
}

TEST(widgetEvents, delegatesGetTheTypeLocalCoordinatesAndTheRedirectChain) {
  panel parent(L"parent", nullptr, nullptr);
  parent.setRect2D(100, 50, 300, 300);
  widget w(L"w", nullptr, nullptr);
  w.connect(&parent, false);
  w.setPosition(10, 20, 0);
  widget target(L"target", nullptr, nullptr);
  eventProbe probe, redirected;
  SYSTEM::inputEventDelegate d(&probe, &eventProbe::onEvent);
  SYSTEM::inputEventDelegate r(&redirected, &eventProbe::onEvent);
  w.registerInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN, d);
  target.registerInputEventCallBack(SYSTEM::MOUSE_LEFT_DOWN, r);
  w.setRedirect(&target);
  target.setRedirect(&w);  // a loop must end
  w.getFlags().setFlag(WF_LOCAL_COORDINATES);
  SYSTEM::inputEvent e(SYSTEM::EVENT_TYPE_COUNT, 150, 90, 0, 0, 0);
  w.invokeDelegateAndRedirect(SYSTEM::MOUSE_LEFT_DOWN, e);
  ASSERT_EQ(probe.types.size(), 1u);
  EXPECT_EQ(probe.types[0], SYSTEM::MOUSE_LEFT_DOWN);
  EXPECT_EQ(probe.xs[0], 40);
  EXPECT_EQ(probe.ys[0], 20);
  ASSERT_EQ(redirected.types.size(), 1u);
  EXPECT_EQ(redirected.xs[0], 150);  // a fresh copy, in window coordinates
  // Destroy events reach a disabled widget; others do not.
  w.enabled = false;
  SYSTEM::inputEvent down;
  w.invokeDelegate(SYSTEM::MOUSE_LEFT_DOWN, down);
  EXPECT_EQ(probe.types.size(), 1u);
  SYSTEM::inputEventDelegate destroyed(&probe, &eventProbe::onEvent);
  w.registerInputEventCallBack(SYSTEM::WIDGET_DESTROY, destroyed);
  w.invokeDelegate(SYSTEM::WIDGET_DESTROY, down);
  EXPECT_EQ(probe.types.back(), SYSTEM::WIDGET_DESTROY);
  w.unRegisterAllInputEventCallBack();
  w.invokeDelegate(SYSTEM::WIDGET_DESTROY, down);
  EXPECT_EQ(probe.types.size(), 2u);
}

TEST(widgetColors, schemaColoursComeFromTheTableAndTransparentOnesFromAnAncestor) {
  guiColorTable table;
  panel parent(L"parent", nullptr, nullptr);
  parent.setColorTable(&table);
  parent.setjustColor(WCC_PANEL);
  expectColor(parent.getColorNormal(), 0xD2, 0xD2, 0xD2, 255);
  expectColor(parent.getColorDisabled(), 0x46, 0x46, 0x46, 255);
  expectColor(parent.getTextColorNormal(), 6, 6, 6, 255);
  widget item(L"item", nullptr, nullptr);
  item.connect(&parent, false);
  item.setColorTable(&table);
  item.setjustColor(WCC_ITEM);
  // Normal and disabled of WCC_ITEM are transparent: the parent's show through.
  expectColor(item.getColorNormal(), 0xD2, 0xD2, 0xD2, 255);
  expectColor(item.getColorHighlighted(), 0xA9, 0xDB, 0xF6, 255);
  expectColor(item.getColorDisabled(), 0x46, 0x46, 0x46, 255);
  expectColor(item.getCurrentColor(), 0xD2, 0xD2, 0xD2, 255);
  // Own colours: the class is stored, nothing is copied.
  item.setColorNormal(color(1, 2, 3, 4));
  item.setjustColor(WCC_OWN);
  expectColor(item.getColorNormal(), 1, 2, 3, 4);
  expectColor(item.getCurrentColor(), 1, 2, 3, 4);
  EXPECT_EQ(guiColorTable::getClassName(WCC_TOOLTIP), L"WCC_TOOLTIP");
}

TEST_F(guiFixture, captionsFormatParseAndDrawInTheirRectangle) {
  widget w(L"w", nullptr, nullptr);
  w.setCaption(255, 16, true);
  EXPECT_EQ(w.getCaption(), L"ff");
  w.setCaption(-5, true);
  EXPECT_EQ(w.getCaption(), L"-5");
  w.setCaption(2.5f, true);
  EXPECT_EQ(w.getCaption(), L"2.5");
  EXPECT_EQ(w.getCaption2Int(0), 2);
  EXPECT_DOUBLE_EQ(w.getCaption2Double(0, 0), 3.0);
  w.valueType = WVT_INTEGER;
  w.setCaption(2.5f, true);
  EXPECT_EQ(w.getCaption(), L"3");
  w.setCaption(1e30f, true);
  EXPECT_EQ(w.getCaption(), L"2147483647");
  w.valueType = WVT_FLOAT;
  w.setCaption(std::wstring(L"3.14159"), true);
  EXPECT_DOUBLE_EQ(w.getCaption2Double(0, 2), 3.14);
  w.setCaption(std::wstring(L"12abc"), true);
  EXPECT_EQ(w.getCaption2Int(-1), -1);
  EXPECT_FLOAT_EQ(w.getCaption2Float(7.5f), 7.5f);

  // A label with a font on the device draws its text centred in its rectangle less
  // the margins.
  label l(L"l", nullptr, nullptr);
  l.setRect2D(100, 100, 100, 40);
  l.setCaption(std::wstring(L"abc"), true);
  frame(l);
  EXPECT_TRUE(device.only("renderText").empty());  // no font yet
  GUI::font sans(L"DejaVuSans", 16);
  l.getFontInstance().font = &sans;
  frame(l);
  // 24 x 16 box in the 90 x 30 rectangle at (105, 105): bottom 112, baseline 3 above.
  EXPECT_EQ(device.only("renderText"), strings({"renderText 3 138 115 0,0,0,255"}));
  // Autosize: the text box plus the margins.
  l.setCaptionAutosize(std::wstring(L"abcdef"), true);
  frame(l);
  EXPECT_EQ(l.getWidth(), 48 + 10);
  EXPECT_EQ(l.getHeight(), 16 + 10);
}

TEST(widgetTree, popUpMenuNameAndCornerBit) {
  widget w(L"w", nullptr, nullptr);
  w.setPopUpMenu(L"menuFile", true);
  EXPECT_EQ(w.getPopUpMenu(), L"menuFile");
  EXPECT_TRUE(w.getFlags().isFlagSet(WF_POPUP_AT_CORNER));
  w.removePopUpMenu();
  EXPECT_EQ(w.getPopUpMenu(), L"");
  EXPECT_FALSE(w.getFlags().isFlagSet(WF_POPUP_AT_CORNER));
  // Outside any controller the widget holds the menu itself, and shows it there.
  menu m(L"menuEdit", nullptr, nullptr);
  m.visible = false;
  w.setPopUpMenu(&m, false);
  EXPECT_EQ(w.getPopUpMenu(), L"menuEdit");
  EXPECT_EQ(w.getPopUpMenuPointer(), &m);
  w.showPopUpMenu(30, 90);
  EXPECT_TRUE(m.isVisible());
  EXPECT_EQ(m.getPositionY() + m.getHeight(), 90.0f);
  w.closePopUpMenu();
  EXPECT_FALSE(m.isVisible());
  w.setPopUpMenu(L"byName", false);
  EXPECT_EQ(w.getPopUpMenuPointer(), nullptr);
}

TEST(widgetIcons, iconsMapToTheirResourceIds) {
  EXPECT_EQ(widget::iconToIdTexture(widget::ICON_AXIS), L"GUI_AXIS_ICON");
  EXPECT_EQ(widget::iconToIdTexture(widget::ICON_FILE_SAVE_AS), L"GUI_FILE_SAVE_AS_ICON");
  EXPECT_EQ(widget::iconToIdTexture(widget::ICON_ARROW_DOWN), L"GUI_ARROW_DOWN_ICON");
  EXPECT_EQ(widget::iconToIdTexture(widget::ICON_NULL), L"GUI_NULL_ICON");
  EXPECT_EQ(widget::iconToIdTexture(widget::GUI_ICON(27)), L"");
  EXPECT_EQ(widget::iconToIdTexture(widget::GUI_ICON(-1)), L"");
}
