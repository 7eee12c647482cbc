// F07FDF and F07FRF (published as DPOTRF and ZPOTRF): Cholesky factorisation A = L L^H or U^H U of a real
// symmetric or complex Hermitian positive definite matrix, in the triangle UPLO names; one code for both.
//
// The arguments are checked here, in argument order (UPLO, N, LDA: INFO = -1, -2, -4 with the argument-error
// report "F07FDF/DPOTRF" or "F07FRF/ZPOTRF"). The factorisation is right-looking and blocked by kBlock columns,
// fixed by nothing but the order: each diagonal block is factorised by the dependency on the calling thread,
// then the block column below it (right of it) is solved and the trailing triangle updated by the tiled ?trsm
// and dsyrk or zherk, whose tiles are shared among the library's threads and fixed by the sizes. The factor
// therefore does not depend on the thread count. INFO = i > 0: the leading minor of order i is not positive
// definite (the factorisation stops there, as published).
#include <algorithm>
#include <cctype>
#include <cstdint>

#include "forwarded.h"
#include "linalg/argument_error.h"
#include "linalg/factor_kernels.h"

namespace vek::linalg {
namespace {

constexpr int64_t kBlock = 256;

template <class T>
int64_t cholesky_factor(bool lower, int64_t n, T* a, int64_t lda) {
  using K = FactorKernels<T>;
  using Real = typename K::Real;
  const char* uplo = lower ? "L" : "U";
  const T plus_one = unit<T>(1.0);
  const Real real_plus_one = 1.0, real_minus_one = -1.0;
  for (int64_t k = 0; k < n; k += kBlock) {
    int64_t jb = std::min(kBlock, n - k), info = 0;
    T* diagonal = element(a, lda, k, k);
    K::potrf(uplo, &jb, diagonal, &lda, &info, 1);
    if (info > 0) return info + k;
    int64_t rest = n - k - jb;
    if (rest == 0) break;
    if (lower) {  // L21 = A21 L11^-H, A22 -= L21 L21^H
      T* below = element(a, lda, k + jb, k);
      K::tiled_trsm("R", "L", K::kAdjoint, "N", &rest, &jb, &plus_one, diagonal, &lda, below, &lda, 1, 1, 1, 1);
      K::tiled_rank_k("L", "N", &rest, &jb, &real_minus_one, below, &lda, &real_plus_one,
                      element(a, lda, k + jb, k + jb), &lda, 1, 1);
    } else {  // U12 = U11^-H A12, A22 -= U12^H U12
      T* right = element(a, lda, k, k + jb);
      K::tiled_trsm("L", "U", K::kAdjoint, "N", &jb, &rest, &plus_one, diagonal, &lda, right, &lda, 1, 1, 1, 1);
      K::tiled_rank_k("U", K::kAdjoint, &rest, &jb, &real_minus_one, right, &lda, &real_plus_one,
                      element(a, lda, k + jb, k + jb), &lda, 1, 1);
    }
  }
  return 0;
}

// The published entry: checks in argument order, then the factorisation. It allocates nothing.
template <class T>
void published_factor(const char* uplo, const int64_t* n, T* a, const int64_t* lda, int64_t* info) {
  const char u = static_cast<char>(std::toupper(static_cast<unsigned char>(*uplo)));
  int64_t bad = 0;
  if (u != 'U' && u != 'L') bad = 1;
  else if (*n < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *n)) bad = 4;
  if (bad != 0) {
    *info = -bad;
    argument_error(FactorKernels<T>::kPotrf, bad);
    return;
  }
  *info = cholesky_factor(u == 'L', *n, a, *lda);
}

}  // namespace
}  // namespace vek::linalg

// The library's DPOTRF and ZPOTRF: F07FDF's and F07FRF's generated workers (which have reported an empty UPLO
// already) and the dependency's LAPACK drivers (dposv, zposv, dsygv, zhegv ...) come here.
extern "C" void vektl_dpotrf_(const char* uplo, const int64_t* n, double* a, const int64_t* lda, int64_t* info,
                              int64_t) {
  vek::linalg::published_factor(uplo, n, a, lda, info);
}

extern "C" void vektl_zpotrf_(const char* uplo, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* info,
                              int64_t) {
  vek::linalg::published_factor(uplo, n, a, lda, info);
}
