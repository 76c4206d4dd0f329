#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

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

// Floating point of type T (float or double), correctly rounded; a leading '+' is allowed.
template <class T>
inline const char* parseReal(const char* p, const char* end, T& value) {
  p = skipBlanks(p, end);
  if (p != end && *p == '+') ++p;
  if (p == end) return nullptr;
  const auto r = std::from_chars(p, end, value);
  if (r.ec == std::errc::result_out_of_range) {
    // Too large or too small for T: saturate the way strtof does rather than fail.
    double wide = 0;
    if (std::from_chars(p, end, wide).ec != std::errc()) return nullptr;
    value = T(wide);
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
