// The frame's own cost: a trivial routine called through its exported entry (entry layer, trace wrapper with
// tracing off, dispatch stub, worker) against a direct call of its worker, in the same run. The counter
// "extra_ns" is the difference per call; the target is at most 3 ns.
#include <benchmark/benchmark.h>

#include <chrono>

#include "vek.h"

// The workers are exported too (hosts may call them with their own adapters).
extern "C" void x04aafn_(const int64_t* iflag, int64_t* nerr);
extern "C" void x04adfn_(const int64_t* iounit, char* errbuf, int64_t* ierr, int64_t errbuf_len);

namespace {

constexpr int kCalls = 1 << 16;

template <class Call>
double ns_per_call(Call call) {
  const auto t0 = std::chrono::steady_clock::now();
  for (int i = 0; i < kCalls; ++i) call();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count() / kCalls;
}

void report(benchmark::State& state, double entry_ns, double worker_ns, int64_t iterations) {
  state.counters["entry_ns"] = entry_ns / double(iterations);
  state.counters["worker_ns"] = worker_ns / double(iterations);
  state.counters["extra_ns"] = (entry_ns - worker_ns) / double(iterations);
  state.counters["ratio"] = entry_ns / worker_ns;
}

// x04aaf: no IFAIL, so the entry is a jump through the trace wrapper and stub.
void BM_NoIfailRoutine(benchmark::State& state) {
  const int64_t get = 0;
  int64_t unit = 0;
  double entry = 0, worker = 0;
  for (auto _ : state) {
    entry += ns_per_call([&] { x04aaf_(&get, &unit); benchmark::DoNotOptimize(unit); });
    worker += ns_per_call([&] { x04aafn_(&get, &unit); benchmark::DoNotOptimize(unit); });
  }
  report(state, entry, worker, state.iterations());
}

// x04adf on a unit with no file: the IFAIL entry with its error buffer, success path.
void BM_IfailRoutine(benchmark::State& state) {
  const int64_t unit = 12345;
  int64_t ifail = 0, ierr = 0;
  char errbuf[200];
  double entry = 0, worker = 0;
  for (auto _ : state) {
    entry += ns_per_call([&] { ifail = 1; x04adf_(&unit, &ifail); benchmark::DoNotOptimize(ifail); });
    worker += ns_per_call([&] { x04adfn_(&unit, errbuf, &ierr, 200); benchmark::DoNotOptimize(ierr); });
  }
  report(state, entry, worker, state.iterations());
}

}  // namespace

BENCHMARK(BM_NoIfailRoutine);
BENCHMARK(BM_IfailRoutine);
BENCHMARK_MAIN();
