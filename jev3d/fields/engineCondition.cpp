#include "jev3d/fields/engineCondition.h"

#include <string>

namespace JEV {
namespace SYSTEM {

namespace INTERNAL {

engineCondition* makeCondition() { return new engineCondition(); }

void deleteCondition(engineCondition* condition) { delete condition; }

linkerBase<dummyLinkerType>* conditionEngine(engineCondition* condition) {
  return condition ? condition->getEngine() : nullptr;
}

}  // namespace INTERNAL

engineCondition::~engineCondition() { clear(); }

void engineCondition::computeEngine() {
  makeEngine();
  for (condition_base* c : conditions) {
    if (!c->evaluate()) {
      if (!onFalse.isNull()) onFalse->invoke();
      engine->setValue(false);
      return;
    }
  }
  if (!onTrue.isNull()) onTrue->invoke();
  engine->setValue(true);
}

void engineCondition::clear() {
  // The engine goes first: it stops observing the left fields, some of which the
  // conditions own.
  delete engine;
  engine = nullptr;
  for (condition_base* c : conditions) delete c;
  conditions.clear();
}

void engineCondition::makeEngine() {
  if (engine) return;
  engine = new engineBase<bool>();
  engine->setComputeDelegate(makeDelegate(this, &engineCondition::computeEngine));
}

void engineCondition::append(condition_base* c, linkerBase<dummyLinkerType>* left) {
  makeEngine();
  conditions.push_back(c);
  engine->addEntry(L"FIELD_" + std::to_wstring(conditions.size()), left);
}

}  // namespace SYSTEM
}  // namespace JEV

namespace JEV {
namespace SYSTEM {

namespace {
template <class T>
using plainField = fieldBase<T, dummyLinkerType, linkerBase>;
template <class T>
using lockedField = fieldBase<T, dummyLinkerType, mtLinker>;
}  // namespace

// The whole add family for each value type of a rule, over both linker kinds.
#define JEV3D_CONDITION_ADD(F)                                                                 \
  template class valueConditionBase<F>;                                                        \
  template class condition<F>;                                                                 \
  template void engineCondition::add<F>(F*, condition_type, const F::valueType&);              \
  template void engineCondition::add<F>(F*, condition_type, F*);                               \
  template void engineCondition::add<F>(F*, condition_type, const std::vector<F::valueType>&); \
  template void engineCondition::add<F>(F*, condition_type, const std::vector<F*>&);           \
  template void engineCondition::add<F>(const F::valueType&, condition_type,                   \
                                        const std::vector<F*>&);
#define JEV3D_CONDITION_BOTH_KINDS(T) \
  JEV3D_CONDITION_ADD(plainField<T>)  \
  JEV3D_CONDITION_ADD(lockedField<T>)

JEV3D_CONDITION_BOTH_KINDS(char)
JEV3D_CONDITION_BOTH_KINDS(unsigned char)
JEV3D_CONDITION_BOTH_KINDS(short)
JEV3D_CONDITION_BOTH_KINDS(unsigned short)
JEV3D_CONDITION_BOTH_KINDS(int)
JEV3D_CONDITION_BOTH_KINDS(unsigned int)
JEV3D_CONDITION_BOTH_KINDS(unsigned long)
JEV3D_CONDITION_BOTH_KINDS(float)
JEV3D_CONDITION_BOTH_KINDS(double)
JEV3D_CONDITION_BOTH_KINDS(bool)

#undef JEV3D_CONDITION_BOTH_KINDS
#undef JEV3D_CONDITION_ADD

}  // namespace SYSTEM
}  // namespace JEV
