#include "jev3d/renderer/renderstate/renderstate.h"

#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

void renderstate::renderOnSlot(renderingContext* rc, int slot) {
  renderStateStack* stack = rc->getRenderStateStack();
  stack->pushState(slot, this, true);
  {
    // A child may erase this node during the walk; the stack's top is then dangling and
    // must come off without being applied.
    walkScope scope;
    SG::node::render(rc);
    if (destroyedDuringWalk(this)) {
      stack->popState(slot, false);
      return;
    }
  }
  stack->popState(slot, true);
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
