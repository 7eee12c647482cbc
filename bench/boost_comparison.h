// Timing an exported entry against Boost.Math on the same points in the same benchmark iteration: ns per call
// of each, averaged over the iterations, as the counters vek_ns, boost_ns and vs_boost (= vek / Boost). The
// entry's time is also the iteration's manual time, for benchmarks registered with UseManualTime.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

template <class Point, class F>
double ns_per_call(const std::vector<Point>& pts, F f) {
  double sum = 0.0;
  const auto t0 = std::chrono::steady_clock::now();
  for (const Point& p : pts) sum += f(p);
  const auto t1 = std::chrono::steady_clock::now();
  benchmark::DoNotOptimize(sum);
  return std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(pts.size());
}

template <class Point, class Vek, class Boost>
void compare(benchmark::State& state, const std::vector<Point>& pts, Vek vek, Boost boost) {
  double vek_ns = 0.0, boost_ns = 0.0;
  for (auto _ : state) {
    const double ns = ns_per_call(pts, vek);
    vek_ns += ns;
    state.SetIterationTime(ns * 1e-9 * static_cast<double>(pts.size()));
    boost_ns += ns_per_call(pts, boost);
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["boost_ns"] = boost_ns / runs;
  state.counters["vs_boost"] = vek_ns / boost_ns;
}
