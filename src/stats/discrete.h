// Probabilities of the discrete distributions of the chapter: Poisson, binomial and hypergeometric. The lower
// tail is P(X <= k) and the upper tail P(X > k), each computed directly (the upper never as 1 - lower), so a
// tail keeps its relative accuracy down to the underflow threshold. Pure functions.
#pragma once

#include <cstdint>

#include "stats/continuous.h"

namespace vek::stats {

// Poisson with mean lambda >= 0 (NaN gives NaN).
Tails poisson_tails(int64_t k, double lambda);

// Binomial with n >= 0 trials of success probability 0 <= p <= 1.
Tails binomial_tails(int64_t k, int64_t n, double p);

// Hypergeometric: the number of marked items among `sample` drawn without replacement from `population`
// items of which `marked` are marked (0 <= sample, marked <= population).
Tails hypergeometric_tails(int64_t k, int64_t population, int64_t sample, int64_t marked);

// Deviates: the smallest k with P(X <= k) >= prob (tail lower) or P(X > k) <= prob (tail upper), 0 < prob < 1,
// the tails being the functions above; parameters as there (the Poisson mean finite).
int64_t binomial_deviate(Tail tail, double prob, int64_t n, double p);
int64_t poisson_deviate(Tail tail, double prob, double lambda);
int64_t hypergeometric_deviate(Tail tail, double prob, int64_t population, int64_t sample, int64_t marked);

}  // namespace vek::stats
