#include "stats/log_tails.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"
#include "stats/continuous.h"

namespace vek::stats {
namespace {

// Below this the logarithm of a tail is taken from its own formula rather than from the (underflowing) tail.
constexpr double kSmallTail = 1e-290;
constexpr double kSmallComplement = 1e-20;
constexpr double kInvSqrt2 = 0.7071067811865475;

// ln P(Z >= x): for x > 5 through the scaled erfc, ln(erfcx(x/sqrt 2)/2) - x^2/2, with no underflow; for
// x < 0 as log1p of minus the lower tail, which is then the small one.
double log_upper(double x) {
  if (x > 5.0) return std::log(0.5 * specfun::erfcx(x * kInvSqrt2)) - 0.5 * x * x;
  if (x >= 0.0) return std::log(normal_probability(Tail::upper, x));
  return std::log1p(-normal_probability(Tail::lower, x));
}

// A tail that is the incomplete beta I_t(p, q) with t below this (formed in long double, where it may lie far
// below the doubles) is its leading term t^p / (p B(p, q)) (the series I_t = t^p (1 - t)^q / (p B(p, q)) 2F1(p + q,
// 1; p + 1; t) without its next term, (p + q) t / (p + 1) relative) where (p + q) t is below kNegligibleTerm.
constexpr double kTinyArgument = 1e-290;
constexpr double kNegligibleTerm = 1e-20;

bool leading_term_applies(long double t, double p, double q) {
  return t < kTinyArgument && (static_cast<long double>(p) + q) * t < kNegligibleTerm;
}
long double log_leading_term(long double log_t, double p, double q) {
  return p * log_t - std::log(static_cast<long double>(p)) - specfun::lbeta(p, q);
}

// The logarithms of the lower and upper tails from those of I_t(p, q) at the smaller argument: lower_is_w says
// whether I is the lower tail.
struct LogTails {
  double lower;
  double upper;
};
LogTails from_beta(const specfun::BetaIncLog& r, bool lower_is_w) {
  return lower_is_w ? LogTails{r.log_w, r.log_w1} : LogTails{r.log_w1, r.log_w};
}

// ln P(|T| >= |t|), ln P(|T| <= |t|), and P(|T| >= |t|) itself (0 where it underflows).
struct TwoSidedLog {
  double log_beyond;
  double log_within;
  double beyond;
};

TwoSidedLog t_two_sided_log(double t, double df) {
  const double at = std::fabs(t);
  if (std::isnan(at) || std::isnan(df)) return {std::nan(""), std::nan(""), std::nan("")};
  if (std::isinf(df)) {
    return {normal_log_probability(Tail::significance, at), normal_log_probability(Tail::central, at),
            normal_probability(Tail::significance, at)};
  }
  if (at == 0.0) return {0.0, -HUGE_VAL, 1.0};
  if (std::isinf(at)) return {-HUGE_VAL, 0.0, 0.0};
  const double a = 0.5 * df;
  // The two-sided tail is I_x(df/2, 1/2), x = df/(df + t^2); x and y = t^2/(df + t^2) each as its own quotient
  // in long double, whose exponent range holds t^2 for every double t; the leading term from ln x = ln df -
  // 2 ln|t| - log1p(df/t^2).
  const long double tt = static_cast<long double>(at) * at, x = df / (df + tt), y = tt / (df + tt);
  if (leading_term_applies(x, a, 0.5)) {
    const long double lb = log_leading_term(std::log(static_cast<long double>(df)) - 2.0L * std::log(static_cast<long double>(at)), a, 0.5);
    return {static_cast<double>(lb), static_cast<double>(-std::exp(lb)), static_cast<double>(std::exp(lb))};
  }
  if (x <= 0.5) {
    const specfun::BetaIncLog r = specfun::beta_inc_log(a, 0.5, static_cast<double>(x));
    return {r.log_w, r.log_w1, r.w};
  }
  const specfun::BetaIncLog r = specfun::beta_inc_log(0.5, a, static_cast<double>(y));
  return {r.log_w1, r.log_w, r.w1};
}

}  // namespace

double t_log_probability(Tail tail, double t, double df) {
  const TwoSidedLog s = t_two_sided_log(t, df);
  // The one-sided tail on the far side is half the two-sided one; on the near side 1 minus that half, from the
  // value while it is in the normal range, else from its logarithm.
  const double half = s.beyond >= 0x1p-1000 ? 0.5 * s.beyond : 0.5 * std::exp(s.log_beyond);
  switch (tail) {
    case Tail::significance: return s.log_beyond;
    case Tail::central: return s.log_within;
    case Tail::upper: return t >= 0.0 ? s.log_beyond - std::numbers::ln2 : std::log1p(-half);
    case Tail::lower: return t <= 0.0 ? s.log_beyond - std::numbers::ln2 : std::log1p(-half);
  }
  return std::nan("");
}

double f_log_tail(bool lower, double f, double df1, double df2) {
  if (std::isnan(f) || std::isnan(df1) || std::isnan(df2)) return std::nan("");
  if (std::isinf(df1) && std::isinf(df2)) return (f >= 1.0) == lower ? 0.0 : -HUGE_VAL;
  if (std::isinf(df2)) return gamma_log_tail(lower, df1 * f, 0.5 * df1, 2.0);  // df1 F is chi-square
  if (std::isinf(df1)) return gamma_log_tail(!lower, df2 / f, 0.5 * df2, 2.0);  // df2 / F is chi-square
  if (std::isinf(f)) return lower ? 0.0 : -HUGE_VAL;
  // x = df1 f/(df1 f + df2) and y = df2/(df1 f + df2) in long double: I_x(df1/2, df2/2) is the lower tail.
  const double a = 0.5 * df1, b = 0.5 * df2;
  const long double u = static_cast<long double>(df1) * f, x = u / (u + df2), y = df2 / (u + df2);
  if (leading_term_applies(x, a, b)) {  // ln x = ln(df1 f) - log1p(df1 f / df2) - ln df2, the log1p negligible
    const long double ll = log_leading_term(std::log(u) - std::log(static_cast<long double>(df2)), a, b);
    return lower ? static_cast<double>(ll) : static_cast<double>(-std::exp(ll));
  }
  if (leading_term_applies(y, b, a)) {
    const long double lu = log_leading_term(std::log(static_cast<long double>(df2)) - std::log(u), b, a);
    return lower ? static_cast<double>(-std::exp(lu)) : static_cast<double>(lu);
  }
  const LogTails r = x <= 0.5 ? from_beta(specfun::beta_inc_log(a, b, static_cast<double>(x)), true)
                              : from_beta(specfun::beta_inc_log(b, a, static_cast<double>(y)), false);
  return lower ? r.lower : r.upper;
}

double beta_log_tail(bool lower, double x, double a, double b) {
  const specfun::BetaIncLog r = specfun::beta_inc_log(a, b, x);
  return lower ? r.log_w : r.log_w1;
}

double normal_log_probability(Tail tail, double x) {
  switch (tail) {
    case Tail::upper: return log_upper(x);
    case Tail::lower: return log_upper(-x);
    case Tail::significance:
    case Tail::central: {  // the smaller of the two through its logarithm, the larger through log1p
      const double s = normal_probability(Tail::significance, x), c = normal_probability(Tail::central, x);
      if (tail == Tail::central) return s < 0.5 ? std::log1p(-s) : std::log(c);
      return s > 0.5 ? std::log1p(-c) : std::numbers::ln2 + log_upper(std::fabs(x));
    }
  }
  return std::nan("");
}

// The smaller tail as its logarithm, the larger as ln(1 - c) = log1p(-c) with its complement c. Where a tail
// is below 1e-290 (or, as the complement, below 1e-20, where log1p(-c) keeps only c's relative error), it is
// taken from the kernel's logarithm, whose exponent is formed in long double, rather than from the pair.
double gamma_log_tail(bool lower, double g, double a, double b) {
  const Tails t = gamma_tails(g, a, b);
  const double tail = lower ? t.lower : t.upper, other = lower ? t.upper : t.lower, x = g / b;
  const bool interior = x > 0.0 && x < std::numeric_limits<double>::infinity();
  if (!(tail > other)) {  // also NaN
    if (tail >= kSmallTail || !interior) return std::log(tail);
    return static_cast<double>(specfun::gamma_tail_log(a, x, lower).log_tail);
  }
  if (other >= kSmallComplement || !interior) return std::log1p(-other);
  return std::log1p(-static_cast<double>(std::exp(specfun::gamma_tail_log(a, x, !lower).log_tail)));
}

}  // namespace vek::stats
