// The sort driver: NaNs set aside, serial or parallel sort (each piece by the vectorised quicksort where the
// machine has the vector unit, else by the scalar one), signed zeros put in order, reversal for descending
// order.
#include "util/sort.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <type_traits>

#include <sys/mman.h>

#include "frame/threads.h"
#include "util/vector_sort.h"

namespace vek::util {
namespace {

// Each thread of the parallel path sorts at least this many elements; below it a thread costs more to start
// than it saves.
constexpr int64_t kMinPiece = int64_t{1} << 15;

// The merge workspace sits on 2 MiB boundaries and asks the kernel for huge pages: first touching 40 MB of
// fresh 4 KiB pages costs about 100 ms in a virtual machine, as long as the merge itself; huge pages cut it to
// a few milliseconds.
constexpr std::align_val_t kHugePage{size_t{1} << 21};

template <class T>
struct WorkspaceDelete {
  void operator()(T* p) const { ::operator delete[](p, kHugePage); }
};

template <class T>
using Workspace = std::unique_ptr<T[], WorkspaceDelete<T>>;

// The workspace, or null when it cannot be had.
template <class T>
Workspace<T> allocate_workspace(int64_t n) {
  const size_t bytes = static_cast<size_t>(n) * sizeof(T);
  Workspace<T> work(static_cast<T*>(::operator new[](bytes, kHugePage, std::nothrow)));
  if (work) madvise(work.get(), bytes, MADV_HUGEPAGE);
  return work;
}

struct Ascending {
  template <class T>
  bool operator()(const T& x, const T& y) const { return x < y; }
};

// Moves the NaNs to the end, the numbers keeping their order; returns the count of numbers.
int64_t set_aside_nans(std::span<double> v) {
  // Most vectors have none: a scan without early exit, which the compiler vectorises, tells first.
  bool any = false;
  for (const double x : v) any |= x != x;
  if (!any) return static_cast<int64_t>(v.size());
  const auto first = std::find_if(v.begin(), v.end(), [](double x) { return std::isnan(x); });
  if (first == v.end()) return static_cast<int64_t>(v.size());
  auto out = first;
  for (auto it = first; it != v.end(); ++it)
    if (!std::isnan(*it)) std::iter_swap(out++, it);
  return out - v.begin();
}

// In a sorted vector of numbers the zeros form one run whose signs the sort left in no particular order:
// write the negative zeros first.
void order_signed_zeros(std::span<double> v) {
  const auto lo = std::lower_bound(v.begin(), v.end(), 0.0);
  const auto hi = std::upper_bound(lo, v.end(), 0.0);
  const auto negative = std::count_if(lo, hi, [](double x) { return std::signbit(x); });
  std::fill(lo, lo + negative, -0.0);
  std::fill(lo + negative, hi, 0.0);
}

// Sorts numbers (no NaNs) ascending on `path`; the zeros' signs are put in order afterwards.
template <class T>
void sort_piece(std::span<T> numbers, SortPath path) {
  if (numbers.size() > 1 && !vector_sort(path, numbers))
    quicksort(numbers.data(), 0, static_cast<int64_t>(numbers.size()) - 1, Ascending{});
}

template <class T>
void finish_serial(std::span<T> numbers) {
  if constexpr (std::is_floating_point_v<T>) order_signed_zeros(numbers);
}

// Start of piece k of n elements cut into `pieces` nearly equal pieces.
int64_t piece_start(int64_t k, int64_t n, int64_t pieces) { return k * (n / pieces) + std::min(k, n % pieces); }

// One parallel region: a piece per thread (static schedule), then pairwise merges in log2(team) rounds. In
// the round of width `step` the runs are pieces [k, k + step) for k a multiple of step; a run at an even
// multiple with a partner is merged with it by all the threads of both runs. Each thread copies its own piece
// to the workspace (so the copy, and the first touch of the workspace's pages, is shared); after a barrier
// each writes an equal share of the merged run back into the vector. Then the zeros and the reversal.
template <class T>
void sort_parallel(std::span<T> v, int64_t numbers, T* work, int threads, Order order, SortPath path) {
  T* a = v.data();
  const int64_t n = static_cast<int64_t>(v.size());
#pragma omp parallel num_threads(threads)
  {
    const int64_t team = threads::team_size(), t = threads::thread_num();
    const auto start = [numbers, team](int64_t k) { return piece_start(std::min(k, team), numbers, team); };
    sort_piece(std::span<T>(a + start(t), static_cast<size_t>(start(t + 1) - start(t))), path);
    for (int64_t step = 1; step < team; step *= 2) {
      const int64_t pair = t - t % (2 * step);
      const bool merging = pair + step < team;
      if (merging) std::copy(a + start(t), a + start(t + 1), work + start(t));
#pragma omp barrier
      if (merging) {
        const int64_t lo = start(pair), mid = start(pair + step), hi = start(pair + 2 * step);
        const int64_t members = std::min(2 * step, team - pair), share = t - pair;
        const int64_t first = (hi - lo) * share / members, last = (hi - lo) * (share + 1) / members;
        merge_piece(work + lo, mid - lo, work + mid, hi - mid, first, last, a + lo + first, Ascending{});
      }
#pragma omp barrier
    }
#pragma omp single
    finish_serial(std::span<T>(a, static_cast<size_t>(numbers)));
    if (order == Order::descending) {
#pragma omp for schedule(static)
      for (int64_t k = 0; k < n / 2; ++k) std::swap(a[k], a[n - 1 - k]);
    }
  }
}

template <class T>
void sort_vector(std::span<T> v, Order order) {
  const int64_t n = static_cast<int64_t>(v.size());
  int64_t numbers = n;
  if constexpr (std::is_floating_point_v<T>) numbers = set_aside_nans(v);

  const int threads = static_cast<int>(std::clamp<int64_t>(numbers / kMinPiece, 1, threads::max_threads()));
  SortPath path = sort_path();
  Workspace<T> work;
  if (threads > 1) {
    work = allocate_workspace<T>(numbers);
    // Without the workspace the whole vector goes to the scalar in-place quicksort, deliberately.
    if (!work) path = SortPath::scalar;
  }
  if (work) return sort_parallel(v, numbers, work.get(), threads, order, path);

  sort_piece(v.first(static_cast<size_t>(numbers)), path);
  finish_serial(v.first(static_cast<size_t>(numbers)));
  if (order == Order::descending) std::reverse(v.begin(), v.end());
}

}  // namespace

void sort(std::span<double> v, Order order) { sort_vector(v, order); }
void sort(std::span<int64_t> v, Order order) { sort_vector(v, order); }

}  // namespace vek::util
