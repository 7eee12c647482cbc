// The published BLAS/LAPACK names and the library routines behind them (a table generated from the declarations), for
// the argument-error report "F07ADF/DGETRF".
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vek::linalg {

struct NamePair {
  const char* published;  // upper case, "DGETRF"
  const char* library;    // upper case, "F07ADF"
};

// Sorted by published name.
extern const std::span<const NamePair> published_names;

// "F07ADF/DGETRF" for "DGETRF" (any case, trailing blanks and NULs ignored); a name not in the table is
// returned upper-cased as it stands.
std::string report_name(std::string_view published);

}  // namespace vek::linalg
