// Logarithms of the incomplete beta function and its complement, finite far beyond the underflow of either.
//
// The smaller of I and 1 - I is taken through its logarithm, the larger as log1p of minus the smaller. While
// the smaller is at least kDirectFloor it is the kernel's value (relative accuracy carries over to the
// logarithm, improved by the factor 1/|ln I|). Below, it is formed in logarithms from the same pieces the
// kernel multiplies: near the mean of two large parameters Temme's expansion, whose factor e^-f is kept as the
// exponent f; elsewhere the continued fraction h and the power terms ln(x^a y^b / (a B(a, b))), formed in long
// double. Far below the mean the fraction converges in a few terms, also where the kernel itself takes the
// expansion for one parameter far larger than the other (whose accuracy matters near the mean).
#include <cmath>
#include <limits>

#include "specfun/incomplete_beta_asymptotic.h"
#include "specfun/incomplete_beta_parts.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

// Tails at least this are taken from the kernel's value.
constexpr double kDirectFloor = 1e-290;

// ln I_x(a, b) where I_x(a, b) is the small side (below kDirectFloor), or ln(value) if neither expansion
// applies (a fraction that did not converge, or x beyond the fraction's point).
long double log_small_side(double a, double b, double x, double y, double value) {
  if (std::min(a, b) >= kAsymptoticMin) {
    const long double lambda = beta_inc_lambda(a, b, x, y);
    if (lambda >= 0.0L && lambda <= kAsymptoticWidth * std::min(a, b)) return beta_inc_asymptotic_log(a, b, lambda);
  }
  if (x < (a + 1.0) / (a + b + 2.0)) {
    bool converged = false;
    const long double h = beta_inc_fraction(a, b, x, y, converged);
    if (converged && h > 0.0L) return beta_inc_log_prefix(a, b, x, y) + std::log(h);
  }
  return std::log(static_cast<long double>(value));
}

}  // namespace

BetaIncLog beta_inc_log(double a, double b, double x) {
  const BetaInc r = beta_inc_pair(a, b, x);
  if (std::isnan(r.w) || std::isnan(r.w1)) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan, nan, nan};
  }
  const bool lower_small = r.w <= r.w1;
  const double small = lower_small ? r.w : r.w1;
  const double y = 1.0 - x;
  const bool interior = x > 0.0 && x < 1.0 && std::isfinite(a) && std::isfinite(b);
  long double log_small;
  if (small >= kDirectFloor || !interior || !r.converged) {
    log_small = std::log(static_cast<long double>(small));
  } else {
    log_small = lower_small ? log_small_side(a, b, x, y, small) : log_small_side(b, a, y, x, small);
  }
  // ln(1 - s) = log1p(-s); once s is below the normal range its own value has lost digits, e^(ln s) has not.
  const double log_large = small >= 0x1p-1000 ? std::log1p(-small) : static_cast<double>(-std::exp(log_small));
  const double ls = static_cast<double>(log_small);
  return lower_small ? BetaIncLog{ls, log_large, r.w, r.w1} : BetaIncLog{log_large, ls, r.w, r.w1};
}

}  // namespace vek::specfun
