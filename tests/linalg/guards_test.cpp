// The guards of the BLAS/LAPACK layer, through the published names, on arrays of exactly the documented length
// placed against an inaccessible page (after the end, and before the start where that is what a fault reads).
// Expected values: the published definitions worked by hand (strided sums, row swaps), or the properties the
// chapter guide documents (an argument report, a NaN result, INFO).
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <complex>
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

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

constexpr auto report = &vek::testing::argument_report;

TEST(Guards, RowInterchangesReportBadSizesAndWalkNegativeIncrements) {
  const int64_t n = 2, lda = 3, one = 1;
  for (int64_t k1 : {0, -1, -1000}) {
    GuardedArray<double> a{1, 2, 3, 4, 5, 6};
    GuardedArray<int64_t> ipiv({2, 3, 3}, Guard::before);
    GuardedArray<vek_complex> z({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}});
    const int64_t k2 = 3;
    vek::testing::UnitCapture cap;
    dlaswp_(&n, a.data(), &lda, &k1, &k2, ipiv.data(), &one);
    zlaswp_(&n, z.data(), &lda, &k1, &k2, ipiv.data(), &one);
    EXPECT_EQ(cap.lines(), (Lines{report("F06QVF/DLASWP", 4), report("F06TVF/ZLASWP", 4)}));
    EXPECT_EQ(a[0], 1);  // no interchange
    EXPECT_EQ(z[1].re, 2);
  }
  {  // a pivot outside the rows, a row K2 beyond LDA, N < 0
    GuardedArray<double> a{1, 2, 3, 4, 5, 6};
    GuardedArray<int64_t> ipiv{2, 4};
    const int64_t k1 = 1, k2 = 2, k4 = 4, minus = -1;
    vek::testing::UnitCapture cap;
    dlaswp_(&n, a.data(), &lda, &k1, &k2, ipiv.data(), &one);
    dlaswp_(&n, a.data(), &lda, &k1, &k4, ipiv.data(), &one);
    dlaswp_(&minus, a.data(), &lda, &k1, &k2, ipiv.data(), &one);
    EXPECT_EQ(cap.lines(), (Lines{report("F06QVF/DLASWP", 6), report("F06QVF/DLASWP", 5), report("F06QVF/DLASWP", 1)}));
    EXPECT_EQ(a[1], 2);
  }
  // INCX = -2 over K1 = 2 .. K2 = 3: IPIV(2 + (3-2)*2) = IPIV(4) applies to row 3 first, then IPIV(2) to
  // row 2; IPIV(1) and IPIV(3) are not read.
  for (Guard side : {Guard::before, Guard::after}) {
    GuardedArray<int64_t> ipiv({99, 3, 99, 1}, side);
    ipiv[1] = 3;
    GuardedArray<double> a({1, 2, 3, 4, 5, 6}, side);
    GuardedArray<vek_complex> z({{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}}, side);
    const int64_t k1 = 2, k2 = 3, inc = -2;
    // Expected by hand: swap rows 3,1 then rows 2,3 in each column: (1,2,3) -> (3,2,1) -> (3,1,2).
    dlaswp_(&n, a.data(), &lda, &k1, &k2, ipiv.data(), &inc);
    zlaswp_(&n, z.data(), &lda, &k1, &k2, ipiv.data(), &inc);
    const double expect[6] = {3, 1, 2, 6, 4, 5};
    for (int i = 0; i < 6; ++i) {
      EXPECT_EQ(a[i], expect[i]) << i;
      EXPECT_EQ(z[i].re, expect[i]) << i;
    }
  }
  {  // K2 < K1 and INCX = 0: nothing, silently (as published; LAPACK's own calls rely on K2 = 0)
    GuardedArray<double> a{1, 2, 3};
    GuardedArray<int64_t> ipiv{3};
    const int64_t k1 = 1, k0 = 0, zero = 0, cols = 1;
    vek::testing::UnitCapture cap;
    dlaswp_(&cols, a.data(), &lda, &k1, &k0, ipiv.data(), &one);
    dlaswp_(&cols, a.data(), &lda, &k1, &k1, ipiv.data(), &zero);
    EXPECT_TRUE(cap.lines().empty());
    EXPECT_EQ(a[0], 1);
  }
}

TEST(Guards, DotProductsWithNegativeIncrementsFollowThePublishedOrder) {
  // N = 3, INCX = -3: X is read at elements 7, 4, 1 (1-based) while Y goes 1, 4, 7.
  const int64_t n = 3, incx = -3, incy = 3;
  for (Guard side : {Guard::before, Guard::after}) {
    GuardedArray<vek_complex> x(7, side), y(7, side);
    GuardedArray<double> dx(7, side), dy(7, side);
    GuardedArray<float> sx(7, side), sy(7, side);
    for (int i = 0; i < 7; ++i) {
      x[i] = {1.0 + i, 0.5 * i};
      y[i] = {2.0 - i, 1.0};
      dx[i] = 1.0 + i;
      dy[i] = 2.0 - i;
      sx[i] = static_cast<float>(dx[i]);
      sy[i] = static_cast<float>(dy[i]);
    }
    std::complex<double> u = 0, c = 0;
    double d = 0;
    for (int k = 0; k < 3; ++k) {
      const std::complex<double> xv(x[6 - 3 * k].re, x[6 - 3 * k].im), yv(y[3 * k].re, y[3 * k].im);
      u += xv * yv;
      c += std::conj(xv) * yv;
      d += dx[6 - 3 * k] * dy[3 * k];
    }
    const vek_complex zu = zdotu_(&n, x.data(), &incx, y.data(), &incy);
    const vek_complex zc = zdotc_(&n, x.data(), &incx, y.data(), &incy);
    EXPECT_DOUBLE_EQ(zu.re, u.real());
    EXPECT_DOUBLE_EQ(zu.im, u.imag());
    EXPECT_DOUBLE_EQ(zc.re, c.real());
    EXPECT_DOUBLE_EQ(zc.im, c.imag());
    EXPECT_DOUBLE_EQ(ddot_(&n, dx.data(), &incx, dy.data(), &incy), d);
    EXPECT_FLOAT_EQ(sdot_(&n, sx.data(), &incx, sy.data(), &incy), static_cast<float>(d));
    // Both negative: the same pairs as both positive.
    const int64_t mx = -3, my = -3, px = 3, py = 3;
    EXPECT_DOUBLE_EQ(ddot_(&n, dx.data(), &mx, dy.data(), &my), ddot_(&n, dx.data(), &px, dy.data(), &py));
  }
}

TEST(Guards, ProductsRejectOptionLettersOutsideThePublishedSet) {
  const int64_t m = 2, n = 3, lda = 2, inc = -1;
  GuardedArray<vek_complex> a(6), x(3, Guard::before), y(2);
  GuardedArray<vek_scomplex> ca(6), cx(3, Guard::before), cy(2);
  GuardedArray<double> da(6), dx(3, Guard::before), dy(2);
  a.fill({1, 0});
  x.fill({1, 0});
  y.fill({7, 0});
  ca.fill({1, 0});
  cx.fill({1, 0});
  cy.fill({7, 0});
  da.fill(1);
  dx.fill(1);
  dy.fill(7);
  const vek_complex alpha{1, 0}, beta{0, 0};
  const vek_scomplex calpha{1, 0}, cbeta{0, 0};
  const double dalpha = 1, dbeta = 0;
  vek::testing::UnitCapture cap;
  zgemv_("S", &m, &n, &alpha, a.data(), &lda, x.data(), &inc, &beta, y.data(), &inc, 1);
  cgemv_("S", &m, &n, &calpha, ca.data(), &lda, cx.data(), &inc, &cbeta, cy.data(), &inc, 1);
  dgemv_("R", &m, &n, &dalpha, da.data(), &lda, dx.data(), &inc, &dbeta, dy.data(), &inc, 1);
  double c[4] = {5, 5, 5, 5};
  dgemm_("N", "R", &m, &m, &m, &dalpha, da.data(), &lda, da.data(), &lda, &dbeta, c, &m, 1, 1);
  dtrsm_("L", "U", "R", "N", &m, &m, &dalpha, da.data(), &lda, c, &m, 1, 1, 1, 1);
  dtrmv_("U", "R", "N", &m, da.data(), &lda, dx.data(), &inc, 1, 1, 1);
  ztrsv_("U", "N", "X", &m, a.data(), &lda, x.data(), &inc, 1, 1, 1);
  EXPECT_EQ(cap.lines(), (Lines{report("F06SAF/ZGEMV", 1), report("F06SAF/CGEMV", 1), report("F06PAF/DGEMV", 1),
                                report("F06YAF/DGEMM", 2), report("F06YJF/DTRSM", 3), report("F06PFF/DTRMV", 2),
                                report("F06SJF/ZTRSV", 3)}));
  EXPECT_EQ(dx[0], 1);
  EXPECT_EQ(x[0].re, 1);
  EXPECT_EQ(y[0].re, 7);
  EXPECT_EQ(cy[1].re, 7);
  EXPECT_EQ(dy[0], 7);
  EXPECT_EQ(c[0], 5);
  // The published letters in either case still compute: y = A^T x with A all ones, x reversed (all ones).
  GuardedArray<double> yt(3, Guard::before);
  GuardedArray<double> xt(2, Guard::before);
  xt.fill(1);
  dgemv_("t", &m, &n, &dalpha, da.data(), &lda, xt.data(), &inc, &dbeta, yt.data(), &inc, 1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(yt[i], 2);
}

TEST(Guards, PackedIndefiniteFactorisationsStopAtANonFinitePivot) {
  const int64_t nrhs = 1;
  for (double bad : {kNaN, kInf, -kInf}) {
    for (Guard side : {Guard::before, Guard::after}) {
      for (const char* uplo : {"U", "L"}) {
        {  // N = 1: the packed code indexed AP with a row it never set (address 0)
          const int64_t n = 1, ldb = 1;
          GuardedArray<double> ap({bad}, side), b({1.0}, side);
          GuardedArray<int64_t> ipiv(1, side);
          int64_t info = -99;
          dspsv_(uplo, &n, &nrhs, ap.data(), ipiv.data(), b.data(), &ldb, &info, 1);
          if (std::isnan(bad)) {
            EXPECT_EQ(info, 1);
          } else {
            EXPECT_GE(info, 0);
          }
          GuardedArray<double> ap2({bad}, side);
          info = -99;
          dsptrf_(uplo, &n, ap2.data(), ipiv.data(), &info, 1);
          if (std::isnan(bad)) {
            EXPECT_EQ(info, 1);
          }
        }
        // N = 4, one non-finite entry on the diagonal of the last pivot, and one off it.
        const int64_t n = 4, ldb = 4, len = 10;
        for (int64_t where : {int64_t{0}, int64_t{9}, int64_t{4}}) {
          GuardedArray<double> ap(len, side), afp(len, side), b(4, side), x(4, side);
          GuardedArray<vek_complex> zp(len, side), zfp(len, side), zb(4, side), zx(4, side);
          GuardedArray<int64_t> ipiv(4, side);
          for (int64_t i = 0; i < len; ++i) {
            ap[i] = 1.0 / static_cast<double>(i + 2);
            zp[i] = {ap[i], 0};
          }
          ap[where] = bad;
          zp[where] = {bad, 0};
          b.fill(1);
          zb.fill({1, 0});
          double rcond = -1, ferr[1], berr[1], work[12];
          double rwork[4];
          int64_t iwork[4], info = -99;
          vek_complex zwork[8];
          dspsv_(uplo, &n, &nrhs, ap.data(), ipiv.data(), b.data(), &ldb, &info, 1);
          EXPECT_GE(info, 0);
          info = -99;
          zspsv_(uplo, &n, &nrhs, zp.data(), ipiv.data(), zb.data(), &ldb, &info, 1);
          EXPECT_GE(info, 0);
          for (int64_t i = 0; i < len; ++i) zp[i] = {1.0 / static_cast<double>(i + 2), 0};
          zp[where] = {bad, 0};
          info = -99;
          zhpsv_(uplo, &n, &nrhs, zp.data(), ipiv.data(), zb.data(), &ldb, &info, 1);
          EXPECT_GE(info, 0);
          for (int64_t i = 0; i < len; ++i) ap[i] = 1.0 / static_cast<double>(i + 2);
          ap[where] = bad;
          info = -99;
          dspsvx_("N", uplo, &n, &nrhs, ap.data(), afp.data(), ipiv.data(), b.data(), &ldb, x.data(), &ldb, &rcond,
                  ferr, berr, work, iwork, &info, 1, 1);
          EXPECT_GE(info, 0);
          if (info > 0 && info <= n) {
            EXPECT_EQ(rcond, 0);
          }
          info = -99;
          zhpsvx_("N", uplo, &n, &nrhs, zp.data(), zfp.data(), ipiv.data(), zb.data(), &ldb, zx.data(), &ldb, &rcond,
                  ferr, berr, zwork, rwork, &info, 1, 1);
          EXPECT_GE(info, 0);
          info = -99;
          zspsvx_("N", uplo, &n, &nrhs, zp.data(), zfp.data(), ipiv.data(), zb.data(), &ldb, zx.data(), &ldb, &rcond,
                  ferr, berr, zwork, rwork, &info, 1, 1);
          EXPECT_GE(info, 0);
          info = -99;
          zsptrf_(uplo, &n, zp.data(), ipiv.data(), &info, 1);
          EXPECT_GE(info, 0);
          for (int64_t i = 0; i < len; ++i) zp[i] = {1.0 / static_cast<double>(i + 2), 0};
          zp[where] = {bad, 0};
          info = -99;
          zhptrf_(uplo, &n, zp.data(), ipiv.data(), &info, 1);
          EXPECT_GE(info, 0);
          for (int64_t k = 0; k < 4; ++k) EXPECT_TRUE(ipiv[k] != 0 && std::abs(ipiv[k]) <= n) << k;
        }
      }
    }
  }
}

TEST(Guards, PackedFactorisationOnFiniteDataSolvesTheSystem) {
  // A = [4 1 2; 1 -3 0; 2 0 5] (indefinite), x = (1, 2, 3): b = A x computed by hand.
  const int64_t n = 3, nrhs = 1, ldb = 3;
  GuardedArray<double> ap{4, 1, -3, 2, 0, 5};  // upper packed, column by column
  GuardedArray<double> b{4 + 2 + 6, 1 - 6 + 0, 2 + 0 + 15};
  GuardedArray<int64_t> ipiv(3);
  int64_t info = -1;
  dspsv_("U", &n, &nrhs, ap.data(), ipiv.data(), b.data(), &ldb, &info, 1);
  EXPECT_EQ(info, 0);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(b[i], i + 1, 1e-14);
}

TEST(Guards, GeneralizedSvdPairChecksKAndL) {
  // dtgsja(JOBU, JOBV, JOBQ, M, P, N, K, L, A, LDA, B, LDB, TOLA, TOLB, ALPHA, BETA, U, LDU, V, LDV, Q, LDQ,
  // WORK, NCYCLE, INFO)
  auto call = [](int64_t m, int64_t p, int64_t n, int64_t k, int64_t l, bool complex) {
    const int64_t lda = std::max<int64_t>(1, m), ldb = std::max<int64_t>(1, p), ldq = std::max<int64_t>(1, n);
    const double tol = 1e-12;
    int64_t ncycle = -1, info = 99;
    if (complex) {
      GuardedArray<vek_complex> a(m * n), b(p * n), u(m * m), v(p * p), q(n * n), work(2 * n);
      GuardedArray<double> alpha(n), beta(n);
      u.fill({5, 5});
      ztgsja_("I", "I", "I", &m, &p, &n, &k, &l, a.data(), &lda, b.data(), &ldb, &tol, &tol, alpha.data(),
              beta.data(), u.data(), &lda, v.data(), &ldb, q.data(), &ldq, work.data(), &ncycle, &info, 1, 1, 1);
      if (info == 0 && n == 0 && m > 0) {
        EXPECT_EQ(u[0].re, 1);
      }
    } else {
      GuardedArray<double> a(m * n), b(p * n), u(m * m), v(p * p), q(n * n), work(2 * n), alpha(n), beta(n);
      u.fill(5);
      dtgsja_("I", "I", "I", &m, &p, &n, &k, &l, a.data(), &lda, b.data(), &ldb, &tol, &tol, alpha.data(),
              beta.data(), u.data(), &lda, v.data(), &ldb, q.data(), &ldq, work.data(), &ncycle, &info, 1, 1, 1);
      if (info == 0 && n == 0 && m > 0) {
        EXPECT_EQ(u[0], 1);
      }
    }
    if (info == 0 && n == 0) {
      EXPECT_EQ(ncycle, 0);
    }
    return info;
  };
  for (bool complex : {false, true}) {
    vek::testing::UnitCapture cap;
    EXPECT_EQ(call(3, 3, 2, 2, 1, complex), -8);  // K + L > N
    EXPECT_EQ(call(3, 3, 2, 3, 0, complex), -7);  // K > N
    EXPECT_EQ(call(3, 1, 3, 0, 2, complex), -8);  // L > P
    EXPECT_EQ(call(3, 3, 2, -1, 1, complex), -7);
    EXPECT_EQ(call(-1, 3, 2, 3, 3, complex), -4);  // earlier arguments first
    EXPECT_EQ(call(2, 2, 0, 0, 0, complex), 0);     // N = 0: nothing to compute
    EXPECT_EQ(call(3, 3, 3, 1, 1, complex), 0);
    const char* name = complex ? "F08YSF/ZTGSJA" : "F08YEF/DTGSJA";
    EXPECT_EQ(cap.lines(), (Lines{report(name, 8), report(name, 7), report(name, 8), report(name, 7),
                                  report(name, 4)}));
  }
  // The preprocessing of the pair with N = 0 (arrays of zero length against the guard page).
  for (int64_t m : {0, 2}) {
    const int64_t p = 2, n = 0, lda = std::max<int64_t>(1, m), ldb = 2, ldq = 1, lwork = 1;
    int64_t k = -1, l = -1, info = 99;
    const double tol = 1e-12;
    GuardedArray<vek_complex> a(0), b(0), u(m * m), v(4), q(0), tau(0), work(1);
    GuardedArray<int64_t> iwork(0);
    GuardedArray<double> rwork(0);
    zggsvp3_("U", "V", "Q", &m, &p, &n, a.data(), &lda, b.data(), &ldb, &tol, &tol, &k, &l, u.data(), &lda, v.data(),
             &ldb, q.data(), &ldq, iwork.data(), rwork.data(), tau.data(), work.data(), &lwork, &info, 1, 1, 1);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(k + l, 0);
  }
}

TEST(Guards, NormsOfInvalidSizesAreNaN) {
  GuardedArray<double> a(9), work(3);
  GuardedArray<vek_complex> z(9);
  a.fill(1);
  z.fill({1, 0});
  const int64_t n = 3, m = 3, neg = -1, two = 2, k = 1;
  vek::testing::UnitCapture cap;
  EXPECT_TRUE(std::isnan(dlansy_("M", "U", &n, a.data(), &neg, work.data(), 1, 1)));
  EXPECT_TRUE(std::isnan(zlansy_("1", "L", &n, z.data(), &neg, work.data(), 1, 1)));
  EXPECT_TRUE(std::isnan(zlansb_("I", "U", &n, &k, z.data(), &neg, work.data(), 1, 1)));
  EXPECT_TRUE(std::isnan(dlange_("F", &m, &n, a.data(), &two, work.data(), 1)));
  EXPECT_TRUE(std::isnan(dlange_("X", &m, &n, a.data(), &m, work.data(), 1)));
  EXPECT_TRUE(std::isnan(zlanhe_("M", "Q", &n, z.data(), &n, work.data(), 1, 1)));
  EXPECT_TRUE(std::isnan(dlantr_("M", "U", "N", &m, &neg, a.data(), &m, work.data(), 1, 1, 1)));
  EXPECT_EQ(cap.lines(), (Lines{report("F06RCF/DLANSY", 5), report("F06UFF/ZLANSY", 5), report("F06UHF/ZLANSB", 6),
                                report("F06RAF/DLANGE", 5), report("F06RAF/DLANGE", 1), report("F06UCF/ZLANHE", 2),
                                report("F06RJF/DLANTR", 5)}));
  // Valid calls: the published values (A all ones, 3 x 3).
  EXPECT_EQ(dlansy_("1", "U", &n, a.data(), &n, work.data(), 1, 1), 3);
  EXPECT_EQ(dlange_("f", &m, &n, a.data(), &m, work.data(), 1), 3);
  const int64_t zero = 0;
  EXPECT_EQ(dlange_("M", &zero, &n, a.data(), &two, work.data(), 1), 0);
}

// The drivers that iterate, on 7 x 7 problems with one NaN or infinity, every array against the guard page:
// each returns within 2 s with the documented INFO and NaN values.
class NonFinite : public ::testing::TestWithParam<double> {};

constexpr int64_t kN = 7;
constexpr auto kLimit = 2000ms;

std::vector<double> matrix_with(double bad) {
  std::vector<double> a(kN * kN);
  for (int64_t i = 0; i < kN * kN; ++i) a[i] = std::sin(1.0 + static_cast<double>(i));
  a[3 + 2 * kN] = bad;
  a[2 + 3 * kN] = bad;  // symmetric drivers read either triangle
  return a;
}

std::vector<vek_complex> complex_with(double bad) {
  std::vector<vek_complex> z(kN * kN);
  const std::vector<double> a = matrix_with(bad);
  for (int64_t i = 0; i < kN * kN; ++i) z[i] = {a[i], 0.25 * a[i]};
  for (int64_t j = 0; j < kN; ++j) z[j + j * kN].im = 0;
  return z;
}

template <class F>
void expect_prompt(const char* name, F f) {
  EXPECT_TRUE(vek::testing::returns_within(kLimit, f)) << name << " did not return";
}

bool all_nan(const double* v, int64_t n, int stride = 1) {
  for (int64_t i = 0; i < n; ++i)
    if (!std::isnan(v[i * stride])) return false;
  return true;
}

TEST_P(NonFinite, SvdAndLeastSquaresDriversReturnPromptly) {
  const double bad = GetParam();
  const int64_t n = kN, lwork = 2000, nrhs = 1;
  expect_prompt("dgesvd", [&] {
    GuardedArray<double> a = matrix_with(bad), s(kN), u(kN * kN), vt(kN * kN), work(lwork);
    int64_t info = 0;
    dgesvd_("A", "A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork, &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(s.data(), kN));
  });
  expect_prompt("dgesdd", [&] {
    GuardedArray<double> a = matrix_with(bad), s(kN), u(kN * kN), vt(kN * kN), work(lwork);
    GuardedArray<int64_t> iwork(8 * kN);
    int64_t info = 0;
    dgesdd_("A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork, iwork.data(),
            &info, 1);
    EXPECT_EQ(info, -4);
    EXPECT_TRUE(all_nan(s.data(), kN));
  });
  expect_prompt("zgesdd", [&] {
    GuardedArray<vek_complex> a = complex_with(bad), u(kN * kN), vt(kN * kN), work(lwork);
    GuardedArray<double> s(kN), rwork(5 * kN * kN + 7 * kN);
    GuardedArray<int64_t> iwork(8 * kN);
    int64_t info = 0;
    zgesdd_("A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork, rwork.data(),
            iwork.data(), &info, 1);
    EXPECT_EQ(info, -4);
    EXPECT_TRUE(all_nan(s.data(), kN));
  });
  expect_prompt("dgelsd", [&] {
    GuardedArray<double> a = matrix_with(bad), b(kN, 1.0), s(kN), work(lwork);
    GuardedArray<int64_t> iwork(200);
    const double rcond = -1;
    int64_t rank = -1, info = 0;
    dgelsd_(&n, &n, &nrhs, a.data(), &n, b.data(), &n, s.data(), &rcond, &rank, work.data(), &lwork, iwork.data(),
            &info);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(s.data(), kN));
    EXPECT_TRUE(all_nan(b.data(), kN));
  });
  expect_prompt("zgelsd", [&] {
    GuardedArray<vek_complex> a = complex_with(bad), b(kN, vek_complex{1, 0}), work(lwork);
    GuardedArray<double> s(kN), rwork(2000);
    GuardedArray<int64_t> iwork(200);
    const double rcond = -1;
    int64_t rank = -1, info = 0;
    zgelsd_(&n, &n, &nrhs, a.data(), &n, b.data(), &n, s.data(), &rcond, &rank, work.data(), &lwork, rwork.data(),
            iwork.data(), &info);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(s.data(), kN));
  });
  expect_prompt("dbdsqr and dbdsdc", [&] {
    GuardedArray<double> d(kN, 2.0), e(kN - 1, 0.5), vt(kN * kN), u(kN * kN), c(1), work(4 * kN);
    d[4] = bad;
    const int64_t zero = 0;
    int64_t info = 0;
    dbdsqr_("U", &n, &zero, &zero, &zero, d.data(), e.data(), vt.data(), &n, u.data(), &n, c.data(), &n, work.data(),
            &info, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(d.data(), kN));
    GuardedArray<double> d2(kN, 2.0), e2(kN - 1, 0.5), q(1), wk(3 * kN * kN + 4 * kN);
    GuardedArray<int64_t> iq(1), iwork(8 * kN);
    e2[2] = bad;
    info = 0;
    dbdsdc_("U", "I", &n, d2.data(), e2.data(), u.data(), &n, vt.data(), &n, q.data(), iq.data(), wk.data(),
            iwork.data(), &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(d2.data(), kN));
  });
}

TEST_P(NonFinite, EigenvalueDriversReturnPromptly) {
  const double bad = GetParam();
  const int64_t n = kN, lwork = 2000, liwork = 200;
  expect_prompt("dgeevx", [&] {
    GuardedArray<double> a = matrix_with(bad), wr(kN), wi(kN), vl(kN * kN), vr(kN * kN), scale(kN), rce(kN), rcv(kN),
        work(lwork);
    GuardedArray<int64_t> iwork(2 * kN);
    int64_t ilo, ihi, info = 0;
    double abnrm;
    dgeevx_("B", "V", "V", "B", &n, a.data(), &n, wr.data(), wi.data(), vl.data(), &n, vr.data(), &n, &ilo, &ihi,
            scale.data(), &abnrm, rce.data(), rcv.data(), work.data(), &lwork, iwork.data(), &info, 1, 1, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(wr.data(), kN) && all_nan(wi.data(), kN));
  });
  expect_prompt("zgeevx", [&] {
    GuardedArray<vek_complex> a = complex_with(bad), w(kN), vl(kN * kN), vr(kN * kN), work(lwork);
    GuardedArray<double> scale(kN), rce(kN), rcv(kN), rwork(2 * kN);
    int64_t ilo, ihi, info = 0;
    double abnrm;
    zgeevx_("B", "V", "V", "B", &n, a.data(), &n, w.data(), vl.data(), &n, vr.data(), &n, &ilo, &ihi, scale.data(),
            &abnrm, rce.data(), rcv.data(), work.data(), &lwork, rwork.data(), &info, 1, 1, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(&w[0].re, kN, 2) && all_nan(&w[0].im, kN, 2));
  });
  expect_prompt("dgeev", [&] {
    GuardedArray<double> a = matrix_with(bad), wr(kN), wi(kN), vl(kN * kN), vr(kN * kN), work(lwork);
    int64_t info = 0;
    dgeev_("V", "V", &n, a.data(), &n, wr.data(), wi.data(), vl.data(), &n, vr.data(), &n, work.data(), &lwork,
           &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(wr.data(), kN));
  });
  expect_prompt("dsyevr", [&] {
    GuardedArray<double> a = matrix_with(bad), w(kN), z(kN * kN), work(lwork);
    GuardedArray<int64_t> isuppz(2 * kN), iwork(liwork);
    const double vl = 0, vu = 0, abstol = 0;
    const int64_t il = 1, iu = kN;
    int64_t m = -1, info = 0;
    dsyevr_("V", "A", "L", &n, a.data(), &n, &vl, &vu, &il, &iu, &abstol, &m, w.data(), z.data(), &n, isuppz.data(),
            work.data(), &lwork, iwork.data(), &liwork, &info, 1, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(w.data(), kN));
  });
  expect_prompt("dsyevd and zheev", [&] {
    GuardedArray<double> a = matrix_with(bad), w(kN), work(lwork), rwork(3 * kN);
    GuardedArray<int64_t> iwork(liwork);
    int64_t info = 0;
    dsyevd_("V", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, iwork.data(), &liwork, &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(w.data(), kN));
    GuardedArray<vek_complex> z = complex_with(bad), zwork(lwork);
    info = 0;
    zheev_("V", "L", &n, z.data(), &n, w.data(), zwork.data(), &lwork, rwork.data(), &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(w.data(), kN));
  });
  expect_prompt("dggev and dhseqr", [&] {
    GuardedArray<double> a = matrix_with(bad), b = matrix_with(1.0), ar(kN), ai(kN), be(kN), vl(kN * kN), vr(kN * kN),
        work(lwork);
    int64_t info = 0;
    dggev_("N", "V", &n, a.data(), &n, b.data(), &n, ar.data(), ai.data(), be.data(), vl.data(), &n, vr.data(), &n,
           work.data(), &lwork, &info, 1, 1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(be.data(), kN));
    GuardedArray<double> h = matrix_with(bad), z(kN * kN);
    h[5] = 99;  // below the subdiagonal: not part of the Hessenberg matrix, not screened
    for (int64_t j = 0; j < kN; ++j)
      for (int64_t i = j + 2; i < kN; ++i) h[i + j * kN] = kNaN;
    const int64_t ilo = 1;
    info = 0;
    dhseqr_("S", "I", &n, &ilo, &n, h.data(), &n, ar.data(), ai.data(), z.data(), &n, work.data(), &lwork, &info, 1,
            1);
    EXPECT_EQ(info, kN);
    EXPECT_TRUE(all_nan(ar.data(), kN));
  });
}

INSTANTIATE_TEST_SUITE_P(Guards, NonFinite, ::testing::Values(kNaN, kInf, -kInf));

TEST(Guards, ScreenLeavesFiniteProblemsQueriesAndArgumentErrorsToTheDependency) {
  const int64_t n = kN;
  // Finite: singular values of diag(1..7) in a rotated basis are 7..1.
  std::vector<double> a(kN * kN, 0.0), s(kN), work(2000);
  for (int64_t i = 0; i < kN; ++i) a[i + i * kN] = static_cast<double>(i + 1);
  std::vector<int64_t> iwork(8 * kN);
  const int64_t lwork = 2000, query = -1;
  int64_t info = -1;
  dgesdd_("N", &n, &n, a.data(), &n, s.data(), nullptr, &n, nullptr, &n, work.data(), &lwork, iwork.data(), &info, 1);
  EXPECT_EQ(info, 0);
  for (int64_t i = 0; i < kN; ++i) EXPECT_NEAR(s[i], static_cast<double>(kN - i), 1e-14);
  // A workspace query with a NaN in A is only a query.
  a[1] = kNaN;
  info = -1;
  dgesdd_("N", &n, &n, a.data(), &n, s.data(), nullptr, &n, nullptr, &n, work.data(), &query, iwork.data(), &info, 1);
  EXPECT_EQ(info, 0);
  EXPECT_GE(work[0], 1);
  // An illegal argument is reported before anything else, non-finite A or not.
  vek::testing::UnitCapture cap;
  std::vector<double> w(kN);
  info = 0;
  dsyev_("Q", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, &info, 1, 1);
  EXPECT_EQ(info, -1);
  const int64_t small = 2;
  info = 0;
  dsyev_("N", "U", &n, a.data(), &small, w.data(), work.data(), &lwork, &info, 1, 1);
  EXPECT_EQ(info, -5);
  EXPECT_EQ(cap.lines(), (Lines{report("F08FAF/DSYEV", 1), report("F08FAF/DSYEV", 5)}));
}

TEST(Guards, ModifiedRotationOfNonFiniteInputIsNaN) {
  for (double bad : {kInf, -kInf, kNaN}) {
    for (int which = 0; which < 2; ++which) {
      double d1 = which == 0 ? bad : 1.0, d2 = which == 1 ? bad : -1.14, x1 = -0.51;
      const double y1 = -0.17;
      double param[5] = {0, 0, 0, 0, 0};
      EXPECT_TRUE(vek::testing::returns_within(kLimit, [&] { drotmg_(&d1, &d2, &x1, &y1, param); }));
      EXPECT_EQ(param[0], -1);
      EXPECT_TRUE(std::isnan(param[1]) && std::isnan(d1) && std::isnan(x1));
    }
  }
  // Finite input: the published rotation zeroes the second component: y1' = h21 x1 + h22 y1 = 0 (flag 0:
  // h11 = h22 = 1 implied).
  double d1 = 2, d2 = 1, x1 = 3;
  const double y1 = 1;
  double param[5];
  drotmg_(&d1, &d2, &x1, &y1, param);
  ASSERT_EQ(param[0], 0);
  EXPECT_NEAR(param[2] * 3 + 1 * y1, 0, 1e-15);
}

TEST(Guards, InfoIsSetOnEveryReturn) {
  const int64_t n = 2, nrhs = 1;
  GuardedArray<double> a{1, 0, 0, 1}, b{1, 1};
  GuardedArray<vek_complex> za({{1, 0}, {0, 0}, {0, 0}, {1, 0}}), zb({{1, 0}, {1, 0}});
  GuardedArray<int64_t> ipiv{1, 2};
  vek::testing::UnitCapture cap;
  int64_t info = 12345;
  dgetrs_("A", &n, &nrhs, a.data(), &n, ipiv.data(), b.data(), &n, &info, 1);
  EXPECT_EQ(info, -1);
  info = 12345;
  zgetrs_("A", &n, &nrhs, za.data(), &n, ipiv.data(), zb.data(), &n, &info, 1);
  EXPECT_EQ(info, -1);
  info = 12345;
  dgetrs_("c", &n, &nrhs, a.data(), &n, ipiv.data(), b.data(), &n, &info, 1);
  EXPECT_EQ(info, 0);
  EXPECT_EQ(b[0], 1);
  EXPECT_EQ(cap.lines(), (Lines{report("F07AEF/DGETRS", 1), report("F07ASF/ZGETRS", 1)}));

  // QR with column pivoting of a 0 x 7 matrix, columns 3 and 6 fixed: INFO = 0, the fixed columns first.
  const int64_t m = 0, cols = 7, lda = 3, lwork = 3;
  GuardedArray<double> qa(21), tau(0), work(3);
  GuardedArray<vek_complex> qz(21), ztau(0), zwork(3);
  GuardedArray<double> rwork(14);
  GuardedArray<int64_t> jpvt{0, 0, 1, 0, 0, 1, 0};
  info = -12345;
  dgeqp3_(&m, &cols, qa.data(), &lda, jpvt.data(), tau.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  const int64_t expect[7] = {3, 6, 1, 4, 5, 2, 7};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(jpvt[i], expect[i]) << i;
  GuardedArray<int64_t> zjpvt{0, 0, 1, 0, 0, 1, 0};
  info = -12345;
  zgeqp3_(&m, &cols, qz.data(), &lda, zjpvt.data(), ztau.data(), zwork.data(), &lwork, rwork.data(), &info);
  EXPECT_EQ(info, 0);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(zjpvt[i], expect[i]) << i;
}

TEST(Guards, EigenvalueExpertDriversOfOrderOne) {
  for (const char* balanc : {"N", "P", "S", "B"}) {
    for (const char* sense : {"N", "E", "V", "B"}) {
      const int64_t n = 1, ld = 1, lwork = 7;
      GuardedArray<double> a{2.5}, wr(1), wi(1), vl(1), vr(1), scale(1), rce(1), rcv(1), work(lwork);
      GuardedArray<int64_t> iwork(0);
      int64_t ilo, ihi, info = 99;
      double abnrm;
      dgeevx_(balanc, "V", "V", sense, &n, a.data(), &ld, wr.data(), wi.data(), vl.data(), &ld, vr.data(), &ld, &ilo,
              &ihi, scale.data(), &abnrm, rce.data(), rcv.data(), work.data(), &lwork, iwork.data(), &info, 1, 1, 1, 1);
      EXPECT_EQ(info, 0);
      EXPECT_EQ(wr[0], 2.5);
      const int64_t zlwork = 3;
      GuardedArray<vek_complex> za({{2.5, -1}}), w(1), zvl(1), zvr(1), zwork(zlwork);
      GuardedArray<double> rwork(2);
      info = 99;
      zgeevx_(balanc, "V", "V", sense, &n, za.data(), &ld, w.data(), zvl.data(), &ld, zvr.data(), &ld, &ilo, &ihi,
              scale.data(), &abnrm, rce.data(), rcv.data(), zwork.data(), &zlwork, rwork.data(), &info, 1, 1, 1, 1);
      EXPECT_EQ(info, 0);
      EXPECT_EQ(w[0].re, 2.5);
      EXPECT_EQ(w[0].im, -1);
    }
  }
}

}  // namespace
