#pragma once

#include "jev3d/math/matrix4.h"
#include "jev3d/scene/node.h"

namespace JEV {
namespace RENDERING {

// A camera for a subtree: projection and view matrices (row-vector form, so a point goes
// p·view·projection).
class cameraState : public SG::node {
 public:
  cameraState() = default;
  cameraState(const MATH::matrix4<float>& projection, const MATH::matrix4<float>& view);
  // Copies the matrices only.
  cameraState(const cameraState& other);
  cameraState& operator=(const cameraState&) = delete;

  void update(renderingContext* rc, SYSTEM::updateContext* uc) override;
  void render(renderingContext* rc) override;

  SYSTEM::fieldBase<MATH::matrix4<float>> projection;
  SYSTEM::fieldBase<MATH::matrix4<float>> view;
};

}  // namespace RENDERING
}  // namespace JEV
