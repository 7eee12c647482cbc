// The host console: every record for units 0 and 6, and for units without an open file, lands here.
#pragma once

#include <string_view>

namespace vek::console {

// Writes one line, newline included, in one call. Inside a host that provides mexPrintf (found in the process at run time) the line goes to
// it, with every '%' doubled because it takes a format; otherwise it goes to standard output unchanged.
void write_line(std::string_view line);

}  // namespace vek::console
