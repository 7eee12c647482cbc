// The error exit: decides from IFAIL on entry whether a failure's report is printed on the error unit and
// whether the process stops, and writes the report.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vek::frame {

// Standard form: IFAIL 0 = hard failure, printed (the process stops); -1 = soft, printed; any other value =
// soft, silent. Returns IERR (0 at once when IERR = 0).
int64_t error_exit(int64_t ifail_on_entry, int64_t ierr, std::string_view srname,
                   std::span<const std::string> records);

// Two-digit form: of |IFAIL|, the units digit 0 means hard, the tens digit non-zero means printed; a hard
// failure is always printed.
int64_t error_exit_two_digit(int64_t ifail_on_entry, int64_t ierr, std::string_view srname,
                             std::span<const std::string> records);

// Writes the records, the ABNORMAL EXIT line and the soft- or hard-failure line; a hard failure then flushes
// every open file and ends the process with status 0.
void write_report(bool silent, bool hard, int64_t ierr, std::string_view srname,
                  std::span<const std::string> records);

}  // namespace vek::frame
