#pragma once

#include <vector>

namespace JEV {
namespace MESH {
class editMesh;
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace REMESHING {

// A valence balancer that knows nothing of geometry: it flips edges between two
// triangles where both ends have valence 6 or more and the two far corners fewer than 7,
// so that high valences come down. Each flip locks its four vertices and the edges of its
// two faces for the rest of the run; passes repeat while one flips something, at most
// `passes` of them.
class edgeFlip {
 public:
  // Flips in place among the listed edges (every live edge when the list is empty),
  // patching faces, EF and VE so that edge ids, flags and selection survive; the two
  // faces of a flip get fresh unit normals. Needs edges and VE as computeEdges and
  // computeVE leave them (nothing is done otherwise). Returns the number of flips.
  static unsigned int computeEdgeFlipping(editMesh& mesh, const std::vector<unsigned int>& edges,
                                          unsigned int passes);
  // The number of flips the call above would make, leaving the mesh as it is.
  static unsigned int computeEdgeFlipping(const editMesh& mesh,
                                          const std::vector<unsigned int>& edges,
                                          unsigned int passes);
  // The same on an editable node's mesh; flips mark the node's render data stale. These
  // two live in the jev3d library, beside the node.
  static unsigned int computeEdgeFlipping(EDITING::editMeshNode& node,
                                          const std::vector<unsigned int>& edges,
                                          unsigned int passes);
  static unsigned int computeEdgeFlipping(const EDITING::editMeshNode& node,
                                          const std::vector<unsigned int>& edges,
                                          unsigned int passes);
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
