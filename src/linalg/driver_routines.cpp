// Workers of the F04 simple drivers and the F01 general inverse: argument checks in argument order, then the
// kernels of drivers.h. A breakdown of the factorisation is IFAIL = 2 (nothing solved); a solution whose
// RCOND is below the machine precision is returned with the warning IFAIL = 3.
#include <algorithm>
#include <new>

#include "frame/constants.h"
#include "frame/error_buffer.h"
#include "frame/text.h"
#include "layers/f01.h"
#include "layers/f04.h"
#include "linalg/drivers.h"

namespace {

using vek::frame::ErrorBuffer;

// RCOND, ERRBND and the outcome's IFAIL (breakdown: 2 with the column; ill-conditioned: 3 with RCOND).
void finish(const vek::linalg::SolveResult& r, double* rcond, double* errbnd, ErrorBuffer& err,
            int64_t breakdown_msgno, int64_t illcond_msgno) {
  *rcond = r.rcond;
  *errbnd = vek::linalg::error_bound(r.rcond);
  if (r.breakdown > 0) return err.fail(2, breakdown_msgno, r.breakdown);
  if (r.rcond < vek::constants::eps()) err.fail(3, illcond_msgno, r.rcond);
}

}  // namespace

extern "C" {

// General system: LU with partial pivoting (F07ADF), solve (F07AEF), condition estimate (F07AGF).
void f04bafn_(const int64_t* n, const int64_t* nrhs, double* a, const int64_t* lda, int64_t* ipiv, double* b,
              const int64_t* ldb, double* rcond, double* errbnd, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("F04BAFN")) return;
  if (*n < 0) return err.fail(1, 99999, *n);
  if (*nrhs < 0) return err.fail(1, 99998, *nrhs);
  if (*lda < std::max<int64_t>(1, *n)) return err.fail(1, 99997, *lda, *n);
  if (*ldb < std::max<int64_t>(1, *n)) return err.fail(1, 99996, *ldb, *n);
  try {
    finish(vek::linalg::solve_general(*n, *nrhs, a, *lda, ipiv, b, *ldb), rcond, errbnd, err, 99995, 99994);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

// Band system: band LU with partial pivoting (F07BDF), solve (F07BEF), condition estimate (F07BGF).
void f04bbfn_(const int64_t* n, const int64_t* kl, const int64_t* ku, const int64_t* nrhs, double* ab,
              const int64_t* ldab, int64_t* ipiv, double* b, const int64_t* ldb, double* rcond, double* errbnd,
              char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("F04BBFN")) return;
  if (*n < 0) return err.fail(1, 99999, *n);
  if (*kl < 0) return err.fail(1, 99998, *kl);
  if (*ku < 0) return err.fail(1, 99997, *ku);
  if (*nrhs < 0) return err.fail(1, 99996, *nrhs);
  // KL and KU are non-negative here; a sum beyond the integer range cannot be a valid LDAB either.
  if (*kl > (INT64_MAX - 1 - *ku) / 2 || *ldab < 2 * *kl + *ku + 1) return err.fail(1, 99995, *ldab, *kl, *ku);
  if (*ldb < std::max<int64_t>(1, *n)) return err.fail(1, 99994, *ldb, *n);
  try {
    finish(vek::linalg::solve_band(*n, *kl, *ku, *nrhs, ab, *ldab, ipiv, b, *ldb), rcond, errbnd, err, 99993,
           99992);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

// Symmetric positive definite system: Cholesky (F07FDF), solve (F07FEF), condition estimate (F07FGF).
void f04bdfn_(const char* uplo, const int64_t* n, const int64_t* nrhs, double* a, const int64_t* lda, double* b,
              const int64_t* ldb, double* rcond, double* errbnd, char* errbuf, int64_t* ierr, int64_t uplo_len,
              int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("F04BDFN")) return;
  const char ul = vek::text::option_letter(uplo, uplo_len);
  if (ul != 'U' && ul != 'L')
    return err.fail(1, 99999, vek::frame::CharValue{vek::text::view(uplo, std::min<int64_t>(uplo_len, 1))});
  if (*n < 0) return err.fail(1, 99998, *n);
  if (*nrhs < 0) return err.fail(1, 99997, *nrhs);
  if (*lda < std::max<int64_t>(1, *n)) return err.fail(1, 99996, *lda, *n);
  if (*ldb < std::max<int64_t>(1, *n)) return err.fail(1, 99995, *ldb, *n);
  const auto triangle = ul == 'U' ? vek::linalg::Triangle::upper : vek::linalg::Triangle::lower;
  try {
    finish(vek::linalg::solve_spd(triangle, *n, *nrhs, a, *lda, b, *ldb), rcond, errbnd, err, 99994, 99993);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

// General inverse: LU (F07ADF), then inv(U) and the solve inv(A) inv(L) = inv(U) with the pivots (F07AJF).
void f01abfn_(const int64_t* n, double* a, const int64_t* lda, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("F01ABFN")) return;
  if (*n < 0) return err.fail(1, 99999, *n);
  if (*lda < std::max<int64_t>(1, *n)) return err.fail(1, 99998, *lda, *n);
  try {
    if (const int64_t column = vek::linalg::invert_general(*n, a, *lda); column > 0) err.fail(2, 99997, column);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

}  // extern "C"
