// M01CAF and M01CBF through their exported entries, and the quicksort kernel: results against std::sort on
// every input pattern, sub-ranges, both orders, thread counts, the fallback without workspace, NaNs and
// signed zeros, the insertion-only boundary and the worst case under an adaptive adversary.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "failing_allocation.h"
#include "patterns.h"
#include "sort_paths.h"
#include "util/sort.h"
#include "vek.h"

namespace {

// Each test runs on every sort path the machine has.
class SortVectors : public vek::test::OnEverySortPath {};
VEK_ON_EVERY_SORT_PATH(SortVectors);

using vek::test::Pattern;
using vek::test::same_bits;

constexpr int64_t kGuard = 3;
constexpr double kGuardValue = -12345.0;

// Sorts v with the exported entry, placed inside guard elements; checks IFAIL and the guards.
template <class T, class Entry>
void sort_through_entry(Entry entry, std::vector<T>& v, char order) {
  std::vector<T> padded(v.size() + 2 * kGuard, static_cast<T>(kGuardValue));
  std::copy(v.begin(), v.end(), padded.begin() + kGuard);
  const int64_t m1 = kGuard + 1, m2 = kGuard + static_cast<int64_t>(v.size());
  int64_t ifail = -1;
  entry(padded.data(), &m1, &m2, &order, &ifail, int64_t{1});
  ASSERT_EQ(ifail, 0);
  for (int64_t k = 0; k < kGuard; ++k) {
    EXPECT_EQ(padded[static_cast<size_t>(k)], static_cast<T>(kGuardValue));
    EXPECT_EQ(padded[padded.size() - 1 - static_cast<size_t>(k)], static_cast<T>(kGuardValue));
  }
  std::copy(padded.begin() + kGuard, padded.end() - kGuard, v.begin());
}

template <class T, class Entry>
void check_against_std_sort(Entry entry, Pattern p, int64_t n) {
  for (char order : {'A', 'd'}) {
    std::vector<T> v = vek::test::pattern<T>(p, n, static_cast<uint64_t>(n));
    std::vector<T> expected = v;
    std::sort(expected.begin(), expected.end());
    if (order == 'd') std::reverse(expected.begin(), expected.end());
    sort_through_entry(entry, v, order);
    ASSERT_EQ(v, expected) << vek::test::pattern_name(p) << " n=" << n << " order " << order;
  }
}

TEST_P(SortVectors, MatchStdSortOnEveryPatternLengthAndOrder) {
  for (Pattern p : vek::test::kPatterns) {
    for (int64_t n : {1, 2, 3, 14, 15, 16, 17, 31, 100, 1000, 70000}) {
      check_against_std_sort<double>(m01caf_, p, n);
      check_against_std_sort<int64_t>(m01cbf_, p, n);
    }
  }
  // A million, random; the other patterns reach the parallel merge at 70000 already (two pieces of 35000).
  check_against_std_sort<double>(m01caf_, Pattern::random, 1000000);
  // Length 0 reaches only the kernel (the routines need M1 <= M2).
  std::vector<double> empty;
  vek::util::sort(std::span<double>(empty), vek::util::Order::descending);
  EXPECT_TRUE(empty.empty());
}

// Random values with many repeats, both zeros, infinities and NaNs.
std::vector<double> awkward_reals(int64_t n) {
  std::vector<double> v = vek::test::pattern<double>(Pattern::random, n, 99);
  const double specials[] = {0.0, -0.0, std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::infinity(), 1.5};
  for (int64_t i = 0; i < n; i += 3) v[static_cast<size_t>(i)] = specials[static_cast<size_t>(i / 3) % 6];
  return v;
}

TEST_P(SortVectors, RealsWithNansAndSignedZerosHaveOneArrangement) {
  const std::vector<double> input = awkward_reals(300000);
  const int64_t threads_before = x06acf_();
  for (char order : {'A', 'D'}) {
    std::vector<double> reference;
    for (int64_t threads : {1, 2, 4}) {
      int64_t ifail = 0;
      x06aaf_(&threads, &ifail);
      std::vector<double> v = input;
      sort_through_entry(m01caf_, v, order);
      if (reference.empty()) reference = v;
      EXPECT_TRUE(same_bits(v, reference)) << threads << " threads, order " << order;
    }
    {
      vek::test::AllocationFailure no_workspace;
      std::vector<double> v = input;
      sort_through_entry(m01caf_, v, order);
      EXPECT_TRUE(same_bits(v, reference)) << "without workspace, order " << order;
    }
    // The arrangement itself: numbers in order with -0 before +0, the NaNs at the ascending end.
    std::vector<double> asc = reference;
    if (order == 'D') std::reverse(asc.begin(), asc.end());
    const auto nan_start = std::find_if(asc.begin(), asc.end(), [](double x) { return std::isnan(x); });
    EXPECT_EQ(std::count_if(input.begin(), input.end(), [](double x) { return std::isnan(x); }),
              asc.end() - nan_start);
    EXPECT_TRUE(std::all_of(nan_start, asc.end(), [](double x) { return std::isnan(x); }));
    EXPECT_TRUE(std::is_sorted(asc.begin(), nan_start));
    const auto zero = std::lower_bound(asc.begin(), nan_start, 0.0);
    const auto past = std::upper_bound(zero, nan_start, 0.0);
    EXPECT_TRUE(std::is_partitioned(zero, past, [](double x) { return std::signbit(x); }));
    EXPECT_GT(past - zero, 0);
  }
  int64_t ifail = 0, restore = threads_before;
  x06aaf_(&restore, &ifail);
}

TEST_P(SortVectors, CalledFromThreadsOfTheCallersParallelRegion) {
  // Each thread of the caller's region sorts its own vector; the sort's own region then runs with the team
  // the runtime allows (one thread when nesting is off), with the same result.
  const std::vector<double> input = awkward_reals(200000);
  std::vector<double> reference = input;
  sort_through_entry(m01caf_, reference, 'A');
  std::vector<std::vector<double>> results(2, input);
#pragma omp parallel for num_threads(2)
  for (int t = 0; t < 2; ++t) {
    const int64_t m1 = 1, m2 = static_cast<int64_t>(input.size());
    int64_t ifail = 1;
    m01caf_(results[static_cast<size_t>(t)].data(), &m1, &m2, "A", &ifail, 1);
  }
  for (const auto& r : results) EXPECT_TRUE(same_bits(r, reference));
}

// Comparison counts of the kernel on item numbers, with McIlroy's adaptive adversary ("A killer adversary
// for quicksort", 1999) available: values are fixed only when compared, always against the sort.
struct Adversary {
  explicit Adversary(int64_t n) : value(static_cast<size_t>(n), n), gas(n) {}
  std::vector<int64_t> value;
  int64_t gas, solid = 0, candidate = 0, comparisons = 0;

  bool less(int64_t x, int64_t y) {
    ++comparisons;
    if (value[x] == gas && value[y] == gas) value[x == candidate ? x : y] = solid++;
    if (value[x] == gas) candidate = x;
    else if (value[y] == gas) candidate = y;
    return value[x] < value[y];
  }
};

int64_t count_comparisons(std::vector<double> v) {
  int64_t count = 0;
  vek::util::quicksort(v.data(), 0, static_cast<int64_t>(v.size()) - 1, [&count](double x, double y) {
    ++count;
    return x < y;
  });
  EXPECT_TRUE(std::is_sorted(v.begin(), v.end()));
  return count;
}

TEST(QuicksortKernel, InsertionAloneUpTo15AndNeverQuadratic) {
  // Reversed 15: insertion alone, k comparisons to place element k. Reversed 16: one partition first.
  EXPECT_EQ(count_comparisons(vek::test::pattern<double>(Pattern::reversed, 15)), 14 * 15 / 2);
  EXPECT_LT(count_comparisons(vek::test::pattern<double>(Pattern::reversed, 16)), 15 * 16 / 2);

  const int64_t n = 100000;
  const double n_log_n = static_cast<double>(n) * std::log2(static_cast<double>(n));
  for (Pattern p : vek::test::kPatterns)
    EXPECT_LT(static_cast<double>(count_comparisons(vek::test::pattern<double>(p, n))), 3 * n_log_n)
        << vek::test::pattern_name(p);

  Adversary adversary(n);
  std::vector<int64_t> items(static_cast<size_t>(n));
  for (int64_t i = 0; i < n; ++i) items[static_cast<size_t>(i)] = i;
  vek::util::quicksort(items.data(), 0, n - 1, [&adversary](int64_t x, int64_t y) { return adversary.less(x, y); });
  EXPECT_LT(static_cast<double>(adversary.comparisons), 10 * n_log_n);
  EXPECT_TRUE(std::is_sorted(items.begin(), items.end(), [&adversary](int64_t x, int64_t y) {
    return adversary.value[x] < adversary.value[y];
  }));
}

TEST(QuicksortKernel, NansNeitherHangNorRunOffTheEnds) {
  // With every comparison false against NaN the order is undefined, but the sort must stay in its range.
  std::vector<double> v(1002, -1.0);  // guards at both ends
  std::vector<double> body = awkward_reals(1000);
  for (size_t i = 0; i < body.size(); i += 2) body[i] = std::numeric_limits<double>::quiet_NaN();
  std::copy(body.begin(), body.end(), v.begin() + 1);
  vek::util::quicksort(v.data(), 1, 1000, [](double x, double y) { return x < y; });
  EXPECT_EQ(v.front(), -1.0);
  EXPECT_EQ(v.back(), -1.0);
  EXPECT_EQ(std::count_if(v.begin(), v.end(), [](double x) { return std::isnan(x); }), 500);
}

}  // namespace
