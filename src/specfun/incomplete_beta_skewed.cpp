// I_x(a, b) for a far larger than b: the expansion of DiDonato and Morris's BGRAT (ACM TOMS 18 (1992) 360-373,
// algorithm 708, after Temme), carried for both tails.
//
// With x = e^-s the integrand of I_x is e^(-a s) (1 - e^-s)^(b-1) = e^(-T s) s^(b-1) f(s), T = a + (b - 1)/2,
// f(s) = (sinh(s/2) / (s/2))^(b-1) = sum_n d_n s^2n (even). Integrating term by term from s = -ln x (or to it),
//   I_x(a, b) = M sum_n c_n Q(b + 2n, u),   1 - I_x(a, b) = M sum_n c_n P(b + 2n, u),
// u = -T ln x, c_n = d_n (b)_2n / T^2n, M = Gamma(a + b) / (Gamma(a) T^b) = 1 + O(b^3 / a^2) (what the choice of
// T buys). c_n falls like (b^3 / 24 T^2)^n / n!; for a >= 1000 b that is 4e-6 per term at b = 100, 4e-3 at
// b = 1e5. In the upper tail Q(b + 2n, u) / Q(b, u) grows like (u / b)^2n, far slower. Each sum's leading term
// is the whole tail, so both keep their relative accuracy, where the continued fraction loses up to 1e-10 near
// the mean. The higher orders follow from P(b, u), Q(b, u) by Q(v + 1, u) = Q(v, u) + r_v, P(v + 1, u) =
// P(v, u) - r_v, r_v = u^v e^-u / Gamma(v + 1) <= P(v, u): their error is a few ulps of the leading term,
// weighted by c_n.
#include "specfun/incomplete_beta_skewed.h"

#include <cmath>
#include <limits>

#include "specfun/log1pmx.h"

namespace vek::specfun {
namespace {

// ln(sinh(z) / z) = sum_k beta_k (2 z)^2k with beta_k = B_2k / (2k (2k)!), B the Bernoulli numbers (printed by
// the table script's --coefficients). The terms of the expansion fall about a hundredfold each or faster
// (slowest for b near 2 in the far upper tail), so twelve are more than the precision needs.
constexpr int kTerms = 12;
constexpr long double kLogSinhc[kTerms] = {
    0.0416666666666666666667L,      -0.000347222222222222222222L,  0.00000551146384479717813051L,
    -1.03339947089947089947e-7L,    2.08767569878680989792e-9L,    -4.40349178223957765404e-11L,
    9.55895466477477059488e-13L,    -2.11855018520161429177e-14L,  4.77003447570991364674e-16L,
    -1.08743434927903093652e-17L,   2.50409219470919523418e-19L,   -5.81436028575521805863e-21L};

}  // namespace

BetaInc beta_inc_skewed(double a, double b, double x, double y) {
  const long double la = a, lb = b, big_t = la + (lb - 1.0L) / 2.0L;
  // u = -T ln x from the exact one of x, y; u in double for the gamma kernel, and the remainder du carried by
  // P and Q to first order (in the far upper tail d ln Q / du is about -1, so u's rounding would cost u ulps).
  const long double log_x = y <= 0.5 ? std::log1p(-static_cast<long double>(y)) : std::log(static_cast<long double>(x));
  const long double u = -big_t * log_x;
  // Far below the mean of x (beyond 1e7 with b < 1e5, also where u overflows a double) Q(b, u) underflows.
  if (u > 1e7L) return {0.0, 1.0, true};
  const double ud = static_cast<double>(u);
  const GammaPQ g = gamma_pq(b, ud);
  // r_v for v = b, at most 1 (the density u^(b-1) e^-u / Gamma(b) = b r_b / u overflows for subnormal u).
  long double r = ud > 0.0 ? gamma_p_derivative(b + 1.0, ud) : 0.0;
  const long double shift = u > 0.0L ? r * lb * ((u - ud) / u) : 0.0L;
  long double p = g.p + shift, q = g.q - shift;

  // ln M = [ln Gamma(a + b) - ln Gamma(a)] - b ln T by Stirling's series, with the large terms cancelled
  // analytically: -a D(b/a) - ln(1 + b/a)/2 + b ln(1 + (b + 1)/(2T)) + the Stirling remainders, D(t) = t - ln(1 + t).
  const long double ratio = lb / la;
  const long double log_m = -la * log1pmx_neg(ratio) - 0.5L * std::log1p(ratio) +
                            lb * std::log1p((lb + 1.0L) / (2.0L * big_t)) +
                            (stirling_remainder(a + b) - stirling_remainder(a));

  long double sum_p = p, sum_q = q;
  long double d[kTerms + 1];  // the coefficients d_n of f(s)
  d[0] = 1.0L;
  long double pochhammer = 1.0L;  // (b)_2n / T^2n
  for (int n = 1; n <= kTerms; ++n) {
    // d = exp(ln f) term by term: n d_n = sum_k k e_k d_(n-k), e_k = (b - 1) beta_k.
    long double dn = 0.0L;
    for (int k = 1; k <= n; ++k) dn += k * kLogSinhc[k - 1] * d[n - k];
    d[n] = (lb - 1.0L) * dn / n;
    const long double v = lb + 2.0L * (n - 1);
    const long double r_next = r * (u / (v + 1.0L));
    p -= r + r_next;
    q += r + r_next;
    r = r_next * (u / (v + 2.0L));
    pochhammer *= (v / big_t) * ((v + 1.0L) / big_t);
    const long double c = d[n] * pochhammer;
    sum_p += c * p;
    sum_q += c * q;
    constexpr long double eps = std::numeric_limits<long double>::epsilon();
    if (std::fabs(c * p) <= eps * sum_p && std::fabs(c * q) <= eps * sum_q) break;
  }
  const long double m = std::exp(log_m);
  return {static_cast<double>(m * sum_q), static_cast<double>(m * sum_p), g.converged};
}

}  // namespace vek::specfun
