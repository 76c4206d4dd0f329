#pragma once

namespace JEV {
namespace MESH {
class editMesh;

namespace ALGO {
namespace SMOOTHING {

// iterations rounds of editMesh::smooth(selectedOnly), each followed by taking back the
// part of every live vertex's displacement along its starting unit normal: vertices
// slide in the tangent planes of the starting surface, which evens the sampling without
// shrinking the shape. Displacements are measured from the starting positions in every
// round. Edges and VE are rebuilt first if they are stale; normals are recomputed
// before and after, and the box goes stale.
void computeCurvatureTangentialSmooth(editMesh& mesh, unsigned int iterations, bool selectedOnly);

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
