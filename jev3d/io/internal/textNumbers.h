#pragma once

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

// Token-level number parsing and printing for the text forms of the mesh files. Parsers
// take [p, end), skip leading blanks, and return the position after the number, or null
// when the token is not a number or the text ends first. A number must end at a blank or
// at the end of the text: "1.5x" is not a number.
namespace JEV {
namespace IO {
namespace TEXT {

inline bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

inline const char* skipBlanks(const char* p, const char* end) {
  while (p != end && isBlank(*p)) ++p;
  return p;
}

inline const char* skipToken(const char* p, const char* end) {
  while (p != end && !isBlank(*p)) ++p;
  return p;
}

inline bool endsToken(const char* p, const char* end) { return p == end || isBlank(*p); }

// A float from plain decimal text ("-12.5", "1.234567e+00") by one exact double operation:
// with at most 19 digits forming a mantissa below 2^53 and a power of ten up to 22, the
// double is correctly rounded, and rounding it to float is too unless it lies exactly half
// way between two floats. False for every other text, which then goes to from_chars.
inline bool parseShortFloat(const char*& p, const char* end, float& value) {
  static const double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  const char* q = p;
  const bool negative = q != end && *q == '-';
  if (negative) ++q;
  uint64_t mantissa = 0;
  int digits = 0, exponent = 0;
  for (; q != end && unsigned(*q - '0') < 10u; ++q, ++digits)
    mantissa = mantissa * 10 + unsigned(*q - '0');
  if (q != end && *q == '.') {
    for (++q; q != end && unsigned(*q - '0') < 10u; ++q, ++digits, --exponent)
      mantissa = mantissa * 10 + unsigned(*q - '0');
  }
  if (digits == 0 || digits > 19) return false;
  if (q != end && (*q == 'e' || *q == 'E')) {
    ++q;
    const bool down = q != end && *q == '-';
    if (q != end && (*q == '-' || *q == '+')) ++q;
    int e = 0, n = 0;
    for (; q != end && unsigned(*q - '0') < 10u && n < 4; ++q, ++n) e = e * 10 + (*q - '0');
    if (n == 0) return false;
    exponent += down ? -e : e;
  }
  if (!endsToken(q, end) || mantissa > (uint64_t(1) << 53) || exponent < -22 || exponent > 22)
    return false;
  const double d =
      exponent < 0 ? double(mantissa) / powers[-exponent] : double(mantissa) * powers[exponent];
  uint64_t bits;
  std::memcpy(&bits, &d, sizeof bits);
  // Half way between two floats: the 29 bits below float precision read 1000...0.
  if ((bits & 0x1fffffffu) == 0x10000000u) return false;
  value = negative ? -float(d) : float(d);
  p = q;
  return true;
}

// Floating point of type T (float or double), correctly rounded; a leading '+' is allowed.
template <class T>
inline const char* parseReal(const char* p, const char* end, T& value) {
  p = skipBlanks(p, end);
  if (p != end && *p == '+') ++p;
  if (p == end) return nullptr;
  if constexpr (std::is_same_v<T, float>) {
    if (parseShortFloat(p, end, value)) return p;
  }
  const auto r = std::from_chars(p, end, value);
  if (r.ec == std::errc::result_out_of_range) {
    // Too large or too small for T: infinity or (nearly) zero, as strtof gives, not a failure.
    double wide = 0;
    const auto w = std::from_chars(p, end, wide);
    if (w.ec != std::errc() && w.ec != std::errc::result_out_of_range) return nullptr;
    const double most = double(std::numeric_limits<T>::max());
    const T infinity = std::numeric_limits<T>::infinity();
    value = wide > most ? infinity : wide < -most ? -infinity : T(wide);
  } else if (r.ec != std::errc()) {
    return nullptr;
  }
  return endsToken(r.ptr, end) ? r.ptr : nullptr;
}

// A signed integer. A token written as a real number ("3.0") is taken by truncation,
// since some writers print every value as a real.
inline const char* parseInteger(const char* p, const char* end, int64_t& value) {
  p = skipBlanks(p, end);
  const char* start = p;
  bool negative = false;
  if (p != end && (*p == '-' || *p == '+')) negative = *p++ == '-';
  const char* digits = p;
  uint64_t v = 0;
  while (p != end && unsigned(*p - '0') < 10u && p - digits < 18) v = v * 10 + unsigned(*p++ - '0');
  if (p != digits && endsToken(p, end)) {
    value = negative ? -int64_t(v) : int64_t(v);
    return p;
  }
  double real = 0;
  p = parseReal(start, end, real);
  if (!p || !(real == real)) return nullptr;
  const double limit = 9.0e18;
  value = real > limit ? int64_t(limit) : real < -limit ? -int64_t(limit) : int64_t(real);
  return p;
}

// Shortest text that reads back as the same float; returns the end of the written text.
// `out` needs room for 16 characters.
inline char* printReal(char* out, float value) { return std::to_chars(out, out + 24, value).ptr; }
inline char* printReal(char* out, double value) { return std::to_chars(out, out + 32, value).ptr; }
template <class I>
inline char* printInteger(char* out, I value) {
  return std::to_chars(out, out + 24, value).ptr;
}

}  // namespace TEXT
}  // namespace IO
}  // namespace JEV
