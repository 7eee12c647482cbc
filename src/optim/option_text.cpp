#include "optim/option_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace vek::optim {
namespace {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The digits of text from `pos` on, advancing pos.
size_t skip_digits(std::string_view text, size_t& pos) {
  const size_t start = pos;
  while (pos < text.size() && is_digit(text[pos])) ++pos;
  return pos - start;
}

// A decimal exponent with saturation (an exponent of a billion is as good as infinity).
int64_t exponent_value(std::string_view digits, bool negative) {
  int64_t e = 0;
  for (char c : digits) e = std::min<int64_t>(e * 10 + (c - '0'), 1'000'000'000);
  return negative ? -e : e;
}

}  // namespace

TokenBounds find_token(std::string_view text, size_t from, size_t to) {
  to = std::min(to, text.size());
  size_t first = std::min(from, to);
  while (first < to && is_delimiter(text[first])) ++first;
  size_t last = first;
  while (last < to && !is_delimiter(text[last])) ++last;
  return {first, last};
}

size_t tokenize(std::string_view line, std::span<std::string> tokens, bool upper_case) {
  size_t count = 0, pos = 0;
  for (std::string& t : tokens) t.clear();
  while (count < tokens.size()) {
    const TokenBounds b = find_token(line, pos, line.size());
    if (b.first == b.last) break;
    std::string& t = tokens[count++];
    t.assign(line.substr(b.first, std::min(b.last - b.first, kTokenWidth)));
    if (upper_case)
      for (char& c : t) c = upper(c);
    pos = b.last;
  }
  return count;
}

bool is_numeric(std::string_view token) {
  token = token.substr(0, token.find(' '));
  int digits = 0, points = 0, plus = 0, minus = 0, exponents = 0;
  for (char c : token) {
    switch (upper(c)) {
      case '.': ++points; break;
      case '+': ++plus; break;
      case '-': ++minus; break;
      case 'D':
      case 'E': ++exponents; break;
      default:
        if (!is_digit(c)) return false;
        ++digits;
    }
  }
  return digits >= 1 && points <= 1 && plus <= 2 && minus <= 2 && exponents <= 1;
}

double read_number(std::string_view token) {
  size_t pos = 0;
  bool negative = false;
  if (pos < token.size() && (token[pos] == '+' || token[pos] == '-')) negative = token[pos++] == '-';
  const size_t mantissa_start = pos;
  size_t digits = skip_digits(token, pos);
  size_t point = std::string_view::npos;
  if (pos < token.size() && token[pos] == '.') {
    point = pos++;
    digits += skip_digits(token, pos);
  }
  if (digits == 0) return 0.0;
  const std::string_view mantissa = token.substr(mantissa_start, pos - mantissa_start);

  // The exponent: a letter with an optional sign, or a sign alone, then at least one digit.
  int64_t exponent = 0;
  size_t e = pos;
  if (e < token.size() && (upper(token[e]) == 'E' || upper(token[e]) == 'D')) ++e;
  bool exponent_negative = false;
  if (e < token.size() && (token[e] == '+' || token[e] == '-')) exponent_negative = token[e++] == '-';
  const size_t exponent_start = e;
  if (e > pos && skip_digits(token, e) > 0)
    exponent = exponent_value(token.substr(exponent_start, e - exponent_start), exponent_negative);

  std::string normal(mantissa);
  normal += 'e';
  normal += std::to_string(exponent);
  double value = 0.0;
  const auto [end, ec] = std::from_chars(normal.data(), normal.data() + normal.size(), value);
  if (ec == std::errc::result_out_of_range) {
    // Overflow or underflow: the position of the leading digit decides which.
    const size_t int_end = point == std::string_view::npos ? mantissa.size() : point - mantissa_start;
    int64_t magnitude = exponent;
    size_t lead = 0;
    while (lead < mantissa.size() && (mantissa[lead] == '0' || mantissa[lead] == '.')) ++lead;
    if (lead == mantissa.size()) magnitude = -1;  // all zeros: the value is 0 whatever the exponent
    else if (lead < int_end) magnitude += static_cast<int64_t>(int_end - lead);
    else magnitude -= static_cast<int64_t>(lead - int_end);
    value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return negative ? -value : value;
}

int64_t truncate_to_int(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 0x1p63) return std::numeric_limits<int64_t>::max();
  if (value < -0x1p63) return std::numeric_limits<int64_t>::min();
  return static_cast<int64_t>(value);
}

}  // namespace vek::optim
