// The sort paths against each other: every vector width the machine has gives, bit for bit, what the scalar
// quicksort gives, through m01caf, m01cbf and the ranks, on every input pattern and on reals laden with NaNs
// (of both signs and several payloads), signed zeros, infinities and subnormals, for lengths from 0 to 1e6;
// and each width's kernel against std::sort on every length across its network and partition boundaries.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "patterns.h"
#include "sort_paths.h"
#include "util/sort.h"
#include "vek.h"

namespace {

using vek::test::Pattern;
using vek::test::same_bits;
using vek::util::SortPath;

std::vector<SortPath> vector_paths() {
  std::vector<SortPath> paths = vek::test::available_sort_paths();
  paths.erase(paths.begin());  // the scalar path, always first
  return paths;
}

// Mostly special values, the rest random normals: every comparison the total order has to settle.
std::vector<double> special_reals(int64_t n, uint64_t seed) {
  const double inf = std::numeric_limits<double>::infinity();
  const double specials[] = {0.0,
                             -0.0,
                             inf,
                             -inf,
                             std::numeric_limits<double>::quiet_NaN(),
                             -std::numeric_limits<double>::quiet_NaN(),
                             std::bit_cast<double>(uint64_t{0x7ff0000000000123}),
                             std::bit_cast<double>(uint64_t{0xfff8000000000077}),
                             std::numeric_limits<double>::denorm_min(),
                             -std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::max(),
                             -std::numeric_limits<double>::max(),
                             1.0,
                             -1.0};
  std::mt19937_64 gen(seed);
  std::normal_distribution<double> normal;
  std::vector<double> v(static_cast<size_t>(n));
  for (auto& x : v) x = gen() % 3 == 0 ? normal(gen) : specials[gen() % std::size(specials)];
  return v;
}

// The result of an entry called on a copy of `input` on `path`.
template <class T, class Call>
std::vector<T> on_path(SortPath path, const std::vector<T>& input, Call call) {
  vek::test::ScopedSortPath use(path);
  std::vector<T> v = input;
  call(v);
  return v;
}

template <class T>
auto sort_entry(char order) {
  return [order](std::vector<T>& v) {
    const int64_t m1 = 1, m2 = static_cast<int64_t>(v.size());
    int64_t ifail = -1;
    if constexpr (std::is_same_v<T, double>) m01caf_(v.data(), &m1, &m2, &order, &ifail, 1);
    else m01cbf_(v.data(), &m1, &m2, &order, &ifail, 1);
    ASSERT_EQ(ifail, 0);
  };
}

template <class T>
auto rank_entry(char order, std::vector<int64_t>& irank) {
  return [order, &irank](std::vector<T>& v) {
    const int64_t m1 = 1, m2 = static_cast<int64_t>(v.size());
    int64_t ifail = -1;
    irank.assign(v.size(), 0);
    if constexpr (std::is_same_v<T, double>) m01daf_(v.data(), &m1, &m2, &order, irank.data(), &ifail, 1);
    else m01dbf_(v.data(), &m1, &m2, &order, irank.data(), &ifail, 1);
    ASSERT_EQ(ifail, 0);
  };
}

// Sorts (and ranks) of `input` on every vector path against the scalar path.
enum class Ranks { compared, skipped };
template <class T>
void compare_paths(const std::vector<T>& input, const std::string& what, Ranks ranks_too = Ranks::compared) {
  for (char order : {'A', 'D'}) {
    std::vector<int64_t> scalar_ranks, ranks;
    const std::vector<T> scalar_sorted = on_path(SortPath::scalar, input, sort_entry<T>(order));
    if (ranks_too == Ranks::compared) on_path(SortPath::scalar, input, rank_entry<T>(order, scalar_ranks));
    for (SortPath path : vector_paths()) {
      const std::vector<T> sorted = on_path(path, input, sort_entry<T>(order));
      if constexpr (std::is_same_v<T, double>) {
        ASSERT_TRUE(same_bits(sorted, scalar_sorted)) << what << " order " << order << " on " << vek::test::sort_path_name(path);
      } else {
        ASSERT_EQ(sorted, scalar_sorted) << what << " order " << order << " on " << vek::test::sort_path_name(path);
      }
      if (ranks_too == Ranks::skipped) continue;
      on_path(path, input, rank_entry<T>(order, ranks));
      ASSERT_EQ(ranks, scalar_ranks) << what << " ranks, order " << order << " on " << vek::test::sort_path_name(path);
    }
  }
}

TEST(SortPaths, VectorWidthsGiveTheScalarResultOnEveryPatternAndLength) {
  ASSERT_FALSE(vector_paths().empty()) << "this machine has no vector unit the sort uses";
  const int64_t lengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 200, 1000, 4097, 40009};
  for (int64_t n : lengths) {
    for (Pattern p : vek::test::kPatterns) {
      const std::string what = vek::test::pattern_name(p) + " n=" + std::to_string(n);
      compare_paths(vek::test::pattern<double>(p, n, static_cast<uint64_t>(n)), what);
      compare_paths(vek::test::pattern<int64_t>(p, n, static_cast<uint64_t>(n)), what);
    }
    compare_paths(special_reals(n, static_cast<uint64_t>(n)), "special n=" + std::to_string(n));
  }
  // A million elements, where the sorts share the work among the threads (the scalar ranks would take long;
  // plain random reals of that length are checked on every path against std::sort in sort_test.cpp).
  compare_paths(special_reals(1000000, 4), "special n=1e6", Ranks::skipped);
  // Length 0 reaches only the kernel (the routines need M1 <= M2).
  for (SortPath path : vek::test::available_sort_paths()) {
    vek::test::ScopedSortPath use(path);
    std::vector<double> empty;
    vek::util::sort(std::span<double>(empty), vek::util::Order::ascending);
    EXPECT_TRUE(empty.empty());
  }
}

TEST(SortPaths, MatrixRanksWithTiedLeadingKeys) {
  // Rows ranked by three columns of few distinct values (runs of equal first keys put in order by the other
  // keys), columns by three rows; reals with signed zeros and NaNs among the keys.
  const int64_t rows = 3000, columns = 3, ldm = rows + 2;
  std::mt19937_64 gen(8);
  const double values[] = {0.0, -0.0, 1.0, std::numeric_limits<double>::quiet_NaN()};
  std::vector<double> real_matrix(static_cast<size_t>(ldm * columns));
  std::vector<int64_t> int_matrix(real_matrix.size());
  for (size_t i = 0; i < real_matrix.size(); ++i) {
    real_matrix[i] = values[gen() % 4];
    int_matrix[i] = static_cast<int64_t>(gen() % 3) - 1;
  }
  const int64_t m1 = 2, m2 = rows, n1 = 1, n2 = columns;
  for (char order : {'A', 'D'}) {
    std::vector<std::vector<int64_t>> results;
    for (SortPath path : vek::test::available_sort_paths()) {
      vek::test::ScopedSortPath use(path);
      std::vector<int64_t> by_rows(static_cast<size_t>(rows), 0), by_rows_int = by_rows;
      int64_t ifail = -1;
      m01def_(real_matrix.data(), &ldm, &m1, &m2, &n1, &n2, &order, by_rows.data(), &ifail, 1);
      ASSERT_EQ(ifail, 0);
      m01dff_(int_matrix.data(), &ldm, &m1, &m2, &n1, &n2, &order, by_rows_int.data(), &ifail, 1);
      ASSERT_EQ(ifail, 0);
      by_rows.insert(by_rows.end(), by_rows_int.begin(), by_rows_int.end());
      results.push_back(by_rows);
    }
    for (size_t k = 1; k < results.size(); ++k)
      EXPECT_EQ(results[k], results[0]) << vek::test::sort_path_name(vek::test::available_sort_paths()[k]) << " order " << order;
  }
}

TEST(SortPaths, EachWidthsKernelAgainstStdSort) {
  // Every length up to past two of the widest partition's held vectors, then a few long ones; reals come back
  // in order with the same bits (the zeros' signs left to the caller), integers and (key, item) pairs sorted.
  std::mt19937_64 gen(21);
  std::vector<int64_t> lengths;
  for (int64_t n = 0; n <= 300; ++n) lengths.push_back(n);
  for (int64_t n : {1023, 1024, 1025, 65537}) lengths.push_back(n);
  for (SortPath path : vector_paths()) {
    for (int64_t n : lengths) {
      const std::string what = vek::test::sort_path_name(path) + " n=" + std::to_string(n);
      std::vector<double> reals = special_reals(n, gen());
      std::erase_if(reals, [](double x) { return x != x; });
      std::vector<double> expected = reals;
      ASSERT_TRUE(vek::util::vector_sort(path, std::span<double>(reals)));
      ASSERT_TRUE(std::is_sorted(reals.begin(), reals.end())) << what;
      const auto by_bits = [](double x, double y) { return std::bit_cast<uint64_t>(x) < std::bit_cast<uint64_t>(y); };
      std::vector<double> got = reals;
      std::sort(got.begin(), got.end(), by_bits);
      std::sort(expected.begin(), expected.end(), by_bits);
      ASSERT_TRUE(same_bits(got, expected)) << what;

      std::vector<int64_t> keys(static_cast<size_t>(n)), items(static_cast<size_t>(n));
      std::vector<std::pair<int64_t, int64_t>> pairs(static_cast<size_t>(n));
      for (int64_t i = 0; i < n; ++i) {
        // Few distinct keys, the extremes among them, so that items decide most comparisons.
        const int64_t choices[] = {std::numeric_limits<int64_t>::min(), -1, 0, 5, std::numeric_limits<int64_t>::max()};
        keys[static_cast<size_t>(i)] = choices[gen() % 5];
        items[static_cast<size_t>(i)] = static_cast<int64_t>(gen() >> 1);
        pairs[static_cast<size_t>(i)] = {keys[static_cast<size_t>(i)], items[static_cast<size_t>(i)]};
      }
      std::vector<int64_t> integers = items, sorted_integers = items;
      ASSERT_TRUE(vek::util::vector_sort(path, std::span<int64_t>(integers)));
      std::sort(sorted_integers.begin(), sorted_integers.end());
      ASSERT_EQ(integers, sorted_integers) << what;

      ASSERT_TRUE(vek::util::vector_sort_pairs(path, keys, items));
      std::sort(pairs.begin(), pairs.end());
      for (int64_t i = 0; i < n; ++i)
        ASSERT_EQ(std::make_pair(keys[static_cast<size_t>(i)], items[static_cast<size_t>(i)]), pairs[static_cast<size_t>(i)])
            << what << " at " << i;
    }
  }
  EXPECT_FALSE(vek::util::vector_sort(SortPath::scalar, std::span<double>()));
}

}  // namespace
