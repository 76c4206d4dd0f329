#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {
namespace INTERNAL {

// Queries on a triangle soup: three point indices a triangle, trusted to be in range.

// Closest point to p on triangle t.
MATH::point3<float> onTriangle(const std::vector<MATH::point3<float>>& points,
                               const std::vector<int>& triangles, unsigned int t,
                               const MATH::point3<float>& p);
// The triangle's normal, not normalised (its length is twice the area).
MATH::point3<float> triangleNormal(const std::vector<MATH::point3<float>>& points,
                                   const std::vector<int>& triangles, unsigned int t);

// The triangles around each point of a soup, as rows of one array.
struct triangleFans {
  std::vector<unsigned int> start, triangles;

  triangleFans(std::size_t pointCount, const std::vector<int>& soup);
};

// From triangle t, steps to a triangle sharing a corner with it while that brings p
// nearer; returns the triangle it ends on, with the closest point on it and the distance.
// The surface points within reach of p mostly form one patch, so the walk ends on the
// nearest triangle when it starts beside it.
unsigned int walkToNearest(const std::vector<MATH::point3<float>>& points,
                           const std::vector<int>& triangles, const triangleFans& fans,
                           unsigned int t, const MATH::point3<float>& p,
                           MATH::point3<float>& closest, float& distance);

}  // namespace INTERNAL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
