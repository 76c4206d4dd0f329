#pragma once

#include <vector>

#include "jev3d/algo/measurement/intersectionComputation.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class meshInterface;
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace MEASUREMENT {

// Signed distances from the vertices of a mesh to a voxelised model, both placed. Each
// vertex starts from the triangle the model's closest-point transform names at its voxel
// (the nearest voxel when it lies outside the grid) and walks over the triangles sharing
// corners to the nearest one. The sign is negative inside the model: by the volume in
// its inside voxels, by the nearest triangle's side in its surface voxels; outside the
// grid a vertex is outside. Outputs are sized for the mesh's vertices; deleted vertices
// keep MAX_T, closest points MAX_T and faces 0xFFFFFFFF. Closest points are placed as
// the model is. False when the model is empty.
class signedDistanceComputation {
 public:
  static bool compute(const VOXEL::voxelModel& model, const MATH::matrix4<float>& modelTransform,
                      const meshInterface& mesh, const MATH::matrix4<float>& meshTransform,
                      std::vector<float>& distances, std::vector<MATH::point3<float>>& closest,
                      std::vector<unsigned int>& faces);
  static bool compute(const VOXEL::voxelModel& model, const MATH::matrix4<float>& modelTransform,
                      const meshInterface& mesh, const MATH::matrix4<float>& meshTransform,
                      std::vector<float>& distances);
  // From the vertices of an editable node placed by its own transform matrix (these two
  // live in the jev3d library, beside the node).
  static bool compute(const VOXEL::voxelModel& model, const MATH::matrix4<float>& modelTransform,
                      const EDITING::editMeshNode& node, std::vector<float>& distances,
                      std::vector<MATH::point3<float>>& closest, std::vector<unsigned int>& faces);
  static bool compute(const VOXEL::voxelModel& model, const MATH::matrix4<float>& modelTransform,
                      const EDITING::editMeshNode& node, std::vector<float>& distances);
  // Both in the same frame.
  static bool compute(const VOXEL::voxelModel& model, const meshInterface& mesh,
                      std::vector<float>& distances);
};

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
