#pragma once

// Word conversions behind the delegate family; not for direct use.

#include <cassert>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

template <class T>
struct noDeduce {
  using type = T;
};

// A parameter type that fits in one argument word.
template <class T>
constexpr bool isWordParameter() {
  using U = std::remove_cv_t<T>;
  if constexpr (std::is_lvalue_reference_v<T> || std::is_pointer_v<U>) {
    return true;
  } else if constexpr (std::is_integral_v<U> || std::is_enum_v<U>) {
    return sizeof(U) <= sizeof(void*);
  } else {
    return false;
  }
}

template <class T>
void* toWord(T value) {
  using U = std::remove_cv_t<T>;
  if constexpr (std::is_pointer_v<U>) {
    return const_cast<void*>(static_cast<const volatile void*>(value));
  } else if constexpr (std::is_same_v<U, bool>) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(value ? 1 : 0));
  } else if constexpr (std::is_enum_v<U>) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(
        static_cast<std::make_unsigned_t<std::underlying_type_t<U>>>(value)));
  } else {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(std::make_unsigned_t<U>(value)));
  }
}

// A bound value for a reference parameter is kept as the referent's address.
template <class T>
void* boundWord(std::remove_reference_t<T>& value) {
  if constexpr (std::is_lvalue_reference_v<T>) {
    return const_cast<void*>(static_cast<const volatile void*>(&value));
  } else {
    return toWord<T>(value);
  }
}

template <class T>
T fromWord(void* word) {
  using U = std::remove_cv_t<T>;
  if constexpr (std::is_lvalue_reference_v<T>) {
    assert(word && "a reference parameter got a null argument");
    return *static_cast<std::remove_reference_t<T>*>(word);
  } else if constexpr (std::is_pointer_v<U>) {
    return static_cast<U>(word);
  } else if constexpr (std::is_same_v<U, bool>) {
    return reinterpret_cast<std::uintptr_t>(word) != 0;
  } else {
    return static_cast<U>(reinterpret_cast<std::uintptr_t>(word));
  }
}

// Calls a member function kept as bytes, converting each argument word back to its
// parameter type.
using memberCaller = void (*)(void* object, const void* functionBytes, void* const* arguments);

template <class C, class F, class... P, std::size_t... I>
void callWith(void* object, F function, void* const* arguments, std::index_sequence<I...>) {
  (void)arguments;  // unused when the function takes nothing
  (static_cast<C*>(object)->*function)(fromWord<P>(arguments[I])...);
}

template <class C, class F, class... P>
void callMember(void* object, const void* functionBytes, void* const* arguments) {
  F function;
  std::memcpy(&function, functionBytes, sizeof(F));
  callWith<C, F, P...>(object, function, arguments, std::index_sequence_for<P...>{});
}

template <class F>
struct memberTraits;
template <class C, class R, class... P>
struct memberTraits<R (C::*)(P...)> {
  using objectType = C;
  static constexpr int arity = sizeof...(P);
  static constexpr bool wordParameters = (isWordParameter<P>() && ... && true);
  static constexpr memberCaller caller = &callMember<C, R (C::*)(P...), P...>;
};
template <class C, class R, class... P>
struct memberTraits<R (C::*)(P...) const> {
  using objectType = const C;
  static constexpr int arity = sizeof...(P);
  static constexpr bool wordParameters = (isWordParameter<P>() && ... && true);
  static constexpr memberCaller caller = &callMember<const C, R (C::*)(P...) const, P...>;
};

}  // namespace INTERNAL

}  // namespace SYSTEM
}  // namespace JEV
