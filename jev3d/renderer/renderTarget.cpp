#include "jev3d/renderer/renderTarget.h"

#include <utility>

#include "jev3d/renderer/renderer.h"
#include "jev3d/resources/texture.h"

namespace JEV {
namespace RENDERING {

renderTarget::renderTarget(SYSTEM::sharedPointer<TEXTURE::texture> c, renderer* d)
    : colour(std::move(c)), device(d) {}

renderTarget::~renderTarget() = default;

bool renderTarget::cache() { return device && device->cacheRenderTargetOnTexture(this); }

bool renderTarget::isCached() const {
  return device && device->isCachedRenderTargetOnTexture(this);
}

bool renderTarget::discard() { return device && device->discardRenderTargetOnTexture(this); }

bool renderTarget::clear() {
  const bool done = discard();
  if (colour.get()) colour->clear();
  return done;
}

}  // namespace RENDERING
}  // namespace JEV
