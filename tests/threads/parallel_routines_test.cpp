// The routines with parallel regions of their own, the sort (m01caf, m01cbf) and the LU factorisation
// (f07adf): bit-identical results for teams of 1 to 4 threads, when called from inside a caller's parallel
// region (nesting off and on), and when several caller threads call them at once on their own data.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "team.h"
#include "vek.h"

namespace vek_threads_test {
namespace {

// Large enough for a team of four on the sort's parallel path (at least 2^15 numbers a thread), with
// duplicates, signed zeros and NaNs.
std::vector<double> sort_input(unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_int_distribution<int> pick(0, 999);
  std::vector<double> v(300001);
  for (double& x : v) {
    const int k = pick(gen);
    x = k == 0 ? -0.0 : k == 1 ? 0.0 : k == 2 ? std::numeric_limits<double>::quiet_NaN() : (k - 500) * 0.25;
  }
  return v;
}

std::vector<int64_t> int_sort_input(unsigned seed) {
  std::mt19937_64 gen(seed);
  std::vector<int64_t> v(300001);
  for (int64_t& x : v) x = static_cast<int64_t>(gen() % 100000) - 50000;
  return v;
}

struct Sorted {
  std::vector<double> real;
  std::vector<int64_t> integer;
  int64_t ifail_real = -1, ifail_integer = -1;
  bool operator==(const Sorted& o) const {
    return ifail_real == o.ifail_real && ifail_integer == o.ifail_integer && integer == o.integer &&
           real.size() == o.real.size() && !std::memcmp(real.data(), o.real.data(), real.size() * sizeof(double));
  }
};

Sorted sort_both(const char* order, unsigned seed) {
  Sorted s{sort_input(seed), int_sort_input(seed)};
  const int64_t m1 = 1, m2 = static_cast<int64_t>(s.real.size());
  s.ifail_real = 1;
  m01caf_(s.real.data(), &m1, &m2, order, &s.ifail_real, 1);
  s.ifail_integer = 1;
  m01cbf_(s.integer.data(), &m1, &m2, order, &s.ifail_integer, 1);
  return s;
}

struct Factors {
  std::vector<double> a;
  std::vector<int64_t> ipiv;
  int64_t info = -1;
  bool operator==(const Factors& o) const {
    return info == o.info && ipiv == o.ipiv && !std::memcmp(a.data(), o.a.data(), a.size() * sizeof(double));
  }
};

// Three panels and a partial chunk; a zero column makes INFO positive as well.
Factors factorise(unsigned seed, bool singular = false) {
  const int64_t n = 700;
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Factors f{std::vector<double>(static_cast<size_t>(n * n)), std::vector<int64_t>(static_cast<size_t>(n)), -1};
  for (double& x : f.a) x = u(gen);
  if (singular)
    for (int64_t i = 0; i < n; ++i) f.a[static_cast<size_t>(i + 300 * n)] = 0.0;
  f07adf_(&n, &n, f.a.data(), &n, f.ipiv.data(), &f.info);
  return f;
}

using ParallelRoutines = TeamTest;

TEST_F(ParallelRoutines, SortIsTheSameForEveryTeamSize) {
  set_threads(1);
  const Sorted ascending = sort_both("A", 1), descending = sort_both("D", 2);
  EXPECT_EQ(ascending.ifail_real, 0);
  EXPECT_TRUE(std::isnan(ascending.real.back()));
  for (int64_t team : kTeams) {
    set_threads(team);
    EXPECT_TRUE(sort_both("A", 1) == ascending) << team << " threads";
    EXPECT_TRUE(sort_both("D", 2) == descending) << team << " threads";
  }
}

TEST_F(ParallelRoutines, LuFactorsAreTheSameForEveryTeamSize) {
  set_threads(1);
  const Factors regular = factorise(3), singular = factorise(4, true);
  EXPECT_EQ(regular.info, 0);
  EXPECT_EQ(singular.info, 301);
  for (int64_t team : kTeams) {
    set_threads(team);
    EXPECT_TRUE(factorise(3) == regular) << team << " threads";
    EXPECT_TRUE(factorise(4, true) == singular) << team << " threads";
  }
}

// Inside a caller's region of two threads, with nesting off (the routines' regions get one thread) and on
// (they get teams of their own), and inside a region of one thread (not active: the routines start teams).
TEST_F(ParallelRoutines, CalledFromInsideACallersParallelRegion) {
  set_threads(1);
  const Sorted sorted = sort_both("A", 5);
  const Factors factors = factorise(6);
  for (bool nesting : {false, true}) {
    set_nesting(nesting);
    set_threads(2);
    for (int outer : {1, 2}) {
      std::vector<Sorted> s(static_cast<size_t>(outer));
      std::vector<Factors> f(static_cast<size_t>(outer));
#pragma omp parallel num_threads(outer)
      {
        const int t = omp_get_thread_num();
        s[static_cast<size_t>(t)] = sort_both("A", 5);
        f[static_cast<size_t>(t)] = factorise(6);
      }
      for (int t = 0; t < outer; ++t) {
        EXPECT_TRUE(s[static_cast<size_t>(t)] == sorted) << "nesting " << nesting << ", outer " << outer;
        EXPECT_TRUE(f[static_cast<size_t>(t)] == factors) << "nesting " << nesting << ", outer " << outer;
      }
    }
  }
}

// Caller threads that are not OpenMP threads: each is an initial thread with its own teams.
TEST_F(ParallelRoutines, ConcurrentCallersGetTheSerialResults) {
  set_threads(1);
  constexpr int kCallers = 6;
  std::vector<Sorted> serial_sorts;
  std::vector<Factors> serial_factors;
  for (int t = 0; t < kCallers; ++t) {
    serial_sorts.push_back(sort_both(t % 2 ? "D" : "A", 10u + t));
    serial_factors.push_back(factorise(20u + t, t == 3));
  }
  for (int64_t team : {int64_t{1}, int64_t{2}}) {
    set_threads(team);
    std::vector<Sorted> sorts(kCallers);
    std::vector<Factors> factors(kCallers);
    on_caller_threads(kCallers, [&](int t) {
      set_threads(team);  // the count is each caller thread's own setting
      sorts[static_cast<size_t>(t)] = sort_both(t % 2 ? "D" : "A", 10u + t);
      factors[static_cast<size_t>(t)] = factorise(20u + t, t == 3);
    });
    for (int t = 0; t < kCallers; ++t) {
      EXPECT_TRUE(sorts[static_cast<size_t>(t)] == serial_sorts[static_cast<size_t>(t)]) << "caller " << t;
      EXPECT_TRUE(factors[static_cast<size_t>(t)] == serial_factors[static_cast<size_t>(t)]) << "caller " << t;
    }
  }
}

}  // namespace
}  // namespace vek_threads_test
