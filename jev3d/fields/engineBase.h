#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/resources/storage.h"

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

// A field whose value is computed lazily from named input fields. A change of an input
// only marks the engine dirty: it neither computes nor notifies. The next read computes
// (through `computeDelegate`, which writes the value), then notifies, then returns; so an
// observer hears nothing until somebody reads. Shared by engineBase and MT::engineBase.
template <class T, template <class> class L>
class engineOver : public fieldBase<T, dummyLinkerType, L>,
                   public CORE::storage<linkerBase<dummyLinkerType>*> {
 public:
  using input = linkerBase<dummyLinkerType>*;
  using fieldBase<T, dummyLinkerType, L>::operator=;

  engineOver() = default;
  engineOver(const engineOver&) = delete;
  engineOver& operator=(const engineOver&) = delete;
  // Stops observing the inputs that are still alive.
  ~engineOver() override;

  const T& cV() const override;

  // Adds a named input and observes it; marks dirty. False when the name is empty or
  // taken, or when `in` is not a field.
  bool addEntry(const std::wstring& name, input const& in) override;
  bool addEntry(const std::string& name, input const& in) override;
  // As above under a fresh name from getUniqueId().
  bool addEntry(input const& in);
  // Removes an input and its observer; marks dirty. False for an unknown name.
  bool erase(const std::wstring& name) override;
  bool erase(const std::string& name) override;
  // Removes every input and observer; marks dirty.
  void clear() override;

  void setDirty() { dirty = true; }
  bool isDirty() const { return dirty; }
  // The function that computes the value; it is expected to write it (setValue or V()).
  void setComputeDelegate(const sharedPointer<delegate>& d) { computeDelegate = d; }
  const sharedPointer<delegate>& getComputeDelegate() const { return computeDelegate; }

 protected:
  // Invokes computeDelegate if set.
  virtual void compute();

 private:
  void paramOnChangeDelegate() { dirty = true; }
  void stopObserving(const std::wstring& name);

  sharedPointer<delegate> computeDelegate;
  // Atomic because inputs of the locked kind are written from other threads.
  mutable std::atomic<bool> dirty{false};
  std::map<std::wstring, std::weak_ptr<void>> inputLives;
};

}  // namespace INTERNAL

// An engine over plain linkers.
template <class T>
class engineBase : public INTERNAL::engineOver<T, linkerBase> {
 public:
  using INTERNAL::engineOver<T, linkerBase>::operator=;
  engineBase() = default;
};

namespace MT {
// An engine over locked linkers.
template <class T>
class engineBase : public INTERNAL::engineOver<T, mtLinker> {
 public:
  using INTERNAL::engineOver<T, mtLinker>::operator=;
  engineBase() = default;
};
}  // namespace MT

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/fields/engineBase.inl"
