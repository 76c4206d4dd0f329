#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace JEV {
namespace IO {

constexpr bool hostIsBigEndian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;

template <class T>
inline T byteSwapped(T v) {
  if constexpr (sizeof(T) == 1) {
    return v;
  } else {
    using U = std::conditional_t<sizeof(T) == 2, uint16_t,
                                 std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>;
    U u;
    std::memcpy(&u, &v, sizeof u);
    if constexpr (sizeof(T) == 2) u = __builtin_bswap16(u);
    if constexpr (sizeof(T) == 4) u = __builtin_bswap32(u);
    if constexpr (sizeof(T) == 8) u = __builtin_bswap64(u);
    std::memcpy(&v, &u, sizeof u);
    return v;
  }
}

// A value of type T from unaligned bytes, byte-swapped when Swap.
template <class T, bool Swap>
inline T load(const unsigned char* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return Swap ? byteSwapped(v) : v;
}

// A little-endian value from unaligned bytes.
template <class T>
inline T loadLittleEndian(const unsigned char* p) {
  return load<T, hostIsBigEndian>(p);
}

}  // namespace IO
}  // namespace JEV
