#include "jev3d/renderer/instancing/textureInstance.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

void textureInstance::render(renderingContext* rc) {
  // Units past the 33 slots would land on the colour buffer's slot: drawn without it.
  if (unit < TEXTURE0 || unit >= TEXTURE_ACTIVE_COUNT) {
    SG::node::render(rc);
    return;
  }
  renderOnSlot(rc, TEXTURE_STATE0 + unit);
}

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
