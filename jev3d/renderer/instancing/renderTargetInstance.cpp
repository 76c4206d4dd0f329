#include "jev3d/renderer/instancing/renderTargetInstance.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {

void renderTargetInstance::render(renderingContext* rc) { renderOnSlot(rc, RENDER_TARGET_STATE); }

}  // namespace INSTANCING
}  // namespace RENDERING
}  // namespace JEV
