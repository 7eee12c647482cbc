// Bodies of the M01 sort routines (the declared checks of m01.decl have passed).
//
// M01CAF sorts RV(M1:M2) in place. When the vector is long enough to share among threads (at least 32768
// elements per thread) a workspace of the segment's length is allocated, each thread sorts a piece with the
// serial quicksort and the pieces are merged pairwise in rounds; when the workspace cannot be had, or one
// thread is all there is, the serial quicksort sorts the whole segment: failing allocation is not an error.
// Descending order reverses the ascending result. NaNs end up last in ascending order (first in descending)
// and -0 before +0, so the result is the same for every thread count.
//
// M01CBF sorts IV(M1:M2) the same way.
//
// M01CCF sorts the strings CH(M1:M2) by their substrings CH(I)(L1:L2), compared byte by byte in ASCII order.
// The strings are ranked (a quicksort of their numbers, ties broken by number, so the sort is stable in both
// orders) and then moved along the cycles of the ranking; equal keys keep their order.
#include <vector>

#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort.h"
#include "util/sort_args.h"

namespace vek::routines {

void m01caf::run(frame::ErrorBuffer&, double* rv, const int64_t* m1, const int64_t* m2, const char* order,
                 int64_t order_len) {
  util::sort(util::segment(rv, *m1, *m2), util::order_of(order, order_len));
}

void m01cbf::run(frame::ErrorBuffer&, int64_t* iv, const int64_t* m1, const int64_t* m2, const char* order,
                 int64_t order_len) {
  util::sort(util::segment(iv, *m1, *m2), util::order_of(order, order_len));
}

void m01ccf::run(frame::ErrorBuffer&, char* ch, const int64_t* m1, const int64_t* m2, const int64_t* l1,
                 const int64_t* l2, const char* order, int64_t ch_len, int64_t order_len) {
  const int64_t n = *m2 - *m1 + 1;
  char* first = ch + (*m1 - 1) * ch_len;
  std::vector<int64_t> positions(static_cast<size_t>(n));
  const util::KeyTable<unsigned char> keys{reinterpret_cast<const unsigned char*>(first) + (*l1 - 1), ch_len, 1,
                                           *l2 - *l1 + 1};
  util::rank(keys, n, util::order_of(order, order_len), positions, 0);
  util::rearrange_records(first, ch_len, positions, 0);
}

}  // namespace vek::routines
