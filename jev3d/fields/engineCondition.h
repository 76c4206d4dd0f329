#pragma once

#include <vector>

#include "jev3d/fields/engineBase.h"
#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace SYSTEM {

// How a left value compares with a right one; the numbers are part of the interface.
enum condition_type {
  CONDITION_EQUAL = 0,
  CONDITION_NOT_EQUAL = 1,
  CONDITION_LESS = 2,
  CONDITION_LESS_EQUAL = 3,
  CONDITION_GREATER = 4,
  CONDITION_GREATER_EQUAL = 5,
  CONDITION_ALWAYS = 6,
};

// One comparison of a rule.
class condition_base {
 public:
  explicit condition_base(condition_type type) : type(type) {}
  virtual ~condition_base() = default;
  virtual bool evaluate() = 0;
  condition_type getType() const { return type; }

 protected:
  condition_type type;
};

// One operand: a borrowed field, or a field of its own made from a value.
template <class F>
class valueConditionBase {
 public:
  using valueType = typename F::valueType;

  explicit valueConditionBase(const valueType& value) : field(new F(value)), owned(true) {}
  explicit valueConditionBase(F* borrowed) : field(borrowed), owned(false) {}
  valueConditionBase(const valueConditionBase&) = delete;
  valueConditionBase& operator=(const valueConditionBase&) = delete;
  virtual ~valueConditionBase() {
    if (owned) delete field;
  }

  // The operand's effective value, read at each call.
  const valueType& getValue() const { return field->cV(); }
  void setValue(const valueType& value) { field->setValue(value); }
  F* getField() const { return field; }
  bool isOwned() const { return owned; }

 private:
  F* field;
  bool owned;
};

// `left` compared with each right operand in turn: true at the first that matches, so
// several right operands form a disjunction; false with none. CONDITION_ALWAYS holds
// without reading anything. Comparison is exact, also for floating-point values.
template <class F>
class condition : public condition_base {
 public:
  using valueType = typename F::valueType;

  condition(F* left, condition_type type) : condition_base(type), left(left) {}
  condition(const valueType& left, condition_type type) : condition_base(type), left(left) {}
  ~condition() override;

  bool evaluate() override;
  void addRight(valueConditionBase<F>* operand) { right.push_back(operand); }
  F* getLeftField() const { return left.getField(); }
  int getRightCount() const { return static_cast<int>(right.size()); }

 private:
  valueConditionBase<F> left;
  std::vector<valueConditionBase<F>*> right;
};

// A conjunction of comparisons over fields, kept as a lazy bool engine. Only the left
// fields are inputs of the engine: a write to one marks it dirty, and the rule is evaluated
// when somebody reads the engine (or a field that follows it). A change of a right-hand
// field alone leaves the result stale until a left field changes or setDirty is called;
// put the changing field on the left. Each recomputation notifies the engine's observers
// twice: once by the assignment of the result, once by the read that ran it. All `add`
// calls must finish before other threads read.
class engineCondition {
 public:
  engineCondition() = default;
  engineCondition(const engineCondition&) = delete;
  engineCondition& operator=(const engineCondition&) = delete;
  virtual ~engineCondition();

  // Appends `left <type> right`, where the right side is one value (copied into a field of
  // its own), one borrowed field, several values or several borrowed fields. The first add
  // makes the engine. `left` must be a live field for the life of the rule.
  template <class F>
  void add(F* left, condition_type type, const typename F::valueType& value);
  template <class F>
  void add(F* left, condition_type type, F* right);
  template <class F>
  void add(F* left, condition_type type, const std::vector<typename F::valueType>& values);
  template <class F>
  void add(F* left, condition_type type, const std::vector<F*>& rights);
  // The left side is a constant value; the rule is then re-evaluated only on setDirty.
  template <class F>
  void add(const typename F::valueType& left, condition_type type, const std::vector<F*>& rights);

  // Evaluates the conditions in order and stops at the first false: runs onFalse, assigns
  // false. With all true, or none: runs onTrue, assigns true. The delegate runs first.
  // Makes the engine when there is none yet.
  void computeEngine();
  // Deletes the engine and the conditions; the rule is then empty.
  void clear();
  // Null until the first add.
  engineBase<bool>* getEngine() { return engine; }
  int getConditionCount() const { return static_cast<int>(conditions.size()); }

  // Called at computation time, with no argument; empty at start.
  void setOnTrue(const sharedPointer<delegate>& d) { onTrue = d; }
  void setOnFalse(const sharedPointer<delegate>& d) { onFalse = d; }

 protected:
  sharedPointer<delegate> onTrue;
  sharedPointer<delegate> onFalse;

 private:
  void makeEngine();
  // Appends and registers the left field as input "FIELD_<n>", n the new count.
  void append(condition_base* c, linkerBase<dummyLinkerType>* left);

  std::vector<condition_base*> conditions;
  engineBase<bool>* engine = nullptr;
};

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/fields/engineCondition.inl"
