#pragma once

#include <string>

#include "jev3d/fields/fieldDelegates.h"
#include "jev3d/fields/linkerBase.h"
#include "jev3d/fields/mtLinker.h"

namespace JEV {
namespace SYSTEM {

class engineCondition;

namespace INTERNAL {
// The field's condition is reached through these, so that this header does not need the
// condition classes, which are themselves built on fields.
engineCondition* makeCondition();
void deleteCondition(engineCondition* condition);
linkerBase<dummyLinkerType>* conditionEngine(engineCondition* condition);
}  // namespace INTERNAL

// A typed value that can be linked and observed. A write stores into the field's own
// value and always notifies, even with an equal value: first the field's delegates, then
// each slave in turn, depth first. A field that follows its front master reads the
// master's value instead of its own; a master that is not a field of T is ignored. `L` is
// linkerBase, or mtLinker for links shared with other threads (the value itself is never
// locked). There is no guard against loops: a delegate that writes the field it observes,
// or a cycle of links, recurses without end.
template <class T, class D = dummyLinkerType, template <class> class L = linkerBase>
class fieldBase : public L<D>, public fieldDelegates {
 public:
  using valueType = T;
  using linkerType = L<D>;

  fieldBase();
  explicit fieldBase(const T& value);
  // Connects to `master` at once, without notifying.
  fieldBase(linkerType* master, bool follow);
  fieldBase(const T& value, linkerType* master, bool follow);
  // Takes the other's effective value; no links, delegates or condition.
  fieldBase(const fieldBase& other);
  ~fieldBase() override;

  virtual operator T() const;
  // The effective value: the front master's when connected and following, else our own.
  virtual const T& cV() const;
  // The own stored value, with no follow-through and no notification.
  virtual T& V();
  // Store `other.cV()` or `value` as our own value, then notify.
  virtual fieldBase& setValue(const fieldBase& other);
  virtual fieldBase& setValue(const T& value);
  // Follows the engine of this field's condition; nothing before the condition's first add.
  virtual void connectToEngineCondition();

  fieldBase& operator=(const T& value) { return setValue(value); }
  fieldBase& operator=(const fieldBase& other) { return setValue(other); }
  // Notifies without writing.
  void touch() { invokeDelegate(); }
  // The rule this field may follow; made at first use, owned by the field.
  engineCondition& getCondition();

 protected:
  // The notification: own delegates, then the slaves', over copies of both lists.
  virtual void invokeDelegate();
  const void* linkedValue(const std::type_info& type) const override;
  void masterNotified() override;

  T value{};

 private:
  engineCondition* condition = nullptr;
};

// The value of a field held as a member of its exact type, read without a call through
// the table (the same value cV gives): for walks that read many fields every frame.
template <class F>
const typename F::valueType& memberValue(const F& field) {
  return field.F::cV();
}

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/fields/fieldBase.inl"
