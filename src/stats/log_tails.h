// Natural logarithms of tail probabilities, finite far beyond the underflow of the probabilities themselves
// (the normal to |x| about 1e154, where x^2 overflows; the gamma, t, F and beta to any finite point).
#pragma once

#include "stats/normal.h"

namespace vek::stats {

double normal_log_probability(Tail tail, double x);
double gamma_log_tail(bool lower, double g, double a, double b);  // a, b > 0, g >= 0
// Student's t (df > 0, +inf the normal) in the four tails; F (df1, df2 > 0, either may be +inf, f >= 0) and
// beta (a, b > 0, 0 <= x <= 1) in the lower or upper tail. Finite at every finite point inside the support.
double t_log_probability(Tail tail, double t, double df);
double f_log_tail(bool lower, double f, double df1, double df2);
double beta_log_tail(bool lower, double x, double a, double b);

}  // namespace vek::stats
