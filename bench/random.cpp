// The G05 generators, ns per variate, each against its baselines in the same run:
// - g05saf per GENID against the memory floor (filling the same array with a constant) and against
//   std::mt19937_64 with std::uniform_real_distribution; counters vs_floor (target for GENID 1: at most 1.5)
//   and vs_std;
// - MRG32k3a (GENID 6) also against the plain floating-point transcription of L'Ecuyer's algorithm:
//   counter speedup_vs_plain (target at least 3);
// - g05skf (GENID 1) against std::normal_distribution with std::mt19937_64, with 1 and 2 threads: counter
//   speedup_vs_std (target at least 2.5 on one thread, and 1.7 times that again on two).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

#include "vek.h"

namespace {

constexpr int64_t kN = 1 << 16;

std::vector<int64_t> initialised(int64_t genid) {
  const int64_t subid = 1, lseed = 1, seed[1] = {20261124};
  int64_t lstate = 0, ifail = 1;
  std::vector<int64_t> state(1);
  g05kff_(&genid, &subid, seed, &lseed, state.data(), &lstate, &ifail);
  state.assign(static_cast<size_t>(lstate), 0);
  ifail = 0;
  g05kff_(&genid, &subid, seed, &lseed, state.data(), &lstate, &ifail);
  return state;
}

template <class Fill>
double ns_per_value(std::vector<double>& x, Fill fill) {
  const auto t0 = std::chrono::steady_clock::now();
  fill();
  const double ns = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count();
  benchmark::DoNotOptimize(x.data());
  benchmark::ClobberMemory();
  return ns / static_cast<double>(x.size());
}

struct Mrg32k3aPlain {
  double s10 = 12345, s11 = 12345, s12 = 12345, s20 = 12345, s21 = 12345, s22 = 12345;
  double next() {
    const double m1 = 4294967087.0, m2 = 4294944443.0, norm = 2.328306549295728e-10;
    double p1 = 1403580.0 * s11 - 810728.0 * s10;
    long k = static_cast<long>(p1 / m1);
    p1 -= static_cast<double>(k) * m1;
    if (p1 < 0.0) p1 += m1;
    s10 = s11;
    s11 = s12;
    s12 = p1;
    double p2 = 527612.0 * s22 - 1370589.0 * s20;
    k = static_cast<long>(p2 / m2);
    p2 -= static_cast<double>(k) * m2;
    if (p2 < 0.0) p2 += m2;
    s20 = s21;
    s21 = s22;
    s22 = p2;
    return p1 > p2 ? (p1 - p2) * norm : (p1 - p2 + m1) * norm;
  }
};

void BM_Uniforms(benchmark::State& state) {
  const int64_t genid = state.range(0), n = kN;
  std::vector<int64_t> st = initialised(genid);
  std::vector<double> x(kN);
  std::mt19937_64 engine(1);
  std::uniform_real_distribution<double> uniform;
  Mrg32k3aPlain plain;
  double vek = 0, floor = 0, std_ns = 0, plain_ns = 0;
  for (auto _ : state) {
    int64_t ifail = 0;
    const double t = ns_per_value(x, [&] { g05saf_(&n, st.data(), x.data(), &ifail); });
    vek += t;
    state.SetIterationTime(t * kN * 1e-9);
    floor += ns_per_value(x, [&] { std::fill(x.begin(), x.end(), 0.5); });
    std_ns += ns_per_value(x, [&] {
      for (double& v : x) v = uniform(engine);
    });
    if (genid == 6) plain_ns += ns_per_value(x, [&] {
      for (double& v : x) v = plain.next();
    });
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek / runs;
  state.counters["floor_ns"] = floor / runs;
  state.counters["std_ns"] = std_ns / runs;
  state.counters["vs_floor"] = vek / floor;
  state.counters["vs_std"] = vek / std_ns;
  if (genid == 6) state.counters["speedup_vs_plain"] = plain_ns / vek;
}

void BM_Normals(benchmark::State& state) {
  int64_t threads = state.range(0), ifail = 0;
  const int64_t before = x06acf_();
  x06aaf_(&threads, &ifail);
  const int64_t n = 1 << 20;
  std::vector<int64_t> st = initialised(1);
  std::vector<double> x(static_cast<size_t>(n));
  std::mt19937_64 engine(1);
  std::normal_distribution<double> normal(0.0, 1.0);
  const double xmu = 0.0, var = 1.0;
  double vek = 0, std_ns = 0;
  for (auto _ : state) {
    const double t = ns_per_value(x, [&] { g05skf_(&n, &xmu, &var, st.data(), x.data(), &ifail); });
    vek += t;
    state.SetIterationTime(t * static_cast<double>(n) * 1e-9);
    std_ns += ns_per_value(x, [&] {
      for (double& v : x) v = normal(engine);
    });
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek / runs;
  state.counters["std_ns"] = std_ns / runs;
  state.counters["speedup_vs_std"] = std_ns / vek;
  int64_t restore = before;
  x06aaf_(&restore, &ifail);
}

}  // namespace

BENCHMARK(BM_Uniforms)->DenseRange(1, 6)->ArgName("genid")->UseManualTime();
BENCHMARK(BM_Normals)->Arg(1)->Arg(2)->ArgName("threads")->UseManualTime();
BENCHMARK_MAIN();
