// Bodies of the S15 routines: erfc, erf, the scaled erfc, Dawson's integral, the Faddeeva function and the
// inverses of erf and erfc. The declared checks (s15.decl) have been made when a body runs; the kernels are
// in erf.cpp, dawson.cpp, faddeeva.cpp and erf_inverse.cpp.
#include <complex>
#include <limits>

#include "layers/s15.h"
#include "specfun/specfun.h"

namespace {

// erfcx(x) = exp(x^2) erfc(x) exceeds the largest double below this argument.
constexpr double kErfcxMinArg = -26.628;

}  // namespace

namespace vek::routines {

// erfc(X) by Cody's rational approximations: exactly 1 at 0, 0 from 26.6 up, 2 from -6.5 down. NaN -> NaN.
double s15adf::run(frame::ErrorBuffer&, const double* x) { return specfun::erfc(*x); }

// erf(X) by Cody's rational approximations: odd bit for bit, exactly +-1 beyond 10. NaN -> NaN.
double s15aef::run(frame::ErrorBuffer&, const double* x) { return specfun::erf(*x); }

// exp(X^2) erfc(X) from the same approximations, without exponentials for X > 0.46875. X below -26.628
// overflows: IFAIL 1 with the largest double as the value. NaN -> NaN, +inf -> 0.
double s15agf::run(frame::ErrorBuffer& err, const double* x) {
  if (*x < kErfcxMinArg) {
    err.fail(overflow, *x);
    return std::numeric_limits<double>::max();
  }
  return specfun::erfcx(*x);
}

// Dawson's integral by its series of positive terms (|X| < 7) or asymptotic series. NaN -> NaN, +-inf -> +-0.
double s15aff::run(frame::ErrorBuffer&, const double* x) { return specfun::dawson(*x); }

// w(Z) = exp(-Z^2) erfc(-iZ) (faddeeva.cpp): a trapezoidal sum with its pole term near the real axis, Laplace's
// continued fraction elsewhere, w(z) = 2 exp(-z^2) - w(-z) below the axis. Where exp(-Z^2) overflows (Im Z < 0,
// Im(Z)^2 - Re(Z)^2 > 709.78) the parts are infinite; a NaN part, Im Z = -inf, or (below the axis) 2 Re Z Im Z
// beyond the largest double, where the phase of exp(-Z^2) has no value, gives NaN parts.
vek_complex s15ddf::run(frame::ErrorBuffer&, const vek_complex* z) {
  const std::complex<double> w = specfun::faddeeva({z->re, z->im});
  return vek_complex{w.real(), w.imag()};
}

// The x with erf(x) = Y, -1 < Y < 1, refined from a closed-form start by Halley's or Newton's iteration.
double s15ahf::run(frame::ErrorBuffer&, const double* y) { return specfun::erf_inv(*y); }

// The x with erfc(x) = Q, 0 < Q < 2, accurate in relative terms down to the smallest subnormal Q.
double s15ajf::run(frame::ErrorBuffer&, const double* q) { return specfun::erfc_inv(*q); }

}  // namespace vek::routines
