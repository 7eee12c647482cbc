// M01DZF: ranking through a user comparison and its adapter.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "support/report.h"
#include "vek.h"

extern "C" void m01dzfn_(vek_m01dzf_compar_adapter, vek_m01dzf_compar_fn, const int64_t*, const int64_t*, int64_t*,
                         int64_t*, double*, char*, int64_t*, int64_t);

namespace {

// Item I comes before item J when RUSER(I) is larger in magnitude; IUSER(1) counts the calls.
int64_t larger_magnitude_first(const int64_t* i, const int64_t* j, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return std::abs(ruser[*i - 1]) > std::abs(ruser[*j - 1]);
}

// Answers at random: not an order at all.
int64_t coin(const int64_t*, const int64_t*, int64_t* iuser, double*) {
  const uint64_t next = static_cast<uint64_t>(iuser[0]) * 6364136223846793005ULL + 1442695040888963407ULL;
  iuser[0] = static_cast<int64_t>(next);
  return (next >> 33) & 1;
}

// The ranks of items m1..m2 expected from a stable sort by the same rule.
std::vector<int64_t> expected_ranks(const std::vector<double>& key, int64_t m1, int64_t m2) {
  std::vector<int64_t> items(static_cast<size_t>(m2 - m1 + 1));
  std::iota(items.begin(), items.end(), m1);
  std::stable_sort(items.begin(), items.end(),
                   [&](int64_t i, int64_t j) { return std::abs(key[i - 1]) > std::abs(key[j - 1]); });
  std::vector<int64_t> rank(key.size(), -1);
  for (size_t p = 0; p < items.size(); ++p) rank[static_cast<size_t>(items[p] - 1)] = m1 + int64_t(p);
  return rank;
}

}  // namespace

TEST(RankByComparison, StableRanksOfASubRange) {
  std::mt19937_64 gen(7);
  std::uniform_int_distribution<int> small(-20, 20);  // many ties in magnitude
  for (int64_t n : {1, 2, 15, 16, 17, 1000}) {
    std::vector<double> key(static_cast<size_t>(n + 3));
    for (double& k : key) k = small(gen);
    const int64_t m1 = 2, m2 = n + 1;
    std::vector<int64_t> irank(key.size(), -1), iuser = {0};
    int64_t ifail = 0;
    m01dzf_(larger_magnitude_first, &m1, &m2, irank.data(), iuser.data(), key.data(), &ifail);
    ASSERT_EQ(ifail, 0);
    std::vector<int64_t> expected = expected_ranks(key, m1, m2);
    EXPECT_EQ(irank, expected) << n;  // elements outside M1..M2 untouched (-1)
    EXPECT_GT(iuser[0], n > 1 ? 0 : -1);
  }
}

TEST(RankByComparison, HostAdapterAndNonOrderComparison) {
  // A host substitutes its own adapter: every comparison passes through it.
  static int64_t adapter_calls = 0;
  auto adapter = [](vek_m01dzf_compar_fn f, const int64_t* i, const int64_t* j, int64_t* iu, double* ru) {
    ++adapter_calls;
    return f(i, j, iu, ru);
  };
  std::vector<double> key = {3, -1, 4, -1, 5, -9, 2, 6};
  std::vector<int64_t> irank(key.size()), iuser = {0};
  const int64_t m1 = 1, m2 = 8;
  char errbuf[200];
  int64_t ierr = -1;
  m01dzfn_(adapter, larger_magnitude_first, &m1, &m2, irank.data(), iuser.data(), key.data(), errbuf, &ierr, 200);
  EXPECT_EQ(ierr, 0);
  EXPECT_EQ(adapter_calls, iuser[0]);
  EXPECT_EQ(irank, expected_ranks(key, m1, m2));

  // A comparison that answers at random still yields a permutation of M1..M2, and returns.
  std::vector<int64_t> big(5000), state = {12345};
  const int64_t n = 5000;
  int64_t ifail = 0;
  m01dzf_(coin, &m1, &n, big.data(), state.data(), key.data(), &ifail);
  EXPECT_EQ(ifail, 0);
  std::sort(big.begin(), big.end());
  for (int64_t k = 0; k < n; ++k) ASSERT_EQ(big[static_cast<size_t>(k)], k + 1);
}

TEST(RankByComparison, Messages) {
  std::vector<int64_t> irank(4), iuser = {0};
  std::vector<double> ruser(4);
  auto call = [&](int64_t m1, int64_t m2) {
    return [=, &irank, &iuser, &ruser](int64_t* ifail) {
      m01dzf_(larger_magnitude_first, &m1, &m2, irank.data(), iuser.data(), ruser.data(), ifail);
    };
  };
  using vek::testing::expect_report;
  expect_report(call(1, 0), 1, {" ** On entry, M2 = 0.", " ** Constraint: M2 >= 1."}, "M01DZF");
  expect_report(call(0, 3), 1, {" ** On entry, M1 = 0.", " ** Constraint: M1 >= 1."}, "M01DZF");
  expect_report(call(4, 3), 1, {" ** On entry, M1 = 4 and M2 = 3.", " ** Constraint: M1 <= M2."}, "M01DZF");
  EXPECT_EQ(iuser[0], 0);  // no comparison made
}
