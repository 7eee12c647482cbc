// Hostile but caller-legitimate arguments of the BLAS/LAPACK names: empty option texts, pivots no
// factorisation produces, the published checks of the solves, increments and sizes at the integer limits.
// Arrays of exactly the documented length against an inaccessible page; expected values worked by hand or
// computed by a second route (a factorisation and its solve against the known solution).
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "argument_report.h"
#include "guard_page.h"
#include "support/unit_capture.h"
#include "vek.h"

namespace {

using vek::testing::Guard;
using vek::testing::GuardedArray;
using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

constexpr int64_t kMin = std::numeric_limits<int64_t>::min();

constexpr auto report = &vek::testing::argument_report;

// A 3 x 3 general matrix, its LU factors and pivots from dgetrf, and B = A x for x = (1, 2, 3).
struct Factored {
  GuardedArray<double> lu{2, 4, 1, 1, 1, 3, 0, 5, 1};  // column-major A
  GuardedArray<int64_t> ipiv{0, 0, 0};
  std::vector<double> b{2 + 2 + 0, 4 + 2 + 15, 1 + 6 + 3};
  Factored() {
    const int64_t n = 3;
    int64_t info = -1;
    dgetrf_(&n, &n, lu.data(), &n, ipiv.data(), &info);
    EXPECT_EQ(info, 0);
  }
};

TEST(HostileArguments, EmptyOptionTextsAreInvalidLetters) {
  // A text of length 0 at the very end of its storage: reading its letter would fault.
  GuardedArray<char> empty(0);
  const char* none = empty.data();
  const int64_t n = 2, one = 1;
  GuardedArray<double> a{1, 0, 0, 1}, b{5, 6}, c{7, 7, 7, 7}, work(2);
  GuardedArray<int64_t> ipiv{1, 2};
  int64_t info = 99;
  const double alpha = 1, beta = 0;
  vek::testing::UnitCapture cap;
  dgetrs_(none, &n, &one, a.data(), &n, ipiv.data(), b.data(), &n, &info, 0);
  EXPECT_EQ(info, -1);
  dgemm_("N", none, &n, &n, &n, &alpha, a.data(), &n, a.data(), &n, &beta, c.data(), &n, 1, 0);
  EXPECT_TRUE(std::isnan(dlange_(none, &n, &n, a.data(), &n, work.data(), 0)));
  const float salpha = 1, sbeta = 0;
  GuardedArray<float> sa{1, 0, 0, 1}, sc{7, 7, 7, 7};
  sgemm_(none, "N", &n, &n, &n, &salpha, sa.data(), &n, sa.data(), &n, &sbeta, sc.data(), &n, 0, 1);
  // A routine under the non-finite screen, and one whose letter the published interface never rejects
  // (dlaset takes any UPLO but U and L as the whole matrix).
  GuardedArray<double> w(2), lwork_space(10);
  const int64_t lwork = 10;
  info = 99;
  dsyev_("N", none, &n, a.data(), &n, w.data(), lwork_space.data(), &lwork, &info, 1, 0);
  EXPECT_EQ(info, -2);
  dlaset_(none, &n, &n, &alpha, &alpha, c.data(), &n, 0);
  // The library's own factorisation behind a published name gets the same screen.
  info = 99;
  dpotrf_(none, &n, a.data(), &n, &info, 0);
  EXPECT_EQ(info, -1);
  EXPECT_EQ(cap.lines(), (Lines{report("F07AEF/DGETRS", 1), report("F06YAF/DGEMM", 2), report("F06RAF/DLANGE", 1),
                                report("F06YAF/SGEMM", 1), report("F08FAF/DSYEV", 2), report("F06QHF/DLASET", 1),
                                report("F07FDF/DPOTRF", 1)}));
  EXPECT_EQ(a[0], 1);  // not factorised
  EXPECT_EQ(b[0], 5);  // nothing computed
  EXPECT_EQ(c[0], 7);
  EXPECT_EQ(sc[3], 7);
}

TEST(HostileArguments, GeneralSolvesMakeThePublishedChecksInOrder) {
  Factored f;
  const int64_t n = 3, one = 1, neg = -1, two = 2;
  GuardedArray<double> b(f.b);
  auto solve = [&](const char* trans, const int64_t* nn, const int64_t* nrhs, const int64_t* lda,
                   const int64_t* ldb) {
    int64_t info = kMin;  // must be overwritten on every return
    dgetrs_(trans, nn, nrhs, f.lu.data(), lda, f.ipiv.data(), b.data(), ldb, &info, 1);
    return info;
  };
  vek::testing::UnitCapture cap;
  EXPECT_EQ(solve("A", &n, &one, &n, &n), -1);  // the dependency left INFO unset here
  EXPECT_EQ(solve("N", &neg, &one, &n, &n), -2);
  EXPECT_EQ(solve("N", &n, &neg, &n, &n), -3);
  EXPECT_EQ(solve("N", &n, &one, &two, &two), -5);  // LDA before LDB
  EXPECT_EQ(solve("N", &n, &one, &n, &two), -8);
  EXPECT_EQ(cap.lines(), (Lines{report("F07AEF/DGETRS", 1), report("F07AEF/DGETRS", 2), report("F07AEF/DGETRS", 3),
                                report("F07AEF/DGETRS", 5), report("F07AEF/DGETRS", 8)}));
  EXPECT_EQ(b[0], f.b[0]);
  // Valid arguments still solve: x = (1, 2, 3).
  EXPECT_EQ(solve("n", &n, &one, &n, &n), 0);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(b[i], i + 1, 1e-14);
}

TEST(HostileArguments, PivotsOutsideTheFactorisationAreReportedBeforeUse) {
  Factored f;
  const int64_t n = 3, one = 1, lwork = 3, query = -1;
  for (int64_t bad : {int64_t{0}, int64_t{4}, int64_t{-1}, kMin}) {
    for (Guard side : {Guard::before, Guard::after}) {
      GuardedArray<int64_t> ipiv({f.ipiv[0], bad, f.ipiv[2]}, side);
      GuardedArray<double> b(f.b, side), a(9, side), work(3, side);
      GuardedArray<vek_complex> za(9, side), zb(3, side), zwork(3, side);
      for (int i = 0; i < 9; ++i) {
        a[i] = f.lu[i];
        za[i] = {f.lu[i], 0};
      }
      int64_t info[6];
      vek::testing::UnitCapture cap;
      dgetrs_("N", &n, &one, a.data(), &n, ipiv.data(), b.data(), &n, &info[0], 1);
      zgetrs_("T", &n, &one, za.data(), &n, ipiv.data(), zb.data(), &n, &info[1], 1);
      dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info[2]);
      zgetri_(&n, za.data(), &n, ipiv.data(), zwork.data(), &lwork, &info[3]);
      dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &query, &info[4]);  // a query reads no pivots
      // Band LU with KL = KU = 1 (LDAB = 4): the same pivots.
      const int64_t kl = 1, ku = 1, ldab = 4;
      GuardedArray<double> ab(12, 1.0, side);
      dgbtrs_("N", &n, &kl, &ku, &one, ab.data(), &ldab, ipiv.data(), b.data(), &n, &info[5], 1);
      EXPECT_EQ(cap.lines(), (Lines{report("F07AEF/DGETRS", 6), report("F07ASF/ZGETRS", 6), report("F07AJF/DGETRI", 4),
                                    report("F07AWF/ZGETRI", 4), report("F07BEF/DGBTRS", 8)}));
      EXPECT_EQ(info[0], -6);
      EXPECT_EQ(info[1], -6);
      EXPECT_EQ(info[2], -4);
      EXPECT_EQ(info[3], -4);
      EXPECT_EQ(info[4], 0);
      EXPECT_EQ(info[5], -8);
      EXPECT_EQ(b[0], f.b[0]);
      EXPECT_EQ(a[0], f.lu[0]);
    }
  }
  {  // an earlier published check wins over the pivots: LDB (8) and NRHS (3)
    GuardedArray<int64_t> ipiv{0, 0, 0};
    GuardedArray<double> b(3);
    const int64_t small = 2, neg = -1;
    int64_t info = 0, info2 = 0;
    vek::testing::UnitCapture cap;
    dgetrs_("N", &n, &one, f.lu.data(), &n, ipiv.data(), b.data(), &small, &info, 1);
    dgetrs_("N", &n, &neg, f.lu.data(), &n, ipiv.data(), b.data(), &n, &info2, 1);
    EXPECT_EQ(info, -8);
    EXPECT_EQ(info2, -3);
  }
}

TEST(HostileArguments, ExpertDriversCheckTheFactorisationTheyAreHanded) {
  // FACT = 'F': the published checks in their order, the equilibration the caller names, then the pivots,
  // which the drivers' solves and condition estimates index rows with.
  Factored f;
  const int64_t n = 3, one = 1;
  GuardedArray<double> a{2, 4, 1, 1, 1, 3, 0, 5, 1}, b(f.b), x(3), r{1, 1, 1}, c{1, 1, 1}, ferr(1), berr(1);
  GuardedArray<double> work(12);
  GuardedArray<int64_t> iwork(3);
  double rcond = -1;
  auto gesvx = [&](const int64_t* ipiv, char equed) {
    int64_t info = kMin;
    dgesvx_("F", "N", &n, &one, a.data(), &n, f.lu.data(), &n, const_cast<int64_t*>(ipiv), &equed, r.data(), c.data(),
            b.data(), &n, x.data(), &n, &rcond, ferr.data(), berr.data(), work.data(), iwork.data(), &info, 1, 1, 1);
    return info;
  };
  EXPECT_EQ(gesvx(f.ipiv.data(), 'N'), 0);  // the factorisation handed back solves A x = b
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(x[i], i + 1, 1e-14);
  EXPECT_GT(rcond, 0);
  GuardedArray<int64_t> bad{f.ipiv[0], 4, f.ipiv[2]}, zero{0, 0, 0};
  vek::testing::UnitCapture cap;
  EXPECT_EQ(gesvx(bad.data(), 'N'), -9);
  EXPECT_EQ(gesvx(bad.data(), 'Q'), -10);  // EQUED before the pivots
  r[1] = 0;
  EXPECT_EQ(gesvx(bad.data(), 'B'), -11);
  r[1] = 1;
  c[2] = std::nan("");
  EXPECT_EQ(gesvx(f.ipiv.data(), 'C'), -12);
  c[2] = 1;
  // Band: KL = KU = 1, LDAB = 3, LDAFB = 4; tridiagonal; symmetric indefinite, full and packed.
  const int64_t kl = 1, ldab = 3, ldafb = 4, lwork = 9;
  GuardedArray<double> ab(9, 1.0), afb(12, 1.0), d(3, 1.0), e(2, 1.0), du2(1), sym(9, 1.0), ap(6, 1.0);
  GuardedArray<vek_complex> za(9), zaf(9), zb(3), zx(3), zwork(9);
  char equed = 'N';
  int64_t info[5];
  dgbsvx_("F", "N", &n, &kl, &kl, &one, ab.data(), &ldab, afb.data(), &ldafb, zero.data(), &equed, r.data(),
          c.data(), b.data(), &n, x.data(), &n, &rcond, ferr.data(), berr.data(), work.data(), iwork.data(),
          &info[0], 1, 1, 1);
  GuardedArray<int64_t> skip{2, 3, 4};  // IPIV(2) = 3 is a pivot of row 2; IPIV(3) = 4 is no row
  dgtsvx_("F", "N", &n, &one, e.data(), d.data(), e.data(), e.data(), d.data(), e.data(), du2.data(), skip.data(),
          b.data(), &n, x.data(), &n, &rcond, ferr.data(), berr.data(), work.data(), iwork.data(), &info[1], 1, 1);
  dsysvx_("f", "U", &n, &one, sym.data(), &n, sym.data(), &n, zero.data(), b.data(), &n, x.data(), &n, &rcond,
          ferr.data(), berr.data(), work.data(), &lwork, iwork.data(), &info[2], 1, 1);
  zhesvx_("F", "L", &n, &one, za.data(), &n, zaf.data(), &n, bad.data(), zb.data(), &n, zx.data(), &n, &rcond,
          ferr.data(), berr.data(), zwork.data(), &lwork, work.data(), &info[3], 1, 1);
  dspsvx_("F", "U", &n, &one, ap.data(), ap.data(), zero.data(), b.data(), &n, x.data(), &n, &rcond, ferr.data(),
          berr.data(), work.data(), iwork.data(), &info[4], 1, 1);
  EXPECT_EQ(std::vector<int64_t>(info, info + 5), (std::vector<int64_t>{-11, -12, -9, -9, -7}));
  EXPECT_EQ(cap.lines(), (Lines{report("F07ABF/DGESVX", 9), report("F07ABF/DGESVX", 10), report("F07ABF/DGESVX", 11),
                                report("F07ABF/DGESVX", 12), report("F07BBF/DGBSVX", 11), report("F07CBF/DGTSVX", 12),
                                report("F07MBF/DSYSVX", 9), report("F07MPF/ZHESVX", 9), report("F07PBF/DSPSVX", 7)}));
  EXPECT_EQ(b[0], f.b[0]);  // nothing solved
  // A workspace query of the symmetric driver reads no pivots.
  const int64_t query = -1;
  int64_t qinfo = kMin;
  dsysvx_("F", "U", &n, &one, sym.data(), &n, sym.data(), &n, zero.data(), b.data(), &n, x.data(), &n, &rcond,
          ferr.data(), berr.data(), work.data(), &query, iwork.data(), &qinfo, 1, 1);
  EXPECT_EQ(qinfo, 0);
}

TEST(HostileArguments, TridiagonalAndSymmetricPivotsFollowTheirFactorisations) {
  const int64_t n = 3, one = 1;
  // Tridiagonal: the pivots of dgttrf (IPIV(i) is i or i + 1) solve A x = b for x = (1, 2, 3) with
  // A = [1 2 0; 1 4 1; 0 1 4]; IPIV(1) = 3 is neither and is reported.
  {
    GuardedArray<double> dl{1, 1}, d{1, 4, 4}, du{2, 1}, du2(1), b{1 + 4, 1 + 8 + 3, 2 + 12};
    GuardedArray<int64_t> ipiv(3);
    int64_t info = -1;
    dgttrf_(&n, dl.data(), d.data(), du.data(), du2.data(), ipiv.data(), &info);
    ASSERT_EQ(info, 0);
    dgttrs_("N", &n, &one, dl.data(), d.data(), du.data(), du2.data(), ipiv.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, 0);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(b[i], i + 1, 1e-14);
    GuardedArray<int64_t> bad{3, 2, 3};
    GuardedArray<double> work(6);
    GuardedArray<int64_t> iwork(3);
    double rcond = -1;
    const double anorm = 1;
    int64_t info2 = 0;
    vek::testing::UnitCapture cap;
    dgttrs_("N", &n, &one, dl.data(), d.data(), du.data(), du2.data(), bad.data(), b.data(), &n, &info, 1);
    dgtcon_("1", &n, dl.data(), d.data(), du.data(), du2.data(), bad.data(), &anorm, &rcond, work.data(),
            iwork.data(), &info2, 1);
    EXPECT_EQ(info, -8);
    EXPECT_EQ(info2, -7);
    EXPECT_EQ(cap.lines(), (Lines{report("F07CEF/DGTTRS", 8), report("F07CGF/DGTCON", 7)}));
  }
  // Symmetric indefinite: a 2 x 2 block is a pair of equal negative entries, read from the bottom for 'U'.
  {
    GuardedArray<double> a{0, 1, 0, 1, 0, 0, 0, 0, 2}, b{2, 1, 6};  // A = [0 1 0; 1 0 0; 0 0 2], x = (1, 2, 3)
    GuardedArray<double> work(64);
    GuardedArray<int64_t> ipiv(3);
    const int64_t lwork = 64;
    int64_t info = -1;
    dsytrf_("U", &n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info, 1);
    ASSERT_EQ(info, 0);
    dsytrs_("U", &n, &one, a.data(), &n, ipiv.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, 0);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(b[i], i + 1, 1e-14);
    vek::testing::UnitCapture cap;
    for (const std::vector<int64_t>& bad : {std::vector<int64_t>{-1, 2, 3}, std::vector<int64_t>{1, -2, -1},
                                           std::vector<int64_t>{1, -4, -4}, std::vector<int64_t>{1, 2, kMin}}) {
      GuardedArray<int64_t> p(bad, Guard::before);
      dsytrs_("U", &n, &one, a.data(), &n, p.data(), b.data(), &n, &info, 1);
      EXPECT_EQ(info, -6);
    }
    // For 'L' the pair is read from the top: (-1, -1, 3) is a block of rows 1, 2 and a 1 x 1 pivot.
    GuardedArray<int64_t> lower{-1, -1, 3};
    GuardedArray<double> ap{2, 1, 0, 3, 0, 1};  // lower packed: the block [2 1; 1 3] is regular
    dsptrs_("L", &n, &one, ap.data(), lower.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, 0);
    GuardedArray<int64_t> odd_run{-1, -1, -1};  // three equal entries pair up in neither direction
    dsptrs_("L", &n, &one, ap.data(), odd_run.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, -5);
    Lines expected(4, report("F07MEF/DSYTRS", 6));
    expected.push_back(report("F07PEF/DSPTRS", 5));
    EXPECT_EQ(cap.lines(), expected);
  }
}

TEST(HostileArguments, RowInterchangesWithTheMostNegativeIncrement) {
  // INCX = -2^63 has no 64-bit negation. With K1 = K2 one pivot is read, IPIV(K1), whatever the increment;
  // with K2 > K1 no array reaches IPIV(K1 + (K2 - K1)|INCX|), reported as INCX (7).
  const int64_t n = 1, lda = 2, k1 = 1, k2 = 2, inc = kMin;
  GuardedArray<double> a{1, 2};
  GuardedArray<int64_t> ipiv({2}, Guard::before);
  GuardedArray<vek_complex> z{{1, 0}, {2, 0}};
  vek::testing::UnitCapture cap;
  dlaswp_(&n, a.data(), &lda, &k1, &k1, ipiv.data(), &inc);
  zlaswp_(&n, z.data(), &lda, &k1, &k1, ipiv.data(), &inc);
  EXPECT_EQ(a[0], 2);  // rows 1 and 2 swapped
  EXPECT_EQ(z[0].re, 2);
  dlaswp_(&n, a.data(), &lda, &k1, &k2, ipiv.data(), &inc);
  EXPECT_EQ(cap.lines(), (Lines{report("F06QVF/DLASWP", 7)}));
  EXPECT_EQ(a[0], 2);
}

TEST(HostileArguments, MatrixSetterChecksItsSizes) {
  // dlaset with M = 0, LDA = 0 and N near 2^63 (an array of length 0) ran its column loop on.
  const int64_t zero = 0, huge = std::numeric_limits<int64_t>::max(), two = 2, neg = -1;
  const double alpha = 3, beta = 4;
  GuardedArray<double> a(0), b{9, 9, 9, 9};
  GuardedArray<vek_complex> z(0);
  const vek_complex zalpha{3, 0};
  vek::testing::UnitCapture cap;
  EXPECT_TRUE(vek::testing::returns_within(2000ms, [&] {
    dlaset_("A", &zero, &huge, &alpha, &beta, a.data(), &zero, 1);
    zlaset_("U", &zero, &huge, &zalpha, &zalpha, z.data(), &zero, 1);
  }));
  dlaset_("A", &neg, &two, &alpha, &beta, b.data(), &two, 1);
  dlaset_("L", &two, &two, &alpha, &beta, b.data(), &two, 1);
  EXPECT_EQ(cap.lines(), (Lines{report("F06QHF/DLASET", 7), report("F06THF/ZLASET", 7), report("F06QHF/DLASET", 2)}));
  EXPECT_EQ(b[0], 4);  // the valid call: diagonal BETA, strictly lower ALPHA, upper untouched
  EXPECT_EQ(b[1], 3);
  EXPECT_EQ(b[2], 9);
  EXPECT_EQ(b[3], 4);
}

TEST(HostileArguments, ComplexDotsReadOnlyTheElementsTheyUse) {
  // N = 3 with INCX = 0 (X one element), INCX = 2 (X five elements) and unit strides, every array ending at
  // the guard page. Expected: the sums of the products written out, x_k y_k or conj(x_k) y_k.
  const int64_t n = 3;
  for (int64_t inc : {int64_t{0}, int64_t{1}, int64_t{2}}) {
    const std::size_t len = static_cast<std::size_t>(1 + (n - 1) * inc);
    GuardedArray<vek_complex> x(len), y(3);
    for (std::size_t i = 0; i < len; ++i) x[i] = {1.0 + static_cast<double>(i), -0.5 * static_cast<double>(i)};
    for (int i = 0; i < 3; ++i) y[i] = {2.0 - i, 0.25 + i};
    double ur = 0, ui = 0, cr = 0, ci = 0;
    for (int k = 0; k < 3; ++k) {
      const vek_complex a = x[static_cast<std::size_t>(k * inc)], b = y[k];
      ur += a.re * b.re - a.im * b.im;
      ui += a.re * b.im + a.im * b.re;
      cr += a.re * b.re + a.im * b.im;
      ci += a.re * b.im - a.im * b.re;
    }
    const int64_t one = 1;
    const vek_complex u = zdotu_(&n, x.data(), &inc, y.data(), &one);
    const vek_complex c = zdotc_(&n, x.data(), &inc, y.data(), &one);
    const vek_complex uy = zdotu_(&n, y.data(), &one, x.data(), &inc);  // the hostile stride on the other side
    EXPECT_DOUBLE_EQ(u.re, ur) << inc;
    EXPECT_DOUBLE_EQ(u.im, ui) << inc;
    EXPECT_DOUBLE_EQ(c.re, cr) << inc;
    EXPECT_DOUBLE_EQ(c.im, ci) << inc;
    EXPECT_DOUBLE_EQ(uy.re, ur) << inc;
    EXPECT_DOUBLE_EQ(uy.im, ui) << inc;
  }
  // One element with the most negative increment (no 64-bit negation): element 1 of each vector.
  const int64_t one = 1, most_negative = kMin;
  GuardedArray<vek_complex> x1({{2, 1}}, Guard::before), y1({{3, -1}}, Guard::before);
  GuardedArray<double> d1({2.0}, Guard::before), e1({-3.0}, Guard::before);
  const vek_complex u = zdotu_(&one, x1.data(), &most_negative, y1.data(), &most_negative);
  const vek_complex c = zdotc_(&one, x1.data(), &most_negative, y1.data(), &most_negative);
  EXPECT_EQ(u.re, 7);  // (2 + i)(3 - i)
  EXPECT_EQ(u.im, 1);
  EXPECT_EQ(c.re, 5);  // (2 - i)(3 - i)
  EXPECT_EQ(c.im, -5);
  EXPECT_EQ(ddot_(&one, d1.data(), &most_negative, e1.data(), &most_negative), -6);
}

TEST(HostileArguments, GeneralizedSvdAsksForItsWorkspace) {
  // dggsvd3 with LWORK = 4 for 3 x 3 matrices passed the published LWORK >= 1 and then ran on without end
  // (zggsvd3 with LWORK = 1 left WORK). LWORK below the workspace query's answer is reported as argument
  // 22; with the answer the pair is decomposed: B = I gives the generalized singular values of A alone,
  // alpha_i / beta_i = sigma_i(A), here the diagonal 3, 2, 1 of A.
  const int64_t m = 3, n = 3, p = 3, ld = 3;
  for (bool complex : {false, true}) {
    for (int64_t lwork : {int64_t{1}, int64_t{4}, int64_t{0}}) {  // 0: use the query's answer
      GuardedArray<double> alpha(3), beta(3);
      GuardedArray<int64_t> iwork(3);
      int64_t k = -1, l = -1, info = kMin;
      vek::testing::UnitCapture cap;
      if (complex) {
        GuardedArray<vek_complex> a(9, {0, 0}), b(9, {0, 0}), u(9), v(9), q(9), answer(1);
        GuardedArray<double> rwork(6);
        a[0] = {3, 0}, a[4] = {2, 0}, a[8] = {1, 0}, b[0] = b[4] = b[8] = {1, 0};
        int64_t query = -1;
        zggsvd3_("N", "N", "N", &m, &n, &p, &k, &l, a.data(), &ld, b.data(), &ld, alpha.data(), beta.data(), u.data(),
                 &ld, v.data(), &ld, q.data(), &ld, answer.data(), &query, rwork.data(), iwork.data(), &info, 1, 1, 1);
        ASSERT_EQ(info, 0);
        const int64_t use = lwork > 0 ? lwork : static_cast<int64_t>(answer[0].re);
        GuardedArray<vek_complex> work(static_cast<std::size_t>(use));
        zggsvd3_("N", "N", "N", &m, &n, &p, &k, &l, a.data(), &ld, b.data(), &ld, alpha.data(), beta.data(), u.data(),
                 &ld, v.data(), &ld, q.data(), &ld, work.data(), &use, rwork.data(), iwork.data(), &info, 1, 1, 1);
      } else {
        GuardedArray<double> a(9, 0.0), b(9, 0.0), u(9), v(9), q(9), answer(1);
        a[0] = 3, a[4] = 2, a[8] = 1, b[0] = b[4] = b[8] = 1;
        int64_t query = -1;
        dggsvd3_("N", "N", "N", &m, &n, &p, &k, &l, a.data(), &ld, b.data(), &ld, alpha.data(), beta.data(), u.data(),
                 &ld, v.data(), &ld, q.data(), &ld, answer.data(), &query, iwork.data(), &info, 1, 1, 1);
        ASSERT_EQ(info, 0);
        const int64_t use = lwork > 0 ? lwork : static_cast<int64_t>(answer[0]);
        GuardedArray<double> work(static_cast<std::size_t>(use));
        EXPECT_TRUE(vek::testing::returns_within(2000ms, [&] {
          dggsvd3_("N", "N", "N", &m, &n, &p, &k, &l, a.data(), &ld, b.data(), &ld, alpha.data(), beta.data(),
                   u.data(), &ld, v.data(), &ld, q.data(), &ld, work.data(), &use, iwork.data(), &info, 1, 1, 1);
        }));
      }
      if (lwork > 0) {
        EXPECT_EQ(info, -22);
        EXPECT_EQ(cap.lines(), (Lines{report(complex ? "F08VNF/ZGGSVD3" : "F08VAF/DGGSVD3", 22)}));
        continue;
      }
      ASSERT_EQ(info, 0);
      EXPECT_EQ(k + l, 3);
      std::vector<double> ratios;
      for (int i = 0; i < 3; ++i) ratios.push_back(alpha[i] / beta[i]);
      std::sort(ratios.begin(), ratios.end());
      for (int i = 0; i < 3; ++i) EXPECT_NEAR(ratios[i], i + 1, 1e-13);
    }
  }
}

}  // namespace
