#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
class meshInterface;

namespace ALGO {
namespace SMOOTHING {

// The mollified, robust bilateral filter over an analysis-surface copy of the mesh
// (polygons as fans). With f the surface's feature size (median edge length of a
// sample), faces within 3 sigma of sigmaSpace * f around a vertex (half that width for the
// mollifying first pass) are walked across edges from the vertex's own; each pulls the
// vertex toward the plane of the face through its centroid, weighted by area, by distance
// and, through sigmaRange * f, by how far that plane lies. result receives one position a
// live vertex, in vertex order (the mesh's ids when it has no deleted vertex); the mesh
// itself is not changed. An empty mesh gives an empty result. Progress and timing go to
// standard output; cb is accepted for symmetry with the other filters and not called.
void computeBilateralSmooth(const meshInterface& mesh, float sigmaSpace, float sigmaRange,
                            std::vector<MATH::point3<float>>& result, SYSTEM::callBack* cb);
void computeBilateralSmooth(const editMesh& mesh, float sigmaSpace, float sigmaRange,
                            std::vector<MATH::point3<float>>& result, SYSTEM::callBack* cb);

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
