// Complex arithmetic on separate real and imaginary parts, free of overflow and underflow in intermediate
// results wherever the exact result is representable. The order of operations is fixed (and the build
// forbids contraction into fused multiply-adds), so every result is reproducible bit for bit.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace vek::util {

struct Complex {
  double re;
  double im;
};

namespace detail {

// The double nearest 1/sqrt(2).
constexpr double kRootHalf = 0.7071067811865476;

// Scaling thresholds of the quotient: BIG just below 2^1020 (so that the sums of Smith's method cannot
// overflow), SMALL = 2^-968 (so that their products keep full precision); the factors are powers of two.
constexpr double kBig = std::bit_cast<double>(UINT64_C(0x7F9FFFFFFFFFFFFF));
constexpr double kSmall = 0x1p-968;
constexpr double kUp = 0x1p106;
constexpr double kDown = 0x1p-106;
constexpr double kSixteenth = 0x1p-4;

// max(a, b) as a comparison (std::fmax is a library call unless NaNs are ruled out); a NaN operand leaves
// the scaling to the other one, and the NaN then propagates through the quotient.
inline double larger(double a, double b) { return a >= b || b != b ? a : b; }

}  // namespace detail

// |x + i y| as a sqrt(1 + (b/a)^2), a = max(|x|, |y|) (|x| on a tie), b = min; exactly a when b = 0.
inline double complex_abs(double x, double y) {
  const double ax = std::fabs(x);
  const double ay = std::fabs(y);
  // Written so that a NaN part makes b NaN and the result NaN.
  const double a = ax >= ay ? ax : ay;
  const double b = ax >= ay ? ay : ax;
  if (b == 0.0) return a;
  const double r = b / a;
  return a * std::sqrt(1.0 + r * r);
}

// The principal square root (real part >= 0; on the cut, a zero imaginary part of either sign gives the
// root in the upper half-plane and carries the zero's sign into the real part).
inline Complex complex_sqrt(double x, double y) {
  const double ax = std::fabs(x);
  double s;
  if (ax > 1.0) {
    const double half = ax / 2.0;
    s = std::sqrt(half + complex_abs(half, y / 2.0));
  } else {
    s = std::sqrt(ax + complex_abs(ax, y)) * detail::kRootHalf;
  }
  const double q = y != 0.0 ? y / (2.0 * s) : y;
  if (x >= 0.0) return {s, q};  // -0 included
  if (q >= 0.0) return {q, s};
  return {-q, -s};  // q negative or NaN
}

// (xr + i xi) / (yr + i yi) by Smith's method on operands scaled by powers of two into a safe range. A zero
// denominator divides by zero (infinite or NaN parts); no check is made.
inline Complex complex_divide(double xr, double xi, double yr, double yi) {
  double f = 1.0;
  double m = detail::larger(std::fabs(xr), std::fabs(xi));
  if (m > detail::kBig) {
    xr *= detail::kSixteenth;
    xi *= detail::kSixteenth;
    f = 16.0;
  } else if (m < detail::kSmall) {
    xr *= detail::kUp;
    xi *= detail::kUp;
    f = detail::kDown;
  }
  m = detail::larger(std::fabs(yr), std::fabs(yi));
  if (m > detail::kBig) {
    yr *= detail::kSixteenth;
    yi *= detail::kSixteenth;
    f *= detail::kSixteenth;
  } else if (m < detail::kSmall) {
    yr *= detail::kUp;
    yi *= detail::kUp;
    f *= detail::kUp;
  }
  double d, p, q;
  if (std::fabs(yr) > std::fabs(yi)) {
    const double r = yi / yr;
    d = yr + yi * r;
    p = xr + xi * r;
    q = xi - xr * r;
  } else {
    const double r = yr / yi;
    d = yi + yr * r;
    p = xr * r + xi;
    q = xi * r - xr;
  }
  const double e = 1.0 / d;
  return {(p * e) * f, (q * e) * f};
}

}  // namespace vek::util
