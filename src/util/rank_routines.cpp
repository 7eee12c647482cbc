// Bodies of the M01 rank routines (the declared checks of m01.decl have passed).
//
// M01DAF, M01DBF and M01DCF rank a vector of reals, integers or strings: IRANK(I) is the position, counted
// from M1, that element I takes when the segment M1:M2 is put in order. M01DEF and M01DFF rank the rows M1:M2
// of a real or integer matrix by their entries in columns N1:N2, compared column by column (IRANK(M1:M2),
// counted from M1); M01DJF and M01DKF rank the columns N1:N2 by their entries in rows M1:M2 (IRANK(N1:N2),
// counted from N1).
//
// Method: the item numbers are sorted by the chapter's quicksort under the order of the items and then of the
// numbers, so items that compare equal are ranked in the order they stand (a stable ranking) in both
// directions. Reals are ordered as M01CAF orders them: -0 before +0, NaNs after every number. Strings compare
// their substrings L1:L2 byte by byte in ASCII order.
#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

namespace {

enum class Items { rows, columns };

template <class T>
void rank_matrix(Items items, const T* rm, int64_t ldm, int64_t m1, int64_t m2, int64_t n1, int64_t n2,
                 vek::util::Order order, int64_t* irank) {
  const T* corner = rm + (m1 - 1) + (n1 - 1) * ldm;
  const int64_t rows = m2 - m1 + 1, columns = n2 - n1 + 1;
  if (items == Items::rows)
    vek::util::rank(vek::util::KeyTable<T>{corner, 1, ldm, columns}, rows, order, vek::util::segment(irank, m1, m2),
                    m1);
  else
    vek::util::rank(vek::util::KeyTable<T>{corner, ldm, 1, rows}, columns, order, vek::util::segment(irank, n1, n2),
                    n1);
}

}  // namespace

namespace vek::routines {

void m01daf::run(frame::ErrorBuffer&, const double* rv, const int64_t* m1, const int64_t* m2, const char* order,
                 int64_t* irank, int64_t order_len) {
  util::rank(util::segment(rv, *m1, *m2), util::order_of(order, order_len), util::segment(irank, *m1, *m2), *m1);
}

void m01dbf::run(frame::ErrorBuffer&, const int64_t* iv, const int64_t* m1, const int64_t* m2, const char* order,
                 int64_t* irank, int64_t order_len) {
  util::rank(util::segment(iv, *m1, *m2), util::order_of(order, order_len), util::segment(irank, *m1, *m2), *m1);
}

void m01dcf::run(frame::ErrorBuffer&, const char* ch, const int64_t* m1, const int64_t* m2, const int64_t* l1,
                 const int64_t* l2, const char* order, int64_t* irank, int64_t ch_len, int64_t order_len) {
  const auto* first = reinterpret_cast<const unsigned char*>(ch + (*m1 - 1) * ch_len) + (*l1 - 1);
  util::rank(util::KeyTable<unsigned char>{first, ch_len, 1, *l2 - *l1 + 1}, *m2 - *m1 + 1,
             util::order_of(order, order_len), util::segment(irank, *m1, *m2), *m1);
}

void m01def::run(frame::ErrorBuffer&, const double* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2,
                 const int64_t* n1, const int64_t* n2, const char* order, int64_t* irank, int64_t order_len) {
  rank_matrix(Items::rows, rm, *ldm, *m1, *m2, *n1, *n2, util::order_of(order, order_len), irank);
}

void m01dff::run(frame::ErrorBuffer&, const int64_t* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2,
                 const int64_t* n1, const int64_t* n2, const char* order, int64_t* irank, int64_t order_len) {
  rank_matrix(Items::rows, rm, *ldm, *m1, *m2, *n1, *n2, util::order_of(order, order_len), irank);
}

void m01djf::run(frame::ErrorBuffer&, const double* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2,
                 const int64_t* n1, const int64_t* n2, const char* order, int64_t* irank, int64_t order_len) {
  rank_matrix(Items::columns, rm, *ldm, *m1, *m2, *n1, *n2, util::order_of(order, order_len), irank);
}

void m01dkf::run(frame::ErrorBuffer&, const int64_t* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2,
                 const int64_t* n1, const int64_t* n2, const char* order, int64_t* irank, int64_t order_len) {
  rank_matrix(Items::columns, rm, *ldm, *m1, *m2, *n1, *n2, util::order_of(order, order_len), irank);
}

}  // namespace vek::routines
