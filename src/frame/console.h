// The host console: every record for units 0 and 6, and for units without an open file, lands here.
#pragma once

#include <cstdio>
#include <string_view>

namespace vek::console {

// Writes one line, newline included, in one call. Inside a host that provides mexPrintf (found in the process at run time) the line goes to
// it, with every '%' doubled because it takes a format; otherwise it goes to standard output unchanged.
void write_line(std::string_view line);

// Writes `line` and a newline on `file`: one write from a stack buffer for lines up to 1023 characters, two
// for longer ones; nothing is allocated (reports are printed also when memory has run out).
void put_line(std::FILE* file, std::string_view line);

}  // namespace vek::console
