// Deviates of the discrete distributions: the smallest k with P(X <= k) >= p (lower tail) or P(X > k) <= p
// (upper tail), against the probabilities of discrete.cpp themselves, so that p equal to a tail at k gives k
// exactly and the steps fall where those probabilities cross p.
//
// The tails are monotone in k, so the answer is found by bracketing from a Cornish-Fisher start (the normal
// deviate corrected for skewness, within a few units of the answer for all but the smallest p): steps of 1, 2,
// 4, ... away from the start until the condition changes, then bisection. About 2 log2(distance) + 2
// evaluations of a tail.
#include <algorithm>
#include <cmath>
#include <limits>

#include "stats/discrete.h"

namespace vek::stats {
namespace {

// The largest k a deviate is looked for at (the Poisson support has no top).
constexpr int64_t kLargestDeviate = std::numeric_limits<int64_t>::max() / 2;

// k from the mean, standard deviation and skewness of X: mean + sd (z + skew (z^2 - 1)/6) - 1/2, clamped to
// [lo, hi] (NaN gives lo).
int64_t cornish_fisher_start(Tail tail, double p, double mean, double sd, double skew, int64_t lo, int64_t hi) {
  const double z = normal_deviate(tail == Tail::lower ? Tail::lower : Tail::upper, p);
  const double k = std::floor(mean + sd * (z + skew * (z * z - 1.0) / 6.0) + 0.5);
  if (!(k > static_cast<double>(lo))) return lo;
  if (!(k < static_cast<double>(hi))) return hi;
  return static_cast<int64_t>(k);
}

// The smallest k in [lo, hi] whose tail reaches p; k = hi always does (the support lies at or below it).
template <class TailsAt>
int64_t smallest_reaching(Tail tail, double p, int64_t lo, int64_t hi, int64_t start, TailsAt tails_at) {
  const auto reached = [&](int64_t k) {
    const Tails t = tails_at(k);
    return tail == Tail::lower ? t.lower >= p : t.upper <= p;
  };
  // reached(good) holds and reached(bad) does not; bad = lo - 1 stands for "below the support".
  int64_t good, bad;
  if (reached(start)) {
    good = start;
    bad = lo - 1;
    for (int64_t step = 1; good > lo; step = std::min(step, kLargestDeviate) * 2) {
      const int64_t k = good - lo <= step ? lo : good - step;
      if (!reached(k)) {
        bad = k;
        break;
      }
      good = k;
    }
  } else {
    bad = start;
    good = hi;
    for (int64_t step = 1; hi - bad > step; step = std::min(step, kLargestDeviate) * 2) {
      const int64_t k = bad + step;
      if (reached(k)) {
        good = k;
        break;
      }
      bad = k;
    }
  }
  while (good - bad > 1) {
    const int64_t mid = bad + (good - bad) / 2;
    (reached(mid) ? good : bad) = mid;
  }
  return good;
}

}  // namespace

int64_t binomial_deviate(Tail tail, double prob, int64_t n, double p) {
  const double nd = static_cast<double>(n), sd = std::sqrt(nd * p * (1.0 - p));
  const double skew = sd > 0.0 ? (1.0 - 2.0 * p) / sd : 0.0;
  const int64_t start = cornish_fisher_start(tail, prob, nd * p, sd, skew, 0, n);
  return smallest_reaching(tail, prob, 0, n, start, [&](int64_t k) { return binomial_tails(k, n, p); });
}

int64_t poisson_deviate(Tail tail, double prob, double lambda) {
  const double sd = std::sqrt(lambda);
  const int64_t start = cornish_fisher_start(tail, prob, lambda, sd, sd > 0.0 ? 1.0 / sd : 0.0, 0, kLargestDeviate);
  return smallest_reaching(tail, prob, 0, kLargestDeviate, start, [&](int64_t k) { return poisson_tails(k, lambda); });
}

int64_t hypergeometric_deviate(Tail tail, double prob, int64_t population, int64_t sample, int64_t marked) {
  const int64_t lo = std::max<int64_t>(0, sample - (population - marked)), hi = std::min(sample, marked);
  const double n = static_cast<double>(population), l = static_cast<double>(sample);
  const double f = n > 0.0 ? static_cast<double>(marked) / n : 0.0;
  const double sd = n > 1.0 ? std::sqrt(l * f * (1.0 - f) * ((n - l) / (n - 1.0))) : 0.0;
  const int64_t start = cornish_fisher_start(tail, prob, l * f, sd, 0.0, lo, hi);
  return smallest_reaching(tail, prob, lo, hi, start,
                           [&](int64_t k) { return hypergeometric_tails(k, population, sample, marked); });
}

}  // namespace vek::stats
