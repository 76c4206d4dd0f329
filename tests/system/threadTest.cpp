#include "jev3d/system/thread.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "jev3d/system/event.h"
#include "jev3d/system/limitSingleInstance.h"
#include "jev3d/system/threadJob.h"
#include "jev3d/system/threadTimer.h"
#include "jev3d/system/timer.h"

using namespace JEV::SYSTEM;

namespace {

// Polls `done` until it holds or a generous bound passes; the bound only guards
// against a hang, it is not a timing expectation.
template <class F>
bool eventually(F done, int boundMs = 10000) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(boundMs);
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

struct counter {
  std::atomic<int> count{0};
  void bump() { ++count; }
};

}  // namespace

TEST(eventTest, ManualResetStaysSetUntilReset) {
  event e;
  EXPECT_FALSE(e.isSet());
  EXPECT_FALSE(e.wait(0));
  e.set();
  EXPECT_TRUE(e.wait(0));
  EXPECT_TRUE(e.wait(0));  // not consumed by a wait
  e.reset();
  EXPECT_FALSE(e.wait(1));
}

TEST(eventTest, WaitForAnyGivesTheFirstSetAndWakesOnSetFromAnotherThread) {
  event a, b(true), c(true);
  EXPECT_EQ(event::waitForAny({&a, &b, &c}, 0), 1);
  b.reset();
  c.reset();
  EXPECT_EQ(event::waitForAny({&a, &b, &c}, 1), -1);
  EXPECT_EQ(event::waitForAny({}, 0), -1);
  std::thread setter([&] { c.set(); });
  EXPECT_EQ(event::waitForAny({&a, &b, &c}), 2);
  setter.join();
  EXPECT_FALSE(event::waitForAll({&a, &b, &c}, 0));
  a.set();
  b.set();
  EXPECT_TRUE(event::waitForAll({&a, &b, &c}, 0));
}

TEST(threadTest, CreatedSuspendedRunsOnlyAfterResume) {
  counter calls;
  thread t(makeDelegate(&calls, &counter::bump));
  EXPECT_TRUE(t.isCreate());
  EXPECT_TRUE(t.isSuspend());
  thread::sleep(20);
  EXPECT_EQ(calls.count, 0);
  EXPECT_FALSE(t.suspend());  // already suspended: no change
  EXPECT_TRUE(t.resume());
  EXPECT_FALSE(t.resume());
  EXPECT_TRUE(t.join());
  EXPECT_EQ(calls.count, 1);
  EXPECT_NE(t.getThreadId(), 0u);
  // Once reaped, the object can make a new thread, suspended again.
  EXPECT_TRUE(t.create());
  EXPECT_FALSE(t.create());
  EXPECT_TRUE(t.isSuspend());
  t.resume();
  EXPECT_TRUE(t.join());
  EXPECT_EQ(calls.count, 2);
}

TEST(threadTest, NeverResumedThreadIsCancelledByItsDestructor) {
  counter calls;
  { thread t(makeDelegate(&calls, &counter::bump)); }
  EXPECT_EQ(calls.count, 0);
  thread lazy(false);
  EXPECT_FALSE(lazy.isCreate());
  EXPECT_FALSE(lazy.join(0));
}

TEST(threadTest, NamedLockIsSharedByName) {
  const std::wstring name = L"threadTest-" + std::to_wstring(::getpid());
  ASSERT_TRUE(thread::wait(name, 1000));
  bool otherGotIt = true;
  std::thread other([&] { otherGotIt = thread::wait(name, 10); });
  other.join();
  EXPECT_FALSE(otherGotIt);
  EXPECT_TRUE(thread::release(name));
  EXPECT_FALSE(thread::release(name));
}

TEST(threadTimerTest, TicksWhileStartedAndStopsWhenStopped) {
  counter ticks;
  threadTimer timer(makeDelegate(&ticks, &counter::bump));
  timer.setTimeout(1);
  thread::sleep(20);
  EXPECT_EQ(ticks.count, 0) << "a timer is made stopped";

  EXPECT_TRUE(timer.startTicking());
  EXPECT_FALSE(timer.startTicking());
  ASSERT_TRUE(eventually([&] { return ticks.count >= 5; }));

  EXPECT_TRUE(timer.stopTicking());
  EXPECT_FALSE(timer.stopTicking()) << "stopping twice suspends once";
  EXPECT_FALSE(timer.isTicking());
  // A tick in progress may still end; after that nothing moves.
  const int atStop = ticks.count;
  thread::sleep(30);
  const int settled = ticks.count;
  EXPECT_LE(settled, atStop + 1);
  thread::sleep(30);
  EXPECT_EQ(ticks.count, settled);

  EXPECT_TRUE(timer.startTicking());
  ASSERT_TRUE(eventually([&] { return ticks.count >= settled + 5; }));
}

TEST(threadTimerTest, NewTimeoutWaitsForTheCurrentSleepAndDestructorEndsIt) {
  counter ticks;
  auto timer = std::make_unique<threadTimer>(makeDelegate(&ticks, &counter::bump));
  timer->setTimeout(60 * 60 * 1000);
  timer->startTicking();
  ASSERT_TRUE(eventually([&] { return ticks.count == 1; }));
  // The hour-long sleep in progress keeps its length: no second tick follows.
  timer->setTimeout(1);
  thread::sleep(30);
  EXPECT_EQ(ticks.count, 1);
  // Destruction breaks the sleep and joins the thread instead of waiting an hour.
  timer.reset();
  EXPECT_EQ(ticks.count, 1);
}

TEST(threadTimerTest, DestroyingATickingTimerLeavesNoThreadBehind) {
  auto ticks = std::make_unique<counter>();
  auto timer = std::make_unique<threadTimer>(makeDelegate(ticks.get(), &counter::bump));
  timer->setTimeout(0);
  timer->startTicking();
  ASSERT_TRUE(eventually([&] { return ticks->count >= 3; }));
  timer.reset();
  const int after = ticks->count;
  thread::sleep(20);
  EXPECT_EQ(ticks->count, after);
  ticks.reset();  // a thread still ticking would now write freed memory (caught by ASan)
}

namespace {

struct numberedJob : job {
  explicit numberedJob(int n) : number(n) {}
  int number;
};

// Records the order of jobs and the highest number running at once.
class recordingJobs : public threadJob {
 public:
  recordingJobs(int count, int sleepMs) : sleepMs(sleepMs) {
    for (int i = 0; i < count; ++i) owned.push_back(std::make_unique<numberedJob>(i));
    for (auto& j : owned) jobs.push_back(j.get());
    jobDelegate = makeDelegate(this, &recordingJobs::doJob);
  }

  void doJob(job* j) {
    const int now = ++running;
    int seen = highWater;
    while (now > seen && !highWater.compare_exchange_weak(seen, now)) {
    }
    if (sleepMs) thread::sleep(sleepMs);
    {
      std::lock_guard<std::mutex> g(orderLock);
      order.push_back(static_cast<numberedJob*>(j)->number);
    }
    --running;
  }

  std::vector<std::unique_ptr<numberedJob>> owned;
  int sleepMs;
  std::atomic<int> running{0};
  std::atomic<int> highWater{0};
  std::mutex orderLock;
  std::vector<int> order;
};

}  // namespace

TEST(threadJobTest, OneThreadRunsJobsOneAfterTheOtherInListOrder) {
  recordingJobs run(12, 0);
  run.setThreadCount(1);
  EXPECT_TRUE(run.execute(true));
  std::vector<int> expected(12);
  for (int i = 0; i < 12; ++i) expected[i] = i;
  EXPECT_EQ(run.order, expected);
  EXPECT_EQ(run.highWater, 1);
}

TEST(threadJobTest, NeverMoreThanThreadCountJobsAtOnce) {
  recordingJobs run(24, 2);
  run.setThreadCount(4);
  EXPECT_TRUE(run.execute(true));
  EXPECT_LE(run.highWater, 4);
  EXPECT_GE(run.highWater, 1);
  std::vector<int> sorted = run.order;
  std::sort(sorted.begin(), sorted.end());
  std::vector<int> expected(24);
  for (int i = 0; i < 24; ++i) expected[i] = i;
  EXPECT_EQ(sorted, expected) << "each job runs exactly once";
}

TEST(threadJobTest, ExecuteWithoutWaitingThenWait) {
  recordingJobs run(8, 1);
  run.setThreadCount(3);
  EXPECT_TRUE(run.execute(false));
  run.wait();
  EXPECT_EQ(run.order.size(), 8u);
  EXPECT_LE(run.highWater, 3);
  run.wait();  // nothing running: returns at once

  recordingJobs none(0, 0);
  EXPECT_TRUE(none.execute(true));
  EXPECT_TRUE(none.order.empty());
}

TEST(timerTest, ElapsedFreezesAtStop) {
  timer watch;
  watch.start();
  EXPECT_FALSE(watch.isStopped());
  thread::sleep(5);
  EXPECT_GE(watch.elapsed(), 1);
  watch.stop();
  EXPECT_TRUE(watch.isStopped());
  const long atStop = watch.elapsed();
  thread::sleep(5);
  EXPECT_EQ(watch.elapsed(), atStop);
}

namespace {

// Runs setOn(name) in a child process; its exit code is the answer it got.
int otherProcessSeesAnotherInstance(const std::wstring& name) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    limitSingleInstance child;
    child.setOn(name);
    ::_exit(child.isAnotherInstanceRunning() ? 1 : 0);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(limitSingleInstanceTest, SecondProcessWithTheSameNameIsDetected) {
  const std::wstring name = L"limitTest-" + std::to_wstring(::getpid());
  limitSingleInstance first;
  first.setOn(name);
  EXPECT_FALSE(first.isAnotherInstanceRunning());
  EXPECT_EQ(otherProcessSeesAnotherInstance(name), 1);
  EXPECT_EQ(otherProcessSeesAnotherInstance(name + L"-other"), 0);
  first.setOff();
  EXPECT_FALSE(first.isAnotherInstanceRunning()) << "the answer of the last setOn stays";
  EXPECT_EQ(otherProcessSeesAnotherInstance(name), 0);
}
