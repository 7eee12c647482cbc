// Fortran-style edit descriptors for the matrix printers: parsing a FORM text and writing one number in it.
//
// Accepted (letters in either case, blanks ignored, optionally in parentheses), with 1 <= w <= 60:
//   Fw.d          fixed point, d decimals (0 <= d < w)
//   Ew.d  Dw.d    0.ddddE+xx, d significant digits (1 <= d < w)
//   ESw.d 1PEw.d  d.ddddE+xx, d + 1 significant digits (1PDw.d with D)
//   Gw.d  1PGw.d  fixed point with d significant digits and 4 trailing blanks when 0.1 <= |x| < 10^d,
//                 otherwise Ew.d (1PEw.d)
//   Iw            an integer in w columns
// A number that does not fit in w columns is shown as w asterisks; an exponent beyond 99 drops its letter
// ("0.1235+100"); infinities show as "Infinity" or "Inf" and NaNs as "NaN" when they fit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vek::printers {

inline constexpr int kMaxFieldWidth = 60;

struct EditDescriptor {
  enum class Kind { fixed, exponent, general, integer };
  Kind kind = Kind::fixed;
  int width = 0;
  int decimals = 0;
  int scale = 0;          // 0 or 1: digits before the point in exponent form
  char exponent = 'E';    // 'E' or 'D'
};

// The descriptor written in FORM, or nothing when FORM is not one of the accepted forms for the element
// kind (Iw for integers, the others for reals).
std::optional<EditDescriptor> parse_edit_descriptor(std::string_view form, bool integer);

// x in exactly `fmt.width` columns.
std::string format_real(const EditDescriptor& fmt, double x);
std::string format_integer(const EditDescriptor& fmt, int64_t x);

// The layout the printers choose when FORM is blank: F with 4 decimals, wide enough for every value, when
// the largest magnitude is below 1e5 and the smallest non-zero one at least 1e-3; otherwise 1PE11.4.
EditDescriptor default_real_format(double largest, double smallest_nonzero);
// Iw with w the widest of the values.
EditDescriptor default_integer_format(int64_t largest, int64_t smallest);

}  // namespace vek::printers
