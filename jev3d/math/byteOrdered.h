#pragma once

#include <cstring>

namespace JEV {
namespace MATH {

// The comparisons of the value types: memcmp of the whole object, so that equal numbers
// compare equal only with equal bits (0.0 and -0.0 differ) and `<` is an order of bytes,
// not of numbers. That gives the library's containers a total order. An empty base, so
// the derived layout is unchanged.
template <class D>
class byteOrdered {
 public:
  static int compareArrays(const D& a, const D& b) { return std::memcmp(&a, &b, sizeof(D)); }
  friend bool operator==(const D& a, const D& b) { return compareArrays(a, b) == 0; }
  friend bool operator!=(const D& a, const D& b) { return compareArrays(a, b) != 0; }
  friend bool operator<(const D& a, const D& b) { return compareArrays(a, b) < 0; }
  friend bool operator<=(const D& a, const D& b) { return compareArrays(a, b) <= 0; }
  friend bool operator>(const D& a, const D& b) { return compareArrays(a, b) > 0; }
  friend bool operator>=(const D& a, const D& b) { return compareArrays(a, b) >= 0; }
};

}  // namespace MATH
}  // namespace JEV
