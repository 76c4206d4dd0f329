#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "jev3d/io/internal/byteOrder.h"
#include "jev3d/io/ply/plyTypes.h"

// Loading, converting and storing the eight value types, shared by the reader and the
// writer of the element layer.
namespace JEV {
namespace IO {
namespace PLY {
namespace INTERNAL {

using IO::byteSwapped;
using IO::load;

// A value converted to type R without undefined behaviour: integers saturate, NaN becomes
// 0, reals beyond float's range become the largest float. A real stored into a byte is a
// fraction of 255, the way colours are written as reals.
template <class R, class F>
inline R convert(F v) {
  if constexpr (std::is_same_v<R, F>) {
    return v;
  } else if constexpr (std::is_floating_point_v<R>) {
    if constexpr (std::is_same_v<R, float> && std::is_same_v<F, double>) {
      const double m = std::numeric_limits<float>::max();
      if (v > m && v != std::numeric_limits<double>::infinity())
        return std::numeric_limits<float>::max();
      if (v < -m && v != -std::numeric_limits<double>::infinity())
        return -std::numeric_limits<float>::max();
    }
    return R(v);
  } else if constexpr (std::is_floating_point_v<F>) {
    double d = double(v);
    if constexpr (std::is_same_v<R, uint8_t>) d = d * 255.0 + 0.5;
    if (!(d == d)) return R(0);
    if (d <= double(std::numeric_limits<R>::min())) return std::numeric_limits<R>::min();
    if (d >= double(std::numeric_limits<R>::max())) return std::numeric_limits<R>::max();
    return R(d);
  } else {
    const long long w = (long long)v;
    if (w < (long long)std::numeric_limits<R>::min()) return std::numeric_limits<R>::min();
    if (w > (long long)std::numeric_limits<R>::max()) return std::numeric_limits<R>::max();
    return R(w);
  }
}

[[noreturn]] inline void badType(const char* where, int type) {
  std::fprintf(stderr, "%s: bad type = %d\n", where, type);
  std::abort();
}

// Calls f(T()) with the C++ type of a type code; other codes are a caller's error.
template <class F>
inline void withType(int type, const char* where, F&& f) {
  switch (type) {
    case PLY_CHAR:
      return f(int8_t());
    case PLY_SHORT:
      return f(int16_t());
    case PLY_INT:
      return f(int32_t());
    case PLY_UCHAR:
      return f(uint8_t());
    case PLY_USHORT:
      return f(uint16_t());
    case PLY_UINT:
      return f(uint32_t());
    case PLY_FLOAT:
      return f(float());
    case PLY_DOUBLE:
      return f(double());
    default:
      badType(where, type);
  }
}

inline bool isRealType(int type) { return type == PLY_FLOAT || type == PLY_DOUBLE; }

}  // namespace INTERNAL
}  // namespace PLY
}  // namespace IO
}  // namespace JEV
