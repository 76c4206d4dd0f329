#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "jev3d/system/delegate.h"
#include "jev3d/system/sharedPointer.h"
#include "jev3d/system/thread.h"

namespace JEV {
namespace SYSTEM {

// A thread that invokes a delegate, sleeps `timeout` ms, and again, for as long as it
// ticks. A tick starts `timeout` ms after the end of the last one, so the delegate's own
// time adds to the period. It is made stopped: `startTicking` lets it run.
class threadTimer {
 public:
  threadTimer();
  explicit threadTimer(const sharedPointer<delegate>& tickDelegate);
  // Stops the loop and waits for a tick in progress to end. Must not run inside the
  // timer's own tick.
  virtual ~threadTimer();
  threadTimer(const threadTimer&) = delete;
  threadTimer& operator=(const threadTimer&) = delete;

  // The loop run by the worker thread.
  virtual void tick();

  // The period in ms; the sleep in progress keeps the old one.
  void setTimeout(long milliseconds) { timeout = milliseconds; }
  long getTimeout() const { return timeout; }
  // Lets ticks run; false if they already did. The first tick comes at once.
  bool startTicking();
  // Stops ticks: a tick in progress ends, and no other starts until `startTicking`.
  // False if they were stopped already.
  bool stopTicking();
  bool isTicking() const { return !worker.isSuspend(); }

 private:
  sharedPointer<delegate> tickDelegate;
  std::atomic<long> timeout{10};
  std::mutex sleepLock;
  std::condition_variable sleepEnd;
  bool ending = false;
  thread worker;  // last: its thread may start using the members above
};

}  // namespace SYSTEM
}  // namespace JEV
