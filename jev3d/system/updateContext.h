#pragma once

#include <deque>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/system/FPS.h"

namespace JEV {
namespace MATH {
template <class T>
class boundingVolume;
}

namespace SYSTEM {

// The timing handed to every update of a window: rates, elapsed and total times, and a
// pause switch that freezes both counters.
class updateContext {
 public:
  updateContext();
  virtual ~updateContext() = default;
  updateContext(const updateContext&) = delete;
  updateContext& operator=(const updateContext&) = delete;

  // Called by the loop once per served update and per served frame.
  void updateUPSTime();
  void updateFPSTime();

  // A stack of borrowed bounding volumes; top is null when it is empty.
  void pushBoundingVolume(MATH::boundingVolume<float>* volume);
  void popBoundingVolume();
  MATH::boundingVolume<float>* topBoundingVolume() const;

  fieldBase<float> fps;
  fieldBase<float> ups;
  fieldBase<unsigned int> updateTime;     // ms of updates, less paused time
  fieldBase<unsigned int> updateElapsed;  // ms since the last update, 0 while paused
  fieldBase<unsigned int> frameElapsed;   // ms since the last frame, 0 while paused
  fieldBase<bool> paused;
  void* userData = nullptr;  // free for the application

  FPS frameCounter;
  FPS updateCounter;

 private:
  std::deque<MATH::boundingVolume<float>*> boundingVolumes;
};

}  // namespace SYSTEM
}  // namespace JEV
