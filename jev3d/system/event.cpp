#include "jev3d/system/event.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace JEV {
namespace SYSTEM {

namespace {

// Events are few (job slots, init threads), so one lock and one condition for all of
// them keep waiting on several events simple and free of lost wake-ups.
std::mutex& eventLock() {
  static std::mutex m;
  return m;
}

std::condition_variable& eventChanged() {
  static std::condition_variable c;
  return c;
}

template <class Predicate>
bool waitUntil(std::unique_lock<std::mutex>& lock, unsigned long milliseconds, Predicate ready) {
  if (milliseconds == INFINITE) {
    eventChanged().wait(lock, ready);
    return true;
  }
  return eventChanged().wait_for(lock, std::chrono::milliseconds(milliseconds), ready);
}

}  // namespace

event::event(bool initiallySet) : state(initiallySet) {}

void event::set() {
  {
    std::lock_guard<std::mutex> g(eventLock());
    state = true;
  }
  eventChanged().notify_all();
}

void event::reset() {
  std::lock_guard<std::mutex> g(eventLock());
  state = false;
}

bool event::isSet() const {
  std::lock_guard<std::mutex> g(eventLock());
  return state;
}

bool event::wait(unsigned long milliseconds) const {
  std::unique_lock<std::mutex> lock(eventLock());
  return waitUntil(lock, milliseconds, [this] { return state; });
}

int event::waitForAny(const std::vector<event*>& events, unsigned long milliseconds) {
  int found = -1;
  auto anySet = [&] {
    for (size_t i = 0; i < events.size(); ++i) {
      if (events[i]->state) {
        found = static_cast<int>(i);
        return true;
      }
    }
    return false;
  };
  std::unique_lock<std::mutex> lock(eventLock());
  if (events.empty()) return -1;
  return waitUntil(lock, milliseconds, anySet) ? found : -1;
}

bool event::waitForAll(const std::vector<event*>& events, unsigned long milliseconds) {
  auto allSet = [&] {
    for (const event* e : events) {
      if (!e->state) return false;
    }
    return true;
  };
  std::unique_lock<std::mutex> lock(eventLock());
  return waitUntil(lock, milliseconds, allSet);
}

}  // namespace SYSTEM
}  // namespace JEV
