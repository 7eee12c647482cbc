// Regularised incomplete beta function I_x(a, b) and its complement.
//
// The continued fraction of I_x(a, b) (Abramowitz & Stegun 26.5.8), evaluated by the modified Lentz method,
// converges quickly for x < (a + 1)/(a + b + 2); beyond, I_y(b, a) with y = 1 - x is evaluated and gives the
// complement. When that side's value is the larger one the other side is evaluated as well, so both results
// keep their relative accuracy. For a, b >= 100 near the mean, where the fraction cancels and converges slowly,
// Temme's uniform asymptotic expansion (incomplete_beta_asymptotic.cpp); for one parameter 1000 times the other
// (and 1) or more, the smaller below 1e5, the expansion for a >> b (incomplete_beta_skewed.cpp). Should the
// fraction not converge, the normal approximation is returned, flagged.
// The power term x^a y^b / B(a, b) is, for a, b >= 10, sqrt(ab / 2pi c) exp(-a D(u) - b D(v) + stirling
// terms) with c = a + b, u = (x c - a)/a, v = -a u / b, D(u) = u - ln(1 + u) (the form in which the large
// logarithms cancel analytically); otherwise x^a y^b / B(a, b) by pow, or by logarithms where it would underflow.
// Everything that depends on x is formed from the exact one of x and y = 1 - x (the one not above 1/2). A
// parameter below kTiny takes the small-parameter forms (DiDonato and Morris): 1/(a B) without forming B, and
// the complement near 1 by the power series with expm1.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "frame/constants.h"
#include "specfun/incomplete_beta_asymptotic.h"
#include "specfun/incomplete_beta_parts.h"
#include "specfun/incomplete_beta_skewed.h"
#include "specfun/log1pmx.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kEps = vek::constants::eps();
constexpr double kTinyDenominator = 1e-300;
// Parameters at most this (relative to the other, when that exceeds 1) take the tiny-parameter forms.
constexpr double kTiny = 1e-5;
// Where I is near 1, its complement for a parameter at most kSmall comes from the power series
// (complement_small_a) while the other parameter times x is at most 1 (its terms then cancel by at most e):
// as 1 - I, or from the fraction on its slow side, it lost up to 7000 ulp for the smaller parameter from 1e-4
// to 1e-2. kSmallTerms Taylor terms suffice there.
constexpr double kSmall = 1e-2;
constexpr int kSmallTerms = 10;
// The largest absolute difference between 1 - I and the separately evaluated complement that is accepted
// (I is within 32 ulps, so 1 - I is within 4e-15 of it).
constexpr double kComplementAgreement = 1e-13;
// One parameter below kSkewSmall and the other at least kSkewRatio times it (and 1) take the expansion for
// a >> b: near the mean the fraction loses up to 1e-10 relative there (the smaller parameter from 1 to about
// 1e4). From 1e5 up the uniform expansion and the fraction hold 2 ulps, while the expansion's terms would fall
// more slowly (by min/(24 kSkewRatio^2) each, 4e-3 at 1e5).
constexpr double kSkewSmall = 1e5;
constexpr double kSkewRatio = 1e3;

// -a D(u), D(u) = u - ln(1 + u), where a u = a_u and 1 + u = ratio = t c / a for the variable t (x or y) of this
// term: the series where it has no cancellation; else, when t <= 1/2 (then t is exact, while the other of x, y
// may carry the rounding of 1 - t), ln(ratio) straight from t (u is useless once 1 + u has lost its digits near
// u = -1); otherwise log1p(u), u >= -1/2 there.
long double scaled_log_term(long double a, long double u, long double t, long double c, long double a_u) {
  const long double v = u / (2.0L + u);
  if (std::fabs(v) <= 0.55L) return -a * log1pmx_neg(u);
  return a * (t <= 0.5L ? std::log(t * (c / a)) : std::log1p(u)) - a_u;
}

// -ln B(a, b) = [ln Gamma(a + b) - ln Gamma(a)] - ln Gamma(b) for a >= 10 > b, in long double: the bracket by
// Stirling's series, (a - 1/2) ln(1 + b/a) + b ln(a + b) - b + stirling(a + b) - stirling(a), so that the large
// ln Gamma(a) never appears (formed in double, its rounding cost tens of ulps).
long double log_inverse_beta_mixed(double a, double b) {
  const long double la = a, lb = b;
  const long double shift = (la - 0.5L) * std::log1p(lb / la) + lb * std::log(la + lb) - lb +
                            (stirling_remainder(a + b) - stirling_remainder(a));
  return shift - std::log(static_cast<long double>(gamma(b)));
}

// ln x and ln y in long double from the exact one of x, y (the one not above 1/2; the other may be rounded).
struct LogXY {
  long double x;
  long double y;
};
LogXY log_xy(double x, double y) {
  const long double lx = x, ly = y;
  return {x <= 0.5 ? std::log(lx) : std::log1p(-ly), y <= 0.5 ? std::log(ly) : std::log1p(-lx)};
}

// -ln B(a, b) in long double, for parameters above the tiny ones.
long double log_inverse_beta(double a, double b) {
  if (a < 10.0 && b < 10.0) return -std::log(static_cast<long double>(beta(a, b)));
  return a >= 10.0 ? log_inverse_beta_mixed(a, b) : log_inverse_beta_mixed(b, a);
}

// ln(x^a y^b / B(a, b)) for a, b >= 10: ln sqrt(ab / 2pi c) - a D(u) - b D(v) + the Stirling remainders.
long double log_power_terms_large(double a, double b, double x, double y) {
  const long double la = a, lb = b, lx = x, ly = y, c = la + lb;
  // x c - a = x b - y a = -(y c - b), from the exact one of x, y.
  const long double diff = x <= 0.5 ? lx * c - la : lb - ly * c;
  return 0.5L * std::log(la / (2.0L * std::numbers::pi_v<long double>) * (lb / c)) +
         scaled_log_term(la, diff / la, lx, c, diff) + scaled_log_term(lb, -diff / lb, ly, c, -diff) +
         (stirling_remainder(a + b) - stirling_remainder(a) - stirling_remainder(b));
}

// x^a y^b / B(a, b), where x + y = 1 and the one of x, y not above 1/2 is exact (the other may be rounded).
// Exponents are formed and exponentiated in long double, so their rounding (|exponent| ulps in double) stays
// below one final rounding.
double power_terms(double a, double b, double x, double y) {
  if (a >= 10.0 && b >= 10.0) return static_cast<double>(std::exp(log_power_terms_large(a, b, x, y)));
  // pow on the exact one of x, y (the one not above 1/2) is correctly rounded within an ulp or so, where
  // exp(a ln x) would turn the rounding of a ln x into |a ln x| ulps.
  const long double la = a, lb = b;
  const LogXY lg = log_xy(x, y);
  const double xa = x <= 0.5 ? std::pow(x, a) : static_cast<double>(std::exp(la * lg.x));
  const double yb = y <= 0.5 ? std::pow(y, b) : static_cast<double>(std::exp(lb * lg.y));
  const long double lib = log_inverse_beta(a, b);
  const long double direct = static_cast<long double>(xa) * yb * std::exp(lib);
  if (direct > 0x1p-1000L && direct < 0x1p1000L) return static_cast<double>(direct);
  return static_cast<double>(std::exp(la * lg.x + lb * lg.y + lib));
}

// 1/(a B(a, b)) = Gamma(a + b)/(Gamma(1 + a) Gamma(b)) = ratio e^g for a <= max(kSmall, kTiny b), with g small: from
// b >= 1, ratio = 1 and g = [ln Gamma(b + a) - ln Gamma(b)] - ln Gamma(1 + a); below 1, through Gamma(b + a)/Gamma(b)
// = (b/(b + a)) Gamma(1 + b + a)/Gamma(1 + b), ratio = b/(a + b) (kept apart: its logarithm reaches -744 for
// subnormal a, and rounded it would cost hundreds of ulps). The shifted ln Gamma by Taylor's series in a, each
// term about a / max(b, 1) times the one before: four terms below kTiny, up to ten at kSmall.
struct InverseABeta {
  double ratio;
  double g;
};
InverseABeta inverse_a_beta(double a, double b) {
  const double at = b >= 1.0 ? b : 1.0 + b;
  double sum = 0.0, power = 1.0;
  for (int k = 1; k <= kSmallTerms; ++k) {
    power *= a / k;
    const double term = power * polygamma(k - 1, at);
    sum += term;
    if (std::fabs(term) <= 0x1p-60 * std::fabs(sum)) break;
  }
  return {b >= 1.0 ? 1.0 : b / (a + b), sum - lgamma1p(a)};
}

// The tiny-parameter forms below apply when min(a, b) <= kTiny; a is the tiny one when a <= kTiny max(b, 1).
bool tiny_parameter(double a, double b) { return std::min(a, b) <= kTiny; }
bool a_is_tiny(double a, double b) { return a <= kTiny * std::max(b, 1.0); }

// ln(x^a y^b / (a B(a, b))) for a tiny parameter, from 1/(a B(a, b)) above or (b/a) / (b B(b, a)).
long double log_power_terms_over_a_tiny(double a, double b, double x, double y) {
  const bool a_tiny = a_is_tiny(a, b);
  const InverseABeta f = a_tiny ? inverse_a_beta(a, b) : inverse_a_beta(b, a);
  const long double la = a, lb = b;
  const LogXY lg = log_xy(x, y);
  const long double log_ratio =
      std::log(static_cast<long double>(f.ratio)) + (a_tiny ? 0.0L : std::log(lb) - std::log(la));
  return la * lg.x + lb * lg.y + f.g + log_ratio;
}

// x^a y^b / (a B(a, b)) when a or b is below kTiny (relative to the other when that exceeds 1); B, which
// overflows for subnormal parameters, is never formed.
double power_terms_over_a_tiny(double a, double b, double x, double y) {
  const bool a_tiny = a_is_tiny(a, b);
  const InverseABeta f = a_tiny ? inverse_a_beta(a, b) : inverse_a_beta(b, a);
  const double direct = std::pow(x, a) * std::pow(y, b) * (f.ratio * std::exp(f.g)) * (a_tiny ? 1.0 : b / a);
  if (direct > 0x1p-1000 && direct < HUGE_VAL) return direct;
  return static_cast<double>(std::exp(log_power_terms_over_a_tiny(a, b, x, y)));
}

// 1 - I_x(a, b) for a below kSmall where I_x(a, b) is near 1 (x < (a + 1)/(a + b + 2)), from the power series
// I_x(a, b) = x^a e^G (1 + a S), e^G = 1/(a B(a, b)), S = sum_{n>=1} (1-b)_n x^n / (n! (a + n)) (DiDonato and
// Morris's BPSER): 1 - I_x = -expm1(a ln x + G) - e^(a ln x + G) a S, both parts without cancellation.
double complement_small_a(double a, double b, double x) {
  double s = 0.0, term = 1.0;
  for (int n = 1; n < 2000; ++n) {
    term *= (n - b) / n * x;
    const double add = term / (a + n);
    s += add;
    if (std::fabs(add) <= kEps * std::fabs(s)) break;
  }
  const InverseABeta f = inverse_a_beta(a, b);
  const double exponent = a * std::log(x) + f.g - (b >= 1.0 ? 0.0 : std::log1p(a / b));
  return -std::expm1(exponent) - std::exp(exponent) * a * s;
}

}  // namespace

// The continued fraction's value h (I_x(a, b) = h x^a y^b / (a B(a, b))), for x below the mean-like point
// (a + 1)/(a + b + 2).
long double beta_inc_fraction(double a, double b, double x, double y, bool& converged) {
  // Near the mean the fraction needs about 4.5 max(a, b)^(1/3) terms (850000 at a = b = 1e16); beyond the
  // bound the normal approximation, whose error (a + b)^(-1/2) is as small as the fraction's there, is used.
  const int limit = static_cast<int>(std::min(1.0e6, 200.0 + 30.0 * std::sqrt(std::max(a, b))));
  // The recurrences run in long double: near the mean their terms cancel, and the extra 11 bits keep that
  // cancellation below the final rounding.
  // x from the exact one of x, y (1 - y is exact in long double for y >= 2^-11).
  const long double la = a, lb = b, lx = x <= 0.5 ? x : 1.0L - y, ab = la + lb;
  long double c = 1.0L;
  // 1 - (a + b) x / (a + 1) without its cancellation, from the exact one of x, y.
  long double d = (x <= 0.5 ? la + 1.0L - ab * lx : la * y + 1.0L - lb * lx) / (la + 1.0L);
  if (std::fabs(d) < kTinyDenominator) d = kTinyDenominator;
  d = 1.0L / d;
  long double h = d;
  converged = false;
  for (int m = 1; m <= limit; ++m) {
    const long double m2 = 2.0L * m;
    // The coefficients as products of ratios, so that parameters near the overflow threshold stay finite.
    long double aa = (m / (la + m2)) * ((lb - m) / (la - 1.0L + m2)) * lx;
    d = 1.0L + aa * d;
    if (std::fabs(d) < kTinyDenominator) d = kTinyDenominator;
    c = 1.0L + aa / c;
    if (std::fabs(c) < kTinyDenominator) c = kTinyDenominator;
    d = 1.0L / d;
    h *= d * c;
    aa = -((la + m) / (la + m2)) * ((ab + m) / (la + 1.0L + m2)) * lx;
    d = 1.0L + aa * d;
    if (std::fabs(d) < kTinyDenominator) d = kTinyDenominator;
    c = 1.0L + aa / c;
    if (std::fabs(c) < kTinyDenominator) c = kTinyDenominator;
    d = 1.0L / d;
    const long double delta = d * c;
    h *= delta;
    if (!(std::fabs(delta - 1.0L) > kEps)) {  // converged, or NaN, which no further term repairs
      converged = !std::isnan(h);
      break;
    }
  }
  return h;
}

// ln(x^a y^b / (a B(a, b))), the logarithm of the power terms above, in long double: every exponent is formed
// there before any exponentiation, so it is finite wherever the power terms underflow.
long double beta_inc_log_prefix(double a, double b, double x, double y) {
  if (tiny_parameter(a, b)) return log_power_terms_over_a_tiny(a, b, x, y);
  const long double log_a = std::log(static_cast<long double>(a));
  if (a >= 10.0 && b >= 10.0) return log_power_terms_large(a, b, x, y) - log_a;
  const LogXY lg = log_xy(x, y);
  return static_cast<long double>(a) * lg.x + static_cast<long double>(b) * lg.y + log_inverse_beta(a, b) - log_a;
}

namespace {

// I_x(a, b) by the continued fraction, for x below the mean-like point (a + 1)/(a + b + 2).
double fraction(double a, double b, double x, double y, bool& converged) {
  const long double h = beta_inc_fraction(a, b, x, y, converged);
  if (tiny_parameter(a, b)) return power_terms_over_a_tiny(a, b, x, y) * static_cast<double>(h);
  return power_terms(a, b, x, y) * static_cast<double>(h / a);
}

// I_x(a, b) ~ Phi((x - mean) / sd) with the mean a/(a + b) and variance mean (1 - mean) / (a + b + 1).
BetaInc normal_approximation(double a, double b, double x) {
  const double mean = 1.0 / (1.0 + b / a);
  const double sd = std::sqrt(mean * (1.0 / (1.0 + a / b))) * std::sqrt(1.0 / (a + b + 1.0));
  const double z = sd > 0.0 ? (x - mean) / sd : (x > mean ? HUGE_VAL : (x < mean ? -HUGE_VAL : 0.0));
  return {0.5 * erfc(-z / std::numbers::sqrt2), 0.5 * erfc(z / std::numbers::sqrt2), false};
}

}  // namespace

namespace {

BetaInc beta_inc_unclamped(double a, double b, double x) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  if (!(a > 0.0) || !(b > 0.0) || !(x >= 0.0 && x <= 1.0)) return {nan, nan, true};
  if (x == 0.0) return {0.0, 1.0, true};
  if (x == 1.0) return {1.0, 0.0, true};
  if (std::isinf(a) || std::isinf(b)) {
    if (std::isinf(a) && std::isinf(b)) return {nan, nan, true};
    return std::isinf(a) ? BetaInc{0.0, 1.0, true} : BetaInc{1.0, 0.0, true};
  }
  if (a == b && x == 0.5) return {0.5, 0.5, true};  // by symmetry, however large a is
  const double y = 1.0 - x;
  // Both parameters large and x near the mean (lambda = a - (a + b) x small against them): Temme's expansion,
  // for the side at or below the mean, the other as its complement (that side is not below about 0.4).
  if (std::min(a, b) >= kAsymptoticMin) {
    const long double lambda = beta_inc_lambda(a, b, x, y);
    if (std::fabs(lambda) <= kAsymptoticWidth * std::min(a, b)) {
      if (lambda >= 0.0L) {
        const double w = beta_inc_asymptotic(a, b, lambda);
        return {w, 0.5 + (0.5 - w), true};
      }
      const double w1 = beta_inc_asymptotic(b, a, -lambda);
      return {0.5 + (0.5 - w1), w1, true};
    }
  }
  // One parameter far larger than the other: the expansion for a >> b, whose terms fall by b^3 / a^2.
  if (std::min(a, b) < kSkewSmall && std::max(a, b) >= kSkewRatio * std::max(std::min(a, b), 1.0)) {
    if (a > b) return beta_inc_skewed(a, b, x, y);
    const BetaInc r = beta_inc_skewed(b, a, y, x);
    return {r.w1, r.w, r.converged};
  }
  // The fraction is evaluated on the side where it converges fast; when that side is the larger value (as
  // can happen for small a, b), the other side is evaluated as well.
  const bool lower = x < (a + 1.0) / (a + b + 2.0);
  bool converged = true;
  const double first = lower ? fraction(a, b, x, y, converged) : fraction(b, a, y, x, converged);
  if (!converged) return normal_approximation(a, b, x);
  double second = 1.0 - first;
  if (first > 0.5) {
    const double fast_a = lower ? a : b, fast_b = lower ? b : a, fast_x = lower ? x : y;
    bool other_converged = true;
    const bool series = fast_a <= kTiny * std::max(fast_b, 1.0) || (fast_a <= kSmall && fast_b * fast_x <= 1.0);
    const double other = series ? complement_small_a(fast_a, fast_b, fast_x)
                         : lower ? fraction(b, a, y, x, other_converged)
                                 : fraction(a, b, x, y, other_converged);
    // Taken only where it agrees with 1 - first to first's absolute accuracy: for one parameter huge and the
    // other below 100 near the mean, the slow side's fraction can stop on a value far off, and the series of
    // complement_small_a cancels once b x is large.
    if (other_converged && std::fabs(other - second) <= kComplementAgreement) second = other;
  }
  return lower ? BetaInc{first, second, true} : BetaInc{second, first, true};
}

}  // namespace

// Results rounded a hair beyond [0, 1] (W = 1 + ulp where the true value is within an ulp of 1) are brought
// back; NaN stays NaN.
BetaInc beta_inc_pair(double a, double b, double x) {
  BetaInc r = beta_inc_unclamped(a, b, x);
  for (double* v : {&r.w, &r.w1}) {
    if (*v > 1.0) *v = 1.0;
    if (*v < 0.0) *v = 0.0;
  }
  return r;
}

double beta_inc(double a, double b, double x) { return beta_inc_pair(a, b, x).w; }

double beta_inc_derivative(double a, double b, double x) {
  if (!(a > 0.0) || !(b > 0.0) || !(x > 0.0 && x < 1.0) || std::isinf(a) || std::isinf(b))
    return std::numeric_limits<double>::quiet_NaN();
  const double y = 1.0 - x;
  return power_terms(a, b, x, y) / x / y;
}

}  // namespace vek::specfun
