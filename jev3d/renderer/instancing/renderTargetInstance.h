#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
class renderTarget;
class renderer;
namespace INSTANCING {

// Where a subtree draws (stack slot 79): the window, or a target of its own. It brings
// its own viewport and scissor, which the state stack pushes and pops with it, and says
// what a clear at its begin clears.
class renderTargetInstance : public RENDERSTATE::renderstate {
 public:
  renderTargetInstance() = default;
  void render(renderingContext* rc) override;

  // The window is the target of an instance that holds no target.
  bool isWindowTarget() const { return target == nullptr; }
  renderTarget* getTarget() const { return target; }
  // Draws into `value` from now on, or into the window for null. Not owned.
  void setTarget(renderTarget* value) { target = value; }
  // Puts an off-screen target on the device unless it is there; true for the window.
  bool cacheResource(renderer* device);

  RENDERSTATE::scissorstate scissor;
  RENDERSTATE::viewportstate viewport;
  SYSTEM::fieldBase<CORE::color> clearColour{CORE::color(0, 0, 0, 255)};
  SYSTEM::fieldBase<bool> clearColorBuffer{true};
  SYSTEM::fieldBase<bool> clearDepthBuffer{true};
  SYSTEM::fieldBase<bool> clearStencilBuffer{false};

 private:
  renderTarget* target = nullptr;
};

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
