#include "jev3d/system/timer.h"

#include <chrono>

namespace JEV {
namespace SYSTEM {

namespace {

long nowMilliseconds() {
  using namespace std::chrono;
  return static_cast<long>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

void timer::start() {
  stopped = false;
  startTime = nowMilliseconds();
}

long timer::elapsed() const { return (stopped ? stopTime : nowMilliseconds()) - startTime; }

void timer::stop() {
  stopTime = nowMilliseconds();
  stopped = true;
}

}  // namespace SYSTEM
}  // namespace JEV
