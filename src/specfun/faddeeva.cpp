// The Faddeeva function w(z) = exp(-z^2) erfc(-iz).
//
// Upper half-plane, |Re z| < 27, Im z < 6: w(z) = (i/pi) int exp(-t^2)/(z - t) dt by the trapezoidal rule
// with step h = 1/2 on nodes x +- d_j, d_j = (j + 1/2) h (x midway between two nodes), plus the residue of the
// pole, exactly 2 exp(-z^2) / (1 + exp(2 pi y / h)) for this placement of the nodes; the neglected terms are
// below 1e-17 |w|. Pairing the nodes at x + d and x - d gives
//   w(z) = (2h/pi) sum_j exp(-d_j^2 - x^2) [y cosh(2 x d_j) + i d_j sinh(2 x d_j)] / (d_j^2 + y^2) + residue,
// sums of positive terms with sinh formed without cancellation, so each part keeps its relative accuracy (on
// the real axis Re w = exp(-x^2) comes from the residue alone; Im w is Rybicki's formula for Dawson's
// integral). Elsewhere in the upper half-plane: Laplace's continued fraction
//   w(z) = (i/sqrt(pi)) / (z - (1/2) / (z - 1 / (z - (3/2) / (z - ...)))), 20 levels (below 1e-21 there).
// Lower half-plane: w(z) = 2 exp(-z^2) - w(-z).
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kStep = 0.5;
constexpr double kNodeReach = 6.5;       // exp(-6.5^2) < 1e-18: nodes farther from 0 are dropped
constexpr double kFractionImag = 6.0;    // from here up the continued fraction converges in 20 levels
constexpr double kFractionReal = 27.0;   // and from here out, at any height
constexpr int kFractionLevels = 20;

// exp(-(u^2)) with u^2 split exactly, so its rounding does not enter.
double exp_minus_square(double u) {
  const double s = u * u;
  return std::exp(-s) * (1.0 - std::fma(u, u, -s));
}

// exp(-z^2) = exp(y^2 - x^2) (cos 2xy - i sin 2xy), with x^2 - y^2 = (x - y)(x + y) and 2xy split exactly. A
// part whose trigonometric factor is zero is zero even where the modulus overflows; where 2xy overflows the
// phase has no value and the parts are NaN.
std::complex<double> exp_minus_z_squared(double x, double y) {
  const double modulus = std::exp((y - x) * (x + y));
  if (modulus == 0.0) return {0.0, 0.0};
  const double p = 2.0 * x * y;
  const double e = std::fma(2.0 * x, y, -p);
  const double c = std::cos(p), s = std::sin(p);
  const double re = c - s * e, im = -(s + c * e);
  return {re == 0.0 ? re : modulus * re, im == 0.0 ? im : modulus * im};
}

std::complex<double> trapezoid(double x, double y) {
  const double ax = std::fabs(x);
  const double first = std::max(0.0, std::floor((ax - kNodeReach) / kStep - 0.5));
  double re = 0.0, im = 0.0;
  for (double j = first;; j += 1.0) {
    const double d = (j + 0.5) * kStep;
    if (d > ax + kNodeReach) break;
    const double lower = exp_minus_square(ax - d);  // the node nearer 0 when d < |x|
    const double upper = exp_minus_square(ax + d);
    const double two_xd = 2.0 * ax * d;
    // exp(-x^2 - d^2) sinh(2|x|d) = (lower - upper)/2, by sinh where the difference would cancel.
    const double odd = two_xd < 1.0 ? std::exp(-(ax * ax + d * d)) * std::sinh(two_xd) : 0.5 * (lower - upper);
    const double even = 0.5 * (lower + upper);
    const double scale = 1.0 / (d * d + y * y);
    re += even * y * scale;
    im += odd * d * scale;
  }
  const double weight = 2.0 * kStep / std::numbers::pi;
  const std::complex<double> residue = 2.0 * exp_minus_z_squared(x, y) / (1.0 + std::exp(2.0 * std::numbers::pi * y / kStep));
  return std::complex<double>{weight * re, std::copysign(weight * im, x)} + residue;
}

std::complex<double> continued_fraction(std::complex<double> z) {
  std::complex<double> r = 0.0;
  for (int k = kFractionLevels; k > 0; --k) r = (0.5 * k) / (z - r);
  const std::complex<double> w = std::complex<double>{0.0, 1.0 / std::sqrt(std::numbers::pi)} / (z - r);
  // On the real axis itself the fraction holds only the imaginary part.
  return z.imag() == 0.0 ? std::complex<double>{std::exp(-z.real() * z.real()), w.imag()} : w;
}

std::complex<double> upper_half(std::complex<double> z) {
  if (z.imag() >= kFractionImag || std::fabs(z.real()) >= kFractionReal) return continued_fraction(z);
  return trapezoid(z.real(), z.imag());
}

}  // namespace

std::complex<double> faddeeva(std::complex<double> z) {
  const double x = z.real(), y = z.imag();
  if (std::isnan(x) || std::isnan(y)) return {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
  if (y >= 0.0) return upper_half(z);
  return 2.0 * exp_minus_z_squared(x, y) - upper_half(-z);
}

}  // namespace vek::specfun
