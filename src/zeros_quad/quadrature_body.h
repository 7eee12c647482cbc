// What the bodies of the adaptive D01 integrators share: the integrand through the host's adapter
// (user_integrand.h), and the end of a run: W and IW packed and sorted (interval_list.h), RESULT and ABSERR set, the outcome reported with the
// routine's messages.
#pragma once

#include <cstdint>

#include "frame/error_buffer.h"
#include "zeros_quad/adaptive_quadrature.h"
#include "zeros_quad/user_integrand.h"

namespace vek::zeros_quad {

// Runs integrate(integrand, list) over LIMIT subintervals of W and IW and finishes as described above; R is
// the routine's message struct (table_round_off and divergent only where it declares them).
template <class R, class Adapter, class Function, class Integrate>
void run_adaptive(frame::ErrorBuffer& err, int64_t limit, Adapter own_adapter, Adapter f_adapter, Function f,
                  int64_t* iuser, double* ruser, Integrate integrate, const double* epsabs, const double* epsrel,
                  double* result, double* abserr, double* w, const int64_t* lw, int64_t* iw, const int64_t* liw) {
  IntervalList list(w, iw, limit);
  const QuadratureOutcome out = with_user_integrand(own_adapter, f_adapter, f, iuser, ruser,
                                                    [&](auto& integrand) { return integrate(integrand, list); });
  list.pack_sorted(*lw);
  *result = out.result;
  *abserr = out.abserr;
  switch (out.end) {
    case QuadratureEnd::converged:
      return;
    case QuadratureEnd::limit_reached:
      return err.fail(R::limit_reached, limit, *lw, *liw);
    case QuadratureEnd::round_off:
      return err.fail(R::round_off, *epsabs, *epsrel);
    case QuadratureEnd::bad_integrand:
      return err.fail(R::bad_integrand, out.bad_left, out.bad_right);
    case QuadratureEnd::extrapolation_round_off:
      if constexpr (requires { R::table_round_off; }) return err.fail(R::table_round_off);
      return;
    case QuadratureEnd::divergent:
      if constexpr (requires { R::divergent; }) return err.fail(R::divergent);
      return;
  }
}

}  // namespace vek::zeros_quad
