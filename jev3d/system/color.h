#pragma once

#include <cstdint>

namespace JEV {
namespace CORE {

// Four bytes: red, green, blue, alpha, in memory order. As a 32-bit word the first
// byte (red) is the lowest, so 0xFF0000FF is opaque red.
struct color {
  uint8_t r = 0;
  uint8_t g = 0;
  uint8_t b = 0;
  uint8_t a = 0;

  constexpr color() = default;
  constexpr color(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255)
      : r(red), g(green), b(blue), a(alpha) {}

  static constexpr color fromU32(uint32_t v) {
    return color(uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24));
  }
  constexpr uint32_t toU32() const {
    return uint32_t(r) | uint32_t(g) << 8 | uint32_t(b) << 16 | uint32_t(a) << 24;
  }

  constexpr bool operator==(const color& o) const { return toU32() == o.toU32(); }
  constexpr bool operator!=(const color& o) const { return !(*this == o); }
};

static_assert(sizeof(color) == 4, "color is four bytes");

}  // namespace CORE
}  // namespace JEV
