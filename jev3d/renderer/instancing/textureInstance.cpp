#include "jev3d/renderer/instancing/textureInstance.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

textureInstance::textureInstance(CORE::textureStorage* s) : resourceInstance(s) {}

textureInstance::textureInstance(TEXTURE_ACTIVE u) : resourceInstance(nullptr), unit(u) {}

void textureInstance::render(renderingContext* rc) {
  // Units past the 33 slots would land on the colour buffer's slot: drawn without it.
  if (unit < TEXTURE0 || unit >= TEXTURE_ACTIVE_COUNT) {
    SG::node::render(rc);
    return;
  }
  renderOnSlot(rc, TEXTURE_STATE0 + unit);
}

TEXTURE::texture* textureInstance::getTexture() const { return getSharedResource().get(); }

bool textureInstance::cacheResource() {
  TEXTURE::texture* t = getTexture();
  if (!t || t->isCached()) return true;
  return t->cache();
}

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
