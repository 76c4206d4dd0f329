#include "jev3d/renderer/renderstate/cullstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

cullstate::cullstate(bool e, FRONT_FACE_MODE f) { set(e, f); }

void cullstate::set(bool e, FRONT_FACE_MODE f) {
  enable = e;
  frontFace = f;
}

void cullstate::clone(cullstate* target) const { target->set(enable.cV(), frontFace); }

void cullstate::render(renderingContext* rc) { renderOnSlot(rc, CULL_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
