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
