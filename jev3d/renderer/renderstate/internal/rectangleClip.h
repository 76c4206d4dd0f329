#pragma once

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace INTERNAL {

// Cuts a rectangle to its parent along one axis as the sizing rules say: a start before
// the parent's moves to it and the extent shrinks by the difference; a start past the
// parent's far edge fails; an end past the parent's far edge is shrunk to it. `testStart`
// is what the start is compared with first (the viewport compares with the parent's
// requested position there). False only for a start past the far edge.
inline bool clipAxis(long long& start, long long& extent, long long testStart,
                     long long parentStart, long long parentExtent) {
  if (start < testStart) {
    extent -= parentStart - start;
    start = parentStart;
  } else if (start > parentStart + parentExtent) {
    return false;
  }
  if (start + extent > parentStart + parentExtent) {
    extent -= start + extent - parentStart - parentExtent;
  }
  return true;
}

}  // namespace INTERNAL
}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
