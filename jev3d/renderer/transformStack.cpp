#include "jev3d/renderer/transformStack.h"

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace RENDERING {

transformStack::transformStack(renderer* d) : device(d) {}

void transformStack::push(transformState* state, bool apply) {
  // Row vectors: p·(child·parent) applies the child's matrix first.
  composed.push_back(state->matrix.cV() * getCurrentMatrix());
  states.push_back(state);
  if (apply && device) device->setTransformState(composed.back());
}

void transformStack::pop(bool apply) {
  if (!states.empty()) {
    states.pop_back();
    composed.pop_back();
  }
  if (apply && device) device->setTransformState(getCurrentMatrix());
}

void transformStack::clear() {
  states.clear();
  composed.clear();
}

const MATH::matrix4<float>& transformStack::getCurrentMatrix() const {
  return composed.empty() ? MATH::matrix4<float>::IDENTITY() : composed.back();
}

transformState* transformStack::getCurrentState() const {
  return states.empty() ? nullptr : states.back();
}

}  // namespace RENDERING
}  // namespace JEV
