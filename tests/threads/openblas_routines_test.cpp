// Routines built on OpenBLAS (the library links the OpenMP build of OpenBLAS and keeps it on the calling
// thread): the matrix product (f06yaf, tiled by the library), the Cholesky factorisation (f07fdf, blocked by
// the library over the tiled routines) and the LU solve (f07aef, OpenBLAS's), with the LU factors of f07adf.
#include <gtest/gtest.h>
#include <omp.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "team.h"
#include "vek.h"

namespace vek_threads_test {
namespace {

std::vector<double> uniform(size_t size, unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> v(size);
  for (double& x : v) x = u(gen);
  return v;
}

bool same_bits(const std::vector<double>& x, const std::vector<double>& y) {
  return x.size() == y.size() && !std::memcmp(x.data(), y.data(), x.size() * sizeof(double));
}

constexpr int64_t kN = 520;  // above OpenBLAS's thresholds for threading each of these routines

struct Results {
  std::vector<double> product, cholesky, solution;
  int64_t cholesky_info = -1, solve_info = -1;
};

// The routines whose results differ from the reference's, by name; empty when all agree.
std::string differing(const Results& r, const Results& reference) {
  std::string names;
  if (!same_bits(r.product, reference.product)) names += " f06yaf";
  if (!same_bits(r.cholesky, reference.cholesky) || r.cholesky_info != reference.cholesky_info) names += " f07fdf";
  if (!same_bits(r.solution, reference.solution) || r.solve_info != reference.solve_info) names += " f07aef";
  return names;
}

Results compute(unsigned seed) {
  const int64_t n = kN, nrhs = 40;
  const std::vector<double> a = uniform(static_cast<size_t>(n * n), seed), b = uniform(static_cast<size_t>(n * n), seed + 1);
  Results r;
  // C = A B, then the symmetric positive definite S = A A^T + n I factorised by Cholesky.
  r.product.assign(static_cast<size_t>(n * n), 0.0);
  const double one = 1.0, zero = 0.0;
  f06yaf_("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, r.product.data(), &n, 1, 1);
  r.cholesky.assign(static_cast<size_t>(n * n), 0.0);
  f06yaf_("N", "T", &n, &n, &n, &one, a.data(), &n, a.data(), &n, &zero, r.cholesky.data(), &n, 1, 1);
  for (int64_t i = 0; i < n; ++i) r.cholesky[static_cast<size_t>(i + i * n)] += static_cast<double>(n);
  f07fdf_("L", &n, r.cholesky.data(), &n, &r.cholesky_info, 1);
  // The LU factors of A (f07adf) and a solve with many right-hand sides.
  std::vector<double> lu = a;
  std::vector<int64_t> ipiv(static_cast<size_t>(n));
  int64_t info = -1;
  f07adf_(&n, &n, lu.data(), &n, ipiv.data(), &info);
  r.solution.assign(b.begin(), b.begin() + n * nrhs);
  f07aef_("N", &n, &nrhs, lu.data(), &n, ipiv.data(), r.solution.data(), &n, &r.solve_info, 1);
  return r;
}

using OpenBlasRoutines = TeamTest;

// OpenBLAS runs on the calling thread only; the library shares its tiles (the product) or panels (the LU)
// among the team, cut the same way for every team: the results are bit for bit those of one thread.
TEST_F(OpenBlasRoutines, TeamSizeDoesNotChangeTheResults) {
  set_threads(1);
  const Results serial = compute(7);
  EXPECT_EQ(serial.cholesky_info, 0);
  EXPECT_EQ(serial.solve_info, 0);
  for (int64_t team : kTeams) {
    set_threads(team);
    EXPECT_EQ(differing(compute(7), serial), "") << team << " threads";
  }
}

// Inside a caller's active region OpenBLAS runs serially: the results of a team of one. Caller threads that
// are not OpenMP threads each start their own teams: the results of a serial caller with the same team.
TEST_F(OpenBlasRoutines, InsideACallersRegionAndFromConcurrentCallers) {
  constexpr int kCallers = 4;
  set_threads(1);
  std::vector<Results> alone, paired;
  for (int t = 0; t < kCallers; ++t) alone.push_back(compute(30u + t));
  set_threads(2);
  for (int t = 0; t < kCallers; ++t) paired.push_back(compute(30u + t));
  for (bool nesting : {false, true}) {
    set_nesting(nesting);
    std::vector<Results> inside(2);
#pragma omp parallel num_threads(2)
    inside[static_cast<size_t>(omp_get_thread_num())] = compute(30u + omp_get_thread_num());
    for (int t = 0; t < 2; ++t)
      EXPECT_EQ(differing(inside[static_cast<size_t>(t)], alone[static_cast<size_t>(t)]), "") << "nesting " << nesting;
  }
  for (int64_t team : {int64_t{1}, int64_t{2}}) {
    std::vector<Results> concurrent(kCallers);
    on_caller_threads(kCallers, [&](int t) {
      set_threads(team);
      concurrent[static_cast<size_t>(t)] = compute(30u + t);
    });
    const std::vector<Results>& serial = team == 1 ? alone : paired;
    for (int t = 0; t < kCallers; ++t)
      EXPECT_EQ(differing(concurrent[static_cast<size_t>(t)], serial[static_cast<size_t>(t)]), "")
          << "caller " << t << ", team " << team;
  }
}

}  // namespace
}  // namespace vek_threads_test
