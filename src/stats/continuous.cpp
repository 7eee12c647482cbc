#include "stats/continuous.h"

#include <cmath>
#include <limits>

#include "specfun/specfun.h"

namespace vek::stats {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Below this ratio r = df/t^2 the t tail is its leading term r^a / (a B(a, 1/2)): the next term is r times
// smaller, and the incomplete beta's argument df/(df + t^2) would lose digits or underflow.
constexpr double kTinyRatio = 1e-60;
// The far-tail form is used only where the two-sided tail is below this, so that the other side is 1.
constexpr double kNegligible = 0x1p-54;
// Beyond this many degrees of freedom the t deviate is found by Newton's iteration on the probability.
constexpr double kNewtonDf = 1e5;

// P(|T| >= |t|) and P(|T| <= |t|).
struct TwoSided {
  double beyond;
  double within;
};

TwoSided t_two_sided(double t, double df) {
  const double at = std::fabs(t);
  if (std::isnan(at) || std::isnan(df)) return {kNaN, kNaN};
  if (std::isinf(df))
    return {normal_probability(Tail::significance, at), normal_probability(Tail::central, at)};
  if (at == 0.0) return {1.0, 0.0};
  if (std::isinf(at)) return {0.0, 1.0};
  const double a = 0.5 * df;
  // x = df/(df + t^2) and y = t^2/(df + t^2), each its own quotient (1 - x would lose y's digits for small t),
  // in long double, whose exponent range holds t^2 for every double t.
  const long double tt = static_cast<long double>(at) * at;
  const long double r = df / tt;
  if (r < kTinyRatio) {  // the exponent (hundreds in the far tail) in long double, so that its rounding stays small
    const double beyond =
        static_cast<double>(std::exp(a * std::log(r) - std::log(static_cast<long double>(a)) - specfun::lbeta(a, 0.5)));
    if (beyond < kNegligible) return {beyond, 1.0};
  }
  const double x = static_cast<double>(df / (df + tt));
  const double y = static_cast<double>(tt / (df + tt));
  // I_x(df/2, 1/2) is the two-sided tail; the smaller argument keeps its digits.
  if (x <= 0.5) {
    const specfun::BetaInc b = specfun::beta_inc_pair(a, 0.5, x);
    return {b.w, b.w1};
  }
  const specfun::BetaInc b = specfun::beta_inc_pair(0.5, a, y);
  return {b.w1, b.w};
}

// The x (and y = 1 - x) with I_x(a, b) = p and 1 - I_x = q. The kernel's answer is checked against the
// smaller tail; where it is off (far in the lower tail with a, b >= 1 its Newton steps in x can stall, halving
// toward 0), that tail is solved again by Newton's iteration in ln x from the end behaviour I ~ x^a / (a B),
// with a last step in x.
specfun::BetaIncInverse beta_quantile(double a, double b, double p, double q) {
  const specfun::BetaIncInverse r = specfun::beta_inc_inv(a, b, p, q);
  const bool lower = p <= q;
  const double t = lower ? p : q, ta = lower ? a : b, tb = lower ? b : a;
  const double x0 = lower ? r.x : r.y;
  if (!(t > 0.0) || !(x0 > 0.0) || std::fabs(specfun::beta_inc_pair(ta, tb, x0).w - t) <= 1e-9 * t) return r;
  const double log_t = std::log(t);
  double u = (log_t + std::log(ta) + specfun::lbeta(ta, tb)) / ta;
  for (int i = 0; i < 100 && u < 0.0; ++i) {
    const double x = std::exp(u);
    const double w = specfun::beta_inc_pair(ta, tb, x).w, density = specfun::beta_inc_derivative(ta, tb, x);
    if (!(w > 0.0) || !(density > 0.0)) break;
    const double step = (std::log(w) - log_t) * w / (x * density);  // d ln I / d ln x = x I' / I
    u -= step;
    if (std::fabs(step) <= 0x1p-50) break;
  }
  // A last step in x itself: exp(u) carries the rounding of u, |u| ulps.
  double x = std::exp(u);
  const double w = specfun::beta_inc_pair(ta, tb, x).w, density = specfun::beta_inc_derivative(ta, tb, x);
  if (w > 0.0 && density > 0.0) x -= (w - t) / density;
  return lower ? specfun::BetaIncInverse{x, 1.0 - x} : specfun::BetaIncInverse{1.0 - x, x};
}

// |t| with two-sided tail beyond (within = 1 - beyond) by Newton's iteration on the logarithm of the smaller
// of the two, from the normal deviate with the first term of its expansion in 1/df (Cornish-Fisher); for the
// large df, where the inverse incomplete beta (parameters df/2 and 1/2) converges poorly or not at all.
double t_by_newton(double beyond, double within, double df) {
  const bool use_beyond = beyond <= within;
  const double target = std::log(use_beyond ? beyond : within);
  const double z = normal_deviate(Tail::significance, beyond);
  double t = z + (z * z * z + z) / (4.0 * df);
  const double log_norm = -0.5 * std::log(df) - specfun::lbeta(0.5 * df, 0.5);
  for (int i = 0; i < 50; ++i) {
    const TwoSided s = t_two_sided(t, df);
    const double tail = use_beyond ? s.beyond : s.within;
    const double density = std::exp(log_norm - 0.5 * (df + 1.0) * std::log1p(t * t / df));
    if (!(tail > 0.0) || !(density > 0.0)) break;
    const double slope = (use_beyond ? -2.0 : 2.0) * density / tail;  // d ln tail / dt
    const double step = (std::log(tail) - target) / slope;
    t -= step;
    if (std::fabs(step) <= 4.0 * 0x1p-52 * t) break;
  }
  return t;
}

// |t| whose two-sided tail is beyond (within = 1 - beyond, the smaller of the two matched exactly).
double t_from_two_sided(double beyond, double within, double df) {
  if (within == 0.0) return 0.0;
  const double a = 0.5 * df;
  const long double log_r =
      (std::log(static_cast<long double>(beyond)) + std::log(static_cast<long double>(a)) + specfun::lbeta(a, 0.5)) / a;
  if (log_r < std::log(kTinyRatio) && beyond < kNegligible)
    return static_cast<double>(std::sqrt(static_cast<long double>(df)) * std::exp(-0.5L * log_r));
  if (df > kNewtonDf) return t_by_newton(beyond, within, df);
  const specfun::BetaIncInverse inv = beta_quantile(a, 0.5, beyond, within);
  return static_cast<double>(std::sqrt(static_cast<long double>(df) * inv.y / inv.x));
}

// x / (x + c) and c / (x + c) for x, c >= 0, in long double (no overflow of the sum for any doubles).
Tails split(long double x, long double c) {
  return {static_cast<double>(x / (x + c)), static_cast<double>(c / (x + c))};
}

// The tails of the beta with a, b at the point with x and y = 1 - x given separately.
Tails beta_tails_split(double a, double b, double x, double y) {
  if (x <= 0.5) {
    const specfun::BetaInc r = specfun::beta_inc_pair(a, b, x);
    return {r.w, r.w1};
  }
  const specfun::BetaInc r = specfun::beta_inc_pair(b, a, y);
  return {r.w1, r.w};
}

// The lower and upper probabilities (p, 1 - p or 1 - p, p) that an inverse kernel matches.
Tails as_pair(Tail tail, double p) { return tail == Tail::lower ? Tails{p, 1.0 - p} : Tails{1.0 - p, p}; }

}  // namespace

double t_probability(Tail tail, double t, double df) {
  const TwoSided s = t_two_sided(t, df);
  switch (tail) {
    case Tail::significance: return s.beyond;
    case Tail::central: return s.within;
    case Tail::upper: return t >= 0.0 ? 0.5 * s.beyond : 0.5 + 0.5 * s.within;
    case Tail::lower: return t <= 0.0 ? 0.5 * s.beyond : 0.5 + 0.5 * s.within;
  }
  return kNaN;
}

double t_deviate(Tail tail, double p, double df) {
  if (std::isnan(p) || std::isnan(df)) return kNaN;
  if (std::isinf(df)) return normal_deviate(tail, p);
  switch (tail) {
    case Tail::significance: return t_from_two_sided(p, 1.0 - p, df);
    case Tail::central: return t_from_two_sided(1.0 - p, p, df);
    case Tail::upper:
    case Tail::lower: {
      // The one-sided tail below 1/2 is half the two-sided one; 2p - 1 and 1 - 2p are exact where used.
      const bool small = p <= 0.5;
      const double beyond = small ? 2.0 * p : 2.0 * (1.0 - p);
      const double within = small ? 1.0 - 2.0 * p : 2.0 * p - 1.0;
      const double at = t_from_two_sided(beyond, within, df);
      return (small == (tail == Tail::upper)) ? at : -at;
    }
  }
  return kNaN;
}

Tails gamma_tails(double g, double a, double b) {
  const specfun::GammaPQ r = specfun::gamma_pq(a, g / b);
  return {r.p, r.q};
}

double gamma_deviate(Tail tail, double p, double a, double b) {
  const Tails pq = as_pair(tail, p);
  return b * specfun::gamma_pq_inv(a, pq.lower, pq.upper);
}

Tails f_tails(double f, double df1, double df2) {
  if (std::isnan(f) || std::isnan(df1) || std::isnan(df2)) return {kNaN, kNaN};
  if (std::isinf(df1) && std::isinf(df2)) return {f >= 1.0 ? 1.0 : 0.0, f >= 1.0 ? 0.0 : 1.0};
  if (std::isinf(df2)) return gamma_tails(df1 * f, 0.5 * df1, 2.0);  // df1 F is chi-square
  if (std::isinf(df1)) {  // df2 / F is chi-square
    const Tails c = gamma_tails(df2 / f, 0.5 * df2, 2.0);
    return {c.upper, c.lower};
  }
  if (std::isinf(f)) return {1.0, 0.0};
  // x = df1 f/(df1 f + df2), y = df2/(df1 f + df2): I_x(df1/2, df2/2) is the lower tail.
  const Tails xy = split(static_cast<long double>(df1) * f, df2);
  return beta_tails_split(0.5 * df1, 0.5 * df2, xy.lower, xy.upper);
}

double f_deviate(Tail tail, double p, double df1, double df2) {
  if (std::isinf(df1) && std::isinf(df2)) return std::isnan(p) ? kNaN : 1.0;
  if (std::isinf(df2)) return gamma_deviate(tail, p, 0.5 * df1, 2.0) / df1;
  if (std::isinf(df1)) {
    const Tail other = tail == Tail::lower ? Tail::upper : Tail::lower;
    return df2 / gamma_deviate(other, p, 0.5 * df2, 2.0);
  }
  const Tails pq = as_pair(tail, p);
  const specfun::BetaIncInverse inv = beta_quantile(0.5 * df1, 0.5 * df2, pq.lower, pq.upper);
  return static_cast<double>(static_cast<long double>(df2) * inv.x / (static_cast<long double>(df1) * inv.y));
}

Tails beta_tails(double x, double a, double b) {
  const specfun::BetaInc r = specfun::beta_inc_pair(a, b, x);
  return {r.w, r.w1};
}

double beta_deviate(Tail tail, double p, double a, double b) {
  const Tails pq = as_pair(tail, p);
  return beta_quantile(a, b, pq.lower, pq.upper).x;
}

Tails lognormal_tails(double x, double mu, double sigma) {
  const double z = (std::log(x) - mu) / sigma;
  return {normal_probability(Tail::lower, z), normal_probability(Tail::upper, z)};
}

double lognormal_deviate(Tail tail, double p, double mu, double sigma) {
  return std::exp(mu + sigma * normal_deviate(tail, p));
}

}  // namespace vek::stats
