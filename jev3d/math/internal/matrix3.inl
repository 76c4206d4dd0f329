#pragma once

#include <algorithm>
#include <cmath>
#include <utility>

#include "jev3d/math/mathBase.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"

namespace JEV {
namespace MATH {

template <class T>
matrix3<T>& matrix3<T>::setRotateRad(T angle, const point3<T>& axis) {
  const T c = std::cos(angle), s = std::sin(angle), t = T(1) - c;
  const T x = axis.x, y = axis.y, z = axis.z;
  m[0] = t * x * x + c, m[1] = t * x * y - z * s, m[2] = t * x * z + y * s;
  m[3] = t * x * y + z * s, m[4] = t * y * y + c, m[5] = t * y * z - x * s;
  m[6] = t * x * z - y * s, m[7] = t * y * z + x * s, m[8] = t * z * z + c;
  return *this;
}

template <class T>
matrix3<T>& matrix3<T>::orthonormalize() {
  point3<T> c[3] = {getColumn(0), getColumn(1), getColumn(2)};
  point3<T>::orthonormalize(c);
  setFromPoints(c[0], c[1], c[2], true);
  return *this;
}

namespace internal {

template <class T>
matrix3<T> rotationX(T a) {
  const T c = std::cos(a), s = std::sin(a);
  return matrix3<T>(1, 0, 0, 0, c, -s, 0, s, c);
}
template <class T>
matrix3<T> rotationY(T a) {
  const T c = std::cos(a), s = std::sin(a);
  return matrix3<T>(c, 0, s, 0, 1, 0, -s, 0, c);
}
template <class T>
matrix3<T> rotationZ(T a) {
  const T c = std::cos(a), s = std::sin(a);
  return matrix3<T>(c, -s, 0, s, c, 0, 0, 0, 1);
}

// The shared branch of the Euler readings: the middle angle is sign·asin(pivot); at a
// pivot of ±1 the last angle is 0 and the first takes the locked value of that side.
template <class T>
bool readEuler(T pivot, T sign, T uniqueFirst, T uniqueLast, T lockedHigh, T lockedLow, T& first,
               T& middle, T& last) {
  if (pivot < T(1) && pivot > T(-1)) {
    first = uniqueFirst, middle = sign * mathBase<T>::aSin(pivot), last = uniqueLast;
    return true;
  }
  const bool high = pivot >= T(1);
  first = high ? lockedHigh : lockedLow;
  middle = (high ? sign : -sign) * mathBase<T>::HALF_PI();
  last = T(0);
  return false;
}

}  // namespace internal

template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesXYZ(T xAngle, T yAngle, T zAngle) {
  using namespace internal;
  return *this = rotationX(xAngle) * rotationY(yAngle) * rotationZ(zAngle);
}
template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesXZY(T xAngle, T zAngle, T yAngle) {
  using namespace internal;
  return *this = rotationX(xAngle) * rotationZ(zAngle) * rotationY(yAngle);
}
template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesYXZ(T yAngle, T xAngle, T zAngle) {
  using namespace internal;
  return *this = rotationY(yAngle) * rotationX(xAngle) * rotationZ(zAngle);
}
template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesYZX(T yAngle, T zAngle, T xAngle) {
  using namespace internal;
  return *this = rotationY(yAngle) * rotationZ(zAngle) * rotationX(xAngle);
}
template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesZXY(T zAngle, T xAngle, T yAngle) {
  using namespace internal;
  return *this = rotationZ(zAngle) * rotationX(xAngle) * rotationY(yAngle);
}
template <class T>
matrix3<T>& matrix3<T>::fromEulerAnglesZYX(T zAngle, T yAngle, T xAngle) {
  using namespace internal;
  return *this = rotationZ(zAngle) * rotationY(yAngle) * rotationX(xAngle);
}

template <class T>
bool matrix3<T>::toEulerAnglesXYZ(T& xAngle, T& yAngle, T& zAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(0, 2), T(1), std::atan2(-r(1, 2), r(2, 2)),
                             std::atan2(-r(0, 1), r(0, 0)), std::atan2(r(1, 0), r(1, 1)),
                             -std::atan2(r(1, 0), r(1, 1)), xAngle, yAngle, zAngle);
}
template <class T>
bool matrix3<T>::toEulerAnglesXZY(T& xAngle, T& zAngle, T& yAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(0, 1), T(-1), std::atan2(r(2, 1), r(1, 1)),
                             std::atan2(r(0, 2), r(0, 0)), std::atan2(-r(2, 0), r(2, 2)),
                             std::atan2(r(2, 0), r(2, 2)), xAngle, zAngle, yAngle);
}
template <class T>
bool matrix3<T>::toEulerAnglesYXZ(T& yAngle, T& xAngle, T& zAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(1, 2), T(-1), std::atan2(r(0, 2), r(2, 2)),
                             std::atan2(r(1, 0), r(1, 1)), std::atan2(-r(0, 1), r(0, 0)),
                             std::atan2(r(0, 1), r(0, 0)), yAngle, xAngle, zAngle);
}
template <class T>
bool matrix3<T>::toEulerAnglesYZX(T& yAngle, T& zAngle, T& xAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(1, 0), T(1), std::atan2(-r(2, 0), r(0, 0)),
                             std::atan2(-r(1, 2), r(1, 1)), std::atan2(r(2, 1), r(2, 2)),
                             -std::atan2(r(2, 1), r(2, 2)), yAngle, zAngle, xAngle);
}
template <class T>
bool matrix3<T>::toEulerAnglesZXY(T& zAngle, T& xAngle, T& yAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(2, 1), T(1), std::atan2(-r(0, 1), r(1, 1)),
                             std::atan2(-r(2, 0), r(2, 2)), std::atan2(r(0, 2), r(0, 0)),
                             -std::atan2(r(0, 2), r(0, 0)), zAngle, xAngle, yAngle);
}
template <class T>
bool matrix3<T>::toEulerAnglesZYX(T& zAngle, T& yAngle, T& xAngle) const {
  const matrix3& r = *this;
  return internal::readEuler(r(2, 0), T(-1), std::atan2(r(1, 0), r(0, 0)),
                             std::atan2(r(2, 1), r(2, 2)), std::atan2(-r(0, 1), -r(0, 2)),
                             -std::atan2(r(0, 1), r(0, 2)), zAngle, yAngle, xAngle);
}

template <class T>
void matrix3<T>::toAxisAngle(point3<T>& axis, T& angle) const {
  const T t = (getTrace() - T(1)) * T(0.5);
  angle = mathBase<T>::aCos(t);
  if (angle <= T(0)) {
    axis = point3<T>::UNIT_X();
  } else if (angle < mathBase<T>::PI()) {
    axis = point3<T>(m[7] - m[5], m[2] - m[6], m[3] - m[1]).normalize();
  } else {
    // A half-turn is symmetric: the axis comes from the diagonal, the largest first.
    int i = 0;
    if (m[4] > m[0]) i = 1;
    if (m[8] > m[indexOf(i, i)]) i = 2;
    const int j = (i + 1) % 3, k = (i + 2) % 3;
    const T h =
        T(0.5 * std::sqrt(double(m[indexOf(i, i)] - m[indexOf(j, j)] - m[indexOf(k, k)] + T(1))));
    const T half = T(0.5) / h;
    axis[i] = h;
    axis[j] = m[indexOf(i, j)] * half;
    axis[k] = m[indexOf(i, k)] * half;
  }
}

template <class T>
matrix3<T> matrix3<T>::slerp(T t, const matrix3& r0, const matrix3& r1) {
  point3<T> axis;
  T angle;
  r0.transposeTimes(r1).toAxisAngle(axis, angle);
  matrix3 r;
  return r.setRotateRad(t * angle, axis);
}

namespace internal {

// Symmetric tridiagonal form of a 3×3 symmetric matrix by one reflection: a = q·t·qᵀ.
// Returns whether the reflection was applied (q is then improper).
template <class T>
bool tridiagonalize(const matrix3<T>& a, matrix3<T>& q, T diag[3], T sub[3]) {
  q.setIdentity();
  sub[2] = T(0);
  if (std::abs(a(0, 2)) < mathBase<T>::ZERO_TOLERANCE()) {
    diag[0] = a(0, 0), diag[1] = a(1, 1), diag[2] = a(2, 2);
    sub[0] = a(0, 1), sub[1] = a(1, 2);
    return false;
  }
  const T len = T(std::sqrt(double(a(0, 1)) * a(0, 1) + double(a(0, 2)) * a(0, 2)));
  const T u0 = a(0, 1) / len, u1 = a(0, 2) / len;
  q(1, 1) = u0, q(1, 2) = u1, q(2, 1) = u1, q(2, 2) = -u0;
  const matrix3<T> t = q * a * q;  // q is its own transpose and inverse
  diag[0] = t(0, 0), diag[1] = t(1, 1), diag[2] = t(2, 2);
  sub[0] = t(0, 1), sub[1] = t(1, 2);
  return true;
}

// Implicit QL with Wilkinson shifts on the tridiagonal (diag, sub); the rotations
// accumulate into the columns of q.
template <class T>
void qlAlgorithm(matrix3<T>& q, T diag[3], T sub[3]) {
  for (int l = 0; l < 3; ++l) {
    for (int iteration = 0; iteration < 32; ++iteration) {
      int n = l;
      for (; n < 2; ++n) {
        const T sum = std::abs(diag[n]) + std::abs(diag[n + 1]);
        if (std::abs(sub[n]) + sum == sum) break;
      }
      if (n == l) break;
      T g = (diag[l + 1] - diag[l]) / (T(2) * sub[l]);
      T r = std::hypot(g, T(1));
      g = diag[n] - diag[l] + sub[l] / (g + (g < T(0) ? -r : r));
      T sn = 1, cs = 1, p = 0;
      int i = n - 1;
      for (; i >= l; --i) {
        const T f = sn * sub[i], b = cs * sub[i];
        r = std::hypot(f, g);
        sub[i + 1] = r;
        if (r == T(0)) {
          diag[i + 1] -= p;
          sub[n] = T(0);
          break;
        }
        sn = f / r, cs = g / r;
        g = diag[i + 1] - p;
        r = (diag[i] - g) * sn + T(2) * cs * b;
        p = sn * r;
        diag[i + 1] = g + p;
        g = cs * r - b;
        for (int k = 0; k < 3; ++k) {
          const T h = q(k, i + 1);
          q(k, i + 1) = sn * q(k, i) + cs * h;
          q(k, i) = cs * q(k, i) - sn * h;
        }
      }
      if (r == T(0) && i >= l) continue;
      diag[l] -= p;
      sub[l] = g;
      sub[n] = T(0);
    }
  }
}

}  // namespace internal

template <class T>
void matrix3<T>::eigenDecomposition(matrix3& rot, matrix3& diag) const {
  T d[3], e[3];
  bool reflection = internal::tridiagonalize(*this, rot, d, e);
  internal::qlAlgorithm(rot, d, e);
  // Increasing order by three exchanges; each column swap flips the handedness.
  const auto exchange = [&](int i, int j) {
    if (d[j] < d[i]) {
      std::swap(d[i], d[j]);
      for (int k = 0; k < 3; ++k) std::swap(rot(k, i), rot(k, j));
      reflection = !reflection;
    }
  };
  exchange(0, 1);
  exchange(1, 2);
  exchange(0, 1);
  if (reflection) {
    for (int k = 0; k < 3; ++k) rot(k, 2) = -rot(k, 2);
  }
  diag = matrix3(d[0], d[1], d[2]);
}

namespace internal {

// The singular value iteration keeps this = l·b·rt while b moves to diagonal form.
template <class T>
class svd3 {
 public:
  explicit svd3(const matrix3<T>& a) : b(a) {}
  matrix3<T> l, b, rt;

  // Householder reflections from left and right until only the diagonal and the
  // superdiagonal remain.
  void bidiagonalize() {
    reflectRows(0, point3<T>(b(0, 0), b(1, 0), b(2, 0)));
    b(1, 0) = b(2, 0) = T(0);
    reflectColumns(1, point3<T>(T(0), b(0, 1), b(0, 2)));
    b(0, 2) = T(0);
    reflectRows(1, point3<T>(T(0), b(1, 1), b(2, 1)));
    b(2, 1) = T(0);
  }

  // Rotation of rows i and k that zeroes b(k, column) against b(i, column).
  void rotateRows(int i, int k, T y, T z) {
    T c, s;
    givens(y, z, c, s);
    for (int j = 0; j < 3; ++j) {
      const T bi = b(i, j), bk = b(k, j);
      b(i, j) = c * bi + s * bk, b(k, j) = c * bk - s * bi;
      const T li = l(j, i), lk = l(j, k);
      l(j, i) = c * li + s * lk, l(j, k) = c * lk - s * li;
    }
  }
  // Rotation of columns i and k whose first column is along (y, z).
  void rotateColumns(int i, int k, T y, T z) {
    T c, s;
    givens(y, z, c, s);
    for (int j = 0; j < 3; ++j) {
      const T bi = b(j, i), bk = b(j, k);
      b(j, i) = c * bi + s * bk, b(j, k) = c * bk - s * bi;
      const T ri = rt(i, j), rk = rt(k, j);
      rt(i, j) = c * ri + s * rk, rt(k, j) = c * rk - s * ri;
    }
  }

  // One implicit-shift step with the shift from the trailing 2×2 block of bᵀ·b.
  void golubKahanStep() {
    const T t11 = b(1, 1) * b(1, 1) + b(0, 1) * b(0, 1);
    const T t12 = b(1, 1) * b(1, 2);
    const T t22 = b(2, 2) * b(2, 2) + b(1, 2) * b(1, 2);
    const T delta = (t11 - t22) * T(0.5);
    const T root = std::hypot(delta, t12);
    const T denominator = delta + (delta < T(0) ? -root : root);
    const T mu = denominator != T(0) ? t22 - t12 * t12 / denominator : t22;
    rotateColumns(0, 1, b(0, 0) * b(0, 0) - mu, b(0, 0) * b(0, 1));
    rotateRows(0, 1, b(0, 0), b(1, 0));
    b(1, 0) = T(0);
    rotateColumns(1, 2, b(0, 1), b(0, 2));
    b(0, 2) = T(0);
    rotateRows(1, 2, b(1, 1), b(2, 1));
    b(2, 1) = T(0);
  }

  // Diagonalises the upper-triangular 2×2 block at (i, i) directly: the left rotation
  // is the eigenbasis of block·blockᵀ, after which one right rotation closes it.
  void diagonalizeBlock(int i) {
    const int k = i + 1;
    const T a = b(i, i), sup = b(i, k), d = b(k, k);
    const double angle =
        0.5 * std::atan2(2.0 * double(sup) * d, double(a) * a + double(sup) * sup - double(d) * d);
    rotateRows(i, k, T(std::cos(angle)), T(std::sin(angle)));
    rotateColumns(i, k, b(i, i), b(i, k));
    b(i, k) = b(k, i) = T(0);
  }

  // A zero on the diagonal stalls the shifted step: rotate its superdiagonal away.
  bool clearZeroDiagonal() {
    T scale = T(0);
    for (int i = 0; i < 9; ++i) scale = std::max(scale, std::abs(b[i]));
    const T tiny = scale * mathBase<T>::EPSILON();
    if (std::abs(b(0, 0)) <= tiny && b(0, 1) != T(0)) {
      // Row 0 is pushed into rows 1 and 2 by rotations against their diagonals.
      b(0, 0) = T(0);
      rotateRows(1, 0, b(1, 1), b(0, 1));
      b(0, 1) = T(0);
      rotateRows(2, 0, b(2, 2), b(0, 2));
      b(0, 2) = T(0);
      return true;
    }
    if (std::abs(b(1, 1)) <= tiny && b(1, 2) != T(0)) {
      b(1, 1) = T(0);
      rotateRows(2, 1, b(2, 2), b(1, 2));
      b(1, 2) = T(0);
      return true;
    }
    if (std::abs(b(2, 2)) <= tiny && b(1, 2) != T(0)) {
      // Column 2 is pushed into columns 1 and 0.
      b(2, 2) = T(0);
      rotateColumns(1, 2, b(1, 1), b(1, 2));
      b(1, 2) = T(0);
      rotateColumns(0, 2, b(0, 0), b(0, 2));
      b(0, 2) = T(0);
      return true;
    }
    return false;
  }

 private:
  static void givens(T y, T z, T& c, T& s) {
    const T h = std::hypot(y, z);
    if (h == T(0)) {
      c = T(1), s = T(0);
    } else {
      c = y / h, s = z / h;
    }
  }
  // Householder reflection over rows first..2 that maps v onto its first component.
  void reflectRows(int first, const point3<T>& v) {
    matrix3<T> h;
    if (householder(first, v, h)) b = h * b, l = l * h;
  }
  void reflectColumns(int first, const point3<T>& v) {
    matrix3<T> h;
    if (householder(first, v, h)) b = b * h, rt = h * rt;
  }
  static bool householder(int first, point3<T> v, matrix3<T>& h) {
    const T norm = v.norm();
    if (norm == T(0)) return false;
    v[first] += v[first] < T(0) ? -norm : norm;
    const T uu = v.squaredNorm();
    h = matrix3<T>::IDENTITY() - matrix3<T>(v, v) * (T(2) / uu);
    return true;
  }
};

}  // namespace internal

template <class T>
void matrix3<T>::singularValueDecomposition(matrix3& l, matrix3& d, matrix3& rt) const {
  internal::svd3<T> s(*this);
  s.bidiagonalize();
  d.setZero();
  matrix3& b = s.b;
  for (int round = 0; round < 32; ++round) {
    const bool upperDone = std::abs(b(0, 1)) <= T(0.0001) * (std::abs(b(0, 0)) + std::abs(b(1, 1)));
    const bool lowerDone = std::abs(b(1, 2)) <= T(0.0001) * (std::abs(b(1, 1)) + std::abs(b(2, 2)));
    if (upperDone && lowerDone) {
      d = matrix3(b(0, 0), b(1, 1), b(2, 2));
      break;
    }
    if (s.clearZeroDiagonal()) continue;
    if (upperDone) {
      b(0, 1) = T(0);
      s.diagonalizeBlock(1);
    } else if (lowerDone) {
      b(1, 2) = T(0);
      s.diagonalizeBlock(0);
    } else {
      s.golubKahanStep();
    }
  }
  for (int i = 0; i < 3; ++i) {
    if (d(i, i) < T(0)) {
      d(i, i) = -d(i, i);
      s.rt.setRow(i, -s.rt.getRow(i));
    }
  }
  l = s.l;
  rt = s.rt;
}

template <class T>
void matrix3<T>::qDUDecomposition(matrix3& q, matrix3& d, matrix3& u) const {
  q = *this;
  q.orthonormalize();
  const matrix3 r = q.transposeTimes(*this);
  d = matrix3(r(0, 0), r(1, 1), r(2, 2));
  u.setIdentity();
  if (r(0, 0) != T(0)) u(0, 1) = r(0, 1) / r(0, 0), u(0, 2) = r(0, 2) / r(0, 0);
  if (r(1, 1) != T(0)) u(1, 2) = r(1, 2) / r(1, 1);
}

template <class T>
matrix3<T>& matrix3<T>::setCrossCovariance(const std::vector<point3<T>>& a,
                                           const std::vector<point3<T>>& b, point3<T>& meanA,
                                           point3<T>& meanB) {
  setZero();
  meanA = meanB = point3<T>::ZERO();
  for (const point3<T>& p : a) meanA += p;
  for (const point3<T>& p : b) meanB += p;
  // Pairs run over a; a shorter b only contributes the pairs it has.
  const size_t pairs = std::min(a.size(), b.size());
  for (size_t i = 0; i < pairs; ++i) *this += matrix3(b[i], a[i]);
  meanA /= T(a.size());
  meanB /= T(b.size());
  if (a.empty()) return *this;
  return *this -= matrix3(meanB, meanA) * T(a.size());
}

template <class T>
matrix4<T> matrix3<T>::toMatrix4() const {
  matrix4<T> r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r(i, j) = (*this)(i, j);
  return r;
}

}  // namespace MATH
}  // namespace JEV
