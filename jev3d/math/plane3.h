#pragma once

#include <cmath>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

// The plane of points p with normal·p + d = 0. The normal is kept as given: distances
// are in its length, true distances when it is unit.
template <class T>
class plane3 {
 public:
  point3<T> normal{T(0), T(0), T(1)};
  T d = T(0);

  plane3() = default;
  plane3(const point3<T>& n, T offset) : normal(n), d(offset) {}
  // Through p with normal n, normalised here (a null n stays null).
  static plane3 fromPointNormal(const point3<T>& p, const point3<T>& n) {
    const point3<T> u = n.getNormalized();
    return plane3(u, -(u * p));
  }

  T signedDistance(const point3<T>& p) const { return normal * p + d; }
  // +1 in front (along the normal), -1 behind, 0 on the plane.
  int side(const point3<T>& p) const {
    const T s = signedDistance(p);
    return s > T(0) ? 1 : (s < T(0) ? -1 : 0);
  }
  point3<T> project(const point3<T>& p) const {
    const T len2 = normal.squaredNorm();
    return len2 > T(0) ? p - normal * (signedDistance(p) / len2) : p;
  }
  // Where the segment [a, b] crosses the plane; false when both ends are strictly on one
  // side or the segment lies in the plane.
  bool intersectSegment(const point3<T>& a, const point3<T>& b, point3<T>& hit) const {
    const T da = signedDistance(a), db = signedDistance(b);
    if ((da > T(0) && db > T(0)) || (da < T(0) && db < T(0)) || da == db) return false;
    hit = a + (b - a) * (da / (da - db));
    return true;
  }
  // The segment where the triangle (a, b, c) meets the plane; false unless it crosses it.
  bool intersectTriangle(const point3<T>& a, const point3<T>& b, const point3<T>& c, point3<T>& p0,
                         point3<T>& p1) const {
    const point3<T> v[3] = {a, b, c};
    point3<T> hits[3];
    int n = 0;
    for (int i = 0; i < 3 && n < 2; ++i) {
      point3<T> h;
      if (intersectSegment(v[i], v[(i + 1) % 3], h) && (n == 0 || !(h == hits[0]))) hits[n++] = h;
    }
    if (n < 2) return false;
    p0 = hits[0], p1 = hits[1];
    return true;
  }
};

}  // namespace MATH
}  // namespace JEV
