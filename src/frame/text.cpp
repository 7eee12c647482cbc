#include "frame/text.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace vek::text {

std::string_view trim_right(std::string_view s) {
  size_t n = s.size();
  while (n > 0 && (s[n - 1] == ' ' || s[n - 1] == '\0')) --n;
  return s.substr(0, n);
}

std::string_view trim(std::string_view s) {
  s = trim_right(s);
  size_t i = 0;
  while (i < s.size() && s[i] == ' ') ++i;
  return s.substr(i);
}

void assign(char* dst, int64_t len, std::string_view src) {
  if (len <= 0 || dst == nullptr) return;
  const size_t n = std::min(static_cast<size_t>(len), src.size());
  if (n > 0) std::memmove(dst, src.data(), n);  // an empty view may hold a null pointer
  std::memset(dst + n, ' ', static_cast<size_t>(len) - n);
}

std::string int_text(int64_t value) {
  char buf[24];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, end);
}

std::string fixed_int(int64_t value, int width) {
  std::string digits = int_text(value);
  if (static_cast<int>(digits.size()) > width) return std::string(static_cast<size_t>(width), '*');
  return std::string(static_cast<size_t>(width) - digits.size(), ' ') + digits;
}

std::string real_text(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
  char buf[32];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, end);
}

char option_letter(const char* p, int64_t len) {
  if (len <= 0 || p == nullptr) return 0;
  const char c = p[0];
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace vek::text
