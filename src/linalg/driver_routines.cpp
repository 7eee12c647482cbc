// Bodies of the F04 simple drivers and the F01 general inverse: the declared checks (f01.decl, f04.decl) have
// been made; the kernels of drivers.h factorise, solve and estimate the condition.
#include "frame/constants.h"
#include "frame/text.h"
#include "layers/f01.h"
#include "layers/f04.h"
#include "linalg/drivers.h"

namespace {

// RCOND, ERRBND and the outcome of the driver R: a breakdown at column J, or a RCOND below the machine
// precision (a warning: the solution stands).
template <class R>
void finish(const vek::linalg::SolveResult& r, double* rcond, double* errbnd, vek::frame::ErrorBuffer& err) {
  *rcond = r.rcond;
  *errbnd = vek::linalg::error_bound(r.rcond);
  if (r.breakdown > 0) {
    if constexpr (requires { R::not_definite; }) err.fail(R::not_definite, r.breakdown);
    else err.fail(R::singular, r.breakdown);
  } else if (r.rcond < vek::constants::eps()) {
    err.fail(R::ill_conditioned, r.rcond);
  }
}

}  // namespace

namespace vek::routines {

// General system: LU with partial pivoting (F07ADF), solve (F07AEF), condition estimate (F07AGF).
void f04baf::run(frame::ErrorBuffer& err, const int64_t* n, const int64_t* nrhs, double* a, const int64_t* lda,
                 int64_t* ipiv, double* b, const int64_t* ldb, double* rcond, double* errbnd) {
  finish<f04baf>(linalg::solve_general(*n, *nrhs, a, *lda, ipiv, b, *ldb), rcond, errbnd, err);
}

// Band system: band LU with partial pivoting (F07BDF), solve (F07BEF), condition estimate (F07BGF).
void f04bbf::run(frame::ErrorBuffer& err, const int64_t* n, const int64_t* kl, const int64_t* ku,
                 const int64_t* nrhs, double* ab, const int64_t* ldab, int64_t* ipiv, double* b, const int64_t* ldb,
                 double* rcond, double* errbnd) {
  finish<f04bbf>(linalg::solve_band(*n, *kl, *ku, *nrhs, ab, *ldab, ipiv, b, *ldb), rcond, errbnd, err);
}

// Symmetric positive definite system: Cholesky (F07FDF), solve (F07FEF), condition estimate (F07FGF).
void f04bdf::run(frame::ErrorBuffer& err, const char* uplo, const int64_t* n, const int64_t* nrhs, double* a,
                 const int64_t* lda, double* b, const int64_t* ldb, double* rcond, double* errbnd,
                 int64_t uplo_len) {
  const auto triangle = text::option_letter(uplo, uplo_len) == 'U' ? linalg::Triangle::upper : linalg::Triangle::lower;
  finish<f04bdf>(linalg::solve_spd(triangle, *n, *nrhs, a, *lda, b, *ldb), rcond, errbnd, err);
}

// General inverse: LU (F07ADF), then inv(U) and the solve inv(A) inv(L) = inv(U) with the pivots (F07AJF).
void f01abf::run(frame::ErrorBuffer& err, const int64_t* n, double* a, const int64_t* lda) {
  if (const int64_t column = linalg::invert_general(*n, a, *lda); column > 0) err.fail(singular, column);
}

}  // namespace vek::routines
