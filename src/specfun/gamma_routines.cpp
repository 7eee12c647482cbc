// Bodies of the S14 routines: gamma, log-gamma, digamma, polygamma, incomplete gamma and incomplete beta. The
// declared checks (s14.decl) have been made when a body runs; the kernels are in gamma.cpp, lgamma.cpp,
// digamma.cpp, incomplete_gamma.cpp and incomplete_beta.cpp.
#include <cmath>

#include "layers/s14.h"
#include "specfun/specfun.h"

namespace {

// ln Gamma(x) exceeds the largest double above this argument.
constexpr double kLgammaMaxArg = 2.55e305;

bool is_pole(double x) { return x <= 0.0 && x == std::floor(x); }

// ln|Gamma(X)| and its sign through the failures of s14abf and s14ahf (R), each 0 with sign 1.
template <class R>
double log_gamma_checked(vek::frame::ErrorBuffer& err, double x, int* sign) {
  *sign = 1;
  if (is_pole(x)) {
    err.fail(R::x_pole, x);
    return 0.0;
  }
  if (x > kLgammaMaxArg) {
    err.fail(R::overflow, x);
    return 0.0;
  }
  return vek::specfun::lgamma(x, sign);
}

}  // namespace

namespace vek::routines {

// Gamma(X): the recurrence to [1, 2] and a polynomial of degree 21 (gamma.cpp). Failures, tested in this
// order, return 0: X > 170, X < -170, |X| < 2.23e-308, X a negative integer. NaN -> NaN with IFAIL 0.
double s14aaf::run(frame::ErrorBuffer& err, const double* x) {
  const specfun::GammaResult r = specfun::gamma_checked(*x);
  switch (r.status) {
    case specfun::GammaStatus::ok: break;
    case specfun::GammaStatus::overflow: err.fail(overflow, *x); break;
    case specfun::GammaStatus::underflow: err.fail(underflow, *x); break;
    case specfun::GammaStatus::near_zero: err.fail(near_zero, *x); break;
    case specfun::GammaStatus::pole: err.fail(pole, *x); break;
  }
  return r.value;
}

// ln|Gamma(X)| (lgamma.cpp); a pole or X > 2.55e305 fails with 0. NaN -> NaN with IFAIL 0.
double s14abf::run(frame::ErrorBuffer& err, const double* x) {
  int sign = 1;
  return log_gamma_checked<s14abf>(err, *x, &sign);
}

// ln|Gamma(X)| as s14abf, with the sign of Gamma(X) in SGN (+1 for X > 0, alternating between the poles
// below 0; +1 on failure and for NaN).
double s14ahf::run(frame::ErrorBuffer& err, const double* x, double* sgn) {
  int sign = 1;
  const double value = log_gamma_checked<s14ahf>(err, *x, &sign);
  *sgn = sign;
  return value;
}

// ln B(A, B) (lgamma.cpp): Stirling's series arranged so that the large logarithms cancel analytically.
// A or B = +inf gives -inf.
double s14cbf::run(frame::ErrorBuffer&, const double* a, const double* b) { return specfun::lbeta(*a, *b); }

// psi(X) (digamma.cpp). X zero or a negative integer (or -inf) fails with 0. NaN -> NaN with IFAIL 0.
double s14acf::run(frame::ErrorBuffer& err, const double* x) {
  if (is_pole(*x)) {
    err.fail(x_pole, *x);
    return 0.0;
  }
  return specfun::digamma(*x);
}

// psi^(N)(X) (digamma.cpp). After the check of N: X zero or a negative integer, then X below -1e5 with
// N >= 1, fail with 0. NaN -> NaN with IFAIL 0.
double s14aef::run(frame::ErrorBuffer& err, const double* x, const int64_t* n) {
  if (is_pole(*x)) {
    err.fail(x_pole, *x);
    return 0.0;
  }
  if (*n > 0 && *x < specfun::kPolygammaMinArg) {
    err.fail(x_below, *x);
    return 0.0;
  }
  return specfun::polygamma(static_cast<int>(*n), *x);
}

// P(A, X) and Q(A, X) (incomplete_gamma.cpp). IFAIL 3 if an expansion did not converge (possible only for A
// beyond about 1e11 with X near A), with the Wilson-Hilferty approximation, of error about 1/A there, in P
// and Q.
void s14baf::run(frame::ErrorBuffer& err, const double* a, const double* x, double* p, double* q) {
  const specfun::GammaPQ r = specfun::gamma_pq(*a, *x);
  *p = r.p;
  *q = r.q;
  if (!r.converged) err.fail(not_converged, *a, *x);
}

// The X with P(A, X) = P and Q(A, X) = Q (incomplete_gamma_inverse.cpp); the smaller of P and Q is matched, so
// give both to full precision. Q = 0 gives +infinity.
double s14bbf::run(frame::ErrorBuffer&, const double* a, const double* p, const double* q) {
  return specfun::gamma_pq_inv(*a, *p, *q);
}

// W = I_X(A, B) and W1 = 1 - W (incomplete_beta.cpp). Every region has a method that converges (the uniform
// expansion near the mean for both parameters large, the gamma limit for one huge against the other), so
// there is no non-convergence exit; the kernel's normal-approximation fallback is never reached in practice.
void s14ccf::run(frame::ErrorBuffer&, const double* a, const double* b, const double* x, double* w, double* w1) {
  const specfun::BetaInc r = specfun::beta_inc_pair(*a, *b, *x);
  *w = r.w;
  *w1 = r.w1;
}

}  // namespace vek::routines
