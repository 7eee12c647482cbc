// What the generated argument checks compute with. Integer arguments are compared as 128-bit values, so that
// a declared relation such as LDAB >= 2*KL + KU + 1 cannot overflow for any 64-bit arguments.
// Declared array lengths are computed as Extent, a 128-bit integer that saturates, so that any product of
// 64-bit arguments (LDA*N*NRHS ...) evaluates without overflow.
#pragma once

#include <cstdint>
#include <limits>
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

// A saturating integer: every result is clamped to [-kLimit, kLimit], far beyond any 64-bit value and far
// below the 128-bit range, so a sum or a product of two clamped values never overflows before the clamp.
class Extent {
 public:
  static constexpr Wide kLimit = Wide(1) << 120;

  constexpr Extent(int64_t v) : v_(v) {}  // NOLINT(google-explicit-constructor): literals in expressions
  constexpr Wide value() const { return v_; }

  friend constexpr Extent operator+(Extent a, Extent b) { return from(a.v_ + b.v_); }
  friend constexpr Extent operator-(Extent a, Extent b) { return from(a.v_ - b.v_); }
  friend constexpr Extent operator*(Extent a, Extent b) {
    Wide p = 0;
    if (__builtin_mul_overflow(a.v_, b.v_, &p)) return from((a.v_ < 0) == (b.v_ < 0) ? kLimit : -kLimit);
    return from(p);
  }
  friend constexpr Extent operator/(Extent a, Extent b) { return from(b.v_ == 0 ? 0 : a.v_ / b.v_); }
  constexpr Extent operator-() const { return from(-v_); }
  friend constexpr bool operator<(Extent a, Extent b) { return a.v_ < b.v_; }

 private:
  static constexpr Extent from(Wide w) {
    Extent e(0);
    e.v_ = w > kLimit ? kLimit : w < -kLimit ? -kLimit : w;
    return e;
  }
  Wide v_;
};

// A length as an element count: 0 when the expression is negative, at most the largest int64_t.
constexpr int64_t extent_count(Extent e) {
  const Wide v = e.value();
  return v < 0 ? 0 : v > std::numeric_limits<int64_t>::max() ? std::numeric_limits<int64_t>::max()
                                                             : static_cast<int64_t>(v);
}

}  // namespace vek::frame
