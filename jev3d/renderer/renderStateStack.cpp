#include "jev3d/renderer/renderStateStack.h"

#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/clipPlanestate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/colorbufferstate.h"
#include "jev3d/renderer/renderstate/cullstate.h"
#include "jev3d/renderer/renderstate/fogState.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

renderStateStack::renderStateStack(renderer* d) : device(d) {
  pushBottom(ALPHA_STATE, new alphastate());
  for (int p = 0; p < CLIP_PLANE_COUNT; ++p) {
    auto* plane = new clipPlanestate();
    plane->plane = CLIP_PLANE(p);
    pushBottom(CLIP_PLANE_STATE0 + p, plane);
  }
  pushBottom(BLEND_STATE, new blendstate());
  pushBottom(CULL_STATE, new cullstate());
  pushBottom(LIGHTING_STATE, new lightingstate());
  for (int l = 0; l < LIGHT_SOURCE_COUNT; ++l) {
    auto* light = new lightstate();
    light->light = unsigned(l);
    pushBottom(LIGHT_STATE0 + l, light);
  }
  pushBottom(COLOR_MATERIAL_STATE, new colorMaterialstate());
  pushBottom(MATERIAL_STATE, new materialstate());
  for (int t = 0; t < TEXTURE_ACTIVE_COUNT; ++t) {
    pushBottom(TEXTURE_STATE0 + t, new INSTANCING::textureInstance(TEXTURE_ACTIVE(t)));
  }
  pushBottom(ZBUFFER_STATE, new zbufferstate());
  pushBottom(COLOR_BUFFER_STATE, new colorbufferstate());
  pushBottom(VIEWPORT_STATE, new viewportstate());
  pushBottom(SCISSOR_STATE, new scissorstate());
  pushBottom(WIREFRAME_STATE, new wireframestate());
  pushBottom(POINT_SIZE_STATE, new pointSizestate(1.0f));
  pushBottom(FOG_STATE, new fogState());
  auto* target = new INSTANCING::renderTargetInstance();
  pushBottom(RENDER_TARGET_STATE, target);
  // The target's members are its own; they sit on the stacks but are not owned here.
  stacks[SCISSOR_STATE].push_back(&target->scissor);
  ++bottomDepth[SCISSOR_STATE];
  stacks[VIEWPORT_STATE].push_back(&target->viewport);
  ++bottomDepth[VIEWPORT_STATE];
}

renderStateStack::~renderStateStack() {
  for (auto& s : stacks) s.clear();
  bottomEntries.clear();
}

void renderStateStack::pushBottom(int kind, renderstate* state) {
  bottomEntries.emplace_back(state);
  stacks[kind].push_back(state);
  ++bottomDepth[kind];
}

bool renderStateStack::pushState(RENDER_STATE kind, renderstate* state, bool apply) {
  return pushState(int(kind), state, apply);
}

bool renderStateStack::pushState(int kind, renderstate* state, bool apply) {
  if (kind < 0 || kind >= RENDER_STATE_COUNT || !state) return false;
  stacks[kind].push_back(state);
  if (kind != RENDER_TARGET_STATE) return apply ? applyCurrentState(kind, true) : true;

  // A target never goes without its own scissor and viewport.
  auto& target = static_cast<INSTANCING::renderTargetInstance&>(*state);
  bool ok = apply ? beginTarget(target, true) : true;
  stacks[SCISSOR_STATE].push_back(&target.scissor);
  if (apply) ok = applySize(target.scissor) && ok;
  stacks[VIEWPORT_STATE].push_back(&target.viewport);
  if (apply) ok = applySize(target.viewport) && ok;
  return ok;
}

void renderStateStack::popState(RENDER_STATE kind, bool apply) { popState(int(kind), apply); }

void renderStateStack::popState(int kind, bool apply) {
  if (kind < 0 || kind >= RENDER_STATE_COUNT) return;
  if (kind != RENDER_TARGET_STATE) {
    removeTop(kind);
    if (!apply) return;
    // A rectangle on the stack was computed when it was pushed.
    if (kind == VIEWPORT_STATE) {
      device->setViewportState(static_cast<viewportstate&>(*stacks[kind].back()));
    } else if (kind == SCISSOR_STATE) {
      device->setScissorState(static_cast<scissorstate&>(*stacks[kind].back()));
    } else {
      applyCurrentState(kind, false);
    }
    return;
  }
  if (int(stacks[kind].size()) <= bottomDepth[kind]) return;
  removeTop(VIEWPORT_STATE);
  removeTop(SCISSOR_STATE);
  removeTop(RENDER_TARGET_STATE);
  if (!apply) return;
  applySize(static_cast<viewportstate&>(*stacks[VIEWPORT_STATE].back()));
  applySize(static_cast<scissorstate&>(*stacks[SCISSOR_STATE].back()));
  beginTarget(static_cast<INSTANCING::renderTargetInstance&>(*stacks[kind].back()), false);
}

void renderStateStack::removeTop(int kind) {
  if (int(stacks[kind].size()) > bottomDepth[kind]) stacks[kind].pop_back();
}

void renderStateStack::popToBottom() {
  for (int k = 0; k < RENDER_STATE_COUNT; ++k) stacks[k].resize(size_t(bottomDepth[k]));
}

bool renderStateStack::applySize(scissorstate& scissor) {
  return scissor.computeSize(device) && device->setScissorState(scissor);
}

bool renderStateStack::applySize(viewportstate& viewport) {
  return viewport.computeSize(device) && device->setViewportState(viewport);
}

bool renderStateStack::beginTarget(INSTANCING::renderTargetInstance& target, bool clearTarget) {
  target.cacheResource(device);
  if (!device->beginScene(target)) return false;
  return !clearTarget || device->clear(target);
}

bool renderStateStack::applyCurrentState(RENDER_STATE kind, bool clearTarget) {
  return applyCurrentState(int(kind), clearTarget);
}

bool renderStateStack::applyCurrentState(int kind, bool clearTarget) {
  if (kind < 0 || kind >= RENDER_STATE_COUNT || stacks[kind].empty()) return false;
  renderstate& top = *stacks[kind].back();
  if (kind >= LIGHT_STATE0 && kind <= LIGHT_STATE23) {
    return device->setLightState(static_cast<lightstate&>(top));
  }
  if (kind >= TEXTURE_STATE0 && kind <= TEXTURE_STATE32) {
    // Upload is lazy: the first time a texture is drawn it goes to the device.
    auto& texture = static_cast<INSTANCING::textureInstance&>(top);
    texture.cacheResource();
    return device->setTextureState(texture);
  }
  if (kind >= CLIP_PLANE_STATE0 && kind <= CLIP_PLANE_STATE5) {
    return device->setClipPlaneState(static_cast<clipPlanestate&>(top));
  }
  switch (kind) {
    case ALPHA_STATE:
      return device->setAlphaState(static_cast<alphastate&>(top));
    case BLEND_STATE:
      return device->setBlendState(static_cast<blendstate&>(top));
    case CULL_STATE:
      return device->setCullState(static_cast<cullstate&>(top));
    case LIGHTING_STATE:
      return device->setLightingState(static_cast<lightingstate&>(top));
    case FOG_STATE:
      return device->setFogState(static_cast<fogState&>(top));
    case COLOR_MATERIAL_STATE:
      return device->setColorMaterialState(static_cast<colorMaterialstate&>(top));
    case MATERIAL_STATE:
      return device->setMaterialState(static_cast<materialstate&>(top));
    case POINT_SIZE_STATE:
      return device->setPointSizeState(static_cast<pointSizestate&>(top));
    case COLOR_BUFFER_STATE:
      return device->setColorBufferState(static_cast<colorbufferstate&>(top));
    case ZBUFFER_STATE:
      return device->setZbufferState(static_cast<zbufferstate&>(top));
    case VIEWPORT_STATE:
      return applySize(static_cast<viewportstate&>(top));
    case SCISSOR_STATE:
      return applySize(static_cast<scissorstate&>(top));
    case WIREFRAME_STATE:
      return device->setWireFrameState(static_cast<wireframestate&>(top));
    case RENDER_TARGET_STATE:
      return beginTarget(static_cast<INSTANCING::renderTargetInstance&>(top), clearTarget);
    default:
      return false;
  }
}

renderstate* renderStateStack::getCurrentState(int kind) const {
  if (kind < 0 || kind >= RENDER_STATE_COUNT || stacks[kind].empty()) return nullptr;
  return stacks[kind].back();
}

int renderStateStack::getDepth(int kind) const {
  return kind < 0 || kind >= RENDER_STATE_COUNT ? 0 : int(stacks[kind].size());
}

namespace {
template <class S>
S& topAs(const std::deque<renderstate*>& stack) {
  return static_cast<S&>(*stack.back());
}
}  // namespace

const alphastate& renderStateStack::getCurrentAlphaState() const {
  return topAs<alphastate>(stacks[ALPHA_STATE]);
}
const clipPlanestate& renderStateStack::getCurrentClipPlaneState(CLIP_PLANE plane) const {
  return topAs<clipPlanestate>(stacks[CLIP_PLANE_STATE0 + plane]);
}
const fogState& renderStateStack::getCurrentFogState() const {
  return topAs<fogState>(stacks[FOG_STATE]);
}
const blendstate& renderStateStack::getCurrentBlendState() const {
  return topAs<blendstate>(stacks[BLEND_STATE]);
}
const cullstate& renderStateStack::getCurrentCullState() const {
  return topAs<cullstate>(stacks[CULL_STATE]);
}
const lightingstate& renderStateStack::getCurrentLightingState() const {
  return topAs<lightingstate>(stacks[LIGHTING_STATE]);
}
const lightstate& renderStateStack::getCurrentLightState(LIGHT_SOURCE light) const {
  return topAs<lightstate>(stacks[LIGHT_STATE0 + light]);
}
const colorMaterialstate& renderStateStack::getCurrentColorMaterialState() const {
  return topAs<colorMaterialstate>(stacks[COLOR_MATERIAL_STATE]);
}
const materialstate& renderStateStack::getCurrentMaterialState() const {
  return topAs<materialstate>(stacks[MATERIAL_STATE]);
}
INSTANCING::textureInstance& renderStateStack::getCurrentTextureState(TEXTURE_ACTIVE unit) const {
  return topAs<INSTANCING::textureInstance>(stacks[TEXTURE_STATE0 + unit]);
}
const zbufferstate& renderStateStack::getCurrentZbufferState() const {
  return topAs<zbufferstate>(stacks[ZBUFFER_STATE]);
}
const colorbufferstate& renderStateStack::getCurrentColorBufferState() const {
  return topAs<colorbufferstate>(stacks[COLOR_BUFFER_STATE]);
}
const viewportstate& renderStateStack::getCurrentViewportState() const {
  return topAs<viewportstate>(stacks[VIEWPORT_STATE]);
}
const scissorstate& renderStateStack::getCurrentScissorState() const {
  return topAs<scissorstate>(stacks[SCISSOR_STATE]);
}
const wireframestate& renderStateStack::getCurrentWireFrameState() const {
  return topAs<wireframestate>(stacks[WIREFRAME_STATE]);
}
const pointSizestate& renderStateStack::getCurrentPointSizeState() const {
  return topAs<pointSizestate>(stacks[POINT_SIZE_STATE]);
}
INSTANCING::renderTargetInstance& renderStateStack::getCurrentRenderTargetState() const {
  return topAs<INSTANCING::renderTargetInstance>(stacks[RENDER_TARGET_STATE]);
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
