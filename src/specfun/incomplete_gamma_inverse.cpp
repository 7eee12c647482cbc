// Inverse of the regularised incomplete gamma functions: x with P(a, x) = p (equivalently Q(a, x) = q).
//
// Start: for a > 1 the Wilson-Hilferty approximation x = a (1 - 1/(9a) + z / (3 sqrt a))^3, z the normal
// quantile of p, unless the lower tail's x = (p Gamma(a + 1))^(1/a) (from P ~ x^a / Gamma(a + 1)) is below
// a/3; for a <= 1 the inversion of P ~ x^a / Gamma(a + 1) below t = 1 - a (0.253 + 0.12 a) and of Q ~ e^-x
// above. Refinement: Newton's iteration on ln T(x) - ln t, T the smaller tail (P or Q) and t its target,
// which is well scaled however small t is: ln T is formed from the logarithm of the prefix and of the series or
// fraction (in long double), so it stays finite where T itself underflows, as in the far tails (t down to the
// smallest subnormal). ln P and ln Q are concave in x for a >= 1, so the iteration approaches the root
// monotonically from any start; a step that would leave x > 0 halves x instead. Should P, Q fail to
// converge (a beyond about 1e11), the current x is returned.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr int kMaxIterations = 100;

double starting_point(double a, double p, double q) {
  const bool lower = p <= q;
  const double small_x = std::exp((std::log(p) + lgamma1p(a)) / a);
  if (a > 1.0) {
    if (lower && small_x < a / 3.0) return small_x;
    const double z = lower ? -std::numbers::sqrt2 * erfc_inv(2.0 * p) : std::numbers::sqrt2 * erfc_inv(2.0 * q);
    const double w = 1.0 - 1.0 / (9.0 * a) + z / (3.0 * std::sqrt(a));
    return w > 0.0 ? a * w * w * w : small_x;
  }
  const double t = 1.0 - a * (0.253 + 0.12 * a);
  if (p < t) return std::exp(std::log(p / t) / a);
  return 1.0 - std::log(q / (1.0 - t));
}

}  // namespace

double gamma_pq_inv(double a, double p, double q) {
  if (!(a > 0.0) || !(p >= 0.0 && p <= 1.0) || !(q >= 0.0 && q <= 1.0))
    return std::numeric_limits<double>::quiet_NaN();
  if (p == 0.0) return 0.0;
  if (q == 0.0 || std::isinf(a)) return HUGE_VAL;
  const bool lower = p <= q;
  const long double log_target = std::log(static_cast<long double>(lower ? p : q));
  double x = starting_point(a, p, q);
  if (!(x > 0.0)) return 0.0;  // the start underflows only where the quantile itself does
  x = std::min(x, std::numeric_limits<double>::max());
  for (int i = 0; i < kMaxIterations; ++i) {
    const GammaTailLog t = gamma_tail_log(a, x, lower);
    if (!t.converged || !(t.slope != 0.0) || std::isinf(t.slope)) break;
    const double residual = static_cast<double>(t.log_tail - log_target);
    double next = x - residual / t.slope;
    if (!(next > 0.0)) next = 0.5 * x;
    if (!(next < std::numeric_limits<double>::max())) next = 2.0 * x;
    const bool done = std::fabs(next - x) <= 4.0 * vek::constants::eps() * next;
    x = next;
    if (done) break;
  }
  return x;
}

}  // namespace vek::specfun
