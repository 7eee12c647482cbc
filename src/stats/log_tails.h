// Natural logarithms of tail probabilities, finite far beyond the underflow of the probabilities themselves
// (the normal to |x| about 1e154, where x^2 overflows; the gamma to any finite point).
#pragma once

#include "stats/normal.h"

namespace vek::stats {

double normal_log_probability(Tail tail, double x);
double gamma_log_tail(bool lower, double g, double a, double b);  // a, b > 0, g >= 0

}  // namespace vek::stats
