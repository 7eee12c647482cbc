// The option store of the SQP solver E04UCF: the library-global store that E04UEF and E04UDF set, and the
// step the solver takes at start (its parameters in force, and their listing).
#pragma once

#include "layers/e04.h"
#include "optim/option_family.h"
#include "optim/option_store.h"

namespace vek::optim::e04uc {

// The library-global store, initialised on first use (every parameter unset, the header due, listing on).
// Unprotected: option setting and solving must not run on two threads at once.
Store global_store();

// What E04UEF and E04UDF do after every call: a Major print level still unset becomes 10, so that a caller
// who sets options but no print level sees the full listing (the solver's own default, without any option
// call, is 0).
void after_option_call(Store s);

// The solver's start: a copy of the stored parameters (with a pending reset applied) in which every unset or
// out-of-range value has its default for the problem sizes `in`; when the Major print level in force is
// positive, the listing goes to `sink`. The store itself is left unchanged.
SaveAreas start_of_solve(Store stored, const Inputs& in, const RecordSink& sink);

}  // namespace vek::optim::e04uc
