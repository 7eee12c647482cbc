// s15adf (erfc) through its exported entry, IFAIL included, against the C library's erfc on the same
// arguments in the same run. Counters: nanoseconds per call for each and "vs_libc" = s15adf time / erfc
// time (target at most 1.5). One benchmark per coefficient region of the approximation and one over all.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <random>
#include <vector>

#include "vek.h"

namespace {

constexpr size_t kPoints = 4096;

std::vector<double> arguments(double lo, double hi) {
  std::mt19937_64 gen(2026);
  std::uniform_real_distribution<double> u(lo, hi);
  std::vector<double> v(kPoints);
  for (auto& x : v) x = u(gen);
  return v;
}

template <class F>
double ns_per_call(const std::vector<double>& xs, F f) {
  double sum = 0.0;
  const auto t0 = std::chrono::steady_clock::now();
  for (double x : xs) sum += f(x);
  const auto t1 = std::chrono::steady_clock::now();
  benchmark::DoNotOptimize(sum);
  return std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(xs.size());
}

// Arguments: the interval [lo, hi] of x, in hundredths.
void BM_Erfc(benchmark::State& state) {
  const std::vector<double> xs = arguments(state.range(0) / 100.0, state.range(1) / 100.0);
  double vek_ns = 0.0, libc_ns = 0.0;
  for (auto _ : state) {
    const double ns = ns_per_call(xs, [](double x) {
      int64_t ifail = 1;
      return s15adf_(&x, &ifail);
    });
    vek_ns += ns;
    state.SetIterationTime(ns * 1e-9 * static_cast<double>(kPoints));
    libc_ns += ns_per_call(xs, [](double x) { return std::erfc(x); });
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["libc_ns"] = libc_ns / runs;
  state.counters["vs_libc"] = vek_ns / libc_ns;
}

}  // namespace

BENCHMARK(BM_Erfc)
    ->Args({-46, 46})      // set A
    ->Args({47, 400})      // set C
    ->Args({401, 2600})    // set P
    ->Args({-600, 600})    // all regions, both signs
    ->ArgNames({"lo", "hi"})
    ->UseManualTime();
BENCHMARK_MAIN();
