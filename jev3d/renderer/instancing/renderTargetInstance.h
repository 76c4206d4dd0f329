#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

// Where a subtree draws (stack slot 79): the window, or a target of its own. It brings
// its own viewport and scissor, which the state stack pushes and pops with it, and says
// what a clear at its begin clears.
class renderTargetInstance : public RENDERSTATE::renderstate {
 public:
  renderTargetInstance() = default;
  void render(renderingContext* rc) override;

  // The window is the target of an instance that holds no target resource.
  bool isWindowTarget() const { return true; }

  RENDERSTATE::scissorstate scissor;
  RENDERSTATE::viewportstate viewport;
  SYSTEM::fieldBase<CORE::color> clearColour{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<bool> clearColorBuffer{true};
  SYSTEM::fieldBase<bool> clearDepthBuffer{true};
  SYSTEM::fieldBase<bool> clearStencilBuffer{false};
};

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
