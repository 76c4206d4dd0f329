#pragma once

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

template <class T, template <class> class L>
engineOver<T, L>::~engineOver() {
  while (!this->entries.empty()) stopObserving(this->entries.begin()->first);
}

template <class T, template <class> class L>
const T& engineOver<T, L>::cV() const {
  if (this->isConnected() && this->followMaster) return fieldBase<T, dummyLinkerType, L>::cV();
  // Cleared before computing, so a compute that reads the engine does not recurse.
  if (dirty.exchange(false)) {
    auto* self = const_cast<engineOver*>(this);
    self->compute();
    self->invokeDelegate();
  }
  return this->value;
}

template <class T, template <class> class L>
bool engineOver<T, L>::addEntry(const std::wstring& name, input const& in) {
  auto* observed = dynamic_cast<fieldDelegates*>(in);
  if (!observed) return false;
  if (!CORE::storage<input>::addEntry(name, in)) return false;
  observed->registerEventOnChangeValue(makeDelegate(this, &engineOver::paramOnChangeDelegate));
  inputLives[name] = observed->getLifeToken();
  dirty = true;
  return true;
}

template <class T, template <class> class L>
bool engineOver<T, L>::addEntry(const std::string& name, input const& in) {
  return addEntry(this->widen(name), in);
}

template <class T, template <class> class L>
bool engineOver<T, L>::addEntry(input const& in) {
  return addEntry(this->getUniqueId(), in);
}

template <class T, template <class> class L>
bool engineOver<T, L>::erase(const std::wstring& name) {
  if (!this->isValid(name)) return false;
  stopObserving(name);
  dirty = true;
  return true;
}

template <class T, template <class> class L>
bool engineOver<T, L>::erase(const std::string& name) {
  return erase(this->widen(name));
}

template <class T, template <class> class L>
void engineOver<T, L>::clear() {
  while (!this->entries.empty()) stopObserving(this->entries.begin()->first);
  dirty = true;
}

template <class T, template <class> class L>
void engineOver<T, L>::compute() {
  if (!computeDelegate.isNull()) computeDelegate->invoke();
}

template <class T, template <class> class L>
void engineOver<T, L>::stopObserving(const std::wstring& name) {
  auto entry = this->entries.find(name);
  auto life = inputLives.find(name);
  // An input that died first has taken its delegates with it.
  if (life != inputLives.end() && !life->second.expired()) {
    if (auto* observed = dynamic_cast<fieldDelegates*>(entry->second)) {
      observed->removeEventOnChangeValue(makeDelegate(this, &engineOver::paramOnChangeDelegate));
    }
  }
  if (life != inputLives.end()) inputLives.erase(life);
  this->entries.erase(entry);
}

}  // namespace INTERNAL
}  // namespace SYSTEM
}  // namespace JEV
