// The F04 simple drivers and the F01 inverse: solutions, condition estimates, and every message path line by
// line through the exported entries with IFAIL = -1.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/unit_capture.h"
#include "test_matrices.h"
#include "vek.h"

namespace {

std::vector<std::string> report(const std::vector<std::string>& message, const std::string& routine, int ifail) {
  std::vector<std::string> lines;
  for (const std::string& m : message) lines.push_back(" " + m);
  char exit_line[80];
  std::snprintf(exit_line, sizeof exit_line, " ** ABNORMAL EXIT from VEK Library routine %s: IFAIL =%6d",
                routine.c_str(), ifail);
  lines.push_back(exit_line);
  lines.push_back(" ** VEK soft failure - control returned");
  return lines;
}

double max_abs_diff(const std::vector<double>& x, const std::vector<double>& y) {
  double d = 0;
  for (size_t i = 0; i < x.size(); ++i) d = std::max(d, std::fabs(x[i] - y[i]));
  return d;
}

// B = A X for the n by n matrix A.
std::vector<double> times(const std::vector<double>& a, int64_t n, const std::vector<double>& x, int64_t nrhs) {
  std::vector<double> b(static_cast<size_t>(n * nrhs), 0.0);
  for (int64_t r = 0; r < nrhs; ++r)
    for (int64_t j = 0; j < n; ++j)
      for (int64_t i = 0; i < n; ++i) b[i + r * n] += a[i + j * n] * x[j + r * n];
  return b;
}

struct GeneralCall {
  int64_t n = 3, nrhs = 2, lda = 3, ldb = 3;
  std::vector<double> a = {4, 1, 0, 1, 5, 2, 0, 2, 6}, b = std::vector<double>(6, 1.0);
  std::vector<int64_t> ipiv = std::vector<int64_t>(3);
  double rcond = -1, errbnd = -1;
  int64_t run() {
    int64_t ifail = -1;
    f04baf_(&n, &nrhs, a.data(), &lda, ipiv.data(), b.data(), &ldb, &rcond, &errbnd, &ifail);
    return ifail;
  }
};

TEST(F04baf, SolvesAndEstimatesTheCondition) {
  const int64_t n = 50, nrhs = 3;
  const std::vector<double> a0 = dominant_matrix(n, 8), x0 = random_matrix(n, nrhs, n, 9);
  GeneralCall c;
  c.n = c.lda = c.ldb = n;
  c.nrhs = nrhs;
  c.a = a0;
  c.b = times(a0, n, x0, nrhs);
  c.ipiv.resize(n);
  vek::testing::UnitCapture capture;
  EXPECT_EQ(c.run(), 0);
  EXPECT_TRUE(capture.lines().empty());
  EXPECT_GT(c.rcond, 0.1) << "a diagonally dominant matrix is well conditioned";
  EXPECT_LE(c.rcond, 1.0);
  EXPECT_DOUBLE_EQ(c.errbnd, 0x1p-53 / c.rcond);
  EXPECT_LE(max_abs_diff(c.b, x0), 10 * c.errbnd);
}

// One message case: how the valid call is spoiled, the IFAIL expected and the message records.
template <class Call>
struct MessageCase {
  std::function<void(Call&)> edit;
  int ifail;
  std::vector<std::string> message;
};

TEST(F04baf, EveryMessage) {
  const std::vector<MessageCase<GeneralCall>> cases = {
      {[](GeneralCall& c) { c.n = -2; }, 1, {"** On entry, N = -2.", "** Constraint: N >= 0."}},
      {[](GeneralCall& c) { c.nrhs = -1; }, 1, {"** On entry, NRHS = -1.", "** Constraint: NRHS >= 0."}},
      {[](GeneralCall& c) { c.lda = 2; }, 1, {"** On entry, LDA = 2 and N = 3.", "** Constraint: LDA >= max(1,N)."}},
      {[](GeneralCall& c) { c.ldb = 0; }, 1, {"** On entry, LDB = 0 and N = 3.", "** Constraint: LDB >= max(1,N)."}},
      {[](GeneralCall& c) { c.a = {1, 2, 3, 2, 4, 6, 0, 1, 1}; }, 2,
       {"** The factor U is singular: U(2,2) is exactly zero.", "** No solution has been computed."}},
  };
  for (const auto& k : cases) {
    GeneralCall c;
    k.edit(c);
    vek::testing::UnitCapture capture;
    EXPECT_EQ(c.run(), k.ifail);
    EXPECT_EQ(capture.lines(), report(k.message, "F04BAF", k.ifail));
  }
}

TEST(F04baf, IllConditionedIsAWarningWithTheSolution) {
  GeneralCall c;
  c.a = {1, 1, 0, 1, 1 + 0x1p-52, 0, 0, 0, 1};  // rows 1 and 2 differ by one unit in the last place
  vek::testing::UnitCapture capture;
  EXPECT_EQ(c.run(), 3);
  const std::vector<std::string> lines = capture.lines();
  ASSERT_EQ(lines.size(), 4u);
  const std::string head = " ** A solution has been computed, but RCOND = ";
  ASSERT_EQ(lines[0].substr(0, head.size()), head);
  EXPECT_EQ(std::strtod(lines[0].c_str() + head.size(), nullptr), c.rcond) << "the shown value reads back";
  EXPECT_EQ(lines[1], " ** is less than machine precision: A is singular to working precision.");
  EXPECT_LT(c.rcond, 0x1p-53);
  EXPECT_GT(c.errbnd, 1.0);
}

TEST(F04baf, NonFiniteMatrixIsIllConditioned) {
  for (const double v : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    GeneralCall c;
    c.a[8] = v;
    vek::testing::UnitCapture capture;
    EXPECT_EQ(c.run(), 3) << v;
    EXPECT_EQ(c.rcond, 0.0) << v;
    EXPECT_EQ(c.errbnd, std::numeric_limits<double>::max()) << v;
    const std::vector<double> spd0 = {4, 2, 0, 2, 5, 1, 0, 1, v};
    std::vector<double> spd = spd0, b(3, 1.0);
    const int64_t n = 3, nrhs = 1;
    double rcond = -1, errbnd = -1;
    int64_t ifail = 1;
    f04bdf_("L", &n, &nrhs, spd.data(), &n, b.data(), &n, &rcond, &errbnd, &ifail, 1);
    // A diagonal of -infinity is a failed Cholesky step; NaN and +infinity pass it.
    EXPECT_EQ(ifail, v < 0 ? 2 : 3) << v;
    EXPECT_EQ(rcond, 0.0) << v;
  }
}

TEST(F04baf, ImpossibleWorkspaceIsAnAllocationFailure) {
  // Valid arguments for a matrix of 2^62 columns: the workspace cannot exist, and nothing of A is read.
  GeneralCall c;
  c.n = c.lda = c.ldb = INT64_C(1) << 62;
  c.nrhs = 0;
  vek::testing::UnitCapture capture;
  EXPECT_EQ(c.run(), -999);
  EXPECT_EQ(capture.lines(), report({"** Dynamic memory allocation failed."}, "F04BAF", -999));
  int64_t n = INT64_C(1) << 62, ifail = 1;
  double a[1] = {1};
  f01abf_(&n, a, &n, &ifail);
  EXPECT_EQ(ifail, -999);
}

TEST(F04bbf, BandSolutionMatchesTheDenseOne) {
  // A tridiagonal system (KL = KU = 1) solved as a band and as a dense matrix.
  const int64_t n = 30, kl = 1, ku = 1, nrhs = 1, ldab = 2 * kl + ku + 1;
  std::vector<double> dense(n * n, 0.0), ab(ldab * n, 0.0);
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = std::max<int64_t>(0, j - ku); i <= std::min(n - 1, j + kl); ++i) {
      const double v = i == j ? 4.0 + 0.1 * static_cast<double>(i) : -1.0 + 0.01 * static_cast<double>(i + j);
      dense[i + j * n] = v;
      ab[(kl + ku + i - j) + j * ldab] = v;
    }
  std::vector<double> x0(n);
  for (int64_t i = 0; i < n; ++i) x0[i] = std::sin(static_cast<double>(i));
  std::vector<double> b = times(dense, n, x0, nrhs), b_dense = b;
  std::vector<int64_t> ipiv(n);
  double rcond = 0, errbnd = 0, rcond_dense = 0, errbnd_dense = 0;
  int64_t ifail = -1;
  f04bbf_(&n, &kl, &ku, &nrhs, ab.data(), &ldab, ipiv.data(), b.data(), &n, &rcond, &errbnd, &ifail);
  ASSERT_EQ(ifail, 0);
  f04baf_(&n, &nrhs, dense.data(), &n, ipiv.data(), b_dense.data(), &n, &rcond_dense, &errbnd_dense, &ifail);
  ASSERT_EQ(ifail, 0);
  EXPECT_LE(max_abs_diff(b, x0), 10 * errbnd);
  EXPECT_LE(max_abs_diff(b, b_dense), 1e-14);
  EXPECT_NEAR(rcond, rcond_dense, 0.5 * rcond_dense) << "both are estimates of the same number";
}

TEST(F04bbf, EveryMessage) {
  struct Args {
    int64_t n = 3, kl = 1, ku = 1, nrhs = 1, ldab = 4, ldb = 3;
  };
  const std::vector<MessageCase<Args>> cases = {
      {[](Args& a) { a.n = -1; }, 1, {"** On entry, N = -1.", "** Constraint: N >= 0."}},
      {[](Args& a) { a.kl = -1; }, 1, {"** On entry, KL = -1.", "** Constraint: KL >= 0."}},
      {[](Args& a) { a.ku = -3; }, 1, {"** On entry, KU = -3.", "** Constraint: KU >= 0."}},
      {[](Args& a) { a.nrhs = -1; }, 1, {"** On entry, NRHS = -1.", "** Constraint: NRHS >= 0."}},
      {[](Args& a) { a.ldab = 3; }, 1,
       {"** On entry, LDAB = 3, KL = 1 and KU = 1.", "** Constraint: LDAB >= 2*KL+KU+1."}},
      {[](Args& a) { a.kl = INT64_MAX / 2; }, 1,
       {"** On entry, LDAB = 4, KL = 4611686018427387903 and KU = 1.", "** Constraint: LDAB >= 2*KL+KU+1."}},
      {[](Args& a) { a.ldb = 2; }, 1, {"** On entry, LDB = 2 and N = 3.", "** Constraint: LDB >= max(1,N)."}},
      {[](Args& a) { a.n = 0; }, 0, {}},
  };
  for (const auto& k : cases) {
    Args a;
    k.edit(a);
    std::vector<double> ab(12, 0.0), b(3, 1.0);
    for (int j = 0; j < 3; ++j) ab[2 + j * 4] = 2.0;  // the diagonal
    std::vector<int64_t> ipiv(3);
    double rcond = 0, errbnd = 0;
    int64_t ifail = -1;
    vek::testing::UnitCapture capture;
    f04bbf_(&a.n, &a.kl, &a.ku, &a.nrhs, ab.data(), &a.ldab, ipiv.data(), b.data(), &a.ldb, &rcond, &errbnd, &ifail);
    EXPECT_EQ(ifail, k.ifail);
    if (k.ifail == 0) {
      EXPECT_TRUE(capture.lines().empty());
      EXPECT_EQ(rcond, 1.0) << "an empty matrix is perfectly conditioned";
    } else {
      EXPECT_EQ(capture.lines(), report(k.message, "F04BBF", k.ifail));
    }
  }
}

TEST(F04bbf, SingularAndIllConditionedBands) {
  // Tridiagonal 3 by 3 matrices in band storage (KL = KU = 1, LDAB = 4): A(i,j) is ab[2 + i - j + 4 j].
  const auto band = [](const std::vector<double>& dense) {
    std::vector<double> ab(12, 0.0);
    for (int j = 0; j < 3; ++j)
      for (int i = std::max(0, j - 1); i <= std::min(2, j + 1); ++i) ab[2 + i - j + 4 * j] = dense[i + 3 * j];
    return ab;
  };
  const int64_t n = 3, kl = 1, ku = 1, nrhs = 1, ldab = 4;
  std::vector<int64_t> ipiv(3);
  double rcond = -1, errbnd = -1;
  int64_t ifail = -1;
  {
    // A zero first column: the first pivot is exactly zero whatever the row interchanges.
    std::vector<double> ab = band({0, 0, 0, 1, 2, 1, 0, 1, 3}), b(3, 1.0);
    vek::testing::UnitCapture capture;
    f04bbf_(&n, &kl, &ku, &nrhs, ab.data(), &ldab, ipiv.data(), b.data(), &n, &rcond, &errbnd, &ifail);
    EXPECT_EQ(ifail, 2);
    EXPECT_EQ(capture.lines(), report({"** The factor U is singular: U(1,1) is exactly zero.",
                                       "** No solution has been computed."},
                                      "F04BBF", 2));
  }
  {
    // Rows 1 and 2 differ by one unit in the last place, as in F04BAF's case.
    std::vector<double> ab = band({1, 1, 0, 1, 1 + 0x1p-52, 0, 0, 0, 1}), b(3, 1.0);
    ifail = -1;
    vek::testing::UnitCapture capture;
    f04bbf_(&n, &kl, &ku, &nrhs, ab.data(), &ldab, ipiv.data(), b.data(), &n, &rcond, &errbnd, &ifail);
    EXPECT_EQ(ifail, 3);
    const std::vector<std::string> lines = capture.lines();
    ASSERT_EQ(lines.size(), 4u);
    const std::string head = " ** A solution has been computed, but RCOND = ";
    ASSERT_EQ(lines[0].substr(0, head.size()), head);
    EXPECT_EQ(std::strtod(lines[0].c_str() + head.size(), nullptr), rcond) << "the shown value reads back";
    EXPECT_EQ(lines[1], " ** is less than machine precision: A is singular to working precision.");
    EXPECT_LT(rcond, 0x1p-53);
  }
}

TEST(F04bdf, SolvesWithEitherTriangleAndReportsEveryMessage) {
  const int64_t n = 3, nrhs = 1;
  const std::vector<double> spd = {4, 2, 0, 2, 5, 1, 0, 1, 3}, x0 = {1, -2, 0.5};
  for (const char* uplo : {"U", "l"}) {
    std::vector<double> a = spd, b = times(spd, n, x0, nrhs);
    double rcond = 0, errbnd = 0;
    int64_t ifail = -1;
    f04bdf_(uplo, &n, &nrhs, a.data(), &n, b.data(), &n, &rcond, &errbnd, &ifail, 1);
    EXPECT_EQ(ifail, 0) << uplo;
    EXPECT_LE(max_abs_diff(b, x0), 10 * errbnd) << uplo;
  }
  struct Case {
    const char* uplo;
    int64_t n, nrhs, lda, ldb;
    std::vector<double> a;
    int ifail;
    std::vector<std::string> message;
  };
  const std::vector<Case> cases = {
      {"x", 3, 1, 3, 3, spd, 1, {"** On entry, UPLO has an illegal value: UPLO = 'x'."}},
      {"U", -1, 1, 3, 3, spd, 1, {"** On entry, N = -1.", "** Constraint: N >= 0."}},
      {"U", 3, -4, 3, 3, spd, 1, {"** On entry, NRHS = -4.", "** Constraint: NRHS >= 0."}},
      {"U", 3, 1, 1, 3, spd, 1, {"** On entry, LDA = 1 and N = 3.", "** Constraint: LDA >= max(1,N)."}},
      {"L", 3, 1, 3, 2, spd, 1, {"** On entry, LDB = 2 and N = 3.", "** Constraint: LDB >= max(1,N)."}},
      {"U", 3, 1, 3, 3, {1, 2, 0, 2, 1, 0, 0, 0, 1}, 2,
       {"** The leading minor of order 2 of A is not positive definite.", "** No solution has been computed."}},
  };
  for (const Case& k : cases) {
    std::vector<double> a = k.a, b(3, 1.0);
    double rcond = 0, errbnd = 0;
    int64_t ifail = -1;
    vek::testing::UnitCapture capture;
    f04bdf_(k.uplo, &k.n, &k.nrhs, a.data(), &k.lda, b.data(), &k.ldb, &rcond, &errbnd, &ifail, 1);
    EXPECT_EQ(ifail, k.ifail);
    EXPECT_EQ(capture.lines(), report(k.message, "F04BDF", k.ifail));
  }
}

TEST(F01abf, InverseAndEveryMessage) {
  const int64_t n = 40;
  const std::vector<double> a0 = dominant_matrix(n, 21);
  std::vector<double> inv = a0;
  int64_t ifail = -1;
  f01abf_(&n, inv.data(), &n, &ifail);
  ASSERT_EQ(ifail, 0);
  const std::vector<double> product = times(a0, n, inv, n);
  double worst = 0;
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < n; ++i) worst = std::max(worst, std::fabs(product[i + j * n] - (i == j ? 1.0 : 0.0)));
  EXPECT_LT(worst, 1e-13);

  struct Case {
    int64_t n, lda;
    std::vector<double> a;
    int ifail;
    std::vector<std::string> message;
  };
  const std::vector<Case> cases = {
      {-1, 1, {1}, 1, {"** On entry, N = -1.", "** Constraint: N >= 0."}},
      {2, 1, {1, 2, 3, 4}, 1, {"** On entry, LDA = 1 and N = 2.", "** Constraint: LDA >= max(1,N)."}},
      {2, 2, {1, 2, 2, 4}, 2,
       {"** The factor U is singular: U(2,2) is exactly zero.", "** A has no inverse; it holds its LU factors on exit."}},
  };
  for (const Case& k : cases) {
    std::vector<double> a = k.a;
    int64_t f = -1;
    vek::testing::UnitCapture capture;
    f01abf_(&k.n, a.data(), &k.lda, &f);
    EXPECT_EQ(f, k.ifail);
    EXPECT_EQ(capture.lines(), report(k.message, "F01ABF", k.ifail));
  }
  // IFAIL = 1 on entry: the same failure, silently.
  std::vector<double> singular = {1, 2, 2, 4};
  int64_t two = 2, quiet = 1;
  vek::testing::UnitCapture capture;
  f01abf_(&two, singular.data(), &two, &quiet);
  EXPECT_EQ(quiet, 2);
  EXPECT_TRUE(capture.lines().empty());
}

}  // namespace
