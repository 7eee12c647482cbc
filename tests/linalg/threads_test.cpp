// The library's LU and Cholesky factorisations and threads: the team size follows x06aaf, the factors do not
// depend on it, and a call from inside a parallel region runs serially with the same results. The complex
// factors are also checked by their backward error and against the dependency's own factorisation, and the
// simple drivers are checked to factorise through the library's routines.
#include <algorithm>
#include <complex>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <omp.h>

#include "linalg/level3_symbols.h"
#include "test_matrices.h"
#include "vek.h"

namespace {

struct Factors {
  std::vector<double> a;
  std::vector<int64_t> ipiv;
  int64_t info = -1;
};

Factors factorise(int64_t n) {
  Factors f{random_matrix(n, n, n, 3), std::vector<int64_t>(static_cast<size_t>(n)), -1};
  f07adf_(&n, &n, f.a.data(), &n, f.ipiv.data(), &f.info);
  return f;
}

bool same(const Factors& x, const Factors& y) {
  return x.info == y.info && x.ipiv == y.ipiv && !std::memcmp(x.a.data(), y.a.data(), x.a.size() * sizeof(double));
}

class ThreadCount : public testing::Test {
 protected:
  void SetUp() override { saved_ = omp_get_max_threads(); }
  void TearDown() override { set_threads(saved_); }
  static void set_threads(int64_t num) {
    int64_t ifail = 1;
    x06aaf_(&num, &ifail);
    ASSERT_EQ(ifail, 0);
  }
  int64_t saved_ = 1;
};

TEST_F(ThreadCount, FollowsX06aafAndLeavesTheFactorsUnchanged) {
  // The team follows x06aaf (f07adf asks the thread-control query); the factors and a solve with them do not
  // depend on it.
  const int64_t n = 1001;  // four panels, chunk edges not aligned with any team size
  set_threads(1);
  const Factors serial = factorise(n);
  for (int threads : {2, 3}) {
    set_threads(threads);
    const Factors parallel = factorise(n);
    int64_t nrhs = 1, info = -1;
    std::vector<double> b(static_cast<size_t>(n), 1.0);
    f07aef_("N", &n, &nrhs, parallel.a.data(), &n, parallel.ipiv.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_TRUE(same(serial, parallel)) << threads << " threads: the factors do not depend on the team";
  }
  EXPECT_EQ(serial.info, 0);
}

TEST_F(ThreadCount, InsideAParallelRegionEachCallIsSerial) {
  const int64_t n = 320;
  set_threads(2);
  const Factors reference = factorise(n);
  std::vector<Factors> inside(2);
  std::vector<int> in_parallel(2, 0);
#pragma omp parallel num_threads(2)
  {
    const int t = omp_get_thread_num();
    in_parallel[t] = omp_in_parallel();
    inside[t] = factorise(n);
  }
  for (int t = 0; t < 2; ++t) {
    EXPECT_TRUE(same(reference, inside[t])) << "thread " << t;
  }
  EXPECT_TRUE(in_parallel[0] || omp_get_max_threads() == 1);
}

// ---- complex factorisations ----------------------------------------------------------------------------

using Complex = std::complex<double>;
vek_complex* z(std::vector<Complex>& v) { return reinterpret_cast<vek_complex*>(v.data()); }

// An n by n complex matrix of entries uniform in the square [-1, 1)^2; when `hermitian`, Hermitian with the
// diagonal 2n, positive definite since every row's off-diagonal moduli sum to less than sqrt(2) (n - 1).
std::vector<Complex> complex_matrix(int64_t n, bool hermitian) {
  const std::vector<double> parts = random_matrix(2 * n, n, 2 * n, 5);
  std::vector<Complex> a(static_cast<size_t>(n * n));
  for (size_t i = 0; i < a.size(); ++i) a[i] = {parts[2 * i], parts[2 * i + 1]};
  if (hermitian)
    for (int64_t j = 0; j < n; ++j) {
      for (int64_t i = 0; i < j; ++i) a[static_cast<size_t>(i + j * n)] = std::conj(a[static_cast<size_t>(j + i * n)]);
      a[static_cast<size_t>(j + j * n)] = static_cast<double>(2 * n);
    }
  return a;
}

// 'G': the LU factorisation (zgetrf); 'L', 'U': the Cholesky factorisation of that triangle (zpotrf).
struct ZFactors {
  std::vector<Complex> a;
  std::vector<int64_t> ipiv;
  int64_t info = -1;
};

ZFactors zfactorise(char kind, int64_t n, std::vector<Complex> a, bool dependency = false) {
  ZFactors f{std::move(a), std::vector<int64_t>(static_cast<size_t>(n)), -1};
  const char uplo[2] = {kind, '\0'};
  if (kind == 'G') (dependency ? vekob_zgetrf_ : zgetrf_)(&n, &n, z(f.a), &n, f.ipiv.data(), &f.info);
  else (dependency ? vekob_zpotrf_ : zpotrf_)(uplo, &n, z(f.a), &n, &f.info, 1);
  return f;
}

bool same(const ZFactors& x, const ZFactors& y) {
  return x.info == y.info && x.ipiv == y.ipiv && !std::memcmp(x.a.data(), y.a.data(), x.a.size() * sizeof(Complex));
}

double max_modulus(const std::vector<Complex>& v) {
  double m = 0;
  for (const Complex& x : v) m = std::max(m, std::abs(x));
  return m;
}

// max |P A - L U| (or |A - L L^H|, |A - U^H U|) over n eps max |A|, the product formed by zgemm.
double backward_error(char kind, int64_t n, std::vector<Complex> a, const ZFactors& f) {
  std::vector<Complex> left(a.size()), right(a.size()), product(a.size());
  const auto at = [n](int64_t i, int64_t j) { return static_cast<size_t>(i + j * n); };
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < n; ++i) {
      const Complex v = f.a[at(i, j)];
      if (kind == 'G') {
        left[at(i, j)] = i > j ? v : i == j ? 1.0 : 0.0;
        right[at(i, j)] = i <= j ? v : 0.0;
      } else if (kind == 'L' && i >= j) {
        left[at(i, j)] = v;
        right[at(j, i)] = std::conj(v);
      } else if (kind == 'U' && i <= j) {
        right[at(i, j)] = v;
        left[at(j, i)] = std::conj(v);
      }
    }
  if (kind == 'G')
    for (int64_t k = 0; k < n; ++k)
      for (int64_t j = 0; j < n; ++j) std::swap(a[at(k, j)], a[at(f.ipiv[static_cast<size_t>(k)] - 1, j)]);
  const vek_complex one{1, 0}, zero{0, 0};
  zgemm_("N", "N", &n, &n, &n, &one, z(left), &n, z(right), &n, &zero, z(product), &n, 1, 1);
  double err = 0;
  for (size_t i = 0; i < a.size(); ++i) err = std::max(err, std::abs(a[i] - product[i]));
  return err / (static_cast<double>(n) * std::numeric_limits<double>::epsilon() * max_modulus(a));
}

// max |x - y| / max |y|.
double relative_difference(const std::vector<Complex>& x, const std::vector<Complex>& y) {
  double d = 0;
  for (size_t i = 0; i < x.size(); ++i) d = std::max(d, std::abs(x[i] - y[i]));
  return d / max_modulus(y);
}

TEST_F(ThreadCount, ComplexFactorsAreTheSameWithAnyTeamAndMatchTheDependency) {
  struct Case {
    char kind;
    int64_t n;  // 333 and 1001: two and four blocks of 256, edges not aligned with any team
  };
  for (const Case c : {Case{'G', 333}, Case{'G', 1000}, Case{'G', 1001}, Case{'U', 333}, Case{'L', 1000},
                       Case{'U', 1001}}) {
    SCOPED_TRACE(std::string(1, c.kind) + " n = " + std::to_string(c.n));
    const std::vector<Complex> a = complex_matrix(c.n, c.kind != 'G');
    set_threads(1);
    const ZFactors serial = zfactorise(c.kind, c.n, a);
    for (int threads : {2, 3, 4}) {
      set_threads(threads);
      EXPECT_TRUE(same(serial, zfactorise(c.kind, c.n, a))) << threads << " threads";
    }
    std::vector<ZFactors> inside(2);
#pragma omp parallel num_threads(2)
    inside[static_cast<size_t>(omp_get_thread_num())] = zfactorise(c.kind, c.n, a);
    for (const ZFactors& f : inside) EXPECT_TRUE(same(serial, f)) << "inside a parallel region";
    EXPECT_EQ(serial.info, 0);
    // LAPACK's testers accept 30; the factorisations measure below 1.
    EXPECT_LT(backward_error(c.kind, c.n, a, serial), 4.0);
    // Blocked differently from the dependency's, so equal to rounding: the same pivots, factors within a few
    // hundred units of n eps.
    const ZFactors theirs = zfactorise(c.kind, c.n, a, true);
    EXPECT_EQ(serial.ipiv, theirs.ipiv);
    EXPECT_LT(relative_difference(serial.a, theirs.a), 1e-10);
  }
}

TEST_F(ThreadCount, ComplexBreakdownsReportTheDependencysInfo) {
  // A zero column stays exactly zero through the elimination (its pivot is exactly zero); a diagonal of -1
  // ends the Cholesky factorisation at that order. In the first block and in the second.
  const int64_t n = 333;
  set_threads(2);
  for (char kind : {'G', 'L', 'U'}) {
    for (int64_t at : {100, 300}) {
      std::vector<Complex> a = complex_matrix(n, kind != 'G');
      if (kind == 'G') std::fill_n(a.begin() + at * n, n, Complex{});
      else a[static_cast<size_t>(at + at * n)] = -1.0;
      const ZFactors ours = zfactorise(kind, n, a), theirs = zfactorise(kind, n, a, true);
      EXPECT_EQ(ours.info, theirs.info) << kind << " at " << at;
      EXPECT_EQ(ours.info, at + 1) << kind << " at " << at;
    }
  }
}

TEST_F(ThreadCount, SimpleDriversFactoriseThroughTheLibrarysRoutines) {
  // The factors zgesv, zposv and dgesv return are bit for bit those of zgetrf, zpotrf and dgetrf, and the
  // solutions those of the solves with them; the dependency's own factorisations are blocked differently.
  const int64_t n = 600, nrhs = 2;
  set_threads(2);
  int64_t info = -1;
  const std::vector<Complex> general = complex_matrix(n, false), hermitian = complex_matrix(n, true);
  std::vector<Complex> rhs(general.begin(), general.begin() + n * nrhs);

  const ZFactors lu = zfactorise('G', n, general);
  std::vector<Complex> a = general, x = rhs, y = rhs;
  std::vector<int64_t> ipiv(static_cast<size_t>(n));
  zgesv_(&n, &nrhs, z(a), &n, ipiv.data(), z(x), &n, &info);
  EXPECT_EQ(info, 0);
  EXPECT_TRUE(same(lu, ZFactors{a, ipiv, info})) << "zgesv";
  zgetrs_("N", &n, &nrhs, z(a), &n, ipiv.data(), z(y), &n, &info, 1);
  EXPECT_EQ(x, y) << "zgesv";

  const ZFactors cholesky = zfactorise('L', n, hermitian);
  a = hermitian, x = rhs, y = rhs;
  zposv_("L", &n, &nrhs, z(a), &n, z(x), &n, &info, 1);
  EXPECT_TRUE(same(cholesky, ZFactors{a, std::vector<int64_t>(static_cast<size_t>(n)), info})) << "zposv";
  zpotrs_("L", &n, &nrhs, z(a), &n, z(y), &n, &info, 1);
  EXPECT_EQ(x, y) << "zposv";

  std::vector<double> d = random_matrix(n, n, n, 7), e = d, bd(d.begin(), d.begin() + n * nrhs), be = bd;
  std::vector<int64_t> ipiv_e(static_cast<size_t>(n));
  dgesv_(&n, &nrhs, d.data(), &n, ipiv.data(), bd.data(), &n, &info);
  dgetrf_(&n, &n, e.data(), &n, ipiv_e.data(), &info);
  dgetrs_("N", &n, &nrhs, e.data(), &n, ipiv_e.data(), be.data(), &n, &info, 1);
  EXPECT_TRUE(d == e && ipiv == ipiv_e && bd == be) << "dgesv";
}

}  // namespace
