// Zero of a real function near a starting point by continuation: the stepper behind c05axf (the caller
// evaluates) and c05awf (which evaluates the user's function itself). All of its state lives in the caller's
// communication array; one evaluation per call.
//
// Method: the embedding of Swift and Lindfield (A. Swift and G. R. Lindfield, "Comparison of a continuation
// method with Brent's method for the numerical solution of a single nonlinear equation", Comput. J. 21, 1978),
//     h(x, theta) = f(x) - theta f(x0),
// whose zero is x0 at theta = 1 and the zero of f at theta = 0. The embedding is theirs; the control of the
// steps below is this library's. The path x(theta) is followed in steps of theta
// from an accepted point xa (theta_a = f(xa)/f(x0)) towards theta_a -/+ dtheta, or straight to 0 once dtheta
// reaches |theta_a| (the final step). A step is a secant iteration on h(., theta) started from xa with the
// slope kept from the previous step (the first slope is a difference quotient over SCAL at x0, the scale of
// the problem in x): its first point is the Euler predictor along the path. A step with theta > 0 is accepted
// as soon as |f| <= (|theta| + dtheta/4)|f(x0)|; then the point reached, whatever its own theta, is the new
// accepted point, and dtheta doubles after a step of at most two evaluations. A step fails when the residual
// does not decrease or four evaluations do not reach the target: the run goes back to xa and halves dtheta.
// The final step is the secant method on f itself, run until the stopping test holds; if it stops decreasing
// |f|, its best point becomes the accepted one and the continuation resumes with dtheta halved.
#pragma once

#include <cstdint>

#include "layers/c05.h"

namespace vek::zeros_quad {

using ContinuationState = routines::c05axf::c_state;

// The values of IND.
namespace continuation_ind {
inline constexpr int64_t finished = 0;
inline constexpr int64_t start_with_value = -1;  // FX = f(X) given
inline constexpr int64_t start = 1;              // f(X) is asked for
inline constexpr int64_t start_value = 2;        // FX = f at the starting point
inline constexpr int64_t difference_value = 3;   // FX = f at the starting point + SCAL
inline constexpr int64_t path_value = 4;         // FX = f at a point of a step
}  // namespace continuation_ind

// When a point x with value f is a zero, delta being the secant step -f/slope the method would take next:
// the x test |delta| <= xtol max(1, |x|), the f test |f| <= ftol; `both` asks for both, otherwise either
// suffices. A tolerance of 0 leaves only f = 0 to its test. f = 0 always ends the run.
struct StopTest {
  double xtol;
  double ftol;
  bool both;
};

enum class ContinuationOutcome {
  evaluate,             // IND asks for f(X)
  zero,                 // X passed the stopping test, or f(X) = 0
  scale_invalid,        // f(x0) or the difference over SCAL is not finite, or the difference is negligible
  stalled,              // the step in theta became negligible, or too many steps: X is the accepted point
  tolerance_too_small,  // the secant step is down to rounding level before the test holds: X the best point
};

struct ContinuationStep {
  ContinuationOutcome outcome;
  double theta = 0.0;  // for stalled: theta at the accepted point
};

// One call of the sequence: `ind` (not finished) says what fx holds; on return ind is path/difference/start
// value asking for f(x), or finished with the outcome. scal is used only when a run starts; the arguments are
// assumed checked.
ContinuationStep continuation_step(ContinuationState s, double& x, double fx, double scal, const StopTest& test,
                                   int64_t& ind);

// The point to return when a run is cut short by its caller: the accepted point, or the starting point before
// the path has begun.
double continuation_best_point(ContinuationState s);

}  // namespace vek::zeros_quad
