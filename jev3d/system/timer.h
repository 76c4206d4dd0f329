#pragma once

namespace JEV {
namespace SYSTEM {

// A stopwatch in milliseconds on a steady clock.
class timer {
 public:
  timer() = default;
  virtual ~timer() = default;

  // Clears the stopped state and takes the start time.
  void start();
  // Milliseconds from the start to now, or to the stop time once stopped.
  long elapsed() const;
  // Takes the stop time and marks the watch stopped.
  void stop();
  bool isStopped() const { return stopped; }

 private:
  bool stopped = false;
  long startTime = 0;
  long stopTime = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
