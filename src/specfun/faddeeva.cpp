// The Faddeeva function w(z) = exp(-z^2) erfc(-iz).
//
// Upper half-plane, |Re z| < 27, Im z < 6: w(z) = (i/pi) int exp(-t^2)/(z - t) dt by the trapezoidal rule
// with step h = 1/2 (15/32 from Im z = 3 up) on nodes x +- d_j, d_j = (j + 1/2) h (x midway between two
// nodes), plus the residue of the pole, exactly 2 exp(-z^2) / (1 + exp(2 pi y / h)) for this placement of the
// nodes; the neglected terms are below 1e-17 |w|. Pairing the nodes at x + d and x - d gives
//   w(z) = (2h/pi) sum_j exp(-d_j^2 - x^2) [y cosh(2 x d_j) + i d_j sinh(2 x d_j)] / (d_j^2 + y^2) + residue,
// sums of positive terms with sinh formed without cancellation, so each part keeps its relative accuracy (on
// the real axis Re w = exp(-x^2) comes from the residue alone; Im w is Rybicki's formula for Dawson's
// integral). Elsewhere in the upper half-plane: Laplace's continued fraction
//   w(z) = (i/sqrt(pi)) / (z - (1/2) / (z - 1 / (z - (3/2) / (z - ...)))), 20 levels (below 1e-21 there).
// Lower half-plane: w(z) = 2 exp(-z^2) - w(-z), in long double where the two terms can cancel (|Re z| < 4,
// Im z > -3: by up to a factor 20 near the zeros of Re w and Im w).
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <type_traits>

#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kStep = 0.5;
// From Im z = kFineFrom up the step is 15/32 (nodes still exact in binary): the quadrature error of the step
// 1/2, about exp(-(pi/h)^2) |w| = 7e-18 |w|, grows there towards the fraction's boundary and near the imaginary
// axis, where Im w is small against |w|, reached 42 ulp of Im w (x near 0, y near 6); with 15/32 it is
// 3e-20 |w|. Below, the step 1/2 is kept: it has fewer nodes and roundings.
constexpr double kFineStep = 0.46875;
constexpr double kFineFrom = 3.0;
constexpr double kNodeReach = 6.5;       // exp(-6.5^2) < 1e-18: nodes farther from 0 are dropped
constexpr double kFractionImag = 6.0;    // from here up the continued fraction converges in 20 levels
constexpr double kFractionReal = 27.0;   // and from here out, at any height
constexpr int kFractionLevels = 20;
// Below the axis, 2 exp(-z^2) and w(-z) cancel by more than a factor 2 only inside |Re z| < 4, Im z > -3 (beyond,
// one of them dominates); there the long double evaluation, about three times slower, is used.
constexpr double kCancellationReal = 4.0;
constexpr double kCancellationImag = 3.0;

// exp(-(u^2)) with u^2 split exactly, so its rounding does not enter.
double exp_minus_square(double u) {
  const double s = u * u;
  return std::exp(-s) * (1.0 - std::fma(u, u, -s));
}

// exp(-z^2) = exp(y^2 - x^2) (cos 2xy - i sin 2xy), with y^2 - x^2 and 2xy each split exactly into a double and
// a correction (fma products, and the rounding error of the difference by Knuth's two-sum), so that the
// rounding of an exponent of several hundred does not enter the modulus. A part whose trigonometric factor is
// zero is zero even where the modulus overflows; where 2xy overflows the phase has no value and the parts are
// NaN.
std::complex<double> exp_minus_z_squared(double x, double y) {
  const double xx = x * x, xx_err = std::fma(x, x, -xx);
  const double yy = y * y, yy_err = std::fma(y, y, -yy);
  double s = yy - xx;
  const double back = s - yy;
  double exponent_err = ((yy - (s - back)) + (-xx - back)) + (yy_err - xx_err);
  if (!std::isfinite(exponent_err)) {  // a square overflows: the modulus is 0 or +inf, no correction needed
    s = (y - x) * (x + y);
    exponent_err = 0.0;
  }
  const double modulus = std::exp(s);
  if (modulus == 0.0) return {0.0, 0.0};
  const double p = 2.0 * x * y;
  const double e = std::fma(2.0 * x, y, -p);
  const double c = std::cos(p), sn = std::sin(p);
  const double re = (c - sn * e) * (1.0 + exponent_err), im = -(sn + c * e) * (1.0 + exponent_err);
  return {re == 0.0 ? re : modulus * re, im == 0.0 ? im : modulus * im};
}

// The same exponentials in long double, for the lower half-plane near the axis, where the two terms of
// 2 exp(-z^2) - w(-z) cancel by up to a factor 20: there the exponents (below 800) lose at most 2^-64 * 800
// relative, a fifth of a double's rounding, without the splitting.
long double exp_minus_square(long double u) { return std::exp(-u * u); }

std::complex<long double> exp_minus_z_squared(long double x, long double y) {
  const long double modulus = std::exp((y - x) * (x + y)), p = 2.0L * x * y;
  return {modulus * std::cos(p), -modulus * std::sin(p)};
}

// exp(-(c + d_j)^2) over the nodes d_j = d_0 + j h, each from the one before: the ratio of successive values is
// exp(-2 (c + d_j) h - h^2), and each ratio is the one before times exp(-2 h^2). Used only in long double, where
// the relative error grows by about 2^-64 per node (30 nodes at most: 2e-18, a fiftieth of a double's rounding);
// in double the growth would cost up to 30 ulps.
struct GaussianNodes {
  long double value = 0, ratio = 0, ratio_step = 0;
  long double next() {
    const long double v = value;
    value *= ratio;
    ratio *= ratio_step;
    return v;
  }
};
GaussianNodes gaussian_nodes(long double c, long double d0, long double h) {
  return {std::exp(-(c + d0) * (c + d0)), std::exp(-h * (2 * (c + d0) + h)), std::exp(-2 * h * h)};
}

// T is double, or long double for the lower half-plane.
template <class T>
std::complex<T> trapezoid(T x, T y) {
  const T step = y < T(kFineFrom) ? T(kStep) : T(kFineStep);
  const T ax = std::fabs(x);
  const T first = std::max(T(0), std::floor((ax - T(kNodeReach)) / step - T(0.5)));
  T re = 0, im = 0;
  constexpr bool extended = std::is_same_v<T, long double>;
  const T d_first = (first + T(0.5)) * step;
  GaussianNodes lower_nodes, upper_nodes;
  if constexpr (extended) {
    lower_nodes = gaussian_nodes(-ax, d_first, step);
    upper_nodes = gaussian_nodes(ax, d_first, step);
  }
  for (T j = first;; j += 1) {
    const T d = (j + T(0.5)) * step;
    if (d > ax + T(kNodeReach)) break;
    // exp(-(|x| -+ d)^2): the first is the node nearer 0 when d < |x|.
    const T lower = extended ? lower_nodes.next() : exp_minus_square(ax - d);
    const T upper = extended ? upper_nodes.next() : exp_minus_square(ax + d);
    const T two_xd = 2 * ax * d;
    // exp(-x^2 - d^2) sinh(2|x|d) = (lower - upper)/2, by sinh where the difference would cancel.
    const T odd = two_xd < 1 ? std::exp(-(ax * ax + d * d)) * std::sinh(two_xd) : T(0.5) * (lower - upper);
    const T even = T(0.5) * (lower + upper);
    const T scale = 1 / (d * d + y * y);
    re += even * y * scale;
    im += odd * d * scale;
  }
  const T weight = 2 * step / std::numbers::pi_v<T>;
  const std::complex<T> residue =
      T(2) * exp_minus_z_squared(x, y) / (1 + std::exp(2 * std::numbers::pi_v<T> * y / step));
  return std::complex<T>{weight * re, std::copysign(weight * im, x)} + residue;
}

bool in_trapezoid_region(std::complex<double> z) {
  return z.imag() < kFractionImag && std::fabs(z.real()) < kFractionReal;
}

std::complex<double> continued_fraction(std::complex<double> z) {
  std::complex<double> r = 0.0;
  for (int k = kFractionLevels; k > 0; --k) r = (0.5 * k) / (z - r);
  const std::complex<double> w = std::complex<double>{0.0, 1.0 / std::sqrt(std::numbers::pi)} / (z - r);
  // On the real axis itself the fraction holds only the imaginary part.
  return z.imag() == 0.0 ? std::complex<double>{std::exp(-z.real() * z.real()), w.imag()} : w;
}

std::complex<double> upper_half(std::complex<double> z) {
  return in_trapezoid_region(z) ? trapezoid(z.real(), z.imag()) : continued_fraction(z);
}

}  // namespace

std::complex<double> faddeeva(std::complex<double> z) {
  const double x = z.real(), y = z.imag();
  if (std::isnan(x) || std::isnan(y)) return {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
  if (y >= 0.0) return upper_half(z);
  if (std::fabs(x) < kCancellationReal && y > -kCancellationImag) {
    const long double lx = x, ly = y;
    const std::complex<long double> w = 2.0L * exp_minus_z_squared(lx, ly) - trapezoid(-lx, -ly);
    return {static_cast<double>(w.real()), static_cast<double>(w.imag())};
  }
  return 2.0 * exp_minus_z_squared(x, y) - upper_half(-z);
}

}  // namespace vek::specfun
