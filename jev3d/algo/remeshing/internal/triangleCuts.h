#pragma once

#include <cstddef>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

// Cuts triangles at points on their sides. sideMid[3t + k] is the vertex on side k
// (corners k and k + 1) of triangle t, or 0xFFFFFFFF for a side left whole. A triangle
// with no such point is copied; one with one, two or three becomes two, three or four
// triangles of the same winding, the quad left by two points cut along its shorter
// diagonal. Triangles flagged in skip (when given) are dropped. The pieces are appended
// to out, three corners each, and their source triangles to source when given.
// The four pieces of a triangle with corners v and a point on each side (m[k] on the
// side from v[k] to v[k + 1]), handed to add(a, b, c) in the order cutTriangles gives.
template <class Add>
void quarterTriangle(const unsigned int v[3], const unsigned int m[3], Add add) {
  add(v[0], m[0], m[2]), add(m[0], v[1], m[1]), add(m[2], m[1], v[2]), add(m[0], m[1], m[2]);
}

void cutTriangles(const std::vector<unsigned int>& triangles,
                  const std::vector<unsigned int>& sideMid,
                  const std::vector<MATH::point3<float>>& positions, std::vector<unsigned int>& out,
                  std::vector<unsigned int>* source = nullptr,
                  const std::vector<unsigned char>* skip = nullptr);

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
