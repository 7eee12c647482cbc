#include "optim/option_listing.h"

#include "frame/printers_format.h"
#include "frame/text.h"

namespace vek::optim {
namespace {

std::string pair(std::string_view label, std::string_view value) {
  std::string out(label.substr(0, kLabelWidth));
  out.resize(kLabelWidth, ' ');
  if (value.size() < static_cast<size_t>(kValueWidth)) out.append(static_cast<size_t>(kValueWidth) - value.size(), ' ');
  out += value;
  return out;
}

}  // namespace

std::string int_pair(std::string_view label, int64_t value) { return pair(label, text::fixed_int(value, kValueWidth)); }

std::string real_pair(std::string_view label, double value) {
  static constexpr printers::EditDescriptor kFormat{printers::EditDescriptor::Kind::exponent, kValueWidth, 2, 1, 'E'};
  return pair(label, printers::format_real(kFormat, value));
}

std::string word_pair(std::string_view label, std::initializer_list<std::string_view> words, int64_t value) {
  if (value >= 0 && static_cast<size_t>(value) < words.size()) return pair(label, words.begin()[value]);
  return int_pair(label, value);
}

std::string listing_row(std::string_view left, std::string_view right) {
  std::string out = " " + std::string(left);
  if (!right.empty()) out += std::string(6, ' ') + std::string(right);
  return out;
}

}  // namespace vek::optim
