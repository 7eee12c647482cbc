// The published names reach the same workers as the library names, illegal arguments are reported through
// INFO and the argument-error line naming both routines, and the single-precision twins compute in single.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "argument_report.h"
#include "support/unit_capture.h"
#include "linalg/name_map.h"
#include "test_matrices.h"
#include "vek.h"

namespace {

constexpr auto illegal = &vek::testing::argument_report;

TEST(PublishedNames, DgetrfAndF07adfGiveIdenticalFactors) {
  for (int64_t m : {7, 60, 5}) {
    const int64_t n = 5 + m % 11, lda = m + 3;
    std::vector<double> a1 = random_matrix(m, n, lda, static_cast<unsigned>(m)), a2 = a1;
    if (m == 5) {  // an exactly singular matrix: column 3 is zero
      for (int64_t i = 0; i < m; ++i) a1[static_cast<size_t>(i + 2 * lda)] = a2[static_cast<size_t>(i + 2 * lda)] = 0;
    }
    std::vector<int64_t> p1(static_cast<size_t>(std::min(m, n)), -7), p2 = p1;
    int64_t info1 = 99, info2 = 99;
    vek::testing::UnitCapture capture;
    dgetrf_(&m, &n, a1.data(), &lda, p1.data(), &info1);
    f07adf_(&m, &n, a2.data(), &lda, p2.data(), &info2);
    EXPECT_TRUE(capture.lines().empty()) << "a computational failure prints nothing";
    EXPECT_EQ(info1, info2);
    EXPECT_EQ(info1, m == 5 ? 3 : 0);
    EXPECT_EQ(p1, p2);
    EXPECT_EQ(0, std::memcmp(a1.data(), a2.data(), a1.size() * sizeof(double))) << "m = " << m;
  }
}

// max |P A - L U| / (n eps max|A|) for the factors of an m by n matrix (n the smaller dimension), and INFO.
std::pair<double, int64_t> lu_residual(int64_t m, int64_t n, int64_t zero_column, unsigned seed) {
  const int64_t lda = m + 1, mn = std::min(m, n);
  std::vector<double> a0 = random_matrix(m, n, lda, seed);
  if (zero_column >= 0)
    for (int64_t i = 0; i < m; ++i) a0[i + zero_column * lda] = 0;
  std::vector<double> lu = a0;
  std::vector<int64_t> ipiv(mn);
  int64_t info = -1;
  dgetrf_(&m, &n, lu.data(), &lda, ipiv.data(), &info);
  std::vector<double> pa = a0;  // P A: the interchanges applied to the rows of A in order
  for (int64_t i = 0; i < mn; ++i)
    for (int64_t j = 0; j < n; ++j) std::swap(pa[i + j * lda], pa[(ipiv[i] - 1) + j * lda]);
  double worst = 0, anorm = 0;
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < m; ++i) {
      long double s = 0;
      for (int64_t k = 0; k <= std::min({i, j, mn - 1}); ++k)
        s += (k == i ? 1.0L : lu[i + k * lda]) * lu[k + j * lda];
      worst = std::max(worst, std::fabs(static_cast<double>(s - pa[i + j * lda])));
      anorm = std::max(anorm, std::fabs(a0[i + j * lda]));
    }
  return {worst / (anorm * static_cast<double>(mn) * 0x1p-53), info};
}

TEST(PublishedNames, LuFactorsReproduceTheMatrix) {
  // One panel, several panels with look-ahead, tall and wide shapes, and an exactly singular matrix whose
  // zero column lies in the third panel. LAPACK's own tests accept a ratio up to 30.
  struct Case {
    int64_t m, n, zero_column, info;
  };
  for (const Case& c : {Case{200, 200, -1, 0}, Case{700, 530, -1, 0}, Case{530, 700, -1, 0},
                        Case{600, 600, 520, 521}}) {
    const auto [ratio, info] = lu_residual(c.m, c.n, c.zero_column, static_cast<unsigned>(c.m + c.n));
    RecordProperty("backward_error_ratio_" + std::to_string(c.m) + "x" + std::to_string(c.n), std::to_string(ratio));
    EXPECT_EQ(info, c.info) << c.m << "x" << c.n;
    EXPECT_LT(ratio, 1.0) << c.m << "x" << c.n;
  }
}

TEST(PublishedNames, IllegalArgumentsReportBothNames) {
  std::vector<double> a(64, 1.0), work(64);
  std::vector<vek_complex> z(64);
  std::vector<int64_t> ipiv(8);
  int64_t info = 0;
  struct Case {
    std::string label;
    std::function<void()> call;
    int64_t expected_info;  // 0: a BLAS routine, which has no INFO
    std::string line;
  };
  int64_t m3 = 3, n2 = 2, lda2 = 2, nneg = -1, four = 4, lwork = 64, one = 1;
  const std::vector<Case> cases = {
      {"dgetrf LDA < M", [&] { dgetrf_(&m3, &n2, a.data(), &lda2, ipiv.data(), &info); }, -4,
       illegal("F07ADF/DGETRF", 4)},
      {"f07adf N < 0", [&] { f07adf_(&m3, &nneg, a.data(), &m3, ipiv.data(), &info); }, -2,
       illegal("F07ADF/DGETRF", 2)},
      {"dgetrf M < 0 first", [&] { dgetrf_(&nneg, &nneg, a.data(), &lda2, ipiv.data(), &info); }, -1,
       illegal("F07ADF/DGETRF", 1)},
      {"zgetrf LDA < M", [&] { zgetrf_(&m3, &n2, z.data(), &lda2, ipiv.data(), &info); }, -4,
       illegal("F07ARF/ZGETRF", 4)},
      {"dgeqrf M < 0", [&] { dgeqrf_(&nneg, &n2, a.data(), &four, work.data(), work.data(), &lwork, &info); }, -1,
       illegal("F08AEF/DGEQRF", 1)},
      {"dpotrf UPLO", [&] { dpotrf_("Q", &n2, a.data(), &four, &info, 1); }, -1, illegal("F07FDF/DPOTRF", 1)},
      {"dsyev JOBZ", [&] { dsyev_("X", "U", &n2, a.data(), &four, work.data(), work.data(), &lwork, &info, 1, 1); },
       -1, illegal("F08FAF/DSYEV", 1)},
      {"dgemm TRANSA", [&] {
         double alpha = 1, beta = 0;
         dgemm_("X", "N", &n2, &n2, &n2, &alpha, a.data(), &four, a.data(), &four, &beta, work.data(), &four, 1, 1);
       }, 0, illegal("F06YAF/DGEMM", 1)},
      {"sgemm LDA", [&] {
         float alpha = 1, beta = 0, s[16] = {};
         sgemm_("N", "N", &four, &n2, &n2, &alpha, s, &n2, s, &four, &beta, s, &four, 1, 1);
       }, 0, illegal("F06YAF/SGEMM", 8)},
      {"daxpy-free dtrsv DIAG", [&] { dtrsv_("U", "N", "Z", &n2, a.data(), &four, work.data(), &one, 1, 1, 1); }, 0,
       illegal("F06PJF/DTRSV", 3)},
  };
  for (const Case& c : cases) {
    info = 12345;
    vek::testing::UnitCapture capture;
    c.call();
    const std::vector<std::string> lines = capture.lines();
    if (c.expected_info != 0) EXPECT_EQ(info, c.expected_info) << c.label;
    ASSERT_EQ(lines.size(), 1u) << c.label;
    EXPECT_EQ(lines[0], c.line) << c.label;
  }
}

TEST(PublishedNames, NameTableIsSortedAndResolves) {
  const auto& names = vek::linalg::published_names;
  EXPECT_GE(names.size(), 500u);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end(), [](const auto& x, const auto& y) {
    return std::strcmp(x.published, y.published) < 0;
  }));
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end(),
                               [](const auto& x, const auto& y) { return !std::strcmp(x.published, y.published); }),
            names.end());
  EXPECT_EQ(vek::linalg::report_name("dgetrf").view(), "F07ADF/DGETRF");
  EXPECT_EQ(vek::linalg::report_name(std::string_view("DGEMM \0", 7)).view(), "F06YAF/DGEMM");
  EXPECT_EQ(vek::linalg::report_name("ISAMAX").view(), "F06JLF/ISAMAX");
  EXPECT_EQ(vek::linalg::report_name("dlarfg").view(), "DLARFG") << "an auxiliary not in the table keeps its name";
  EXPECT_EQ(vek::linalg::report_name("").view(), "");
}

TEST(PublishedNames, SgemmComputesInSinglePrecision) {
  // Positive data so that rounding errors accumulate: a single-precision product differs from the
  // correctly rounded double-precision one in some entries, but stays within K units of single precision.
  const int64_t m = 8, n = 8, k = 4096;
  std::mt19937 gen(5);
  std::uniform_real_distribution<float> u(0.5f, 1.0f);
  std::vector<float> a(m * k), b(k * n), c(m * n, -1.0f);
  for (float& x : a) x = u(gen);
  for (float& x : b) x = u(gen);
  float alpha = 1, beta = 0;
  sgemm_("N", "N", &m, &n, &k, &alpha, a.data(), &m, b.data(), &k, &beta, c.data(), &m, 1, 1);
  int differ = 0;
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < m; ++i) {
      double exact = 0;
      for (int64_t l = 0; l < k; ++l) exact += static_cast<double>(a[i + l * m]) * b[l + j * k];
      const float got = c[i + j * m];
      EXPECT_LE(std::fabs(got - exact), static_cast<double>(k) * 0x1p-24 * exact) << i << "," << j;
      differ += got != static_cast<float>(exact);
    }
  EXPECT_GT(differ, 0) << "every entry correctly rounded: not a single-precision accumulation";
}

TEST(PublishedNames, FunctionResultsOfEveryKind) {
  const int64_t n = 4, inc = 1, inc2 = 2;
  const double x[] = {1, -7, 3, 2, 0, 0, 0, 0}, y[] = {2, 1, -1, 0.5};
  EXPECT_EQ(ddot_(&n, x, &inc, y, &inc), 2 - 7 - 3 + 1);
  EXPECT_EQ(idamax_(&n, x, &inc), 2);
  EXPECT_EQ(idamax_(&n, x, &inc2), 2) << "elements 1, 3, 0, 0";
  EXPECT_DOUBLE_EQ(dnrm2_(&n, x, &inc), std::sqrt(63.0));
  EXPECT_EQ(dasum_(&n, x, &inc), 13);
  const float xs[] = {1, -7, 3, 2}, ys[] = {2, 1, -1, 0.5f};
  EXPECT_EQ(sdot_(&n, xs, &inc, ys, &inc), -7.0f);
  EXPECT_EQ(isamax_(&n, xs, &inc), 2);
  EXPECT_EQ(sasum_(&n, xs, &inc), 13.0f);
  const vek_complex zx[] = {{1, 2}, {3, -1}}, zy[] = {{0, 1}, {2, 2}};
  const int64_t two = 2;
  const vek_complex u = zdotu_(&two, zx, &inc, zy, &inc), c = zdotc_(&two, zx, &inc, zy, &inc);
  // (1+2i)i + (3-i)(2+2i) = -2+i + 8+4i ; conj: (1-2i)i + (3+i)(2+2i) = 2+i + 4+8i
  EXPECT_EQ(u.re, 6);
  EXPECT_EQ(u.im, 5);
  EXPECT_EQ(c.re, 6);
  EXPECT_EQ(c.im, 9);
  EXPECT_EQ(izamax_(&two, zx, &inc), 2);
  EXPECT_EQ(dzasum_(&two, zx, &inc), 7);
  const double a[] = {1, -4, 2, 3};  // 2 by 2, column-major
  double work[2];
  EXPECT_EQ(dlange_("1", &two, &two, a, &two, work, 1), 5);
  EXPECT_EQ(dlange_("M", &two, &two, a, &two, work, 1), 4);
  EXPECT_EQ(f06raf_("I", &two, &two, a, &two, work, 1), 7);
}

}  // namespace
