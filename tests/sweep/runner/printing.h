// What a call may print on the console (standard output): with IFAIL = 1 nothing, with IFAIL = -1 only its
// error report, and a routine without IFAIL only its argument-error report; each of these is made of records
// beginning " ** ". Routines whose job is to print are exempt.
#pragma once

#include <sys/types.h>

#include <optional>

#include "sweep.h"

namespace sweep {

// The console's position now (standard output is a file in the children).
off_t console_position();

// A finding when what the call printed since `from` is more than it may print.
std::optional<Finding> unexpected_printing(const RoutineDesc& d, int64_t ifail, off_t from);

}  // namespace sweep
