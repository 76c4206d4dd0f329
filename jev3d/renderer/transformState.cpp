#include "jev3d/renderer/transformState.h"

#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/transformStack.h"

namespace JEV {
namespace RENDERING {

transformState::transformState(const MATH::matrix4<float>& m) : matrix(m) {}

transformState::transformState(const transformState& other)
    : SG::node(), matrix(other.matrix.cV()) {}

void transformState::update(renderingContext* rc, SYSTEM::updateContext* uc) {
  transformStack* stack = rc->getTransformStack();
  stack->push(this, false);
  SG::node::update(rc, uc);
  stack->pop(false);
}

void transformState::render(renderingContext* rc) {
  transformStack* stack = rc->getTransformStack();
  stack->push(this, true);
  SG::node::render(rc);
  stack->pop(true);
}

}  // namespace RENDERING
}  // namespace JEV
