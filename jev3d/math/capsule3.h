#pragma once

#include <algorithm>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MATH {

// Squared distance between the segments [p0, p1] and [q0, q1]: the clamped solution of
// the two-parameter least squares, with parallel and point-like segments handled.
template <class T>
T squaredSegmentDistance(const point3<T>& p0, const point3<T>& p1, const point3<T>& q0,
                         const point3<T>& q1) {
  const point3<T> d1 = p1 - p0, d2 = q1 - q0, r = p0 - q0;
  const T a = d1 * d1, e = d2 * d2, f = d2 * r;
  T s = T(0), t = T(0);
  if (a <= T(0) && e <= T(0)) return r.squaredNorm();
  if (a <= T(0)) {
    t = std::clamp(f / e, T(0), T(1));
  } else {
    const T c = d1 * r;
    if (e <= T(0)) {
      s = std::clamp(-c / a, T(0), T(1));
    } else {
      const T b = d1 * d2, den = a * e - b * b;
      s = den > T(0) ? std::clamp((b * f - c * e) / den, T(0), T(1)) : T(0);
      t = (b * s + f) / e;
      if (t < T(0)) {
        t = T(0), s = std::clamp(-c / a, T(0), T(1));
      } else if (t > T(1)) {
        t = T(1), s = std::clamp((b - c) / a, T(0), T(1));
      }
    }
  }
  return ((p0 + d1 * s) - (q0 + d2 * t)).squaredNorm();
}

// The points within radius of the segment [a, b]; boundary included.
template <class T>
class capsule3 {
 public:
  point3<T> a, b;
  T radius = T(0);

  capsule3() = default;
  capsule3(const point3<T>& p, const point3<T>& q, T r) : a(p), b(q), radius(r) {}

  T squaredDistance(const point3<T>& p) const {
    T t;
    return (closestPointOnSegment(p, a, b, t) - p).squaredNorm();
  }
  bool contains(const point3<T>& p) const { return squaredDistance(p) <= radius * radius; }
  // Whether the solid triangle (t0, t1, t2) comes within the radius of the axis: the
  // axis pierces it, or an end of the axis is close to it, or an edge is close to the axis.
  bool intersectsTriangle(const point3<T>& t0, const point3<T>& t1, const point3<T>& t2) const {
    const T r2 = radius * radius;
    T t, u, v;
    if (intersectRayTriangle(a, b - a, t0, t1, t2, T(1), t, u, v)) return true;
    if ((closestPointOnTriangle(a, t0, t1, t2, u, v) - a).squaredNorm() <= r2) return true;
    if ((closestPointOnTriangle(b, t0, t1, t2, u, v) - b).squaredNorm() <= r2) return true;
    return squaredSegmentDistance(a, b, t0, t1) <= r2 ||
           squaredSegmentDistance(a, b, t1, t2) <= r2 || squaredSegmentDistance(a, b, t2, t0) <= r2;
  }
};

}  // namespace MATH
}  // namespace JEV
