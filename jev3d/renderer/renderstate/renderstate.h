#pragma once

#include "jev3d/renderer/renderstate/renderStateEnums.h"
#include "jev3d/scene/node.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// A render state is a scene node: placed above a subtree, it holds for that subtree. The
// state classes derive from this and override render with renderOnSlot.
class renderstate : public SG::node, public renderStateEnums {
 public:
  renderstate() = default;

 protected:
  // The life of a state node: push this on `slot` and apply it, draw the children, pop
  // and apply the old top again.
  void renderOnSlot(renderingContext* rc, int slot);
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
