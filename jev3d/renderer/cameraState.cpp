#include "jev3d/renderer/cameraState.h"

#include "jev3d/renderer/cameraStack.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace RENDERING {

cameraState::cameraState(const MATH::matrix4<float>& p, const MATH::matrix4<float>& v)
    : projection(p), view(v) {}

cameraState::cameraState(const cameraState& other)
    : SG::node(), projection(other.projection.cV()), view(other.view.cV()) {}

void cameraState::update(renderingContext* rc, SYSTEM::updateContext* uc) {
  cameraStack* stack = rc->getCameraStack();
  stack->push(this, false);
  SG::node::update(rc, uc);
  stack->pop(false);
}

void cameraState::render(renderingContext* rc) {
  cameraStack* stack = rc->getCameraStack();
  stack->push(this, true);
  SG::node::render(rc);
  stack->pop(true);
}

}  // namespace RENDERING
}  // namespace JEV
