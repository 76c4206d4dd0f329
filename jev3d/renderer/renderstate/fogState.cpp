#include "jev3d/renderer/renderstate/fogState.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

fogState::fogState(bool e, FOG_TYPE t, FOG_MODE m, CORE::color c, float s, float en, float d) {
  set(e, t, m, c, s, en, d);
}

void fogState::set(bool e, FOG_TYPE t, FOG_MODE m, CORE::color c, float s, float en, float d) {
  enable = e;
  type = t;
  mode = m;
  color = c;
  start = s;
  end = en;
  density = d;
}

void fogState::clone(fogState* target) const {
  target->set(enable.cV(), type, mode, color, start.cV(), end.cV(), density.cV());
}

void fogState::render(renderingContext* rc) { renderOnSlot(rc, FOG_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
