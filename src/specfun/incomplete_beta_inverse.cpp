// Inverse of the regularised incomplete beta function: x with I_x(a, b) = p (equivalently 1 - I_x = q).
//
// The smaller tail is solved for its own variable: I_x(a, b) = p for x when p <= q, else I_y(b, a) = q for
// y = 1 - x, so the returned pair keeps full relative accuracy in whichever of x, y is small.
// Start (Abramowitz & Stegun 26.5.22, as in Cran, Martin & Thomas's AS 109): for a, b >= 1 the normal
// quantile z of the target gives w = z sqrt(h + l)/h - (1/(2b-1) - 1/(2a-1)) (l + 5/6 - 2/(3h)),
// h = 2 / (1/(2a-1) + 1/(2b-1)), l = (z^2 - 3)/6, x = a / (a + b e^(2w)); otherwise, or where that start
// leaves (0, 1), the inversion of the end behaviour I ~ x^a / (a B) in logarithms. Refinement: Newton's
// iteration on ln I - ln target, halving toward 0 or 1 whenever a step would leave (0, 1), moving toward 1
// while I underflows (x far too small), and stopping when the residual has failed to shrink five times (as for
// subnormal a or b, where the distribution is a point mass to working precision).
#include <cmath>
#include <limits>
#include <numbers>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr int kMaxIterations = 100;
constexpr int kMaxStalls = 5;  // steps that did not shrink the residual, for degenerate parameters

double starting_point(double a, double b, double t) {
  const double from_end = std::exp((std::log(t) + std::log(a) + lbeta(a, b)) / a);
  if (a >= 1.0 && b >= 1.0) {
    const double z = -std::numbers::sqrt2 * erfc_inv(2.0 * t);
    const double l = (z * z - 3.0) / 6.0;
    const double s = 1.0 / (2.0 * a - 1.0), u = 1.0 / (2.0 * b - 1.0);
    const double h = 2.0 / (s + u);
    const double w = z * std::sqrt(h + l) / h - (u - s) * (l + 5.0 / 6.0 - 2.0 / (3.0 * h));
    const double x = a / (a + b * std::exp(2.0 * w));
    return x > 0.0 && x < 1.0 ? x : from_end;
  }
  const double log_a = std::log(a / (a + b)), log_b = std::log(b / (a + b));
  const double ta = std::exp(a * log_a) / a, tb = std::exp(b * log_b) / b;
  const double total = ta + tb;
  if (t < ta / total) return from_end;
  return 1.0 - std::pow(b * total * (1.0 - t), 1.0 / b);
}

// The x with I_x(a, b) = t, t <= 1/2.
double solve_lower(double a, double b, double t) {
  const double log_t = std::log(t);
  double x = starting_point(a, b, t);
  if (!(x > 0.0 && x < 1.0)) x = 0.5;
  double best_residual = HUGE_VAL;
  int stalls = 0;
  for (int i = 0; i < kMaxIterations && stalls < kMaxStalls; ++i) {
    const BetaInc r = beta_inc_pair(a, b, x);
    if (r.w == 0.0) {
      x = 0.5 * (1.0 + x);
      continue;
    }
    const double density = beta_inc_derivative(a, b, x);
    if (!r.converged || !(r.w > 0.0) || !(density > 0.0) || std::isinf(density)) break;
    const double residual = std::log(r.w) - log_t;
    if (std::fabs(residual) < best_residual) best_residual = std::fabs(residual);
    else ++stalls;
    double next = x - residual * r.w / density;
    if (!(next > 0.0)) next = 0.5 * x;
    if (!(next < 1.0)) next = 0.5 * (1.0 + x);
    const bool done = std::fabs(next - x) <= 4.0 * vek::constants::eps() * next;
    x = next;
    if (done) break;
  }
  return x;
}

}  // namespace

BetaIncInverse beta_inc_inv(double a, double b, double p, double q) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  if (!(a > 0.0) || !(b > 0.0) || std::isinf(a) || std::isinf(b) || !(p >= 0.0 && p <= 1.0) ||
      !(q >= 0.0 && q <= 1.0))
    return {nan, nan};
  if (p == 0.0) return {0.0, 1.0};
  if (q == 0.0) return {1.0, 0.0};
  if (p <= q) {
    const double x = solve_lower(a, b, p);
    return {x, 1.0 - x};
  }
  const double y = solve_lower(b, a, q);
  return {1.0 - y, y};
}

}  // namespace vek::specfun
