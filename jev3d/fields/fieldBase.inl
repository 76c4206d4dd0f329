#pragma once

#include <type_traits>

namespace JEV {
namespace SYSTEM {

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::fieldBase() = default;

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::fieldBase(const T& v) : value(v) {}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::fieldBase(linkerType* master, bool follow) {
  this->connect(master, follow);
}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::fieldBase(const T& v, linkerType* master, bool follow) : value(v) {
  this->connect(master, follow);
}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::fieldBase(const fieldBase& other)
    : linkerType(), fieldDelegates(), value(other.cV()) {}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::~fieldBase() {
  INTERNAL::deleteCondition(condition);
  condition = nullptr;
}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>::operator T() const {
  return cV();
}

template <class T, class D, template <class> class L>
const T& fieldBase<T, D, L>::cV() const {
  if (this->followMaster) {
    // Read through the front master at this moment; no copy travels down the link.
    if (const linkerBase<D>* master = this->getMasterFrontFirst()) {
      if (const void* linked = master->linkedValue(typeid(T))) {
        return *static_cast<const T*>(linked);
      }
    }
  }
  return value;
}

template <class T, class D, template <class> class L>
T& fieldBase<T, D, L>::V() {
  return value;
}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>& fieldBase<T, D, L>::setValue(const fieldBase& other) {
  // Copied first: `other` may follow this very field.
  T v = other.cV();
  value = std::move(v);
  invokeDelegate();
  return *this;
}

template <class T, class D, template <class> class L>
fieldBase<T, D, L>& fieldBase<T, D, L>::setValue(const T& v) {
  value = v;
  invokeDelegate();
  return *this;
}

template <class T, class D, template <class> class L>
void fieldBase<T, D, L>::connectToEngineCondition() {
  this->connect(INTERNAL::conditionEngine(condition), true);
}

template <class T, class D, template <class> class L>
engineCondition& fieldBase<T, D, L>::getCondition() {
  if (!condition) condition = INTERNAL::makeCondition();
  return *condition;
}

template <class T, class D, template <class> class L>
void fieldBase<T, D, L>::invokeDelegate() {
  if (!delegatesEnabled) return;
  invokeOwnDelegates();
  // Most fields have no follower: a plain linker (not a locked one) sees that without
  // copying its list, which writes in tight loops (render states) would pay each time.
  if constexpr (std::is_same<L<D>, linkerBase<D>>::value) {
    if (this->slaves.empty()) return;
  }
  for (linkerBase<D>* slave : this->getSlavesCopy()) slave->masterNotified();
}

template <class T, class D, template <class> class L>
const void* fieldBase<T, D, L>::linkedValue(const std::type_info& type) const {
  return type == typeid(T) ? static_cast<const void*>(&cV()) : nullptr;
}

template <class T, class D, template <class> class L>
void fieldBase<T, D, L>::masterNotified() {
  invokeDelegate();
}

}  // namespace SYSTEM
}  // namespace JEV
