#include "jev3d/renderer/renderstate/rectangleState.h"

#include <climits>

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

// Writes only a value that differs: the rectangles are rewritten on every push and pop of
// every clip, and a field notifies its observers on each write.
template <class F, class V>
void store(F& field, V value) {
  if (field.cV() != value) field = value;
}

}  // namespace

void rectangleState::getComputed(int out[4]) const {
  out[0] = computedX.cV();
  out[1] = computedY.cV();
  out[2] = computedWidth.cV();
  out[3] = computedHeight.cV();
}

void rectangleState::setRequested(int px, int py, int w, int h, bool i) {
  store(x, px);
  store(y, py);
  store(width, w);
  store(height, h);
  store(intersectParent, i);
}

void rectangleState::copyRectangleTo(rectangleState& t) const {
  t.setRequested(x.cV(), y.cV(), width.cV(), height.cV(), intersectParent.cV());
  store(t.computedX, computedX.cV());
  store(t.computedY, computedY.cV());
  store(t.computedWidth, computedWidth.cV());
  store(t.computedHeight, computedHeight.cV());
}

rectangleState::bounds rectangleState::getRequested() const {
  return bounds{x.cV(), y.cV(), width.cV(), height.cV()};
}

rectangleState::bounds rectangleState::getComputedBounds() const {
  return bounds{computedX.cV(), computedY.cV(), computedWidth.cV(), computedHeight.cV()};
}

bool rectangleState::storeComputed(const bounds& r, bool result) {
  store(computedX, toInt(r.x));
  store(computedY, toInt(r.y));
  store(computedWidth, toInt(r.width));
  store(computedHeight, toInt(r.height));
  return result;
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
