#include "jev3d/system/threadTimer.h"

#include <chrono>

namespace JEV {
namespace SYSTEM {

threadTimer::threadTimer() : threadTimer(sharedPointer<delegate>()) {}

threadTimer::threadTimer(const sharedPointer<delegate>& d)
    : tickDelegate(d), worker(makeDelegate(this, &threadTimer::tick), true) {}

threadTimer::~threadTimer() {
  {
    std::lock_guard<std::mutex> g(sleepLock);
    ending = true;
  }
  sleepEnd.notify_all();
  worker.requestEnd();
  worker.join();
}

void threadTimer::tick() {
  while (worker.waitWhileSuspended()) {
    if (tickDelegate.get()) tickDelegate->invoke();
    const long period = timeout;
    std::unique_lock<std::mutex> l(sleepLock);
    if (sleepEnd.wait_for(l, std::chrono::milliseconds(period > 0 ? period : 0),
                          [this] { return ending; })) {
      return;
    }
  }
}

bool threadTimer::startTicking() { return worker.resume(); }

bool threadTimer::stopTicking() { return worker.suspend(); }

}  // namespace SYSTEM
}  // namespace JEV
