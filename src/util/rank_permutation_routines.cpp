// Workers of the M01 routines that take a permutation: rearranging by ranks and permutation utilities.
//
// M01EAF, M01EBF, M01ECF and M01EDF move element I of a real, integer, string or complex segment M1:M2 to
// position IRANK(I), in place, along the cycles of the permutation. M01ZAF replaces a permutation by its
// inverse; M01ZBF only checks one. IRANK (IPERM) is checked first, I running from M1 to M2: the first value
// outside M1..M2 fails with IFAIL 2, the first value seen before with IFAIL 3, and the data are left as they
// were.
#include <new>

#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

namespace {

template <class Apply>
void permutation_worker(const char* worker, const int64_t* m1, const int64_t* m2, const int64_t* perm,
                        char* errbuf, int64_t* ierr, int64_t errbuf_len, Apply apply) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return;
  if (!vek::util::valid_range(err, *m1, *m2)) return;
  try {
    const auto p = vek::util::segment(perm, *m1, *m2);
    if (vek::util::valid_permutation(err, p, *m1)) apply(p);
  } catch (const std::bad_alloc&) {
    err.fail_allocation();
  }
}

template <class T>
auto rearrange_segment(T* v, const int64_t* m1, const int64_t* m2) {
  return [=](std::span<const int64_t> p) { vek::util::rearrange(vek::util::segment(v, *m1, *m2), p, *m1); };
}

}  // namespace

extern "C" {

void m01eafn_(double* rv, const int64_t* m1, const int64_t* m2, const int64_t* irank, char* errbuf,
              int64_t* ierr, int64_t errbuf_len) {
  permutation_worker("M01EAFN", m1, m2, irank, errbuf, ierr, errbuf_len, rearrange_segment(rv, m1, m2));
}

void m01ebfn_(int64_t* iv, const int64_t* m1, const int64_t* m2, const int64_t* irank, char* errbuf,
              int64_t* ierr, int64_t errbuf_len) {
  permutation_worker("M01EBFN", m1, m2, irank, errbuf, ierr, errbuf_len, rearrange_segment(iv, m1, m2));
}

void m01ecfn_(char* ch, const int64_t* m1, const int64_t* m2, const int64_t* irank, char* errbuf, int64_t* ierr,
              int64_t ch_len, int64_t errbuf_len) {
  permutation_worker("M01ECFN", m1, m2, irank, errbuf, ierr, errbuf_len, [=](std::span<const int64_t> p) {
    if (ch_len > 0) vek::util::rearrange_records(ch + (*m1 - 1) * ch_len, ch_len, p, *m1);
  });
}

void m01edfn_(vek_complex* cv, const int64_t* m1, const int64_t* m2, const int64_t* irank, char* errbuf,
              int64_t* ierr, int64_t errbuf_len) {
  permutation_worker("M01EDFN", m1, m2, irank, errbuf, ierr, errbuf_len, rearrange_segment(cv, m1, m2));
}

void m01zafn_(int64_t* iperm, const int64_t* m1, const int64_t* m2, char* errbuf, int64_t* ierr,
              int64_t errbuf_len) {
  permutation_worker("M01ZAFN", m1, m2, iperm, errbuf, ierr, errbuf_len, [=](std::span<const int64_t>) {
    vek::util::invert_permutation(vek::util::segment(iperm, *m1, *m2), *m1);
  });
}

void m01zbfn_(const int64_t* iperm, const int64_t* m1, const int64_t* m2, char* errbuf, int64_t* ierr,
              int64_t errbuf_len) {
  permutation_worker("M01ZBFN", m1, m2, iperm, errbuf, ierr, errbuf_len, [](std::span<const int64_t>) {});
}

}  // extern "C"
