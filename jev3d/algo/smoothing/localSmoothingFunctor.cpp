#include "jev3d/algo/smoothing/localSmoothingFunctor.h"

#include "jev3d/algo/smoothing/internal/brushRelaxation.h"
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
    INTERNAL::gatherRings(mesh, centres[k], ringCount, visited, queue);
    INTERNAL::relaxNeighbourhood(mesh, queue, reference[k], r, ringCount, &mask, &modified);
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
