// Workers of the S14 routines: gamma, log-gamma, digamma, polygamma, incomplete gamma and incomplete beta.
// The kernels are in gamma.cpp, lgamma.cpp, digamma.cpp, incomplete_gamma.cpp and incomplete_beta.cpp.
#include <cmath>

#include "frame/error_buffer.h"
#include "layers/s14.h"
#include "specfun/specfun.h"

namespace {

// ln Gamma(x) exceeds the largest double above this argument.
constexpr double kLgammaMaxArg = 2.55e305;
constexpr int64_t kMaxPolygammaOrder = 50;
// How far P + Q may be from 1 in the inverse incomplete gamma function.
constexpr double kPqSumTolerance = 1.0e-14;

bool is_pole(double x) { return x <= 0.0 && x == std::floor(x); }

// ln|Gamma(X)| and its sign through the checks of s14abf; the sign is 1 on failure.
double log_gamma_checked(vek::frame::ErrorBuffer& err, double x, int* sign) {
  *sign = 1;
  if (is_pole(x)) {
    err.fail(1, 99999, x);
    return 0.0;
  }
  if (x > kLgammaMaxArg) {
    err.fail(2, 99998, x);
    return 0.0;
  }
  return vek::specfun::lgamma(x, sign);
}

}  // namespace

extern "C" {

// Gamma(X): the recurrence to [1, 2] and a polynomial of degree 21 (gamma.cpp). Failures, tested in this
// order, return 0: X > 170 (IFAIL 1), X < -170 (2), |X| < 2.23e-308 (3), X a negative integer (4).
// NaN -> NaN with IFAIL 0.
double s14aafn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14AAFN")) return 0.0;
  const vek::specfun::GammaResult r = vek::specfun::gamma_checked(*x);
  switch (r.status) {
    case vek::specfun::GammaStatus::ok:
      break;
    case vek::specfun::GammaStatus::overflow:
      err.fail(1, 99999, *x);
      break;
    case vek::specfun::GammaStatus::underflow:
      err.fail(2, 99998, *x);
      break;
    case vek::specfun::GammaStatus::near_zero:
      err.fail(3, 99997, *x);
      break;
    case vek::specfun::GammaStatus::pole:
      err.fail(4, 99996, *x);
      break;
  }
  return r.value;
}

// ln|Gamma(X)| (lgamma.cpp). X zero or a negative integer: IFAIL 1; X > 2.55e305: IFAIL 2; both return 0.
// NaN -> NaN with IFAIL 0.
double s14abfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14ABFN")) return 0.0;
  int sign = 1;
  return log_gamma_checked(err, *x, &sign);
}

// ln|Gamma(X)| as s14abf, with the sign of Gamma(X) in SGN (+1 for X > 0, alternating between the poles
// below 0; +1 on failure and for NaN).
double s14ahfn_(const double* x, double* sgn, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  *sgn = 1.0;
  if (!err.licensed("S14AHFN")) return 0.0;
  int sign = 1;
  const double value = log_gamma_checked(err, *x, &sign);
  *sgn = sign;
  return value;
}

// ln B(A, B) (lgamma.cpp): Stirling's series arranged so that the large logarithms cancel analytically.
// A <= 0: IFAIL 1; B <= 0: IFAIL 2 (NaN fails these too); both return 0. A or B = +inf gives -inf.
double s14cbfn_(const double* a, const double* b, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14CBFN")) return 0.0;
  if (!(*a > 0.0)) {
    err.fail(1, 99999, *a);
    return 0.0;
  }
  if (!(*b > 0.0)) {
    err.fail(2, 99998, *b);
    return 0.0;
  }
  return vek::specfun::lbeta(*a, *b);
}

// psi(X) (digamma.cpp). X zero or a negative integer (or -inf): IFAIL 1 and 0. NaN -> NaN with IFAIL 0.
double s14acfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14ACFN")) return 0.0;
  if (is_pole(*x)) {
    err.fail(1, 99999, *x);
    return 0.0;
  }
  return vek::specfun::digamma(*x);
}

// psi^(N)(X) (digamma.cpp). N outside 0..50: IFAIL 1; X zero or a negative integer: IFAIL 2; X below
// -1e5 (N >= 1): IFAIL 3; all return 0. NaN -> NaN with IFAIL 0.
double s14aefn_(const double* x, const int64_t* n, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14AEFN")) return 0.0;
  if (*n < 0 || *n > kMaxPolygammaOrder) {
    err.fail(1, 99999, *n);
    return 0.0;
  }
  if (is_pole(*x)) {
    err.fail(2, 99998, *x);
    return 0.0;
  }
  if (*n > 0 && *x < vek::specfun::kPolygammaMinArg) {
    err.fail(3, 99997, *x);
    return 0.0;
  }
  return vek::specfun::polygamma(static_cast<int>(*n), *x);
}

// P(A, X) and Q(A, X) (incomplete_gamma.cpp). A <= 0: IFAIL 1; X < 0: IFAIL 2 (NaN fails these too);
// IFAIL 3 if an expansion did not converge (possible only for A beyond about 1e11 with X near A), with the
// Wilson-Hilferty approximation, of error about 1/A there, in P and Q.
void s14bafn_(const double* a, const double* x, double* p, double* q, char* errbuf, int64_t* ierr,
              int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14BAFN")) return;
  if (!(*a > 0.0)) return err.fail(1, 99999, *a);
  if (!(*x >= 0.0)) return err.fail(2, 99998, *x);
  const vek::specfun::GammaPQ r = vek::specfun::gamma_pq(*a, *x);
  *p = r.p;
  *q = r.q;
  if (!r.converged) err.fail(3, 99997, *a, *x);
}

// The X with P(A, X) = P and Q(A, X) = Q (incomplete_gamma_inverse.cpp); the smaller of P and Q is matched, so
// give both to full precision. A <= 0: IFAIL 1; P or Q outside [0, 1]: IFAIL 2 or 3; P + Q further than 1e-14
// from 1: IFAIL 4 (NaN fails these too); all return 0. Q = 0 gives +infinity.
double s14bbfn_(const double* a, const double* p, const double* q, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14BBFN")) return 0.0;
  if (!(*a > 0.0)) {
    err.fail(1, 99999, *a);
    return 0.0;
  }
  if (!(*p >= 0.0 && *p <= 1.0)) {
    err.fail(2, 99998, *p);
    return 0.0;
  }
  if (!(*q >= 0.0 && *q <= 1.0)) {
    err.fail(3, 99997, *q);
    return 0.0;
  }
  if (!(std::fabs(*p + *q - 1.0) <= kPqSumTolerance)) {
    err.fail(4, 99996, *p, *q);
    return 0.0;
  }
  return vek::specfun::gamma_pq_inv(*a, *p, *q);
}

// W = I_X(A, B) and W1 = 1 - W (incomplete_beta.cpp). A <= 0: IFAIL 1; B <= 0: IFAIL 2; X outside [0, 1]:
// IFAIL 3 (NaN fails these too); IFAIL 4 when the continued fraction does not converge (A and B beyond about
// 1e16 with X near the mean), with the normal approximation in W and W1.
void s14ccfn_(const double* a, const double* b, const double* x, double* w, double* w1, char* errbuf,
              int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("S14CCFN")) return;
  if (!(*a > 0.0)) return err.fail(1, 99999, *a);
  if (!(*b > 0.0)) return err.fail(2, 99998, *b);
  if (!(*x >= 0.0 && *x <= 1.0)) return err.fail(3, 99997, *x);
  const vek::specfun::BetaInc r = vek::specfun::beta_inc_pair(*a, *b, *x);
  *w = r.w;
  *w1 = r.w1;
  if (!r.converged) err.fail(4, 99996, *a, *b, *x);
}

}  // extern "C"
