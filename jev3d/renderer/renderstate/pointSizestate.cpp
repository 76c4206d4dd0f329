#include "jev3d/renderer/renderstate/pointSizestate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

pointSizestate::pointSizestate(float s) { set(s); }

void pointSizestate::set(float s) { size = s; }

void pointSizestate::clone(pointSizestate* target) const { target->set(size.cV()); }

void pointSizestate::render(renderingContext* rc) { renderOnSlot(rc, POINT_SIZE_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
