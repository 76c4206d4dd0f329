#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "jev3d/system/delegate.h"
#include "jev3d/system/mutex.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

// Scheduling levels, with the numbers of the usual desktop scale. On Linux they map to
// nice values; raising above normal needs the privilege to do so.
enum THREAD_PRIORITY {
  PRIORITY_IDLE = -15,
  PRIORITY_LOWEST = -2,
  PRIORITY_BELOW_NORMAL = -1,
  PRIORITY_NORMAL = 0,
  PRIORITY_ABOVE_NORMAL = 1,
  PRIORITY_HIGHEST = 2,
  PRIORITY_TIME_CRITICAL = 15
};

// A platform thread that runs `run` once. It is created suspended: nothing runs before
// the first `resume`. Later suspension is a gate that the thread's own loop passes through
// `waitWhileSuspended`; code that never calls it runs on until it ends.
//
// Destruction never blocks on a running thread: a thread that was never resumed is
// cancelled and joined, a finished one is joined, and one still running is left to end
// on its own (its object must not be needed by then). Use `join` to wait for it.
class thread {
 public:
  // With `create`, makes the suspended platform thread at once.
  explicit thread(bool create = true);
  thread(const sharedPointer<delegate>& runDelegate, bool create = true);
  virtual ~thread();
  thread(const thread&) = delete;
  thread& operator=(const thread&) = delete;

  // The thread's work: invokes the run delegate with no arguments, if there is one.
  virtual void run();

  // Makes the platform thread, suspended. False if it exists already or cannot be made.
  bool create();
  bool isCreate() const;
  // The native handle, or a default value before `create`.
  std::thread::native_handle_type getHandleThread() const;
  // The kernel's id of the thread, 0 until it has started running.
  uint32_t getThreadId() const;
  // There are no thread message queues on this platform: always false.
  bool postThreadMessage(unsigned message, uint64_t wParam, int64_t lParam);
  // Sleeps the calling thread.
  static void sleep(long milliseconds);
  // Applies the level now, or at start if the thread has not started. False if the
  // system refuses it.
  bool setPriority(THREAD_PRIORITY level);
  THREAD_PRIORITY getPriority() const { return priority; }

  // Each acts only if the state changes, and returns whether it did.
  bool suspend();
  bool resume();
  bool isSuspend() const;

  // For the thread's own code: blocks while the thread is suspended. False once the
  // thread has been asked to end (by `requestEnd`), true otherwise.
  bool waitWhileSuspended() const;
  // Asks the thread's loop to end: opens the gate for good and makes
  // `waitWhileSuspended` return false.
  void requestEnd();
  // Waits up to `milliseconds` for `run` to return and reaps the thread. False on
  // time-out, when called from the thread itself, or when there is no thread.
  bool join(unsigned long milliseconds = INFINITE);

  // Lock helpers: wait for a mutex up to `milliseconds` (true when owned) and give it
  // back. The named forms use one process-wide mutex per name.
  static bool wait(const mutex& lock, long milliseconds);
  static bool wait(const std::wstring& name, long milliseconds);
  static bool release(const mutex& lock);
  static bool release(const std::wstring& name);

 protected:
  sharedPointer<delegate> runDelegate;

 private:
  struct sharedState;
  static void entry(thread* self, std::shared_ptr<sharedState> state);

  std::shared_ptr<sharedState> state;
  std::thread handle;
  THREAD_PRIORITY priority = PRIORITY_NORMAL;
};

}  // namespace SYSTEM
}  // namespace JEV
