// The real Lambert W function (lambert_w.h).
#include "zeros_quad/lambert_w.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <limits>

namespace vek::zeros_quad {
namespace {

// e and 1/e as unevaluated sums hi + lo (mpmath, 50 digits).
constexpr double kE = 2.718281828459045, kELow = 1.4456468917292502e-16;
constexpr double kInvE = 0.36787944117144233, kInvELow = -1.2428753672788363e-17;

// h(t) = (t - 1) e^t + 1 = sum over k >= 2 of (k - 1) t^k / k!, as t^2 times a polynomial of degree 19: for
// |t| <= 1 the remainder is below 1e-18 relative.
constexpr int kSeriesTerms = 20;

// h(1/2) = 1 - e^(1/2)/2: for |y| below it |W + 1| < 1/2 on the branches through -1, and W is found as -1 + t
// without cancellation.
constexpr double kNearBranchPoint = 0.17563936464993593;

// Halley's iteration converges cubically: once a step is below 2^-20 of the iterate (or of 1, for w e^w with
// |w| > 1), the error left is below the rounding of the result.
constexpr double kLastStep = 0x1p-20;
constexpr std::array<double, kSeriesTerms> series_coefficients() {
  std::array<double, kSeriesTerms> c{};
  double factorial = 2.0;  // (j + 2)!
  for (int j = 0; j < kSeriesTerms; ++j) {
    c[j] = (j + 1) / factorial;
    factorial *= j + 3;
  }
  return c;
}
constexpr std::array<double, kSeriesTerms> kSeries = series_coefficients();

// a b + c, fused for reals.
double mul_add(double a, double b, double c) { return std::fma(a, b, c); }
std::complex<double> mul_add(std::complex<double> a, std::complex<double> b, std::complex<double> c) {
  return a * b + c;
}

template <class T>
T h_series(T t) {
  T s = kSeries[kSeriesTerms - 1];
  for (int j = kSeriesTerms - 2; j >= 0; --j) s = mul_add(s, t, T(kSeries[j]));
  return s * t * t;
}

// t = W + 1 from h(t) = y, on the side given by sign (+1 the branch through W > -1, -1 the other), |t| <= about
// 1; p = sign sqrt(2y) with the principal square root.
template <class T>
T solve_near_branch_point(T y, double sign) {
  const T p = sign * std::sqrt(2.0 * y);
  if (std::abs(y) < 0x1p-900) return p * (1.0 - p / 3.0);  // p^2 is far below the rounding of t; h(t) would underflow
  // W + 1 = p - p^2/3 + 11/72 p^3 - 43/540 p^4 + 769/17280 p^5 + ... (Corless et al., eq. 4.22).
  T t = p * (1.0 + p * (-1.0 / 3 + p * (11.0 / 72 + p * (-43.0 / 540 + p * (769.0 / 17280)))));
  for (int k = 0; k < 8; ++k) {
    const T h = h_series(t), f = h - y;
    const T et = (1.0 - h) / (1.0 - t);  // e^t from h itself: 1 - h = (1 - t) e^t, no cancellation for |t| < 1
    const T d1 = t * et, d2 = (t + 1.0) * et;  // h' and h''
    const T step = f / (d1 - f * d2 / (2.0 * d1));
    if (!std::isfinite(std::abs(step))) break;
    t -= step;
    if (std::abs(step) <= kLastStep * std::abs(t)) break;
  }
  return t;
}

// Halley's iteration on w e^w - z from w.
template <class T>
T halley(T z, T w, int limit) {
  for (int k = 0; k < limit; ++k) {
    const T ew = std::exp(w);
    const T f = mul_add(w, ew, -z);
    const T d1 = ew * (w + 1.0);
    const T step = f / (d1 - (w + 2.0) * f / (2.0 * (w + 1.0)));
    if (!std::isfinite(std::abs(step))) break;
    w -= step;
    // The error constant of the cubic convergence is of order 1 in absolute terms for w e^w.
    if (std::abs(step) <= kLastStep * std::min(std::abs(w), 1.0)) break;
  }
  return w;
}

// Newton's iteration on v + s ln v = l for v > 0 (s = +1: principal branch, v = w; s = -1: lower, v = -w).
double newton_log_form(double l, double s, double v) {
  for (int k = 0; k < 12; ++k) {
    const double step = (v + s * std::log(v) - l) * v / (v + s);
    v -= step;
    if (std::abs(step) <= 0x1p-52 * v) break;
  }
  return v;
}

// The principal branch away from the branch point: w > -1/2.
double principal(double z) {
  if (std::isinf(z)) return z;
  if (std::abs(z) < 0x1p-26) return z * (1 - z * (1 - 1.5 * z));  // W = z - z^2 + 3/2 z^3 - 8/3 z^4 ...
  if (z > 1e250) {  // w > 570: exp(w) near its overflow
    const double l = std::log(z), ll = std::log(l);
    return newton_log_form(l, 1.0, l - ll + ll / l);
  }
  double w;
  if (z <= 3) {  // Winitzki (2003)
    const double l = std::log1p(z);
    w = l * (1 - std::log1p(l) / (2 + l));
  } else {
    const double l = std::log(z), ll = std::log(l);
    w = l - ll + ll / l;
  }
  return halley(z, w, 12);
}

// The lower branch away from the branch point: w < -2.
double lower(double z) {
  const double l1 = std::log(-z), l2 = std::log(-l1);  // l1 < -1.3
  if (l1 < -575) return -newton_log_form(-l1, -1.0, -l1 + l2);  // exp(w) near its underflow
  return halley(z, l1 - l2 + l2 / l1, 12);
}

}  // namespace

LambertArgument lambert_argument(double x, bool offset) {
  if (offset) return {(x - kInvE) - kInvELow, std::fma(kE, x, kELow * x)};
  return {x, std::fma(kE, x, 1.0) + kELow * x};
}

ComplexLambertArgument lambert_argument(std::complex<double> x, bool offset) {
  const LambertArgument re = lambert_argument(x.real(), offset);
  const double y_im = std::fma(kE, x.imag(), kELow * x.imag());
  return {{re.z, x.imag()}, {re.y, y_im}};
}

std::complex<double> lambert_w(ComplexLambertArgument a, int64_t branch) {
  using C = std::complex<double>;
  const C z = a.z;
  constexpr double kInf = std::numeric_limits<double>::infinity();
  if (std::isnan(z.real()) || std::isnan(z.imag())) return {std::numeric_limits<double>::quiet_NaN(), 0.0};
  const double two_pi_k = 2 * std::numbers::pi * static_cast<double>(branch);
  if (z == 0.0) return branch == 0 ? z : C(-kInf, 0.0);
  if (std::isinf(std::abs(z))) return {kInf, std::arg(z) + two_pi_k};
  // The branches that meet at -1/e: W0 on both sides of the axis, W-1 from above (Im z >= +0), W1 from below.
  const bool upper = !std::signbit(z.imag());
  const bool at_branch_point = branch == 0 || (branch == -1 && upper) || (branch == 1 && !upper);
  if (at_branch_point && std::abs(a.y) <= kNearBranchPoint) {
    return -1.0 + solve_near_branch_point(a.y, branch == 0 ? 1.0 : -1.0);
  }
  C w;
  if (at_branch_point && std::abs(a.y) < 0.8) {  // |z + 1/e| < 0.3: the expansion at the branch point
    const C p = (branch == 0 ? 1.0 : -1.0) * std::sqrt(2.0 * a.y);
    w = -1.0 + p * (1.0 + p * (-1.0 / 3 + p * (11.0 / 72)));
  } else if (branch == 0 && std::abs(z) < 1.5) {  // the [2/2] Pade approximant at 0
    w = z * (6.0 + 8.0 * z) / (6.0 + z * (14.0 + 5.0 * z));
  } else {  // W = L1 - L2 + L2/L1, L1 = ln z + 2 pi i k, L2 = ln L1
    const C l1 = std::log(z) + C(0.0, two_pi_k), l2 = std::log(l1);
    w = l1 - l2 + l2 / l1;
    if (std::abs(z) > 1e250) {  // e^w near its overflow: Newton on w + ln w = L1 (principal ln, as W_k ~ L1)
      for (int k = 0; k < 12; ++k) {
        const C step = (w + std::log(w) - l1) * w / (w + 1.0);
        w -= step;
        if (std::abs(step) <= 0x1p-52 * std::abs(w)) break;
      }
      return w;
    }
  }
  return halley(z, w, 64);
}

double lambert_w(LambertArgument a, LambertBranch branch) {
  if (std::isnan(a.z) || std::isnan(a.y)) return std::numeric_limits<double>::quiet_NaN();
  const double y = a.y < 0 ? 0.0 : a.y;
  if (branch == LambertBranch::principal) {
    // h(1/2) = 1 - e^(1/2)/2: below it W + 1 < 1/2 and W is found as -1 + t without cancellation.
    return y <= kNearBranchPoint ? -1 + solve_near_branch_point(y, 1.0) : principal(a.z);
  }
  constexpr double kNearLower = 0.26424111765711533;  // h(-1) = 1 - 2/e
  if (a.z == 0) return -std::numeric_limits<double>::infinity();
  return y <= kNearLower ? -1 + solve_near_branch_point(y, -1.0) : lower(a.z);
}

}  // namespace vek::zeros_quad
