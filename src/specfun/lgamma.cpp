// ln|Gamma(x)|, ln Gamma(1 + a), Gamma(1 + a) - 1, the Stirling remainder, ln B(a, b), n! and binomials.
//
// Method: near the zeros of ln Gamma at 1 and 2 the Taylor series of ln Gamma(2 + z) in z (|z| <= 1/2) is
// used with z = x - 1 or x - 2 formed exactly, so relative accuracy holds down to the zeros; (0, 1/2) adds
// -ln x - ln(1 + x); (2.5, 10) steps down to [1.5, 2.5]; x >= 10 uses Stirling's series; x <= -1/2 uses the
// reflection ln|Gamma(x)| = ln(pi / |sin(pi x)|) - ln Gamma(1 - x) with an exact reduction of pi x.
// The zeros of ln|Gamma| on the negative axis are not treated specially: there the error is absolute.
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

// ln Gamma(2 + z) = sum c_k z^k, c_1 = 1 - gamma_E, c_k = (-1)^k (zeta(k) - 1)/k (mpmath, 40 digits; also
// printed by tests/specfun/data/make_tables.py --coefficients). 29 terms give 1e-19 at |z| = 1/2.
constexpr double kLgamma2[] = {
    0.42278433509846714,     0.32246703342411322,     -0.067352301053198095,  0.020580808427784548,
    -0.0073855510286739853,  0.0028905103307415233,   -0.001192753911703261,  0.00050966952474304242,
    -0.00022315475845357938, 9.9457512781808534e-5,   -4.4926236738133142e-5, 2.0507212775670692e-5,
    -9.4394882752683959e-6,  4.3748667899074878e-6,   -2.0392157538013662e-6, 9.5514121304074198e-7,
    -4.492469198764566e-7,   2.1207184805554666e-7,   -1.00432248239681e-7,   4.7698101693639806e-8,
    -2.2711094608943165e-8,  1.0838659214896954e-8,   -5.1834750419700467e-9, 2.4836745438024783e-9,
    -1.1921401405860912e-9,  5.731367241678862e-10,   -2.7595228851242331e-10, 1.3304764374244489e-10,
    -6.4229645638381e-11};

double lgamma2p(double z) {
  double s = 0.0;
  for (size_t i = std::size(kLgamma2); i-- > 0;) s = s * z + kLgamma2[i];
  return s * z;
}

constexpr double kHalfLog2Pi = 0.91893853320467274178;
constexpr int64_t kMaxFactorial = 170;        // 171! overflows
constexpr int64_t kMaxBinomialProduct = 1000;  // factors of the extended-precision product

// |sin(pi x)|, with x reduced exactly to t in [0, 1/2].
double abs_sinpi(double x) {
  const double s = std::fabs(x) - std::floor(std::fabs(x));
  const double t = s > 0.5 ? 1.0 - s : s;
  return std::sin(std::numbers::pi * t);
}

double lgamma_positive(double x) {
  if (x < 0.5) return lgamma2p(x) - std::log(x) - std::log1p(x);
  if (x < 1.5) {
    const double z = x - 1.0;
    return lgamma2p(z) - std::log1p(z);
  }
  if (x <= 2.5) return lgamma2p(x - 2.0);
  if (x < 10.0) {
    double product = 1.0;
    while (x > 2.5) {
      x -= 1.0;
      product *= x;
    }
    return lgamma2p(x - 2.0) + std::log(product);
  }
  return (x - 0.5) * std::log(x) - x + kHalfLog2Pi + stirling_remainder(x);
}

}  // namespace

// sum B_2k / (2k (2k - 1) x^(2k - 1)), k = 1..9: below 2e-19 relative at x = 10.
double stirling_remainder(double x) {
  constexpr double c[] = {1.0 / 12.0,   -1.0 / 360.0,     1.0 / 1260.0,      -1.0 / 1680.0,     1.0 / 1188.0,
                          -691.0 / 360360.0, 1.0 / 156.0, -3617.0 / 122400.0, 43867.0 / 244188.0};
  const double w = 1.0 / (x * x);
  double s = 0.0;
  for (size_t i = std::size(c); i-- > 0;) s = s * w + c[i];
  return s / x;
}

double lgamma(double x, int* sign) {
  if (sign != nullptr) *sign = 1;
  if (std::isnan(x)) return x;
  if (x == HUGE_VAL) return x;
  if (x == -HUGE_VAL) return std::numeric_limits<double>::quiet_NaN();
  if (x <= 0.0 && x == std::floor(x)) return HUGE_VAL;
  if (x < 0.0 && sign != nullptr && std::fmod(std::floor(x), 2.0) != 0.0) *sign = -1;
  if (x > -0.5) {
    if (x < 0.0) return lgamma2p(x) - std::log(-x) - std::log1p(x);
    return lgamma_positive(x);
  }
  return std::log(std::numbers::pi / abs_sinpi(x)) - lgamma_positive(1.0 - x);
}

double lgamma1p(double a) {
  if (std::fabs(a) <= 0.5) return lgamma2p(a) - std::log1p(a);
  return lgamma(1.0 + a);
}

double gamma1pm1(double a) {
  if (std::fabs(a) <= 0.5) return std::expm1(lgamma1p(a));
  return gamma(1.0 + a) - 1.0;
}

// ln B(a, b) with a >= b: both below 10 by ln Gamma directly; otherwise through Stirling's series, written so
// that the large terms (a - 1/2) ln a and (c - 1/2) ln c cancel analytically (ln(a/c) = -ln(1 + b/a)).
double lbeta(double a, double b) {
  if (!(a > 0.0) || !(b > 0.0)) return std::numeric_limits<double>::quiet_NaN();
  if (std::isinf(a) || std::isinf(b)) return -HUGE_VAL;
  if (a < b) std::swap(a, b);
  const double c = a + b;
  if (a < 10.0) return lgamma(a) + lgamma(b) - lgamma(c);
  const double log_a_over_c = -std::log1p(b / a);
  if (b < 10.0) {
    return lgamma(b) + (a - 0.5) * log_a_over_c - b * std::log(c) + b + stirling_remainder(a) -
           stirling_remainder(c);
  }
  return kHalfLog2Pi + (a - 0.5) * log_a_over_c + (b - 0.5) * std::log(b / c) - 0.5 * std::log(c) +
         stirling_remainder(a) + stirling_remainder(b) - stirling_remainder(c);
}

double beta(double a, double b) { return std::exp(lbeta(a, b)); }

// The products below run in long double (64-bit significand): at most 2000 roundings of 2^-64 each, so the
// final rounding to double is within 0.56 ulp; the exponent range of long double keeps them from overflowing.
double factorial(int64_t n) {
  if (n < 0) return std::numeric_limits<double>::quiet_NaN();
  if (n > kMaxFactorial) return HUGE_VAL;
  long double product = 1.0L;
  for (int64_t i = 2; i <= n; ++i) product *= static_cast<long double>(i);
  return static_cast<double>(product);
}

double binomial(int64_t n, int64_t k) {
  if (n < 0) return std::numeric_limits<double>::quiet_NaN();
  if (k < 0 || k > n) return 0.0;
  const int64_t m = std::min(k, n - k);
  if (m <= kMaxBinomialProduct) {
    long double product = 1.0L;
    for (int64_t i = 1; i <= m; ++i) product = product * static_cast<long double>(n - m + i) / i;
    return static_cast<double>(product);
  }
  const double nd = static_cast<double>(n), kd = static_cast<double>(k);
  return std::exp(-std::log1p(nd) - lbeta(nd - kd + 1.0, kd + 1.0));
}

}  // namespace vek::specfun
