// Digamma and polygamma functions.
//
// psi: on [1, 2] the Taylor series about the positive zero x0 = 1.4616321449683622 (d = x - x0 formed in two
// parts, so psi keeps its relative accuracy at the zero); (0, 1) adds -1/x to that; (2, 10) steps down to
// (1, 2] adding 1/(x - k) (all positive); x >= 10 uses the asymptotic series; x < 0 the reflection
// psi(x) = psi(1 - x) - pi cot(pi x) with an exact reduction of pi x.
//
// psi^(n), n >= 1: (-1)^(n+1) n! zeta(n + 1, x), the Hurwitz zeta function by Euler-Maclaurin summation:
// the terms (x + k)^-s up to x + N >= 15 + n, the integral and end-point terms, and ten Bernoulli terms.
// Negative x is summed directly, so it is limited to x >= kPolygammaMinArg (NaN below).
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kRootHi = 1.4616321449683622;
constexpr double kRootLo = 9.549995429965697e-17;

// psi(x0 + d) = sum psi^(k)(x0)/k! d^k, k = 1..39 (mpmath, 40 digits; make_tables.py --coefficients).
constexpr double kPsiRoot[] = {
    0.96767224544762117,     -0.44276316898359211,    0.25849976095565101,     -0.16394270544240653,
    0.10782405069126237,     -0.072199561256454711,   0.048804288164143107,    -0.033161126474847359,
    0.022597648232218105,    -0.015424765904948959,   0.010538791616612175,    -0.0072045343863568682,
    0.0049267813957298534,   -0.0033698016554393281,  0.0023051263267349278,   -0.0015769367714301973,
    0.0010788252019162966,   -0.00073807093899600513, 0.00050495326583460204,  -0.0003454680251063077,
    0.00023635601564027053,  -0.00016170622091974803, 0.00011063372768747411,  -7.5691795821950659e-5,
    5.1785757952220809e-5,   -3.5430070947659606e-5,  2.4240066118601318e-5,   -1.6584242271854133e-5,
    1.134638458466385e-5,    -7.7628176684620944e-6,  5.3110609208898634e-6,   -3.6336507898010457e-6,
    2.4860227331295379e-6,   -1.7008538854332607e-6,  1.1636675363548843e-6,   -7.9614254312419704e-7,
    5.4469419306694453e-7,   -3.726616128343823e-7,   2.5496265520215543e-7};

// psi(x0 + d), |d| <= 0.54.
double psi_near_root(double d) {
  double s = 0.0;
  for (size_t i = std::size(kPsiRoot); i-- > 0;) s = s * d + kPsiRoot[i];
  return s * d;
}

// psi(x) = ln x - 1/(2x) - sum B_2k / (2k x^2k), k = 1..8: below 3e-17 relative at x = 10.
double psi_asymptotic(double x) {
  constexpr double c[] = {1.0 / 12.0,  -1.0 / 120.0,      1.0 / 252.0, -1.0 / 240.0,
                          1.0 / 132.0, -691.0 / 32760.0, 1.0 / 12.0,  -3617.0 / 8160.0};
  const double w = 1.0 / (x * x);
  double s = 0.0;
  for (size_t i = std::size(c); i-- > 0;) s = s * w + c[i];
  return std::log(x) - 0.5 / x - s * w;
}

double psi_positive(double x) {
  if (x >= 10.0) return psi_asymptotic(x);
  if (x < 1.0) return psi_near_root((x - (kRootHi - 1.0)) - kRootLo) - 1.0 / x;
  double sum = 0.0;
  while (x > 2.0) {
    x -= 1.0;
    sum += 1.0 / x;
  }
  return psi_near_root((x - kRootHi) - kRootLo) + sum;
}

// pi cot(pi x) with x reduced exactly to [-1/2, 1/2].
double pi_cot_pi(double x) {
  const double r = x - std::nearbyint(x);
  return std::numbers::pi / std::tan(std::numbers::pi * r);
}

bool is_pole(double x) { return x <= 0.0 && x == std::floor(x); }

// Hurwitz zeta(s, x) for integer s >= 2, x >= kPolygammaMinArg and not a pole.
double hurwitz_zeta(int s, double x) {
  // B_2j / (2j)!, j = 1..10.
  constexpr double b[] = {1.0 / 6.0 / 2.0,
                          -1.0 / 30.0 / 24.0,
                          1.0 / 42.0 / 720.0,
                          -1.0 / 30.0 / 40320.0,
                          5.0 / 66.0 / 3628800.0,
                          -691.0 / 2730.0 / 479001600.0,
                          7.0 / 6.0 / 87178291200.0,
                          -3617.0 / 510.0 / 20922789888000.0,
                          43867.0 / 798.0 / 6402373705728000.0,
                          -174611.0 / 330.0 / 2432902008176640000.0};
  const double start = 15.0 + s;
  double sum = 0.0;
  while (x < start) {
    sum += std::pow(x, -s);
    x += 1.0;
  }
  const double xs = std::pow(x, -s);
  double tail = x * xs / (s - 1) + 0.5 * xs;
  double rising = s;      // s (s + 1) ... (s + 2j - 2)
  double power = xs / x;  // x^(-s - 2j + 1)
  for (size_t j = 0; j < std::size(b); ++j) {
    tail += b[j] * rising * power;
    rising *= (s + 2.0 * j + 1.0) * (s + 2.0 * j + 2.0);
    power /= x * x;
  }
  return sum + tail;
}

}  // namespace

double digamma(double x) {
  if (std::isnan(x) || x == -HUGE_VAL || is_pole(x)) return std::numeric_limits<double>::quiet_NaN();
  if (x > 0.0) return psi_positive(x);
  return psi_positive(1.0 - x) - pi_cot_pi(x);
}

double polygamma(int n, double x) {
  if (n == 0) return digamma(x);
  if (n < 0 || std::isnan(x) || x < kPolygammaMinArg || is_pole(x))
    return std::numeric_limits<double>::quiet_NaN();
  if (x == HUGE_VAL) return 0.0;
  double factorial = 1.0;
  for (int k = 2; k <= n; ++k) factorial *= k;
  const double z = hurwitz_zeta(n + 1, x);
  return (n % 2 == 1 ? factorial : -factorial) * z;
}

}  // namespace vek::specfun
