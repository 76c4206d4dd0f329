#pragma once

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

// Tuning of computeIsotropicMeshRefinement beyond the target length.
struct isotropicMeshParams {
  // The shortest edge kept, as a fraction of the target length: shorter edges collapse.
  float firstLengthRatio = 0.3f;
  // Edges longer than the target length times (1 + secondLengthRatio) are split; 0.3
  // gives the usual 4/3 bound.
  float secondLengthRatio = 0.3f;
  // Largest volume a single flip or collapse may change, in units of the cube of the
  // target length.
  float volumeTolerance = 0.5f;
  // Non-zero keeps the border of the region fixed; the rim against the frozen rest is
  // always fixed.
  unsigned int firstSwitch = 0;
  // Non-zero keeps sharp feature edges (dihedral angle above 60 degrees) from flipping
  // and collapsing across them.
  unsigned int secondSwitch = 0;

  isotropicMeshParams() = default;
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
