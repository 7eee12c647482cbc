// Ranking of key tables, permutation checks and inversion.
//
// Reals and integers are ranked by the vectorised sort where the machine has the vector unit: the first key of
// each item becomes a signed integer of the same order (reals: -0 below +0, every NaN the largest integer;
// descending order: its complement), the pairs (integer, item number) are sorted lexicographically, and runs of
// items with equal first keys are then put in the order of the remaining keys by the scalar quicksort. Item
// numbers break every tie, so the ranks are those of the scalar path, the stable ones.
#include "util/rank.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <new>
#include <type_traits>

#include "util/vector_sort.h"

namespace vek::util {
namespace {

inline bool key_less(double x, double y) { return real_less(x, y); }
inline bool key_less(int64_t x, int64_t y) { return x < y; }
inline bool key_less(unsigned char x, unsigned char y) { return x < y; }

// A key as a signed integer of the same order.
inline int64_t ordered_integer(double x) {
  if (std::isnan(x)) return INT64_MAX;
  const auto bits = std::bit_cast<int64_t>(x);
  return bits ^ static_cast<int64_t>(static_cast<uint64_t>(bits >> 63) >> 1);
}
inline int64_t ordered_integer(int64_t x) { return x; }

// The ranks on a vector path, `less` ordering the items in `order` with their numbers breaking ties; false
// when the path is scalar or the workspace cannot be had.
template <class T, class LessItem>
bool rank_on_vector_path(const KeyTable<T>& t, int64_t n, Order order, LessItem less, std::span<int64_t> positions,
                         int64_t base) {
  const SortPath path = sort_path();
  if (path == SortPath::scalar) return false;
  const auto count = static_cast<size_t>(n);
  const std::unique_ptr<int64_t[]> keys(new (std::nothrow) int64_t[count]), items(new (std::nothrow) int64_t[count]);
  if (!keys || !items) return false;
  for (int64_t i = 0; i < n; ++i) {
    const int64_t key = ordered_integer(t.first[i * t.item_stride]);
    keys[static_cast<size_t>(i)] = order == Order::ascending ? key : ~key;
    items[static_cast<size_t>(i)] = i;
  }
  vector_sort_pairs(path, std::span<int64_t>(keys.get(), count), std::span<int64_t>(items.get(), count));
  if (t.keys > 1) {
    for (int64_t start = 0, end; start < n; start = end) {
      end = start + 1;
      while (end < n && keys[static_cast<size_t>(end)] == keys[static_cast<size_t>(start)]) ++end;
      if (end - start > 1) quicksort(items.get(), start, end - 1, less);
    }
  }
  for (int64_t p = 0; p < n; ++p) positions[static_cast<size_t>(items[static_cast<size_t>(p)])] = base + p;
  return true;
}

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
  const auto in_order = [&less, order](int64_t i, int64_t j) {
    return order == Order::ascending ? less(i, j) : less(j, i);
  };
  // A short list is ranked faster by the scalar path, whose workspace is on the stack.
  if constexpr (!std::is_same_v<T, unsigned char>) {
    if (n > kItemsOnStack && rank_on_vector_path(t, n, order, with_ties_by_number(in_order), positions, base)) return;
  }
  rank_items(n, in_order, positions, base);
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
