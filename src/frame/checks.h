// What the generated argument checks compute with. Integer arguments are compared as 128-bit values, so that
// a declared relation such as LDAB >= 2*KL + KU + 1 cannot overflow for any 64-bit arguments.
#pragma once

#include <cstdint>
#include <type_traits>

namespace vek::frame {

using Wide = __int128;

constexpr Wide wide(int64_t v) { return v; }

template <class A, class B>
constexpr auto check_max(A a, B b) {
  using C = std::common_type_t<A, B>;
  return static_cast<C>(a) < static_cast<C>(b) ? static_cast<C>(b) : static_cast<C>(a);
}

template <class A, class B>
constexpr auto check_min(A a, B b) {
  using C = std::common_type_t<A, B>;
  return static_cast<C>(b) < static_cast<C>(a) ? static_cast<C>(b) : static_cast<C>(a);
}

// True when no value is NaN: a check naming a real argument fails for a NaN whatever its relation.
template <class... T>
constexpr bool not_nan(T... v) {
  return ((v == v) && ...);
}

template <class A>
constexpr A check_abs(A a) {
  return a < 0 ? -a : a;
}

}  // namespace vek::frame
