#pragma once

#include <cmath>

#include "jev3d/math/mathBase.h"
#include "jev3d/math/quaternion.h"

namespace JEV {
namespace MATH {

template <class T>
void quaternion<T>::toAxisAngle(point3<T>& axis, T& angle) const {
  const double lengthSquared = double(x) * x + double(y) * y + double(z) * z;
  if (lengthSquared == 0.0) {
    angle = T(0);
    axis = point3<T>::UNIT_X();
    return;
  }
  angle = T(2) * mathBase<T>::aCos(w);
  const double inv = 1.0 / std::sqrt(lengthSquared);
  axis = point3<T>(T(x * inv), T(y * inv), T(z * inv));
}

template <class T>
void quaternion<T>::toRotationMatrix(matrix3<T>& r) const {
  const T tx = x + x, ty = y + y, tz = z + z;
  const T twx = tx * w, twy = ty * w, twz = tz * w;
  const T txx = tx * x, txy = ty * x, txz = tz * x;
  const T tyy = ty * y, tyz = tz * y, tzz = tz * z;
  r = matrix3<T>(T(1) - (tyy + tzz), txy - twz, txz + twy,  //
                 txy + twz, T(1) - (txx + tzz), tyz - twx,  //
                 txz - twy, tyz + twx, T(1) - (txx + tyy));
}

template <class T>
void quaternion<T>::toRotationMatrix(point3<T>* columns) const {
  matrix3<T> r;
  toRotationMatrix(r);
  for (int c = 0; c < 3; ++c) columns[c] = r.getColumn(c);
}

template <class T>
void quaternion<T>::ToMatrix(matrix3<T>& r) const {
  toRotationMatrix(r);
  r.setTranspose();
}

template <class T>
void quaternion<T>::ToMatrix(matrix4<T>& r) const {
  matrix3<T> block;
  ToMatrix(block);
  r = block.toMatrix4();
}

template <class T>
quaternion<T>& quaternion<T>::fromRotationMatrix(const matrix3<T>& r) {
  const T trace = r.getTrace();
  if (trace > T(0)) {
    const T s = T(std::sqrt(double(trace) + 1.0));
    w = s / T(2);
    const double half = 0.5 / double(s);
    x = T((r(2, 1) - r(1, 2)) * half);
    y = T((r(0, 2) - r(2, 0)) * half);
    z = T((r(1, 0) - r(0, 1)) * half);
    return *this;
  }
  // The largest diagonal element keeps the square root away from 0; ties go low.
  int i = 0;
  if (r(1, 1) > r(0, 0)) i = 1;
  if (r(2, 2) > r(i, i)) i = 2;
  const int j = (i + 1) % 3, k = (i + 2) % 3;
  const T s = T(std::sqrt(double(r(i, i)) - r(j, j) - r(k, k) + 1.0));
  T* v = &x;
  v[i] = s / T(2);
  const double half = 0.5 / double(s);
  w = T((r(k, j) - r(j, k)) * half);
  v[j] = T((r(j, i) + r(i, j)) * half);
  v[k] = T((r(k, i) + r(i, k)) * half);
  return *this;
}

template <class T>
point3<T> quaternion<T>::rotate(const point3<T>& v) const {
  matrix3<T> r;
  toRotationMatrix(r);
  return r * v;
}

template <class T>
quaternion<T> quaternion<T>::exp() const {
  const T angle = T(std::sqrt(double(x) * x + double(y) * y + double(z) * z));
  const T s = std::sin(angle);
  quaternion r(std::cos(angle), x, y, z);
  if (std::abs(s) > T(0)) {
    const T scale = s / angle;
    r.x *= scale, r.y *= scale, r.z *= scale;
  }
  return r;
}

template <class T>
quaternion<T> quaternion<T>::log() const {
  quaternion r(T(0), x, y, z);
  if (std::abs(w) < T(1)) {
    const T angle = mathBase<T>::aCos(w);
    const T s = std::sin(angle);
    if (std::abs(s) > T(0)) {
      const T scale = angle / s;
      r.x *= scale, r.y *= scale, r.z *= scale;
    }
  }
  return r;
}

template <class T>
quaternion<T>& quaternion<T>::slerp(T t, const quaternion& p, const quaternion& q) {
  return slerpExtraSpins(t, p, q, 0);
}

template <class T>
quaternion<T>& quaternion<T>::slerpExtraSpins(T t, const quaternion& p, const quaternion& q,
                                              int spins) {
  const T angle = mathBase<T>::aCos(p.dot(q));
  if (std::abs(angle) > T(0)) {
    const T phase = mathBase<T>::PI() * T(spins) * t;
    const T inv = T(1) / std::sin(angle);
    const T c0 = std::sin((T(1) - t) * angle - phase) * inv;
    const T c1 = std::sin(t * angle + phase) * inv;
    return *this = p * c0 + q * c1;
  }
  return *this = p;
}

template <class T>
quaternion<T>& quaternion<T>::intermediate(const quaternion& q0, const quaternion& q1,
                                           const quaternion& q2) {
  const quaternion inv = q1.conjugate();
  const quaternion sum = (inv * q2).log() + (inv * q0).log();
  return *this = q1 * (sum * T(-0.25)).exp();
}

template <class T>
quaternion<T>& quaternion<T>::squad(T t, const quaternion& q0, const quaternion& a0,
                                    const quaternion& a1, const quaternion& q1) {
  quaternion outer, inner;
  outer.slerp(t, q0, q1);
  inner.slerp(t, a0, a1);
  return slerp(T(2) * t * (T(1) - t), outer, inner);
}

template <class T>
quaternion<T>& quaternion<T>::align(const point3<T>& v1, const point3<T>& v2) {
  // The half-way vector: a turn by twice the angle between v1 and it carries v1 to v2.
  const point3<T> half = (v1 + v2).normalize();
  w = v1 * half;
  if (w != T(0)) {
    const point3<T> c = point3<T>::cross(v1, half);
    x = c.x, y = c.y, z = c.z;
    return *this;
  }
  // Opposite vectors: a half-turn about a perpendicular, dropping the smaller of x and y.
  if (std::abs(v1.x) >= std::abs(v1.y)) {
    const T inv = T(1.0 / std::sqrt(double(v1.x) * v1.x + double(v1.z) * v1.z));
    x = -v1.z * inv, y = T(0), z = v1.x * inv;
  } else {
    const T inv = T(1.0 / std::sqrt(double(v1.y) * v1.y + double(v1.z) * v1.z));
    x = T(0), y = v1.z * inv, z = -v1.y * inv;
  }
  return *this;
}

template <class T>
void quaternion<T>::decomposeSwingTimesTwist(const point3<T>& axis, quaternion& swing,
                                             quaternion& twist) const {
  swing.align(axis, rotate(axis));
  twist = swing.conjugate() * *this;
}

template <class T>
void quaternion<T>::decomposeTwistTimesSwing(const point3<T>& axis, quaternion& twist,
                                             quaternion& swing) const {
  swing.align(axis, rotate(axis));
  twist = *this * swing.conjugate();
}

}  // namespace MATH
}  // namespace JEV
