// Choice of the sort path: the machine's widest vector unit, found once, unless a test has chosen one.
#include "util/vector_sort.h"

#include <atomic>

#include "util/vector_sort_variants.h"

namespace vek::util {
namespace {

SortPath widest_available() {
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) return SortPath::avx512;
  if (__builtin_cpu_supports("avx2")) return SortPath::avx2;
  return SortPath::scalar;
}

SortPath widest() {
  static const SortPath path = widest_available();
  return path;
}

std::atomic<SortPath> chosen{SortPath::scalar};
std::atomic<bool> is_chosen{false};

}  // namespace

bool sort_path_available(SortPath path) { return static_cast<int>(path) <= static_cast<int>(widest()); }

SortPath sort_path() { return is_chosen.load(std::memory_order_relaxed) ? chosen.load(std::memory_order_relaxed) : widest(); }

void use_sort_path(SortPath path) {
  chosen.store(sort_path_available(path) ? path : widest(), std::memory_order_relaxed);
  is_chosen.store(true, std::memory_order_relaxed);
}

void use_best_sort_path() { is_chosen.store(false, std::memory_order_relaxed); }

bool vector_sort(SortPath path, std::span<double> a) {
  const auto n = static_cast<int64_t>(a.size());
  switch (path) {
    case SortPath::avx512: vector_sort_detail::sort_avx512(a.data(), n); return true;
    case SortPath::avx2: vector_sort_detail::sort_avx2(a.data(), n); return true;
    case SortPath::scalar: return false;
  }
  return false;
}

bool vector_sort(SortPath path, std::span<int64_t> a) {
  const auto n = static_cast<int64_t>(a.size());
  switch (path) {
    case SortPath::avx512: vector_sort_detail::sort_avx512(a.data(), n); return true;
    case SortPath::avx2: vector_sort_detail::sort_avx2(a.data(), n); return true;
    case SortPath::scalar: return false;
  }
  return false;
}

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
