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

template <>
struct FactorKernels<double> {
  using Real = double;
  static constexpr const char* kAdjoint = "T";  // the transposition of a symmetric factorisation
  static constexpr auto getrf = vekob_dgetrf_;
  static constexpr auto getrs = vekob_dgetrs_;
  static constexpr auto laswp = vekob_dlaswp_;
  static constexpr auto trsm = vekob_dtrsm_;
  static constexpr auto gemm = vekob_dgemm_;
  static constexpr auto potrf = vekob_dpotrf_;
  static constexpr auto tiled_trsm = vektl_dtrsm_;
  static constexpr auto tiled_rank_k = vektl_dsyrk_;
  static constexpr const char* kGetrf = "F07ADF/DGETRF";
  static constexpr const char* kPotrf = "F07FDF/DPOTRF";
  static constexpr const char* kGesv = "F07AAF/DGESV";
};

template <>
struct FactorKernels<vek_complex> {
  using Real = double;
  static constexpr const char* kAdjoint = "C";  // the conjugate transposition of a Hermitian factorisation
  static constexpr auto getrf = vekob_zgetrf_;
  static constexpr auto getrs = vekob_zgetrs_;
  static constexpr auto laswp = vekob_zlaswp_;
  static constexpr auto trsm = vekob_ztrsm_;
  static constexpr auto gemm = vekob_zgemm_;
  static constexpr auto potrf = vekob_zpotrf_;
  static constexpr auto tiled_trsm = vektl_ztrsm_;
  static constexpr auto tiled_rank_k = vektl_zherk_;
  static constexpr const char* kGetrf = "F07ARF/ZGETRF";
  static constexpr const char* kPotrf = "F07FRF/ZPOTRF";
  static constexpr const char* kGesv = "F07ANF/ZGESV";
};

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
