#pragma once

namespace JEV {
namespace SYSTEM {

template <class F>
condition<F>::~condition() {
  for (auto* operand : right) delete operand;
}

template <class F>
bool condition<F>::evaluate() {
  if (type == CONDITION_ALWAYS) return true;
  for (const auto* operand : right) {
    // Both sides are read again for each operand, so a concurrent change is seen.
    const valueType& l = left.getValue();
    const valueType& r = operand->getValue();
    bool holds = false;
    switch (type) {
      case CONDITION_EQUAL:
        holds = l == r;
        break;
      case CONDITION_NOT_EQUAL:
        holds = l != r;
        break;
      case CONDITION_LESS:
        holds = l < r;
        break;
      case CONDITION_LESS_EQUAL:
        holds = l <= r;
        break;
      case CONDITION_GREATER:
        holds = l > r;
        break;
      case CONDITION_GREATER_EQUAL:
        holds = l >= r;
        break;
      default:
        return false;
    }
    if (holds) return true;
  }
  return false;
}

template <class F>
void engineCondition::add(F* left, condition_type type, const typename F::valueType& value) {
  auto* c = new condition<F>(left, type);
  c->addRight(new valueConditionBase<F>(value));
  append(c, left);
}

template <class F>
void engineCondition::add(F* left, condition_type type, F* right) {
  auto* c = new condition<F>(left, type);
  c->addRight(new valueConditionBase<F>(right));
  append(c, left);
}

template <class F>
void engineCondition::add(F* left, condition_type type,
                          const std::vector<typename F::valueType>& values) {
  auto* c = new condition<F>(left, type);
  for (const auto& v : values) c->addRight(new valueConditionBase<F>(v));
  append(c, left);
}

template <class F>
void engineCondition::add(F* left, condition_type type, const std::vector<F*>& rights) {
  auto* c = new condition<F>(left, type);
  for (F* r : rights) c->addRight(new valueConditionBase<F>(r));
  append(c, left);
}

template <class F>
void engineCondition::add(const typename F::valueType& left, condition_type type,
                          const std::vector<F*>& rights) {
  auto* c = new condition<F>(left, type);
  for (F* r : rights) c->addRight(new valueConditionBase<F>(r));
  append(c, c->getLeftField());
}

}  // namespace SYSTEM
}  // namespace JEV
