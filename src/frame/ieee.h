// IEEE special values and the floating-point trap switches of the calling thread.
#pragma once

#include <cstdint>

namespace vek::ieee {

// A signalling NaN: exponent all ones, quiet bit clear, a non-zero payload (the lowest bit).
double signalling_nan();
double quiet_nan();

// The three traps the library controls, in the order the routines list them.
struct TrapState {
  bool overflow = false;
  bool divide_by_zero = false;
  bool invalid = false;
};

// Whether the platform lets a program enable and query floating-point traps.
bool traps_supported();
// The traps enabled now in the calling thread (all false where traps are not supported).
TrapState enabled_traps();
// Enables or disables the three traps; underflow and inexact are left as they are.
void set_traps(const TrapState& traps);

}  // namespace vek::ieee
