#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "jev3d/system/callBack.h"

#include "windowTestSupport.h"

using namespace JEV::SYSTEM;
using namespace JEV::PLATFORM;
using JEV::GUI::widget;

namespace {

// Two widgets side by side over the left of a 320 x 240 window; the right third is bare.
class windowProcTest : public scriptedPlatformTest {
 protected:
  void SetUp() override {
    scriptedPlatformTest::SetUp();
    gui = new scriptedGui;
    gui->regions = {{0, 0, 100, 240, A}, {100, 0, 200, 240, B}};
    win.setGui(gui);
  }

  // Native client coordinates: origin at the top left.
  std::int64_t send(unsigned msg, std::uint64_t w = 0, std::int64_t l = 0) {
    return platform.send(win.getHWnd(), msg, w, l);
  }
  void moveTo(int x, int nativeY) {
    lastX = x;
    lastY = nativeY;
    send(WM_MOUSEMOVE, 0, makeLParam(x, nativeY));
  }
  // A button message where the mouse is.
  void press(unsigned msg) { send(msg, 0, makeLParam(lastX, lastY)); }
  void clean() {
    win.updateNeeded = false;
    win.renderNeeded = false;
  }
  void run(const std::function<void()>& body) { runWithWindow(app, platform, win, body); }

  widget* const A = scriptedGui::fake(1);
  widget* const B = scriptedGui::fake(2);
  application app{L"", L""};
  probeWindow win{&app, &device};
  scriptedGui* gui = nullptr;
  int lastX = 0;
  int lastY = 0;
};

struct counter {
  int n = 0;
  void hit() { ++n; }
};

}  // namespace

TEST_F(windowProcTest, windowMessagesMarkBothNeededFieldsAndNotify) {
  run([&] {
    counter notified;
    win.renderNeeded.registerEventOnChangeValue(makeDelegate(&notified, &counter::hit));
    for (unsigned msg : {WM_CREATE, WM_ACTIVATE, WM_ENABLE, WM_PAINT, WM_ERASEBKGND, WM_SHOWWINDOW,
                         WM_SETTINGCHANGE, WM_PAINTICON, WM_WINDOWPOSCHANGING, WM_WINDOWPOSCHANGED,
                         WM_DISPLAYCHANGE, WM_SIZING, WM_ENTERSIZEMOVE, WM_SYSCOMMAND}) {
      clean();
      const int before = notified.n;
      send(msg);
      EXPECT_TRUE(win.renderNeeded.cV()) << msg;
      EXPECT_TRUE(win.updateNeeded.cV()) << msg;
      EXPECT_EQ(notified.n, before + 1) << msg;
    }
    EXPECT_TRUE(takeEvents(win).empty());
  });
}

TEST_F(windowProcTest, ticksAndCursorMessagesOnlyWake) {
  run([&] {
    clean();
    for (unsigned msg : {WM_TICK_UPDATE, WM_TICK_FRAME, WM_SETCURSOR, WM_UNICHAR}) send(msg);
    EXPECT_FALSE(win.renderNeeded.cV());
    EXPECT_FALSE(win.updateNeeded.cV());
    EXPECT_TRUE(takeEvents(win).empty());
    for (const auto& entry : win.log()) EXPECT_NE(entry.rfind("wndProcMsg", 0), 0u) << entry;
  });
}

TEST_F(windowProcTest, sizeSetsTheContextAndAlwaysQueuesADoubleClick) {
  run([&] {
    moveTo(50, 40);  // over A
    takeEvents(win);
    win.log();
    JEV::RENDERING::renderingContext& ctx = *win.getRenderingContext();

    clean();
    send(WM_SIZE, SIZE_RESTORED, makeLParam(500, 0));
    EXPECT_EQ(ctx.windowWidth.cV(), 500);
    EXPECT_EQ(ctx.windowHeight.cV(), 1);  // a height of 0 becomes 1
    EXPECT_EQ(device.calls.back(), "resetDevice 500 1");
    EXPECT_TRUE(win.renderNeeded.cV());
    EXPECT_TRUE(win.updateNeeded.cV());
    auto events = takeEvents(win);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].type, MOUSE_LEFT_DOUBLE_CLICK);
    EXPECT_EQ(events[0].target, A);

    send(WM_SIZE, SIZE_MAXIMIZED, makeLParam(640, 480));
    EXPECT_EQ(ctx.windowWidth.cV(), 640);
    EXPECT_EQ(ctx.windowHeight.cV(), 480);
    EXPECT_EQ(typesOf(takeEvents(win)), (std::vector<EVENT_TYPE>{MOUSE_LEFT_DOUBLE_CLICK}));

    clean();
    send(WM_SIZE, SIZE_MINIMIZED, makeLParam(10, 10));
    send(WM_SIZE, 4, makeLParam(20, 20));
    EXPECT_EQ(ctx.windowWidth.cV(), 640);  // neither changes the size
    EXPECT_FALSE(win.renderNeeded.cV());
    EXPECT_EQ(typesOf(takeEvents(win)),
              (std::vector<EVENT_TYPE>{MOUSE_LEFT_DOUBLE_CLICK, MOUSE_LEFT_DOUBLE_CLICK}));

    std::vector<std::string> hooks;
    for (const auto& s : win.log()) {
      if (s == "restored" || s == "maximized" || s == "minimized" || s.rfind("resize", 0) == 0) {
        hooks.push_back(s);
      }
    }
    const std::vector<std::string> expected = {"resize 320 240", "restored",       "resize 500 1",
                                               "maximized",      "resize 640 480", "minimized"};
    EXPECT_EQ(hooks, expected);
  });
}

TEST_F(windowProcTest, closeAsksTheWindowWhichMayRefuse) {
  run([&] {
    win.veto = true;
    EXPECT_EQ(send(WM_CLOSE), 0);
    EXPECT_FALSE(win.isClosing());
    win.veto = false;
    send(WM_CLOSE);
    EXPECT_TRUE(win.isClosing());
  });
  EXPECT_EQ(platform.countOperations("destroyWindow"), 1);
}

namespace {

struct copyReceiver {
  std::vector<std::string>* seen;
  std::string name;
  void onCopy(void* data) {
    const auto* record = static_cast<const copyDataRecord*>(data);
    seen->push_back(name + ":" +
                    std::string(static_cast<const char*>(record->bytes), record->size));
  }
};

struct progressReceiver {
  std::vector<interprocessRecord> records;
  void onCopy(void* data) {
    const auto* record = static_cast<const copyDataRecord*>(data);
    ASSERT_EQ(record->size, sizeof(interprocessRecord));
    records.push_back(*static_cast<const interprocessRecord*>(record->bytes));
  }
};

float valueOf(const interprocessRecord& r) {
  float v;
  std::memcpy(&v, &r.value, sizeof v);
  return v;
}

}  // namespace

TEST_F(windowProcTest, copyDataReachesEveryDelegateInOrder) {
  std::vector<std::string> seen;
  copyReceiver first{&seen, "first"}, second{&seen, "second"};
  app.addCopyDataDelegate(makeDelegate(&first, &copyReceiver::onCopy));
  app.addCopyDataDelegate(makeDelegate(&second, &copyReceiver::onCopy));
  run([&] {
    const std::string text = "42";
    copyDataRecord record{0, 2, text.data()};
    send(WM_COPYDATA, 0, reinterpret_cast<std::intptr_t>(&record));
    app.removeCopyDataDelegate(makeDelegate(&first, &copyReceiver::onCopy));
    send(WM_COPYDATA, 0, reinterpret_cast<std::intptr_t>(&record));
  });
  EXPECT_EQ(seen, (std::vector<std::string>{"first:42", "second:42", "second:42"}));
}

TEST_F(windowProcTest, progressReportsReachTheTargetWindowFromAnyThread) {
  progressReceiver receiver;
  app.addCopyDataDelegate(makeDelegate(&receiver, &progressReceiver::onCopy));
  run([&] {
    callBack progress;
    progress.setInterprocessCommunicationsHandle(reinterpret_cast<void*>(win.getHWnd()));
    progress.setInterprocessCommunicationsId(7);
    progress.setInterprocessCommunicationsEcho(9);
    progress.setValue(50);  // on the loop's thread: at once
    ASSERT_EQ(receiver.records.size(), 1u);
    std::thread worker([&] { progress.setValue(100); });
    worker.join();
    EXPECT_EQ(receiver.records.size(), 1u);  // queued, not run on the worker
    pumpAll(platform);
    ASSERT_EQ(receiver.records.size(), 2u);
  });
  ASSERT_EQ(receiver.records.size(), 2u);
  EXPECT_EQ(valueOf(receiver.records[0]), 50.0f);
  EXPECT_EQ(receiver.records[0].id, 7u);
  EXPECT_EQ(receiver.records[0].echo, 9u);
  EXPECT_EQ(valueOf(receiver.records[1]), 100.0f);
}

TEST_F(windowProcTest, keysGoToTheFocusedWidgetOrTheOneBelowTheMouse) {
  run([&] {
    moveTo(150, 40);  // over B
    takeEvents(win);
    inputContext& ctx = *win.getInputContext();

    clean();
    send(WM_KEYDOWN, 'A', 0x1E0001);
    EXPECT_TRUE(ctx.keys['A'].cV());
    EXPECT_TRUE(win.renderNeeded.cV());
    gui->focused = A;
    send(WM_CHAR, 0xE9, 1);
    auto events = takeEvents(win);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].type, KEY_DOWN);
    EXPECT_EQ(events[0].target, B);
    EXPECT_EQ(events[0].keyCode, 'A');
    EXPECT_EQ(events[0].charCode, 0);
    EXPECT_EQ(events[0].message, WM_KEYDOWN);
    EXPECT_EQ(events[1].type, KEY_CHAR);
    EXPECT_EQ(events[1].target, A);
    EXPECT_EQ(events[1].keyCode, 0);
    EXPECT_EQ(events[1].charCode, 0xE9);

    send(WM_KEYUP, 'A', 0);
    EXPECT_FALSE(ctx.keys['A'].cV());
    EXPECT_EQ(typesOf(takeEvents(win)), (std::vector<EVENT_TYPE>{KEY_UP}));
  });
}

TEST_F(windowProcTest, releasingAltAlsoReleasesControl) {
  run([&] {
    inputContext& ctx = *win.getInputContext();
    send(WM_KEYDOWN, VK_CONTROL);
    send(WM_KEYDOWN, VK_MENU);
    EXPECT_EQ(ctx.getKeyDownCount(), 2u);
    takeEvents(win);
    clean();
    send(WM_KEYUP, VK_MENU);
    EXPECT_FALSE(ctx.keys[VK_MENU].cV());
    EXPECT_FALSE(ctx.keys[VK_CONTROL].cV());
    EXPECT_EQ(ctx.getKeyDownCount(), 0u);
    EXPECT_TRUE(win.updateNeeded.cV());
    const auto events = takeEvents(win);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].type, KEY_UP);
    EXPECT_EQ(events[0].keyCode, int(VK_MENU));
    EXPECT_EQ(events[1].type, KEY_UP);
    EXPECT_EQ(events[1].keyCode, int(VK_CONTROL));
  });
}

TEST_F(windowProcTest, systemCommandsReachTheirHooksAndOthersTheWindow) {
  run([&] {
    send(WM_SYSCOMMAND, SC_SCREENSAVE);
    send(WM_SYSCOMMAND, SC_MONITORPOWER);
    send(0x4321, 7, -3);
    EXPECT_EQ(win.count("screenSaver"), 1);
    EXPECT_EQ(win.count("monitorPower"), 1);
    EXPECT_EQ(win.count("wndProcMsg 17185 7 -3"), 1);
  });
}

TEST_F(windowProcTest, movesFlipYAndTellEnterAndLeave) {
  run([&] {
    const int timersBefore = platform.countOperations("setTimer");
    moveTo(50, 40);
    inputContext& ctx = *win.getInputContext();
    EXPECT_EQ(ctx.getMouseX(), 50.0f);
    EXPECT_EQ(ctx.getMouseY(), 200.0f);  // 240 - 40: origin at the bottom left
    moveTo(60, 40);
    clean();
    moveTo(60, 40);  // same place: nothing, even the fields stay clean
    EXPECT_FALSE(win.renderNeeded.cV());
    moveTo(150, 30);
    moveTo(250, 30);
    // The leave watch started with the first move, once.
    EXPECT_EQ(platform.countOperations("setTimer") - timersBefore, 1);
    EXPECT_TRUE(platform.hasTimer(win.getHWnd(), 2));

    const auto events = takeEvents(win);
    const std::vector<EVENT_TYPE> expected = {MOUSE_MOVE_ENTER, MOUSE_MOVE, MOUSE_MOVE_LEAVE,
                                              MOUSE_MOVE_ENTER, MOUSE_MOVE_LEAVE};
    ASSERT_EQ(typesOf(events), expected);
    EXPECT_EQ(events[0].target, A);
    EXPECT_EQ(events[1].target, A);
    EXPECT_EQ(events[2].target, A);
    EXPECT_EQ(events[3].target, B);
    EXPECT_EQ(events[4].target, B);
    EXPECT_EQ(events[3].y, 210.0f);
    EXPECT_EQ(ctx.widgetBelowMouse, nullptr);
  });
}

TEST_F(windowProcTest, aDragCapturesItsWidgetAndOnlyTheLeftButtonClicksAfterIt) {
  run([&] {
    inputContext& ctx = *win.getInputContext();
    moveTo(50, 100);
    takeEvents(win);

    press(WM_LBUTTONDOWN);
    press(WM_LBUTTONDOWN);  // already down: nothing
    moveTo(60, 100);        // starts the drag on A
    moveTo(150, 110);       // over B: the drag stays with A
    EXPECT_TRUE(ctx.isMouseLeftButtonDrag());
    press(WM_LBUTTONUP);  // released over B: no click
    auto events = takeEvents(win);
    std::vector<EVENT_TYPE> expected = {
        MOUSE_LEFT_DOWN,       MOUSE_LEFT_DRAG_ENTER, MOUSE_DRAG_MOVE,       MOUSE_LEFT_DRAG,
        MOUSE_DRAG_OVER_LEAVE, MOUSE_DRAG_OVER_ENTER, MOUSE_LEFT_DRAG_LEAVE, MOUSE_LEFT_UP};
    ASSERT_EQ(typesOf(events), expected);
    EXPECT_EQ(events[0].target, A);
    EXPECT_EQ(events[1].target, A);
    EXPECT_EQ(events[3].target, A);
    EXPECT_EQ(events[3].deltaX, 90.0f);
    EXPECT_EQ(events[3].deltaY, -10.0f);
    EXPECT_EQ(events[4].target, A);
    EXPECT_EQ(events[5].target, B);
    EXPECT_EQ(events[6].target, A);
    EXPECT_EQ(events[7].target, B);
    EXPECT_FALSE(ctx.isMouseLeftButtonDown());
    EXPECT_FALSE(ctx.isMouseLeftButtonDrag());

    // Back where it went down: the left button clicks after its drag.
    press(WM_LBUTTONDOWN);  // on B now
    moveTo(50, 100);
    moveTo(160, 100);
    press(WM_LBUTTONUP);
    events = takeEvents(win);
    ASSERT_GE(events.size(), 3u);
    EXPECT_EQ(events[events.size() - 3].type, MOUSE_LEFT_DRAG_LEAVE);
    EXPECT_EQ(events[events.size() - 2].type, MOUSE_LEFT_UP);
    EXPECT_EQ(events.back().type, MOUSE_LEFT_CLICK);
    EXPECT_EQ(events.back().target, B);

    // The right button never does.
    press(WM_RBUTTONDOWN);
    moveTo(50, 100);
    moveTo(160, 100);
    press(WM_RBUTTONUP);
    events = takeEvents(win);
    expected = {MOUSE_RIGHT_DOWN,      MOUSE_RIGHT_DRAG_ENTER, MOUSE_DRAG_OVER_LEAVE,
                MOUSE_DRAG_OVER_ENTER, MOUSE_RIGHT_DRAG,       MOUSE_DRAG_OVER_LEAVE,
                MOUSE_DRAG_OVER_ENTER, MOUSE_RIGHT_DRAG_LEAVE, MOUSE_RIGHT_UP};
    EXPECT_EQ(typesOf(events), expected);

    // Without a drag, up and click go to the widget below.
    press(WM_MBUTTONDOWN);
    press(WM_MBUTTONUP);
    events = takeEvents(win);
    ASSERT_EQ(typesOf(events),
              (std::vector<EVENT_TYPE>{MOUSE_MIDDLE_DOWN, MOUSE_MIDDLE_UP, MOUSE_MIDDLE_CLICK}));
    EXPECT_EQ(events[2].target, B);
  });
}

TEST_F(windowProcTest, leaveWatchPostsTheLeaveAndTheButtonUpsOfADrag) {
  run([&] {
    const windowHandle h = win.getHWnd();
    rect r;
    ASSERT_TRUE(platform.getWindowRect(h, r));
    moveTo(50, 100);
    press(WM_LBUTTONDOWN);
    moveTo(60, 100);
    takeEvents(win);

    // Still over the window: the watch goes on.
    platform.setCursorPos(r.x + 60, r.y + 100);
    ASSERT_TRUE(platform.fireTimer(h, 2));
    pumpAll(platform);
    EXPECT_TRUE(platform.hasTimer(h, 2));
    EXPECT_TRUE(takeEvents(win).empty());

    platform.setCursorPos(r.x - 30, r.y + 100);
    ASSERT_TRUE(platform.fireTimer(h, 2));
    pumpAll(platform);  // the expiry, the posted leave, the posted button-up
    EXPECT_FALSE(platform.hasTimer(h, 2));
    const auto events = takeEvents(win);
    const std::vector<EVENT_TYPE> expected = {MOUSE_MOVE_LEAVE, MOUSE_MOVE_LEAVE,
                                              MOUSE_LEFT_DRAG_LEAVE, MOUSE_LEFT_UP};
    ASSERT_EQ(typesOf(events), expected);
    EXPECT_EQ(events[0].target, gui->root);
    EXPECT_EQ(events[0].x, 0.0f);
    EXPECT_EQ(events[0].y, 0.0f);
    EXPECT_EQ(events[1].target, A);
    EXPECT_EQ(events[2].target, A);
    EXPECT_EQ(events[3].target, gui->root);
    EXPECT_FALSE(win.getInputContext()->isMouseLeftButtonDown());

    // The next move starts a new watch.
    moveTo(70, 100);
    EXPECT_TRUE(platform.hasTimer(h, 2));
  });
}

TEST_F(windowProcTest, wheelDoubleClicksAndNotificationsFindTheirWidgets) {
  run([&] {
    moveTo(150, 100);
    takeEvents(win);
    send(WM_MOUSEWHEEL, std::uint64_t(std::uint16_t(200)) << 16);
    send(WM_MOUSEWHEEL, std::uint64_t(std::uint16_t(-240)) << 16);
    press(WM_RBUTTONDBLCLK);
    clean();
    send(WM_NOTIFY_ICON, 0, WM_LBUTTONDOWN);
    send(WM_NOTIFY_ICON, 0, WM_MBUTTONDBLCLK);
    send(WM_NOTIFY_ICON, 0, WM_MOUSEMOVE);  // queues nothing
    EXPECT_TRUE(win.renderNeeded.cV());
    const auto events = takeEvents(win);
    ASSERT_EQ(typesOf(events),
              (std::vector<EVENT_TYPE>{MOUSE_WHEEL, MOUSE_WHEEL, MOUSE_RIGHT_DOUBLE_CLICK,
                                       NOTIFY_LEFT_DOWN, NOTIFY_MIDDLE_DOUBLE_CLICK}));
    EXPECT_EQ(events[0].wheel, 1.0f);  // 200 / 120 in integers
    EXPECT_EQ(events[1].wheel, -2.0f);
    for (const auto& e : events) EXPECT_EQ(e.target, B);
  });
}

TEST_F(windowProcTest, quitHasNoEffectOnTheLoop) {
  run([&] {
    platform.postMessage(win.getHWnd(), WM_QUIT, 0, 0);
    pumpAll(platform);
    EXPECT_FALSE(win.isClosing());
    win.refresh();
  });
  EXPECT_EQ(win.count("wndProcMsg 18 0 0"), 1);
}

TEST_F(windowProcTest, lockKeysFollowTheKeyboardAtEachKey) {
  run([&] {
    const inputContext& ctx = *win.getInputContext();
    EXPECT_FALSE(ctx.isCapsLockOn());
    // Caps lock switched on while another window had the keyboard: the next key shows it.
    platform.setKeyToggled(VK_CAPITAL, true);
    send(WM_KEYDOWN, 'A', 1);
    EXPECT_TRUE(ctx.isCapsLockOn());
    EXPECT_FALSE(ctx.isNumLockOn());
    platform.setKeyToggled(VK_NUMLOCK, true);
    platform.setKeyToggled(VK_CAPITAL, false);
    send(WM_KEYUP, 'A', 1);
    EXPECT_TRUE(ctx.isNumLockOn());
    EXPECT_FALSE(ctx.isCapsLockOn());
  });
}

TEST_F(windowProcTest, theDefaultConstructorInstallsTheProgressSenderToo) {
  struct plainApplication : application {
    plainApplication() {}
  };
  callBack::setInterprocessSender(nullptr);
  plainApplication plain;
  progressReceiver receiver;
  app.addCopyDataDelegate(makeDelegate(&receiver, &progressReceiver::onCopy));
  run([&] {
    callBack progress;
    progress.setInterprocessCommunicationsHandle(reinterpret_cast<void*>(win.getHWnd()));
    progress.setValue(25);
  });
  ASSERT_EQ(receiver.records.size(), 1u);
  EXPECT_EQ(valueOf(receiver.records[0]), 25.0f);
}
