// Ranking of key tables, permutation checks and inversion.
#include "util/rank.h"

#include <algorithm>

namespace vek::util {
namespace {

inline bool key_less(double x, double y) { return real_less(x, y); }
inline bool key_less(int64_t x, int64_t y) { return x < y; }
inline bool key_less(unsigned char x, unsigned char y) { return x < y; }

template <class T>
void rank_table(const KeyTable<T>& t, int64_t n, Order order, std::span<int64_t> positions, int64_t base) {
  const auto less = [t](int64_t i, int64_t j) {
    const T* x = t.first + i * t.item_stride;
    const T* y = t.first + j * t.item_stride;
    for (int64_t k = 0; k < t.keys; ++k, x += t.key_stride, y += t.key_stride) {
      if (key_less(*x, *y)) return true;
      if (key_less(*y, *x)) return false;
    }
    return false;
  };
  if (order == Order::ascending) rank_items(n, less, positions, base);
  else rank_items(n, [&less](int64_t i, int64_t j) { return less(j, i); }, positions, base);
}

}  // namespace

void rank(const KeyTable<double>& table, int64_t n, Order order, std::span<int64_t> positions, int64_t base) {
  rank_table(table, n, order, positions, base);
}
void rank(const KeyTable<int64_t>& table, int64_t n, Order order, std::span<int64_t> positions, int64_t base) {
  rank_table(table, n, order, positions, base);
}
void rank(const KeyTable<unsigned char>& table, int64_t n, Order order, std::span<int64_t> positions,
          int64_t base) {
  rank_table(table, n, order, positions, base);
}

PermutationFault check_permutation(std::span<const int64_t> perm, int64_t base) {
  const int64_t n = static_cast<int64_t>(perm.size());
  std::vector<bool> seen(static_cast<size_t>(n));
  for (int64_t i = 0; i < n; ++i) {
    const int64_t value = perm[static_cast<size_t>(i)];
    // Written so that no difference can overflow, whatever the caller's values (base >= 0).
    if (value < base || value - base >= n) return {PermutationFault::Kind::out_of_range, i, value};
    if (seen[static_cast<size_t>(value - base)]) return {PermutationFault::Kind::repeated, i, value};
    seen[static_cast<size_t>(value - base)] = true;
  }
  return {};
}

void invert_permutation(std::span<int64_t> perm, int64_t base) {
  std::vector<int64_t> inverse(perm.size());
  for (size_t i = 0; i < perm.size(); ++i)
    inverse[static_cast<size_t>(perm[i] - base)] = base + static_cast<int64_t>(i);
  std::copy(inverse.begin(), inverse.end(), perm.begin());
}

}  // namespace vek::util
