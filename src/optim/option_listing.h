// The parameter listing a solver prints at start: two label/value pairs to a record, each label in 23
// columns followed by its value in 10 (integers as I10, reals as 1PE10.2, switches as words), the pairs six
// columns apart: 73 characters at most.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vek::optim {

inline constexpr size_t kLabelWidth = 23;
inline constexpr int kValueWidth = 10;

std::string int_pair(std::string_view label, int64_t value);
std::string real_pair(std::string_view label, double value);
// words[value], or the number when the value has no word.
std::string word_pair(std::string_view label, std::initializer_list<std::string_view> words, int64_t value);

// One record of one or two pairs.
std::string listing_row(std::string_view left, std::string_view right = {});

}  // namespace vek::optim
