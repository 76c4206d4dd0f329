#pragma once

#include "jev3d/math/axisAlignedBox3.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MATH {

// A ball given by its centre and radius; the tests include the boundary.
template <class T>
class sphere3 {
 public:
  point3<T> center;
  T radius = T(0);

  sphere3() = default;
  sphere3(const point3<T>& c, T r) : center(c), radius(r) {}

  bool contains(const point3<T>& p) const { return (p - center).squaredNorm() <= radius * radius; }
  bool intersects(const sphere3& s) const {
    const T r = radius + s.radius;
    return (s.center - center).squaredNorm() <= r * r;
  }
  bool intersects(const axisAlignedBox3<T>& b) const {
    return !b.isEmpty() && b.squaredDistance(center) <= radius * radius;
  }
  // Whether the solid triangle (a, b, c) comes within the radius of the centre.
  bool intersectsTriangle(const point3<T>& a, const point3<T>& b, const point3<T>& c) const {
    T u, v;
    return (closestPointOnTriangle(center, a, b, c, u, v) - center).squaredNorm() <=
           radius * radius;
  }
  axisAlignedBox3<T> box() const { return axisAlignedBox3<T>(center - radius, center + radius); }
};

}  // namespace MATH
}  // namespace JEV
