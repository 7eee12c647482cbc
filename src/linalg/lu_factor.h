// The LU factorisation with partial pivoting behind F07ADF and F07ARF (real and complex), for other routines:
// A = P L U in place, pivots 1-based in IPIV(1:min(m,n)); returns 0, or i > 0 when U(i,i) is exactly zero.
// Arguments must be valid (m, n >= 0, lda >= max(1, m)). The result does not depend on the number of threads.
#pragma once

#include <cstdint>

#include "vek.h"

namespace vek::linalg {

// What the factorisation does when its bookkeeping cannot be allocated: the published DGETRF (no IFAIL) lets
// the dependency factorise on the calling thread; a library routine with IFAIL has std::bad_alloc thrown, which
// its generated worker reports as IFAIL = -999.
enum class WithoutMemory { use_dependency, throw_bad_alloc };

int64_t lu_factor(int64_t m, int64_t n, double* a, int64_t lda, int64_t* ipiv,
                  WithoutMemory without_memory = WithoutMemory::use_dependency);
int64_t lu_factor(int64_t m, int64_t n, vek_complex* a, int64_t lda, int64_t* ipiv,
                  WithoutMemory without_memory = WithoutMemory::use_dependency);

}  // namespace vek::linalg
