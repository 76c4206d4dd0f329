#pragma once

#include <cstdint>

namespace JEV {
namespace SYSTEM {

// A bit set over one integer word. Instantiated for char, unsigned char, short,
// unsigned short, int, unsigned int and int64_t.
template <class T>
class flags {
 public:
  flags() = default;
  explicit flags(T m) : mask(m) {}
  virtual ~flags() = default;

  bool isFlagSet(T x) const { return (mask & x) != 0; }
  bool areFlagsSet(T x) const { return (mask & x) == x; }
  bool isNotFlagSet(T x) const { return (mask & x) == 0; }
  void setFlag(T x) { mask = static_cast<T>(mask | x); }
  void setFlag(T x, bool on) { on ? setFlag(x) : clearFlag(x); }
  void clearFlag(T x) { mask = static_cast<T>(mask & ~x); }
  void setAllFlag() { mask = static_cast<T>(~T(0)); }
  void clearAllFlags() { mask = T(0); }
  T getMask() const { return mask; }
  void setMask(T m) { mask = m; }

 private:
  T mask = T(0);
};

extern template class flags<char>;
extern template class flags<unsigned char>;
extern template class flags<short>;
extern template class flags<unsigned short>;
extern template class flags<int>;
extern template class flags<unsigned int>;
extern template class flags<int64_t>;

}  // namespace SYSTEM
}  // namespace JEV
