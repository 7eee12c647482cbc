// Search outwards from a point for an interval over which a function changes sign: the stepper behind
// c05avf (the caller evaluates) and c05auf (which evaluates the user's function itself). All of the search
// lives in the caller's communication array, H, X and Y; one evaluation per call.
//
// The search steps from the starting point x0 by H; while |f| decreases it keeps the direction and moves its
// base, otherwise it turns round; either way the step doubles. A trial point beyond a bound is pulled back to
// it, and a second visit to the same bound (or to either after both) is refused. A refused move refines the
// mesh: the search restarts from x0 with H0 (-0.1)^k, k = 1, 2, 3, and fails after the third.
#pragma once

#include <cstdint>

#include "layers/c05.h"

namespace vek::zeros_quad {

using SearchState = routines::c05avf::c_state;

// The values of IND for the search.
namespace search_ind {
inline constexpr int64_t finished = 0;
inline constexpr int64_t start_with_value = -1;  // FX = f(X) given
inline constexpr int64_t start = 1;              // f(X) is asked for
inline constexpr int64_t start_value = 2;        // FX = f at the starting point
inline constexpr int64_t trial_value = 3;        // FX = f at the trial point X
}  // namespace search_ind

enum class SearchOutcome {
  evaluate,    // IND asks for f(X)
  bracket,     // f(X) and f(Y) change sign, C(1) = f(Y); or f(X) = 0 and Y = X
  no_bracket,  // X <= Y are the extreme points reached, C(1) = f(Y)
};

// The search's limits: the interval it may not leave.
struct SearchBounds {
  double lower, upper;
};

// One call of the sequence: `ind` (start, start_with_value, start_value or trial_value) says what fx holds; on
// return ind is finished or trial/start value, asking for f(x). The arguments are assumed checked.
SearchOutcome search_step(SearchState s, double& x, double& y, double& h, double fx, SearchBounds bounds,
                          int64_t& ind);

}  // namespace vek::zeros_quad
