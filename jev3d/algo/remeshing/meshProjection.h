#pragma once

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace REMESHING {

// Drapes a regular grid over the mesh as seen along direction: grid nodes `spacing`
// apart in the plane across direction, over the whole shadow of the mesh, each cast
// onto the first face it meets coming from outside the mesh's box. result is replaced
// by the nodes that hit, each square of four hitting nodes becoming two triangles
// (three hitting nodes, one). False, with result empty, for an empty mesh, a null
// direction, a spacing that is not positive, a grid past 16 million nodes, or no hit.
bool projectGridOnMesh(const editMesh& mesh, const MATH::point3<float>& direction, float spacing,
                       editMesh& result);

// Copies a into result and moves every vertex of a that lies inside b (by the parity of
// b's faces along a fixed ray) at 0.0005 or more from b onto its closest point of b;
// vertices nearer than that stay. b should be closed. Returns the number moved.
unsigned int intersectionsRemoval(const editMesh& a, const editMesh& b, editMesh& result);

// Diagnostic aids: rebuild the connectivity `rounds` times (computeEVEF and computeVE,
// or computeEdgesOpt and computeVE), writing the time taken to standard output.
void computeEVEFStressTest(editMesh& mesh, unsigned int rounds);
void computeEVEFOptiStressTest(editMesh& mesh, unsigned int rounds);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
