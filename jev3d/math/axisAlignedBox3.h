#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

// A box with faces parallel to the axes, given by its two extreme corners. A fresh box is
// empty (minimum above maximum) and takes the first point it is extended by.
template <class T>
class axisAlignedBox3 {
 public:
  point3<T> minimum{std::numeric_limits<T>::max(), std::numeric_limits<T>::max(),
                    std::numeric_limits<T>::max()};
  point3<T> maximum{std::numeric_limits<T>::lowest(), std::numeric_limits<T>::lowest(),
                    std::numeric_limits<T>::lowest()};

  axisAlignedBox3() = default;
  axisAlignedBox3(const point3<T>& lo, const point3<T>& hi) : minimum(lo), maximum(hi) {}

  bool isEmpty() const {
    return !(minimum.x <= maximum.x && minimum.y <= maximum.y && minimum.z <= maximum.z);
  }
  void clear() { *this = axisAlignedBox3(); }
  void extend(const point3<T>& p) {
    minimum.x = std::min(minimum.x, p.x), minimum.y = std::min(minimum.y, p.y);
    minimum.z = std::min(minimum.z, p.z);
    maximum.x = std::max(maximum.x, p.x), maximum.y = std::max(maximum.y, p.y);
    maximum.z = std::max(maximum.z, p.z);
  }
  void extend(const axisAlignedBox3& b) {
    if (b.isEmpty()) return;
    extend(b.minimum);
    extend(b.maximum);
  }
  point3<T> center() const { return (minimum + maximum) * T(0.5); }
  point3<T> size() const { return maximum - minimum; }
  // Length of the diagonal; 0 for an empty box.
  T diagonal() const { return isEmpty() ? T(0) : size().norm(); }

  // Boundary included.
  bool contains(const point3<T>& p) const {
    return p.x >= minimum.x && p.x <= maximum.x && p.y >= minimum.y && p.y <= maximum.y &&
           p.z >= minimum.z && p.z <= maximum.z;
  }
  bool intersects(const axisAlignedBox3& b) const {
    return !isEmpty() && !b.isEmpty() && minimum.x <= b.maximum.x && b.minimum.x <= maximum.x &&
           minimum.y <= b.maximum.y && b.minimum.y <= maximum.y && minimum.z <= b.maximum.z &&
           b.minimum.z <= maximum.z;
  }
  // Squared distance from p to the box; 0 inside.
  T squaredDistance(const point3<T>& p) const {
    T d = T(0);
    for (int i = 0; i < 3; ++i) {
      const T v =
          p[i] < minimum[i] ? minimum[i] - p[i] : (p[i] > maximum[i] ? p[i] - maximum[i] : T(0));
      d += v * v;
    }
    return d;
  }

  // Whether the solid triangle (a, b, c) meets the box: the separating-axis test over the
  // three box axes, the triangle's normal and the nine edge cross products.
  bool intersectsTriangle(const point3<T>& a, const point3<T>& b, const point3<T>& c) const {
    if (isEmpty()) return false;
    const point3<T> h = size() * T(0.5), m = center();
    const point3<T> v[3] = {a - m, b - m, c - m};
    const point3<T> e[3] = {v[1] - v[0], v[2] - v[1], v[0] - v[2]};
    auto separated = [&](const point3<T>& axis) {
      const T p0 = v[0] * axis, p1 = v[1] * axis, p2 = v[2] * axis;
      const T r = h.x * std::abs(axis.x) + h.y * std::abs(axis.y) + h.z * std::abs(axis.z);
      return std::min({p0, p1, p2}) > r || std::max({p0, p1, p2}) < -r;
    };
    static const point3<T> axes[3] = {point3<T>::UNIT_X(), point3<T>::UNIT_Y(),
                                      point3<T>::UNIT_Z()};
    for (const point3<T>& u : axes)
      for (const point3<T>& ed : e)
        if (separated(point3<T>::cross(u, ed))) return false;
    for (const point3<T>& u : axes)
      if (separated(u)) return false;
    return !separated(point3<T>::cross(e[0], e[1]));
  }

  // The slab test of the ray origin + t·direction for t in [tMin, tMax]; on a hit, tMin and
  // tMax become the parameters where it enters and leaves the box.
  bool intersectsRay(const point3<T>& origin, const point3<T>& direction, T& tMin, T& tMax) const {
    if (isEmpty()) return false;
    for (int i = 0; i < 3; ++i) {
      if (direction[i] == T(0)) {
        if (origin[i] < minimum[i] || origin[i] > maximum[i]) return false;
        continue;
      }
      const T inv = T(1) / direction[i];
      T t0 = (minimum[i] - origin[i]) * inv, t1 = (maximum[i] - origin[i]) * inv;
      if (t0 > t1) std::swap(t0, t1);
      tMin = std::max(tMin, t0);
      tMax = std::min(tMax, t1);
      if (tMin > tMax) return false;
    }
    return true;
  }
};

}  // namespace MATH
}  // namespace JEV
