#include "jev3d/renderer/instancing/renderTargetInstance.h"

#include "jev3d/renderer/renderTarget.h"
#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

renderTargetInstance::renderTargetInstance(CORE::renderTargetStorage* s) : resourceInstance(s) {}

renderTarget* renderTargetInstance::getTarget() const {
  return target ? target : getSharedResource().get();
}

bool renderTargetInstance::cacheResource(renderer* device) {
  renderTarget* drawn = getTarget();
  if (!drawn || device->isCachedRenderTargetOnTexture(drawn)) return true;
  return device->cacheRenderTargetOnTexture(drawn);
}

void renderTargetInstance::render(renderingContext* rc) { renderOnSlot(rc, RENDER_TARGET_STATE); }

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
