#pragma once

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "jev3d/math/byteOrdered.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlNode;
}  // namespace XML
}  // namespace IO

namespace MATH {

template <class T>
class point4;

// A three-component value: a position or a direction, a row vector for the matrix
// products. Plain layout (x, y, z and nothing else) so that arrays of points can be
// handed to files and renderers as they are. Instantiated for int, float and double.
template <class T>
class point3 : public byteOrdered<point3<T>> {
 public:
  T x = T(0);
  T y = T(0);
  T z = T(0);

  constexpr point3() = default;
  constexpr point3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
  explicit point3(const T* v) : x(v[0]), y(v[1]), z(v[2]) {}

  static constexpr point3 ZERO() { return point3(T(0), T(0), T(0)); }
  static constexpr point3 UNIT_X() { return point3(T(1), T(0), T(0)); }
  static constexpr point3 UNIT_Y() { return point3(T(0), T(1), T(0)); }
  static constexpr point3 UNIT_Z() { return point3(T(0), T(0), T(1)); }

  T& operator[](int i) { return (&x)[i]; }
  const T& operator[](int i) const { return (&x)[i]; }
  T* data() { return &x; }
  const T* data() const { return &x; }

  // Sets every component to v.
  point3& operator()(T v) {
    x = y = z = v;
    return *this;
  }
  // Sets the components from raw memory holding three T.
  void from(const void* raw) { std::memcpy(static_cast<void*>(this), raw, sizeof(point3)); }
  void setZero() { x = y = z = T(0); }

  point3 operator-() const { return point3(-x, -y, -z); }
  point3 operator+(const point3& b) const { return point3(x + b.x, y + b.y, z + b.z); }
  point3 operator-(const point3& b) const { return point3(x - b.x, y - b.y, z - b.z); }
  point3 operator+(T s) const { return point3(x + s, y + s, z + s); }
  point3 operator-(T s) const { return point3(x - s, y - s, z - s); }
  point3& operator+=(const point3& b) {
    x += b.x, y += b.y, z += b.z;
    return *this;
  }
  point3& operator-=(const point3& b) {
    x -= b.x, y -= b.y, z -= b.z;
    return *this;
  }
  point3& operator+=(T s) {
    x += s, y += s, z += s;
    return *this;
  }
  point3& operator-=(T s) {
    x -= s, y -= s, z -= s;
    return *this;
  }

  // Dot product.
  T operator*(const point3& b) const { return x * b.x + y * b.y + z * b.z; }
  point3 operator*(T s) const { return point3(x * s, y * s, z * s); }
  point3& operator*=(T s) {
    x *= s, y *= s, z *= s;
    return *this;
  }
  // Component product, although `*` with a point is the dot product: kept on purpose.
  point3& operator*=(const point3& b) {
    x *= b.x, y *= b.y, z *= b.z;
    return *this;
  }
  // Division by a scalar; exactly 0 gives the largest T in every component.
  point3 operator/(T s) const {
    point3 r(*this);
    return r /= s;
  }
  point3& operator/=(T s) {
    if (s == T(0)) return (*this)(std::numeric_limits<T>::max());
    if constexpr (std::is_floating_point_v<T>) {
      const T inv = T(1) / s;
      x *= inv, y *= inv, z *= inv;
    } else {
      x /= s, y /= s, z /= s;
    }
    return *this;
  }
  // Component division; the caller keeps the divisor's components non-zero.
  point3& operator/=(const point3& b) {
    x /= b.x, y /= b.y, z /= b.z;
    return *this;
  }

  T squaredNorm() const { return x * x + y * y + z * z; }
  // Euclidean length, taken in double.
  T norm() const { return T(std::sqrt(double(x) * x + double(y) * y + double(z) * z)); }
  // Scales to unit length (length taken in double); the null vector stays null.
  point3& normalize() {
    const double len = std::sqrt(double(x) * x + double(y) * y + double(z) * z);
    if (len > 0.0) {
      x = T(x / len), y = T(y / len), z = T(z / len);
    } else {
      setZero();
    }
    return *this;
  }
  point3 getNormalized() const {
    point3 r(*this);
    return r.normalize();
  }

  static T dot(const point3& a, const point3& b) { return a * b; }
  static point3 cross(const point3& a, const point3& b) {
    return point3(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
  }
  point3 cross(const point3& b) const { return cross(*this, b); }
  // Normalised cross product; parallel vectors give the null vector.
  point3 unitCross(const point3& b) const { return cross(*this, b).normalize(); }

  // Widened with w = 1 (a position) or w = 0 (a direction).
  point4<T> xyz1() const;
  point4<T> xyz0() const;

  // Components with |c| strictly below eps become 0.
  void setComponentsToZeroIfLessThanEpsilon(T eps) {
    if (std::abs(x) < eps) x = T(0);
    if (std::abs(y) < eps) y = T(0);
    if (std::abs(z) < eps) z = T(0);
  }

  // (1 - t)·a + t·b.
  static point3 interpolate(const point3& a, const point3& b, T t) {
    return a * (T(1) - t) + b * t;
  }

  // Gram-Schmidt in the order u, v, w, each step normalised with the null-vector rule.
  static void orthonormalize(point3& u, point3& v, point3& w);
  static void orthonormalize(point3* uvw);
  // Completes w (normalised first unless wIsUnit) to a right-handed orthonormal basis.
  static void generateOrthonormalBasis(point3& u, point3& v, point3& w, bool wIsUnit);
  // Per-axis extremes of count points, starting from the first; count 0 gives zeros.
  static void computeExtremes(int count, const point3* points, point3& min, point3& max);
  // Barycentric coordinates (b0, b1, b2) of p against the triangle v0, v1, v2, taken from
  // the normal equations of its edges. A degenerate triangle divides by zero.
  static point3 getBarycentrics(const point3& p, const point3& v0, const point3& v1,
                                const point3& v2);
  // Barycentric coordinates of this point against the tetrahedron v0..v3, written to
  // bary[4] and summing to 1; flat and degenerate tetrahedra fall back to the largest
  // triangle, then the longest edge, then (1, 0, 0, 0).
  void getBarycentrics(const point3& v0, const point3& v1, const point3& v2, const point3& v3,
                       T bary[4]) const;

  // Appends an element named `element` to `node`, the components in the attributes
  // xName, yName, zName; false if node is null. The file forms write a new file holding
  // only that element. Narrow names are widened first.
  bool saveToXML(IO::XML::xmlNode* node, const std::string& element, const std::string& xName,
                 const std::string& yName, const std::string& zName) const;
  bool saveToXML(const std::string& file, const std::string& element, const std::string& xName,
                 const std::string& yName, const std::string& zName) const;
  bool saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName, const std::wstring& zName) const;
  bool saveToXMLW(const std::wstring& file, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName, const std::wstring& zName) const;
  // Reads the components from the first child element named `element` of `node` (or at
  // the top of the file); false if it is absent. A missing attribute leaves its
  // component untouched.
  bool openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                   const std::string& xName, const std::string& yName, const std::string& zName);
  bool openFromXML(const std::string& file, const std::string& element, const std::string& xName,
                   const std::string& yName, const std::string& zName);
  bool openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName,
                    const std::wstring& zName);
  bool openFromXMLW(const std::wstring& file, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName,
                    const std::wstring& zName);
};

template <class T>
inline point3<T> operator*(T s, const point3<T>& p) {
  return p * s;
}

using point3i = point3<int>;
using point3f = point3<float>;
using point3d = point3<double>;

extern template class point3<int>;
extern template class point3<float>;
extern template class point3<double>;

}  // namespace MATH
}  // namespace JEV

// point4 completes xyz1 and xyz0.
#include "jev3d/math/point4.h"
