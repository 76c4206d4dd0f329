#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "jev3d/renderer/renderstate/renderStateEnums.h"

namespace JEV {
namespace RENDERING {
class renderer;
namespace INSTANCING {
class textureInstance;
class renderTargetInstance;
}  // namespace INSTANCING
namespace RENDERSTATE {

class renderstate;
class alphastate;
class blendstate;
class clipPlanestate;
class colorbufferstate;
class colorMaterialstate;
class cullstate;
class fogState;
class lightingstate;
class lightstate;
class materialstate;
class pointSizestate;
class scissorstate;
class viewportstate;
class wireframestate;
class zbufferstate;

// One stack of states a kind (RENDER_STATE, 256 slots): the top of each is what holds for
// the part of the scene being drawn. State nodes push themselves around their subtree.
// Every slot in use starts with a bottom entry, owned by the stack, that no pop removes.
// States are applied on every push and pop; only the device may skip a call, by its own
// copy of the state. Belongs to the drawing thread.
class renderStateStack : public renderStateEnums {
 public:
  // Pushes the bottom entries; no device call.
  explicit renderStateStack(renderer* device);
  virtual ~renderStateStack();
  renderStateStack(const renderStateStack&) = delete;
  renderStateStack& operator=(const renderStateStack&) = delete;

  // Appends `state` on `kind` and, with `apply`, applies it. A render target brings its
  // scissor and viewport onto their stacks. False when the scissor or viewport computed
  // to nothing (the device keeps its rectangle, the stack the entry) or the device
  // refused; also for a slot out of range or a null state, with nothing pushed.
  bool pushState(RENDER_STATE kind, renderstate* state, bool apply);
  bool pushState(int kind, renderstate* state, bool apply);
  // Removes the top of `kind` and, with `apply`, applies the new top. A render target
  // takes its viewport and scissor with it. The bottom entries stay.
  void popState(RENDER_STATE kind, bool apply);
  void popState(int kind, bool apply);
  // Pops every stack down to its bottom entries, with no device call.
  void popToBottom();

  const alphastate& getCurrentAlphaState() const;
  const clipPlanestate& getCurrentClipPlaneState(CLIP_PLANE plane) const;
  const fogState& getCurrentFogState() const;
  const blendstate& getCurrentBlendState() const;
  const cullstate& getCurrentCullState() const;
  const lightingstate& getCurrentLightingState() const;
  const lightstate& getCurrentLightState(LIGHT_SOURCE light) const;
  const colorMaterialstate& getCurrentColorMaterialState() const;
  const materialstate& getCurrentMaterialState() const;
  INSTANCING::textureInstance& getCurrentTextureState(TEXTURE_ACTIVE unit) const;
  const zbufferstate& getCurrentZbufferState() const;
  const colorbufferstate& getCurrentColorBufferState() const;
  const viewportstate& getCurrentViewportState() const;
  const scissorstate& getCurrentScissorState() const;
  const wireframestate& getCurrentWireFrameState() const;
  const pointSizestate& getCurrentPointSizeState() const;
  INSTANCING::renderTargetInstance& getCurrentRenderTargetState() const;
  // The top of any slot, null for an empty or out-of-range one.
  renderstate* getCurrentState(int kind) const;
  // Entries on `kind`, bottom entries included; 0 out of range.
  int getDepth(int kind) const;

  renderer* getRenderer() const { return device; }

 private:
  bool applyCurrentState(RENDER_STATE kind, bool clearTarget);
  bool applyCurrentState(int kind, bool clearTarget);
  void pushBottom(int kind, renderstate* state);
  // computeSize, then the device only when something remains.
  bool applySize(scissorstate& scissor);
  bool applySize(viewportstate& viewport);
  bool beginTarget(INSTANCING::renderTargetInstance& target, bool clearTarget);
  void removeTop(int kind);

  std::deque<renderstate*> stacks[RENDER_STATE_COUNT];
  renderer* device;
  // What the constructor pushed, which no pop goes below.
  int bottomDepth[RENDER_STATE_COUNT] = {};
  std::vector<std::unique_ptr<renderstate>> bottomEntries;
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
