#pragma once

#include <cstdint>

namespace JEV {
namespace SYSTEM {

// Measures a rate from the intervals between calls of update: the average of the last 32
// intervals, recomputed about once a second. Times are milliseconds of a monotonic clock
// that starts with the process.
class FPS {
 public:
  FPS() = default;
  virtual ~FPS() = default;

  // With `pause`, freezes the total and reports no elapsed time. The first call after a
  // pause, and the first call ever, only resumes, so the total continues without a jump.
  void update(bool pause);
  void update(bool pause, uint32_t clock);
  // Records one interval.
  void add(uint32_t interval);
  void add(uint32_t interval, uint32_t clock);

  // 1000 / the average interval; 10 before any average was taken.
  float getFps() const { return 1000.0f / average; }
  float getAverage() const { return average; }
  uint32_t getElapsedTime() const { return elapsed; }
  uint32_t getTotalTime() const { return total; }
  void setTotalTime(uint32_t t) { total = t; }
  bool isPaused() const { return paused; }
  static uint32_t getCurrentTime();

 private:
  uint32_t samples[32] = {};
  uint32_t count = 0;
  float average = 100.0f;
  uint32_t lastAverageClock = 0;
  uint32_t elapsed = 0;
  uint32_t total = 0;
  bool paused = true;
  int32_t offset = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
