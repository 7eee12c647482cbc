// Choice of the sort path: the machine's widest vector unit, found once, unless a test has chosen one.
#include "util/vector_sort.h"

#include <atomic>

#include "util/vector_sort_variants.h"

namespace vek::util {
namespace {

// The units each kernel file is compiled for (its target pragma).
SortPath widest_available() {
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("popcnt")) return SortPath::scalar;
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) return SortPath::avx512;
  if (__builtin_cpu_supports("avx2")) return SortPath::avx2;
  return SortPath::scalar;
}

SortPath widest() {
  static const SortPath path = widest_available();
  return path;
}

// The path a test or benchmark chose, or -1.
std::atomic<int> chosen{-1};

template <class T>
bool sort_on(SortPath path, std::span<T> a) {
  const auto n = static_cast<int64_t>(a.size());
  switch (path) {
    case SortPath::avx512: vector_sort_detail::sort_avx512(a.data(), n); return true;
    case SortPath::avx2: vector_sort_detail::sort_avx2(a.data(), n); return true;
    case SortPath::scalar: return false;
  }
  return false;
}

}  // namespace

bool sort_path_available(SortPath path) { return static_cast<int>(path) <= static_cast<int>(widest()); }

SortPath sort_path() {
  const int path = chosen.load(std::memory_order_relaxed);
  return path < 0 ? widest() : static_cast<SortPath>(path);
}

void use_sort_path(SortPath path) {
  chosen.store(static_cast<int>(sort_path_available(path) ? path : widest()), std::memory_order_relaxed);
}

void use_best_sort_path() { chosen.store(-1, std::memory_order_relaxed); }

bool vector_sort(SortPath path, std::span<double> a) { return sort_on(path, a); }
bool vector_sort(SortPath path, std::span<int64_t> a) { return sort_on(path, a); }

bool vector_sort_pairs(SortPath path, std::span<int64_t> keys, std::span<int64_t> items) {
  const auto n = static_cast<int64_t>(keys.size());
  switch (path) {
    case SortPath::avx512: vector_sort_detail::sort_pairs_avx512(keys.data(), items.data(), n); return true;
    case SortPath::avx2: vector_sort_detail::sort_pairs_avx2(keys.data(), items.data(), n); return true;
    case SortPath::scalar: return false;
  }
  return false;
}

}  // namespace vek::util
