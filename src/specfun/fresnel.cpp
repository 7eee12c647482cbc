// Fresnel integrals S(x) = int_0^x sin(pi t^2 / 2) dt and C(x) = int_0^x cos(pi t^2 / 2) dt, both odd.
//
// |x| < 1: the power series C = sum (-1)^n (pi/2)^(2n) x^(4n+1) / ((2n)! (4n+1)) and
// S = sum (-1)^n (pi/2)^(2n+1) x^(4n+3) / ((2n+1)! (4n+3)), whose terms stay below 1 (little cancellation).
// |x| >= 1: C + iS = ((1 + i)/2) erf((sqrt(pi)/2)(1 - i) x) = ((1 + i)/2) (1 - E), E = exp(i pi x^2/2) w(u (1 + i)),
// u = sqrt(pi) x / 2 (w is the Faddeeva function), so C = 1/2 - (Re E - Im E)/2 and S = 1/2 - (Re E + Im E)/2;
// C and S stay between 0.3 and 0.8 there, so nothing cancels. The phase pi x^2 / 2 is reduced exactly: x^2 is
// split into s + e and s/2 is reduced modulo 2 by fmod, which is exact.
#include <cmath>
#include <complex>
#include <numbers>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

constexpr double kSeriesEnd = 1.0;
// Beyond this C and S differ from 1/2 by less than 1/(pi x) < 4e-18, below half an ulp of 1/2.
constexpr double kHalfBeyond = 1.0e17;

Fresnel series(double x) {
  const double t = 0.5 * std::numbers::pi * x * x;  // (pi/2) x^2
  const double t2 = t * t;
  double c_term = x, s_term = x * t;  // (-1)^n t^2n x / (2n)!,  (-1)^n t^(2n+1) x / (2n+1)!
  double c = x, s = s_term / 3.0;
  for (int n = 1; n < 30; ++n) {
    c_term *= -t2 / ((2.0 * n - 1.0) * (2.0 * n));
    s_term *= -t2 / ((2.0 * n) * (2.0 * n + 1.0));
    const double dc = c_term / (4.0 * n + 1.0), ds = s_term / (4.0 * n + 3.0);
    c += dc;
    s += ds;
    if (std::fabs(dc) <= vek::constants::eps() * std::fabs(c) && std::fabs(ds) <= vek::constants::eps() * std::fabs(s))
      break;
  }
  return {s, c};
}

// exp(i pi x^2 / 2) with the phase reduced exactly modulo 2 pi.
std::complex<double> phase(double x) {
  const double s = x * x;
  const double e = std::fma(x, x, -s);
  const double r = std::fmod(0.5 * s, 2.0) + 0.5 * e;  // x^2 / 2 modulo 2
  return {std::cos(std::numbers::pi * r), std::sin(std::numbers::pi * r)};
}

Fresnel by_faddeeva(double x) {
  const double u = 0.5 * std::sqrt(std::numbers::pi) * x;
  const std::complex<double> e = phase(x) * faddeeva({u, u});
  return {0.5 - 0.5 * (e.real() + e.imag()), 0.5 - 0.5 * (e.real() - e.imag())};
}

}  // namespace

Fresnel fresnel(double x) {
  if (std::isnan(x)) return {x, x};
  const double y = std::fabs(x);
  if (y > kHalfBeyond) return {std::copysign(0.5, x), std::copysign(0.5, x)};
  const Fresnel f = y < kSeriesEnd ? series(y) : by_faddeeva(y);
  return std::signbit(x) ? Fresnel{-f.s, -f.c} : f;
}

}  // namespace vek::specfun
