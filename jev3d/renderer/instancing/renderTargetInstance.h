#pragma once

#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/resources/renderTargetStorage.h"
#include "jev3d/resources/resourceInstance.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
class renderTarget;
class renderer;
namespace INSTANCING {

// Where a subtree draws (stack slot 79): the window, or a target of its own. It brings
// its own viewport and scissor, which the state stack pushes and pops with it, and says
// what a clear at its begin clears. Its target is either one of a storage's, by name, or
// one given directly with setTarget, which comes first.
class renderTargetInstance
    : public RENDERSTATE::renderstate,
      public CORE::resourceInstance<CORE::renderTargetStorage, CORE::renderTargetClient,
                                    SYSTEM::sharedPointer<renderTarget>> {
 public:
  explicit renderTargetInstance(CORE::renderTargetStorage* storage = nullptr);
  void render(renderingContext* rc) override;

  // The window is the target of an instance that holds no target.
  bool isWindowTarget() const { return getTarget() == nullptr; }
  renderTarget* getTarget() const;
  // Draws into `value` from now on, or into the storage's target (the window without one)
  // for null. Not owned.
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
