#include "jev3d/platform/scriptedPlatform.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "jev3d/platform/messages.h"

using namespace JEV::PLATFORM;

namespace {

std::vector<message> delivered;

std::int64_t recordingProcedure(windowHandle w, unsigned msg, std::uint64_t wp, std::int64_t lp) {
  delivered.push_back(message{w, msg, wp, lp});
  return 7;
}

int timerExpiries = 0;
void countingTimer(windowHandle, unsigned) { ++timerExpiries; }

}  // namespace

TEST(scriptedPlatform, ticksDoNotPileUpWhileOneOfTheirKindWaits) {
  scriptedPlatform p;
  const windowHandle a = p.createWindow(windowDescriptor{}, recordingProcedure);
  const windowHandle b = p.createWindow(windowDescriptor{}, recordingProcedure);
  for (int i = 0; i < 50; ++i) {
    p.postMessage(a, WM_TICK_FRAME, 0, 0);
    p.postMessage(a, WM_TICK_UPDATE, 0, 0);
    p.postMessage(b, WM_TICK_FRAME, 0, 0);
  }
  // Other messages are never merged.
  p.postMessage(a, WM_LBUTTONUP, 0, 0);
  p.postMessage(a, WM_LBUTTONUP, 0, 0);
  EXPECT_EQ(p.pending().size(), 5u);
  EXPECT_EQ(p.postCount(WM_TICK_FRAME), 100);
  message m;
  ASSERT_TRUE(p.peekMessage(m));
  EXPECT_EQ(m.msg, WM_TICK_FRAME);
  // Once taken, the next tick of that kind queues again.
  p.postMessage(a, WM_TICK_FRAME, 0, 0);
  EXPECT_EQ(p.pending().size(), 5u);
}

TEST(scriptedPlatform, postFromAnotherThreadWakesAWaitingPump) {
  scriptedPlatform p;
  const windowHandle w = p.createWindow(windowDescriptor{}, recordingProcedure);
  std::thread poster([&] { p.postMessage(w, WM_TICK_UPDATE, 0, 0); });
  message m;
  ASSERT_TRUE(p.getMessage(m));
  poster.join();
  EXPECT_EQ(m.window, w);
  EXPECT_EQ(m.msg, WM_TICK_UPDATE);
}

TEST(scriptedPlatform, dispatchReachesTheWindowAndTimersReachTheirProcedure) {
  scriptedPlatform p;
  delivered.clear();
  timerExpiries = 0;
  const windowHandle w = p.createWindow(windowDescriptor{}, recordingProcedure);
  EXPECT_EQ(p.send(w, WM_CHAR, 'x', 1), 7);
  ASSERT_EQ(delivered.size(), 1u);
  EXPECT_EQ(delivered[0].wParam, std::uint64_t('x'));

  ASSERT_TRUE(p.setTimer(w, 2, 2000, countingTimer));
  ASSERT_TRUE(p.fireTimer(w, 2));
  message m;
  ASSERT_TRUE(p.peekMessage(m));
  p.dispatchMessage(m);
  EXPECT_EQ(timerExpiries, 1);
  EXPECT_EQ(delivered.size(), 1u);  // the window procedure saw no timer message

  // An expiry queued before the timer was killed is dropped.
  ASSERT_TRUE(p.fireTimer(w, 2));
  ASSERT_TRUE(p.killTimer(w, 2));
  ASSERT_TRUE(p.peekMessage(m));
  p.dispatchMessage(m);
  EXPECT_EQ(timerExpiries, 1);
  EXPECT_FALSE(p.fireTimer(w, 2));
}

TEST(scriptedPlatform, windowsAreRecordsAndEveryOperationIsLogged) {
  scriptedPlatform p;
  p.setNextHandle(40);
  windowDescriptor d;
  d.caption = L"first";
  d.area = rect{10, 20, 300, 200};
  const windowHandle w = p.createWindow(d, recordingProcedure);
  EXPECT_EQ(w, 40u);
  p.showWindow(w, SW_SHOW);
  p.setCaption(w, L"second");
  scriptedPlatform::windowRecord r;
  ASSERT_TRUE(p.window(w, r));
  EXPECT_EQ(r.caption, L"second");
  EXPECT_EQ(r.showCommand, SW_SHOW);
  EXPECT_EQ(p.windowFromPoint(15, 25), w);
  EXPECT_EQ(p.windowFromPoint(310, 25), 0u);
  p.failCreateWindow(1);
  EXPECT_EQ(p.createWindow(d, recordingProcedure), 0u);
  EXPECT_TRUE(p.destroyWindow(w));
  EXPECT_FALSE(p.isWindow(w));
  EXPECT_FALSE(p.postMessage(w, WM_PAINT, 0, 0));
  const std::vector<std::string> expected = {"createWindow 40", "showWindow 40 5",
                                             "setCaption 40 second", "createWindow failed",
                                             "destroyWindow 40"};
  EXPECT_EQ(p.operations(), expected);
}
