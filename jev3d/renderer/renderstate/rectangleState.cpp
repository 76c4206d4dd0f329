#include "jev3d/renderer/renderstate/rectangleState.h"

#include <climits>

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

int toInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : int(v); }

// The rectangles are read and rewritten on every push and pop of every clip: their
// fields are read as members, without a call through the table.
using SYSTEM::memberValue;

// Writes only a value that differs, since a field notifies its observers on each write.
template <class F, class V>
void store(F& field, V value) {
  if (memberValue(field) != value) field = value;
}

}  // namespace

void rectangleState::getComputed(int out[4]) const {
  out[0] = memberValue(computedX);
  out[1] = memberValue(computedY);
  out[2] = memberValue(computedWidth);
  out[3] = memberValue(computedHeight);
}

void rectangleState::setRequested(int px, int py, int w, int h, bool i) {
  store(x, px);
  store(y, py);
  store(width, w);
  store(height, h);
  store(intersectParent, i);
}

void rectangleState::copyRectangleTo(rectangleState& t) const {
  t.setRequested(memberValue(x), memberValue(y), memberValue(width), memberValue(height),
                 memberValue(intersectParent));
  store(t.computedX, memberValue(computedX));
  store(t.computedY, memberValue(computedY));
  store(t.computedWidth, memberValue(computedWidth));
  store(t.computedHeight, memberValue(computedHeight));
}

rectangleState::bounds rectangleState::getRequested() const {
  return bounds{memberValue(x), memberValue(y), memberValue(width), memberValue(height)};
}

rectangleState::bounds rectangleState::getComputedBounds() const {
  return bounds{memberValue(computedX), memberValue(computedY), memberValue(computedWidth),
                memberValue(computedHeight)};
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
