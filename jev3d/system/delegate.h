#pragma once

#include <cstdint>

#include "jev3d/system/delegateWords.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

// The system's callback: a member function bound to an object, with up to two bound
// values. Arguments travel as words (`void*`): a bound function may declare each
// parameter as a pointer, an lvalue reference (the word is the referent's address), or an
// integer, bool or enum no wider than a pointer. Call-time arguments fill the parameters
// from the first; parameters left over take the bound values at their positions; extra
// call-time arguments are dropped. An empty delegate (no object) does nothing on any call.
//
//   delegate d(&widget, &myWidget::onChange);        // d.invoke() -> widget.onChange()
//   delegate2 k(&ctx, &ctx::onKey, &key, &latch);    // k.invoke() -> ctx.onKey(&key, &latch)
//                                                    // k.invoke(p) -> ctx.onKey(p, &latch)
class delegate {
 public:
  // The empty delegate.
  delegate() = default;
  // Binds `function` of `object` (any class derived from the function's class).
  template <class O, class C, class R, class... P>
  delegate(O* object, R (C::*function)(P...));
  template <class O, class C, class R, class... P>
  delegate(O* object, R (C::*function)(P...) const);
  virtual ~delegate() = default;
  delegate(const delegate&) = default;
  delegate& operator=(const delegate&) = default;

  // Makes this delegate empty.
  virtual void reset();
  // True when both bind the same object and function with the same bound values; two
  // empty delegates are equal. Unregistering relies on this.
  virtual bool equals(const delegate& other) const;

  // The call forms, for zero to five call-time arguments. A call that leaves a parameter
  // with neither an argument nor a bound value does nothing (and asserts in debug builds).
  virtual void invoke() const;
  virtual void invoke(void* a1) const;
  virtual void invoke(void* a1, void* a2) const;
  virtual void invoke(void* a1, void* a2, void* a3) const;
  virtual void invoke(void* a1, void* a2, void* a3, void* a4) const;
  virtual void invoke(void* a1, void* a2, void* a3, void* a4, void* a5) const;

  bool isEmpty() const { return object == nullptr; }
  void* getObject() const { return object; }
  // Number of values bound at construction: 0 here, 1 in delegate1, 2 in delegate2.
  uint32_t getBoundCount() const { return boundCount; }
  // Number of parameters of the bound function.
  uint32_t getArity() const { return arity; }

 protected:
  static constexpr int MAX_ARITY = 5;
  static constexpr int MAX_BOUND = 2;

  // A member function pointer kept as bytes, so one delegate type holds any signature.
  struct memberWord {
    alignas(void*) unsigned char bytes[2 * sizeof(void*)];
  };

  // Used by the derived forms: bind and store the bound values (count of them given).
  template <class O, class F>
  void bind(O* object, F function);
  void setBound(uint32_t count, void* bound1, void* bound2);

  // Calls with `count` call-time arguments, completed by the bound values.
  void dispatch(void* const* arguments, int count) const;

 private:
  void* object = nullptr;
  memberWord function{};
  INTERNAL::memberCaller call = nullptr;
  uint32_t arity = 0;
  uint32_t boundCount = 0;
  void* bound[MAX_BOUND] = {nullptr, nullptr};
};

// One bound value: invoke() calls function(bound1), invoke(a) calls function(a).
class delegate1 : public delegate {
 public:
  delegate1() = default;
  template <class O, class C, class R, class P1>
  delegate1(O* object, R (C::*function)(P1), typename INTERNAL::noDeduce<P1>::type bound1);
  template <class O, class C, class R, class P1>
  delegate1(O* object, R (C::*function)(P1) const, typename INTERNAL::noDeduce<P1>::type bound1);
};

// Two bound values: invoke() calls function(bound1, bound2), invoke(a) calls
// function(a, bound2), invoke(a, b) calls function(a, b).
class delegate2 : public delegate {
 public:
  delegate2() = default;
  template <class O, class C, class R, class P1, class P2>
  delegate2(O* object, R (C::*function)(P1, P2), typename INTERNAL::noDeduce<P1>::type bound1,
            typename INTERNAL::noDeduce<P2>::type bound2);
  template <class O, class C, class R, class P1, class P2>
  delegate2(O* object, R (C::*function)(P1, P2) const, typename INTERNAL::noDeduce<P1>::type bound1,
            typename INTERNAL::noDeduce<P2>::type bound2);
};

// Shorthands for the usual holder of a delegate.
template <class O, class F>
sharedPointer<delegate> makeDelegate(O* object, F function);
template <class O, class F, class B1>
sharedPointer<delegate> makeDelegate1(O* object, F function, B1 bound1);
template <class O, class F, class B1, class B2>
sharedPointer<delegate> makeDelegate2(O* object, F function, B1 bound1, B2 bound2);

// True when both hold delegates that are equal, or both are null.
bool sameDelegate(const sharedPointer<delegate>& a, const sharedPointer<delegate>& b);

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/system/delegate.inl"
