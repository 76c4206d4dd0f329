#pragma once

#include <limits>

namespace JEV {
namespace MATH {

// The element-by-element arithmetic shared by the matrices and the quaternion, over the
// N elements at D::data(). Hidden friends, so the class's own `*` overloads (products)
// sit beside them. Division by a scalar of exactly 0 gives the largest T everywhere.
template <class D, class T, int N>
class elementwise {
 public:
  friend D& operator+=(D& a, const D& b) {
    T* p = a.data();
    const T* q = b.data();
    for (int i = 0; i < N; ++i) p[i] += q[i];
    return a;
  }
  friend D& operator-=(D& a, const D& b) {
    T* p = a.data();
    const T* q = b.data();
    for (int i = 0; i < N; ++i) p[i] -= q[i];
    return a;
  }
  friend D& operator*=(D& a, T s) {
    T* p = a.data();
    for (int i = 0; i < N; ++i) p[i] *= s;
    return a;
  }
  friend D& operator/=(D& a, T s) {
    if (s != T(0)) return a *= T(1) / s;
    T* p = a.data();
    for (int i = 0; i < N; ++i) p[i] = std::numeric_limits<T>::max();
    return a;
  }
  friend D operator+(D a, const D& b) { return a += b; }
  friend D operator-(D a, const D& b) { return a -= b; }
  friend D operator-(D a) { return a *= T(-1); }
  friend D operator*(D a, T s) { return a *= s; }
  friend D operator*(T s, D a) { return a *= s; }
  friend D operator/(D a, T s) { return a /= s; }
};

}  // namespace MATH
}  // namespace JEV
