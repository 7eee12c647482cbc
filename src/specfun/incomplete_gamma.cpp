// Regularised incomplete gamma functions P(a, x) = gamma(a, x)/Gamma(a) and Q(a, x) = Gamma(a, x)/Gamma(a).
//
// Regions (each gives the smaller of P and Q directly, the other as its complement):
//   a < 1, x < 1.1   P = x^a (1 + S)/Gamma(1 + a), S = a sum_{n>=1} (-x)^n / (n! (a + n)), and
//                    Q = ((Gamma(1 + a) - 1) - (x^a - 1) - x^a S)/Gamma(1 + a), each bracket formed without
//                    cancellation (expm1, gamma1pm1), so Q keeps its accuracy when a is tiny;
//   x < a + 1, a >= 1  the series P = x^a e^-x / Gamma(a) sum x^n / (a (a+1) ... (a+n));
//   otherwise        Legendre's continued fraction for Q, evaluated by the modified Lentz method (for a < 1
//                    from x = 1.1 on: there 1 - P from the series lost up to 130 ulp, a near 0.12, Q near 0.02).
// The prefix x^a e^-x / Gamma(a) is, for a >= 10, sqrt(a / 2pi) exp(-a (u - ln(1+u)) - stirling(a)) with
// u = (x - a)/a, so the huge a ln x and ln Gamma(a) never meet; below 10 it is formed with pow and exp.
// Both expansions take O(sqrt(a)) terms when x is near a; the limit below is generous. Should it be reached
// (a beyond about 1e11, x near a), the result is the Wilson-Hilferty approximation P = Phi(z),
// z = 3 sqrt(a) ((x/a)^(1/3) - 1 + 1/(9a)), whose error is of order 1/a there, flagged as not converged.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "frame/constants.h"
#include "specfun/log1pmx.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kEps = vek::constants::eps();
constexpr double kTinyDenominator = 1e-300;
constexpr long double kFractionTolerance = 4 * std::numeric_limits<long double>::epsilon();

int iteration_limit(double a) { return static_cast<int>(std::min(1.0e7, 200.0 + 30.0 * std::sqrt(a))); }

// ln(x^a e^-x / Gamma(a)) for a >= 10, x > 0: ln sqrt(a / 2pi) - a (u - ln(1+u)) - stirling(a), u = (x - a)/a,
// formed in long double so that its rounding stays below one rounding of the double prefix.
long double log_prefix_large_a(double a, double x) {
  const long double la = a, lx = x;
  const long double u = (lx - la) / la;
  const long double v = u / (2.0L + u);
  const long double exponent = std::fabs(v) <= 0.55L ? -la * log1pmx_neg(u) : la * std::log(lx / la) + (la - lx);
  return 0.5L * std::log(la / (2.0L * std::numbers::pi_v<long double>)) + exponent - stirling_remainder(a);
}

// ln(x^a e^-x / Gamma(a)) for any a > 0, x > 0, in long double. Below a = 1, ln Gamma(a) = ln Gamma(1 + a) - ln a
// (ln Gamma(a) in double, near 690 for a = 1e-300, would carry its rounding of hundreds of ulps into Q).
long double log_prefix(double a, double x) {
  if (a >= 10.0) return log_prefix_large_a(a, x);
  const long double la = a, lx = x;
  const long double log_gamma = a < 1.0 ? lgamma1p(a) - std::log(la) : lgamma(a);
  return la * std::log(lx) - lx - log_gamma;
}

// x^a e^-x / Gamma(a) for a > 0, x > 0. The exponent, which reaches several hundred in the tails, is formed
// and exponentiated in long double, so its rounding stays below one rounding of the double result.
double power_prefix(double a, double x) {
  if (a < 10.0 && x < 700.0) {
    const double direct = a < 1.0 ? a * std::pow(x, a) * std::exp(-x) / std::exp(lgamma1p(a))
                                  : std::pow(x, a) * std::exp(-x) / std::exp(lgamma(a));
    if (direct > 0x1p-1000 && direct < HUGE_VAL) return direct;
  }
  return static_cast<double>(std::exp(log_prefix(a, x)));
}

// a sum_{n>=1} (-x)^n / (n! (a + n)), the correction S of the small-a region.
double small_a_sum(double a, double x) {
  double s = 0.0;
  double term = 1.0;
  for (int n = 1; n < 200; ++n) {
    term *= -x / n;
    const double add = term / (a + n);
    s += add;
    if (std::fabs(add) <= kEps * std::fabs(s)) break;
  }
  return a * s;
}

GammaPQ small_a(double a, double x) {
  const double s = small_a_sum(a, x);
  const double log_x = std::log(x);
  const double xa = std::pow(x, a);  // exp(a ln x) would cost |a ln x| ulps for tiny x
  const double g1p = std::exp(lgamma1p(a));
  const double p = xa * (1.0 + s) / g1p;
  const double q = (gamma1pm1(a) - std::expm1(a * log_x) - xa * s) / g1p;
  return {p, q, true};
}

struct Sum {
  long double value;
  bool converged;
};

// The series and the fraction run in long double (64-bit significand): their hundreds of roundings for large a
// then stay below one rounding of the double result.
// sum_{n>=0} x^n / (a (a+1) ... (a+n)), so that P = prefix * sum.
Sum series_sum(double a, double x) {
  const int limit = iteration_limit(a);
  long double sum = 1.0L / a;
  long double term = sum;
  for (int n = 1; n <= limit; ++n) {
    term *= x / (static_cast<long double>(a) + n);
    sum += term;
    // The ratios x/(a + k) decrease, so the terms left sum to at most term r/(1 - r), r = x/(a + n + 1): for
    // large a near x that is thousands of times the last term, and it, not the term, must fall below eps.
    const long double r = x / (static_cast<long double>(a) + n + 1);
    if (r < 1.0L && !(term * r > kEps / 4 * sum * (1.0L - r))) return {sum, !std::isnan(sum)};
  }
  return {sum, false};
}

// Legendre's continued fraction h, so that Q = prefix * h.
Sum fraction_sum(double a, double x) {
  const int limit = iteration_limit(a);
  long double b = static_cast<long double>(x) + 1.0L - a;
  long double c = 1.0L / kTinyDenominator;
  long double d = 1.0L / b;
  long double h = d;
  for (int i = 1; i <= limit; ++i) {
    const long double an = -i * (i - static_cast<long double>(a));
    b += 2.0L;
    d = an * d + b;
    if (std::fabs(d) < kTinyDenominator) d = kTinyDenominator;
    c = b + an / c;
    if (std::fabs(c) < kTinyDenominator) c = kTinyDenominator;
    d = 1.0L / d;
    const long double delta = d * c;
    h *= delta;
    // Near x = a the fraction converges slowly (the remaining change is many times the last one): the test is
    // made at the long double's precision.
    if (!(std::fabs(delta - 1.0L) > kFractionTolerance)) return {h, !std::isnan(h)};
  }
  return {h, false};
}

// Outside the small-a region: whether the series (for P) is used rather than the fraction (for Q).
bool series_region(double a, double x) { return x < a + 1.0 && a >= 1.0; }

GammaPQ series_p(double a, double x) {
  const Sum s = series_sum(a, x);
  const double p = power_prefix(a, x) * static_cast<double>(s.value);
  return {p, 1.0 - p, s.converged};
}

GammaPQ fraction_q(double a, double x) {
  const Sum h = fraction_sum(a, x);
  const double q = power_prefix(a, x) * static_cast<double>(h.value);
  return {1.0 - q, q, h.converged};
}

GammaPQ wilson_hilferty(double a, double x) {
  const double z = 3.0 * std::sqrt(a) * (std::cbrt(x / a) - 1.0 + 1.0 / (9.0 * a));
  return {0.5 * erfc(-z / std::numbers::sqrt2), 0.5 * erfc(z / std::numbers::sqrt2), false};
}

}  // namespace

GammaPQ gamma_pq(double a, double x) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  if (!(a > 0.0) || !(x >= 0.0)) return {nan, nan, true};
  if (x == 0.0) return {0.0, 1.0, true};
  if (std::isinf(a)) return std::isinf(x) ? GammaPQ{nan, nan, true} : GammaPQ{0.0, 1.0, true};
  if (std::isinf(x)) return {1.0, 0.0, true};
  if (a < 1.0 && x < 1.1) return small_a(a, x);
  const GammaPQ r = series_region(a, x) ? series_p(a, x) : fraction_q(a, x);
  return r.converged ? r : wilson_hilferty(a, x);
}

double gamma_p(double a, double x) { return gamma_pq(a, x).p; }

double gamma_p_derivative(double a, double x) {
  if (!(a > 0.0) || !(x > 0.0)) return std::numeric_limits<double>::quiet_NaN();
  if (std::isinf(x)) return 0.0;
  return power_prefix(a, x) / x;
}
double gamma_q(double a, double x) { return gamma_pq(a, x).q; }

GammaTailLog gamma_tail_log(double a, double x, bool lower) {
  const long double log_x = std::log(static_cast<long double>(x));
  const long double lp = log_prefix(a, x);
  // The tail that the region computes directly, as ln T and d ln T / dx; the other as the complement.
  long double log_direct, slope_direct;
  bool direct_is_lower, converged = true;
  if (a < 1.0 && x < 1.1) {
    const double s = small_a_sum(a, x);
    log_direct = a * log_x + std::log1p(static_cast<long double>(s)) - lgamma1p(a);
    direct_is_lower = true;
  } else if (series_region(a, x)) {
    const Sum s = series_sum(a, x);
    log_direct = lp + std::log(s.value);
    direct_is_lower = true;
    converged = s.converged;
  } else {
    const Sum h = fraction_sum(a, x);
    log_direct = lp + std::log(h.value);
    direct_is_lower = false;
    converged = h.converged;
  }
  // d ln P / dx = density / P, d ln Q / dx = -density / Q, density = prefix / x.
  slope_direct = std::exp(lp - log_x - log_direct);
  if (!direct_is_lower) slope_direct = -slope_direct;
  if (direct_is_lower == lower) return {log_direct, static_cast<double>(slope_direct), converged};
  const long double other = -std::expm1(log_direct);
  const long double log_other = std::log(other);
  const long double slope = std::exp(lp - log_x - log_other);
  return {log_other, static_cast<double>(lower ? slope : -slope), converged};
}

}  // namespace vek::specfun
