#include "jev3d/renderer/instancing/textureInstance.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

bool textureInstance::combinerDescriptor::operator==(const combinerDescriptor& o) const {
  for (int i = 0; i < 3; ++i) {
    if (sourceRGB[i] != o.sourceRGB[i] || sourceAlpha[i] != o.sourceAlpha[i] ||
        operandRGB[i] != o.operandRGB[i] || operandAlpha[i] != o.operandAlpha[i]) {
      return false;
    }
  }
  return functionRGB == o.functionRGB && functionAlpha == o.functionAlpha && scaleRGB == o.scaleRGB;
}

bool textureInstance::environmentDescriptor::operator==(const environmentDescriptor& o) const {
  for (int i = 0; i < 16; ++i)
    if (matrix[i] != o.matrix[i]) return false;
  return enable == o.enable && mode == o.mode && wrapS == o.wrapS && wrapT == o.wrapT &&
         filter == o.filter && color.toU32() == o.color.toU32() && combiner == o.combiner;
}

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
