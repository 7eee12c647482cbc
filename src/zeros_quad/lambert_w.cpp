// The real Lambert W function (lambert_w.h).
#include "zeros_quad/lambert_w.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vek::zeros_quad {
namespace {

// e and 1/e as unevaluated sums hi + lo (mpmath, 50 digits).
constexpr double kE = 2.718281828459045, kELow = 1.4456468917292502e-16;
constexpr double kInvE = 0.36787944117144233, kInvELow = -1.2428753672788363e-17;

// h(t) = (t - 1) e^t + 1 = sum over k >= 2 of (k - 1) t^k / k!, as t^2 times a polynomial of degree 19: for
// |t| <= 1 the remainder is below 1e-18 relative.
constexpr int kSeriesTerms = 20;

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

double h_series(double t) {
  double s = kSeries[kSeriesTerms - 1];
  for (int j = kSeriesTerms - 2; j >= 0; --j) s = std::fma(s, t, kSeries[j]);
  return s * t * t;
}

// t = W + 1 from h(t) = y, on the side given by sign (+1 principal, -1 lower), |t| <= about 1.
double solve_near_branch_point(double y, double sign) {
  const double p = sign * std::sqrt(2 * y);
  // W + 1 = p - p^2/3 + 11/72 p^3 - 43/540 p^4 + 769/17280 p^5 + ... (Corless et al., eq. 4.22).
  double t = p * (1 + p * (-1.0 / 3 + p * (11.0 / 72 + p * (-43.0 / 540 + p * (769.0 / 17280)))));
  if (y < 0x1p-900) return p * (1 - p / 3);  // p^2 is far below the rounding of t; h(t) would lose to underflow
  for (int k = 0; k < 8; ++k) {
    const double h = h_series(t), f = h - y;
    const double et = (1 - h) / (1 - t);  // e^t from h itself: 1 - h = (1 - t) e^t, no cancellation for t < 1
    const double d1 = t * et, d2 = (t + 1) * et;  // h' and h''
    const double step = f / (d1 - f * d2 / (2 * d1));
    if (!std::isfinite(step)) break;
    t -= step;
    if (std::abs(step) <= kLastStep * std::abs(t)) break;
  }
  return t;
}

// Halley's iteration on w e^w - z from w.
double halley(double z, double w) {
  for (int k = 0; k < 12; ++k) {
    const double ew = std::exp(w);
    const double f = std::fma(w, ew, -z);
    const double d1 = ew * (w + 1);
    const double step = f / (d1 - (w + 2) * f / (2 * (w + 1)));
    if (!std::isfinite(step)) break;
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
  return halley(z, w);
}

// The lower branch away from the branch point: w < -2.
double lower(double z) {
  const double l1 = std::log(-z), l2 = std::log(-l1);  // l1 < -1.3
  if (l1 < -575) return -newton_log_form(-l1, -1.0, -l1 + l2);  // exp(w) near its underflow
  return halley(z, l1 - l2 + l2 / l1);
}

}  // namespace

LambertArgument lambert_argument(double x, bool offset) {
  if (offset) return {(x - kInvE) - kInvELow, std::fma(kE, x, kELow * x)};
  return {x, std::fma(kE, x, 1.0) + kELow * x};
}

double lambert_w(LambertArgument a, LambertBranch branch) {
  if (std::isnan(a.z) || std::isnan(a.y)) return std::numeric_limits<double>::quiet_NaN();
  const double y = a.y < 0 ? 0.0 : a.y;
  if (branch == LambertBranch::principal) {
    // h(1/2) = 1 - e^(1/2)/2: below it W + 1 < 1/2 and W is found as -1 + t without cancellation.
    constexpr double kNearPrincipal = 0.17563936464993593;
    return y <= kNearPrincipal ? -1 + solve_near_branch_point(y, 1.0) : principal(a.z);
  }
  constexpr double kNearLower = 0.26424111765711533;  // h(-1) = 1 - 2/e
  if (a.z == 0) return -std::numeric_limits<double>::infinity();
  return y <= kNearLower ? -1 + solve_near_branch_point(y, -1.0) : lower(a.z);
}

}  // namespace vek::zeros_quad
