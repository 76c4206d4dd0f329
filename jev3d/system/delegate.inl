#pragma once

#include <cstring>
#include <type_traits>

namespace JEV {
namespace SYSTEM {

template <class O, class F>
void delegate::bind(O* target, F member) {
  using traits = INTERNAL::memberTraits<F>;
  static_assert(
      std::is_base_of_v<std::remove_cv_t<typename traits::objectType>, std::remove_cv_t<O>>,
      "the object must be of the function's class");
  static_assert(traits::arity <= MAX_ARITY, "a delegate binds at most five parameters");
  static_assert(traits::wordParameters,
                "delegate parameters are pointers, references, integers, bools or enums");
  static_assert(sizeof(F) <= sizeof(memberWord::bytes), "member function pointer too wide");
  // Converted to the function's class first, so a base-class member sees its subobject.
  typename traits::objectType* self = target;
  object = const_cast<void*>(static_cast<const volatile void*>(self));
  std::memset(function.bytes, 0, sizeof(function.bytes));
  std::memcpy(function.bytes, &member, sizeof(F));
  call = traits::caller;
  arity = traits::arity;
}

template <class O, class C, class R, class... P>
delegate::delegate(O* target, R (C::*member)(P...)) {
  bind(target, member);
}

template <class O, class C, class R, class... P>
delegate::delegate(O* target, R (C::*member)(P...) const) {
  bind(target, member);
}

template <class O, class C, class R, class P1>
delegate1::delegate1(O* target, R (C::*member)(P1), typename INTERNAL::noDeduce<P1>::type bound1) {
  bind(target, member);
  setBound(1, INTERNAL::boundWord<P1>(bound1), nullptr);
}

template <class O, class C, class R, class P1>
delegate1::delegate1(O* target, R (C::*member)(P1) const,
                     typename INTERNAL::noDeduce<P1>::type bound1) {
  bind(target, member);
  setBound(1, INTERNAL::boundWord<P1>(bound1), nullptr);
}

template <class O, class C, class R, class P1, class P2>
delegate2::delegate2(O* target, R (C::*member)(P1, P2),
                     typename INTERNAL::noDeduce<P1>::type bound1,
                     typename INTERNAL::noDeduce<P2>::type bound2) {
  bind(target, member);
  setBound(2, INTERNAL::boundWord<P1>(bound1), INTERNAL::boundWord<P2>(bound2));
}

template <class O, class C, class R, class P1, class P2>
delegate2::delegate2(O* target, R (C::*member)(P1, P2) const,
                     typename INTERNAL::noDeduce<P1>::type bound1,
                     typename INTERNAL::noDeduce<P2>::type bound2) {
  bind(target, member);
  setBound(2, INTERNAL::boundWord<P1>(bound1), INTERNAL::boundWord<P2>(bound2));
}

template <class O, class F>
sharedPointer<delegate> makeDelegate(O* object, F function) {
  return sharedPointer<delegate>(new delegate(object, function));
}

template <class O, class F, class B1>
sharedPointer<delegate> makeDelegate1(O* object, F function, B1 bound1) {
  return sharedPointer<delegate>(new delegate1(object, function, bound1));
}

template <class O, class F, class B1, class B2>
sharedPointer<delegate> makeDelegate2(O* object, F function, B1 bound1, B2 bound2) {
  return sharedPointer<delegate>(new delegate2(object, function, bound1, bound2));
}

}  // namespace SYSTEM
}  // namespace JEV
