// Running a test on every sort path this machine has (scalar, AVX2, AVX-512): a fixture that chooses the path
// for the test's duration, and the instantiation over the available paths; and the bitwise comparison of
// their results.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "util/vector_sort.h"

namespace vek::test {

inline std::vector<util::SortPath> available_sort_paths() {
  std::vector<util::SortPath> paths;
  for (auto p : {util::SortPath::scalar, util::SortPath::avx2, util::SortPath::avx512})
    if (util::sort_path_available(p)) paths.push_back(p);
  return paths;
}

inline std::string sort_path_name(util::SortPath p) {
  switch (p) {
    case util::SortPath::scalar: return "scalar";
    case util::SortPath::avx2: return "avx2";
    case util::SortPath::avx512: return "avx512";
  }
  return "";
}

// Whether two vectors of reals hold the same bits (signed zeros and NaN payloads included).
inline bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

// Chooses a path until destroyed.
class ScopedSortPath {
 public:
  explicit ScopedSortPath(util::SortPath p) { util::use_sort_path(p); }
  ~ScopedSortPath() { util::use_best_sort_path(); }
  ScopedSortPath(const ScopedSortPath&) = delete;
  ScopedSortPath& operator=(const ScopedSortPath&) = delete;
};

class OnEverySortPath : public ::testing::TestWithParam<util::SortPath> {
 protected:
  void SetUp() override { util::use_sort_path(GetParam()); }
  void TearDown() override { util::use_best_sort_path(); }
};

}  // namespace vek::test

// Runs the TEST_P tests of SUITE (a class derived from OnEverySortPath) once per available path.
#define VEK_ON_EVERY_SORT_PATH(SUITE)                                                         \
  INSTANTIATE_TEST_SUITE_P(Path, SUITE, ::testing::ValuesIn(::vek::test::available_sort_paths()), \
                           [](const auto& info) { return ::vek::test::sort_path_name(info.param); })
