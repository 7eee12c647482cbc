// Workers of the M01 rank routines.
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
#include <new>

#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

namespace {

template <class T>
void rank_vector_worker(const char* worker, const T* v, const int64_t* m1, const int64_t* m2, const char* order,
                        int64_t* irank, char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  const auto direction = vek::util::order_argument(err, order, order_len);
  if (!direction) return;
  try {
    vek::util::rank(vek::util::segment(v, *m1, *m2), *direction, vek::util::segment(irank, *m1, *m2), *m1);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

enum class Items { rows, columns };

template <class T>
void rank_matrix_worker(const char* worker, Items items, const T* rm, const int64_t* ldm, const int64_t* m1,
                        const int64_t* m2, const int64_t* n1, const int64_t* n2, const char* order, int64_t* irank,
                        char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  if (!vek::util::valid_range(err, *n1, *n2, 99996)) return;
  if (*ldm < *m2) return err.fail(1, 99993, *ldm, *m2);
  const auto direction = vek::util::order_argument(err, order, order_len, 2, 99992);
  if (!direction) return;
  const T* corner = rm + (*m1 - 1) + (*n1 - 1) * *ldm;
  const int64_t rows = *m2 - *m1 + 1, columns = *n2 - *n1 + 1;
  try {
    if (items == Items::rows)
      vek::util::rank(vek::util::KeyTable<T>{corner, 1, *ldm, columns}, rows, *direction,
                      vek::util::segment(irank, *m1, *m2), *m1);
    else
      vek::util::rank(vek::util::KeyTable<T>{corner, *ldm, 1, rows}, columns, *direction,
                      vek::util::segment(irank, *n1, *n2), *n1);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

}  // namespace

extern "C" {

void m01dafn_(const double* rv, const int64_t* m1, const int64_t* m2, const char* order, int64_t* irank,
              char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  rank_vector_worker("M01DAFN", rv, m1, m2, order, irank, errbuf, ierr, order_len, errbuf_len);
}

void m01dbfn_(const int64_t* iv, const int64_t* m1, const int64_t* m2, const char* order, int64_t* irank,
              char* errbuf, int64_t* ierr, int64_t order_len, int64_t errbuf_len) {
  rank_vector_worker("M01DBFN", iv, m1, m2, order, irank, errbuf, ierr, order_len, errbuf_len);
}

void m01dcfn_(const char* ch, const int64_t* m1, const int64_t* m2, const int64_t* l1, const int64_t* l2,
              const char* order, int64_t* irank, char* errbuf, int64_t* ierr, int64_t ch_len, int64_t order_len,
              int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("M01DCFN")) return;
  const auto direction = vek::util::string_key_arguments(err, *m1, *m2, *l1, *l2, ch_len, order, order_len);
  if (!direction) return;
  const auto* first = reinterpret_cast<const unsigned char*>(ch + (*m1 - 1) * ch_len) + (*l1 - 1);
  try {
    vek::util::rank(vek::util::KeyTable<unsigned char>{first, ch_len, 1, *l2 - *l1 + 1}, *m2 - *m1 + 1, *direction,
                    vek::util::segment(irank, *m1, *m2), *m1);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

void m01defn_(const double* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2, const int64_t* n1,
              const int64_t* n2, const char* order, int64_t* irank, char* errbuf, int64_t* ierr, int64_t order_len,
              int64_t errbuf_len) {
  rank_matrix_worker("M01DEFN", Items::rows, rm, ldm, m1, m2, n1, n2, order, irank, errbuf, ierr, order_len,
                     errbuf_len);
}

void m01dffn_(const int64_t* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2, const int64_t* n1,
              const int64_t* n2, const char* order, int64_t* irank, char* errbuf, int64_t* ierr, int64_t order_len,
              int64_t errbuf_len) {
  rank_matrix_worker("M01DFFN", Items::rows, rm, ldm, m1, m2, n1, n2, order, irank, errbuf, ierr, order_len,
                     errbuf_len);
}

void m01djfn_(const double* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2, const int64_t* n1,
              const int64_t* n2, const char* order, int64_t* irank, char* errbuf, int64_t* ierr, int64_t order_len,
              int64_t errbuf_len) {
  rank_matrix_worker("M01DJFN", Items::columns, rm, ldm, m1, m2, n1, n2, order, irank, errbuf, ierr, order_len,
                     errbuf_len);
}

void m01dkfn_(const int64_t* rm, const int64_t* ldm, const int64_t* m1, const int64_t* m2, const int64_t* n1,
              const int64_t* n2, const char* order, int64_t* irank, char* errbuf, int64_t* ierr, int64_t order_len,
              int64_t errbuf_len) {
  rank_matrix_worker("M01DKFN", Items::columns, rm, ldm, m1, m2, n1, n2, order, irank, errbuf, ierr, order_len,
                     errbuf_len);
}

}  // extern "C"
