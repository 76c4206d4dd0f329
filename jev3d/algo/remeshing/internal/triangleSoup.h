#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

// The live faces of a mesh as triangles (fans from corner 0) over its live vertices,
// renumbered in order. vertexIds, when given, receives the mesh vertex of each position.
void toTriangleSoup(const editMesh& mesh, std::vector<MATH::point3<float>>& positions,
                    std::vector<unsigned int>& triangles,
                    std::vector<unsigned int>* vertexIds = nullptr);

// Replaces the mesh's content with the triangles over positions and finishes it as an
// edit ends: flags, edges (wire edges kept), VE, unit normals.
void fromTriangleSoup(editMesh& mesh, const std::vector<MATH::point3<float>>& positions,
                      const std::vector<unsigned int>& triangles);

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
