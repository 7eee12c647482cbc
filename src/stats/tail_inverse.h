// The deviate of a continuous distribution known through its two tails: the point where the smaller tail has
// its target probability, solved in a variable u in which the logarithm of that tail is monotone and near
// linear far out (u = ln x for positive variates with power or exponential tails, u = asinh t on the line).
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace vek::stats {

// Returns u with tail(u, lower) = p, where tail(u, true) is P(X <= x(u)) and tail(u, false) is P(X > x(u)),
// x increasing in u: p is the probability of the tail `lower` names, taken as given (never as 1 - q, which
// would lose its digits when small). A bracket grown from u0 by doubling steps, then the Illinois variant of
// regula falsi on ln(tail) - ln(p), until that is below 1e-14 (the tails' own accuracy) or the bracket is a
// few ulps wide; at most about 150 evaluations. A tail that underflows to 0 counts as the smallest subnormal,
// so the function stays finite and the search is bounded: |u| <= 745 (x(u) within the doubles for u = ln x).
template <class Tail>
double solve_for_tail(double p, bool lower, double u0, Tail&& tail) {
  const double target = std::log(p);
  const auto g = [&](double u) {
    const double t = std::log(std::fmax(tail(u, lower), std::numeric_limits<double>::denorm_min()));
    return lower ? t - target : target - t;
  };
  double a = u0, ga = g(a), b = a, gb = ga, step = 1.0;
  while (ga * gb > 0.0) {
    b = std::clamp(ga > 0.0 ? a - step : a + step, -745.0, 745.0);
    if (b == a) return a;  // the target lies beyond the doubles
    gb = g(b);
    if (std::isnan(gb)) return gb;
    if (ga * gb > 0.0) {
      a = b;
      ga = gb;
      step *= 2.0;
    }
  }
  if (std::isnan(ga)) return ga;
  for (int i = 0; i < 100; ++i) {
    if (gb == 0.0 || std::fabs(gb) <= 1e-14 || std::fabs(b - a) <= 4e-16 * std::fmax(1.0, std::fabs(b))) return b;
    const double c = b - gb * (b - a) / (gb - ga), gc = g(c);
    if (std::isnan(gc)) return gc;
    if (gc * gb < 0.0) {
      a = b;
      ga = gb;
    } else {
      ga *= 0.5;
    }
    b = c;
    gb = gc;
  }
  return b;
}

}  // namespace vek::stats
