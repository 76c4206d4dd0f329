#include "jev3d/system/delegate.h"

#include <cassert>
#include <cstring>

namespace JEV {
namespace SYSTEM {

void delegate::reset() { *this = delegate(); }

bool delegate::equals(const delegate& other) const {
  if (boundCount != other.boundCount || object != other.object) return false;
  if (std::memcmp(function.bytes, other.function.bytes, sizeof(function.bytes)) != 0) return false;
  for (uint32_t i = 0; i < boundCount; ++i) {
    if (bound[i] != other.bound[i]) return false;
  }
  return true;
}

void delegate::setBound(uint32_t count, void* bound1, void* bound2) {
  boundCount = count;
  bound[0] = bound1;
  bound[1] = bound2;
}

void delegate::dispatch(void* const* arguments, int count) const {
  if (!object) return;
  void* words[MAX_ARITY] = {};
  for (int i = 0; i < static_cast<int>(arity); ++i) {
    if (i < count) {
      words[i] = arguments[i];
    } else if (i < static_cast<int>(boundCount)) {
      words[i] = bound[i];
    } else {
      assert(!"delegate called with fewer arguments than its function takes");
      return;
    }
  }
  call(object, function.bytes, words);
}

void delegate::invoke() const { dispatch(nullptr, 0); }

void delegate::invoke(void* a1) const {
  void* const a[] = {a1};
  dispatch(a, 1);
}

void delegate::invoke(void* a1, void* a2) const {
  void* const a[] = {a1, a2};
  dispatch(a, 2);
}

void delegate::invoke(void* a1, void* a2, void* a3) const {
  void* const a[] = {a1, a2, a3};
  dispatch(a, 3);
}

void delegate::invoke(void* a1, void* a2, void* a3, void* a4) const {
  void* const a[] = {a1, a2, a3, a4};
  dispatch(a, 4);
}

void delegate::invoke(void* a1, void* a2, void* a3, void* a4, void* a5) const {
  void* const a[] = {a1, a2, a3, a4, a5};
  dispatch(a, 5);
}

bool sameDelegate(const sharedPointer<delegate>& a, const sharedPointer<delegate>& b) {
  if (a.isNull() || b.isNull()) return a.isNull() == b.isNull();
  return a->equals(*b);
}

}  // namespace SYSTEM
}  // namespace JEV
