#pragma once

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "jev3d/math/point3.h"

#include "jev3d/math/byteOrdered.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlNode;
}  // namespace XML
}  // namespace IO

namespace MATH {

// A four-component value: a homogeneous position or a colour. Plain layout x, y, z, w.
// Instantiated for int, float and double.
template <class T>
class point4 : public byteOrdered<point4<T>> {
 public:
  T x = T(0);
  T y = T(0);
  T z = T(0);
  T w = T(0);

  constexpr point4() = default;
  constexpr point4(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}
  constexpr point4(const point3<T>& p, T w_) : x(p.x), y(p.y), z(p.z), w(w_) {}
  explicit point4(const T* v) : x(v[0]), y(v[1]), z(v[2]), w(v[3]) {}

  static constexpr point4 ZERO() { return point4(T(0), T(0), T(0), T(0)); }
  static constexpr point4 UNIT_X() { return point4(T(1), T(0), T(0), T(0)); }
  static constexpr point4 UNIT_Y() { return point4(T(0), T(1), T(0), T(0)); }
  static constexpr point4 UNIT_Z() { return point4(T(0), T(0), T(1), T(0)); }

  T& operator[](int i) { return (&x)[i]; }
  const T& operator[](int i) const { return (&x)[i]; }
  T* data() { return &x; }
  const T* data() const { return &x; }

  // Sets every component to v.
  point4& operator()(T v) {
    x = y = z = w = v;
    return *this;
  }
  // Sets the components from raw memory holding four T.
  void from(const void* raw) { std::memcpy(static_cast<void*>(this), raw, sizeof(point4)); }
  void setZero() { x = y = z = w = T(0); }
  // Drops w.
  point3<T> xyz() const { return point3<T>(x, y, z); }

  point4 operator-() const { return point4(-x, -y, -z, -w); }
  point4 operator+(const point4& b) const { return point4(x + b.x, y + b.y, z + b.z, w + b.w); }
  point4 operator-(const point4& b) const { return point4(x - b.x, y - b.y, z - b.z, w - b.w); }
  point4 operator+(T s) const { return point4(x + s, y + s, z + s, w + s); }
  point4 operator-(T s) const { return point4(x - s, y - s, z - s, w - s); }
  point4& operator+=(const point4& b) {
    x += b.x, y += b.y, z += b.z, w += b.w;
    return *this;
  }
  point4& operator-=(const point4& b) {
    x -= b.x, y -= b.y, z -= b.z, w -= b.w;
    return *this;
  }
  point4& operator+=(T s) {
    x += s, y += s, z += s, w += s;
    return *this;
  }
  point4& operator-=(T s) {
    x -= s, y -= s, z -= s, w -= s;
    return *this;
  }

  // Dot product.
  T operator*(const point4& b) const { return x * b.x + y * b.y + z * b.z + w * b.w; }
  point4 operator*(T s) const { return point4(x * s, y * s, z * s, w * s); }
  point4& operator*=(T s) {
    x *= s, y *= s, z *= s, w *= s;
    return *this;
  }
  // Component product, although `*` with a point is the dot product: kept on purpose.
  point4& operator*=(const point4& b) {
    x *= b.x, y *= b.y, z *= b.z, w *= b.w;
    return *this;
  }
  // Division by a scalar; exactly 0 gives the largest T in every component.
  point4 operator/(T s) const {
    point4 r(*this);
    return r /= s;
  }
  point4& operator/=(T s) {
    if (s == T(0)) return (*this)(std::numeric_limits<T>::max());
    if constexpr (std::is_floating_point_v<T>) {
      const T inv = T(1) / s;
      x *= inv, y *= inv, z *= inv, w *= inv;
    } else {
      x /= s, y /= s, z /= s, w /= s;
    }
    return *this;
  }
  // Component division; the caller keeps the divisor's components non-zero.
  point4& operator/=(const point4& b) {
    x /= b.x, y /= b.y, z /= b.z, w /= b.w;
    return *this;
  }

  T squaredLength() const { return x * x + y * y + z * z + w * w; }
  // Euclidean length, taken in double.
  T length() const { return T(std::sqrt(squaredLengthD())); }
  // Scales to unit length (length taken in double); the null vector stays null.
  point4& normalize() {
    const double len = std::sqrt(squaredLengthD());
    if (len > 0.0) {
      x = T(x / len), y = T(y / len), z = T(z / len), w = T(w / len);
    } else {
      setZero();
    }
    return *this;
  }

  static T dot(const point4& a, const point4& b) { return a * b; }

  // Components with |c| strictly below eps become 0.
  void setComponentsToZeroIfLessThanEpsilon(T eps) {
    if (std::abs(x) < eps) x = T(0);
    if (std::abs(y) < eps) y = T(0);
    if (std::abs(z) < eps) z = T(0);
    if (std::abs(w) < eps) w = T(0);
  }

  // (1 - t)·a + t·b.
  static point4 interpolate(const point4& a, const point4& b, T t) {
    return a * (T(1) - t) + b * t;
  }
  // Per-axis extremes of count points, starting from the first; count 0 gives zeros.
  static void computeExtremes(int count, const point4* points, point4& min, point4& max);

  // Appends an element named `element` to `node`, the components in the attributes
  // xName, yName, zName, wName; false if node is null. The file forms write a new file holding
  // only that element. Narrow names are widened first.
  bool saveToXML(IO::XML::xmlNode* node, const std::string& element, const std::string& xName,
                 const std::string& yName, const std::string& zName,
                 const std::string& wName) const;
  bool saveToXML(const std::string& file, const std::string& element, const std::string& xName,
                 const std::string& yName, const std::string& zName,
                 const std::string& wName) const;
  bool saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName, const std::wstring& zName,
                  const std::wstring& wName) const;
  bool saveToXMLW(const std::wstring& file, const std::wstring& element, const std::wstring& xName,
                  const std::wstring& yName, const std::wstring& zName,
                  const std::wstring& wName) const;
  // Reads the components from the first child element named `element` of `node` (or at
  // the top of the file); false if it is absent. A missing attribute leaves its
  // component untouched.
  bool openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                   const std::string& xName, const std::string& yName, const std::string& zName,
                   const std::string& wName);
  bool openFromXML(const std::string& file, const std::string& element, const std::string& xName,
                   const std::string& yName, const std::string& zName, const std::string& wName);
  bool openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName, const std::wstring& zName,
                    const std::wstring& wName);
  bool openFromXMLW(const std::wstring& file, const std::wstring& element,
                    const std::wstring& xName, const std::wstring& yName, const std::wstring& zName,
                    const std::wstring& wName);

 private:
  double squaredLengthD() const {
    return double(x) * x + double(y) * y + double(z) * z + double(w) * w;
  }
};

template <class T>
inline point4<T> operator*(T s, const point4<T>& p) {
  return p * s;
}

template <class T>
inline point4<T> point3<T>::xyz1() const {
  return point4<T>(x, y, z, T(1));
}
template <class T>
inline point4<T> point3<T>::xyz0() const {
  return point4<T>(x, y, z, T(0));
}

using point4i = point4<int>;
using point4f = point4<float>;
using point4d = point4<double>;

extern template class point4<int>;
extern template class point4<float>;
extern template class point4<double>;

}  // namespace MATH
}  // namespace JEV
