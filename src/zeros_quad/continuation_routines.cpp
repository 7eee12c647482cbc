// Bodies of the continuation routines: c05axf (reverse communication) and c05awf, which drives the same kernel
// (continuation.h) with the user's function, so that both make the same evaluations. The declared checks
// (c05.decl) have been made when a body runs; a failure leaves IND at 0 through the generated worker.
#include <algorithm>
#include <cmath>

#include "frame/constants.h"
#include "layers/c05.h"
#include "zeros_quad/continuation.h"

namespace vek::routines {

using zeros_quad::ContinuationOutcome;

namespace {

// The stopping test of c05axf for IR = 0 (X and f both), 1 (X only) and 2 (f only).
zeros_quad::StopTest reverse_test(double tol, int64_t ir) {
  switch (ir) {
    case 1: return {tol, 0.0, false};
    case 2: return {0.0, tol, false};
    default: return {tol, tol, true};
  }
}

}  // namespace

void c05axf::run(frame::ErrorBuffer& err, double* x, const double* fx, const double* tol, const int64_t* ir,
                 const double* scal, double* c, int64_t* ind) {
  const zeros_quad::ContinuationStep step =
      zeros_quad::continuation_step(c_state(c), *x, *fx, *scal, reverse_test(*tol, *ir), *ind);
  switch (step.outcome) {
    case ContinuationOutcome::evaluate:
    case ContinuationOutcome::zero: return;
    case ContinuationOutcome::scale_invalid: return err.fail(scal_invalid, *scal);
    case ContinuationOutcome::stalled: return err.fail(stalled, step.theta, *x);
    case ContinuationOutcome::tolerance_too_small: return err.fail(tol_too_small, *tol);
  }
}

// The scale is the usual forward-difference step sqrt(eps) max(1, |X|); with it the run is c05axf's from IND = 1
// with the test "EPS on X or ETA on |f|". F receives the address of a private copy of the point; X shows the
// latest point during a call of F. At most NFMAX values of F are asked for.
void c05awf::run(frame::ErrorBuffer& err, double* x, const double* eps, const double* eta,
                 vek_c05awf_f_adapter f_adapter, vek_c05awf_f_fn f, const int64_t* nfmax, int64_t* iuser,
                 double* ruser) {
  const double x0 = *x;
  const double scal = std::sqrt(constants::eps()) * std::max(1.0, std::abs(x0));
  if (!std::isfinite(x0 + scal) || x0 + scal == x0) return err.fail(scale_invalid);

  double c[26] = {};
  const c05axf::c_state state(c);
  const zeros_quad::StopTest test{*eps, *eta, false};
  int64_t ind = zeros_quad::continuation_ind::start, calls = 0;
  double point = x0, fx = 0.0;
  zeros_quad::ContinuationStep step = zeros_quad::continuation_step(state, point, fx, scal, test, ind);
  while (ind != zeros_quad::continuation_ind::finished) {
    if (calls == *nfmax) {
      *x = zeros_quad::continuation_best_point(state);
      return err.fail(too_many_calls);
    }
    ++calls;
    double copy = *x = point;
    fx = f_adapter(f, &copy, iuser, ruser);
    step = zeros_quad::continuation_step(state, point, fx, scal, test, ind);
  }
  *x = point;
  switch (step.outcome) {
    case ContinuationOutcome::scale_invalid: return err.fail(scale_invalid);
    case ContinuationOutcome::stalled: return err.fail(stalled, step.theta, *x);
    case ContinuationOutcome::tolerance_too_small: return err.fail(eps_too_small, *eps);
    default: return;
  }
}

}  // namespace vek::routines
