#include "frame/ieee.h"

#include <bit>
#include <cfenv>
#include <limits>

namespace vek::ieee {

double signalling_nan() { return std::bit_cast<double>(UINT64_C(0x7FF0000000000001)); }
double quiet_nan() { return std::numeric_limits<double>::quiet_NaN(); }

// glibc on x86-64 has feenableexcept / fedisableexcept / fegetexcept; elsewhere the traps stay off.
#if defined(__GLIBC__) && (defined(__x86_64__) || defined(__i386__))
bool traps_supported() { return true; }

TrapState enabled_traps() {
  const int on = fegetexcept();
  return {(on & FE_OVERFLOW) != 0, (on & FE_DIVBYZERO) != 0, (on & FE_INVALID) != 0};
}

void set_traps(const TrapState& traps) {
  const int flags[] = {FE_OVERFLOW, FE_DIVBYZERO, FE_INVALID};
  const bool wanted[] = {traps.overflow, traps.divide_by_zero, traps.invalid};
  for (int k = 0; k < 3; ++k) {
    // A trap enabled while its exception flag is already raised would fire at the next operation on some
    // platforms; the flag is cleared first so that only new exceptions trap.
    if (wanted[k]) {
      std::feclearexcept(flags[k]);
      feenableexcept(flags[k]);
    } else {
      fedisableexcept(flags[k]);
    }
  }
}
#else
bool traps_supported() { return false; }
TrapState enabled_traps() { return {}; }
void set_traps(const TrapState&) {}
#endif

}  // namespace vek::ieee
