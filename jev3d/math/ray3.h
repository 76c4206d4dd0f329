#pragma once

#include <limits>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MATH {

// The half line origin + t·direction, t >= 0; direction need not be unit, and t is
// measured in its length.
template <class T>
class ray3 {
 public:
  point3<T> origin;
  point3<T> direction{T(0), T(0), T(1)};

  ray3() = default;
  ray3(const point3<T>& o, const point3<T>& d) : origin(o), direction(d) {}

  point3<T> pointAt(T t) const { return origin + direction * t; }
  // Hit of the triangle (a, b, c) from either side at t in [0, tMax]; u, v weigh b and c.
  bool intersectTriangle(const point3<T>& a, const point3<T>& b, const point3<T>& c, T& t, T& u,
                         T& v, T tMax = std::numeric_limits<T>::max()) const {
    return intersectRayTriangle(origin, direction, a, b, c, tMax, t, u, v);
  }
  // Squared distance from p to the ray.
  T squaredDistance(const point3<T>& p) const {
    const T len2 = direction.squaredNorm();
    T t = len2 > T(0) ? ((p - origin) * direction) / len2 : T(0);
    if (t < T(0)) t = T(0);
    return (pointAt(t) - p).squaredNorm();
  }
};

}  // namespace MATH
}  // namespace JEV
