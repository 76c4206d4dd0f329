#pragma once

#include <vector>

#include "jev3d/math/matrix4.h"

namespace JEV {
namespace RENDERING {

class renderer;
class transformState;

// The transform states in force during a walk, each with the matrix composed down to it.
// Empty, the transform is the identity.
class transformStack {
 public:
  explicit transformStack(renderer* device);
  virtual ~transformStack() = default;
  transformStack(const transformStack&) = delete;
  transformStack& operator=(const transformStack&) = delete;

  // Composes `state` under the current top; with `apply` the device takes the result.
  void push(transformState* state, bool apply);
  // Removes the top, if any; with `apply` the device takes the matrix now on top.
  void pop(bool apply);
  void clear();

  const MATH::matrix4<float>& getCurrentMatrix() const;
  // The state on top, null when empty.
  transformState* getCurrentState() const;
  int getDepth() const { return int(states.size()); }

 private:
  renderer* device;
  std::vector<transformState*> states;
  std::vector<MATH::matrix4<float>> composed;
};

}  // namespace RENDERING
}  // namespace JEV
