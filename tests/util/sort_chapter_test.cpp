// The rest of the chapter through the exported entries: strings sorted and ranked by a key substring, rows and
// columns of matrices ranked, rearranging integers, strings and complex numbers, permutation inverse and
// check, binary searches, each against a plain reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "patterns.h"
#include "sort_paths.h"
#include "vek.h"

namespace {

// Each test runs on every sort path the machine has.
class RankMatrices : public vek::test::OnEverySortPath {};
VEK_ON_EVERY_SORT_PATH(RankMatrices);

constexpr int64_t kLen = 6;

// n fixed-length records of kLen characters from a small alphabet, so that keys repeat.
std::string random_records(int64_t n, uint64_t seed) {
  std::mt19937_64 gen(seed);
  std::string s(static_cast<size_t>(n * kLen), ' ');
  for (auto& c : s) c = "ab B~"[gen() % 5];
  return s;
}

std::string record(const std::string& s, int64_t i) { return s.substr(static_cast<size_t>(i * kLen), kLen); }

// Item numbers 0..n-1 stably sorted by less(i, j).
template <class Less>
std::vector<int64_t> stable_order(int64_t n, Less less) {
  std::vector<int64_t> items(static_cast<size_t>(n));
  std::iota(items.begin(), items.end(), 0);
  std::stable_sort(items.begin(), items.end(), less);
  return items;
}

// Ranks from base of a stable order.
std::vector<int64_t> ranks_of(const std::vector<int64_t>& order, int64_t base) {
  std::vector<int64_t> r(order.size());
  for (size_t p = 0; p < order.size(); ++p) r[static_cast<size_t>(order[p])] = base + static_cast<int64_t>(p);
  return r;
}

TEST(SortStrings, StableByKeySubstringInBothOrders) {
  const int64_t n = 3000, m1 = 1, m2 = n;
  const std::string input = random_records(n, 5);
  for (auto [l1, l2] : {std::pair<int64_t, int64_t>{1, kLen}, {2, 3}, {kLen, kLen}}) {
    for (char order : {'A', 'D'}) {
      const auto key = [&](int64_t i) { return record(input, i).substr(static_cast<size_t>(l1 - 1), static_cast<size_t>(l2 - l1 + 1)); };
      const auto expected_order = stable_order(n, [&](int64_t i, int64_t j) {
        return order == 'A' ? key(i) < key(j) : key(j) < key(i);
      });
      std::string sorted = input;
      int64_t ifail = -1;
      m01ccf_(sorted.data(), &m1, &m2, &l1, &l2, &order, &ifail, kLen, 1);
      ASSERT_EQ(ifail, 0);
      for (int64_t p = 0; p < n; ++p) ASSERT_EQ(record(sorted, p), record(input, expected_order[static_cast<size_t>(p)])) << p;

      std::vector<int64_t> irank(static_cast<size_t>(n));
      m01dcf_(input.data(), &m1, &m2, &l1, &l2, &order, irank.data(), &ifail, kLen, 1);
      ASSERT_EQ(ifail, 0);
      EXPECT_EQ(irank, ranks_of(expected_order, 1));

      // Rearranging the strings by their ranks gives the sort.
      std::string moved = input;
      m01ecf_(moved.data(), &m1, &m2, irank.data(), &ifail, kLen);
      ASSERT_EQ(ifail, 0);
      EXPECT_EQ(moved, sorted);
    }
  }
}

TEST_P(RankMatrices, RowsAndColumnsLexicographically) {
  // A 7 x 5 block of a 9 x 6 array (LDM 9), entries from few values so that ties need later keys.
  const int64_t ldm = 9, m1 = 2, m2 = 8, n1 = 2, n2 = 6;
  const auto ints = vek::test::pattern<int64_t>(vek::test::Pattern::few_distinct, ldm * 6, 3);
  std::vector<double> reals(ints.begin(), ints.end());
  const auto at = [&](int64_t i, int64_t j) { return ints[static_cast<size_t>(i - 1 + (j - 1) * ldm)]; };
  for (char order : {'A', 'D'}) {
    const auto row_less = [&](int64_t a, int64_t b) {  // item numbers from 0 for rows m1..m2
      for (int64_t j = n1; j <= n2; ++j)
        if (at(m1 + a, j) != at(m1 + b, j)) return order == 'A' ? at(m1 + a, j) < at(m1 + b, j) : at(m1 + a, j) > at(m1 + b, j);
      return false;
    };
    const auto col_less = [&](int64_t a, int64_t b) {
      for (int64_t i = m1; i <= m2; ++i)
        if (at(i, n1 + a) != at(i, n1 + b)) return order == 'A' ? at(i, n1 + a) < at(i, n1 + b) : at(i, n1 + a) > at(i, n1 + b);
      return false;
    };
    const auto rows = ranks_of(stable_order(m2 - m1 + 1, row_less), m1);
    const auto cols = ranks_of(stable_order(n2 - n1 + 1, col_less), n1);
    std::vector<int64_t> irank(10, -1);
    int64_t ifail = -1;
    m01def_(reals.data(), &ldm, &m1, &m2, &n1, &n2, &order, irank.data(), &ifail, 1);
    EXPECT_TRUE(ifail == 0 && std::equal(rows.begin(), rows.end(), irank.begin() + 1)) << order;
    std::fill(irank.begin(), irank.end(), -1);
    m01dff_(ints.data(), &ldm, &m1, &m2, &n1, &n2, &order, irank.data(), &ifail, 1);
    EXPECT_TRUE(ifail == 0 && std::equal(rows.begin(), rows.end(), irank.begin() + 1)) << order;
    EXPECT_EQ(irank[0], -1);
    std::fill(irank.begin(), irank.end(), -1);
    m01djf_(reals.data(), &ldm, &m1, &m2, &n1, &n2, &order, irank.data(), &ifail, 1);
    EXPECT_TRUE(ifail == 0 && std::equal(cols.begin(), cols.end(), irank.begin() + 1)) << order;
    m01dkf_(ints.data(), &ldm, &m1, &m2, &n1, &n2, &order, irank.data(), &ifail, 1);
    EXPECT_TRUE(ifail == 0 && std::equal(cols.begin(), cols.end(), irank.begin() + 1)) << order;
    EXPECT_EQ(irank[6], -1);
  }
}

TEST(Permutations, RearrangeInvertAndCheck) {
  const int64_t n = 1000, m1 = 3, m2 = n + 2;
  std::vector<int64_t> iv = vek::test::pattern<int64_t>(vek::test::Pattern::few_distinct, m2, 8);
  std::vector<int64_t> irank(static_cast<size_t>(m2), 0);
  int64_t ifail = -1;
  m01dbf_(iv.data(), &m1, &m2, "D", irank.data(), &ifail, 1);
  ASSERT_EQ(ifail, 0);
  m01zbf_(irank.data(), &m1, &m2, &ifail);
  EXPECT_EQ(ifail, 0);

  std::vector<vek_complex> cv(static_cast<size_t>(m2));
  for (int64_t i = 0; i < m2; ++i) cv[static_cast<size_t>(i)] = {static_cast<double>(iv[static_cast<size_t>(i)]), static_cast<double>(i)};
  std::vector<int64_t> sorted = iv;
  m01ebf_(sorted.data(), &m1, &m2, irank.data(), &ifail);
  m01edf_(cv.data(), &m1, &m2, irank.data(), &ifail);
  ASSERT_EQ(ifail, 0);
  EXPECT_TRUE(std::is_sorted(sorted.begin() + 2, sorted.end(), std::greater<>()));
  EXPECT_EQ(sorted[0], iv[0]);
  for (int64_t i = m1 - 1; i < m2; ++i) {
    const auto& c = cv[static_cast<size_t>(i)];
    EXPECT_EQ(c.re, static_cast<double>(sorted[static_cast<size_t>(i)]));
    EXPECT_EQ(irank[static_cast<size_t>(c.im)], i + 1);  // the element came from where its rank says
  }

  // The inverse permutation gathers: IPERM(IRANK(I)) = I; rearranging by it restores the original.
  std::vector<int64_t> inverse = irank;
  m01zaf_(inverse.data(), &m1, &m2, &ifail);
  ASSERT_EQ(ifail, 0);
  for (int64_t i = m1; i <= m2; ++i) EXPECT_EQ(inverse[static_cast<size_t>(irank[static_cast<size_t>(i - 1)] - 1)], i);
  m01ebf_(sorted.data(), &m1, &m2, inverse.data(), &ifail);
  EXPECT_EQ(sorted, iv);
}

TEST(Search, LargestIndexNotGreaterThanItem) {
  const std::vector<double> rv = {-1.0, 0.0, 0.0, 2.5, 2.5, 2.5, 7.0};
  const std::vector<int64_t> iv = {-1, 0, 0, 2, 2, 2, 7};
  const int64_t m1 = 2, m2 = 6;  // searches -0 .. 2.5 only
  for (double item : {-5.0, -1.0, 0.0, 1.0, 2.5, 3.0, 100.0}) {
    int64_t ifail = -1;
    const int64_t expected = m1 - 1 + (std::upper_bound(rv.begin() + 1, rv.begin() + 6, item) - (rv.begin() + 1));
    EXPECT_EQ(m01naf_(rv.data(), &m1, &m2, &item, &ifail), expected) << item;
    const auto k = static_cast<int64_t>(std::floor(item));
    const int64_t expected_int = m1 - 1 + (std::upper_bound(iv.begin() + 1, iv.begin() + 6, k) - (iv.begin() + 1));
    EXPECT_EQ(m01nbf_(iv.data(), &m1, &m2, &k, &ifail), expected_int) << k;
    EXPECT_EQ(ifail, 0);
  }
  double nan = std::nan("");
  int64_t ifail = -1;
  EXPECT_EQ(m01naf_(rv.data(), &m1, &m2, &nan, &ifail), m2);  // NaN is greater than every number

  // Strings compare as if padded with blanks: "ab" equals "ab  ".
  const std::string ch = "a   ab  ab  b   ";
  const int64_t one = 1, four = 4;
  EXPECT_EQ(m01ncf_(ch.data(), &one, &four, "ab", &ifail, 4, 2), 3);
  EXPECT_EQ(m01ncf_(ch.data(), &one, &four, " ", &ifail, 4, 1), 0);
  EXPECT_EQ(m01ncf_(ch.data(), &one, &four, "abc", &ifail, 4, 3), 3);
  EXPECT_EQ(m01ncf_(ch.data(), &one, &four, "zz", &ifail, 4, 2), 4);
  EXPECT_EQ(ifail, 0);
}

}  // namespace
