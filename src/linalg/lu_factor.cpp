// F07ADF (published as DGETRF): LU factorisation with partial pivoting, A = P L U, of a real M by N matrix.
//
// The arguments are checked here, in argument order (M, N, LDA: INFO = -1, -2, -4 with the argument-error
// report "F07ADF/DGETRF"). The factorisation is OpenBLAS's recursive blocked algorithm: the panel is factorised
// recursively and the trailing update runs as a parallel GEMM on an OpenMP team of omp_get_max_threads()
// threads, the count x06aaf sets. Inside an active parallel region OpenBLAS asks omp_in_parallel() and takes
// its serial path, with the same results. INFO = i > 0 reports an exactly zero U(i,i), silently.
#include <algorithm>
#include <cstdint>

#include "layers/f07.h"
#include "linalg/argument_error.h"

extern "C" {

void vekob_dgetrf_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv,
                   int64_t* info);

void f07adfn_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv, int64_t* info) {
  int64_t bad = 0;
  if (*m < 0) bad = 1;
  else if (*n < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *m)) bad = 4;
  if (bad != 0) {
    *info = -bad;
    vek::linalg::argument_error("F07ADF/DGETRF", bad);
    return;
  }
  vekob_dgetrf_(m, n, a, lda, ipiv, info);
}

}  // extern "C"
