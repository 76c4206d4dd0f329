#include "jev3d/system/inputContext.h"

#include <gtest/gtest.h>

#include <memory>

#include "jev3d/system/eventDelegate.h"

using namespace JEV::SYSTEM;

namespace {

// One context for the suite: it is large, and built once per window in real use.
inputContext& sharedContext() {
  static std::unique_ptr<inputContext> context = std::make_unique<inputContext>();
  return *context;
}

class inputContextTest : public ::testing::Test {
 protected:
  void SetUp() override { sharedContext().clear(); }
  inputContext& ctx = sharedContext();
};

}  // namespace

TEST_F(inputContextTest, RepeatedDownCountsOnceAndStrayUpNeverGoesBelowZero) {
  const int a = 'A', shift = 16, z = 0xFFFF;
  ctx.keys[a] = true;
  ctx.keys[a] = true;  // auto-repeat writes true again and notifies
  ctx.keys[a] = true;
  EXPECT_EQ(ctx.getKeyDownCount(), 1u);
  EXPECT_TRUE(ctx.keysLatch[a].cV());
  ctx.keys[shift] = true;
  ctx.keys[z] = true;
  EXPECT_EQ(ctx.getKeyDownCount(), 3u);
  ctx.keys[a] = false;
  ctx.keys[a] = false;
  EXPECT_EQ(ctx.getKeyDownCount(), 2u);
  EXPECT_FALSE(ctx.keysLatch[a].cV());

  ctx.keys[shift] = false;
  ctx.keys[z] = false;
  EXPECT_EQ(ctx.getKeyDownCount(), 0u);
  ctx.keys['Q'] = false;  // an up with no down
  EXPECT_EQ(ctx.getKeyDownCount(), 0u);
  ctx.keys['Q'] = true;
  EXPECT_EQ(ctx.getKeyDownCount(), 1u);
}

TEST_F(inputContextTest, KeysAreFieldsThatCanBeWatched) {
  struct watcher {
    int heard = 0;
    void onChange() { ++heard; }
  } w;
  const auto d = makeDelegate(&w, &watcher::onChange);
  ctx.keys[65].registerEventOnChangeValue(d);
  ctx.keys[65] = true;
  ctx.keys[65] = true;
  EXPECT_EQ(w.heard, 2);
  ctx.keys[65].removeEventOnChangeValue(d);
  ctx.keys[65] = false;
  EXPECT_EQ(w.heard, 2);
  EXPECT_EQ(ctx.getKeyDownCount(), 0u) << "the context's own delegate stays registered";
}

TEST_F(inputContextTest, ClearForgetsQueueMouseAndKeys) {
  ctx.keys[10] = true;
  ctx.keys[20] = true;
  ctx.leftDown = ctx.rightDrag = true;
  ctx.mouseX = 12;
  ctx.mouseY = 34;
  ctx.dragX = 5;
  auto* someWidget = reinterpret_cast<JEV::GUI::widget*>(&ctx);
  ctx.widgetBelowMouse = ctx.draggedWidget = ctx.pressedWidget = someWidget;
  ctx.events.emplace_back(
      KEY_DOWN, sharedPointer<inputEvent>(new inputEvent(KEY_DOWN, nullptr, nullptr, 10, 0)));
  ctx.clear();
  EXPECT_TRUE(ctx.events.empty());
  EXPECT_FALSE(ctx.isMouseLeftButtonDown());
  EXPECT_FALSE(ctx.isMouseRightButtonDrag());
  EXPECT_EQ(ctx.getMouseX(), 0.0f);
  EXPECT_EQ(ctx.getMouseY(), 0.0f);
  EXPECT_EQ(ctx.dragX, 0.0f);
  EXPECT_EQ(ctx.widgetBelowMouse, nullptr);
  EXPECT_EQ(ctx.draggedWidget, nullptr);
  EXPECT_EQ(ctx.pressedWidget, nullptr);
  EXPECT_FALSE(ctx.keys[10].cV());
  EXPECT_FALSE(ctx.keysLatch[20].cV()) << "latches follow the keys' notification";
  EXPECT_EQ(ctx.getKeyDownCount(), 0u);
  // After clear a key counts again from zero.
  ctx.keys[10] = true;
  EXPECT_EQ(ctx.getKeyDownCount(), 1u);
}

TEST(inputEventTest, OmittedFieldsAreZeroAndTypesKeepTheirNumbers) {
  const inputEvent none;
  EXPECT_EQ(none.type, EVENT_TYPE_COUNT);
  EXPECT_EQ(int(EVENT_TYPE_COUNT), 56);
  const inputEvent wheel(MOUSE_WHEEL, 1, 2, 3, 4, 5);
  EXPECT_EQ(wheel.target, nullptr);
  EXPECT_EQ(wheel.keyCode, 0);
  EXPECT_EQ(wheel.wheel, 5.0f);
  const inputEvent key(KEY_CHAR, nullptr, nullptr, 65, 97);
  EXPECT_EQ(key.charCode, 97);
  EXPECT_EQ(key.x, 0.0f);
  EXPECT_EQ(int(MOUSE_WHEEL), 27);
  EXPECT_EQ(int(KEY_DOWN), 30);
  EXPECT_EQ(int(EVENT_33), 33);
  EXPECT_EQ(int(VALUE_CHANGE), 39);
  EXPECT_EQ(int(NOTIFY_LEFT_DOWN), 47);
  EXPECT_EQ(int(NOTIFY_MIDDLE_DOUBLE_CLICK), 55);
}

namespace {

struct handler {
  const inputEvent* last = nullptr;
  int calls = 0;
  void onEvent(const inputEvent* e) {
    last = e;
    ++calls;
  }
  void onOther(const inputEvent*) {}
  void onDrop(const dropFileEvent*) { ++calls; }
  void onTransform(const transformMouseEvent*) { ++calls; }
};

}  // namespace

TEST(eventDelegateTest, InvokePassesTheEventOrTheBoundOne) {
  handler h;
  const inputEvent bound(MOUSE_LEFT_CLICK, nullptr, nullptr);
  const inputEvent given(KEY_UP, nullptr, nullptr);
  inputEventDelegate d(&h, &handler::onEvent, &bound);
  d.invoke(const_cast<inputEvent*>(&given));
  EXPECT_EQ(h.last, &given);
  d.invoke();
  EXPECT_EQ(h.last, &bound);

  dropFileEventDelegate drop(&h, &handler::onDrop);
  transformMouseEventDelegate transform(&h, &handler::onTransform);
  dropFileEvent dropped;
  transformMouseEvent moved(nullptr, 1, 2);
  drop.invoke(&dropped);
  transform.invoke(&moved);
  EXPECT_EQ(h.calls, 4);
}

TEST(eventDelegateTest, EqualWhenTheySameObjectAndMethod) {
  handler h, other;
  EXPECT_TRUE(
      inputEventDelegate(&h, &handler::onEvent).equals(inputEventDelegate(&h, &handler::onEvent)));
  EXPECT_FALSE(inputEventDelegate(&h, &handler::onEvent)
                   .equals(inputEventDelegate(&other, &handler::onEvent)));
  EXPECT_FALSE(
      inputEventDelegate(&h, &handler::onEvent).equals(inputEventDelegate(&h, &handler::onOther)));
  const inputEvent e;
  EXPECT_FALSE(inputEventDelegate(&h, &handler::onEvent, &e)
                   .equals(inputEventDelegate(&h, &handler::onEvent)));
}
