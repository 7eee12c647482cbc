// The argument-error report of the BLAS/LAPACK-named routines: one line on the error unit, then the caller
// goes on (INFO carries the argument number back); nothing stops.
#pragma once

#include <cstdint>
#include <string_view>

namespace vek::linalg {

// Writes " ** On entry to NAME parameter number NUMBER had an illegal value" on the error unit.
void argument_error(std::string_view name, int64_t number);

}  // namespace vek::linalg
