// The vectorised quicksort compiled once per instruction set (vector_sort_avx512.cpp, vector_sort_avx2.cpp);
// the dispatch in vector_sort.cpp calls the one the machine runs. Each sorts a[0..n) ascending: doubles
// without NaNs (the zeros' signs left in no particular order), 64-bit integers, or (key, item) pairs in
// lexicographic order.
#pragma once

#include <cstdint>

namespace vek::util::vector_sort_detail {

void sort_avx512(double* a, int64_t n);
void sort_avx512(int64_t* a, int64_t n);
void sort_pairs_avx512(int64_t* keys, int64_t* items, int64_t n);

void sort_avx2(double* a, int64_t n);
void sort_avx2(int64_t* a, int64_t n);
void sort_pairs_avx2(int64_t* keys, int64_t* items, int64_t n);

}  // namespace vek::util::vector_sort_detail
