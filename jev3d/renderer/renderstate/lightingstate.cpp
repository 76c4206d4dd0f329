#include "jev3d/renderer/renderstate/lightingstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

lightingstate::lightingstate(bool e, bool t) { set(e, t); }

void lightingstate::set(bool e, bool t) {
  enable = e;
  twoSide = t;
}

void lightingstate::clone(lightingstate* target) const { target->set(enable.cV(), twoSide.cV()); }

void lightingstate::render(renderingContext* rc) { renderOnSlot(rc, LIGHTING_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
