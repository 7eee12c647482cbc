// m01caf against std::sort and the GNU parallel-mode sort on the same random doubles, with 1 and 2 threads,
// in the same run. Counters: milliseconds per sort for each, "vs_std" = m01caf time / std::sort time (target
// at most 1.2 with one thread, at most 0.67 with two threads on 1e7) and "vs_gnu_parallel" likewise.
#include <benchmark/benchmark.h>
#include <omp.h>

#include <algorithm>
#include <chrono>
#include <parallel/algorithm>
#include <random>
#include <vector>

#include "vek.h"

namespace {

std::vector<double> random_doubles(int64_t n) {
  std::mt19937_64 gen(2024);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> v(static_cast<size_t>(n));
  for (auto& x : v) x = u(gen);
  return v;
}

template <class Sort>
double ms_to_sort(const std::vector<double>& input, std::vector<double>& work, Sort sort) {
  work = input;
  const auto t0 = std::chrono::steady_clock::now();
  sort(work);
  const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
  benchmark::DoNotOptimize(work.data());
  return ms;
}

// Arguments: vector length, thread count.
void BM_SortDoubles(benchmark::State& state) {
  const int64_t n = state.range(0);
  int64_t threads = state.range(1), ifail = 0;
  const int64_t threads_before = x06acf_();
  x06aaf_(&threads, &ifail);
  const std::vector<double> input = random_doubles(n);
  std::vector<double> work;
  double vek_ms = 0, std_ms = 0, gnu_ms = 0;
  for (auto _ : state) {
    const double ms = ms_to_sort(input, work, [n](std::vector<double>& v) {
      const int64_t m1 = 1, m2 = n;
      int64_t fail = 0;
      m01caf_(v.data(), &m1, &m2, "A", &fail, 1);
    });
    vek_ms += ms;
    state.SetIterationTime(ms / 1000.0);
    std_ms += ms_to_sort(input, work, [](std::vector<double>& v) { std::sort(v.begin(), v.end()); });
    gnu_ms += ms_to_sort(input, work, [threads](std::vector<double>& v) {
      __gnu_parallel::sort(v.begin(), v.end(), std::less<double>(),
                           __gnu_parallel::default_parallel_tag(static_cast<int>(threads)));
    });
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ms"] = vek_ms / runs;
  state.counters["std_ms"] = std_ms / runs;
  state.counters["gnu_parallel_ms"] = gnu_ms / runs;
  state.counters["vs_std"] = vek_ms / std_ms;
  state.counters["vs_gnu_parallel"] = vek_ms / gnu_ms;
  int64_t restore = threads_before;
  x06aaf_(&restore, &ifail);
}

}  // namespace

BENCHMARK(BM_SortDoubles)
    ->ArgsProduct({{1000000, 10000000}, {1, 2}})
    ->ArgNames({"n", "threads"})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
