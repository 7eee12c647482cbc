// Body of M01DZF: ranking items known only through a user comparison.
//
// COMPAR(I, J, IUSER, RUSER) is called, through the adapter the entry layer passes (a host may pass its own),
// with item numbers M1 <= I, J <= M2 and answers whether item I comes strictly before item J. The ranks are
// those of a stable sort of the item numbers: IRANK(I) is the position, counted from M1, that item I takes;
// items that compare neither way keep the order of their numbers. A comparison that is not a strict weak
// order still gives a permutation of M1..M2 in IRANK (the sort neither runs off its range nor loops), though
// which one is then unspecified. About 2 (M2-M1+1) log2(M2-M1+1) comparisons are made.
#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

void vek::routines::m01dzf::run(frame::ErrorBuffer&, vek_m01dzf_compar_adapter compar_adapter,
                                vek_m01dzf_compar_fn compar, const int64_t* m1, const int64_t* m2, int64_t* irank,
                                int64_t* iuser, double* ruser) {
  const int64_t first = *m1;
  auto before = [&](int64_t i, int64_t j) {
    const int64_t item_i = first + i, item_j = first + j;
    return (compar_adapter(compar, &item_i, &item_j, iuser, ruser) & 1) != 0;
  };
  util::rank_items(*m2 - *m1 + 1, before, util::segment(irank, *m1, *m2), *m1);
}
