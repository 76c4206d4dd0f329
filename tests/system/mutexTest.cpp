#include "jev3d/system/mutex.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>

using namespace JEV::SYSTEM;

namespace {

std::wstring uniqueName() {
  std::random_device rd;
  return L"mutexTest-" + std::to_wstring(getpid()) + L"-" + std::to_wstring(rd());
}

}  // namespace

TEST(mutex, neverCreatedFails) {
  mutex m(false);
  EXPECT_EQ(m.wait(0), WAIT_FAILED);
  EXPECT_FALSE(m.release());
}

TEST(mutex, narrowNameCreatesTheSameNamedLock) {
  const std::wstring wide = uniqueName();
  const std::string narrow(wide.begin(), wide.end());
  mutex m(false);
  ASSERT_TRUE(m.create(narrow));
  EXPECT_EQ(m.getName(), wide);
  EXPECT_EQ(m.wait(0), WAIT_OBJECT_0);
  // the wide form of the name opens the same lock: another thread cannot take it
  mutex other(wide);
  unsigned long result = 0;
  std::thread([&] { result = other.wait(0); }).join();
  EXPECT_EQ(result, WAIT_TIMEOUT);
  EXPECT_TRUE(m.release());
}

TEST(mutex, ownerMayTakeItAgain) {
  mutex m;
  ASSERT_EQ(m.wait(INFINITE), WAIT_OBJECT_0);
  EXPECT_EQ(m.wait(0), WAIT_OBJECT_0);
  EXPECT_TRUE(m.release());
  EXPECT_TRUE(m.release());
  EXPECT_FALSE(m.release());
}

TEST(mutex, otherThreadTimesOutAndCannotRelease) {
  for (bool named : {false, true}) {
    mutex m(false);
    named ? m.create(uniqueName()) : m.create();
    ASSERT_EQ(m.wait(INFINITE), WAIT_OBJECT_0);
    unsigned long result = 0;
    bool released = true;
    std::thread t([&] {
      result = m.wait(20);
      released = m.release();
    });
    t.join();
    EXPECT_EQ(result, WAIT_TIMEOUT) << "named " << named;
    EXPECT_FALSE(released);
    EXPECT_TRUE(m.release());
    std::thread t2([&] {
      result = m.wait(1000);
      if (result == WAIT_OBJECT_0) m.release();
    });
    t2.join();
    EXPECT_EQ(result, WAIT_OBJECT_0);
  }
}

TEST(mutex, excludesThreads) {
  mutex m;
  int counter = 0;
  std::atomic<bool> overlap{false};
  std::atomic<int> inside{0};
  auto work = [&] {
    for (int i = 0; i < 2000; ++i) {
      m.wait(INFINITE);
      if (inside.fetch_add(1) != 0) overlap = true;
      ++counter;
      inside.fetch_sub(1);
      m.release();
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_FALSE(overlap);
  EXPECT_EQ(counter, 4000);
}

TEST(mutex, namedLockIsSeenByAnotherProcess) {
  const std::wstring name = uniqueName();
  mutex held(name);
  ASSERT_EQ(held.wait(INFINITE), WAIT_OBJECT_0);

  int toParent[2], toChild[2];
  ASSERT_EQ(pipe(toParent), 0);
  ASSERT_EQ(pipe(toChild), 0);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    mutex other(name);
    char answer = other.wait(50) == WAIT_TIMEOUT ? 'T' : 'F';
    (void)!write(toParent[1], &answer, 1);
    char go;
    (void)!read(toChild[0], &go, 1);
    answer = other.wait(5000) == WAIT_OBJECT_0 ? 'T' : 'F';
    (void)!write(toParent[1], &answer, 1);
    _exit(0);
  }
  char answer = 0;
  ASSERT_EQ(read(toParent[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'T') << "a second process could take a held named mutex";
  EXPECT_TRUE(held.release());
  const char go = 'g';
  ASSERT_EQ(write(toChild[1], &go, 1), 1);
  ASSERT_EQ(read(toParent[0], &answer, 1), 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(answer, 'T') << "the named mutex stayed locked after release";
}
