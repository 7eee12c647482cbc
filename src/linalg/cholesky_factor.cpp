// F07FDF (published as DPOTRF): Cholesky factorisation A = L L^T or U^T U of a real symmetric positive definite
// matrix, in the triangle UPLO names.
//
// The arguments are checked here, in argument order (UPLO, N, LDA: INFO = -1, -2, -4 with the argument-error
// report "F07FDF/DPOTRF"). The factorisation is right-looking and blocked by kBlock columns, fixed by nothing
// but the order: each diagonal block is factorised by the dependency on the calling thread, then the block
// column below it (right of it) is solved and the trailing triangle updated by the tiled dtrsm and dsyrk,
// whose tiles are shared among the library's threads and fixed by the sizes. The factor therefore does not
// depend on the thread count. INFO = i > 0: the leading minor of order i is not positive definite (the
// factorisation stops there, as published).
#include <algorithm>
#include <cctype>
#include <cstdint>

#include "layers/f07.h"
#include "linalg/argument_error.h"
#include "linalg/level3_symbols.h"

namespace vek::linalg {
namespace {

constexpr int64_t kBlock = 256;
constexpr double kPlusOne = 1.0;
constexpr double kMinusOne = -1.0;

// Element (i, j), 0-based, of the column-major matrix.
inline double* at(double* a, int64_t lda, int64_t i, int64_t j) { return a + i + j * lda; }

int64_t cholesky_factor(bool lower, int64_t n, double* a, int64_t lda) {
  const char* uplo = lower ? "L" : "U";
  for (int64_t k = 0; k < n; k += kBlock) {
    int64_t jb = std::min(kBlock, n - k), info = 0;
    double* diagonal = at(a, lda, k, k);
    vekob_dpotrf_(uplo, &jb, diagonal, &lda, &info, 1);
    if (info > 0) return info + k;
    int64_t rest = n - k - jb;
    if (rest == 0) break;
    if (lower) {  // L21 = A21 L11^-T, A22 -= L21 L21^T
      double* below = at(a, lda, k + jb, k);
      vektl_dtrsm_("R", "L", "T", "N", &rest, &jb, &kPlusOne, diagonal, &lda, below, &lda, 1, 1, 1, 1);
      vektl_dsyrk_("L", "N", &rest, &jb, &kMinusOne, below, &lda, &kPlusOne, at(a, lda, k + jb, k + jb), &lda, 1, 1);
    } else {  // U12 = U11^-T A12, A22 -= U12^T U12
      double* right = at(a, lda, k, k + jb);
      vektl_dtrsm_("L", "U", "T", "N", &jb, &rest, &kPlusOne, diagonal, &lda, right, &lda, 1, 1, 1, 1);
      vektl_dsyrk_("U", "T", &rest, &jb, &kMinusOne, right, &lda, &kPlusOne, at(a, lda, k + jb, k + jb), &lda, 1, 1);
    }
  }
  return 0;
}

}  // namespace
}  // namespace vek::linalg

// The library's DPOTRF: F07FDF's generated worker (which has reported an empty UPLO already) and the
// dependency's LAPACK drivers (dposv, dsygv ...) come here. It allocates nothing.
extern "C" void vektl_dpotrf_(const char* uplo, const int64_t* n, double* a, const int64_t* lda, int64_t* info,
                              int64_t) {
  const char u = static_cast<char>(std::toupper(static_cast<unsigned char>(*uplo)));
  int64_t bad = 0;
  if (u != 'U' && u != 'L') bad = 1;
  else if (*n < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *n)) bad = 4;
  if (bad != 0) {
    *info = -bad;
    vek::linalg::argument_error("F07FDF/DPOTRF", bad);
    return;
  }
  *info = vek::linalg::cholesky_factor(u == 'L', *n, a, *lda);
}
