// The G05 generators, ns per variate, each against its baselines in the same run:
// - g05saf per GENID against the memory floor (the C library's memset of the same array) and against
//   std::mt19937_64 with std::uniform_real_distribution; counters vs_floor (target for GENID 1: at most 1.5)
//   and vs_std;
// - MRG32k3a (GENID 6) also against the plain floating-point transcription of L'Ecuyer's algorithm:
//   counter speedup_vs_plain (target at least 3);
// Each figure is the best of the runs: one fill is far shorter than a time slice, so the minimum is the
// undisturbed time even on a shared machine.
// - g05skf (GENID 1) against std::normal_distribution with std::mt19937_64, with 1 and 2 threads: counter
//   speedup_vs_std (target at least 2.5 on one thread, and 1.7 times that again on two).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <vector>

#include "support/mrg32k3a_reference.h"
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

void BM_Uniforms(benchmark::State& state) {
  const int64_t genid = state.range(0), n = kN;
  std::vector<int64_t> st = initialised(genid);
  std::vector<double> x(kN);
  std::mt19937_64 engine(1);
  std::uniform_real_distribution<double> uniform;
  vek::testing::Mrg32k3aReference plain{12345, 12345, 12345, 12345, 12345, 12345};
  double vek = 1e300, floor = 1e300, std_ns = 1e300, plain_ns = 1e300;
  for (auto _ : state) {
    int64_t ifail = 0;
    const double t = ns_per_value(x, [&] { g05saf_(&n, st.data(), x.data(), &ifail); });
    vek = std::min(vek, t);
    state.SetIterationTime(t * kN * 1e-9);
    floor = std::min(floor, ns_per_value(x, [&] { std::memset(x.data(), 0, x.size() * sizeof(double)); }));
    std_ns = std::min(std_ns, ns_per_value(x, [&] {
      for (double& v : x) v = uniform(engine);
    }));
    if (genid == 6) plain_ns = std::min(plain_ns, ns_per_value(x, [&] {
      for (double& v : x) v = plain.next();
    }));
  }
  state.counters["vek_ns"] = vek;
  state.counters["floor_ns"] = floor;
  state.counters["std_ns"] = std_ns;
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
  double vek = 1e300, std_ns = 1e300;
  for (auto _ : state) {
    const double t = ns_per_value(x, [&] { g05skf_(&n, &xmu, &var, st.data(), x.data(), &ifail); });
    vek = std::min(vek, t);
    state.SetIterationTime(t * static_cast<double>(n) * 1e-9);
    std_ns = std::min(std_ns, ns_per_value(x, [&] {
      for (double& v : x) v = normal(engine);
    }));
  }
  state.counters["vek_ns"] = vek;
  state.counters["std_ns"] = std_ns;
  state.counters["speedup_vs_std"] = std_ns / vek;
  int64_t restore = before;
  x06aaf_(&restore, &ifail);
}

}  // namespace

BENCHMARK(BM_Uniforms)->DenseRange(1, 6)->ArgName("genid")->UseManualTime();
BENCHMARK(BM_Normals)->Arg(1)->Arg(2)->ArgName("threads")->UseManualTime();
BENCHMARK_MAIN();
