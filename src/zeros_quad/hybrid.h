// Powell's hybrid method for n nonlinear equations f(x) = 0 in n unknowns, as a resumable stepper: every
// function or Jacobian value it needs is asked of the caller, at the point it has put in x, and the whole state
// lives in the caller's arrays. The reverse-communication routines c05qdf and c05rdf expose it directly; the
// drivers c05qbf, c05qcf, c05rbf and c05rcf are loops that answer its requests with the user's FCN, so all of
// them take identical iterates.
//
// Method (M. J. D. Powell, A hybrid method for nonlinear equations, in Numerical Methods for Nonlinear
// Algebraic Equations, ed. P. Rabinowitz, Gordon and Breach 1970; organised as in MINPACK's hybrd and hybrj,
// More, Garbow and Hillstrom, ANL-80-74, 1980): a trust region of radius delta in the norm ||diag x||; in it
// the dogleg step between the Gauss-Newton step and the scaled steepest-descent step for the linear model
// f + J p, with J = Q R. The radius follows the ratio of actual to predicted reduction of ||f||; between
// Jacobian evaluations (forward differences, banded when ML + MU + 1 < n, or the caller's Jacobian) Q and R
// take Broyden's rank-one update by Givens rotations. A new Jacobian is computed after two consecutive failed
// steps.
#pragma once

#include <cstdint>

namespace vek::zeros_quad {

// The integer state (IWSAV) and the real state (RWSAV: 4 scalars, then 5 vectors of n).
inline constexpr int64_t kHybridIntState = 11;
template <class Count>
constexpr Count hybrid_real_state(Count n) {
  return 5 * n + 4;
}

// What the stepper asks for on return.
enum class HybridRequest {
  function,  // f at x, into fvec
  jacobian,  // the Jacobian at x, into fjac (column-major, n by n); x and fvec hold the current point
  monitor,   // nothing: an iteration starts, x and fvec hold the best point (a driver's chance to report)
  finished,  // hybrid_outcome says why; x and fvec hold the best point found
};

enum class HybridOutcome {
  converged,        // the trust region radius fell to XTOL ||diag x||, or f(x) = 0
  too_many_calls,   // MAXFEV function values (not counting Jacobian values) have been asked for
  xtol_too_small,   // the step is down to rounding level relative to ||diag x||
  slow_jacobians,   // five Jacobian evaluations without a 10% reduction of ||f|| in the steps that followed
  slow_iterations,  // ten steps without a 0.1% reduction of ||f||
  not_finite,       // x or f at the start, or a Jacobian element, is NaN or infinite
  not_a_root,       // the radius fell to XTOL ||diag x|| where ||f|| is larger than the linear model can
                    // remove in such a step: a minimum of ||f|| with a singular Jacobian, not a zero
};

inline constexpr int64_t kSlowJacobians = 5;
inline constexpr int64_t kSlowIterations = 10;

// Columns of the Jacobian differenced together, for a known sparsity pattern: the columns of a group share no
// row, so one function value gives all their elements (Curtis, Powell and Reid); every element outside the
// pattern is 0.
struct ColumnGroups {
  int64_t count;
  const int64_t* group_of;      // n: the group of each column, 0 to count-1
  const int64_t* column_start;  // n+1: the rows of column j are rows[column_start[j]] to rows[column_start[j+1]-1]
  const int64_t* rows;
};

struct HybridSettings {
  double xtol;
  int64_t maxfev;
  int64_t ml, mu;       // the band of the Jacobian for differencing (ignored with a user Jacobian)
  double epsfcn;        // the relative error of f, for the difference steps
  bool scale_given;     // diag is the caller's (MODE = 2), otherwise the stepper's own column scaling
  double factor;        // the initial radius is factor ||diag x|| (factor when x = 0)
  bool user_jacobian;   // the caller supplies Jacobians, otherwise they are differenced
  const ColumnGroups* groups = nullptr;  // a sparsity pattern for differencing, in place of the band
};

// The caller's arrays: x, fvec, diag, qtf of n; fjac of n*n; r of n(n+1)/2; the two state arrays.
struct HybridArrays {
  int64_t n;
  double* x;
  double* fvec;
  double* fjac;
  double* r;
  double* qtf;
  double* diag;
  int64_t* int_state;
  double* real_state;
};

// Starts a solution from the point in x: asks for f(x).
HybridRequest hybrid_start(const HybridArrays& a);
// Whether the state arrays hold a run this stepper can continue with these settings (a reverse-communication
// caller may have changed them); hybrid_resume requires it.
bool hybrid_state_valid(const HybridArrays& a, const HybridSettings& s);
// Continues once the caller has answered the last request (fvec or fjac filled in, or nothing to do).
HybridRequest hybrid_resume(const HybridArrays& a, const HybridSettings& s);
// Ends a solution early (the caller gave up): x and fvec get the best point found, if there is one yet.
void hybrid_abandon(const HybridArrays& a);

HybridOutcome hybrid_outcome(const int64_t* int_state);
int64_t hybrid_function_count(const int64_t* int_state);
int64_t hybrid_jacobian_count(const int64_t* int_state);
int64_t hybrid_iteration(const int64_t* int_state);  // 1 + the successful steps so far

}  // namespace vek::zeros_quad
