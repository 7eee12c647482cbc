// The LU factorisation with partial pivoting behind F07ADF, for other chapters: A = P L U in place, pivots
// 1-based in IPIV(1:min(m,n)); returns 0, or i > 0 when U(i,i) is exactly zero. Arguments must be valid
// (m, n >= 0, lda >= max(1, m)). The result does not depend on the number of threads.
#pragma once

#include <cstdint>

namespace vek::linalg {

int64_t lu_factor(int64_t m, int64_t n, double* a, int64_t lda, int64_t* ipiv);

}  // namespace vek::linalg
