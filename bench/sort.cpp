// m01caf against std::sort and Highway's vectorised quicksort (vqsort) on the same random doubles, with 1 and
// 2 threads, in the same run. Each iteration sorts a fresh copy with each of the three; the counters are the
// fastest of the iterations (the machine is shared, and the minimum is what the code can do when it has a
// core), in milliseconds of elapsed time, with the ratios "vs_std" = m01caf / std::sort (target at most 0.35
// with one thread, 0.2 with two) and "vs_vqsort" = m01caf / vqsort (target at most 1.5 with one thread). With
// one thread the run also reports the same ratios in the calling thread's CPU time (cpu_vs_std,
// cpu_vs_vqsort), which another process's load on the core does not inflate. std::sort and vqsort always run
// on one thread. For figures: bench_sort --benchmark_min_time=5 (several iterations each).
#include <benchmark/benchmark.h>
#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <chrono>
#include <ctime>
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

double thread_cpu_ms() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

// The fastest elapsed and CPU times seen for one sort.
struct Best {
  double wall_ms = 1e300, cpu_ms = 1e300;

  template <class Sort>
  double time(const std::vector<double>& input, std::vector<double>& work, Sort sort) {
    std::copy(input.begin(), input.end(), work.begin());
    const double cpu0 = thread_cpu_ms();
    const auto t0 = std::chrono::steady_clock::now();
    sort(work);
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
    cpu_ms = std::min(cpu_ms, thread_cpu_ms() - cpu0);
    benchmark::DoNotOptimize(work.data());
    wall_ms = std::min(wall_ms, ms);
    return ms;
  }
};

// Arguments: vector length, thread count.
void BM_SortDoubles(benchmark::State& state) {
  const int64_t n = state.range(0);
  int64_t threads = state.range(1), ifail = 0;
  const int64_t threads_before = x06acf_();
  x06aaf_(&threads, &ifail);
  const std::vector<double> input = random_doubles(n);
  std::vector<double> work(input.size());
  const hwy::Sorter vqsort;
  Best vek, standard, highway;
  for (auto _ : state) {
    state.SetIterationTime(vek.time(input, work, [n](std::vector<double>& v) {
      const int64_t m1 = 1, m2 = n;
      int64_t fail = 0;
      m01caf_(v.data(), &m1, &m2, "A", &fail, 1);
    }) / 1000.0);
    standard.time(input, work, [](std::vector<double>& v) { std::sort(v.begin(), v.end()); });
    highway.time(input, work, [&vqsort](std::vector<double>& v) { vqsort(v.data(), v.size(), hwy::SortAscending()); });
  }
  state.counters["vek_ms"] = vek.wall_ms;
  state.counters["std_ms"] = standard.wall_ms;
  state.counters["vqsort_ms"] = highway.wall_ms;
  state.counters["vs_std"] = vek.wall_ms / standard.wall_ms;
  state.counters["vs_vqsort"] = vek.wall_ms / highway.wall_ms;
  if (threads == 1) {
    state.counters["cpu_vs_std"] = vek.cpu_ms / standard.cpu_ms;
    state.counters["cpu_vs_vqsort"] = vek.cpu_ms / highway.cpu_ms;
  }
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
