#pragma once

#include <cmath>
#include <limits>

#include "jev3d/math/byteOrdered.h"
#include "jev3d/math/elementwise.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

// A quaternion stored scalar first: w, x, y, z. Unit quaternions are rotations; the
// product is Hamilton's, so (a·b).rotate(v) is a.rotate(b.rotate(v)). Full for float and
// double; int has the constants and the two rotation-matrix conversions.
template <class T>
class quaternion : public byteOrdered<quaternion<T>>, public elementwise<quaternion<T>, T, 4> {
 public:
  T w = T(1);
  T x = T(0);
  T y = T(0);
  T z = T(0);

  // The identity rotation.
  constexpr quaternion() = default;
  constexpr quaternion(T w_, T x_, T y_, T z_) : w(w_), x(x_), y(y_), z(z_) {}
  // (cos(angle/2), sin(angle/2)·axis), with the axis used as given.
  quaternion(const point3<T>& axis, T angle) { fromAxisAngle(axis, angle); }
  explicit quaternion(const matrix3<T>& rotation) { fromRotationMatrix(rotation); }

  static constexpr quaternion IDENTITY() { return quaternion(T(1), T(0), T(0), T(0)); }
  static constexpr quaternion ZERO() { return quaternion(T(0), T(0), T(0), T(0)); }

  // Element 0 is w.
  T& operator[](int i) { return (&w)[i]; }
  const T& operator[](int i) const { return (&w)[i]; }
  point3<T> vec() const { return point3<T>(x, y, z); }
  T* data() { return &w; }
  const T* data() const { return &w; }

  // Hamilton product in storage order.
  quaternion operator*(const quaternion& b) const {
    return quaternion(w * b.w - x * b.x - y * b.y - z * b.z, w * b.x + x * b.w + y * b.z - z * b.y,
                      w * b.y - x * b.z + y * b.w + z * b.x, w * b.z + x * b.y - y * b.x + z * b.w);
  }
  quaternion& operator*=(const quaternion& b) { return *this = *this * b; }
  T dot(const quaternion& b) const { return w * b.w + x * b.x + y * b.y + z * b.z; }
  T squaredNorm() const { return dot(*this); }
  // Length, taken in double.
  T norm() const {
    return T(std::sqrt(double(w) * w + double(x) * x + double(y) * y + double(z) * z));
  }
  // Scales to unit length (length taken in double); the null quaternion stays null.
  quaternion& normalize() {
    const double len = std::sqrt(double(w) * w + double(x) * x + double(y) * y + double(z) * z);
    if (len > 0.0) {
      w = T(w / len), x = T(x / len), y = T(y / len), z = T(z / len);
    } else {
      *this = ZERO();
    }
    return *this;
  }
  quaternion conjugate() const { return quaternion(w, -x, -y, -z); }
  // The conjugate over the squared norm; a squared norm not above 0 gives ZERO.
  quaternion inverse() const {
    const T n = squaredNorm();
    if (n <= T(0)) return ZERO();
    return conjugate() * (T(1) / n);
  }

  quaternion& fromAxisAngle(const point3<T>& axis, T angle) {
    const T s = std::sin(angle * T(0.5));
    w = std::cos(angle * T(0.5)), x = s * axis.x, y = s * axis.y, z = s * axis.z;
    return *this;
  }
  // Angle in 0..2π and unit axis; no rotation gives angle 0 about (1, 0, 0).
  void toAxisAngle(point3<T>& axis, T& angle) const;

  // The column form: element (0,1) is 2xy - 2wz, so that rotate(v) is R·v.
  void toRotationMatrix(matrix3<T>& r) const;
  // The three columns of the column form.
  void toRotationMatrix(point3<T>* columns) const;
  // The transposed (row-vector) form, element (0,1) is 2xy + 2wz, for p·R transforms. The
  // matrix4 target gets row and column 3 cleared and element 15 set to 1.
  void ToMatrix(matrix3<T>& r) const;
  void ToMatrix(matrix4<T>& r) const;
  // From a rotation in column form.
  quaternion& fromRotationMatrix(const matrix3<T>& r);
  // R·v with R the column form.
  point3<T> rotate(const point3<T>& v) const;

  quaternion exp() const;
  quaternion log() const;
  // Spherical interpolation from p (t = 0) to q (t = 1). No shorter-arc flip: a negative
  // p·q takes the long way; negate one of them first for the short arc.
  quaternion& slerp(T t, const quaternion& p, const quaternion& q);
  // slerp with `spins` extra half-turns of phase along the way.
  quaternion& slerpExtraSpins(T t, const quaternion& p, const quaternion& q, int spins);
  // The inner control point at q1 for squad through q0, q1, q2.
  quaternion& intermediate(const quaternion& q0, const quaternion& q1, const quaternion& q2);
  // slerp(2t(1 - t), slerp(t, q0, q1), slerp(t, a0, a1)).
  quaternion& squad(T t, const quaternion& q0, const quaternion& a0, const quaternion& a1,
                    const quaternion& q1);
  // The rotation carrying unit v1 onto unit v2; opposite vectors give a half-turn about a
  // perpendicular axis (w = 0).
  quaternion& align(const point3<T>& v1, const point3<T>& v2);
  // this = swing·twist with twist about the unit axis.
  void decomposeSwingTimesTwist(const point3<T>& axis, quaternion& swing, quaternion& twist) const;
  // this = twist·swing, with swing as in decomposeSwingTimesTwist.
  void decomposeTwistTimesSwing(const point3<T>& axis, quaternion& twist, quaternion& swing) const;
};

using quaternionf = quaternion<float>;
using quaterniond = quaternion<double>;

extern template class quaternion<float>;
extern template class quaternion<double>;

}  // namespace MATH
}  // namespace JEV
