// The pieces of the library's blocked LU and Cholesky factorisations for one element type (real or complex
// double): the dependency's routines that run on the calling thread (panel LU, diagonal-block Cholesky, row
// interchanges, the LU's triangular solve and product, its LU solves) and the library's tiled routines shared
// among its threads (the Cholesky's triangular solve and trailing update).
#pragma once

#include <cstdint>
#include <type_traits>

#include "linalg/level3_symbols.h"

namespace vek::linalg {

template <class T>
struct FactorKernels;

// P: the precision letter; ADJOINT: the transposition of a symmetric (Hermitian) factorisation; RANK_K: its
// trailing update (syrk or herk); GETRF, POTRF, GESV: the names in argument-error reports.
#define VEK_FACTOR_KERNELS(P, T, ADJOINT, RANK_K, GETRF, POTRF, GESV) \
  template <>                                                       \
  struct FactorKernels<T> {                                         \
    using Real = double;                                            \
    static constexpr const char* kAdjoint = ADJOINT;                \
    static constexpr auto getrf = vekob_##P##getrf_;                \
    static constexpr auto getrs = vekob_##P##getrs_;                \
    static constexpr auto laswp = vekob_##P##laswp_;                \
    static constexpr auto trsm = vekob_##P##trsm_;                  \
    static constexpr auto gemm = vekob_##P##gemm_;                  \
    static constexpr auto potrf = vekob_##P##potrf_;                \
    static constexpr auto tiled_trsm = vektl_##P##trsm_;            \
    static constexpr auto tiled_rank_k = vektl_##P##RANK_K##_;      \
    static constexpr const char* kGetrf = GETRF;                    \
    static constexpr const char* kPotrf = POTRF;                    \
    static constexpr const char* kGesv = GESV;                      \
  };
VEK_FACTOR_KERNELS(d, double, "T", syrk, "F07ADF/DGETRF", "F07FDF/DPOTRF", "F07AAF/DGESV")
VEK_FACTOR_KERNELS(z, vek_complex, "C", herk, "F07ARF/ZGETRF", "F07FRF/ZPOTRF", "F07ANF/ZGESV")
#undef VEK_FACTOR_KERNELS

// The scalar 1 or -1 of the element type.
template <class T>
T unit(double sign) {
  if constexpr (std::is_same_v<T, double>) return sign;
  else return T{sign, 0.0};
}

// Element (i, j), 0-based, of a column-major matrix.
template <class T>
T* element(T* a, int64_t lda, int64_t i, int64_t j) {
  return a + i + j * lda;
}

}  // namespace vek::linalg
