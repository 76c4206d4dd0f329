#pragma once

#include <vector>

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
namespace INTERNAL {

// What the forwards of the algorithms tell a node after the core changed its mesh.

// The core left the stores finished (positions or faces changed, connectivity and normals
// brought up to date by the call itself): the box and every piece of render data go
// stale, so the next frame rebuilds the cache.
void meshChanged(editMeshNode& node);
// The listed vertices moved and the faces stayed: the normals around them are recomputed
// (over the whole mesh when the connectivity is stale), the selection sums follow, and the
// box and render data go stale.
void verticesMoved(editMeshNode& node, const std::vector<unsigned int>& vertices);
// The mesh was written through the neutral interface, which leaves connectivity stale:
// edges (keeping wire edges) and VE are rebuilt and normals recomputed first.
void meshRewritten(editMeshNode& node);

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
