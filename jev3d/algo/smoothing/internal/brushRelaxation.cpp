#include "jev3d/algo/smoothing/internal/brushRelaxation.h"

#include <cmath>

#include "jev3d/algo/smoothing/localSmoothingFunctor.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {
namespace INTERNAL {

using MATH::point3;

void gatherRings(const editMesh& mesh, unsigned int centre, unsigned int rings,
                 std::vector<int>& visited, std::vector<unsigned int>& queue) {
  const unsigned int n = mesh.vn();
  queue.clear();
  queue.push_back(centre);
  visited[centre] = 1;
  // Entries before the last ring's start have all their neighbours in the queue already,
  // so walking only the last ring gives the same queue as walking from the first entry.
  size_t ringStart = 0;
  for (unsigned int ring = 0; ring < rings; ++ring) {
    const size_t ringEnd = queue.size();
    for (size_t q = ringStart; q < ringEnd; ++q) {
      const unsigned int v = queue[q];
      for (unsigned int i = 0; i < mesh.vENum(v); ++i) {
        const unsigned int e = mesh.vE(v, i);
        // Deleted edges may keep stale vertex ids after a compaction.
        if (e >= mesh.en() || mesh.edgeIsDeleted(e)) continue;
        for (unsigned int end = 0; end < 2; ++end) {
          const unsigned int w = mesh.eV(e, end);
          if (w < n && !visited[w]) visited[w] = 1, queue.push_back(w);
        }
      }
    }
    ringStart = ringEnd;
  }
}

void relaxNeighbourhood(editMesh& mesh, const std::vector<unsigned int>& queue,
                        const point3<float>& reference, float r, unsigned int rounds,
                        const std::vector<unsigned char>* mask,
                        std::vector<unsigned char>* modified) {
  for (unsigned int round = 0; round < rounds; ++round)
    for (unsigned int v : queue) {
      if (mask && (v >= mask->size() || !(*mask)[v])) continue;
      point3<float>& p = mesh.vPos(v);
      const float d2 = (p - reference).squaredNorm();
      if (!(d2 <= r * r)) continue;
      const float d = d2 == 0.f ? 0.f : std::sqrt(d2);
      // A zero radius reaches only the centre's own point, at full weight, not 0 / 0.
      const float w = r > 0.f ? 1.f - d / r : 1.f;
      point3<float> a;
      localSmoothingFunctor::vertexNeighbourAverage(mesh, v, a);
      p += (a - p) * w;
      if (modified) (*modified)[v] = 1;
    }
}

}  // namespace INTERNAL
}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
