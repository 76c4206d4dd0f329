#pragma once

#include <memory>
#include <vector>

#include "jev3d/math/matrix4.h"

namespace JEV {
namespace RENDERING {

class renderer;
class cameraState;

// The cameras in force during a walk, as three stacks kept in step: the states, their
// projections and their views. Each starts with one bottom entry (identity matrices) that
// no pop removes.
class cameraStack {
 public:
  explicit cameraStack(renderer* device);
  virtual ~cameraStack();
  cameraStack(const cameraStack&) = delete;
  cameraStack& operator=(const cameraStack&) = delete;

  // With `apply` the device takes the camera's projection and view.
  void push(cameraState* state, bool apply);
  // With `apply` the device takes the camera now on top.
  void pop(bool apply);
  // Pops down to the bottom entry, with no device call.
  void popToBottom();

  cameraState* getCurrentState() const { return states.back(); }
  const MATH::matrix4<float>& getCurrentProjection() const { return projections.back(); }
  const MATH::matrix4<float>& getCurrentView() const { return views.back(); }
  int getDepth() const { return int(states.size()); }

 private:
  void apply();

  renderer* device;
  std::unique_ptr<cameraState> bottom;
  std::vector<cameraState*> states;
  std::vector<MATH::matrix4<float>> projections;
  std::vector<MATH::matrix4<float>> views;
};

}  // namespace RENDERING
}  // namespace JEV
