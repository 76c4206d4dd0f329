#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {
namespace VOXEL {

// For every voxel of a grid, the closest point of a triangle soup to the voxel's centre,
// the triangle it lies on and its distance. The grid is the frame of a volumeDescriptor:
// voxel (i, j, k) at ((dimY·k) + j)·dimX + i, centred on minimum + (i, j, k)·scale.
// Voxels that the transform did not reach hold MAX_T, no point and triangle NO_TRIANGLE.
struct closestPointTransform {
  static constexpr unsigned int NO_TRIANGLE = 0xFFFFFFFFu;

  uint64_t dimX = 0, dimY = 0, dimZ = 0;
  MATH::point3<double> minimum;
  double scale = 1.0;
  std::vector<float> distances;
  std::vector<unsigned int> triangles;
  std::vector<MATH::point3<float>> closest;

  bool isEmpty() const { return distances.empty(); }
  void clear() {
    dimX = dimY = dimZ = 0;
    distances.clear();
    triangles.clear();
    closest.clear();
  }
  uint64_t index(uint64_t i, uint64_t j, uint64_t k) const { return (dimY * k + j) * dimX + i; }
  MATH::point3<float> center(uint64_t i, uint64_t j, uint64_t k) const {
    return MATH::point3<float>(float(minimum.x + double(i) * scale),
                               float(minimum.y + double(j) * scale),
                               float(minimum.z + double(k) * scale));
  }
};

}  // namespace VOXEL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
