#include "jev3d/renderer/renderstate/viewportstate.h"

#include <climits>

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderstate/internal/rectangleClip.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

}  // namespace

viewportstate::viewportstate(int px, int py, int w, int h, bool i, VIEWPORT_TYPE t) {
  set(px, py, w, h, i, t);
}

void viewportstate::set(int px, int py, int w, int h, bool i, VIEWPORT_TYPE t) {
  x = px;
  y = py;
  width = w;
  height = h;
  intersectParent = i;
  type = t;
}

void viewportstate::clone(viewportstate* target) const {
  target->x = x.cV();
  target->y = y.cV();
  target->width = width.cV();
  target->height = height.cV();
  target->computedX = computedX.cV();
  target->computedY = computedY.cV();
  target->computedWidth = computedWidth.cV();
  target->computedHeight = computedHeight.cV();
  target->intersectParent = intersectParent.cV();
  target->type = type;
}

void viewportstate::render(renderingContext* rc) { renderOnSlot(rc, VIEWPORT_STATE); }

void viewportstate::getComputed(int out[4]) const {
  out[0] = computedX.cV();
  out[1] = computedY.cV();
  out[2] = computedWidth.cV();
  out[3] = computedHeight.cV();
}

bool viewportstate::computeSize(renderer* device) {
  INTERNAL::rectangle r{x.cV(), y.cV(), width.cV(), height.cV()};
  if (type != VIEWPORT_FREE) {
    const long long letterboxed = (long long)(double(r.width) * 9.0 * 0.0625 + 0.5);
    r.y = (long long)(double(r.y) + double(r.height - letterboxed) * 0.5);
    r.height = letterboxed;
  }
  auto store = [this, &r](bool result) {
    computedX = toInt(r.x);
    computedY = toInt(r.y);
    computedWidth = toInt(r.width);
    computedHeight = toInt(r.height);
    return result;
  };
  // Negative positions stand (a viewport may start off the window); a negative extent
  // cannot be given to the device.
  if (r.width < 0 || r.height < 0) return store(false);
  if (!intersectParent.cV()) return store(true);
  const viewportstate& parent = device->getCurrentViewportState();
  const long long px = parent.computedX.cV(), py = parent.computedY.cV();
  const long long pw = parent.computedWidth.cV(), ph = parent.computedHeight.cV();
  // The first test of x is against the parent's requested x, the rest against its
  // computed rectangle: kept as the viewport has always sized itself.
  if (!INTERNAL::clipAxis(r.x, r.width, parent.x.cV(), px, pw)) return store(false);
  if (!INTERNAL::clipAxis(r.y, r.height, py, py, ph)) return store(false);
  return store(r.width >= 0 && r.height >= 0);
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
