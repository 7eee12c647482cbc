// u - ln(1 + u), the shape of every power term x^a e^-x and x^a (1-x)^b around its peak, without the
// cancellation of the direct difference near u = 0.
#pragma once

#include <cmath>

namespace vek::specfun {

// With v = u / (2 + u): ln(1 + u) = 2 atanh(v) and u - 2v = u v, so u - ln(1 + u) = u v - 2 (v^3/3 + v^5/5
// + ...), a sum without cancellation; for |v| <= 0.55 thirty terms reach 1e-17. Beyond, the direct difference
// loses at most a factor 3.
inline double log1pmx_neg(double u) {
  const double v = u / (2.0 + u);
  if (!(std::fabs(v) <= 0.55)) return u - std::log1p(u);
  const double v2 = v * v;
  double power = v * v2;
  double sum = 0.0;
  for (int k = 3; k < 80; k += 2) {
    const double term = power / k;
    sum += term;
    if (std::fabs(term) <= 1e-17 * std::fabs(sum)) break;
    power *= v2;
  }
  return u * v - 2.0 * sum;
}

}  // namespace vek::specfun
