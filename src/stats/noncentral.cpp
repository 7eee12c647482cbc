// With mu the Poisson mean, the distributions are sums over j >= 0 of Poisson weights w_j times central
// probabilities in [0, 1]:
//   chi-square:  P(X <= x) = sum w_j P(df/2 + j, x/2),                       mu = lambda/2
//   F:           P(F <= f) = sum w_j I_y(df1/2 + j, df2/2), y = df1 f/(df1 f + df2),  mu = lambda/2
//   t (t >= 0):  P(T <= t) = Phi(-delta) + 1/2 sum [p_j I_y(j + 1/2, df/2) + q_j I_y(j + 1, df/2)],
//                y = t^2/(t^2 + df), p_j = e^-mu mu^j / j!, q_j = sign(delta) e^-mu mu^(j+1/2) / Gamma(j + 3/2),
//                mu = delta^2/2 (Lenth, AS 243, Applied Statistics 38, 1989)
// and the upper tails the same sums with the complements (for the t, 1/2 sum (p_j + q_j) = Phi(delta)).
// The sum starts at j = floor(mu) and runs both ways until the Poisson tail beyond, bounded by a geometric
// series, is below half an ulp of the sum (Benton and Krishnamoorthy, CSDA 43, 2003, for the direction).
#include "stats/noncentral.h"

#include <cmath>
#include <limits>

#include "specfun/specfun.h"
#include "stats/compensated_sum.h"
#include "stats/normal_more.h"

namespace vek::stats {
namespace {

constexpr double kHalfUlp = 0x1p-53;

// e^-mu mu^(a-1) / Gamma(a): the Poisson probability of j for a = j + 1; 0 for mu = 0 except at a = 1.
double poisson_weight(double a, double mu) {
  if (mu == 0.0) return a == 1.0 ? 1.0 : 0.0;
  return specfun::gamma_p_derivative(a, mu);
}

struct Term {
  double lower, upper;  // the j-th term of each tail's sum
  double bound;         // the Poisson weight bounding both in absolute value
};

// Both tails' sums over j of term(j), each to half an ulp of the smaller. Upwards the weights fall by at
// least mu/(j + 2) per step past j, so what is left is below bound(j) r/(1 - r); downwards by (j + 1/2)/mu.
// A tail that underflows ends the sums where the weights do (about 39 sqrt(mu) from the start each way).
template <class TermOf>
TailPair mixture(double mu, TermOf term_of) {
  CompensatedSum lower, upper;
  const auto wanted = [&] { return std::fmin(std::fabs(lower.value()), std::fabs(upper.value())); };
  const double start = std::floor(mu);
  for (double j = start;; j += 1.0) {
    const Term t = term_of(j);
    lower.add(t.lower);
    upper.add(t.upper);
    const double r = mu / (j + 2.0);
    if (r < 1.0 && t.bound * r / (1.0 - r) <= kHalfUlp * wanted()) break;
  }
  for (double j = start - 1.0; j >= 0.0; j -= 1.0) {
    const Term t = term_of(j);
    lower.add(t.lower);
    upper.add(t.upper);
    const double s = (j + 0.5) / mu;
    if (s < 1.0 && t.bound * s / (1.0 - s) <= kHalfUlp * wanted()) break;
  }
  return {lower.value(), upper.value()};
}

// A shape a = df/2 that underflows to zero (df the smallest subnormal) is the limit df -> 0: the central
// chi-square becomes a point mass at 0, so P(a, h) = 1, and likewise I_y(a, b) = 1 and, for b -> 0,
// I_y(a, b) = 0. The neglected parts are O(df), below the smallest subnormal.
TailPair gamma_tails(double a, double h) {
  if (a == 0.0) return {1.0, 0.0};
  const specfun::GammaPQ g = specfun::gamma_pq(a, h);
  return {g.p, g.q};
}

// I_y(a, b) and 1 - I_y(a, b) given y and 1 - y = z separately, evaluated at the smaller of the two so that
// neither is formed as 1 minus the other.
TailPair beta_tails(double a, double b, double y, double z) {
  if (a == 0.0) return {1.0, 0.0};
  if (b == 0.0) return {0.0, 1.0};
  if (y <= z) {
    const specfun::BetaInc r = specfun::beta_inc_pair(a, b, y);
    return {r.w, r.w1};
  }
  const specfun::BetaInc r = specfun::beta_inc_pair(b, a, z);
  return {r.w1, r.w};
}

// u/(1 + u) and 1/(1 + u) for u >= 0 (infinite allowed), without overflow.
TailPair ratio_split(double u) {
  if (u <= 1.0) return {u / (1.0 + u), 1.0 / (1.0 + u)};
  const double s = 1.0 / u;
  return {1.0 / (1.0 + s), s / (1.0 + s)};
}

bool any_nan(double a, double b, double c, double d = 0.0) {
  return std::isnan(a) || std::isnan(b) || std::isnan(c) || std::isnan(d);
}

constexpr TailPair kNaN = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};

// The t's sums for t >= 0.
TailPair t_nonnegative(double t, double df, double delta) {
  const double mu = delta * delta / 2.0, sign = delta < 0.0 ? -1.0 : 1.0, r = t / std::sqrt(df);
  const TailPair y = ratio_split(r * r);
  TailPair s = mixture(mu, [&](double j) {
    const double p = poisson_weight(j + 1.0, mu), q = sign * poisson_weight(j + 1.5, mu);
    const TailPair ip = p == 0.0 ? TailPair{0.0, 0.0} : beta_tails(j + 0.5, df / 2.0, y.lower, y.upper);
    const TailPair iq = q == 0.0 ? TailPair{0.0, 0.0} : beta_tails(j + 1.0, df / 2.0, y.lower, y.upper);
    return Term{0.5 * (p * ip.lower + q * iq.lower), 0.5 * (p * ip.upper + q * iq.upper),
                0.5 * (p + std::fabs(q))};
  });
  s.lower += normal_upper(delta);
  return s;
}

}  // namespace

TailPair noncentral_chi_square(double x, double df, double lambda) {
  if (any_nan(x, df, lambda)) return kNaN;
  const double mu = lambda / 2.0, a = df / 2.0, h = x / 2.0;
  return mixture(mu, [&](double j) {
    const double w = poisson_weight(j + 1.0, mu);
    if (w == 0.0) return Term{0.0, 0.0, 0.0};
    const TailPair g = gamma_tails(a + j, h);
    return Term{w * g.lower, w * g.upper, w};
  });
}

TailPair noncentral_f(double f, double df1, double df2, double lambda) {
  if (any_nan(f, df1, df2, lambda)) return kNaN;
  const double mu = lambda / 2.0;
  const TailPair y = ratio_split(f / df2 * df1);
  return mixture(mu, [&](double j) {
    const double w = poisson_weight(j + 1.0, mu);
    if (w == 0.0) return Term{0.0, 0.0, 0.0};
    const TailPair i = beta_tails(df1 / 2.0 + j, df2 / 2.0, y.lower, y.upper);
    return Term{w * i.lower, w * i.upper, w};
  });
}

TailPair noncentral_t(double t, double df, double delta) {
  if (any_nan(t, df, delta)) return kNaN;
  // P(T <= t; delta) = P(T >= -t; -delta).
  if (t < 0.0) {
    const TailPair r = t_nonnegative(-t, df, -delta);
    return {r.upper, r.lower};
  }
  return t_nonnegative(t, df, delta);
}

}  // namespace vek::stats
