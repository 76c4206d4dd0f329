#include "jev3d/platform/sdlPlatform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "jev3d/platform/messages.h"

using namespace JEV::PLATFORM;

namespace {

constexpr unsigned WM_TEST_DONE = 0x400;
std::vector<message> delivered;

std::int64_t recordingProcedure(windowHandle w, unsigned msg, std::uint64_t wp, std::int64_t lp) {
  delivered.push_back(message{w, msg, wp, lp});
  return 0;
}

// Pumps until a message satisfying `want` was delivered; the bound only keeps a broken
// display from hanging the suite.
template <class F>
bool pumpUntil(platform& p, F want) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < end) {
    message m;
    while (p.peekMessage(m)) {
      p.dispatchMessage(m);
      if (want(m)) return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace

TEST(sdlPlatform, windowIsMadeHiddenShownResizedAndDestroyed) {
  platform& p = current();
  delivered.clear();
  windowDescriptor d;
  d.caption = L"jev3d \x00e9t\x00e9";
  d.area = rect{50, 60, 160, 120};
  const windowHandle w = p.createWindow(d, recordingProcedure);
  ASSERT_NE(w, 0u);
  EXPECT_TRUE(p.isWindow(w));
  int marker = 0;
  p.setUserData(w, &marker);
  EXPECT_EQ(p.getUserData(w), &marker);

  p.showWindow(w, SW_SHOW);
  EXPECT_TRUE(pumpUntil(p, [&](const message& m) { return m.msg == WM_SHOWWINDOW; }));

  ASSERT_TRUE(p.setWindowRect(w, rect{50, 60, 240, 180}));
  EXPECT_TRUE(pumpUntil(p, [&](const message& m) {
    return m.msg == WM_SIZE && lowWord(m.lParam) == 240 && highWord(m.lParam) == 180;
  }));
  rect area;
  ASSERT_TRUE(p.getWindowRect(w, area));
  EXPECT_EQ(area.width, 240);
  EXPECT_EQ(area.height, 180);

  EXPECT_TRUE(p.destroyWindow(w));
  EXPECT_FALSE(p.isWindow(w));
  EXPECT_FALSE(p.postMessage(w, WM_PAINT, 0, 0));
}

TEST(sdlPlatform, postedTicksWakeTheWaitAndDoNotFloodTheQueue) {
  platform& p = current();
  delivered.clear();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"ticks", rect{0, 0, 64, 64}, {}}, recordingProcedure);
  ASSERT_NE(w, 0u);
  message m;
  while (p.peekMessage(m)) p.dispatchMessage(m);

  // Far more ticks than SDL's queue holds: only one of each kind may wait at a time.
  std::thread poster([&] {
    for (int i = 0; i < 100000; ++i) p.postMessage(w, WM_TICK_FRAME, 0, 0);
    p.postMessage(w, WM_TEST_DONE, 1, 2);
  });
  int frames = 0;
  bool done = false;
  while (!done && p.getMessage(m)) {
    if (m.window != w) continue;
    if (m.msg == WM_TICK_FRAME) ++frames;
    if (m.msg == WM_TEST_DONE) {
      EXPECT_EQ(m.wParam, 1u);
      EXPECT_EQ(m.lParam, 2);
      done = true;
    }
  }
  poster.join();
  EXPECT_TRUE(done);
  EXPECT_GE(frames, 1);
  EXPECT_TRUE(p.destroyWindow(w));
}

TEST(sdlPlatform, timerExpiresThroughTheQueueUntilKilled) {
  platform& p = current();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"timer", rect{0, 0, 64, 64}, {}}, recordingProcedure);
  ASSERT_NE(w, 0u);
  static int expiries = 0;
  expiries = 0;
  ASSERT_TRUE(p.setTimer(w, 2, 10, [](windowHandle, unsigned id) {
    if (id == 2) ++expiries;
  }));
  message m;
  while (expiries < 2 && p.getMessage(m)) p.dispatchMessage(m);
  EXPECT_EQ(expiries, 2);
  EXPECT_TRUE(p.killTimer(w, 2));
  EXPECT_FALSE(p.killTimer(w, 2));
  EXPECT_TRUE(p.destroyWindow(w));
}
