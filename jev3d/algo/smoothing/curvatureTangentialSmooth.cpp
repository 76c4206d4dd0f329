#include "jev3d/algo/smoothing/curvatureTangentialSmooth.h"

#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using MATH::point3;

void computeCurvatureTangentialSmooth(editMesh& mesh, unsigned int iterations, bool selectedOnly) {
  mesh.checkMeshState();
  if (!mesh.isEVEFValid() || !mesh.isVEValid()) {
    mesh.computeEdges(true);
    mesh.computeVE();
  }
  mesh.computeNormalizedNormals();
  const unsigned int n = mesh.vn();
  std::vector<point3<float>> old(n), normal(n);
  for (unsigned int v = 0; v < n; ++v) old[v] = mesh.vPos(v), normal[v] = mesh.vNor(v);

  for (unsigned int it = 0; it < iterations; ++it) {
    mesh.smooth(selectedOnly);
    for (unsigned int v = 0; v < n; ++v) {
      if (mesh.isVertDeleted(v)) continue;
      const point3<float> t = mesh.vPos(v) - old[v];
      mesh.vPos(v) = old[v] + t - normal[v] * (normal[v] * t);
    }
  }
  mesh.computeNormalizedNormals();
  mesh.updateBBox();
  mesh.invalidateRenderData();
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
