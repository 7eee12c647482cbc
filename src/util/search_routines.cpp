// Bodies of the M01 search routines (the declared range checks of m01.decl have passed).
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

namespace vek::routines {

int64_t m01naf::run(frame::ErrorBuffer&, const double* rv, const int64_t* m1, const int64_t* m2, const double* item) {
  return *m1 - 1 + util::count_not_greater(util::segment(rv, *m1, *m2), *item);
}

int64_t m01nbf::run(frame::ErrorBuffer&, const int64_t* iv, const int64_t* m1, const int64_t* m2,
                    const int64_t* item) {
  return *m1 - 1 + util::count_not_greater(util::segment(iv, *m1, *m2), *item);
}

int64_t m01ncf::run(frame::ErrorBuffer&, const char* ch, const int64_t* m1, const int64_t* m2, const char* item,
                    int64_t ch_len, int64_t item_len) {
  const int64_t length = std::max<int64_t>(ch_len, 0);
  return *m1 - 1 + util::count_not_greater(ch + (*m1 - 1) * length, length, *m2 - *m1 + 1, text::view(item, item_len));
}

}  // namespace vek::routines
