#include "jev3d/renderer/renderstate/scissorstate.h"

#include <climits>

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderstate/internal/rectangleClip.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

// Negative positions become 0; a negative extent becomes 0 and fails.
bool clampToWindow(INTERNAL::rectangle& r) {
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
  x = px;
  y = py;
  width = w;
  height = h;
  computedX = px;
  computedY = py;
  computedWidth = w;
  computedHeight = h;
  enable = e;
  intersectParent = i;
}

void scissorstate::clone(scissorstate* target) const {
  target->x = x.cV();
  target->y = y.cV();
  target->width = width.cV();
  target->height = height.cV();
  target->computedX = computedX.cV();
  target->computedY = computedY.cV();
  target->computedWidth = computedWidth.cV();
  target->computedHeight = computedHeight.cV();
  target->intersectParent = intersectParent.cV();
  target->enable = enable.cV();
}

void scissorstate::render(renderingContext* rc) { renderOnSlot(rc, SCISSOR_STATE); }

bool scissorstate::computeSize(renderer* device) {
  INTERNAL::rectangle r{x.cV(), y.cV(), width.cV(), height.cV()};
  auto store = [this, &r](bool result) {
    computedX = toInt(r.x);
    computedY = toInt(r.y);
    computedWidth = toInt(r.width);
    computedHeight = toInt(r.height);
    return result;
  };
  if (!clampToWindow(r)) return store(false);
  if (!intersectParent.cV()) return store(true);
  const scissorstate& parent = device->getCurrentScissorState();
  const long long px = parent.computedX.cV(), py = parent.computedY.cV();
  const long long pw = parent.computedWidth.cV(), ph = parent.computedHeight.cV();
  if (!INTERNAL::clipAxis(r.x, r.width, px, px, pw)) return store(false);
  if (!INTERNAL::clipAxis(r.y, r.height, py, py, ph)) return store(false);
  return store(clampToWindow(r));
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
