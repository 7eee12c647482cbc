// Bodies of the C05 routines for one equation: c05azf (reverse communication) and c05ayf (its driver with a
// user function). The declared checks (c05.decl) have been made when a body runs, and a failure leaves IND at
// 0 through the generated worker; the kernel is bracket.cpp.
#include <cmath>

#include "layers/c05.h"
#include "zeros_quad/bracket.h"

namespace vek::routines {

using zeros_quad::BracketOutcome;

// One step of the search: the caller has evaluated what IND asked for (or starts with IND = 1 or -1); on
// return IND asks for f(X) again, or is 0 with X the zero and the bracket [X, Y] (either order), or a failure.
void c05azf::run(frame::ErrorBuffer& err, double* x, double* y, const double* fx, const double* tolx,
                 const int64_t* ir, double* c, int64_t* ind) {
  const zeros_quad::BracketStep step =
      zeros_quad::bracket_step(c_state(c), *x, *y, *fx, *tolx, static_cast<zeros_quad::ErrorTest>(*ir), *ind);
  switch (step.outcome) {
    case BracketOutcome::evaluate:
    case BracketOutcome::zero: return;
    case BracketOutcome::same_sign: return err.fail(same_sign, step.f_first, step.f_second);
    case BracketOutcome::pole: return err.fail(pole);
    case BracketOutcome::tolerance_too_small: return err.fail(tolx_too_small, *tolx);
  }
}

// F(A), then F(B), then the kernel started with both values (IND = -1, absolute test with TOLX = EPS), F
// evaluated at every point it asks for. A value with |F| < ETA (strictly) or F = 0 ends the search at once with
// that point, the final check at the converged point included. The user function is called through the
// adapter the entry passed (a host may pass its own), with IUSER and RUSER as given.
void c05ayf::run(frame::ErrorBuffer& err, const double* a, const double* b, const double* eps, const double* eta,
                 vek_c05ayf_f_adapter f_adapter, vek_c05ayf_f_fn f, double* x, int64_t* iuser, double* ruser) {
  double point = 0.0;  // the user function receives the address of its argument
  auto f_at = [&](double t) {
    point = t;
    return f_adapter(f, &point, iuser, ruser);
  };
  auto accepted = [&](double v) { return std::abs(v) < *eta || v == 0.0; };

  *x = *a;
  const double fa = f_at(*a);
  if (accepted(fa)) return;
  *x = *b;
  const double fb = f_at(*b);
  if (accepted(fb)) return;
  if (zeros_quad::same_sign(fa, fb)) return err.fail(same_sign, fa, fb);

  double c[10] = {};
  const c05azf::c_state state(c);
  state.fy() = fa;
  double y = *a;
  int64_t ind = zeros_quad::ind_state::start_with_values;
  const auto test = zeros_quad::ErrorTest::absolute;
  zeros_quad::BracketStep step = zeros_quad::bracket_step(state, *x, y, fb, *eps, test, ind);
  while (ind != zeros_quad::ind_state::finished) {
    const double fx = f_at(*x);
    if (accepted(fx)) return;
    step = zeros_quad::bracket_step(state, *x, y, fx, *eps, test, ind);
  }
  switch (step.outcome) {
    case BracketOutcome::pole: return err.fail(pole);
    case BracketOutcome::tolerance_too_small: return err.fail(eps_too_small, *eps);
    default: return;  // a zero; the kernel cannot see the same sign, tested above by the same rule
  }
}

}  // namespace vek::routines
