// The published BLAS/LAPACK names and the library routines behind them (a table generated from the declarations), for
// the argument-error report "F07ADF/DGETRF".
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace vek::linalg {

struct NamePair {
  const char* published;  // upper case, "DGETRF"
  const char* library;    // upper case, "F07ADF"
};

// Sorted by published name.
extern const std::span<const NamePair> published_names;

// "F07ADF/DGETRF" for "DGETRF" (any case, trailing blanks and NULs ignored); a name not in the table is
// returned upper-cased as it stands, cut to the buffer. Nothing is allocated: the report is also made when
// memory has run out.
struct ReportName {
  char text[48];
  size_t size;
  std::string_view view() const { return {text, size}; }
};
ReportName report_name(std::string_view published);

}  // namespace vek::linalg
