// Workers of the S15 routines: erfc, erf, the scaled erfc, Dawson's integral, the Faddeeva function and the
// inverses of erf and erfc. The kernels are in erf.cpp, dawson.cpp, faddeeva.cpp and erf_inverse.cpp.
#include <cmath>
#include <complex>
#include <limits>

#include "frame/error_buffer.h"
#include "layers/s15.h"
#include "specfun/specfun.h"
#include "specfun/worker.h"

namespace {

// erfcx(x) = exp(x^2) erfc(x) exceeds the largest double below this argument.
constexpr double kErfcxMinArg = -26.628;

}  // namespace

extern "C" {

// erfc(X) by Cody's rational approximations: exactly 1 at 0, 0 from 26.6 up, 2 from -6.5 down. NaN -> NaN.
double s15adfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S15ADFN", errbuf, errbuf_len, ierr, [&] { return vek::specfun::erfc(*x); });
}

// erf(X) by Cody's rational approximations: odd bit for bit, exactly +-1 beyond 10. NaN -> NaN.
double s15aefn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S15AEFN", errbuf, errbuf_len, ierr, [&] { return vek::specfun::erf(*x); });
}

// exp(X^2) erfc(X) from the same approximations, without exponentials for X > 0.46875. X below -26.628
// overflows: IFAIL 1 with the largest double as the value. NaN -> NaN, +inf -> 0.
double s15agfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S15AGFN")) return 0.0;
  if (*x < kErfcxMinArg) {
    err.fail(1, 99999, *x);
    return std::numeric_limits<double>::max();
  }
  return vek::specfun::erfcx(*x);
}

// Dawson's integral by its series of positive terms (|X| < 7) or asymptotic series. NaN -> NaN, +-inf -> +-0.
double s15affn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S15AFFN", errbuf, errbuf_len, ierr, [&] { return vek::specfun::dawson(*x); });
}

// w(Z) = exp(-Z^2) erfc(-iZ) (faddeeva.cpp): a trapezoidal sum with its pole term near the real axis, Laplace's
// continued fraction elsewhere, w(z) = 2 exp(-z^2) - w(-z) below the axis. Where exp(-Z^2) overflows (Im Z < 0,
// Im(Z)^2 - Re(Z)^2 > 709.78) the parts are infinite; a NaN part, Im Z = -inf, or (below the axis) 2 Re Z Im Z
// beyond the largest double, where the phase of exp(-Z^2) has no value, gives NaN parts.
vek_complex s15ddfn_(const vek_complex* z, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S15DDFN", errbuf, errbuf_len, ierr, [&] {
    const std::complex<double> w = vek::specfun::faddeeva({z->re, z->im});
    return vek_complex{w.real(), w.imag()};
  });
}

// The x with erf(x) = Y, -1 < Y < 1, refined from a closed-form start by Halley's or Newton's iteration.
// |Y| >= 1 or NaN: IFAIL 1 and 0 as the value.
double s15ahfn_(const double* y, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S15AHFN")) return 0.0;
  if (!(std::fabs(*y) < 1.0)) {
    err.fail(1, 99999, *y);
    return 0.0;
  }
  return vek::specfun::erf_inv(*y);
}

// The x with erfc(x) = Q, 0 < Q < 2, accurate in relative terms down to the smallest subnormal Q.
// Q outside (0, 2) or NaN: IFAIL 1 and 0 as the value.
double s15ajfn_(const double* q, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S15AJFN")) return 0.0;
  if (!(*q > 0.0 && *q < 2.0)) {
    err.fail(1, 99999, *q);
    return 0.0;
  }
  return vek::specfun::erfc_inv(*q);
}

}  // extern "C"
