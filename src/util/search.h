// Binary search in a sorted vector: the kernels behind the M01 search routines.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vek::util {

// The count of leading elements of an ascending sequence of n elements that are not greater than the item:
// item_less(i) tells whether the item is less than element i. Any answers give a count in 0..n.
template <class ItemLess>
int64_t count_not_greater(int64_t n, ItemLess item_less) {
  int64_t lo = 0, hi = n;  // the count lies in lo..hi
  while (lo < hi) {
    const int64_t mid = lo + (hi - lo) / 2;
    if (item_less(mid)) hi = mid;
    else lo = mid + 1;
  }
  return lo;
}

// Reals in the chapter's order (real_less), integers, and fixed-length strings compared as if the shorter
// were padded with blanks, byte by byte in ASCII order.
int64_t count_not_greater(std::span<const double> v, double item);
int64_t count_not_greater(std::span<const int64_t> v, int64_t item);
int64_t count_not_greater(const char* strings, int64_t length, int64_t n, std::string_view item);

// Blank-padded comparison of two texts: negative, zero or positive.
int compare_padded(std::string_view a, std::string_view b);

}  // namespace vek::util
