// The integral of f(x) cos(omega x) or f(x) sin(omega x) over (a, infinity), QUADPACK's dqawfe (Piessens et
// al. 1983): the range is cut into cycles of length (2 floor(|omega|) + 1) pi / |omega|, each integrated by the
// oscillatory integrator to a tolerance that shrinks by 0.9 per cycle, and the series of cycle integrals is
// summed with the epsilon algorithm.
#pragma once

#include <cstdint>

#include "zeros_quad/adaptive_quadrature.h"

namespace vek::zeros_quad {

// The length of a cycle for the frequency omega /= 0: an odd number of half periods, at least one unit long.
double fourier_cycle(double omega);

// Per cycle k (from 0): the integral, its error estimate and how its integration ended (QuadratureEnd as a
// number); room for `limit` cycles.
struct CycleLists {
  double* result;
  double* error;
  int64_t* end;
  int64_t limit;
};

enum class FourierEnd {
  converged = 0,
  cycle_limit = 1,        // all `limit` cycles used
  table_round_off = 2,    // the extrapolation of the series does not settle
  cycles_failed = 3,      // one or more cycles ended without their accuracy (see CycleLists::end)
};

struct FourierOutcome {
  double result = 0.0;
  double abserr = 0.0;
  FourierEnd end = FourierEnd::converged;
  int64_t cycles = 0;
};

// `rule` the oscillatory rule with the moments of a cycle's length, omega > 0, epsabs > 0 the absolute
// accuracy asked for; list and level as for integrate_oscillatory, reused by every cycle.
FourierOutcome integrate_fourier(RuleAtLevel rule, double a, double omega, double epsabs, CycleLists cycles,
                                 IntervalList& list, int64_t* level);

}  // namespace vek::zeros_quad
