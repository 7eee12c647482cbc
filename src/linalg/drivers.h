// Typed kernels of the simple linear-system drivers (F04) and the general inverse (F01), callable from other
// chapters: they take valid arguments (the workers check them), throw std::bad_alloc when workspace cannot be
// had, and report breakdown through the result.
#pragma once

#include <cstdint>

namespace vek::linalg {

struct SolveResult {
  int64_t breakdown = 0;  // > 0: the factorisation stopped at this column (singular, or not positive definite)
  double rcond = 0;       // estimate of 1 / (||A||_1 ||A^-1||_1); 0 after a breakdown
};

enum class Triangle { upper, lower };

// A X = B for a general A: A is overwritten by its LU factors, IPIV by the pivots, B by X.
SolveResult solve_general(int64_t n, int64_t nrhs, double* a, int64_t lda, int64_t* ipiv, double* b, int64_t ldb);

// The same for a band matrix in LU band storage (rows KL+1 .. 2*KL+KU+1 of AB hold A).
SolveResult solve_band(int64_t n, int64_t kl, int64_t ku, int64_t nrhs, double* ab, int64_t ldab, int64_t* ipiv,
                       double* b, int64_t ldb);

// A X = B for a symmetric positive definite A given by one triangle, overwritten by its Cholesky factor.
SolveResult solve_spd(Triangle uplo, int64_t n, int64_t nrhs, double* a, int64_t lda, double* b, int64_t ldb);

// A^-1 in place; returns the breakdown column (0 on success).
int64_t invert_general(int64_t n, double* a, int64_t lda);

// The bound on ||X - X_computed|| / ||X|| the drivers return with RCOND: eps / RCOND, capped at the largest
// double (a zero or tiny RCOND means no accuracy can be claimed).
double error_bound(double rcond);

}  // namespace vek::linalg
