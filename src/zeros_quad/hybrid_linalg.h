// The dense linear algebra of the hybrid method for n equations in n unknowns (hybrid.h): a Householder QR
// factorisation without pivoting, the explicit Q, the rank-one update of the triangular factor by Givens
// rotations, and the dogleg step on the trust region. Square n-by-n matrices are column-major with leading
// dimension n; the upper-triangular R is packed by rows, R(i,j) for j >= i at i*n - i*(i-1)/2 + (j-i).
//
// Method: Powell's hybrid method as organised in MINPACK (J. J. More, B. S. Garbow, K. E. Hillstrom, User
// Guide for MINPACK-1, Argonne ANL-80-74, 1980): the routines qrfac (without pivoting), qform, r1updt, r1mpyq
// and dogleg, written here with the same arithmetic so that iterates can be compared with that description.
#pragma once

#include <cstdint>

namespace vek::zeros_quad {

// Position of the diagonal element R(j,j) in the row-packed triangle of order n.
constexpr int64_t packed_diagonal(int64_t n, int64_t j) { return j * n - j * (j - 1) / 2; }

// The Euclidean norm of v(0), v(stride), ..., n elements, without overflow or harmful underflow (a NaN
// element need not show in the result: test values for NaN separately).
double euclidean_norm(int64_t n, const double* v, int64_t stride = 1);

// A = Q R by Householder reflections: on exit R strictly above the diagonal of a, the reflections below and on
// it (scaled so that the pivot element of each holds 1 + its first component), the diagonal of R in rdiag,
// and the Euclidean norms of A's columns in column_norms.
void householder_qr(int64_t n, double* a, double* rdiag, double* column_norms);

// Overwrites the factored a (householder_qr) with the orthogonal Q; work holds n elements.
void form_q(int64_t n, double* a, double* work);

// Replaces the row-packed triangle s of R by that of R + u v^T after rotations: on exit v and w describe the
// rotations (as apply_rotations reads them) that turn the old Q into the new one. w holds n elements.
void rank1_update(int64_t n, double* s, const double* u, double* v, double* w);

// A (m rows, n columns, leading dimension lda) times the rotations rank1_update described in v and w.
void apply_rotations(int64_t m, int64_t n, double* a, int64_t lda, const double* v, const double* w);

// The dogleg step x: the convex combination of the Gauss-Newton step R^{-1} qtb and the scaled gradient
// direction that minimises ||qtb - R x|| subject to ||diag x|| <= delta. wa1, wa2 hold n elements each.
void dogleg(int64_t n, const double* r, const double* diag, const double* qtb, double delta, double* x,
            double* wa1, double* wa2);

}  // namespace vek::zeros_quad
