// Dawson's integral F(x) = exp(-x^2) int_0^x exp(t^2) dt, odd in x.
//
// |x| < 7: F(x) = exp(-x^2) sum_{n>=0} x^(2n+1) / (n! (2n+1)), a series of positive terms (no cancellation;
// at most 150 terms), with exp(-x^2) from the exact split x^2 = s + e. |x| >= 7: the asymptotic series
// F(x) = 1/(2x) sum_k (2k-1)!! / (2x^2)^k, whose smallest term is below 1e-21 there.
#include <cmath>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kEps = vek::constants::eps();

double dawson_series(double x) {
  const double s = x * x;
  const double e = std::fma(x, x, -s);
  double term = x;
  double sum = x;
  double carry = 0.0;  // compensated summation: the sum has up to 150 terms
  for (int n = 1; n < 200; ++n) {
    term *= s / n;
    const double add = term / (2 * n + 1);
    const double y = add - carry;
    const double t = sum + y;
    carry = (t - sum) - y;
    sum = t;
    if (add <= kEps * sum) break;
  }
  return std::exp(-s) * (1.0 - e) * sum;
}

double dawson_asymptotic(double x) {
  const double w = 1.0 / (2.0 * x * x);
  double term = 1.0;
  double sum = 1.0;
  for (int k = 1; k < 60; ++k) {
    term *= (2 * k - 1) * w;
    sum += term;
    if (term <= kEps * sum) break;
  }
  return sum / (2.0 * x);
}

}  // namespace

double dawson(double x) {
  const double y = std::fabs(x);
  if (std::isnan(x)) return x;
  const double f = y < 7.0 ? dawson_series(y) : dawson_asymptotic(y);
  return x < 0.0 ? -f : f;
}

}  // namespace vek::specfun
