#include "frame/printers_format.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/text.h"

namespace vek::printers {
namespace {

using Kind = EditDescriptor::Kind;

// Reads an unsigned number at the front of s (at most 3 digits, enough for every accepted value).
bool take_number(std::string_view& s, int& value) {
  size_t k = 0;
  while (k < s.size() && k < 3 && std::isdigit(static_cast<unsigned char>(s[k]))) ++k;
  if (k == 0 || (k < s.size() && std::isdigit(static_cast<unsigned char>(s[k])))) return false;
  std::from_chars(s.data(), s.data() + k, value);
  s.remove_prefix(k);
  return true;
}

bool take(std::string_view& s, std::string_view prefix) {
  if (s.substr(0, prefix.size()) != prefix) return false;
  s.remove_prefix(prefix.size());
  return true;
}

std::string right(std::string s, int width) {
  if (static_cast<int>(s.size()) > width) return std::string(static_cast<size_t>(width), '*');
  return std::string(static_cast<size_t>(width) - s.size(), ' ') + s;
}

std::string special(double x, int width) {
  if (std::isnan(x)) return right("NaN", width);
  const std::string sign = x < 0 ? "-" : "";
  if (static_cast<int>(sign.size()) + 8 <= width) return right(sign + "Infinity", width);
  return right(sign + "Inf", width);
}

// Fixed point with d decimals; Fortran writes the point even with no decimals and may drop the zero before
// it when room is short.
std::string fixed(double x, int width, int d) {
  char buf[400];  // the largest double has 309 digits before the point, at most 59 after it
  std::snprintf(buf, sizeof buf, "%.*f", d, x);
  std::string s(buf);
  if (d == 0) s += '.';
  if (static_cast<int>(s.size()) > width) {
    const size_t zero = s[0] == '-' ? 1 : 0;
    if (s.compare(zero, 2, "0.") == 0) s.erase(zero, 1);
  }
  return right(s, width);
}

// The significant digits of |x| rounded to `digits`, and the decimal exponent of the first one.
void significand(double x, int digits, std::string& out, int& exponent) {
  char buf[2 * kMaxFieldWidth];  // at most kMaxFieldWidth digits, the point and "e+308"
  std::snprintf(buf, sizeof buf, "%.*e", digits - 1, std::fabs(x));
  const std::string_view s(buf);
  const size_t e = s.find('e');
  out.clear();
  for (size_t k = 0; k < e; ++k)
    if (s[k] != '.') out += s[k];
  exponent = std::atoi(buf + e + 1);
  if (x == 0) exponent = -1;  // zero shows as 0.000E+00
}

std::string exponential(const EditDescriptor& f, double x) {
  std::string digits;
  int e = 0;
  significand(x, f.decimals + f.scale, digits, e);
  const int shown = x == 0 ? 0 : e + 1 - f.scale;  // exponent of the 0.ddd (scale 0) or d.ddd (1) form
  std::string mant = std::signbit(x) ? "-" : "";
  const size_t lead = mant.size();
  mant += f.scale == 1 ? digits.substr(0, 1) + "." + digits.substr(1) : "0." + digits;
  char ex[16];
  if (std::abs(shown) <= 99) std::snprintf(ex, sizeof ex, "%c%c%02d", f.exponent, shown < 0 ? '-' : '+', std::abs(shown));
  else std::snprintf(ex, sizeof ex, "%c%03d", shown < 0 ? '-' : '+', std::abs(shown));
  if (static_cast<int>(mant.size() + std::strlen(ex)) > f.width && f.scale == 0) mant.erase(lead, 1);
  return right(mant + ex, f.width);
}

std::string general(const EditDescriptor& f, double x) {
  const int fixed_width = f.width - 4;
  const std::string stars(static_cast<size_t>(f.width), '*');
  if (x == 0) {
    if (fixed_width < 1) return stars;
    const std::string s = fixed(x, fixed_width, f.decimals - 1);
    return s[0] == '*' ? stars : s + "    ";
  }
  std::string digits;
  int e = 0;
  significand(x, f.decimals, digits, e);
  const int n = e + 1;  // 10^(n-1) <= |x| < 10^n after rounding
  if (n < 0 || n > f.decimals) return exponential(f, x);
  if (fixed_width < 1) return stars;
  const std::string s = fixed(x, fixed_width, f.decimals - n);
  return s[0] == '*' ? stars : s + "    ";
}

}  // namespace

std::optional<EditDescriptor> parse_edit_descriptor(std::string_view form, bool integer) {
  std::string t;
  for (char c : form)
    if (c != ' ' && c != '\0') t += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  std::string_view s(t);
  if (s.size() >= 2 && s.front() == '(' && s.back() == ')') s = s.substr(1, s.size() - 2);
  EditDescriptor f;
  if (integer) {
    if (!take(s, "I")) return std::nullopt;
    f.kind = Kind::integer;
    if (!take_number(s, f.width) || !s.empty() || f.width < 1 || f.width > kMaxFieldWidth) return std::nullopt;
    return f;
  }
  // A scale factor (0P or 1P) applies to the exponent forms only.
  bool scaled = false;
  if (take(s, "1P")) {
    f.scale = 1;
    scaled = true;
  } else {
    scaled = take(s, "0P");
  }
  if (scaled) take(s, ",");
  if (take(s, "ES")) {
    if (scaled) return std::nullopt;
    f.kind = Kind::exponent;
    f.scale = 1;
  } else if (!s.empty() && (s.front() == 'E' || s.front() == 'D')) {
    f.kind = Kind::exponent;
    f.exponent = s.front();
    s.remove_prefix(1);
  } else if (take(s, "G")) {
    f.kind = Kind::general;
  } else if (!scaled && take(s, "F")) {
    f.kind = Kind::fixed;
  } else {
    return std::nullopt;
  }
  if (!take_number(s, f.width) || !take(s, ".") || !take_number(s, f.decimals) || !s.empty()) return std::nullopt;
  if (f.width < 1 || f.width > kMaxFieldWidth || f.decimals >= f.width) return std::nullopt;
  if (f.kind != Kind::fixed && f.decimals < 1) return std::nullopt;
  return f;
}

std::string format_real(const EditDescriptor& f, double x) {
  if (!std::isfinite(x)) return special(x, f.width);
  if (f.kind == Kind::exponent) return exponential(f, x);
  if (f.kind == Kind::general) return general(f, x);
  return fixed(x, f.width, f.decimals);
}

std::string format_integer(const EditDescriptor& f, int64_t x) { return text::fixed_int(x, f.width); }

EditDescriptor default_real_format(double largest, double smallest_nonzero) {
  if (largest < 1e5 && !(smallest_nonzero < 1e-3)) {
    char buf[32];
    const int width = std::snprintf(buf, sizeof buf, "%.4f", -largest);
    return {Kind::fixed, std::max(width, 7), 4, 0, 'E'};
  }
  return {Kind::exponent, 11, 4, 1, 'E'};
}

EditDescriptor default_integer_format(int64_t largest, int64_t smallest) {
  const size_t w = std::max(text::int_text(largest).size(), text::int_text(smallest).size());
  return {Kind::integer, static_cast<int>(w), 0, 0, 'E'};
}

}  // namespace vek::printers
