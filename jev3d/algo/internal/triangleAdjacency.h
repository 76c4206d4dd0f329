#pragma once

// Adjacency of indexed triangle lists, shared by the working mesh and the scan mesh.
// Not installed.

#include <vector>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace INTERNAL {

constexpr unsigned int NO_WEDGE = 0xFFFFFFFFu;

// Vertex-to-face lists in compressed rows: the corners at vertex v are
// wedges[start[v] .. start[v + 1]), each a wedge id 3·face + corner, in face order.
// Triangles with a corner out of range, and those whose skip byte is non-zero (when skip
// is given), are left out.
void buildVertexFace(const unsigned int* tri, unsigned int faceCount, unsigned int vertexCount,
                     const unsigned char* skip, std::vector<unsigned int>& start,
                     std::vector<unsigned int>& wedges);

// Face-to-face adjacency across each edge: ff[3·f + i] is the wedge id 3·g + j of the
// neighbour g whose edge j is edge i of f (corners i, i + 1), or NO_WEDGE on a border.
// Where more than two triangles share an edge, each names the next in a ring of all of
// them, in face order. Needs the lists of buildVertexFace over the same triangles; left
// out triangles and degenerate edges get NO_WEDGE.
void buildFaceFace(const unsigned int* tri, unsigned int faceCount, unsigned int vertexCount,
                   const std::vector<unsigned int>& start, const std::vector<unsigned int>& wedges,
                   const unsigned char* skip, std::vector<unsigned int>& ff);

}  // namespace INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
