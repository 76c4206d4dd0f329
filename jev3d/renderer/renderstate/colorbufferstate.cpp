#include "jev3d/renderer/renderstate/colorbufferstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

colorbufferstate::colorbufferstate(bool w) { set(w); }

void colorbufferstate::set(bool w) { writeMask = w; }

void colorbufferstate::clone(colorbufferstate* target) const { target->set(writeMask.cV()); }

void colorbufferstate::render(renderingContext* rc) { renderOnSlot(rc, COLOR_BUFFER_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
