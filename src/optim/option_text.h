// The text of an option line: its fixed length, its tokens and the numbers in them.
//
// An option line is at most 72 characters (longer input is cut). Tokens are separated by any number and
// mixture of blanks, tabs and the characters ":", "," and "=", so "Step Limit = 2.0", "STEP LIMIT 2" and
// "step,limit:2" are the same line. A line holds at most 10 tokens of at most 40 characters each; anything
// beyond is dropped.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vek::optim {

inline constexpr size_t kLineLength = 72;
inline constexpr size_t kTokenWidth = 40;
inline constexpr size_t kMaxTokens = 10;

// The line as the parser sees it: the first 72 characters.
constexpr std::string_view option_line(std::string_view text) { return text.substr(0, std::min(text.size(), kLineLength)); }

// The line without its comment: everything from the first "*" on.
constexpr std::string_view without_comment(std::string_view line) { return line.substr(0, line.find('*')); }

constexpr bool is_delimiter(char c) { return c == ' ' || c == '\t' || c == ':' || c == ',' || c == '='; }

// The bounds [first, last) of the first token of text[from, to), or first == last == to when there is none.
struct TokenBounds {
  size_t first;
  size_t last;
};
TokenBounds find_token(std::string_view text, size_t from, size_t to);

// Splits `line` into the fields of `tokens` (at most tokens.size() of them, each cut to 40 characters,
// upper-cased when `upper`) and returns how many were found; the remaining fields are cleared.
size_t tokenize(std::string_view line, std::span<std::string> tokens, bool upper);

// A token is numeric when, up to its first blank, it holds only digits, "D", "E", "+", "-" and "." (in
// either case), with at least one digit, at most one ".", at most two "+", at most two "-" and at most one
// exponent letter.
bool is_numeric(std::string_view token);

// The value of a numeric token, read as a Fortran real: [sign] digits [. digits] followed by an optional
// exponent written with E or D, or as a bare signed integer ("1-2" is 0.01). A token that is numeric by the
// test above but not a number in this form ("--1", "1+-") is read up to the end of its longest leading
// number, and as 0.0 when it has none. Magnitudes beyond the double range read as infinities.
double read_number(std::string_view token);

// A value as an integer parameter takes it: truncated toward zero, saturated to the 64-bit range.
int64_t truncate_to_int(double value);

}  // namespace vek::optim
