#include "jev3d/renderer/renderstate/rectangleState.h"

#include <climits>

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

}  // namespace

void rectangleState::getComputed(int out[4]) const {
  out[0] = computedX.cV();
  out[1] = computedY.cV();
  out[2] = computedWidth.cV();
  out[3] = computedHeight.cV();
}

void rectangleState::setRequested(int px, int py, int w, int h, bool i) {
  x = px;
  y = py;
  width = w;
  height = h;
  intersectParent = i;
}

void rectangleState::copyRectangleTo(rectangleState& t) const {
  t.setRequested(x.cV(), y.cV(), width.cV(), height.cV(), intersectParent.cV());
  t.computedX = computedX.cV();
  t.computedY = computedY.cV();
  t.computedWidth = computedWidth.cV();
  t.computedHeight = computedHeight.cV();
}

rectangleState::bounds rectangleState::getRequested() const {
  return bounds{x.cV(), y.cV(), width.cV(), height.cV()};
}

rectangleState::bounds rectangleState::getComputedBounds() const {
  return bounds{computedX.cV(), computedY.cV(), computedWidth.cV(), computedHeight.cV()};
}

bool rectangleState::storeComputed(const bounds& r, bool result) {
  computedX = toInt(r.x);
  computedY = toInt(r.y);
  computedWidth = toInt(r.width);
  computedHeight = toInt(r.height);
  return result;
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
