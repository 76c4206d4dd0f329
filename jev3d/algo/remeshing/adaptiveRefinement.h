#pragma once

#include <vector>

namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace REMESHING {

// Refines the region of selected vertices (an edge is active when one of its ends is
// selected) until no active edge is longer than maxEdgeLength, or five passes have run.
// A pass splits at their midpoints the long active edges of one independent set (no two
// share a face), selecting what it makes so the region grows with the refinement;
// rebuilds the connectivity; relaxes the selected inner vertices in their tangent planes;
// every third pass that still has long edges, flips edges between two vertices of
// valence above 6 where both far corners have less; and collapses active edges that
// the split made shorter than a quarter of the length. Faces without a selected vertex
// are left as they are. Ends with unit normals, the added faces selected, and the lines
// "numIters N" and "updateEdgeTime 0" on standard output. Needs triangles (other faces
// on a long edge take the midpoint as a corner).
void adaptiveRefine(editMesh& mesh, float maxEdgeLength);

// Refines the listed faces and the ring around them the same way on a copy of that
// region, and puts the result back in place of the region's faces; the new faces are
// selected. Writes "starting adaptiveRefine..." and "adaptiveRefine done in T msecs".
void adaptiveMeshRefinement(editMesh& mesh, std::vector<unsigned int>& faces, float maxEdgeLength);

// Relaxes the vertices within five edge rings of each centre, 150 rounds a centre: each
// round moves every vertex of the neighbourhood within radius of the centre's starting
// position towards the half-weighted umbrella average of its edges by 1 - distance /
// radius, in place in ring order. moved, when given, gets 1 for each vertex moved.
void localSmoothing(editMesh& mesh, const std::vector<unsigned int>& centres, float radius,
                    std::vector<unsigned char>* moved = nullptr);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
