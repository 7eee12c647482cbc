// The normal distribution beyond the four tails of one point: the upper tail with the rounding of x/sqrt 2
// corrected, the probability of an interval, and the bivariate normal.
#pragma once

namespace vek::stats {

// P(Z >= x) to a few ulp over the whole range (0 where it underflows past erfc's cut-off, x > 37.6).
double normal_upper(double x);

// P(a <= Z <= b) for a <= b (0 for a = b), with relative accuracy also when both lie far in one tail or
// the interval is narrow. NaN gives NaN.
double normal_interval(double a, double b);

// P(X >= h, Y >= k) for standard normal X, Y with correlation r, -1 <= r <= 1 (Genz's method: Drezner and
// Wesolowsky's integral in the arcsine of the correlation for |r| < 0.925, its expansion about |r| = 1
// beyond). Infinite h or k allowed; NaN gives NaN.
// Below kBivariateTailRoute, and for -1 < r < 1, the probability is taken from bivariate_normal_upper_tail
// instead, whose error is relative (a few 1e-16) down to the underflow.
double bivariate_normal_upper(double h, double k, double r);
inline constexpr double kBivariateTailRoute = 1e-3;

// The same for finite h, k and -1 < r < 1 by a one-dimensional integral of the density's exponent in long
// double (bivariate_normal_tail.cpp): relative accuracy at every size, about 20 times the work of Genz's.
double bivariate_normal_upper_tail(double h, double k, double r);

}  // namespace vek::stats
