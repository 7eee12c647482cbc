// Workers of the M01 sort routines.
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
#include <new>

#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort.h"
#include "util/sort_args.h"

namespace {

template <class T>
void sort_worker(const char* worker, T* v, const int64_t* m1, const int64_t* m2, const char* order,
                 char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  const auto direction = vek::util::order_argument(err, order, order_len);
  if (!direction) return;
  vek::util::sort(vek::util::segment(v, *m1, *m2), *direction);
}

}  // namespace

extern "C" {

void m01cafn_(double* rv, const int64_t* m1, const int64_t* m2, const char* order, char* errbuf, int64_t* ierr,
              int64_t order_len, int64_t errbuf_len) {
  sort_worker("M01CAFN", rv, m1, m2, order, errbuf, ierr, order_len, errbuf_len);
}

void m01cbfn_(int64_t* iv, const int64_t* m1, const int64_t* m2, const char* order, char* errbuf,
              int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  sort_worker("M01CBFN", iv, m1, m2, order, errbuf, ierr, order_len, errbuf_len);
}

void m01ccfn_(char* ch, const int64_t* m1, const int64_t* m2, const int64_t* l1, const int64_t* l2,
              const char* order, char* errbuf, int64_t* ierr, int64_t ch_len, int64_t order_len,
              int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("M01CCFN")) return;
  const auto direction = vek::util::string_key_arguments(err, *m1, *m2, *l1, *l2, ch_len, order, order_len);
  if (!direction) return;
  const int64_t n = *m2 - *m1 + 1;
  char* first = ch + (*m1 - 1) * ch_len;
  try {
    std::vector<int64_t> positions(static_cast<size_t>(n));
    const vek::util::KeyTable<unsigned char> keys{reinterpret_cast<const unsigned char*>(first) + (*l1 - 1), ch_len,
                                                  1, *l2 - *l1 + 1};
    vek::util::rank(keys, n, *direction, positions, 0);
    vek::util::rearrange_records(first, ch_len, positions, 0);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

}  // extern "C"
