#pragma once

#include <memory>
#include <vector>

#include "jev3d/system/delegate.h"
#include "jev3d/system/mutex.h"

namespace JEV {
namespace SYSTEM {

// The change delegates of a field, common to every value type and linker kind, so that
// code holding any field (an engine watching its inputs) can observe it.
class fieldDelegates {
 public:
  fieldDelegates() = default;
  // A copy starts with no delegates.
  fieldDelegates(const fieldDelegates&);
  fieldDelegates& operator=(const fieldDelegates&);
  virtual ~fieldDelegates();

  // Appends `d`, to be called with no argument each time the field notifies. The same
  // delegate may be registered twice.
  virtual void registerEventOnChangeValue(const sharedPointer<delegate>& d);
  // Removes the first registered delegate equal to `d`; nothing if there is none.
  virtual void removeEventOnChangeValue(const sharedPointer<delegate>& d);
  int getDelegatesCount() const;
  // Makes registration safe from several threads. Idempotent.
  void setMultiThreadingDelegate();

  // Expires when this field dies: lets an observer that outlives it stop touching it.
  std::weak_ptr<void> getLifeToken();

 protected:
  // Calls each delegate once, in list order, over a copy of the list, so that a delegate
  // may register or remove delegates as it runs. A field without a lock and without
  // delegates, the common case, returns at once.
  void invokeOwnDelegates() const {
    if (!delegateMutex && delegates.empty()) return;
    invokeOwnDelegatesCopied();
  }

  // When false the field does not notify, nor do its slaves hear of it.
  bool delegatesEnabled = true;

 private:
  void invokeOwnDelegatesCopied() const;

  std::vector<sharedPointer<delegate>> delegates;
  mutex* delegateMutex = nullptr;
  std::shared_ptr<char> life;
};

}  // namespace SYSTEM
}  // namespace JEV
