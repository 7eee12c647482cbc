// The option store of the unconstrained minimiser E04DGF: the library-global store that E04DKF and E04DJF
// set, and the step the solver takes at start. Its tables and rules are declared beside E04UCF's; unlike
// E04UCF's option routines, these leave an unset Print level unset (the solver's own default is 10).
#pragma once

#include "layers/e04.h"
#include "optim/option_family.h"
#include "optim/option_store.h"

namespace vek::optim::e04dg {

// The library-global store, initialised on first use. Unprotected: option setting and solving must not run
// on two threads at once.
Store global_store();

// The solver's start: a copy of the stored parameters (a pending reset applied) with every unset or
// out-of-range value replaced by its default for n variables; the listing goes to `sink` when the Print
// level in force is positive. The store itself is left unchanged.
SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink);

}  // namespace vek::optim::e04dg
