// The serial in-place sort and the stable merge every sort and rank of the chapter is built from, generic in
// the element type and the comparison.
//
// Quicksort after Singleton's ACM algorithm 347: median-of-three pivots, ranges of at most 15 elements left
// for one straight insertion pass over the whole range at the end, the larger side of each partition stacked
// while the smaller is split. A side more than five times the other (plus 25) is split next with a random
// pivot drawn from a Wichmann-Hill generator restarted on every call, so the result is deterministic and
// sorted or organ-pipe input cannot drive the sort quadratic. Being deterministic, the pivots can still be
// defeated by input built against them (McIlroy's adversary); a range split more than 3 log2(n) times is
// therefore finished by heapsort, as in Musser's introsort, which keeps the worst case at O(n log n) and does
// not change the sorted result.
//
// `less` must be a strict weak order for the result to be sorted. Whatever it does, the scans stay inside
// the range: each scan stops at an element for which the comparison fails, the pivot's own slot is such an
// element for both scans at the start, and every swap leaves one behind for the next scan. So NaNs, which
// fail every comparison, only stop the scans sooner.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

namespace vek::util {

enum class Order { ascending, descending };

namespace detail {

// Ranges of this many elements or fewer are left to the final insertion pass.
inline constexpr int64_t kShortRange = 15;
// Room for the stacked larger sides: the smaller side is always split first, so the stack holds at most
// log2(n / 16) entries, and 40 covers every vector an address space can hold.
inline constexpr int kStackDepth = 40;

// Wichmann and Hill's three-part multiplicative generator (Applied Statistics AS 183). The products fit
// easily in 64 bits, so the moduli are taken directly; the values are those of the split-modulus form.
class PivotGenerator {
 public:
  double next() {
    s1_ = 171 * s1_ % 30269;
    s2_ = 172 * s2_ % 30307;
    s3_ = 170 * s3_ % 30323;
    const double u = static_cast<double>(s1_) / 30269.0 + static_cast<double>(s2_) / 30307.0 +
                     static_cast<double>(s3_) / 30323.0;
    return u - static_cast<double>(static_cast<int64_t>(u));
  }

 private:
  int64_t s1_ = 15223, s2_ = 17795, s3_ = 28707;
};

template <class T, class Less>
void insertion_pass(T* a, int64_t lo, int64_t hi, Less& less) {
  for (int64_t k = lo + 1; k <= hi; ++k) {
    if (!less(a[k], a[k - 1])) continue;
    T x = std::move(a[k]);
    int64_t j = k;
    do {
      a[j] = std::move(a[j - 1]);
      --j;
    } while (j > lo && less(x, a[j - 1]));
    a[j] = std::move(x);
  }
}

}  // namespace detail

// Sorts a[lo..hi] (inclusive) in place, ascending under `less`.
template <class T, class Less>
void quicksort(T* a, int64_t lo, int64_t hi, Less less) {
  using std::swap;
  if (hi - lo >= detail::kShortRange) {
    struct Range {
      int64_t lo, hi;
      bool random;
      int splits_left;
    };
    Range stack[detail::kStackDepth];
    int depth = 0;
    detail::PivotGenerator generator;
    Range r{lo, hi, false, 3 * static_cast<int>(std::bit_width(static_cast<uint64_t>(hi - lo)))};
    for (;;) {
      const int64_t l = r.lo, h = r.hi;
      if (r.splits_left == 0) {
        std::make_heap(a + l, a + h + 1, less);
        std::sort_heap(a + l, a + h + 1, less);
        if (depth == 0) break;
        r = stack[--depth];
        continue;
      }
      if (r.random) {
        const int64_t p = l + static_cast<int64_t>(generator.next() * static_cast<double>(h - l));
        swap(a[p], a[l]);
        swap(a[l + h - p], a[h]);
      }
      if (less(a[h], a[l])) swap(a[l], a[h]);
      const int64_t mid = l + (h - l) / 2;
      if (less(a[mid], a[l])) swap(a[l], a[mid]);
      else if (less(a[h], a[mid])) swap(a[mid], a[h]);
      const T pivot = a[mid];

      int64_t i = l, j = h;
      for (;;) {
        while (less(a[i], pivot)) ++i;
        while (less(pivot, a[j])) --j;
        if (i >= j) break;
        swap(a[i], a[j]);
        ++i;
        --j;
      }

      // Sides [l, i-1] and [j+1, h]; a slot between them (i == j) holds the pivot's value in place.
      const int64_t left = i - l, right = h - j;
      const bool left_larger = left >= right;
      const int64_t larger = left_larger ? left : right, smaller = left_larger ? right : left;
      const int splits = r.splits_left - 1;
      const bool unbalanced = larger > 5 * smaller + 25;
      const Range big = left_larger ? Range{l, i - 1, unbalanced, splits} : Range{j + 1, h, unbalanced, splits};
      const Range small = left_larger ? Range{j + 1, h, false, splits} : Range{l, i - 1, false, splits};
      if (larger > detail::kShortRange) {
        if (smaller > detail::kShortRange) {
          stack[depth++] = big;
          r = small;
        } else {
          r = big;
        }
        continue;
      }
      if (depth == 0) break;
      r = stack[--depth];
    }
  }
  detail::insertion_pass(a, lo, hi, less);
}

// Writes elements [first, last) of the merge of the sorted runs x[0..nx) and y[0..ny) to out[0..last-first).
// The merge takes x's element while it is not greater than y's, so equal keys keep their order, and a piece
// of it starts where that merge would be: x[i], y[j] with i + j = first, x[i-1] not greater than y[j] and
// y[j-1] less than x[i] (Siebert and Traeff's co-ranking, 2013). Threads can so write disjoint pieces of one
// merge.
template <class T, class Less>
void merge_piece(const T* x, int64_t nx, const T* y, int64_t ny, int64_t first, int64_t last, T* out, Less less) {
  int64_t lo = std::max<int64_t>(0, first - ny), hi = std::min(first, nx);
  while (lo < hi) {  // the least i in [lo, hi] whose x[i] would come after y[first - i - 1]
    const int64_t i = lo + (hi - lo) / 2;
    if (less(y[first - i - 1], x[i])) hi = i;
    else lo = i + 1;
  }
  int64_t l = lo, r = first - lo, k = 0;
  const int64_t count = last - first;
  // Select rather than branch: on random data the branch would be mispredicted half the time.
  while (k < count && l < nx && r < ny) {
    const T u = x[l], w = y[r];
    const bool right = less(w, u);
    out[k++] = right ? w : u;
    r += right;
    l += !right;
  }
  for (; k < count && l < nx; ++k) out[k] = x[l++];
  for (; k < count && r < ny; ++k) out[k] = y[r++];
}

}  // namespace vek::util
