// F07AAF and F07ANF (published as DGESV and ZGESV): A X = B for a general real or complex matrix, through the
// library's LU (lu_factor.cpp), so that the factors and the solution do not depend on the thread count and the
// factorisation runs on the library's threads; the solves are the dependency's ?getrs on the calling thread.
//
// The arguments are checked here, in argument order (N, NRHS, LDA, LDB: INFO = -1, -2, -4, -7 with the
// argument-error report "F07AAF/DGESV" or "F07ANF/ZGESV"). INFO = i > 0: U(i,i) is exactly zero; the factors
// are returned and B is left unchanged.
#include <algorithm>
#include <cstdint>

#include "forwarded.h"
#include "linalg/argument_error.h"
#include "linalg/factor_kernels.h"
#include "linalg/lu_factor.h"

namespace vek::linalg {
namespace {

template <class T>
void solve_general(const int64_t* n, const int64_t* nrhs, T* a, const int64_t* lda, int64_t* ipiv, T* b,
                   const int64_t* ldb, int64_t* info) {
  int64_t bad = 0;
  if (*n < 0) bad = 1;
  else if (*nrhs < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *n)) bad = 4;
  else if (*ldb < std::max<int64_t>(1, *n)) bad = 7;
  if (bad != 0) {
    *info = -bad;
    argument_error(FactorKernels<T>::kGesv, bad);
    return;
  }
  *info = lu_factor(*n, *n, a, *lda, ipiv, WithoutMemory::use_dependency);
  if (*info == 0) FactorKernels<T>::getrs("N", n, nrhs, a, lda, ipiv, b, ldb, info, 1);
}

}  // namespace
}  // namespace vek::linalg

extern "C" void vektl_dgesv_(const int64_t* n, const int64_t* nrhs, double* a, const int64_t* lda, int64_t* ipiv,
                             double* b, const int64_t* ldb, int64_t* info) {
  vek::linalg::solve_general(n, nrhs, a, lda, ipiv, b, ldb, info);
}

extern "C" void vektl_zgesv_(const int64_t* n, const int64_t* nrhs, vek_complex* a, const int64_t* lda,
                             int64_t* ipiv, vek_complex* b, const int64_t* ldb, int64_t* info) {
  vek::linalg::solve_general(n, nrhs, a, lda, ipiv, b, ldb, info);
}
