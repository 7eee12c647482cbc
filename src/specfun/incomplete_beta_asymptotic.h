// The incomplete beta function for large parameters near the mean (incomplete_beta_asymptotic.cpp).
#pragma once

namespace vek::specfun {

// lambda = a - (a + b) x = (a + b) y - b for x + y = 1, in double-double precision from the exact one of x, y
// (the one not above 1/2), rounded to long double.
long double beta_inc_lambda(double a, double b, double x, double y);

// I_x(a, b) for a, b >= 100 and 0 <= lambda <= 0.03 min(a, b) (x at or below the mean), by Temme's uniform
// asymptotic expansion; lambda from beta_inc_lambda.
double beta_inc_asymptotic(double a, double b, long double lambda);
// Its natural logarithm, finite where I_x(a, b) underflows.
long double beta_inc_asymptotic_log(double a, double b, long double lambda);

}  // namespace vek::specfun
