// Linear algebra whose results do not depend on the thread count: the level-3 BLAS (tiled, tiles shared
// among the team) and the LAPACK routines whose level-3 calls go to them, bit for bit with teams of 1 to 4
// and from inside a caller's parallel region. The tiled products are also checked against the dependency's
// untiled routine, to rounding (a misplaced tile would not be).
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "linalg/level3_symbols.h"
#include "team.h"
#include "vek.h"

namespace vek_threads_test {
namespace {

std::vector<double> uniform(int64_t size, unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> v(static_cast<size_t>(size));
  for (double& x : v) x = u(gen);
  return v;
}

// Complex arrays are held as pairs of doubles.
vek_complex* as_complex(std::vector<double>& v) { return reinterpret_cast<vek_complex*>(v.data()); }

bool same_bits(const std::vector<double>& x, const std::vector<double>& y) {
  return x.size() == y.size() && !std::memcmp(x.data(), y.data(), x.size() * sizeof(double));
}

double relative_difference(const std::vector<double>& x, const std::vector<double>& reference) {
  double diff = 0, size = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    diff = std::max(diff, std::fabs(x[i] - reference[i]));
    size = std::max(size, std::fabs(reference[i]));
  }
  return diff / size;
}

// One computation: its result as doubles, from the library's routine and from the dependency's own.
struct Case {
  std::string name;
  std::function<std::vector<double>()> library, dependency;
};

// C = alpha op(A) op(B) + beta C through dgemm_, m by n with inner dimension k.
Case gemm_case(const char* ta, const char* tb, int64_t m, int64_t n, int64_t k) {
  const int64_t lda = (*ta == 'N' ? m : k) + 3, ldb = (*tb == 'N' ? k : n) + 1, ldc = m + 2;
  const auto a = std::make_shared<std::vector<double>>(uniform(lda * (*ta == 'N' ? k : m), 1));
  const auto b = std::make_shared<std::vector<double>>(uniform(ldb * (*tb == 'N' ? n : k), 2));
  const auto c = std::make_shared<std::vector<double>>(uniform(ldc * n, 3));
  const auto run = [=](auto routine) {
    return [=] {
      std::vector<double> r = *c;
      const double alpha = 0.75, beta = -1.25;
      routine(ta, tb, &m, &n, &k, &alpha, a->data(), &lda, b->data(), &ldb, &beta, r.data(), &ldc, 1, 1);
      return r;
    };
  };
  return {std::string("dgemm ") + ta + tb + " " + std::to_string(m) + "x" + std::to_string(n) + "x" +
              std::to_string(k),
          run(dgemm_), run(vekob_dgemm_)};
}

// The other real level-3 routines on one set of operands (n by n, B and C n by n2).
std::vector<Case> real_level3_cases(int64_t n, int64_t n2) {
  const auto a = std::make_shared<std::vector<double>>(uniform(n * n, 4));
  const auto b = std::make_shared<std::vector<double>>(uniform(n * n2, 5));
  const auto c = std::make_shared<std::vector<double>>(uniform(n * n2, 6));
  // A well conditioned triangle for the solves.
  for (int64_t i = 0; i < n; ++i) (*a)[static_cast<size_t>(i + i * n)] = static_cast<double>(n);
  const double alpha = 0.5, beta = 2.0;
  std::vector<Case> cases;
  for (const char* side : {"L", "R"}) {
    const int64_t m = *side == 'L' ? n : n2, cols = *side == 'L' ? n2 : n;  // B, C are m by cols, ld m
    const auto symm = [=](auto routine) {
      return [=] {
        std::vector<double> r = *c;
        routine(side, "U", &m, &cols, &alpha, a->data(), &n, b->data(), &m, &beta, r.data(), &m, 1, 1);
        return r;
      };
    };
    cases.push_back({std::string("dsymm ") + side, symm(dsymm_), symm(vekob_dsymm_)});
    for (const char* trans : {"N", "T"}) {
      const auto tri = [=](auto routine) {
        return [=] {
          std::vector<double> r = *b;
          routine(side, "L", trans, "N", &m, &cols, &alpha, a->data(), &n, r.data(), &m, 1, 1, 1, 1);
          return r;
        };
      };
      cases.push_back({std::string("dtrmm ") + side + trans, tri(dtrmm_), tri(vekob_dtrmm_)});
      cases.push_back({std::string("dtrsm ") + side + trans, tri(dtrsm_), tri(vekob_dtrsm_)});
    }
  }
  for (const char* uplo : {"U", "L"}) {
    for (const char* trans : {"N", "T"}) {
      const int64_t k = n2, lda = *trans == 'N' ? n : k;  // A is n by k or k by n
      const auto syrk = [=](auto routine) {
        return [=] {
          std::vector<double> r = *a;
          routine(uplo, trans, &n, &k, &alpha, b->data(), &lda, &beta, r.data(), &n, 1, 1);
          return r;
        };
      };
      const auto syr2k = [=](auto routine) {
        return [=] {
          std::vector<double> r = *a;
          routine(uplo, trans, &n, &k, &alpha, b->data(), &lda, c->data(), &lda, &beta, r.data(), &n, 1, 1);
          return r;
        };
      };
      cases.push_back({std::string("dsyrk ") + uplo + trans, syrk(dsyrk_), syrk(vekob_dsyrk_)});
      cases.push_back({std::string("dsyr2k ") + uplo + trans, syr2k(dsyr2k_), syr2k(vekob_dsyr2k_)});
    }
  }
  return cases;
}

// The complex ones: zgemm, zhemm, zherk, zher2k, ztrsm (n by n, B and C n by n2).
std::vector<Case> complex_level3_cases(int64_t n, int64_t n2) {
  const auto a = std::make_shared<std::vector<double>>(uniform(2 * n * n, 7));
  const auto b = std::make_shared<std::vector<double>>(uniform(2 * n * n2, 8));
  const auto c = std::make_shared<std::vector<double>>(uniform(2 * n * n2, 9));
  for (int64_t i = 0; i < n; ++i) (*a)[static_cast<size_t>(2 * (i + i * n))] = static_cast<double>(n);
  const vek_complex alpha{0.5, -0.25}, beta{1.5, 0.5};
  const double ralpha = 0.5, rbeta = 2.0;
  std::vector<Case> cases;
  const auto gemm = [=](auto routine) {
    return [=] {
      std::vector<double> r = *c;
      routine("C", "N", &n, &n2, &n, &alpha, as_complex(*a), &n, as_complex(*b), &n, &beta, as_complex(r), &n, 1, 1);
      return r;
    };
  };
  const auto hemm = [=](auto routine) {
    return [=] {
      std::vector<double> r = *c;
      routine("L", "L", &n, &n2, &alpha, as_complex(*a), &n, as_complex(*b), &n, &beta, as_complex(r), &n, 1, 1);
      return r;
    };
  };
  const auto herk = [=](auto routine) {
    return [=] {
      std::vector<double> r = *a;
      routine("L", "N", &n, &n2, &ralpha, as_complex(*b), &n, &rbeta, as_complex(r), &n, 1, 1);
      return r;
    };
  };
  const auto her2k = [=](auto routine) {
    return [=] {
      std::vector<double> r = *a;
      routine("U", "C", &n2, &n, &alpha, as_complex(*b), &n, as_complex(*c), &n, &rbeta, as_complex(r), &n2, 1, 1);
      return r;
    };
  };
  const auto trsm = [=](auto routine) {
    return [=] {
      std::vector<double> r = *b;
      routine("L", "U", "C", "N", &n, &n2, &alpha, as_complex(*a), &n, as_complex(r), &n, 1, 1, 1, 1);
      return r;
    };
  };
  cases.push_back({"zgemm CN", gemm(zgemm_), gemm(vekob_zgemm_)});
  cases.push_back({"zhemm LL", hemm(zhemm_), hemm(vekob_zhemm_)});
  cases.push_back({"zherk LN", herk(zherk_), herk(vekob_zherk_)});
  cases.push_back({"zher2k UC", her2k(zher2k_), her2k(vekob_zher2k_)});
  cases.push_back({"ztrsm LUC", trsm(ztrsm_), trsm(vekob_ztrsm_)});
  return cases;
}

// Each case bit for bit the same with every team and inside a caller's region, and within rounding of the
// dependency's untiled result.
void expect_reproducible(const std::vector<Case>& cases, double tolerance) {
  for (const Case& c : cases) {
    set_threads(1);
    const std::vector<double> serial = c.library();
    EXPECT_LT(relative_difference(serial, c.dependency()), tolerance) << c.name;
    for (int64_t team : kTeams) {
      set_threads(team);
      EXPECT_TRUE(same_bits(c.library(), serial)) << c.name << ", " << team << " threads";
    }
    std::vector<std::vector<double>> inside(2);
#pragma omp parallel num_threads(2)
    inside[static_cast<size_t>(omp_get_thread_num())] = c.library();
    for (const auto& r : inside) EXPECT_TRUE(same_bits(r, serial)) << c.name << ", inside a parallel region";
  }
}

using ReproducibleLinalg = TeamTest;

TEST_F(ReproducibleLinalg, MatrixProductsAtAwkwardAndRectangularSizes) {
  std::vector<Case> cases;
  for (int64_t n : {333, 1001, 2049}) cases.push_back(gemm_case("N", "N", n, n, n));
  cases.push_back(gemm_case("T", "N", 1500, 70, 900));
  cases.push_back(gemm_case("N", "T", 97, 3001, 400));
  cases.push_back(gemm_case("T", "T", 2049, 333, 1001));
  expect_reproducible(cases, 1e-14);
}

TEST_F(ReproducibleLinalg, OtherLevel3RoutinesRealAndComplex) {
  expect_reproducible(real_level3_cases(700, 530), 1e-13);
  expect_reproducible(complex_level3_cases(600, 450), 1e-13);
}

// The factorisations and decompositions of one n = 1000 matrix: their outputs joined into one vector.
std::vector<double> decompositions(const std::vector<double>& a, const std::vector<double>& spd, int64_t n) {
  std::vector<double> out;
  const auto keep = [&out](const std::vector<double>& v) { out.insert(out.end(), v.begin(), v.end()); };
  int64_t info = -1;
  std::vector<double> lu = a;
  std::vector<int64_t> ipiv(static_cast<size_t>(n));
  dgetrf_(&n, &n, lu.data(), &n, ipiv.data(), &info);
  keep(lu);
  out.push_back(static_cast<double>(info));
  std::vector<double> chol = spd;
  dpotrf_("L", &n, chol.data(), &n, &info, 1);
  keep(chol);
  out.push_back(static_cast<double>(info));
  // A driver of the dependency's LAPACK whose factorisation is sent to the library's Cholesky.
  std::vector<double> pos = spd, rhs(a.begin(), a.begin() + n);
  const int64_t one = 1;
  dposv_("U", &n, &one, pos.data(), &n, rhs.data(), &n, &info, 1);
  keep(pos);
  keep(rhs);
  out.push_back(static_cast<double>(info));
  std::vector<double> qr = a, tau(static_cast<size_t>(n)), work(1);
  int64_t lwork = -1;
  dgeqrf_(&n, &n, qr.data(), &n, tau.data(), work.data(), &lwork, &info);
  lwork = static_cast<int64_t>(work[0]);
  work.resize(static_cast<size_t>(lwork));
  dgeqrf_(&n, &n, qr.data(), &n, tau.data(), work.data(), &lwork, &info);
  keep(qr);
  keep(tau);
  std::vector<double> eig = spd, w(static_cast<size_t>(n));
  std::vector<int64_t> iwork(1);
  int64_t liwork = -1;
  lwork = -1;
  dsyevd_("V", "U", &n, eig.data(), &n, w.data(), work.data(), &lwork, iwork.data(), &liwork, &info, 1, 1);
  lwork = static_cast<int64_t>(work[0]);
  liwork = iwork[0];
  work.resize(static_cast<size_t>(lwork));
  iwork.resize(static_cast<size_t>(liwork));
  dsyevd_("V", "U", &n, eig.data(), &n, w.data(), work.data(), &lwork, iwork.data(), &liwork, &info, 1, 1);
  keep(eig);
  keep(w);
  out.push_back(static_cast<double>(info));
  std::vector<double> svd = a, s(static_cast<size_t>(n)), u(static_cast<size_t>(n * n)), vt(u.size());
  iwork.assign(static_cast<size_t>(8 * n), 0);
  lwork = -1;
  dgesdd_("S", &n, &n, svd.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork, iwork.data(),
          &info, 1);
  lwork = static_cast<int64_t>(work[0]);
  work.resize(static_cast<size_t>(lwork));
  dgesdd_("S", &n, &n, svd.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork, iwork.data(),
          &info, 1);
  keep(s);
  keep(u);
  keep(vt);
  out.push_back(static_cast<double>(info));
  return out;
}

TEST_F(ReproducibleLinalg, FactorisationsAndDecompositionsAtOneThousand) {
  const int64_t n = 1000;
  const std::vector<double> a = uniform(n * n, 11);
  // S = A A^T / n + I, positive definite.
  std::vector<double> spd(a.size());
  const double scale = 1.0 / static_cast<double>(n), zero = 0.0;
  set_threads(1);
  dgemm_("N", "T", &n, &n, &n, &scale, a.data(), &n, a.data(), &n, &zero, spd.data(), &n, 1, 1);
  for (int64_t i = 0; i < n; ++i) spd[static_cast<size_t>(i + i * n)] += 1.0;
  const std::vector<double> serial = decompositions(a, spd, n);
  EXPECT_EQ(serial[static_cast<size_t>(n * n)], 0.0) << "dgetrf INFO";
  for (int64_t team : kTeams) {
    if (team == 1) continue;
    set_threads(team);
    EXPECT_TRUE(same_bits(decompositions(a, spd, n), serial)) << team << " threads";
  }
}

// The blocked Cholesky factorisation against the dependency's unblocked one: both triangles, several blocks,
// a matrix that stops being positive definite in its second block, and the argument checks.
TEST_F(ReproducibleLinalg, CholeskyFactorAgainstTheDependency) {
  const int64_t n = 600;
  const std::vector<double> a = uniform(n * n, 12);
  std::vector<double> spd(a.size());
  const double scale = 1.0 / static_cast<double>(n), zero = 0.0;
  set_threads(2);
  dgemm_("N", "T", &n, &n, &n, &scale, a.data(), &n, a.data(), &n, &zero, spd.data(), &n, 1, 1);
  for (int64_t i = 0; i < n; ++i) spd[static_cast<size_t>(i + i * n)] += 1.0;
  for (const char* uplo : {"L", "U"}) {
    std::vector<double> ours = spd, theirs = spd;
    int64_t info = -1, their_info = -1;
    dpotrf_(uplo, &n, ours.data(), &n, &info, 1);
    vekob_dpotrf_(uplo, &n, theirs.data(), &n, &their_info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(their_info, 0);
    EXPECT_LT(relative_difference(ours, theirs), 1e-13) << uplo;
    // Not positive definite from order 401 on (the second block of 256).
    std::vector<double> broken = spd;
    broken[static_cast<size_t>(400 + 400 * n)] = -1.0;
    dpotrf_(uplo, &n, broken.data(), &n, &info, 1);
    EXPECT_EQ(info, 401) << uplo;
  }
  std::vector<double> untouched = spd;
  int64_t info = 0;
  const int64_t negative = -1, small = n - 1;
  dpotrf_("X", &n, untouched.data(), &n, &info, 1);
  EXPECT_EQ(info, -1);
  dpotrf_("L", &negative, untouched.data(), &n, &info, 1);
  EXPECT_EQ(info, -2);
  dpotrf_("L", &n, untouched.data(), &small, &info, 1);
  EXPECT_EQ(info, -4);
  EXPECT_TRUE(same_bits(untouched, spd));
}

}  // namespace
}  // namespace vek_threads_test
