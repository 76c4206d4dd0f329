#include "jev3d/system/updateContext.h"

namespace JEV {
namespace SYSTEM {

updateContext::updateContext() : paused(false) {}

void updateContext::updateUPSTime() {
  updateCounter.update(paused.cV());
  ups = 1000.0f / updateCounter.getAverage();
  updateTime = updateCounter.getTotalTime();
  updateElapsed = updateCounter.getElapsedTime();
}

void updateContext::updateFPSTime() {
  frameCounter.update(paused.cV());
  fps = 1000.0f / frameCounter.getAverage();
  frameElapsed = frameCounter.getElapsedTime();
}

void updateContext::pushBoundingVolume(MATH::boundingVolume<float>* volume) {
  boundingVolumes.push_back(volume);
}

void updateContext::popBoundingVolume() {
  if (!boundingVolumes.empty()) boundingVolumes.pop_back();
}

MATH::boundingVolume<float>* updateContext::topBoundingVolume() const {
  return boundingVolumes.empty() ? nullptr : boundingVolumes.back();
}

}  // namespace SYSTEM
}  // namespace JEV
