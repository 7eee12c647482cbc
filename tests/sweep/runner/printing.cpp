#include "printing.h"

#include <fnmatch.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace sweep {
namespace {

// Routines that print by their job, whatever IFAIL asks (each seen printing in the sweep; the error exits
// and the trace facility's internals have no entry and are not swept).
constexpr const char* kPrinters[] = {
    "x04*",    // x04baf writes a record; the matrix printers x04caf ... x04eaf
    "a00aaf",  // the implementation banner
    "e04uef",  // option lines and files of the SQP solver: echoed, and bad lines reported, on the advisory unit
    "e04udf",
    "e04dkf",  // the same for the unconstrained minimiser
    "e04djf",
};

bool printer(const char* name) {
  for (const char* p : kPrinters)
    if (fnmatch(p, name, 0) == 0) return true;
  return false;
}

// Whether the call may print its error report (records beginning " ** "), or nothing at all.
bool report_allowed(const RoutineDesc& d, int64_t ifail) {
  if (d.ifail == 0) return true;  // the argument-error report of the BLAS/LAPACK names and F16
  if (d.ifail == 2) return (ifail < 0 ? -ifail : ifail) / 10 % 10 != 0;
  return ifail == -1;
}

}  // namespace

off_t console_position() {
  std::fflush(stdout);
  return lseek(1, 0, SEEK_CUR);
}

std::optional<Finding> unexpected_printing(const RoutineDesc& d, int64_t ifail, off_t from) {
  const off_t to = console_position();
  if (from < 0 || to <= from || printer(d.name)) return std::nullopt;
  std::string text(static_cast<std::size_t>(std::min<off_t>(to - from, 1 << 16)), '\0');
  const ssize_t got = pread(1, text.data(), text.size(), from);
  text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  const bool reports = report_allowed(d, ifail);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    const std::string line = text.substr(at, end - at);
    if (!reports || line.rfind(" ** ", 0) != 0)
      return Finding{"print", std::string(reports ? "printed more than its report: \"" : "printed with IFAIL = ") +
                                  (reports ? "" : std::to_string(ifail) + ": \"") + line.substr(0, 100) + "\""};
    at = end + 1;
  }
  return std::nullopt;
}

}  // namespace sweep
