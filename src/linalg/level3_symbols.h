// The level-3 BLAS symbols of both sides, in the four precisions (s, d, c, z):
//   vekob_*  OpenBLAS's own routines (linked privately), which always run on the calling thread: the renamed
//            archive asks vek_dependency_max_threads() for its team, and that answers 1;
//   vektl_*  the library's tiled routines (level3_tiled.cpp), thread-count independent, behind the published
//            names and behind the level-3 calls inside OpenBLAS's LAPACK (redirected when the archive is
//            renamed).
// Arguments in the published order; the hidden lengths of the character arguments last.
#pragma once

#include <cstdint>

#include "vek.h"

#define VEK_LEVEL3_COMMON(PREFIX, P, T)                                                                          \
  void PREFIX##P##gemm_(const char*, const char*, const int64_t*, const int64_t*, const int64_t*, const T*,      \
                        const T*, const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*, int64_t, \
                        int64_t);                                                                                \
  void PREFIX##P##symm_(const char*, const char*, const int64_t*, const int64_t*, const T*, const T*,            \
                        const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*, int64_t, int64_t); \
  void PREFIX##P##syrk_(const char*, const char*, const int64_t*, const int64_t*, const T*, const T*,            \
                        const int64_t*, const T*, T*, const int64_t*, int64_t, int64_t);                          \
  void PREFIX##P##syr2k_(const char*, const char*, const int64_t*, const int64_t*, const T*, const T*,           \
                         const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*, int64_t, int64_t); \
  void PREFIX##P##trmm_(const char*, const char*, const char*, const char*, const int64_t*, const int64_t*,     \
                        const T*, const T*, const int64_t*, T*, const int64_t*, int64_t, int64_t, int64_t, int64_t); \
  void PREFIX##P##trsm_(const char*, const char*, const char*, const char*, const int64_t*, const int64_t*,     \
                        const T*, const T*, const int64_t*, T*, const int64_t*, int64_t, int64_t, int64_t, int64_t);

#define VEK_LEVEL3_HERMITIAN(PREFIX, P, T, R)                                                                     \
  void PREFIX##P##hemm_(const char*, const char*, const int64_t*, const int64_t*, const T*, const T*,            \
                        const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*, int64_t, int64_t); \
  void PREFIX##P##herk_(const char*, const char*, const int64_t*, const int64_t*, const R*, const T*,            \
                        const int64_t*, const R*, T*, const int64_t*, int64_t, int64_t);                          \
  void PREFIX##P##her2k_(const char*, const char*, const int64_t*, const int64_t*, const T*, const T*,           \
                         const int64_t*, const T*, const int64_t*, const R*, T*, const int64_t*, int64_t, int64_t);

#define VEK_LEVEL3_ALL(PREFIX)                          \
  VEK_LEVEL3_COMMON(PREFIX, s, float)                   \
  VEK_LEVEL3_COMMON(PREFIX, d, double)                  \
  VEK_LEVEL3_COMMON(PREFIX, c, vek_scomplex)            \
  VEK_LEVEL3_COMMON(PREFIX, z, vek_complex)             \
  VEK_LEVEL3_HERMITIAN(PREFIX, c, vek_scomplex, float)  \
  VEK_LEVEL3_HERMITIAN(PREFIX, z, vek_complex, double)

extern "C" {
VEK_LEVEL3_ALL(vekob_)
VEK_LEVEL3_ALL(vektl_)
// Row interchanges, used by the LU factorisations.
void vekob_dlaswp_(const int64_t* n, double* a, const int64_t* lda, const int64_t* k1, const int64_t* k2,
                   const int64_t* ipiv, const int64_t* incx);
void vekob_zlaswp_(const int64_t* n, vek_complex* a, const int64_t* lda, const int64_t* k1, const int64_t* k2,
                   const int64_t* ipiv, const int64_t* incx);
// OpenBLAS's own LU (recursive) and Cholesky factorisations, for the panels and diagonal blocks of the
// library's blocked factorisations, and its LU solves, for the simple drivers.
void vekob_dgetrf_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv, int64_t* info);
void vekob_zgetrf_(const int64_t* m, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* ipiv,
                   int64_t* info);
void vekob_dpotrf_(const char* uplo, const int64_t* n, double* a, const int64_t* lda, int64_t* info, int64_t uplo_len);
void vekob_zpotrf_(const char* uplo, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* info,
                   int64_t uplo_len);
void vekob_dgetrs_(const char* trans, const int64_t* n, const int64_t* nrhs, const double* a, const int64_t* lda,
                   const int64_t* ipiv, double* b, const int64_t* ldb, int64_t* info, int64_t trans_len);
void vekob_zgetrs_(const char* trans, const int64_t* n, const int64_t* nrhs, const vek_complex* a, const int64_t* lda,
                   const int64_t* ipiv, vek_complex* b, const int64_t* ldb, int64_t* info, int64_t trans_len);
// The library's blocked LU and Cholesky factorisations (f07adf, f07arf, f07fdf, f07frf) under the names that
// the calls of ?getrf and ?potrf inside OpenBLAS's LAPACK (dgesvx, zgesvx, dposv, zposv, dsygv, zhegv ...)
// are sent to.
void vektl_dgetrf_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv, int64_t* info);
void vektl_zgetrf_(const int64_t* m, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* ipiv,
                   int64_t* info);
void vektl_dpotrf_(const char* uplo, const int64_t* n, double* a, const int64_t* lda, int64_t* info, int64_t uplo_len);
void vektl_zpotrf_(const char* uplo, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* info,
                   int64_t uplo_len);
}

#undef VEK_LEVEL3_ALL
#undef VEK_LEVEL3_HERMITIAN
#undef VEK_LEVEL3_COMMON
