// The standard normal distribution in the chapter's four tails: probabilities through erfc and erf, deviates
// through the library's one inverse-normal kernel (the normal generator's).
#pragma once

#include <cstdint>

namespace vek::stats {

enum class Tail { lower, upper, central, significance };

// 'L', 'U', 'C', 'S' in either case; the caller has checked the letter.
Tail tail_of(char letter);
// The same from a character argument (its first letter) of length len.
Tail tail_of(const char* tail, int64_t len);

// P(Z <= x), P(Z >= x), P(-|x| <= Z <= |x|), P(|Z| >= |x|).
double normal_probability(Tail tail, double x);

// The x whose tail `tail` has probability p, for 0 < p < 1.
double normal_deviate(Tail tail, double p);

}  // namespace vek::stats
