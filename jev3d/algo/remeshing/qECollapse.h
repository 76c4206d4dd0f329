#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace ALGO {
namespace REMESHING {

// Edge-collapse decimation of a triangle soup under the quadric error (sum of squared
// distances to the planes of the original triangles around a vertex). Collapses run in
// passes over the triangles: a pass takes every edge whose error lies under its
// threshold, 1e-9·(pass + 3)^aggressiveness in a copy of the mesh scaled to a unit box
// diagonal (lowered to about the cheapest collapses still needed), and leaves the faces
// around each collapse alone until the next pass, so no priority queue is kept. Collapses that
// would fold a face over (normal turned by more than about 78 degrees), make a sliver, pinch the
// surface (link condition) or move an open border off its line are refused; vertices on
// non-manifold edges stay.
class qECollapse {
 public:
  // The aggressiveness the library uses: higher values raise the thresholds faster,
  // trading quality for fewer passes.
  static constexpr double AGGRESSIVENESS = 7.0;

  // Reduces the triangles (three indices each into positions) to about `target`
  // triangles, or fewer than that when passes run out first. Out: the positions and
  // triangles of the result and vertexMap, one entry per input position: the output
  // vertex it ended in, or 0xFFFFFFFF for a position no valid triangle used. Triangles
  // with an index out of range or a repeated corner are dropped. False, with the outputs
  // empty, when no valid triangle is given. cb hears 1 first and 100 last.
  static bool decimate(const std::vector<MATH::point3<float>>& positions,
                       const std::vector<unsigned int>& triangles, unsigned int target,
                       std::vector<MATH::point3<float>>& newPositions,
                       std::vector<unsigned int>& newTriangles,
                       std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb = nullptr);
  // The same with a chosen aggressiveness (clamped to [1, 20]).
  static bool decimate(const std::vector<MATH::point3<float>>& positions,
                       const std::vector<unsigned int>& triangles, unsigned int target,
                       double aggressiveness, std::vector<MATH::point3<float>>& newPositions,
                       std::vector<unsigned int>& newTriangles,
                       std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb = nullptr);
};

// The quick decimation: forwards to qECollapse::decimate with its aggressiveness.
bool computeQuickDecimate(const std::vector<MATH::point3<float>>& positions,
                          const std::vector<unsigned int>& triangles, unsigned int target,
                          std::vector<MATH::point3<float>>& newPositions,
                          std::vector<unsigned int>& newTriangles,
                          std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb = nullptr);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
