// Inverses of erf and erfc.
//
// Start: Winitzki's closed form x0 = sqrt(sqrt(u^2 - t/a) - u), u = 2/(pi a) + t/2, t = ln(1 - y^2),
// a = 0.147 (relative error below 2e-3), with t = ln q + ln(2 - q) for erfc(x) = q so that tiny q lose nothing.
// Refinement: for |y| <= 1/2 Halley's iteration on erf(x) - y; for q < 1/2 Newton's iteration on
// ln erfcx(x) - x^2 - ln q, which has no underflow even for subnormal q and converges quadratically from x0.
// Symmetries: erfc_inv(q) = -erfc_inv(2 - q), erf_inv(y) = erfc_inv(1 - y) for y > 1/2 (1 - y exact).
#include <cmath>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kHalfSqrtPi = 0.88622692545275801365;  // 1 / erf'(0)
constexpr double kTinyArgument = 1e-8;                   // erf_inv(y) = y sqrt(pi)/2 (1 + pi y^2/12 + ...)

double winitzki(double t) {
  constexpr double a = 0.147;
  const double u = 2.0 / (std::numbers::pi * a) + 0.5 * t;
  return std::sqrt(std::sqrt(u * u - t / a) - u);
}

// erf(x) = y for 0 <= y <= 1/2.
double erf_inv_central(double y) {
  if (y < kTinyArgument) return kHalfSqrtPi * y;
  double x = winitzki(std::log1p(-y * y));
  for (int i = 0; i < 4; ++i) {
    const double s = (erf(x) - y) * kHalfSqrtPi * std::exp(x * x);
    x -= s / (1.0 + x * s);
    if (std::fabs(s) <= 1e-17 * x) break;
  }
  return x;
}

// erfc(x) = q for 0 < q < 1/2.
double erfc_inv_tail(double q) {
  const double log_q = std::log(q);
  double x = winitzki(log_q + std::log(2.0 - q));
  for (int i = 0; i < 8; ++i) {
    const double s = x * x;
    const double h = std::log(erfcx(x)) - s - std::fma(x, x, -s) - log_q;
    const double step = h * erfcx(x) * kHalfSqrtPi;
    x += step;
    if (std::fabs(step) <= 1e-17 * x) break;
  }
  return x;
}

}  // namespace

double erfc_inv(double q) {
  if (!(q >= 0.0 && q <= 2.0)) return std::numeric_limits<double>::quiet_NaN();
  if (q == 0.0) return HUGE_VAL;
  if (q == 2.0) return -HUGE_VAL;
  if (q > 1.0) return -erfc_inv(2.0 - q);
  if (q >= 0.5) return erf_inv_central(1.0 - q);
  return erfc_inv_tail(q);
}

double erf_inv(double y) {
  if (!(std::fabs(y) <= 1.0)) return std::numeric_limits<double>::quiet_NaN();
  const double a = std::fabs(y);
  const double x = a <= 0.5 ? erf_inv_central(a) : erfc_inv(1.0 - a);
  return y < 0.0 ? -x : x;
}

}  // namespace vek::specfun
