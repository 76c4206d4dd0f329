#pragma once

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

// Tuning of computeIsotropicMeshRefinement relative to m, the mean edge length of the
// region it remeshes.
struct isotropicMeshParams {
  // Edges shorter than (1 - firstLengthRatio)·m collapse.
  float firstLengthRatio = 0.3f;
  // Edges longer than (1 + secondLengthRatio)·m split.
  float secondLengthRatio = 0.3f;
  // Largest volume a single flip or collapse may change, in units of m³.
  float volumeTolerance = 0.5f;
  // Non-zero keeps the open borders of the region as they are; the seam against the
  // rest of the mesh always stays.
  unsigned int firstSwitch = 0;
  // Non-zero keeps sharp edges (faces more than 60 degrees apart): they are not
  // flipped, and their vertices neither move nor collapse.
  unsigned int secondSwitch = 0;

  isotropicMeshParams() = default;
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
