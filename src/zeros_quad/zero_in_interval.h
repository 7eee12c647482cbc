// The zero of a function in [a, b] where it changes sign, the function evaluated here: f(a), f(b), then the
// bracketing kernel (bracket.h) started with both values and the absolute test TOLX = eps. A value with
// |f| < eta (strictly) or f = 0 ends the search at once with that point, the kernel's final check at the
// converged point included. Used by c05ayf, and by c05auf on the interval its search found.
#pragma once

#include <cmath>

#include "zeros_quad/bracket.h"

namespace vek::zeros_quad {

struct IntervalZero {
  BracketOutcome outcome;  // zero, same_sign, pole or tolerance_too_small
  double x;                // the zero found, or the last point evaluated
  double fa = 0.0, fb = 0.0;  // for same_sign: f(a) and f(b)
};

// f: double(double), called once per point.
template <class Function>
IntervalZero zero_in_interval(double a, double b, double eps, double eta, Function&& f) {
  auto accepted = [&](double v) { return std::abs(v) < eta || v == 0.0; };
  const double fa = f(a);
  if (accepted(fa)) return {BracketOutcome::zero, a};
  const double fb = f(b);
  if (accepted(fb)) return {BracketOutcome::zero, b};
  if (same_sign(fa, fb)) return {BracketOutcome::same_sign, b, fa, fb};

  double c[10] = {};
  const BracketState state(c);
  state.fy() = fa;
  double x = b, y = a;
  int64_t ind = ind_state::start_with_values;
  BracketStep step = bracket_step(state, x, y, fb, eps, ErrorTest::absolute, ind);
  while (ind != ind_state::finished) {
    const double fx = f(x);
    if (accepted(fx)) return {BracketOutcome::zero, x};
    step = bracket_step(state, x, y, fx, eps, ErrorTest::absolute, ind);
  }
  // The kernel cannot see the same sign here: it was tested above by the same rule.
  return {step.outcome, x};
}

}  // namespace vek::zeros_quad
