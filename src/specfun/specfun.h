// Special-function kernels: pure functions of their arguments (no state, no allocation, thread-safe), called
// by the s-chapter workers and directly by other chapters (the distribution functions of statistics).
//
// Arguments outside a function's domain give NaN; each function's comment says what NaN and infinite
// arguments give. Accuracies measured against high-precision tables are listed in docs/specfun.md.
#pragma once

#include <complex>
#include <cstdint>

namespace vek::specfun {

// Error functions, Cody's rational approximations (erf_cody.h).
double erfc(double x);   // erfc(+inf) = 0, erfc(-inf) = 2, NaN -> NaN
double erf(double x);    // erf(+-inf) = +-1, NaN -> NaN; erf(-x) = -erf(x) exactly
double erfcx(double x);  // exp(x^2) erfc(x); +inf -> 0, overflows to +inf for x < -26.62, NaN -> NaN
double dawson(double x); // Dawson's integral exp(-x^2) int_0^x exp(t^2) dt; +-inf -> +-0, NaN -> NaN
double erf_inv(double y);   // inverse of erf on [-1, 1]: +-1 -> +-inf, |y| > 1 or NaN -> NaN
double erfc_inv(double q);  // inverse of erfc on [0, 2]: 0 -> +inf, 2 -> -inf, outside or NaN -> NaN

// The Faddeeva (scaled complex complementary error) function w(z) = exp(-z^2) erfc(-iz); NaN parts give NaN.
// Accurate to a few ulps of each part in the upper half-plane; below the real axis w(z) = 2 exp(-z^2) - w(-z)
// overflows where exp(-z^2) does, and is NaN where 2 Re z Im z overflows or Im z = -inf (no limit there).
std::complex<double> faddeeva(std::complex<double> z);

// Fresnel integrals S(x) = int_0^x sin(pi t^2/2) dt and C(x) = int_0^x cos(pi t^2/2) dt: odd, +-1/2 at +-inf,
// NaN -> NaN.
struct Fresnel {
  double s;
  double c;
};
Fresnel fresnel(double x);

// Gamma function with the failure classes of s14aaf, checked in this order: overflow (x > 170), underflow
// (x < -170), too close to zero (|x| < 2.23e-308), pole (negative integer). value is 0 on failure.
enum class GammaStatus { ok, overflow, underflow, near_zero, pole };
struct GammaResult {
  double value;
  GammaStatus status;
};
GammaResult gamma_checked(double x);  // NaN -> {NaN, ok}
double gamma(double x);               // the same value, +-inf or NaN in place of the failures

// ln|Gamma(x)|; sign (if not null) receives the sign of Gamma(x) (+1 or -1). Poles (x = 0, -1, -2, ...)
// give +inf; +inf -> +inf, -inf -> NaN, NaN -> NaN.
double lgamma(double x, int* sign = nullptr);
// ln Gamma(1 + a) for a > -1, accurate for small |a|; and Gamma(1 + a) - 1.
double lgamma1p(double a);
double gamma1pm1(double a);
// ln Gamma(x) - [(x - 1/2) ln x - x + ln(2 pi)/2], the Stirling remainder, for x >= 10.
double stirling_remainder(double x);
// ln B(a, b) and B(a, b) for a, b > 0 (NaN otherwise; an infinite argument gives -inf and 0).
double lbeta(double a, double b);
double beta(double a, double b);
// n! for integers n >= 0, within 0.51 ulp: +inf beyond 170, NaN for n < 0.
double factorial(int64_t n);
// The binomial coefficient n over k for integers 0 <= k <= n (0 for k < 0 or k > n, NaN for n < 0): a
// product in extended precision while min(k, n - k) <= 1000, else 1 / ((n + 1) B(n - k + 1, k + 1)); +inf
// when it overflows.
double binomial(int64_t n, int64_t k);

// Digamma psi(x) = Gamma'(x)/Gamma(x); poles give NaN; +inf -> +inf, -inf and NaN -> NaN.
double digamma(double x);
// Polygamma psi^(n)(x) for n >= 0 (n = 0 is digamma); poles, n < 0 and, for n >= 1, x < kPolygammaMinArg
// give NaN (the limit s14aef documents); +inf -> 0 for n >= 1.
inline constexpr double kPolygammaMinArg = -1.0e5;
double polygamma(int n, double x);

// Regularised incomplete gamma functions P(a, x) and Q(a, x) = 1 - P(a, x), each computed to full relative
// accuracy (neither is formed as 1 minus the other where that would cancel). a > 0, x >= 0.
struct GammaPQ {
  double p;
  double q;
  bool converged;
};
// Should an expansion not converge (a beyond about 1e11 with x near a), the Wilson-Hilferty approximation is
// returned, flagged as not converged.
GammaPQ gamma_pq(double a, double x);  // a <= 0, x < 0 or NaN -> {NaN, NaN, true}
double gamma_p(double a, double x);
double gamma_q(double a, double x);
// dP/dx = x^(a-1) e^-x / Gamma(a), the gamma density, for a > 0, x > 0 (NaN outside).
double gamma_p_derivative(double a, double x);
// ln T and d ln T / dx for the tail T = P(a, x) (lower) or Q(a, x), a > 0, 0 < x < inf: finite however far T
// lies below the underflow threshold, for the inverse's Newton iteration.
struct GammaTailLog {
  long double log_tail;
  double slope;
  bool converged;
};
GammaTailLog gamma_tail_log(double a, double x, bool lower);
// The x >= 0 with P(a, x) = p and Q(a, x) = q: the smaller of p and q is matched, so a tail probability keeps
// its relative accuracy. p + q should be 1; q = 0 or a = +inf gives +inf, p = 0 gives 0. a <= 0, p or q
// outside [0, 1], or NaN give NaN.
double gamma_pq_inv(double a, double p, double q);

// Regularised incomplete beta I_x(a, b) and its complement 1 - I_x(a, b), a, b > 0, 0 <= x <= 1.
// Should the continued fraction not converge within min(1e6, 200 + 30 sqrt(max(a, b))) terms (a and b beyond
// about 1e16 near the mean), the normal approximation with the beta distribution's mean and variance is
// returned and flagged as not converged.
struct BetaInc {
  double w;
  double w1;
  bool converged;
};
BetaInc beta_inc_pair(double a, double b, double x);  // outside the domain or NaN -> {NaN, NaN, true}
double beta_inc(double a, double b, double x);
// ln I_x(a, b) and ln(1 - I_x(a, b)), each to a few ulps, finite far beyond the underflow of I or 1 - I (to
// logarithms near -1e308); x = 0 or 1 and infinite parameters give -inf and 0 at the ends, as the values do.
// Arguments as beta_inc_pair (NaN outside the domain).
struct BetaIncLog {
  double log_w;
  double log_w1;
  double w;   // the values themselves, as beta_inc_pair gives them
  double w1;
};
BetaIncLog beta_inc_log(double a, double b, double x);
// dI_x(a, b)/dx = x^(a-1) (1-x)^(b-1) / B(a, b), the beta density, for a, b > 0, 0 < x < 1 (NaN outside).
double beta_inc_derivative(double a, double b, double x);
// The x in [0, 1] with I_x(a, b) = p and 1 - I_x(a, b) = q, and y = 1 - x formed without cancellation (the
// smaller of p and q is matched, so tail quantiles keep their relative accuracy). p = 0 gives x = 0, q = 0
// gives x = 1; a, b <= 0 or infinite, p or q outside [0, 1], or NaN give NaN.
struct BetaIncInverse {
  double x;
  double y;
};
BetaIncInverse beta_inc_inv(double a, double b, double p, double q);

}  // namespace vek::specfun
