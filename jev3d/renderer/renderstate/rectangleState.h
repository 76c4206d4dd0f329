#pragma once

#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// The rectangle fields that the viewport and the scissor share, in window pixels (origin
// bottom left): the requested rectangle, the computed one that the device gets, and
// whether it is cut to the one in force.
class rectangleState {
 public:
  // A rectangle being sized, in 64-bit so that sums of huge int fields cannot wrap.
  struct bounds {
    long long x, y, width, height;
  };

  virtual ~rectangleState() = default;

  // The computed rectangle as x, y, width, height.
  void getComputed(int out[4]) const;

  SYSTEM::fieldBase<int> x{0};
  SYSTEM::fieldBase<int> y{0};
  SYSTEM::fieldBase<int> width{320};
  SYSTEM::fieldBase<int> height{240};
  SYSTEM::fieldBase<int> computedX{0};
  SYSTEM::fieldBase<int> computedY{0};
  SYSTEM::fieldBase<int> computedWidth{320};
  SYSTEM::fieldBase<int> computedHeight{240};
  SYSTEM::fieldBase<bool> intersectParent{false};

 protected:
  void setRequested(int x, int y, int width, int height, bool intersectParent);
  void copyRectangleTo(rectangleState& target) const;
  bounds getRequested() const;
  bounds getComputedBounds() const;
  // Writes `r`, clamped to int, as the computed rectangle and passes `result` on.
  bool storeComputed(const bounds& r, bool result);
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
