// M01DAF and M01EAF through their exported entries and the rank kernels: ranks against a stable sort of the
// element numbers, ties in their original order in both directions, ranks counted from M1, and ranking then
// rearranging giving what the sort gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include "patterns.h"
#include "sort_paths.h"
#include "util/rank.h"
#include "vek.h"

namespace {

// Each test runs on every sort path the machine has.
class RankReals : public vek::test::OnEverySortPath {};
VEK_ON_EVERY_SORT_PATH(RankReals);
class RankKernels : public vek::test::OnEverySortPath {};
VEK_ON_EVERY_SORT_PATH(RankKernels);

using vek::test::Pattern;

// The expected ranks (from `base`) by a stable sort of the element numbers.
template <class T, class Less>
std::vector<int64_t> stable_ranks(const std::vector<T>& v, Less less, int64_t base) {
  std::vector<int64_t> items(v.size());
  std::iota(items.begin(), items.end(), 0);
  std::stable_sort(items.begin(), items.end(), [&](int64_t i, int64_t j) { return less(v[i], v[j]); });
  std::vector<int64_t> ranks(v.size());
  for (size_t p = 0; p < items.size(); ++p) ranks[static_cast<size_t>(items[p])] = base + static_cast<int64_t>(p);
  return ranks;
}

TEST_P(RankReals, StableRanksFromM1InBothOrders) {
  for (Pattern p : vek::test::kPatterns) {
    for (int64_t n : {1, 2, 15, 16, 17, 500, 20000}) {
      const std::vector<double> v = vek::test::pattern<double>(p, n, 7);
      // The segment is v placed at M1 = 5 of a longer vector; IRANK outside M1..M2 stays as it was.
      const int64_t m1 = 5, m2 = 4 + n;
      std::vector<double> rv(static_cast<size_t>(m2 + 2), 0.0);
      std::copy(v.begin(), v.end(), rv.begin() + 4);
      for (char order : {'A', 'D'}) {
        std::vector<int64_t> irank(rv.size(), -1);
        int64_t ifail = -1;
        m01daf_(rv.data(), &m1, &m2, &order, irank.data(), &ifail, 1);
        ASSERT_EQ(ifail, 0);
        const auto expected = order == 'A' ? stable_ranks(v, [](double x, double y) { return x < y; }, m1)
                                           : stable_ranks(v, [](double x, double y) { return x > y; }, m1);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), irank.begin() + 4))
            << vek::test::pattern_name(p) << " n=" << n << " " << order;
        EXPECT_EQ(std::count(irank.begin(), irank.end(), -1), 6);
      }
    }
  }
}

TEST_P(RankReals, RankThenRearrangeIsTheSort) {
  std::vector<double> v = vek::test::pattern<double>(Pattern::few_distinct, 5000, 3);
  for (size_t i = 0; i < v.size(); i += 7) v[i] = (i % 2 ? -0.0 : std::numeric_limits<double>::quiet_NaN());
  for (char order : {'A', 'D'}) {
    const int64_t m1 = 1, m2 = static_cast<int64_t>(v.size());
    std::vector<int64_t> irank(v.size());
    std::vector<double> ranked = v, sorted = v;
    int64_t ifail = -1;
    m01daf_(ranked.data(), &m1, &m2, &order, irank.data(), &ifail, 1);
    m01eaf_(ranked.data(), &m1, &m2, irank.data(), &ifail);
    ASSERT_EQ(ifail, 0);
    m01caf_(sorted.data(), &m1, &m2, &order, &ifail, 1);
    ASSERT_EQ(ifail, 0);
    for (size_t i = 0; i < v.size(); ++i) {
      if (std::isnan(sorted[i])) EXPECT_TRUE(std::isnan(ranked[i])) << i;
      else EXPECT_EQ(std::memcmp(&sorted[i], &ranked[i], sizeof(double)), 0) << i << " " << order;
    }
  }
}

TEST_P(RankKernels, IntegersAndPermutations) {
  const std::vector<int64_t> v = vek::test::pattern<int64_t>(Pattern::few_distinct, 1000, 11);
  std::vector<int64_t> ranks(v.size());
  vek::util::rank(std::span<const int64_t>(v), vek::util::Order::descending, ranks, 0);
  EXPECT_EQ(ranks, stable_ranks(v, [](int64_t x, int64_t y) { return x > y; }, 0));

  // Rearranging by the ranks sorts; the inverse permutation undoes it.
  std::vector<int64_t> moved = v;
  vek::util::rearrange(std::span<int64_t>(moved), ranks, 0);
  EXPECT_TRUE(std::is_sorted(moved.begin(), moved.end(), std::greater<>()));
  std::vector<int64_t> inverse = ranks;
  vek::util::invert_permutation(inverse, 0);
  for (size_t i = 0; i < v.size(); ++i) EXPECT_EQ(inverse[static_cast<size_t>(ranks[i])], static_cast<int64_t>(i));
  vek::util::rearrange(std::span<int64_t>(moved), inverse, 0);
  EXPECT_EQ(moved, v);

  using Kind = vek::util::PermutationFault::Kind;
  const std::vector<int64_t> huge = {3, std::numeric_limits<int64_t>::max(), 4};
  const auto fault = vek::util::check_permutation(huge, 3);
  EXPECT_EQ(fault.kind, Kind::out_of_range);
  EXPECT_EQ(fault.index, 1);
  const std::vector<int64_t> low = {std::numeric_limits<int64_t>::min(), 4, 5};
  EXPECT_EQ(vek::util::check_permutation(low, 3).kind, Kind::out_of_range);
  const std::vector<int64_t> twice = {4, 3, 4};
  EXPECT_EQ(vek::util::check_permutation(twice, 3).kind, Kind::repeated);
  EXPECT_EQ(vek::util::check_permutation(twice, 3).index, 2);
  EXPECT_EQ(vek::util::check_permutation(std::vector<int64_t>{5, 3, 4}, 3).kind, Kind::none);
}

}  // namespace
