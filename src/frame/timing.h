// Dates, times and clocks of the timing routines.
#pragma once

#include <array>
#include <cstdint>

namespace vek::timing {

// Year, month (1-12), day (1-31), hour, minute, second, millisecond.
using DateTime = std::array<int64_t, 7>;

// The local date and time now.
DateTime now();

// "Www DD Mmm YYYY hh:mm:ss.mmm" (28 characters). A field out of its range shows as asterisks (the weekday
// and month names as "???"), so any input gives a text of the same length.
using DateText = std::array<char, 28>;
DateText format(const DateTime& t);

// Seconds of processor time used by the process; seconds of a monotonic wall clock.
double cpu_seconds();
double wall_seconds();

}  // namespace vek::timing
