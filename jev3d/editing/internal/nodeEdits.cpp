#include "jev3d/editing/internal/nodeEdits.h"

#include "jev3d/editing/editMeshNode.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace INTERNAL {

void meshChanged(editMeshNode& node) {
  node.getEditMesh().updateBBox();
  node.invalidateRenderData();
}

void verticesMoved(editMeshNode& node, const std::vector<unsigned int>& vertices) {
  editMesh& m = node.getEditMesh();
  if (m.isEVEFValid() && m.isVEValid()) {
    // The faces around the vertices and then the vertices of those faces: a stroke costs
    // its neighbourhood, not the mesh.
    std::vector<unsigned char> faceSeen(m.fn(), 0), vertSeen(m.vn(), 0);
    std::vector<unsigned int> faces, around;
    for (unsigned int v : vertices) {
      if (v >= m.vn() || m.isVertDeleted(v)) continue;
      for (unsigned int f : m.getAdiacentFaces(v))
        if (f < m.fn() && !faceSeen[f]) faceSeen[f] = 1, faces.push_back(f);
    }
    for (unsigned int f : faces) {
      m.computeNormalizedFaceNormal(f);
      for (unsigned int i = 0; i < m.fVNum(f); ++i) {
        const unsigned int v = m.fV(f, i);
        if (v < m.vn() && !vertSeen[v]) vertSeen[v] = 1, around.push_back(v);
      }
    }
    for (unsigned int v : around) m.computeNormalizedVertexNormal(v);
  } else {
    m.computeNormalizedNormals();
  }
  m.updateSelVertPosNorSum();
  meshChanged(node);
}

void meshRewritten(editMeshNode& node) {
  editMesh& m = node.getEditMesh();
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedNormals();
  meshChanged(node);
}

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
