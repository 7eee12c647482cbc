// The non-central chi-square, F and t distributions as Poisson mixtures of central ones, summed outward from
// the largest Poisson weight so that each tail is a sum of positive terms (the t's upper tail for t and
// delta of opposite signs excepted: there the series alternates in sign and the result is absolute).
#pragma once

namespace vek::stats {

struct TailPair {
  double lower, upper;  // P(X <= x) and P(X >= x), each computed directly
};

// Chi-square with df > 0 degrees of freedom and non-centrality lambda >= 0, at x >= 0.
TailPair noncentral_chi_square(double x, double df, double lambda);

// F with df1, df2 > 0 degrees of freedom and non-centrality lambda >= 0 (of the numerator), at f >= 0.
TailPair noncentral_f(double f, double df1, double df2, double lambda);

// Student's t with df > 0 degrees of freedom and non-centrality delta, at t.
TailPair noncentral_t(double t, double df, double delta);

}  // namespace vek::stats

namespace vek::stats {

// The deviates: the x whose lower tail is p (lower = true) or whose upper tail is p, 0 < p < 1, found by
// solve_for_tail (tail_inverse.h) on the tails above, in u = ln x (chi-square, F) or u = asinh t.
double noncentral_chi_square_deviate(double p, bool lower, double df, double lambda);
double noncentral_f_deviate(double p, bool lower, double df1, double df2, double lambda);
double noncentral_t_deviate(double p, bool lower, double df, double delta);

}  // namespace vek::stats
