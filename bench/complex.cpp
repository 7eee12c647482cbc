// The A02 complex helpers through their exported entries against the C++ library on the same operands in
// the same run: a02abf against std::hypot, a02aaf against std::sqrt of std::complex, a02acf against the
// std::complex quotient (the C library's careful complex division). Counters: nanoseconds per call for
// each and "vs_std" = VEK time / library time.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "vek.h"

namespace {

constexpr size_t kPairs = 4096;

// Operands with exponents spread over [-scale, scale] (0: magnitudes near 1).
std::vector<double> operands(int scale) {
  std::mt19937_64 gen(2026);
  std::uniform_real_distribution<double> mant(-1.0, 1.0);
  std::uniform_int_distribution<int> expo(-scale, scale);
  std::vector<double> v(4 * kPairs);
  for (auto& x : v) x = std::ldexp(mant(gen), expo(gen));
  return v;
}

template <class F>
double ns_per_call(const std::vector<double>& v, F f) {
  double sum = 0.0;
  const auto t0 = std::chrono::steady_clock::now();
  for (size_t k = 0; k < kPairs; ++k) sum += f(&v[4 * k]);
  const auto t1 = std::chrono::steady_clock::now();
  benchmark::DoNotOptimize(sum);
  return std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(kPairs);
}

template <class Vek, class Std>
void compare(benchmark::State& state, Vek vek, Std baseline) {
  const std::vector<double> v = operands(static_cast<int>(state.range(0)));
  double vek_ns = 0.0, std_ns = 0.0;
  for (auto _ : state) {
    const double ns = ns_per_call(v, vek);
    vek_ns += ns;
    state.SetIterationTime(ns * 1e-9 * static_cast<double>(kPairs));
    std_ns += ns_per_call(v, baseline);
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["std_ns"] = std_ns / runs;
  state.counters["vs_std"] = vek_ns / std_ns;
}

void BM_Modulus(benchmark::State& state) {
  compare(state, [](const double* p) { return a02abf_(&p[0], &p[1]); },
          [](const double* p) { return std::hypot(p[0], p[1]); });
}

void BM_SquareRoot(benchmark::State& state) {
  compare(state,
          [](const double* p) {
            double yr, yi;
            a02aaf_(&p[0], &p[1], &yr, &yi);
            return yr + yi;
          },
          [](const double* p) {
            const std::complex<double> y = std::sqrt(std::complex<double>(p[0], p[1]));
            return y.real() + y.imag();
          });
}

void BM_Quotient(benchmark::State& state) {
  compare(state,
          [](const double* p) {
            double zr, zi;
            a02acf_(&p[0], &p[1], &p[2], &p[3], &zr, &zi);
            return zr + zi;
          },
          [](const double* p) {
            const std::complex<double> z = std::complex<double>(p[0], p[1]) / std::complex<double>(p[2], p[3]);
            return z.real() + z.imag();
          });
}

}  // namespace

BENCHMARK(BM_Modulus)->Arg(0)->Arg(300)->ArgName("exp")->UseManualTime();
BENCHMARK(BM_SquareRoot)->Arg(0)->Arg(300)->ArgName("exp")->UseManualTime();
BENCHMARK(BM_Quotient)->Arg(0)->Arg(300)->ArgName("exp")->UseManualTime();
BENCHMARK_MAIN();
