#pragma once

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "jev3d/math/byteOrdered.h"
#include "jev3d/math/elementwise.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlNode;
}  // namespace XML
}  // namespace IO

namespace MATH {

// A 4×4 matrix stored row by row: element (row, column) is m[column + row * 4]. Points
// are row vectors, p' = (x y z 1)·M, so the translation sits in elements 12 to 14 and
// p·(A·B) applies A first. The projection family is left-handed with depth in 0..1.
// Full for float and double; int has the constructors, setZero, getNorm, the Jacobi
// pair, getRowsNumber and operator[].
template <class T>
class matrix4 : public byteOrdered<matrix4<T>>, public elementwise<matrix4<T>, T, 16> {
 public:
  // false builds the identity, true the zero matrix.
  explicit matrix4(bool zero = false) { zero ? setZero() : setIdentity(); }
  matrix4(T m00, T m01, T m02, T m03, T m10, T m11, T m12, T m13, T m20, T m21, T m22, T m23, T m30,
          T m31, T m32, T m33)
      : m{m00, m01, m02, m03, m10, m11, m12, m13, m20, m21, m22, m23, m30, m31, m32, m33} {}
  explicit matrix4(const T* elements) { std::memcpy(m, elements, sizeof m); }

  static const matrix4& ZERO() {
    static const matrix4 zero(true);
    return zero;
  }
  static const matrix4& IDENTITY() {
    static const matrix4 identity(false);
    return identity;
  }

  static constexpr int indexOf(int row, int column) { return column + row * 4; }
  static constexpr int getRowsNumber() { return 4; }
  T& operator()(int row, int column) { return m[indexOf(row, column)]; }
  const T& operator()(int row, int column) const { return m[indexOf(row, column)]; }
  T& operator[](int i) { return m[i]; }
  const T& operator[](int i) const { return m[i]; }
  T* data() { return m; }
  const T* data() const { return m; }

  matrix4& setIdentity() {
    setZero();
    m[0] = m[5] = m[10] = m[15] = T(1);
    return *this;
  }
  matrix4& setZero() {
    for (T& v : m) v = T(0);
    return *this;
  }

  void setRow(int r, const point4<T>& p) {
    m[4 * r] = p.x, m[4 * r + 1] = p.y, m[4 * r + 2] = p.z, m[4 * r + 3] = p.w;
  }
  point4<T> getRow(int r) const { return point4<T>(m + 4 * r); }
  void setColumn(int c, const point4<T>& p) {
    m[c] = p.x, m[c + 4] = p.y, m[c + 8] = p.z, m[c + 12] = p.w;
  }
  point4<T> getColumn(int c) const { return point4<T>(m[c], m[c + 4], m[c + 8], m[c + 12]); }
  // Writes the transpose of the storage order: the hand-over to a column-major consumer.
  void getColumnMajor(T* out) const {
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) out[r + c * 4] = m[c + r * 4];
  }
  // The upper-left 3×3 block.
  matrix3<T> getMatrix3() const {
    return matrix3<T>(m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]);
  }
  // Elements 12, 13, 14 and 0, 5, 10.
  point3<T> getTranslateVector() const { return point3<T>(m[12], m[13], m[14]); }
  point3<T> getScaleVector() const { return point3<T>(m[0], m[5], m[10]); }

  // The ordinary product this·b; with row-vector points, p·(A·B) applies A first.
  matrix4 operator*(const matrix4& b) const {
    matrix4 r(true);
    for (int i = 0; i < 4; ++i) {
      const T* a = m + 4 * i;
      for (int j = 0; j < 4; ++j)
        r.m[j + 4 * i] = a[0] * b.m[j] + a[1] * b.m[j + 4] + a[2] * b.m[j + 8] + a[3] * b.m[j + 12];
    }
    return r;
  }
  matrix4& operator*=(const matrix4& b) { return *this = *this * b; }

  // The column-vector sense M·(x y z 1)ᵀ, divided by the resulting w unless it is exactly
  // 0. Translations of setTranslate do not apply in this sense.
  point3<T> operator*(const point3<T>& p) const {
    const T x = m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3];
    const T y = m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7];
    const T z = m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11];
    const T w = m[12] * p.x + m[13] * p.y + m[14] * p.z + m[15];
    if (w == T(0) || w == T(1)) return point3<T>(x, y, z);
    return point3<T>(x / w, y / w, z / w);
  }
  // M·v.
  point4<T> operator*(const point4<T>& v) const {
    return point4<T>(getRow(0) * v, getRow(1) * v, getRow(2) * v, getRow(3) * v);
  }

  // Frobenius norm, taken in double.
  T getNorm() const {
    double sum = 0.0;
    for (T v : m) sum += double(v) * v;
    return T(std::sqrt(sum));
  }
  // uᵀ·this·v.
  T qForm(const point4<T>& u, const point4<T>& v) const { return u * (*this * v); }
  T getTrace() const { return m[0] + m[5] + m[10] + m[15]; }
  T determinant() const;
  // The classical adjoint: adjoint·M = det·I.
  matrix4 adjoint() const;
  // Cofactor inverse; a determinant of exactly 0 gives ZERO.
  matrix4 getInverse() const;
  // Inverts in place; a singular matrix becomes ZERO.
  matrix4& setInverse() { return *this = getInverse(); }
  matrix4 getTranspose() const {
    matrix4 r(true);
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 4; ++j) r.m[j + 4 * i] = m[i + 4 * j];
    return r;
  }
  matrix4& setTranspose() { return *this = getTranspose(); }
  // thisᵀ·b and this·bᵀ.
  matrix4 transposeTimes(const matrix4& b) const { return getTranspose() * b; }
  matrix4 timesTranspose(const matrix4& b) const { return *this * b.getTranspose(); }

  // Identity based builders.
  matrix4& setScale(T x, T y, T z) {
    setIdentity();
    m[0] = x, m[5] = y, m[10] = z;
    return *this;
  }
  matrix4& setTranslate(T x, T y, T z) {
    setIdentity();
    m[12] = x, m[13] = y, m[14] = z;
    return *this;
  }
  // Rotation by angle radians about a normalised copy of axis, row-vector form: element
  // (0,1) is xy(1-c) + zs, the transpose of matrix3::setRotateRad.
  matrix4& setRotateRad(T angle, const point3<T>& axis);
  matrix4& setRotateRad(T angle, T x, T y, T z) { return setRotateRad(angle, point3<T>(x, y, z)); }
  matrix4& setRotateDeg(T angle, const point3<T>& axis) {
    return setRotateRad(angle * mathBase<T>::DEG_TO_RAD(), axis);
  }
  static matrix4 getScale(T x, T y, T z) { return matrix4().setScale(x, y, z); }
  static matrix4 getTranslate(T x, T y, T z) { return matrix4().setTranslate(x, y, z); }
  static matrix4 getRotateRad(T angle, const point3<T>& axis) {
    return matrix4().setRotateRad(angle, axis);
  }
  static matrix4 getRotateDeg(T angle, const point3<T>& axis) {
    return matrix4().setRotateDeg(angle, axis);
  }

  // Left-handed view: the camera axes in the columns, the eye at the origin.
  matrix4& setLookAtLH(const point3<T>& eye, const point3<T>& at, const point3<T>& up);
  matrix4& setLookAtLH(T eyeX, T eyeY, T eyeZ, T atX, T atY, T atZ, T upX, T upY, T upZ) {
    return setLookAtLH(point3<T>(eyeX, eyeY, eyeZ), point3<T>(atX, atY, atZ),
                       point3<T>(upX, upY, upZ));
  }
  // Left-handed projections mapping depth to 0..1.
  matrix4& setOrthoLH(T left, T right, T bottom, T top, T zNear, T zFar);
  matrix4& setFrustumLH(T left, T right, T bottom, T top, T zNear, T zFar);
  matrix4& setPerspectiveLHRad(T fovY, T aspect, T zNear, T zFar);
  matrix4& setPerspectiveLHDeg(T fovYDeg, T aspect, T zNear, T zFar);
  // Perspective with fovDeg as the vertical angle, or an orthographic box of half size
  // 100·tan(fovDeg)·near: the whole angle and the factor 100 are kept on purpose.
  matrix4 setProjectionMatrix(bool perspective, T fovDeg, T aspect, T zNear, T zFar);
  static matrix4 getLookAtLH(const point3<T>& eye, const point3<T>& at, const point3<T>& up) {
    return matrix4().setLookAtLH(eye, at, up);
  }
  static matrix4 getOrthoLH(T left, T right, T bottom, T top, T zNear, T zFar) {
    return matrix4().setOrthoLH(left, right, bottom, top, zNear, zFar);
  }
  static matrix4 getFrustumLH(T left, T right, T bottom, T top, T zNear, T zFar) {
    return matrix4().setFrustumLH(left, right, bottom, top, zNear, zFar);
  }
  static matrix4 getPerspectiveLHRad(T fovY, T aspect, T zNear, T zFar) {
    return matrix4().setPerspectiveLHRad(fovY, aspect, zNear, zFar);
  }
  static matrix4 getPerspectiveLHDeg(T fovYDeg, T aspect, T zNear, T zFar) {
    return matrix4().setPerspectiveLHDeg(fovYDeg, aspect, zNear, zFar);
  }
  static matrix4 getProjectionMatrix(bool perspective, T fovDeg, T aspect, T zNear, T zFar) {
    return matrix4().setProjectionMatrix(perspective, fovDeg, aspect, zNear, zFar);
  }

  // Column-vector forms (for M·v): the planar projections and the mirror in the plane
  // through point with the given unit normal.
  matrix4& setObliqueProjection(const point3<T>& normal, const point3<T>& point,
                                const point3<T>& direction);
  matrix4& setPerspectiveProjection(const point3<T>& normal, const point3<T>& point,
                                    const point3<T>& eye);
  matrix4& setReflection(const point3<T>& normal, const point3<T>& point);

  // Rotation between the upper-left blocks of a and b by quaternion slerp (translation
  // is dropped).
  static matrix4 interpolateRotationMatricex(const matrix4& a, const matrix4& b, T t);
  // Test fixtures: I·T·S·R with the arguments mixed on purpose (see the definition).
  static matrix4 getRandomTransform(T angleDeg, T x, T y, T z);
  // Seeds the C generator with seed and draws the four arguments of the form above.
  static matrix4 getRandomTransform(unsigned int seed);

  // Cyclic Jacobi eigen solver for a symmetric matrix: values get the eigenvalues,
  // vectors the eigenvectors in its columns, rotations the number of rotations. False
  // if 50 sweeps did not converge.
  static bool jacobi(const matrix4& a, T values[4], matrix4& vectors, int& rotations);
  // The pairwise update of one Jacobi rotation on elements (i, j) and (k, l).
  static void jacobiRotate(matrix4& a, T s, T tau, int i, int j, int k, int l) {
    const T g = a(i, j), h = a(k, l);
    a(i, j) = g - s * (h + g * tau);
    a(k, l) = h + s * (g - h * tau);
  }
  // The rigid transform (rotation then translation, row-vector form) that best carries
  // the points a onto b, paired by index, by Horn's unit-quaternion closed form. Without
  // translation only the rotation is returned. Always true.
  static bool computeRigidMatchMatrix(matrix4& result, const std::vector<point3<T>>& a,
                                      const std::vector<point3<T>>& b, bool withTranslation = true);

  // Appends an element named `element` to `node` with the sixteen elements in the
  // attributes `names`, in element order; false if node is null. The file forms write a
  // new file holding only that element. Narrow names are widened first.
  bool saveToXML(IO::XML::xmlNode* node, const std::string& element,
                 const std::array<std::string, 16>& names) const;
  bool saveToXML(const std::string& file, const std::string& element,
                 const std::array<std::string, 16>& names) const;
  bool saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element,
                  const std::array<std::wstring, 16>& names) const;
  bool saveToXMLW(const std::wstring& file, const std::wstring& element,
                  const std::array<std::wstring, 16>& names) const;
  // Reads the elements from the first child element named `element` of `node` (or at the
  // top of the file); false if it is absent. A missing attribute leaves its element
  // untouched.
  bool openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                   const std::array<std::string, 16>& names);
  bool openFromXML(const std::string& file, const std::string& element,
                   const std::array<std::string, 16>& names);
  bool openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                    const std::array<std::wstring, 16>& names);
  bool openFromXMLW(const std::wstring& file, const std::wstring& element,
                    const std::array<std::wstring, 16>& names);

 private:
  T m[16];
};

// The point transform of the library: (x y z 1)·M, divided by the resulting w unless it
// is exactly 0.
template <class T>
inline point3<T> operator*(const point3<T>& p, const matrix4<T>& a) {
  const T x = p.x * a[0] + p.y * a[4] + p.z * a[8] + a[12];
  const T y = p.x * a[1] + p.y * a[5] + p.z * a[9] + a[13];
  const T z = p.x * a[2] + p.y * a[6] + p.z * a[10] + a[14];
  const T w = p.x * a[3] + p.y * a[7] + p.z * a[11] + a[15];
  if (w == T(0) || w == T(1)) return point3<T>(x, y, z);
  return point3<T>(x / w, y / w, z / w);
}
// (x y z w)·M, without division.
template <class T>
inline point4<T> operator*(const point4<T>& p, const matrix4<T>& a) {
  return point4<T>(p.x * a[0] + p.y * a[4] + p.z * a[8] + p.w * a[12],
                   p.x * a[1] + p.y * a[5] + p.z * a[9] + p.w * a[13],
                   p.x * a[2] + p.y * a[6] + p.z * a[10] + p.w * a[14],
                   p.x * a[3] + p.y * a[7] + p.z * a[11] + p.w * a[15]);
}
template <class T>
inline point4<T>& operator*=(point4<T>& p, const matrix4<T>& a) {
  return p = p * a;
}

using matrix4i = matrix4<int>;
using matrix4f = matrix4<float>;
using matrix4d = matrix4<double>;

extern template class matrix4<float>;
extern template class matrix4<double>;

}  // namespace MATH
}  // namespace JEV
