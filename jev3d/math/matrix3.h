#pragma once

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "jev3d/math/byteOrdered.h"
#include "jev3d/math/elementwise.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

template <class T>
class matrix4;

// A 3×3 matrix stored row by row: element (row, column) is m[column + row * 3].
// Points multiply from the left as row vectors (point3 * matrix3); the rotation builders
// of this class give the column-vector form, the transpose of matrix4's. Full for float
// and double; int has the constructors, setIdentity and indexOf.
template <class T>
class matrix3 : public byteOrdered<matrix3<T>>, public elementwise<matrix3<T>, T, 9> {
 public:
  // false builds the identity, true the zero matrix.
  explicit matrix3(bool zero = false) { zero ? setZero() : setIdentity(); }
  matrix3(T m00, T m01, T m02, T m10, T m11, T m12, T m20, T m21, T m22)
      : m{m00, m01, m02, m10, m11, m12, m20, m21, m22} {}
  explicit matrix3(const T* elements) { std::memcpy(m, elements, sizeof m); }
  // The outer product a·bᵀ.
  matrix3(const point3<T>& a, const point3<T>& b) { setExternalProduct(a, b); }
  // Three points as rows, or as columns when asColumns is true.
  matrix3(const point3<T>& a, const point3<T>& b, const point3<T>& c, bool asColumns = false) {
    setFromPoints(a, b, c, asColumns);
  }
  matrix3(const point3<T>* abc, bool asColumns) {
    setFromPoints(abc[0], abc[1], abc[2], asColumns);
  }
  // A rotation of angle radians about axis (column form, axis used as given).
  matrix3(T angle, const point3<T>& axis) { setRotateRad(angle, axis); }
  // The diagonal matrix diag(d0, d1, d2).
  matrix3(T d0, T d1, T d2) : m{d0, T(0), T(0), T(0), d1, T(0), T(0), T(0), d2} {}

  static const matrix3& ZERO() {
    static const matrix3 zero(true);
    return zero;
  }
  static const matrix3& IDENTITY() {
    static const matrix3 identity(false);
    return identity;
  }

  static constexpr int indexOf(int row, int column) { return column + row * 3; }
  static constexpr int getRowsNumber() { return 3; }
  T& operator()(int row, int column) { return m[indexOf(row, column)]; }
  const T& operator()(int row, int column) const { return m[indexOf(row, column)]; }
  T& operator[](int i) { return m[i]; }
  const T& operator[](int i) const { return m[i]; }
  T* data() { return m; }
  const T* data() const { return m; }

  matrix3& setIdentity() {
    setZero();
    m[0] = m[4] = m[8] = T(1);
    return *this;
  }
  matrix3& setZero() {
    for (T& v : m) v = T(0);
    return *this;
  }
  void setFromPoints(const point3<T>& a, const point3<T>& b, const point3<T>& c, bool asColumns) {
    if (asColumns) {
      setColumn(0, a), setColumn(1, b), setColumn(2, c);
    } else {
      setRow(0, a), setRow(1, b), setRow(2, c);
    }
  }

  void setRow(int r, const point3<T>& p) { m[3 * r] = p.x, m[3 * r + 1] = p.y, m[3 * r + 2] = p.z; }
  point3<T> getRow(int r) const { return point3<T>(m[3 * r], m[3 * r + 1], m[3 * r + 2]); }
  void setColumn(int c, const point3<T>& p) { m[c] = p.x, m[c + 3] = p.y, m[c + 6] = p.z; }
  point3<T> getColumn(int c) const { return point3<T>(m[c], m[c + 3], m[c + 6]); }
  // Writes the transpose of the storage order, for column-major consumers.
  void getColumnMajor(T* out) const {
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) out[r + c * 3] = m[c + r * 3];
  }

  // The ordinary product this·b; with row-vector points, p·(A·B) applies A first.
  matrix3 operator*(const matrix3& b) const {
    matrix3 r(true);
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j)
        r.m[j + 3 * i] = m[3 * i] * b.m[j] + m[3 * i + 1] * b.m[j + 3] + m[3 * i + 2] * b.m[j + 6];
    return r;
  }
  matrix3& operator*=(const matrix3& b) { return *this = *this * b; }

  // Rotation by angle radians about axis, column-vector form: (0,1) is xy(1-c) - zs.
  // The axis is used as given, not normalised.
  matrix3& setRotateRad(T angle, const point3<T>& axis);
  matrix3& setRotateRad(T angle, T x, T y, T z) { return setRotateRad(angle, point3<T>(x, y, z)); }
  matrix3& setRotateDeg(T angle, const point3<T>& axis) {
    return setRotateRad(angle * mathBase<T>::DEG_TO_RAD(), axis);
  }
  // Two-dimensional homogeneous scale and translation (row-vector form: the translation
  // sits in row 2).
  matrix3& setScale(T x, T y) {
    setIdentity();
    m[0] = x, m[4] = y;
    return *this;
  }
  matrix3& setTranslate(T x, T y) {
    setIdentity();
    m[6] = x, m[7] = y;
    return *this;
  }
  // The outer product a·bᵀ.
  matrix3& setExternalProduct(const point3<T>& a, const point3<T>& b) {
    setRow(0, b * a.x), setRow(1, b * a.y), setRow(2, b * a.z);
    return *this;
  }

  T getTrace() const { return m[0] + m[4] + m[8]; }
  T determinant() const {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
           m[2] * (m[3] * m[7] - m[4] * m[6]);
  }
  // The classical adjoint (transposed cofactors): adjoint·M = det·I.
  matrix3 adjoint() const {
    return matrix3(m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
                   m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
                   m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]);
  }
  // Adjoint over determinant; a determinant of exactly 0 gives the zero matrix.
  matrix3 inverse() const {
    const T det = determinant();
    if (std::abs(det) == T(0)) return ZERO();
    return adjoint() * (T(1) / det);
  }
  matrix3 getTranspose() const {
    return matrix3(m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]);
  }
  matrix3& setTranspose() { return *this = getTranspose(); }
  // thisᵀ·b and this·bᵀ.
  matrix3 transposeTimes(const matrix3& b) const { return getTranspose() * b; }
  matrix3 timesTranspose(const matrix3& b) const { return *this * b.getTranspose(); }
  // this·diag(d): scales the columns.
  matrix3 timesDiagonal(const point3<T>& d) const {
    return matrix3(m[0] * d.x, m[1] * d.y, m[2] * d.z, m[3] * d.x, m[4] * d.y, m[5] * d.z,
                   m[6] * d.x, m[7] * d.y, m[8] * d.z);
  }
  // diag(d)·this: scales the rows.
  matrix3 diagonalTimes(const point3<T>& d) const {
    return matrix3(m[0] * d.x, m[1] * d.x, m[2] * d.x, m[3] * d.y, m[4] * d.y, m[5] * d.y,
                   m[6] * d.z, m[7] * d.z, m[8] * d.z);
  }
  // uᵀ·this·v.
  T qForm(const point3<T>& u, const point3<T>& v) const { return u * (*this * v); }

  // Gram-Schmidt on the columns, in the order 0, 1, 2.
  matrix3& orthonormalize();

  // Builders of the product of three column-form axis rotations in the order of the name,
  // the angles given in that order: fromEulerAnglesXYZ(a, b, c) is Rx(a)·Ry(b)·Rz(c).
  matrix3& fromEulerAnglesXYZ(T xAngle, T yAngle, T zAngle);
  matrix3& fromEulerAnglesXZY(T xAngle, T zAngle, T yAngle);
  matrix3& fromEulerAnglesYXZ(T yAngle, T xAngle, T zAngle);
  matrix3& fromEulerAnglesYZX(T yAngle, T zAngle, T xAngle);
  matrix3& fromEulerAnglesZXY(T zAngle, T xAngle, T yAngle);
  matrix3& fromEulerAnglesZYX(T zAngle, T yAngle, T xAngle);
  // The inverse readings: true for a unique solution; at gimbal lock false, with the
  // last angle 0 and the first angle carrying the whole remaining rotation.
  bool toEulerAnglesXYZ(T& xAngle, T& yAngle, T& zAngle) const;
  bool toEulerAnglesXZY(T& xAngle, T& zAngle, T& yAngle) const;
  bool toEulerAnglesYXZ(T& yAngle, T& xAngle, T& zAngle) const;
  bool toEulerAnglesYZX(T& yAngle, T& zAngle, T& xAngle) const;
  bool toEulerAnglesZXY(T& zAngle, T& xAngle, T& yAngle) const;
  bool toEulerAnglesZYX(T& zAngle, T& yAngle, T& xAngle) const;

  // Axis and angle (0..π) of this rotation (column form); the identity gives (1, 0, 0).
  void toAxisAngle(point3<T>& axis, T& angle) const;
  // The rotation of t times the angle of r0ᵀ·r1, about its axis. This is the step from r0
  // towards r1; it equals the interpolated rotation itself when r0 is the identity.
  static matrix3 slerp(T t, const matrix3& r0, const matrix3& r1);

  // Symmetric matrices only: this = rot·diag·rotᵀ with rot a rotation and the
  // eigenvalues on diag's diagonal in increasing order.
  void eigenDecomposition(matrix3& rot, matrix3& diag) const;
  // this = l·d·rt with l and rt orthogonal and d diagonal, non-negative. A run that does
  // not converge in 32 rounds leaves d zero, without failure.
  void singularValueDecomposition(matrix3& l, matrix3& d, matrix3& rt) const;
  // this = l·d·rt.
  void singularValueComposition(const matrix3& l, const matrix3& d, const matrix3& rt) {
    *this = l * d * rt;
  }
  // this = q·d·u with q orthogonal (Gram-Schmidt on the columns), d diagonal and u upper
  // unit-triangular. A zero diagonal entry leaves the matching row of u at identity.
  void qDUDecomposition(matrix3& q, matrix3& d, matrix3& u) const;

  // The cross-covariance Σ b_i·a_iᵀ - n·meanB·meanAᵀ over a's points (n = a's count),
  // with the means of both lists; an empty list gives MAX_T in its mean.
  matrix3& setCrossCovariance(const std::vector<point3<T>>& a, const std::vector<point3<T>>& b,
                              point3<T>& meanA, point3<T>& meanB);

  // A matrix4 with this in its upper-left block and identity elsewhere.
  matrix4<T> toMatrix4() const;

  // this·v with v a column.
  point3<T> operator*(const point3<T>& v) const {
    return point3<T>(m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
                     m[6] * v.x + m[7] * v.y + m[8] * v.z);
  }

 private:
  T m[9];
};

// The row-vector product (x y z)·M.
template <class T>
inline point3<T> operator*(const point3<T>& p, const matrix3<T>& a) {
  return point3<T>(p.x * a[0] + p.y * a[3] + p.z * a[6], p.x * a[1] + p.y * a[4] + p.z * a[7],
                   p.x * a[2] + p.y * a[5] + p.z * a[8]);
}

using matrix3i = matrix3<int>;
using matrix3f = matrix3<float>;
using matrix3d = matrix3<double>;

extern template class matrix3<float>;
extern template class matrix3<double>;

}  // namespace MATH
}  // namespace JEV
