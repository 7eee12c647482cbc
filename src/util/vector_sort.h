// The vectorised sort kernels and the choice among them. The library sorts with the widest vector unit the
// machine has (AVX-512, else AVX2) and with the scalar quicksort (sort_kernel.h) on machines with neither;
// every path gives the same result bit for bit.
#pragma once

#include <cstdint>
#include <span>

namespace vek::util {

enum class SortPath { scalar, avx2, avx512 };

// Whether this machine can run a path (the scalar one always).
bool sort_path_available(SortPath path);

// The path the sorts and ranks take: the widest available unless chosen otherwise.
SortPath sort_path();

// Makes every later sort and rank take `path` (which must be available), or the widest available again
// after use_best_sort_path(). For the tests and benchmarks that compare the paths; not for concurrent use.
void use_sort_path(SortPath path);
void use_best_sort_path();

// Sorts a ascending on a vector path: doubles without NaNs (the zeros' signs left in no particular order) or
// integers. False, with a untouched, when the path is scalar.
bool vector_sort(SortPath path, std::span<double> a);
bool vector_sort(SortPath path, std::span<int64_t> a);

// Sorts the pairs (keys[i], items[i]) into lexicographic order on a vector path; false, with both untouched,
// when the path is scalar.
bool vector_sort_pairs(SortPath path, std::span<int64_t> keys, std::span<int64_t> items);

}  // namespace vek::util
