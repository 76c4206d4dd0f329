#include "jev3d/renderer/instancing/renderTargetInstance.h"

#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

bool renderTargetInstance::cacheResource(renderer* device) {
  if (!target || device->isCachedRenderTargetOnTexture(target)) return true;
  return device->cacheRenderTargetOnTexture(target);
}

void renderTargetInstance::render(renderingContext* rc) { renderOnSlot(rc, RENDER_TARGET_STATE); }

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
