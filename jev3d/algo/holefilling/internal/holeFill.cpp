#include "jev3d/algo/holefilling/internal/holeFill.h"

#include <algorithm>

#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

void fillLoops(holeSurface& s, const std::vector<std::vector<int>>& loops, unsigned int maxSize,
               patchFinish finish, std::vector<int>& corners, SYSTEM::callBack* cb, float from,
               float to) {
  std::vector<patchFace> patch;
  for (size_t i = 0; i < loops.size(); ++i) {
    const std::vector<int>& loop = loops[i];
    if (loop.size() >= 3 && (maxSize == 0 || loop.size() <= maxSize)) {
      patch.clear();
      triangulateLoop(s, loop, patch);
      if (finish == patchFinish::REFINE_AND_FAIR) improvePatch(s, patch);
      if (finish == patchFinish::REFINE_AND_FIT) improvePatchFitted(s, patch);
      for (const patchFace& f : patch) corners.insert(corners.end(), f.v, f.v + 3);
    }
    if (cb) cb->setValue(from + (to - from) * float(i + 1) / float(loops.size()));
  }
}

void restrictLoops(std::vector<std::vector<int>>& loops, const std::vector<unsigned char>& mask,
                   std::vector<std::pair<unsigned int, unsigned int>>& ends) {
  ends.clear();
  if (std::all_of(mask.begin(), mask.end(), [](unsigned char m) { return m == 0; })) return;
  auto masked = [&](int v) { return size_t(v) < mask.size() && mask[size_t(v)] != 0; };
  for (auto& loop : loops) {
    std::pair<unsigned int, unsigned int> pair(0, 0);
    bool haveLast = false, haveFirst = false;
    std::vector<int> kept;
    const size_t n = loop.size();
    for (size_t i = 0; i < n; ++i) {
      const int v = loop[i], w = loop[(i + 1) % n];
      if (!masked(v)) kept.push_back(v);
      if (!masked(v) && masked(w) && !haveLast) pair.first = unsigned(v), haveLast = true;
      if (masked(v) && !masked(loop[(i + n - 1) % n]) && !haveFirst)
        pair.second = unsigned(v), haveFirst = true;
    }
    loop.swap(kept);
    ends.push_back(pair);
  }
}

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
