// u - ln(1 + u), the shape of every power term x^a e^-x and x^a (1-x)^b around its peak, without the
// cancellation of the direct difference near u = 0.
#pragma once

#include <cmath>
#include <limits>

namespace vek::specfun {

// With v = u / (2 + u): ln(1 + u) = 2 atanh(v) and u - 2v = u v, so u - ln(1 + u) = u v - 2 (v^3/3 + v^5/5
// + ...), a sum without cancellation; for |v| <= 0.55 it needs at most 40 terms. Beyond, the direct difference
// loses at most a factor 3. T is double or long double (the power terms form their exponents in long double).
template <class T>
T log1pmx_neg(T u) {
  const T v = u / (2 + u);
  if (!(std::fabs(v) <= T(0.55))) return u - std::log1p(u);
  const T v2 = v * v;
  T power = v * v2;
  T sum = 0;
  for (int k = 3; k < 100; k += 2) {
    const T term = power / k;
    sum += term;
    if (std::fabs(term) <= std::numeric_limits<T>::epsilon() / 4 * std::fabs(sum)) break;
    power *= v2;
  }
  return u * v - 2 * sum;
}

}  // namespace vek::specfun
