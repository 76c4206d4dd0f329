#include "jev3d/renderer/renderstate/wireframestate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

wireframestate::wireframestate(FILL_MODE m) { set(m); }

void wireframestate::set(FILL_MODE m) { mode = m; }

void wireframestate::clone(wireframestate* target) const { target->set(mode); }

void wireframestate::render(renderingContext* rc) { renderOnSlot(rc, WIREFRAME_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
