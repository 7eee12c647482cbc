// Bodies of the C05 routines for one equation: c05azf (reverse communication) and c05ayf (its driver with a
// user function), c05avf (reverse-communication search for a sign change) and c05auf (the search, then
// c05ayf's method). The declared checks (c05.decl) have been made when a body runs, and a failure leaves IND
// at 0 through the generated worker; the kernels are bracket.cpp and bracket_search.cpp.
#include <algorithm>
#include <cmath>

#include "layers/c05.h"
#include "zeros_quad/bracket.h"
#include "zeros_quad/bracket_search.h"
#include "zeros_quad/zero_in_interval.h"

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

namespace {

// The user function at t, through the adapter the entry passed (a host may pass its own), with IUSER and RUSER
// as given. The function receives the address of a private copy of t; the caller's X shows the latest point.
template <class Adapter, class Function>
auto user_function(Adapter adapter, Function f, double* x, int64_t* iuser, double* ruser) {
  return [=, point = 0.0](double t) mutable {
    *x = point = t;
    return adapter(f, &point, iuser, ruser);
  };
}

}  // namespace

// The zero in [A,B] (zero_in_interval.h): F(A), then F(B), then the kernel; the kernel's IFAIL 4 becomes 3,
// its 5 becomes 2.
void c05ayf::run(frame::ErrorBuffer& err, const double* a, const double* b, const double* eps, const double* eta,
                 vek_c05ayf_f_adapter f_adapter, vek_c05ayf_f_fn f, double* x, int64_t* iuser, double* ruser) {
  const zeros_quad::IntervalZero r =
      zeros_quad::zero_in_interval(*a, *b, *eps, *eta, user_function(f_adapter, f, x, iuser, ruser));
  *x = r.x;
  switch (r.outcome) {
    case BracketOutcome::same_sign: return err.fail(same_sign, r.fa, r.fb);
    case BracketOutcome::pole: return err.fail(pole);
    case BracketOutcome::tolerance_too_small: return err.fail(eps_too_small, *eps);
    default: return;
  }
}

// One call of the outward search (bracket_search.h); the declared checks have been made.
void c05avf::run(frame::ErrorBuffer& err, double* x, const double* fx, double* h, const double* boundl,
                 const double* boundu, double* y, double* c, int64_t* ind) {
  const zeros_quad::SearchOutcome outcome =
      zeros_quad::search_step(c_state(c), *x, *y, *h, *fx, {*boundl, *boundu}, *ind);
  if (outcome == zeros_quad::SearchOutcome::no_bracket) err.fail(no_bracket);
}

// F(X); then the outward search in [X - 256|H|, X + 256|H|] with F evaluated at every point it asks for, and
// the zero in the interval found. A value with |F| <= ETA (inclusive, unlike c05ayf's own test) ends the run at
// that point with A = B = X. F is evaluated once more at the zero c05ayf's search returns.
void c05auf::run(frame::ErrorBuffer& err, double* x, const double* h, const double* eps, const double* eta,
                 vek_c05auf_f_adapter f_adapter, vek_c05auf_f_fn f, double* a, double* b, int64_t* iuser,
                 double* ruser) {
  auto f_at = user_function(f_adapter, f, x, iuser, ruser);
  auto at_zero = [&](double t) { *x = *a = *b = t; };
  const double x0 = *x;
  const double fx0 = f_at(x0);
  if (std::abs(fx0) <= *eta) return at_zero(x0);

  const double reach = 256 * std::abs(*h);
  double c[11] = {}, trial = x0, partner = x0, step = *h;
  const c05avf::c_state search(c);
  int64_t ind = zeros_quad::search_ind::start_with_value;
  zeros_quad::SearchOutcome outcome =
      zeros_quad::search_step(search, trial, partner, step, fx0, {x0 - reach, x0 + reach}, ind);
  while (ind != zeros_quad::search_ind::finished) {
    const double ft = f_at(trial);
    if (std::abs(ft) <= *eta) return at_zero(trial);
    outcome = zeros_quad::search_step(search, trial, partner, step, ft, {x0 - reach, x0 + reach}, ind);
  }
  *x = x0;
  if (outcome == zeros_quad::SearchOutcome::no_bracket) {
    *a = search.lowest();
    *b = search.highest();
    return err.fail(no_bracket);
  }
  if (partner == trial) return at_zero(trial);  // an exact zero

  const zeros_quad::IntervalZero r = zeros_quad::zero_in_interval(partner, trial, *eps, *eta, f_at);
  const double fz = f_at(r.x);
  *x = r.x;
  *a = std::min(partner, trial);
  *b = std::max(partner, trial);
  if (std::abs(fz) <= *eta) *a = *b = r.x;
  switch (r.outcome) {
    case BracketOutcome::pole: return err.fail(pole);
    case BracketOutcome::tolerance_too_small: return err.fail(eps_too_small, *eps);
    case BracketOutcome::same_sign: return err.fail(no_bracket);  // only for an F whose values change between calls
    default: return;
  }
}

}  // namespace vek::routines
