// Input vectors that exercise sorts: random, sorted, reversed, all equal, organ pipe, few distinct values.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace vek::test {

enum class Pattern { random, sorted, reversed, equal, organ_pipe, few_distinct };

inline constexpr Pattern kPatterns[] = {Pattern::random, Pattern::sorted,     Pattern::reversed,
                                        Pattern::equal,  Pattern::organ_pipe, Pattern::few_distinct};

inline std::string pattern_name(Pattern p) {
  switch (p) {
    case Pattern::random: return "random";
    case Pattern::sorted: return "sorted";
    case Pattern::reversed: return "reversed";
    case Pattern::equal: return "equal";
    case Pattern::organ_pipe: return "organ_pipe";
    case Pattern::few_distinct: return "few_distinct";
  }
  return "";
}

template <class T>
std::vector<T> pattern(Pattern p, int64_t n, uint64_t seed = 1) {
  std::mt19937_64 gen(seed);
  std::vector<T> v(static_cast<size_t>(n));
  for (int64_t i = 0; i < n; ++i) {
    T x{};
    switch (p) {
      case Pattern::random:
        if constexpr (std::is_floating_point_v<T>) x = std::normal_distribution<T>()(gen);
        else x = static_cast<T>(gen());
        break;
      case Pattern::sorted: x = static_cast<T>(i); break;
      case Pattern::reversed: x = static_cast<T>(n - i); break;
      case Pattern::equal: x = static_cast<T>(7); break;
      case Pattern::organ_pipe: x = static_cast<T>(std::min(i, n - 1 - i)); break;
      case Pattern::few_distinct: x = static_cast<T>(gen() % 4); break;
    }
    v[static_cast<size_t>(i)] = x;
  }
  return v;
}

}  // namespace vek::test
