// Workers of the M01 rank and rearrange routines.
//
// M01DAF ranks RV(M1:M2): IRANK(I) is the position, counted from M1, that RV(I) takes in the sorted segment.
// The ranks come from sorting the element numbers with the chapter's quicksort under the order of the values
// and then of the numbers, so equal values are ranked in the order they stand (a stable ranking) in both
// directions. Reals are ordered as M01CAF orders them: -0 before +0, NaNs after every number.
//
// M01EAF moves RV(I) to position IRANK(I) by following the cycles of the permutation, in place. IRANK is
// checked first, I running from M1 to M2: the first value outside M1..M2 fails with IFAIL 2, the first value
// seen before fails with IFAIL 3; RV is then left unchanged.
#include <new>

#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

extern "C" {

void m01dafn_(const double* rv, const int64_t* m1, const int64_t* m2, const char* order, int64_t* irank,
              char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("M01DAFN")) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  const auto direction = vek::util::order_argument(err, order, order_len);
  if (!direction) return;
  try {
    vek::util::rank(vek::util::segment(rv, *m1, *m2), *direction, vek::util::segment(irank, *m1, *m2), *m1);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

void m01eafn_(double* rv, const int64_t* m1, const int64_t* m2, const int64_t* irank, char* errbuf,
              int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("M01EAFN")) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  try {
    const auto perm = vek::util::segment(irank, *m1, *m2);
    const auto fault = vek::util::check_permutation(perm, *m1);
    using Kind = vek::util::PermutationFault::Kind;
    if (fault.kind == Kind::out_of_range) return err.fail(2, 99996, *m1 + fault.index, fault.value);
    if (fault.kind == Kind::repeated) return err.fail(3, 99995, fault.value);
    vek::util::rearrange(vek::util::segment(rv, *m1, *m2), perm, *m1);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

}  // extern "C"
