// Ranking of reals and integers, permutation checks and inversion.
#include "util/rank.h"

#include <algorithm>

namespace vek::util {
namespace {

template <class T, class Less>
void rank_values(std::span<const T> v, Order order, std::span<int64_t> positions, int64_t base, Less less) {
  const T* x = v.data();
  const int64_t n = static_cast<int64_t>(v.size());
  if (order == Order::ascending)
    rank_items(n, [x, less](int64_t i, int64_t j) { return less(x[i], x[j]); }, positions, base);
  else
    rank_items(n, [x, less](int64_t i, int64_t j) { return less(x[j], x[i]); }, positions, base);
}

}  // namespace

void rank(std::span<const double> v, Order order, std::span<int64_t> positions, int64_t base) {
  rank_values(v, order, positions, base, real_less);
}

void rank(std::span<const int64_t> v, Order order, std::span<int64_t> positions, int64_t base) {
  rank_values(v, order, positions, base, [](int64_t x, int64_t y) { return x < y; });
}

PermutationFault check_permutation(std::span<const int64_t> perm, int64_t base) {
  const int64_t n = static_cast<int64_t>(perm.size());
  std::vector<bool> seen(static_cast<size_t>(n));
  for (int64_t i = 0; i < n; ++i) {
    const int64_t value = perm[static_cast<size_t>(i)];
    // Written so that no difference can overflow, whatever the caller's values.
    if (value < base || value - base >= n) return {PermutationFault::Kind::out_of_range, i, value};
    if (seen[static_cast<size_t>(value - base)]) return {PermutationFault::Kind::repeated, i, value};
    seen[static_cast<size_t>(value - base)] = true;
  }
  return {};
}

void invert_permutation(std::span<int64_t> perm, int64_t base) {
  std::vector<int64_t> inverse(perm.size());
  for (size_t i = 0; i < perm.size(); ++i) inverse[static_cast<size_t>(perm[i] - base)] = base + static_cast<int64_t>(i);
  std::copy(inverse.begin(), inverse.end(), perm.begin());
}

}  // namespace vek::util
