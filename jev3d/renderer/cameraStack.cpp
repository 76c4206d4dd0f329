#include "jev3d/renderer/cameraStack.h"

#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace RENDERING {

cameraStack::cameraStack(renderer* d) : device(d), bottom(new cameraState()) {
  states.push_back(bottom.get());
  projections.push_back(bottom->projection.cV());
  views.push_back(bottom->view.cV());
}

cameraStack::~cameraStack() = default;

void cameraStack::push(cameraState* state, bool applyNow) {
  states.push_back(state);
  projections.push_back(state->projection.cV());
  views.push_back(state->view.cV());
  if (applyNow) apply();
}

void cameraStack::pop(bool applyNow) {
  if (states.size() > 1) {
    states.pop_back();
    projections.pop_back();
    views.pop_back();
  }
  if (applyNow) apply();
}

void cameraStack::popToBottom() {
  states.resize(1);
  projections.resize(1);
  views.resize(1);
}

void cameraStack::apply() {
  if (device) device->setCameraState(projections.back(), views.back());
}

}  // namespace RENDERING
}  // namespace JEV
