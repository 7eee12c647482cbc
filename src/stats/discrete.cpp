#include "stats/discrete.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::stats {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ln n! - [(n + 1/2) ln n - n + ln(2 pi)/2] for n = 1..9 (mpmath, 21 digits); from 10 on the Stirling series.
long double stirling_error(long double n) {
  static constexpr long double table[] = {
      0.0810614667953272582197L, 0.0413406959554092940938L, 0.0276779256849983391488L,
      0.0207906721037650931115L, 0.0166446911898211921632L, 0.0138761288230707479987L,
      0.0118967099458917700951L, 0.0104112652619720964975L, 0.00925546218271273291773L};
  if (n < 10) return table[static_cast<int>(n) - 1];
  return specfun::stirling_remainder(static_cast<double>(n));
}

// x ln(x/m) + m - x >= 0, the deviance of x from m; near m through the series in v = (x - m)/(x + m), which
// has no cancellation (Loader, "Fast and accurate computation of binomial probabilities", 2000).
long double deviance(long double x, long double m) {
  if (std::fabs(x - m) < 0.1L * (x + m)) {
    const long double v = (x - m) / (x + m), v2 = v * v;
    long double sum = (x - m) * v, term = 2 * x * v;
    for (int j = 1; j < 1000; ++j) {
      term *= v2;
      const long double next = sum + term / (2 * j + 1);
      if (next == sum) break;
      sum = next;
    }
    return sum;
  }
  return x * std::log(x / m) + m - x;
}

// ln of the binomial probability of x successes in n trials of probability p (q = 1 - p), 0 <= x <= n, in
// Loader's saddle-point form: no lgamma differences, whose rounding would grow with n.
long double log_binomial_point(long double x, long double n, long double p, long double q) {
  if (x == 0) return n == 0 ? 0.0L : (p < 0.1L ? -deviance(n, n * q) - n * p : n * std::log(q));
  if (x == n) return q < 0.1L ? -deviance(n, n * p) - n * q : n * std::log(p);
  const long double lc = stirling_error(n) - stirling_error(x) - stirling_error(n - x) - deviance(x, n * p) -
                         deviance(n - x, n * q);
  return lc - 0.5L * std::log(2 * std::numbers::pi_v<long double> * x * (1 - x / n));
}

// P(X <= k) and P(X > k) for lo <= k < hi by summing point probabilities: log_point(x) is the logarithm of
// P(X = x), down(x) = P(X = x - 1)/P(X = x) and up(x) = P(X = x + 1)/P(X = x). The tail on the far side of the
// mode is summed outward from k, its terms falling away from the mode, until they no longer change the long
// double sum; the other tail holds the mode, so it is not small and 1 minus the sum cannot cancel.
template <class LogPoint, class Down, class Up>
Tails sum_tails(int64_t k, int64_t lo, int64_t hi, int64_t mode, LogPoint log_point, Down down, Up up) {
  constexpr long double kStop = std::numeric_limits<long double>::epsilon() / 8;
  long double sum = 0;
  if (k < mode) {
    long double term = std::exp(log_point(static_cast<long double>(k)));
    for (int64_t j = k; term > kStop * sum; --j) {
      sum += term;
      if (j == lo) break;
      term *= down(static_cast<long double>(j));
    }
    return {static_cast<double>(sum), static_cast<double>(1 - sum)};
  }
  long double term = std::exp(log_point(static_cast<long double>(k + 1)));
  for (int64_t j = k + 1; term > kStop * sum; ++j) {
    sum += term;
    if (j == hi) break;
    term *= up(static_cast<long double>(j));
  }
  return {static_cast<double>(1 - sum), static_cast<double>(sum)};
}

// The incomplete beta's continued fraction loses digits where one parameter is below this fraction of the
// other; the binomial tails are summed there instead.
constexpr double kBetaRatioLimit = 1e-5;

}  // namespace

Tails poisson_tails(int64_t k, double lambda) {
  if (std::isnan(lambda)) return {kNaN, kNaN};
  if (k < 0) return {0.0, 1.0};
  if (std::isinf(lambda)) return {0.0, 1.0};
  // P(X <= k) = Q(k + 1, lambda), P(X > k) = P(k + 1, lambda).
  const specfun::GammaPQ r = specfun::gamma_pq(static_cast<double>(k) + 1.0, lambda);
  return {r.q, r.p};
}

Tails binomial_tails(int64_t k, int64_t n, double p) {
  if (std::isnan(p)) return {kNaN, kNaN};
  if (k < 0) return {0.0, 1.0};
  if (k >= n || p == 0.0) return {1.0, 0.0};
  if (p == 1.0) return {0.0, 1.0};
  const double a = static_cast<double>(k) + 1.0, b = static_cast<double>(n - k);
  if (std::min(a, b) < kBetaRatioLimit * std::max(a, b)) {
    const long double pp = p, qq = 1 - pp, nn = static_cast<long double>(n);
    const int64_t mode = static_cast<int64_t>(std::floor((nn + 1) * pp));
    return sum_tails(
        k, 0, n, std::min(mode, n), [&](long double x) { return log_binomial_point(x, nn, pp, qq); },
        [&](long double x) { return x * qq / ((nn - x + 1) * pp); },
        [&](long double x) { return (nn - x) * pp / ((x + 1) * qq); });
  }
  // P(X > k) = I_p(k + 1, n - k), P(X <= k) its complement from the same kernel.
  const specfun::BetaInc r = specfun::beta_inc_pair(a, b, p);
  return {r.w1, r.w};
}

Tails hypergeometric_tails(int64_t k, int64_t population, int64_t sample, int64_t marked) {
  const int64_t unmarked = population - marked;
  const int64_t lo = std::max<int64_t>(0, sample - unmarked), hi = std::min(sample, marked);
  if (k < lo) return {0.0, 1.0};
  if (k >= hi) return {1.0, 0.0};
  const long double N = static_cast<long double>(population), n = static_cast<long double>(sample);
  const long double r = static_cast<long double>(marked), b = static_cast<long double>(unmarked);
  // The point probability as Loader's ratio of three binomial ones, with p = sample/population (any p gives the
  // same ratio; this one keeps each factor near its mode).
  const long double p = n / N, q = (N - n) / N;
  const int64_t mode = static_cast<int64_t>(std::floor((n + 1) * (r + 1) / (N + 2)));
  return sum_tails(
      k, lo, hi, mode,
      [&](long double x) {
        return log_binomial_point(x, r, p, q) + log_binomial_point(n - x, b, p, q) - log_binomial_point(n, N, p, q);
      },
      [&](long double x) { return x * (b - n + x) / ((r - x + 1) * (n - x + 1)); },
      [&](long double x) { return (r - x) * (n - x) / ((x + 1) * (b - n + x + 1)); });
}

}  // namespace vek::stats
