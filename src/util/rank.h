// Ranking, permutations and rearranging: the kernels behind the M01 rank, rearrange and permutation routines,
// callable by any chapter (quadrature ranks its subintervals with them).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "util/sort_kernel.h"

namespace vek::util {

// The order the chapter gives reals: numbers as usual, -0 before +0, NaNs after every number.
inline bool real_less(double x, double y) {
  if (x < y) return true;
  if (x == y) return std::signbit(x) && !std::signbit(y);
  return std::isnan(y) && !std::isnan(x);
}

// The order less(i, j) on item numbers with the numbers breaking ties: a total order, which sorts stably.
template <class LessItem>
auto with_ties_by_number(LessItem& less) {
  return [&less](int64_t i, int64_t j) { return less(i, j) || (i < j && !less(j, i)); };
}

// Up to this many items the kernels below keep their workspace on the stack: a short list (the subintervals of
// an integration, say) is ranked and rearranged without a call of the allocator.
inline constexpr int64_t kItemsOnStack = 64;

// Workspace of n values of T, on the stack (uninitialised) for n <= kItemsOnStack.
template <class T>
class SmallBuffer {
 public:
  explicit SmallBuffer(int64_t n) {
    if (n > kItemsOnStack) heap_ = std::make_unique<T[]>(static_cast<size_t>(n));
  }
  T* data() { return heap_ ? heap_.get() : stack_; }

 private:
  T stack_[kItemsOnStack];
  std::unique_ptr<T[]> heap_;
};

// The positions 0..n-1 the items take when sorted by less(i, j), a strict weak order on item numbers; equal
// items keep the order of their numbers. positions[i] = base + position of item i.
template <class LessItem>
void rank_items(int64_t n, LessItem less, std::span<int64_t> positions, int64_t base) {
  if (n <= 0) return;
  SmallBuffer<int64_t> buffer(n);
  int64_t* items = buffer.data();
  for (int64_t i = 0; i < n; ++i) items[i] = i;
  quicksort(items, 0, n - 1, with_ties_by_number(less));
  for (int64_t p = 0; p < n; ++p) positions[static_cast<size_t>(items[p])] = base + p;
}

// Items whose keys stand in an array at fixed strides: key k of item i is first[i * item_stride +
// k * key_stride], k < keys. One table describes a vector (1, 1, 1), the rows of a column-major matrix (1, ldm,
// columns), its columns (ldm, 1, rows) and fixed-length strings (length, 1, key length); items compare key by
// key.
template <class T>
struct KeyTable {
  const T* first;
  int64_t item_stride = 1;
  int64_t key_stride = 1;
  int64_t keys = 1;
};

// Ranks of n items of a key table in `order`, counted from base; equal items keep their order. Reals compare
// by real_less, characters as unsigned bytes (ASCII order).
void rank(const KeyTable<double>& table, int64_t n, Order order, std::span<int64_t> positions, int64_t base);
void rank(const KeyTable<int64_t>& table, int64_t n, Order order, std::span<int64_t> positions, int64_t base);
void rank(const KeyTable<unsigned char>& table, int64_t n, Order order, std::span<int64_t> positions,
          int64_t base);

// Ranks of the values of a vector.
inline void rank(std::span<const double> v, Order order, std::span<int64_t> positions, int64_t base) {
  rank(KeyTable<double>{v.data()}, static_cast<int64_t>(v.size()), order, positions, base);
}
inline void rank(std::span<const int64_t> v, Order order, std::span<int64_t> positions, int64_t base) {
  rank(KeyTable<int64_t>{v.data()}, static_cast<int64_t>(v.size()), order, positions, base);
}

// Why a vector is not a permutation of base..base+n-1: the first entry (index from 0) that is out of range or
// repeats an earlier one.
struct PermutationFault {
  enum class Kind { none, out_of_range, repeated } kind = Kind::none;
  int64_t index = 0;
  int64_t value = 0;
};

PermutationFault check_permutation(std::span<const int64_t> perm, int64_t base);

// Moves item i to position perm[i] - base for every i, by following the cycles of a valid permutation and
// calling swap_items(i, j) on item numbers.
template <class SwapItems>
void apply_permutation(std::span<const int64_t> perm, int64_t base, SwapItems swap_items) {
  const int64_t n = static_cast<int64_t>(perm.size());
  SmallBuffer<bool> buffer(n);
  bool* placed = buffer.data();
  std::fill_n(placed, n, false);
  for (int64_t s = 0; s < n; ++s) {
    if (placed[s]) continue;
    placed[s] = true;
    for (int64_t k = perm[static_cast<size_t>(s)] - base; k != s; k = perm[static_cast<size_t>(k)] - base) {
      swap_items(s, k);
      placed[k] = true;
    }
  }
}

// v[perm[i] - base] = old v[i] for a valid permutation perm.
template <class T>
void rearrange(std::span<T> v, std::span<const int64_t> perm, int64_t base) {
  apply_permutation(perm, base, [v](int64_t i, int64_t j) { std::swap(v[static_cast<size_t>(i)], v[static_cast<size_t>(j)]); });
}

// The same for fixed-length records of `length` bytes starting at first.
inline void rearrange_records(char* first, int64_t length, std::span<const int64_t> perm, int64_t base) {
  apply_permutation(perm, base, [first, length](int64_t i, int64_t j) {
    std::swap_ranges(first + i * length, first + (i + 1) * length, first + j * length);
  });
}

// Replaces a valid permutation by its inverse.
void invert_permutation(std::span<int64_t> perm, int64_t base);

}  // namespace vek::util
