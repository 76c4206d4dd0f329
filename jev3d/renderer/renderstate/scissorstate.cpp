#include "jev3d/renderer/renderstate/scissorstate.h"

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderstate/internal/rectangleClip.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

// Negative positions become 0; a negative extent becomes 0 and fails.
bool clampToWindow(rectangleState::bounds& r) {
  if (r.x < 0) r.x = 0;
  if (r.y < 0) r.y = 0;
  bool ok = true;
  if (r.width < 0) r.width = 0, ok = false;
  if (r.height < 0) r.height = 0, ok = false;
  return ok;
}

}  // namespace

scissorstate::scissorstate(int px, int py, int w, int h, bool e, bool i) {
  set(px, py, w, h, e, i);
}

void scissorstate::set(int px, int py, int w, int h, bool e, bool i) {
  setRequested(px, py, w, h, i);
  storeComputed(getRequested(), true);
  // As the rectangle: an equal value is not written, so nothing is notified.
  if (enable.cV() != e) enable = e;
}

void scissorstate::clone(scissorstate* target) const {
  copyRectangleTo(*target);
  if (target->enable.cV() != enable.cV()) target->enable = enable.cV();
}

void scissorstate::render(renderingContext* rc) { renderOnSlot(rc, SCISSOR_STATE); }

bool scissorstate::computeSize(renderer* device) {
  bounds r = getRequested();
  if (!clampToWindow(r)) return storeComputed(r, false);
  if (!intersectParent.cV()) return storeComputed(r, true);
  const bounds p = device->getCurrentScissorState().getComputedBounds();
  if (!INTERNAL::clipAxis(r.x, r.width, p.x, p.x, p.width)) return storeComputed(r, false);
  if (!INTERNAL::clipAxis(r.y, r.height, p.y, p.y, p.height)) return storeComputed(r, false);
  return storeComputed(r, clampToWindow(r));
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
