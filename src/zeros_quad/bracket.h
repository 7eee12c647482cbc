// Zero of a real function in an interval where it changes sign: the stepper behind c05azf (the caller
// evaluates) and c05ayf (which evaluates the user's function itself). It keeps the bracket in the caller's
// communication array and advances by one evaluation per call.
//
// Method: Brent's bracketing zero finder (R. P. Brent, Algorithms for Minimization without Derivatives,
// Prentice-Hall 1973, ch. 4): the best point b and a contrapoint c with f(b), f(c) of opposite signs; each step
// tries inverse quadratic interpolation through (a, b, c), or the secant through (a, b) when a = c, and falls
// back to bisection when the interpolated point is not well inside [b, c] or does not at least halve the step
// before last. The bracket shrinks on every evaluation, so the search ends for any function: a NaN value never
// selects an interpolated step and counts as non-positive in the sign tests.
#pragma once

#include <cstdint>

#include "layers/c05.h"

namespace vek::zeros_quad {

// The state kept between evaluations: the fields of the caller's array C.
using BracketState = routines::c05azf::c_state;

// The values of IND: what FX holds on entry, what the caller is asked for on return.
namespace ind_state {
inline constexpr int64_t finished = 0;
inline constexpr int64_t start_with_values = -1;  // FX = f(X) and C(1) = f(Y) given
inline constexpr int64_t start = 1;               // no value yet: f(X) is asked for
inline constexpr int64_t first_value = 2;         // FX = f at the first point
inline constexpr int64_t second_value = 3;        // FX = f at the second point
inline constexpr int64_t iterate_value = 4;       // FX = f at the latest iterate (or the converged point)
}  // namespace ind_state

// The error test on the half-width xm of the bracket: |xm| <= TOLX max(r |b|, s).
enum class ErrorTest : int64_t { mixed = 0, absolute = 1, relative = 2 };  // (r, s) = (1, 1), (0, 1), (1, 0)

enum class BracketOutcome {
  evaluate,             // IND asks for f(X)
  zero,                 // X is the zero: an exact zero, or the bracket converged and the check at X passed
  same_sign,            // the two starting values do not change sign
  pole,                 // the bracket converged but |f(X)| exceeds both starting values
  tolerance_too_small,  // the bracket is down to rounding level before the test is met
};

struct BracketStep {
  BracketOutcome outcome;
  double f_first = 0.0;   // for same_sign: f at the first point (the X given on starting)
  double f_second = 0.0;  // and at the second (the Y given on starting)
};

// No sign change between u and v: both > 0 or both not (0 and NaN count as non-positive).
inline bool same_sign(double u, double v) { return (u > 0.0) == (v > 0.0); }

// One call of the reverse-communication sequence: `ind` (one of the values above, not finished) says what fx
// holds; on return ind is finished, or iterate/second/first asks for f(x). Every outcome but evaluate sets ind to
// finished. x and y are the caller's X and Y.
BracketStep bracket_step(BracketState s, double& x, double& y, double fx, double tolx, ErrorTest test, int64_t& ind);

}  // namespace vek::zeros_quad
