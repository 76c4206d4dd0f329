#include "jev3d/renderer/renderstate/blendstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

blendstate::blendstate(bool e, SRC_BLEND s, DST_BLEND d) { set(e, s, d); }

void blendstate::set(bool e, SRC_BLEND s, DST_BLEND d) {
  enable = e;
  source = s;
  destination = d;
}

void blendstate::clone(blendstate* target) const { target->set(enable, source, destination); }

void blendstate::render(renderingContext* rc) { renderOnSlot(rc, BLEND_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
