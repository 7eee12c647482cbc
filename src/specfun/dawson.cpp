// Dawson's integral F(x) = exp(-x^2) int_0^x exp(t^2) dt, odd in x.
//
// |x| < 1/2: F(x) = exp(-x^2) sum_{n>=0} x^(2n+1) / (n! (2n+1)), a short series of positive terms.
// 1/2 <= |x| < 7: F(x) = (sqrt(pi)/2) Im w(x), Rybicki's sum of exponentials (faddeeva.cpp).
// |x| >= 7: the asymptotic series F(x) = 1/(2x) sum_k (2k-1)!! / (2x^2)^k, whose smallest term is below 1e-21.
#include <cmath>
#include <complex>
#include <numbers>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kEps = vek::constants::eps();
constexpr double kSeriesEnd = 0.5;
constexpr double kAsymptoticStart = 7.0;

double dawson_series(double x) {
  const double s = x * x;
  double term = x;
  double sum = x;
  for (int n = 1; n < 40; ++n) {
    term *= s / n;
    const double add = term / (2 * n + 1);
    sum += add;
    if (add <= kEps * sum) break;
  }
  return std::exp(-s) * sum;
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
  double f;
  if (y < kSeriesEnd) f = dawson_series(y);
  else if (y < kAsymptoticStart) f = 0.5 * std::sqrt(std::numbers::pi) * faddeeva({y, 0.0}).imag();
  else f = dawson_asymptotic(y);
  return std::signbit(x) ? -f : f;
}

}  // namespace vek::specfun
