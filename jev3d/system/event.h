#pragma once

#include <cstddef>
#include <vector>

#include "jev3d/system/mutex.h"

namespace JEV {
namespace SYSTEM {

// A manual-reset event: once set it stays set, releasing every waiter, until reset.
// Safe to use from any thread.
class event {
 public:
  explicit event(bool initiallySet = false);
  virtual ~event() = default;
  event(const event&) = delete;
  event& operator=(const event&) = delete;

  void set();
  void reset();
  bool isSet() const;

  // Waits up to `milliseconds` (INFINITE for ever) for the event to be set. True if it is.
  bool wait(unsigned long milliseconds = INFINITE) const;

  // Waits up to `milliseconds` until any of `events` is set; returns the index of the
  // first set one, or -1 on time-out or an empty list.
  static int waitForAny(const std::vector<event*>& events, unsigned long milliseconds = INFINITE);
  // Waits up to `milliseconds` until all of `events` are set. True if they are.
  static bool waitForAll(const std::vector<event*>& events, unsigned long milliseconds = INFINITE);

 private:
  bool state;
};

}  // namespace SYSTEM
}  // namespace JEV
