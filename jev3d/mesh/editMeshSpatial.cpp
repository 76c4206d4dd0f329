#include "jev3d/mesh/editMesh.h"

// Placeholders until the spatial index lands: no tree is ever built, so there is nothing
// to destroy, and indexing never reads as valid.

namespace JEV {
namespace MESH {

void editMesh::faceTreeDeleter::operator()(aabbtreeEditMeshFaceWrap<float>*) const {}
void editMesh::vertTreeDeleter::operator()(aabbtreeEditMeshVertWrap<float>*) const {}

void editMesh::computeFABBTree(unsigned int) {}
void editMesh::computeVABBTree(unsigned int) {}
bool editMesh::isSpatialIndexingValid() const { return false; }

}  // namespace MESH
}  // namespace JEV
