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

// A two-component value: a position in the plane or a texture coordinate. Plain layout
// x, y. Instantiated for int, float and double.
template <class T>
class point2 : public byteOrdered<point2<T>> {
 public:
  T x = T(0);
  T y = T(0);

  constexpr point2() = default;
  constexpr point2(T x_, T y_) : x(x_), y(y_) {}
  explicit point2(const T* v) : x(v[0]), y(v[1]) {}

  static constexpr point2 ZERO() { return point2(T(0), T(0)); }
  static constexpr point2 UNIT_X() { return point2(T(1), T(0)); }
  static constexpr point2 UNIT_Y() { return point2(T(0), T(1)); }

  T& operator[](int i) { return (&x)[i]; }
  const T& operator[](int i) const { return (&x)[i]; }
  T* data() { return &x; }
  const T* data() const { return &x; }

  // Sets every component to v.
  point2& operator()(T v) {
    x = y = v;
    return *this;
  }
  // Sets the components from raw memory holding two T.
  void from(const void* raw) { std::memcpy(static_cast<void*>(this), raw, sizeof(point2)); }
  void setZero() { x = y = T(0); }

  point2 operator-() const { return point2(-x, -y); }
  point2 operator+(const point2& b) const { return point2(x + b.x, y + b.y); }
  point2 operator-(const point2& b) const { return point2(x - b.x, y - b.y); }
  point2 operator+(T s) const { return point2(x + s, y + s); }
  point2 operator-(T s) const { return point2(x - s, y - s); }
  point2& operator+=(const point2& b) {
    x += b.x, y += b.y;
    return *this;
  }
  point2& operator-=(const point2& b) {
    x -= b.x, y -= b.y;
    return *this;
  }
  point2& operator+=(T s) {
    x += s, y += s;
    return *this;
  }
  point2& operator-=(T s) {
    x -= s, y -= s;
    return *this;
  }

  // Dot product.
  T operator*(const point2& b) const { return x * b.x + y * b.y; }
  point2 operator*(T s) const { return point2(x * s, y * s); }
  point2& operator*=(T s) {
    x *= s, y *= s;
    return *this;
  }
  // Component product, although `*` with a point is the dot product: kept on purpose.
  point2& operator*=(const point2& b) {
    x *= b.x, y *= b.y;
    return *this;
  }
  // Division by a scalar; exactly 0 gives the largest T in every component.
  point2 operator/(T s) const {
    point2 r(*this);
    return r /= s;
  }
  point2& operator/=(T s) {
    if (s == T(0)) return (*this)(std::numeric_limits<T>::max());
    if constexpr (std::is_floating_point_v<T>) {
      const T inv = T(1) / s;
      x *= inv, y *= inv;
    } else {
      x /= s, y /= s;
    }
    return *this;
  }
  // Component division; the caller keeps the divisor's components non-zero.
  point2& operator/=(const point2& b) {
    x /= b.x, y /= b.y;
    return *this;
  }

  T squaredNorm() const { return x * x + y * y; }
  // Euclidean length, taken in double.
  T norm() const { return T(std::sqrt(double(x) * x + double(y) * y)); }
  // Scales to unit length (length taken in double); the null vector stays null.
  point2& normalize() {
    const double len = std::sqrt(double(x) * x + double(y) * y);
    if (len > 0.0) {
      x = T(x / len), y = T(y / len);
    } else {
      setZero();
    }
    return *this;
  }
  point2 getNormalized() const {
    point2 r(*this);
    return r.normalize();
  }

  static T dot(const point2& a, const point2& b) { return a * b; }
  // (y, -x): the vector turned a quarter clockwise.
  point2 perp() const { return point2(y, -x); }
  point2 unitPerp() const { return perp().normalize(); }
  // x·b.y - y·b.x, the z of the cross product.
  T dotPerp(const point2& b) const { return x * b.y - y * b.x; }

  // Components with |c| strictly below eps become 0.
  void setComponentsToZeroIfLessThanEpsilon(T eps) {
    if (std::abs(x) < eps) x = T(0);
    if (std::abs(y) < eps) y = T(0);
  }

  // (1 - t)·a + t·b.
  static point2 interpolate(const point2& a, const point2& b, T t) {
    return a * (T(1) - t) + b * t;
  }

  // Gram-Schmidt in the order u, v, each step normalised with the null-vector rule.
  static void orthonormalize(point2& u, point2& v);
  static void orthonormalize(point2* uv);
  // Completes v (normalised first unless vIsUnit) with u = v.perp(), so that
  // u.dotPerp(v) is 1.
  static void generateOrthonormalBasis(point2& u, point2& v, bool vIsUnit);
  // Per-axis extremes of count points, starting from the first; count 0 gives zeros.
  static void computeExtremes(int count, const point2* points, point2& min, point2& max);
  // Barycentric coordinates (b0, b1, b2) of p against the triangle v0, v1, v2, written
  // to bary[3]. A degenerate triangle divides by zero.
  static void getBarycentrics(const point2& p, const point2& v0, const point2& v1, const point2& v2,
                              T bary[3]);

  // Appends an element named `element` to `node`, the components in the attributes
  // xName, yName; false if node is null. The file forms write a new file holding
  // only that element. Narrow names are widened first.
  bool saveToXML(IO::XML::xmlNode* node, const std::string& element, const std::string& xName,
                 const std::string& yName) const;
  bool saveToXML(const std::string& file, const std::string& element, const std::string& xName,
                 const std::string& yName) const;
  bool saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName) const;
  bool saveToXMLW(const std::wstring& file, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName) const;
  // Reads the components from the first child element named `element` of `node` (or at
  // the top of the file); false if it is absent. A missing attribute leaves its
  // component untouched.
  bool openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                   const std::string& xName, const std::string& yName);
  bool openFromXML(const std::string& file, const std::string& element, const std::string& xName,
                   const std::string& yName);
  bool openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName);
  bool openFromXMLW(const std::wstring& file, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName);
};

template <class T>
inline point2<T> operator*(T s, const point2<T>& p) {
  return p * s;
}

using point2i = point2<int>;
using point2f = point2<float>;
using point2d = point2<double>;

extern template class point2<int>;
extern template class point2<float>;
extern template class point2<double>;

}  // namespace MATH
}  // namespace JEV
