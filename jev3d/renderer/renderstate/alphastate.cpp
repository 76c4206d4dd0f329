#include "jev3d/renderer/renderstate/alphastate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

alphastate::alphastate(bool e, ALPHA_FUNC f, float r) { set(e, f, r); }

void alphastate::set(bool e, ALPHA_FUNC f, float r) {
  enable = e;
  function = f;
  reference = r;
}

void alphastate::clone(alphastate* target) const { target->set(enable, function, reference); }

void alphastate::render(renderingContext* rc) { renderOnSlot(rc, ALPHA_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
