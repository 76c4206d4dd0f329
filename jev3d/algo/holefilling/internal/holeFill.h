#pragma once

#include <vector>

#include "jev3d/algo/holefilling/internal/holePatch.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

// Patches each loop in order: loops of at least three corners and, unless maxSize is 0,
// of at most maxSize corners are triangulated by the ear queue and then finished as
// finish says (flips, refinement, fairing). Corners of the new faces go
// to corners, three a face; new vertices to s.added. Longer loops stay open. The
// callback, when set, hears the share of loops done, scaled into [from, to].
void fillLoops(holeSurface& s, const std::vector<std::vector<int>>& loops, unsigned int maxSize,
               patchFinish finish, std::vector<int>& corners, SYSTEM::callBack* cb, float from,
               float to);

// Keeps, of each loop, the corners whose mask byte is 0, in order, and records per loop
// the last masked-out corner's free neighbour before the first masked one and the first
// masked corner after a free one; (0, 0) for a loop without such a step. With an all-zero
// (or empty) mask nothing changes and ends stays empty.
void restrictLoops(std::vector<std::vector<int>>& loops, const std::vector<unsigned char>& mask,
                   std::vector<std::pair<unsigned int, unsigned int>>& ends);

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
