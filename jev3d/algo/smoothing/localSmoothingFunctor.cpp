#include "jev3d/algo/smoothing/localSmoothingFunctor.h"

#include <cmath>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using MATH::point3;

void localSmoothingFunctor::vertexNeighbourAverage(const editMesh& mesh, unsigned int vertex,
                                                   point3<float>& result) {
  point3<float> sum;
  unsigned int count = 0;
  for (unsigned int i = 0; i < mesh.vENum(vertex); ++i) {
    const unsigned int e = mesh.vE(vertex, i);
    if (e >= mesh.en() || mesh.edgeIsDeleted(e)) continue;
    sum += mesh.vPos(mesh.eV(e, 0));
    sum += mesh.vPos(mesh.eV(e, 1));
    count += 2;
  }
  result = count ? sum / float(count) : point3<float>();
}

template <class Radius>
void localSmoothingFunctor::smoothAround(editMesh& mesh, const std::vector<unsigned char>& mask,
                                         const std::vector<unsigned int>& centres, Radius radius,
                                         std::vector<unsigned char>& modified) {
  const unsigned int n = mesh.vn();
  modified.assign(n, 0);
  std::vector<int> visited(n, 0);
  std::vector<point3<float>> reference;
  reference.reserve(centres.size());
  for (unsigned int c : centres) reference.push_back(c < n ? mesh.vPos(c) : point3<float>());

  std::vector<unsigned int> queue;
  for (size_t k = 0; k < centres.size(); ++k) {
    const float r = radius(k);
    // A negative (or not-a-number) radius reaches nothing; squared it would reach far.
    if (centres[k] >= n || !(r >= 0.f)) continue;
    queue.clear();
    queue.push_back(centres[k]);
    visited[centres[k]] = 1;
    // Ring by ring. Entries before the last ring's start have all their neighbours in the
    // queue already, so walking only the last ring gives the same queue as walking from
    // the first entry each round.
    size_t ringStart = 0;
    for (unsigned int ring = 0; ring < ringCount; ++ring) {
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

    const point3<float>& c = reference[k];
    for (unsigned int round = 0; round < ringCount; ++round)
      for (unsigned int v : queue) {
        if (v >= mask.size() || !mask[v]) continue;
        point3<float>& p = mesh.vPos(v);
        const float d2 = (p - c).squaredNorm();
        if (!(d2 <= r * r)) continue;
        const float d = d2 == 0.f ? 0.f : std::sqrt(d2);
        // A zero radius reaches only the centre's own point, at full weight, not 0 / 0.
        const float w = r > 0.f ? 1.f - d / r : 1.f;
        point3<float> a;
        vertexNeighbourAverage(mesh, v, a);
        p += (a - p) * w;
        modified[v] = 1;
      }
    for (unsigned int v : queue) visited[v] = 0;
  }
}

void localSmoothingFunctor::localSmoothing(editMesh& mesh, const std::vector<unsigned char>& mask,
                                           const std::vector<unsigned int>& centres,
                                           const std::vector<float>& radii,
                                           std::vector<unsigned char>& modified) {
  // A centre without a radius of its own reaches nothing.
  smoothAround(
      mesh, mask, centres, [&](size_t k) { return k < radii.size() ? radii[k] : -1.f; }, modified);
}

void localSmoothingFunctor::localSmoothing(editMesh& mesh, const std::vector<unsigned char>& mask,
                                           const std::vector<unsigned int>& centres, float radius,
                                           std::vector<unsigned char>& modified) {
  smoothAround(
      mesh, mask, centres, [radius](size_t) { return radius; }, modified);
}

void localSmoothingFunctor::localSmoothing(editMesh& mesh, const std::vector<unsigned int>& centres,
                                           float radius, std::vector<unsigned char>& modified) {
  localSmoothing(mesh, std::vector<unsigned char>(mesh.vn(), 1), centres, radius, modified);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
