// Bodies of the M01 routines that take a permutation: rearranging by ranks and permutation utilities.
//
// M01EAF, M01EBF, M01ECF and M01EDF move element I of a real, integer, string or complex segment M1:M2 to
// position IRANK(I), in place, along the cycles of the permutation. M01ZAF replaces a permutation by its
// inverse; M01ZBF only checks one. IRANK (IPERM) is checked first, I running from M1 to M2: the first value
// outside M1..M2 fails with IFAIL 2, the first value seen before with IFAIL 3, and the data are left as they
// were.
#include "layers/m01.h"
#include "util/rank.h"
#include "util/sort_args.h"

namespace {

// Checks PERM(M1:M2) for the routine R, then applies it.
template <class R, class Apply>
void with_permutation(vek::frame::ErrorBuffer& err, int64_t m1, int64_t m2, const int64_t* perm, Apply apply) {
  const auto p = vek::util::segment(perm, m1, m2);
  if (vek::util::valid_permutation<R>(err, p, m1)) apply(p);
}

template <class R, class T>
void rearrange_segment(vek::frame::ErrorBuffer& err, T* v, int64_t m1, int64_t m2, const int64_t* irank) {
  with_permutation<R>(err, m1, m2, irank,
                      [=](std::span<const int64_t> p) { vek::util::rearrange(vek::util::segment(v, m1, m2), p, m1); });
}

}  // namespace

namespace vek::routines {

void m01eaf::run(frame::ErrorBuffer& err, double* rv, const int64_t* m1, const int64_t* m2, const int64_t* irank) {
  rearrange_segment<m01eaf>(err, rv, *m1, *m2, irank);
}

void m01ebf::run(frame::ErrorBuffer& err, int64_t* iv, const int64_t* m1, const int64_t* m2, const int64_t* irank) {
  rearrange_segment<m01ebf>(err, iv, *m1, *m2, irank);
}

void m01ecf::run(frame::ErrorBuffer& err, char* ch, const int64_t* m1, const int64_t* m2, const int64_t* irank,
                 int64_t ch_len) {
  with_permutation<m01ecf>(err, *m1, *m2, irank, [=](std::span<const int64_t> p) {
    if (ch_len > 0) util::rearrange_records(ch + (*m1 - 1) * ch_len, ch_len, p, *m1);
  });
}

void m01edf::run(frame::ErrorBuffer& err, vek_complex* cv, const int64_t* m1, const int64_t* m2,
                 const int64_t* irank) {
  rearrange_segment<m01edf>(err, cv, *m1, *m2, irank);
}

void m01zaf::run(frame::ErrorBuffer& err, int64_t* iperm, const int64_t* m1, const int64_t* m2) {
  with_permutation<m01zaf>(err, *m1, *m2, iperm, [=](std::span<const int64_t>) {
    util::invert_permutation(util::segment(iperm, *m1, *m2), *m1);
  });
}

void m01zbf::run(frame::ErrorBuffer& err, const int64_t* iperm, const int64_t* m1, const int64_t* m2) {
  with_permutation<m01zbf>(err, *m1, *m2, iperm, [](std::span<const int64_t>) {});
}

}  // namespace vek::routines
