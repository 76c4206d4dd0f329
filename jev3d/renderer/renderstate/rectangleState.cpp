#include "jev3d/renderer/renderstate/rectangleState.h"

#include <climits>

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

// The rectangles are read and rewritten on every push and pop of every clip. Their fields
// are members of their exact type, so a value is read without a call through the table.
template <class F>
const typename F::valueType& read(const F& field) {
  return field.F::cV();
}

// Writes only a value that differs, since a field notifies its observers on each write.
template <class F, class V>
void store(F& field, V value) {
  if (read(field) != value) field = value;
}

}  // namespace

void rectangleState::getComputed(int out[4]) const {
  out[0] = read(computedX);
  out[1] = read(computedY);
  out[2] = read(computedWidth);
  out[3] = read(computedHeight);
}

void rectangleState::setRequested(int px, int py, int w, int h, bool i) {
  store(x, px);
  store(y, py);
  store(width, w);
  store(height, h);
  store(intersectParent, i);
}

void rectangleState::copyRectangleTo(rectangleState& t) const {
  t.setRequested(read(x), read(y), read(width), read(height), read(intersectParent));
  store(t.computedX, read(computedX));
  store(t.computedY, read(computedY));
  store(t.computedWidth, read(computedWidth));
  store(t.computedHeight, read(computedHeight));
}

rectangleState::bounds rectangleState::getRequested() const {
  return bounds{read(x), read(y), read(width), read(height)};
}

rectangleState::bounds rectangleState::getComputedBounds() const {
  return bounds{read(computedX), read(computedY), read(computedWidth), read(computedHeight)};
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
