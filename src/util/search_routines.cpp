// Workers of the M01 search routines.
//
// M01NAF, M01NBF and M01NCF find by binary search the largest J in M1..M2 whose element is not greater than
// ITEM in an ascending segment, M1 - 1 when ITEM is less than every element: the insertion point after
// equal elements. Reals follow M01CAF's order (NaNs greatest); strings compare as if the shorter were padded
// with blanks, in ASCII order. The segment is trusted to be sorted (checking would cost the linear time the
// search saves); an unsorted one still gives some J in M1-1..M2. On failure the result is 0.
#include <algorithm>

#include "frame/text.h"
#include "layers/m01.h"
#include "util/search.h"
#include "util/sort_args.h"

namespace {

template <class Count>
int64_t search_worker(const char* worker, const int64_t* m1, const int64_t* m2, char* errbuf, int64_t* ierr,
                      int64_t errbuf_len, Count count) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return 0;
  if (!vek::util::valid_range(err, *m1, *m2)) return 0;
  return *m1 - 1 + count(*m2 - *m1 + 1);
}

}  // namespace

extern "C" {

int64_t m01nafn_(const double* rv, const int64_t* m1, const int64_t* m2, const double* item, char* errbuf,
                 int64_t* ierr, int64_t errbuf_len) {
  return search_worker("M01NAFN", m1, m2, errbuf, ierr, errbuf_len, [=](int64_t) {
    return vek::util::count_not_greater(vek::util::segment(rv, *m1, *m2), *item);
  });
}

int64_t m01nbfn_(const int64_t* iv, const int64_t* m1, const int64_t* m2, const int64_t* item, char* errbuf,
                 int64_t* ierr, int64_t errbuf_len) {
  return search_worker("M01NBFN", m1, m2, errbuf, ierr, errbuf_len, [=](int64_t) {
    return vek::util::count_not_greater(vek::util::segment(iv, *m1, *m2), *item);
  });
}

int64_t m01ncfn_(const char* ch, const int64_t* m1, const int64_t* m2, const char* item, char* errbuf,
                 int64_t* ierr, int64_t ch_len, int64_t item_len, int64_t errbuf_len) {
  return search_worker("M01NCFN", m1, m2, errbuf, ierr, errbuf_len, [=](int64_t n) {
    const int64_t length = std::max<int64_t>(ch_len, 0);
    return vek::util::count_not_greater(ch + (*m1 - 1) * length, length, n, vek::text::view(item, item_len));
  });
}

}  // extern "C"
