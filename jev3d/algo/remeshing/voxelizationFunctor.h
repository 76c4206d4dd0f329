#pragma once

#include <vector>

#include "jev3d/algo/remeshing/volumeDescriptor.h"
#include "jev3d/math/axisAlignedBox3.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/sphere3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace ALGO {
namespace REMESHING {

// Voxelises a triangle soup (three int indices a triangle into the positions): every
// voxel whose cube meets a triangle is VOXEL_ON_SURFACE; the others are flooded from the
// outside of the grid, face to face, and become VOXEL_OUTSIDE where the flood reaches
// and VOXEL_INSIDE where it does not. A closed surface thus gets its inside; a hole
// wider than a voxel lets the flood in. Triangles with an index out of range or a corner
// that is not finite are skipped. Every form returns false, with the volume emptied, for
// a soup without a usable triangle or a grid that cannot be made.
class voxelizationFunctor {
 public:
  // Into the grid frame of `frame` (its dimensions, corner and scale).
  bool operator()(const std::vector<MATH::point3<float>>& positions,
                  const std::vector<int>& triangles, const volumeDescriptor& frame,
                  volumeDescriptor& volume, SYSTEM::callBack* cb = nullptr) const;
  // Into a grid of `resolution` voxels along the longest side of the soup's box (1 to
  // 2048), with one voxel of outside all round.
  bool operator()(const std::vector<MATH::point3<float>>& positions,
                  const std::vector<int>& triangles, unsigned int resolution,
                  volumeDescriptor& volume, SYSTEM::callBack* cb = nullptr) const;
  // The same two with positions as three floats each.
  bool operator()(const std::vector<float>& positions, const std::vector<int>& triangles,
                  const volumeDescriptor& frame, volumeDescriptor& volume,
                  SYSTEM::callBack* cb = nullptr) const;
  bool operator()(const std::vector<float>& positions, const std::vector<int>& triangles,
                  unsigned int resolution, volumeDescriptor& volume,
                  SYSTEM::callBack* cb = nullptr) const;
  // The resolution form, also giving the cube of each inside voxel and of each surface
  // voxel, in world space.
  bool operator()(const std::vector<MATH::point3<float>>& positions,
                  const std::vector<int>& triangles, unsigned int resolution,
                  std::vector<MATH::axisAlignedBox3<float>>& insideBoxes,
                  std::vector<MATH::axisAlignedBox3<float>>& surfaceBoxes, volumeDescriptor& volume,
                  SYSTEM::callBack* cb = nullptr) const;
  // The same with the sphere around each of those cubes (radius half the diagonal).
  bool operator()(const std::vector<MATH::point3<float>>& positions,
                  const std::vector<int>& triangles, unsigned int resolution,
                  std::vector<MATH::sphere3<float>>& insideSpheres,
                  std::vector<MATH::sphere3<float>>& surfaceSpheres, volumeDescriptor& volume,
                  SYSTEM::callBack* cb = nullptr) const;
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
