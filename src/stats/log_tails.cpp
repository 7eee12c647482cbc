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

}  // namespace

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
