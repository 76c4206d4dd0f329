#pragma once

#include "jev3d/math/matrix4.h"
#include "jev3d/scene/node.h"

namespace JEV {
namespace RENDERING {

// A model transform for a subtree. The transform stack composes it with what is above:
// a child's points go through its own matrix first, then its parents'.
class transformState : public SG::node {
 public:
  transformState() = default;
  explicit transformState(const MATH::matrix4<float>& matrix);
  // Copies the matrix only: the copy has no links and no id.
  transformState(const transformState& other);
  transformState& operator=(const transformState&) = delete;

  // Pushes without applying, so that the children's update sees the composed transform.
  void update(renderingContext* rc, SYSTEM::updateContext* uc) override;
  // Pushes and applies; pops and applies the transform above again.
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<MATH::matrix4<float>> matrix;
};

}  // namespace RENDERING
}  // namespace JEV
