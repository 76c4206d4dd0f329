#include "jev3d/algo/remeshing/internal/triangleSoup.h"

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

void toTriangleSoup(const editMesh& mesh, std::vector<MATH::point3<float>>& positions,
                    std::vector<unsigned int>& triangles, std::vector<unsigned int>* vertexIds) {
  constexpr unsigned int NONE = 0xFFFFFFFFu;
  std::vector<unsigned int> id(mesh.vn(), NONE);
  positions.clear();
  triangles.clear();
  if (vertexIds) vertexIds->clear();
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (mesh.isVertDeleted(v)) continue;
    id[v] = unsigned(positions.size());
    positions.push_back(mesh.vPos(v));
    if (vertexIds) vertexIds->push_back(v);
  }
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
      unsigned int c[3];
      mesh.getTriangle(f, t, c[0], c[1], c[2]);
      if (c[0] >= id.size() || c[1] >= id.size() || c[2] >= id.size()) continue;
      if (id[c[0]] == NONE || id[c[1]] == NONE || id[c[2]] == NONE) continue;
      for (unsigned int k : c) triangles.push_back(id[k]);
    }
  }
}

void fromTriangleSoup(editMesh& mesh, const std::vector<MATH::point3<float>>& positions,
                      const std::vector<unsigned int>& triangles) {
  mesh.clear(false);
  mesh.allocateVertexArray(unsigned(positions.size()));
  mesh.allocateFaceArray(unsigned(triangles.size() / 3));
  mesh.allocateFVArray(unsigned(triangles.size()));
  for (const MATH::point3<float>& p : positions) mesh.addVertex(p);
  for (size_t k = 0; k + 2 < triangles.size(); k += 3)
    mesh.addTriFace(triangles[k], triangles[k + 1], triangles[k + 2]);
  mesh.checkMeshState();
  mesh.computeEdges(true);
  mesh.computeVE();
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
}

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
