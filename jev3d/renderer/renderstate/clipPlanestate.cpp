#include "jev3d/renderer/renderstate/clipPlanestate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

clipPlanestate::clipPlanestate(bool e, CLIP_PLANE p, float pa, float pb, float pc, float pd) {
  set(e, p, pa, pb, pc, pd);
}

void clipPlanestate::set(bool e, CLIP_PLANE p, float pa, float pb, float pc, float pd) {
  enable = e;
  plane = p;
  a = pa;
  b = pb;
  c = pc;
  d = pd;
}

void clipPlanestate::clone(clipPlanestate* target) const {
  target->set(enable.cV(), plane, a.cV(), b.cV(), c.cV(), d.cV());
}

void clipPlanestate::render(renderingContext* rc) { renderOnSlot(rc, CLIP_PLANE_STATE0 + plane); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
