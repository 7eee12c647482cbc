// What the quadrature benchmarks share: GSL's integrand counting its calls, the time of one integration, and
// the race of a library routine against GSL's on the same integrand in one run, with its counters.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace vek::bench {

// GSL's integrand (params points to one of these): f, counting its calls.
struct CountedFunction {
  double (*f)(double);
  int64_t calls = 0;
};

inline double counted_call(double x, void* params) {
  auto* c = static_cast<CountedFunction*>(params);
  ++c->calls;
  return c->f(x);
}

// Microseconds per call of integrate(), over `repeats` calls.
template <class Integrate>
double us_per_integration(Integrate integrate, int repeats) {
  const auto t0 = std::chrono::steady_clock::now();
  for (int k = 0; k < repeats; ++k) benchmark::DoNotOptimize(integrate());
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count() / repeats;
}

// ours() and gsl() (each returning its result, and setting the evaluation counts they are given) timed in turn,
// 50 integrations a timing; the best of each over the runs in the counters vek_us, gsl_us and vs_gsl = vek_us /
// gsl_us, with vek_evals and gsl_evals, which must agree.
template <class Ours, class Gsl>
void race_against_gsl(benchmark::State& state, Ours ours, Gsl gsl, const int64_t& vek_evals, const int64_t& gsl_evals) {
  constexpr int kRepeats = 50;
  double vek_us = 1e300, gsl_us = 1e300;
  for (auto _ : state) {
    const double v = us_per_integration(ours, kRepeats);
    const double g = us_per_integration(gsl, kRepeats);
    vek_us = std::min(vek_us, v);
    gsl_us = std::min(gsl_us, g);
    state.SetIterationTime(v * kRepeats * 1e-6);
  }
  state.counters["vek_evals"] = static_cast<double>(vek_evals);
  state.counters["gsl_evals"] = static_cast<double>(gsl_evals);
  state.counters["vek_us"] = vek_us;
  state.counters["gsl_us"] = gsl_us;
  state.counters["vs_gsl"] = vek_us / gsl_us;
  if (vek_evals != gsl_evals) state.SkipWithError("the evaluation counts differ");
}

}  // namespace vek::bench
