#pragma once

// Conversions between the library's row-major matrices and Eigen, the independent
// reference the math tests compare against.

#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"

#include <Eigen/Dense>

#include <random>

template <class T>
using eMat3 = Eigen::Matrix<T, 3, 3>;
template <class T>
using eMat4 = Eigen::Matrix<T, 4, 4>;

template <class T>
eMat3<T> toEigen(const JEV::MATH::matrix3<T>& m) {
  return Eigen::Map<const Eigen::Matrix<T, 3, 3, Eigen::RowMajor>>(m.data());
}
template <class T>
eMat4<T> toEigen(const JEV::MATH::matrix4<T>& m) {
  return Eigen::Map<const Eigen::Matrix<T, 4, 4, Eigen::RowMajor>>(m.data());
}
template <class T>
Eigen::Matrix<T, 3, 1> toEigen(const JEV::MATH::point3<T>& p) {
  return {p.x, p.y, p.z};
}
template <class T>
Eigen::Matrix<T, 4, 1> toEigen(const JEV::MATH::point4<T>& p) {
  return {p.x, p.y, p.z, p.w};
}
template <class T>
JEV::MATH::matrix3<T> fromEigen(const eMat3<T>& e) {
  JEV::MATH::matrix3<T> m;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) m(r, c) = e(r, c);
  return m;
}

// Largest absolute element difference.
template <class T, class E>
double maxDiff(const JEV::MATH::matrix3<T>& a, const E& b) {
  return (toEigen(a) - b).cwiseAbs().maxCoeff();
}
template <class T, class E>
double maxDiff(const JEV::MATH::matrix4<T>& a, const E& b) {
  return (toEigen(a) - b).cwiseAbs().maxCoeff();
}

// Seeded uniform numbers in [lo, hi].
class randomSource {
 public:
  explicit randomSource(unsigned seed) : rng(seed) {}
  double operator()(double lo = -1.0, double hi = 1.0) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
  }
  template <class T>
  JEV::MATH::matrix3<T> matrix3() {
    JEV::MATH::matrix3<T> m;
    for (int i = 0; i < 9; ++i) m[i] = T((*this)(-2, 2));
    return m;
  }
  template <class T>
  JEV::MATH::matrix4<T> matrix4() {
    JEV::MATH::matrix4<T> m;
    for (int i = 0; i < 16; ++i) m[i] = T((*this)(-2, 2));
    return m;
  }
  template <class T>
  JEV::MATH::point3<T> point3(double lo = -1.0, double hi = 1.0) {
    return JEV::MATH::point3<T>(T((*this)(lo, hi)), T((*this)(lo, hi)), T((*this)(lo, hi)));
  }
  template <class T>
  JEV::MATH::point3<T> unit3() {
    JEV::MATH::point3<T> p;
    while (p.norm() < T(0.1)) p = point3<T>();
    return p.normalize();
  }

 private:
  std::mt19937 rng;
};
