// Checking a Jacobian supplied by the caller against a forward difference: the kernels of c05zdf.
//
// The idea is MINPACK's CHKDER (More, Garbow and Hillstrom, Argonne ANL-80-74, 1980): move every variable by
// about sqrt(eps) of itself, and compare the change of each function with the change the Jacobian predicts. A
// right row agrees to O(eps) of the function values (rounding, and a truncation error of order
// sqrt(eps)^2), a wrong one disagrees by O(sqrt(eps)). Unlike CHKDER, the predicted change is formed from the
// actual moves XP - X, and a row whose function does not change is judged by what the Jacobian predicts for it
// rather than marked wrong.
#pragma once

#include <cstdint>

namespace vek::zeros_quad {

// The point to evaluate at: xp(j) = x(j) + sqrt(eps) |x(j)|, or sqrt(eps) where x(j) = 0.
void jacobian_check_point(int64_t n, const double* x, double* xp);

// err(i) in [0, 1] for each of the m functions: with d the observed change fvecp(i) - fvec(i), p the change
// the row i of fjac (column-major, leading dimension m) predicts for the move xp - x, and
// r = |d - p| / (|fvec(i)| + |fvecp(i)|): 1 for r <= eps, 0 for r >= sqrt(eps) or a NaN, log-linear between.
// Where both function values are 0, 1 if p = 0 and 0 otherwise.
void jacobian_check_compare(int64_t m, int64_t n, const double* x, const double* fvec, const double* fjac,
                            const double* xp, const double* fvecp, double* err);

}  // namespace vek::zeros_quad
