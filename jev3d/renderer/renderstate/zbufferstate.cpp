#include "jev3d/renderer/renderstate/zbufferstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

zbufferstate::zbufferstate(bool e, DEPTH_FUNC f, bool w, bool c) { set(e, f, w, c); }

void zbufferstate::set(bool e, DEPTH_FUNC f, bool w, bool c) {
  enable = e;
  function = f;
  writeEnable = w;
  clearFirst = c;
}

void zbufferstate::clone(zbufferstate* target) const {
  target->set(enable.cV(), function, writeEnable.cV(), clearFirst.cV());
  target->rangeNear = rangeNear.cV();
  target->rangeFar = rangeFar.cV();
}

void zbufferstate::render(renderingContext* rc) { renderOnSlot(rc, ZBUFFER_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
