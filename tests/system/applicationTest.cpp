#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "jev3d/system/event.h"
#include "windowTestSupport.h"

using namespace JEV::SYSTEM;
using namespace JEV::PLATFORM;

namespace {

using applicationTest = scriptedPlatformTest;

class countingApplication : public application {
 public:
  countingApplication() : application(L"", L"") {}
  void terminateApplication() override { ++terminations; }
  int terminations = 0;
};

// Waits until `done` holds, pumping nothing: for conditions that other threads make true.
template <class F>
void waitFor(F done) {
  while (!done()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace

TEST_F(applicationTest, withNoWindowTheLoopReturnsOneOnceInitIsDone) {
  application app(L"ignored", L"");
  testing::internal::CaptureStdout();
  EXPECT_EQ(app.mainLoop(), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Init thread done\n");
  EXPECT_TRUE(platform.operations().empty());
}

TEST_F(applicationTest, aWindowIsMadeHiddenInitialisedShownAndServedWithTheTraceOnStdout) {
  application app(L"", L"");
  probeWindow win(&app, &device);
  win.setCaption(L"probe");
  EXPECT_EQ(platform.countOperations("setCaption"), 0);  // no window yet: stored only
  testing::internal::CaptureStdout();
  runUntil(app, platform, {&win}, [&] {
    if (win.count("draw") < 1 || win.count("update") < 1) return false;
    EXPECT_EQ(app.getWindowByHWnd(win.getHWnd()), &win);
    return true;
  });
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "start ThreadCreation\nInit thread done\n"
            "enter waitToAdd listleave waitToAdd list, windows.size(): 1  CanDoLoop1\n");

  // Made hidden, centred, with its context, before init; shown afterwards.
  const auto ops = platform.operations();
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(ops[0], "createWindow 1");
  EXPECT_EQ(ops[1], "showWindow 1 0");
  EXPECT_EQ(ops[2], "createGLContext 1");
  EXPECT_NE(std::find(ops.begin(), ops.end(), "showWindow 1 5"), ops.end());
  EXPECT_NE(std::find(ops.begin(), ops.end(), "setForeground 1"), ops.end());
  EXPECT_NE(std::find(ops.begin(), ops.end(), "setWindowRect 1 800 420 320 240"), ops.end());
  EXPECT_EQ(device.calls[0], "createContext");
  EXPECT_EQ(device.calls[1], "init");
  EXPECT_EQ(win.log()[0], "init");
  EXPECT_EQ(win.log()[1], "resize 320 240");
  // Every frame empties the discard lists before drawing and swaps after.
  const int swaps = device.count("swapBuffers");
  EXPECT_EQ(swaps, win.count("draw"));
  EXPECT_EQ(device.count("emptyDiscardList"), swaps);
  // Erased, not deleted: deInit, context and native window go.
  EXPECT_EQ(win.count("deInit"), 1);
  EXPECT_EQ(device.count("deleteContext"), 1);
  EXPECT_EQ(platform.countOperations("destroyWindow 1"), 1);
  EXPECT_EQ(win.getHWnd(), 0u);
}

TEST_F(applicationTest, aContextThatAsksForRecreationGetsAFreshWindow) {
  application app(L"", L"");
  probeWindow win(&app, &device);
  device.recreateRequests = 1;
  runWithWindow(app, platform, win, [] {});
  EXPECT_EQ(platform.countOperations("createWindow"), 2);
  EXPECT_EQ(platform.countOperations("destroyWindow 1"), 1);
  EXPECT_EQ(platform.countOperations("destroyWindow 2"), 1);
}

TEST_F(applicationTest, anAddedWindowStallsEveryWindowUntilItsInitEnds) {
  application app(L"", L"");
  probeWindow first(&app, &device);
  recordingRenderer secondDevice;
  probeWindow second(&app, &secondDevice);
  event initMayEnd;
  std::atomic<int> drawsWhenInitStarted{-1};
  std::atomic<int> drawsWhenInitEnded{-1};
  std::thread opener;
  // The first window asks for frames all the time; its second frame adds the other.
  first.onDraw = [&] {
    first.refresh();
    if (first.count("draw") != 2) return;
    app.addWin(&second);
    opener = std::thread([&] {
      waitFor([&] { return drawsWhenInitStarted >= 0; });
      // Long enough for many frame ticks of the first window.
      std::this_thread::sleep_for(std::chrono::milliseconds(150));
      initMayEnd.set();
    });
  };
  second.onInit = [&] {
    drawsWhenInitStarted = first.count("draw");
    initMayEnd.wait();
    drawsWhenInitEnded = first.count("draw");
    return true;
  };
  testing::internal::CaptureStdout();
  runUntil(app, platform, {&first},
           [&] { return isLive(app, &second) && first.count("draw") > drawsWhenInitEnded + 1; });
  const std::string out = testing::internal::GetCapturedStdout();
  opener.join();
  EXPECT_EQ(drawsWhenInitEnded.load(), drawsWhenInitStarted.load());
  EXPECT_EQ(second.count("init"), 1);
  EXPECT_NE(out.find("windows.size(): 2  CanDoLoop1"), std::string::npos);
}

TEST_F(applicationTest, queuedWindowsAppearOnlyAfterTheSplashClosesItself) {
  application app(L"", L"");
  recordingRenderer splashDevice;
  auto* splash = new probeWindow(&app, &splashDevice);
  probeWindow win(&app, &device);
  std::vector<std::string> order;
  std::mutex orderLock;
  auto note = [&](const std::string& s) {
    std::lock_guard<std::mutex> g(orderLock);
    order.push_back(s);
  };
  win.onInit = [&] {
    note("window init");
    return true;
  };
  int splashFrames = 0;
  splash->onDraw = [&] {
    // Stays for a while after the window's init has ended, then closes itself.
    if (++splashFrames == 1) waitFor([&] { return win.count("init") == 1; });
    if (splashFrames < 5) {
      splash->refresh();
    } else {
      note("splash closes");
      splash->closeWindow();
    }
  };
  win.onDraw = [&] { note("window draw"); };
  app.setSplashScreen(splash);
  testing::internal::CaptureStdout();
  runUntil(app, platform, {&win}, [&] { return win.count("draw") >= 1; });
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_EQ(app.getSplashScreen(), nullptr);  // deleted by the loop
  EXPECT_EQ(out,
            "start ThreadCreation\ndelete splashscreen\n"
            "splashscreen_was_deleted_now reboot loop\nInit thread done\n"
            "enter waitToAdd listleave waitToAdd list, windows.size(): 1  CanDoLoop1\n");
  ASSERT_GE(order.size(), 3u);
  EXPECT_EQ(order[0], "window init");
  EXPECT_EQ(order[1], "splash closes");
  EXPECT_EQ(order[2], "window draw");
  EXPECT_EQ(splashFrames, 5);
}

TEST_F(applicationTest, closingTheMainWindowTerminatesTheApplication) {
  countingApplication app;
  probeWindow main(&app, &device);
  main.setMainWindow(true);
  int closed = 0;
  struct closer {
    int* n;
    void onClose() { ++*n; }
  } c{&closed};
  main.setCloseDelegate(makeDelegate(&c, &closer::onClose));
  runWithWindow(app, platform, main, [] {});
  EXPECT_EQ(app.terminations, 1);
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(main.count("deInit"), 1);  // this override returns, so the window is erased
}

namespace {

enum class failure { NONE, INIT, NATIVE_WINDOW };

// Runs a loop on a scripted platform with one main window that closes at its first frame,
// or whose init or native window fails; returns 3 if the loop ever returns.
int runAndExpectExit(failure f) {
  scriptedPlatform platform;
  setCurrent(&platform);
  if (f == failure::NATIVE_WINDOW) platform.failCreateWindow(1);
  recordingRenderer device;
  application app(L"", L"");
  probeWindow win(&app, &device);
  win.setMainWindow(true);
  win.onInit = [f] { return f != failure::INIT; };
  win.onDraw = [&win] { win.closeWindow(); };
  app.addWin(&win);
  app.mainLoop();
  return 3;
}

int openSecondInstance(const std::wstring& name) {
  application second(L"", name);
  return 3;
}

}  // namespace

TEST(applicationDeathTest, theDefaultTerminationEndsTheProcessAtOnce) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(runAndExpectExit(failure::NONE)), testing::ExitedWithCode(0), "");
}

TEST(applicationDeathTest, aFailedInitEndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(runAndExpectExit(failure::INIT)), testing::ExitedWithCode(0), "");
}

TEST(applicationDeathTest, aWindowThatCannotBeMadeEndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(runAndExpectExit(failure::NATIVE_WINDOW)), testing::ExitedWithCode(0), "");
}

TEST(applicationDeathTest, aSecondInstanceUnderTheSameNameEndsAtOnce) {
  // Forked, so that only the child opens the second instance.
  testing::FLAGS_gtest_death_test_style = "fast";
  const std::wstring name = L"jev3d-instance-test-" + std::to_wstring(::getpid());
  application first(L"", name);
  EXPECT_FALSE(first.isAnotherInstanceRunning());
  EXPECT_EXIT(std::exit(openSecondInstance(name)), testing::ExitedWithCode(0), "");
  first.setLimitInstanceOff();
  EXPECT_EQ(openSecondInstance(name), 3);  // the name is free again
}

TEST_F(applicationTest, ticksDuringALongDrawCollapseIntoOneFrame) {
  application app(L"", L"");
  probeWindow win(&app, &device);
  int draws = 0;
  int32_t tickAtSecondDraw = 0;
  win.onDraw = [&] {
    ++draws;
    if (draws == 2) tickAtSecondDraw = win.getFrameTick();
    if (draws != 1) return;
    win.refresh();  // asks for exactly one more frame
    const int32_t start = win.getFrameTick();
    waitFor([&] { return win.getFrameTick() >= start + 20; });
  };
  // With nothing dirty, the ticks that follow the second frame serve nothing.
  runUntil(app, platform, {&win},
           [&] { return draws >= 2 && win.getFrameTick() >= tickAtSecondDraw + 5; });
  EXPECT_EQ(draws, 2);
}

TEST_F(applicationTest, refreshNotifiesEvenWhenAlreadyDirty) {
  application app(L"", L"");
  probeWindow win(&app, &device);
  struct counter {
    int n = 0;
    void hit() { ++n; }
  } render, update;
  win.renderNeeded.registerEventOnChangeValue(makeDelegate(&render, &counter::hit));
  win.updateNeeded.registerEventOnChangeValue(makeDelegate(&update, &counter::hit));
  EXPECT_TRUE(win.renderNeeded.cV());
  win.refresh();
  win.refresh();
  EXPECT_EQ(render.n, 2);
  EXPECT_EQ(update.n, 2);
}

TEST_F(applicationTest, aCleanWindowWithoutTickAlwaysPostsNothing) {
  application app(L"", L"");
  probeWindow win(&app, &device, /*tickAlways=*/false);
  runUntil(app, platform, {&win}, [&] {
    if (!isLive(app, &win) || win.renderNeeded.cV() || win.updateNeeded.cV()) return false;
    // A tick that read the fields before they were cleared posts before its next count:
    // let each thread count twice first. From then on they count but post nothing.
    const int32_t u0 = win.getUpdateTick(), f0 = win.getFrameTick();
    waitFor([&] { return win.getUpdateTick() >= u0 + 2 && win.getFrameTick() >= f0 + 2; });
    const int updates = platform.postCount(WM_TICK_UPDATE);
    const int frames = platform.postCount(WM_TICK_FRAME);
    const int32_t u = win.getUpdateTick(), f = win.getFrameTick();
    waitFor([&] { return win.getUpdateTick() >= u + 3 && win.getFrameTick() >= f + 3; });
    EXPECT_EQ(platform.postCount(WM_TICK_UPDATE), updates);
    EXPECT_EQ(platform.postCount(WM_TICK_FRAME), frames);
    // Dirty again: the next tick wakes the loop.
    win.refresh();
    waitFor([&] { return platform.postCount(WM_TICK_FRAME) > frames; });
    return true;
  });
}

// Without a widget layer nothing runs the event schedule: the window drains its queue at
// each update, handing every event to the absolute handlers, so the queue cannot grow.
TEST_F(applicationTest, withoutAWidgetLayerTheQueueIsDrainedEachUpdate) {
  application app(L"", L"");
  probeWindow win(&app, &device);
  struct seen {
    std::vector<EVENT_TYPE> types;
    void on(const inputEvent* e) { types.push_back(e->type); }
  } moves;
  inputEventDelegate d(&moves, &seen::on);
  win.registerAbsoluteInputEventCallBack(MOUSE_MOVE, d);
  bool sent = false;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  runUntil(app, platform, {&win}, [&] {
    if (!isLive(app, &win)) return false;
    if (!sent) {
      sent = true;
      for (int i = 0; i < 3; ++i)
        platform.send(win.getHWnd(), WM_MOUSEMOVE, 0, makeLParam(10 + i, 20));
      return false;
    }
    return win.getInputContext()->events.empty() || std::chrono::steady_clock::now() > deadline;
  });
  EXPECT_TRUE(win.getInputContext()->events.empty());
  EXPECT_EQ(std::count(moves.types.begin(), moves.types.end(), MOUSE_MOVE), 3);
}
