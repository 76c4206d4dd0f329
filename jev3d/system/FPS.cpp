#include "jev3d/system/FPS.h"

#include <chrono>

namespace JEV {
namespace SYSTEM {

namespace {

const auto processStart = std::chrono::steady_clock::now();

}  // namespace

uint32_t FPS::getCurrentTime() {
  // Wall time, not processor time: a window that sleeps between frames still ages.
  return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                   std::chrono::steady_clock::now() - processStart)
                                   .count());
}

void FPS::update(bool pause) { update(pause, getCurrentTime()); }

void FPS::update(bool pause, uint32_t clock) {
  if (pause) {
    paused = true;
    elapsed = 0;
    return;
  }
  if (paused) {
    offset = static_cast<int32_t>(clock - total);
    elapsed = 0;
    paused = false;
    return;
  }
  const uint32_t t = clock - static_cast<uint32_t>(offset);
  elapsed = t - total;
  total = t;
  add(elapsed, clock);
}

void FPS::add(uint32_t interval) { add(interval, getCurrentTime()); }

void FPS::add(uint32_t interval, uint32_t clock) {
  samples[count & 31] = interval;
  ++count;
  // Unsigned on purpose: in the process's first second the subtraction wraps, and every
  // sample recomputes the average, so a young window shows a rate at once.
  if (lastAverageClock < clock - 1024) {
    lastAverageClock = clock;
    uint64_t sum = 0;
    for (uint32_t s : samples) sum += s;
    const uint32_t n = count < 32 ? count : 32;
    average = static_cast<float>(sum) / static_cast<float>(n);
  }
}

}  // namespace SYSTEM
}  // namespace JEV
