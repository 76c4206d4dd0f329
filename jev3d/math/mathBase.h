#pragma once

#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace JEV {
namespace MATH {

// Scalar constants and helpers for float and double. The constants are accessors so
// that every translation unit sees one value and none needs a definition elsewhere.
template <class T>
class mathBase {
 public:
  static constexpr T EPSILON();
  static constexpr T ZERO_TOLERANCE();
  static constexpr T MAX_T();
  static constexpr T MIN_T();

  // 4·atan(1) computed in double and rounded to T at each call.
  static T PI() { return T(4.0 * std::atan(1.0)); }
  static T TWO_PI() { return T(2.0) * PI(); }
  static T HALF_PI() { return T(0.5) * PI(); }
  static T INV_PI() { return T(1.0) / PI(); }
  static T INV_TWO_PI() { return T(1.0) / TWO_PI(); }
  static T DEG_TO_RAD() { return PI() / T(180.0); }
  static T RAD_TO_DEG() { return T(180.0) / PI(); }

  // Clamped inverse cosine: v <= -1 gives π, v >= 1 gives 0.
  static T aCos(T v) {
    if (v > T(-1)) return v < T(1) ? T(std::acos(double(v))) : T(0);
    return PI();
  }
  // Clamped inverse sine: v <= -1 gives -π/2, v >= 1 gives π/2.
  static T aSin(T v) {
    if (v > T(-1)) return v < T(1) ? T(std::asin(double(v))) : HALF_PI();
    return -HALF_PI();
  }
  // 1, -1, or 0 for anything neither strictly above nor strictly below 0 (NaN included).
  static T sign(T v) { return v > T(0) ? T(1) : (v < T(0) ? T(-1) : T(0)); }
  // 0 for |v| strictly below 0.0001, v otherwise.
  static T roundOff(T v) { return std::fabs(v) < T(0.0001) ? T(0) : v; }
  // Exact 1/sqrt, in double.
  static T invSqrt(T v) { return T(1.0 / std::sqrt(double(v))); }

  // The random helpers seed the C run-time generator only when seed is not 0 and then
  // draw once; they share its global state, so they belong to one thread at a time.
  static T unitRandom(unsigned int seed = 0) {
    if (seed != 0) std::srand(seed);
    return T(rand15() / 32767.0);
  }
  static T symmetricRandom(unsigned int seed = 0) { return T(2) * unitRandom(seed) - T(1); }
  static T intervalRandom(T min, T max, unsigned int seed = 0) {
    if (seed != 0) std::srand(seed);
    return T(rand15() / 32767.0 * double(max - min) + double(min));
  }
  // One draw of the C generator cut to 0..32767, whatever RAND_MAX the run-time has.
  static int rand15() { return std::rand() & 0x7FFF; }

  static T fAbs(T v) { return std::fabs(v); }
  static T floor(T v) { return std::floor(v); }
  static T ceil(T v) { return std::ceil(v); }
  static T fMod(T a, T b) { return std::fmod(a, b); }
  static T pow(T a, T b) { return std::pow(a, b); }
  static T exp(T v) { return std::exp(v); }
  static T log(T v) { return std::log(v); }
  static T sqr(T v) { return v * v; }
  static T sqrt(T v) { return T(std::sqrt(double(v))); }
  static T sin(T v) { return std::sin(v); }
  static T cos(T v) { return std::cos(v); }
  static T tan(T v) { return std::tan(v); }
  static T aTan(T v) { return std::atan(v); }
  static T aTan2(T y, T x) { return std::atan2(y, x); }
};

template <>
constexpr float mathBase<float>::EPSILON() {
  return FLT_EPSILON;
}
template <>
constexpr float mathBase<float>::ZERO_TOLERANCE() {
  return 1e-06f;
}
template <>
constexpr float mathBase<float>::MAX_T() {
  return FLT_MAX;
}
template <>
constexpr float mathBase<float>::MIN_T() {
  return FLT_MIN;
}
template <>
constexpr double mathBase<double>::EPSILON() {
  return DBL_EPSILON;
}
template <>
constexpr double mathBase<double>::ZERO_TOLERANCE() {
  return 1e-08;
}
template <>
constexpr double mathBase<double>::MAX_T() {
  return DBL_MAX;
}
template <>
constexpr double mathBase<double>::MIN_T() {
  return DBL_MIN;
}

extern template class mathBase<float>;
extern template class mathBase<double>;

using mathBasef = mathBase<float>;
using mathBased = mathBase<double>;

}  // namespace MATH
}  // namespace JEV
