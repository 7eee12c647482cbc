// Probabilities and deviates of the continuous distributions of the chapter beyond the normal: Student's t,
// chi-square, F, gamma, beta and log-normal. Each tail is computed directly from the special-function kernel
// that gives it (the complement is never formed as 1 - p), so both keep their relative accuracy down to the
// underflow threshold. Pure functions; NaN arguments give NaN.
#pragma once

#include "stats/normal.h"

namespace vek::stats {

// The lower and upper tail at one point, each computed directly.
struct Tails {
  double lower;
  double upper;
};

inline double tail_value(Tail tail, Tails t) { return tail == Tail::lower ? t.lower : t.upper; }

// Student's t with df > 0 degrees of freedom (df = +inf is the normal): the four tails of g01eaf.
double t_probability(Tail tail, double t, double df);
double t_deviate(Tail tail, double p, double df);  // 0 < p < 1

// Gamma with shape a > 0 and scale b > 0 at g >= 0; chi-square with df > 0 at x >= 0 is shape df/2, scale 2.
Tails gamma_tails(double g, double a, double b);
double gamma_deviate(Tail tail, double p, double a, double b);  // tail lower or upper, 0 < p < 1

// F with df1, df2 > 0 (either may be +inf) at f >= 0.
Tails f_tails(double f, double df1, double df2);
double f_deviate(Tail tail, double p, double df1, double df2);

// Beta with a, b > 0 at 0 <= x <= 1.
Tails beta_tails(double x, double a, double b);
double beta_deviate(Tail tail, double p, double a, double b);

// Log-normal: ln X normal with mean mu and standard deviation sigma > 0, at x >= 0.
Tails lognormal_tails(double x, double mu, double sigma);
double lognormal_deviate(Tail tail, double p, double mu, double sigma);

}  // namespace vek::stats
