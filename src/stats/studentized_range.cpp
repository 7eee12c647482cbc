// The range W of k standard normals has (Hartley; Copenhaver and Holland, J. Statist. Comput. Simul. 30, 1988)
//   P(W <= w) = k int phi(z) A(z)^(k-1) dz,  A(z) = Phi(z) - Phi(z - w) = P(z - w <= Z <= z),
// and, since k int phi Phi^(k-1) = 1,
//   P(W > w) = k int phi(z) Phi(z)^(k-1) (1 - (1 - B(z)/Phi(z))^(k-1)) dz,  B(z) = Phi(z - w),
// both with positive integrands, so each tail keeps its relative accuracy. The Studentized range is
// Q = W / S with nu S^2 chi-square on nu degrees of freedom: P(Q <= q) = int f_S(s) P(W <= q s) ds, taken in
// t = ln s about the peak of the whole integrand. Every integral is 20-point Gauss-Legendre on pieces.
#include "stats/studentized_range.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"
#include "stats/compensated_sum.h"
#include "stats/gauss_legendre.h"
#include "stats/normal_more.h"
#include "stats/tail_inverse.h"

namespace vek::stats {
namespace {

constexpr double kInvSqrt2Pi = 0.3989422804014327;
// Beyond 9 standard deviations phi is below 1e-18 of its value 9 earlier; past w = 60 P(W > w) is below
// k^2 e^-900, zero in double.
constexpr double kReach = 9.0, kRangeUnderflow = 60.0;
constexpr double kPiece = 3.0;  // the widest piece of the inner integrals

// Integral of f over [a, b] in `pieces` equal parts.
template <class F>
double gauss_pieces(F f, double a, double b, int pieces) {
  const double h = (b - a) / pieces;
  CompensatedSum sum;
  for (int i = 0; i < pieces; ++i) {
    const double mid = a + (i + 0.5) * h;
    double s = 0.0;
    for (const GaussNode& node : kGauss20) s += node.w * (f(mid + 0.5 * h * node.x) + f(mid - 0.5 * h * node.x));
    sum.add(0.5 * h * s);
  }
  return sum.value();
}

double phi(double z) { return kInvSqrt2Pi * std::exp(-0.5 * z * z); }

// Below this width z - w would lose the width's digits to rounding; the series of narrow_interval holds.
constexpr double kNarrow = 1e-5;

// Phi(z) - Phi(z - w) for w < kNarrow and |z| <= kReach: phi(z) times the integral over [0, w] of
// exp(z s - s^2/2) = sum He_n(z) s^n / n!; the first omitted term is below (kReach w)^4 / 120, 1e-17.
double narrow_interval(double z, double w) {
  const double z2 = z * z;
  return phi(z) * w * (1.0 + w * (z / 2.0 + w * ((z2 - 1.0) / 6.0 + w * z * (z2 - 3.0) / 24.0)));
}

// P(W <= w) (lower) or P(W > w).
double normal_range(double w, int k, bool lower) {
  if (!(w > 0.0)) return lower ? 0.0 : 1.0;
  if (w >= kRangeUnderflow) return lower ? 1.0 : 0.0;
  // Pieces of width 3 integrate phi to rounding with 20 nodes; the powers narrow like 1/sqrt(k) about their
  // peaks: pieces to match.
  const double m = k - 1.0, narrowing = std::ceil(std::sqrt(k / 9.0));
  if (lower) {
    const int pieces = static_cast<int>(2.0 * kReach / kPiece * narrowing);
    // A^(k-1) through the two tails outside [z - w, z] when they are small, so that A near 1 keeps its
    // relative accuracy through the power.
    const auto integrand = [&](double z) {
      if (w < kNarrow) return phi(z) * std::pow(narrow_interval(z, w), m);
      const double outside = normal_upper(z) + normal_upper(w - z);
      return phi(z) * (outside < 0.5 ? std::exp(m * std::log1p(-outside)) : std::pow(normal_interval(z - w, z), m));
    };
    return k * gauss_pieces(integrand, -kReach, kReach, pieces);
  }
  const auto integrand = [&](double z) {
    // 1 - B/Phi = A/Phi, from the series when w is narrow; otherwise the ratio, which rounding may push past 1.
    const double below = normal_upper(-z);
    const double log_inside = w < kNarrow ? std::log(narrow_interval(z, w) / below)
                                          : std::log1p(-std::fmin(normal_upper(w - z) / below, 1.0));
    return phi(z) * std::pow(below, m) * -std::expm1(m * log_inside);
  };
  return k * gauss_pieces(integrand, -kReach, w + kReach, static_cast<int>(std::ceil((w + 2.0 * kReach) / kPiece * narrowing)));
}

// e^x - 1 - x without cancellation for small x.
double expm1_minus_x(double x) {
  if (std::fabs(x) >= 0.5) return std::expm1(x) - x;
  double term = 0.5 * x * x, sum = term;
  for (int n = 3; std::fabs(term) > 1e-17 * std::fabs(sum); ++n) sum += term *= x / n;
  return sum;
}

// x ln x - x - lgamma(x), from x = 10 as (1/2) ln(x / 2pi) less Stirling's remainder, so that large x does
// not cancel.
double log_gamma_normaliser(double x) {
  if (x < 10.0) return x * std::log(x) - x - specfun::lgamma(x);
  return 0.5 * std::log(x / (2.0 * std::numbers::pi)) - specfun::stirling_remainder(x);
}

// ln of the density of t = ln S: ln 2 + (nu/2) ln(nu/2) - lgamma(nu/2) + nu t - nu e^(2t) / 2, written as
// ln 2 + (that normaliser at nu/2) - (nu/2)(e^(2t) - 1 - 2t), exact in the peak for any nu.
struct LogDensity {
  double nu, constant;
  explicit LogDensity(double v) : nu(v), constant(std::numbers::ln2 + log_gamma_normaliser(0.5 * v)) {}
  double operator()(double t) const { return constant - 0.5 * nu * expm1_minus_x(2.0 * t); }
};

// P(Q <= q) (lower) or P(Q > q).
double studentized_range_tail(double q, double nu, int k, bool lower) {
  if (std::isnan(q) || std::isnan(nu)) return std::numeric_limits<double>::quiet_NaN();
  if (std::isinf(nu) || q == 0.0 || std::isinf(q)) return normal_range(q, k, lower);
  const LogDensity log_density(nu);
  // The peak of ln f(t) + ln P(W <= q e^t) (or of the upper tail): golden-section search over t, where both
  // terms are unimodal; then pieces outward until they add nothing.
  const auto log_integrand = [&](double t) { return log_density(t) + std::log(normal_range(q * std::exp(t), k, lower)); };
  const double h = std::fmin(1.0, 1.0 / std::sqrt(nu));
  double a = -40.0, b = 5.0;
  const double g = 0.5 * (std::sqrt(5.0) - 1.0);
  double c = b - g * (b - a), d = a + g * (b - a), fc = log_integrand(c), fd = log_integrand(d);
  while (b - a > 0.1 * h) {
    if (fc < fd || std::isinf(fc)) {
      a = c;
      c = d;
      fc = fd;
      d = a + g * (b - a);
      fd = log_integrand(d);
    } else {
      b = d;
      d = c;
      fd = fc;
      c = b - g * (b - a);
      fc = log_integrand(c);
    }
  }
  const double peak = 0.5 * (a + b);
  const auto f = [&](double t) { return std::exp(log_density(t)) * normal_range(q * std::exp(t), k, lower); };
  CompensatedSum sum;
  sum.add(gauss_pieces(f, peak - h, peak + h, 1));
  // Away from the peak the integrand falls at least like e^(nu t) to the left (the density's power law) and
  // like exp(-nu e^(2t) / 2) to the right; pieces double in width up to 8 h, which 20 nodes still integrate
  // to rounding on such smooth exponentials, so a small nu needs a dozen pieces, not hundreds.
  double width = h;
  for (double left = peak - h;; left -= width, width = std::fmin(2.0 * width, 8.0 * h)) {
    const double part = gauss_pieces(f, left - width, left, 1);
    sum.add(part);
    if (part <= 1e-18 * sum.value() || left < -745.0) break;
  }
  width = h;
  for (double right = peak + h;; right += width, width = std::fmin(2.0 * width, 8.0 * h)) {
    const double part = gauss_pieces(f, right, right + width, 1);
    sum.add(part);
    if (part <= 1e-18 * sum.value() || right > 20.0) break;
  }
  return sum.value();
}

}  // namespace

RangeTails studentized_range(double q, double nu, int k) {
  return {studentized_range_tail(q, nu, k, true), studentized_range_tail(q, nu, k, false)};
}

double studentized_range_deviate(double p, double nu, int k) {
  // In u = ln q the logarithm of either tail is near linear far out; the search, on the smaller tail, starts
  // at q = 3.
  const bool lower = p <= 0.5;
  return std::exp(solve_for_tail(lower ? p : 1.0 - p, lower, std::log(3.0), [&](double u, bool lower) {
    return studentized_range_tail(std::exp(u), nu, k, lower);
  }));
}

}  // namespace vek::stats
