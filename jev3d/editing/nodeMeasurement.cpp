// The measurement classes' forms that take editable nodes. They are members of core
// classes; they live here, beside the node, so that the core needs no node.

#include "jev3d/algo/measurement/signedDistanceComputation.h"
#include "jev3d/algo/measurement/solidIntersection.h"
#include "jev3d/editing/editMeshNode.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

using EDITING::editMeshNode;

unsigned int solidIntersection::addModelToTest(const editMeshNode& node,
                                               const MATH::matrix4<float>& matrix, bool smooth) {
  return addModelToTest(node.getEditMesh(), matrix, smooth);
}

bool signedDistanceComputation::compute(const VOXEL::voxelModel& model,
                                        const MATH::matrix4<float>& modelTransform,
                                        const editMeshNode& node, std::vector<float>& distances,
                                        std::vector<MATH::point3<float>>& closest,
                                        std::vector<unsigned int>& faces) {
  const meshInterface& mesh = node;
  return compute(model, modelTransform, mesh, node.getTransformMatrix(), distances, closest, faces);
}

bool signedDistanceComputation::compute(const VOXEL::voxelModel& model,
                                        const MATH::matrix4<float>& modelTransform,
                                        const editMeshNode& node, std::vector<float>& distances) {
  const meshInterface& mesh = node;
  return compute(model, modelTransform, mesh, node.getTransformMatrix(), distances);
}

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
