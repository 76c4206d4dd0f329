#include "jev3d/renderer/renderstate/viewportstate.h"

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderstate/internal/rectangleClip.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

viewportstate::viewportstate(int px, int py, int w, int h, bool i, VIEWPORT_TYPE t) {
  set(px, py, w, h, i, t);
}

void viewportstate::set(int px, int py, int w, int h, bool i, VIEWPORT_TYPE t) {
  setRequested(px, py, w, h, i);
  type = t;
}

void viewportstate::clone(viewportstate* target) const {
  copyRectangleTo(*target);
  target->type = type;
}

void viewportstate::render(renderingContext* rc) { renderOnSlot(rc, VIEWPORT_STATE); }

bool viewportstate::computeSize(renderer* device) {
  bounds r = getRequested();
  if (type != VIEWPORT_FREE) {
    const long long letterboxed = (long long)(double(r.width) * 9.0 * 0.0625 + 0.5);
    r.y = (long long)(double(r.y) + double(r.height - letterboxed) * 0.5);
    r.height = letterboxed;
  }
  // Negative positions stand (a viewport may start off the window); a negative extent
  // cannot be given to the device.
  if (r.width < 0 || r.height < 0) return storeComputed(r, false);
  if (!intersectParent.cV()) return storeComputed(r, true);
  const viewportstate& parent = device->getCurrentViewportState();
  const bounds p = parent.getComputedBounds();
  // The first test of x is against the parent's requested x, the rest against its
  // computed rectangle: kept as the viewport has always sized itself.
  if (!INTERNAL::clipAxis(r.x, r.width, parent.x.cV(), p.x, p.width)) {
    return storeComputed(r, false);
  }
  if (!INTERNAL::clipAxis(r.y, r.height, p.y, p.y, p.height)) return storeComputed(r, false);
  return storeComputed(r, r.width >= 0 && r.height >= 0);
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
