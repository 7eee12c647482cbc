// dgemm and dgetrf through the library's published names against the same operations of OpenBLAS called
// directly (Debian's shared libopenblas64, loaded in the same process), with 1 and 2 threads, in the same run.
// Counters: GFLOP/s of each from its fastest call (the machine is shared: the best call is the one least
// disturbed) and "vs_openblas" = library GFLOP/s / OpenBLAS GFLOP/s (target >= 0.97). dgetrf also runs the
// reference LAPACK (blocked right-looking LU over the same BLAS) when it is installed: "vs_reference".
// Full sizes are dgemm n = 2000 and dgetrf n = 4000; a short run (--benchmark_min_time below 0.5, as under
// CTest) uses n = 400 and 800 so that the suite stays quick.
// BM_Screen: the cost of the non-finite screen in front of the iterating drivers, on finite n = 1000 problems
// (values only, so that the screen's one pass weighs most): dgesdd, dsyevd and dgeev through the library's
// names against OpenBLAS's own, one thread, alternating calls; "vs_openblas" within 0.99 is the aim.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "vek.h"

namespace {

using Dgemm = void (*)(const char*, const char*, const int64_t*, const int64_t*, const int64_t*, const double*,
                       const double*, const int64_t*, const double*, const int64_t*, const double*, double*,
                       const int64_t*, int64_t, int64_t);
using Dgetrf = void (*)(const int64_t*, const int64_t*, double*, const int64_t*, int64_t*, int64_t*);

// A symbol of a shared library opened with RTLD_DEEPBIND: its internal calls bind to itself, never to the
// library's exports.
void* baseline_symbol(const char* path, const char* symbol) {
  void* h = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
  if (h == nullptr) throw std::runtime_error(dlerror());
  void* f = dlsym(h, symbol);
  if (f == nullptr) throw std::runtime_error(std::string(symbol) + " not in " + path);
  return f;
}

Dgemm openblas_dgemm() {
  static const auto f = reinterpret_cast<Dgemm>(baseline_symbol(VEK_OPENBLAS64_SHARED, "dgemm_"));
  return f;
}

Dgetrf openblas_dgetrf() {
  static const auto f = reinterpret_cast<Dgetrf>(baseline_symbol(VEK_OPENBLAS64_SHARED, "dgetrf_"));
  return f;
}

Dgetrf reference_dgetrf() {
#ifdef VEK_REFERENCE_LAPACK64
  static const auto f = reinterpret_cast<Dgetrf>(baseline_symbol(VEK_REFERENCE_LAPACK64, "dgetrf_"));
  return f;
#else
  return nullptr;
#endif
}

std::vector<double> random_matrix(int64_t n, unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> a(static_cast<size_t>(n * n));
  for (double& x : a) x = u(gen);
  return a;
}

template <class F>
double seconds(F f) {
  const auto t0 = std::chrono::steady_clock::now();
  f();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// Sets the thread count for the benchmark and restores it afterwards.
class Threads {
 public:
  explicit Threads(int64_t n) : before_(x06acf_()) { set(n); }
  ~Threads() { set(before_); }

 private:
  static void set(int64_t n) {
    int64_t ifail = 0;
    x06aaf_(&n, &ifail);
  }
  int64_t before_;
};

void report(benchmark::State& state, double flops, double vek_s, double ob_s) {
  state.counters["vek_gflops"] = flops / vek_s * 1e-9;
  state.counters["openblas_gflops"] = flops / ob_s * 1e-9;
  state.counters["vs_openblas"] = ob_s / vek_s;
}

constexpr double kNotYet = 1e300;

// Arguments: n, threads.
void BM_Dgemm(benchmark::State& state) {
  const int64_t n = state.range(0);
  const Threads threads(state.range(1));
  const std::vector<double> a = random_matrix(n, 1), b = random_matrix(n, 2);
  std::vector<double> c(static_cast<size_t>(n * n));
  const double alpha = 1, beta = 0;
  const Dgemm ob = openblas_dgemm();
  auto ours = [&] { dgemm_("N", "N", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1); };
  auto theirs = [&] { ob("N", "N", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1); };
  ours();  // both teams started before timing
  theirs();
  double vek_s = kNotYet, ob_s = kNotYet;
  for (auto _ : state) {
    const double s = seconds(ours);
    vek_s = std::min(vek_s, s);
    state.SetIterationTime(s);
    ob_s = std::min(ob_s, seconds(theirs));
    benchmark::DoNotOptimize(c.data());
  }
  report(state, 2.0 * static_cast<double>(n) * static_cast<double>(n) * static_cast<double>(n), vek_s, ob_s);
}

void BM_Dgetrf(benchmark::State& state) {
  const int64_t n = state.range(0);
  const Threads threads(state.range(1));
  const std::vector<double> a0 = random_matrix(n, 3);
  std::vector<double> a;
  std::vector<int64_t> ipiv(static_cast<size_t>(n));
  int64_t info = 0;
  const Dgetrf ob = openblas_dgetrf(), ref = reference_dgetrf();
  auto ours = [&] { dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info); };
  auto theirs = [&] { ob(&n, &n, a.data(), &n, ipiv.data(), &info); };
  auto reference = [&] { ref(&n, &n, a.data(), &n, ipiv.data(), &info); };
  a = a0;
  ours();
  a = a0;
  theirs();
  double vek_s = kNotYet, ob_s = kNotYet, ref_s = kNotYet;
  for (auto _ : state) {
    a = a0;
    const double s = seconds(ours);
    vek_s = std::min(vek_s, s);
    state.SetIterationTime(s);
    a = a0;
    ob_s = std::min(ob_s, seconds(theirs));
    if (ref != nullptr) {
      a = a0;
      ref_s = std::min(ref_s, seconds(reference));
    }
    benchmark::DoNotOptimize(a.data());
  }
  const double nd = static_cast<double>(n), flops = 2.0 / 3.0 * nd * nd * nd;
  report(state, flops, vek_s, ob_s);
  if (ref != nullptr) {
    state.counters["reference_gflops"] = flops / ref_s * 1e-9;
    state.counters["vs_reference"] = ref_s / vek_s;
  }
}

using Dgesdd = void (*)(const char*, const int64_t*, const int64_t*, double*, const int64_t*, double*, double*,
                        const int64_t*, double*, const int64_t*, double*, const int64_t*, int64_t*, int64_t*, int64_t);
using Dsyevd = void (*)(const char*, const char*, const int64_t*, double*, const int64_t*, double*, double*,
                        const int64_t*, int64_t*, const int64_t*, int64_t*, int64_t, int64_t);
using Dgeev = void (*)(const char*, const char*, const int64_t*, double*, const int64_t*, double*, double*, double*,
                       const int64_t*, double*, const int64_t*, double*, const int64_t*, int64_t*, int64_t, int64_t);

template <class F>
F openblas(const char* symbol) {
  return reinterpret_cast<F>(baseline_symbol(VEK_OPENBLAS64_SHARED, symbol));
}

// One call of a driver on a fresh copy of the matrix, by whichever implementation `side` picks.
struct ScreenedDriver {
  std::vector<double> a0, a, out1, out2, work;
  std::vector<int64_t> iwork;
  int64_t n, lwork, liwork, info = 0;

  ScreenedDriver(int64_t size, bool symmetric) : n(size) {
    a0 = random_matrix(n, 4);
    if (symmetric)
      for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < j; ++i) a0[static_cast<size_t>(i + j * n)] = a0[static_cast<size_t>(j + i * n)];
    out1.resize(static_cast<size_t>(n));
    out2.resize(static_cast<size_t>(n));
    lwork = 4 * n * n + 16 * n + 1000;
    liwork = 8 * n + 100;
    work.resize(static_cast<size_t>(lwork));
    iwork.resize(static_cast<size_t>(liwork));
  }
};

// Arguments: n, driver (0 dgesdd, 1 dsyevd, 2 dgeev).
void BM_Screen(benchmark::State& state) {
  const int64_t n = state.range(0), which = state.range(1);
  const Threads threads(1);
  // OpenBLAS's shared copy sizes its own team apart from the OpenMP setting: one thread there too.
  using SetThreads = void (*)(int);
  reinterpret_cast<SetThreads>(baseline_symbol(VEK_OPENBLAS64_SHARED, "openblas_set_num_threads"))(1);
  ScreenedDriver d(n, which == 1);
  const Dgesdd ob_gesdd = which == 0 ? openblas<Dgesdd>("dgesdd_") : nullptr;
  const Dsyevd ob_syevd = which == 1 ? openblas<Dsyevd>("dsyevd_") : nullptr;
  const Dgeev ob_geev = which == 2 ? openblas<Dgeev>("dgeev_") : nullptr;
  auto call = [&](bool ours) {
    d.a = d.a0;
    double* a = d.a.data();
    if (which == 0) {
      (ours ? dgesdd_ : ob_gesdd)("N", &n, &n, a, &n, d.out1.data(), nullptr, &n, nullptr, &n, d.work.data(), &d.lwork,
                                  d.iwork.data(), &d.info, 1);
    } else if (which == 1) {
      (ours ? dsyevd_ : ob_syevd)("N", "U", &n, a, &n, d.out1.data(), d.work.data(), &d.lwork, d.iwork.data(),
                                  &d.liwork, &d.info, 1, 1);
    } else {
      (ours ? dgeev_ : ob_geev)("N", "N", &n, a, &n, d.out1.data(), d.out2.data(), nullptr, &n, nullptr, &n,
                                d.work.data(), &d.lwork, &d.info, 1, 1);
    }
  };
  call(true);
  call(false);
  double vek_s = kNotYet, ob_s = kNotYet;
  for (auto _ : state) {
    d.a = d.a0;
    const double s = seconds([&] { call(true); });
    vek_s = std::min(vek_s, s);
    state.SetIterationTime(s);
    ob_s = std::min(ob_s, seconds([&] { call(false); }));
    if (d.info != 0) state.SkipWithError("driver failed");
  }
  state.counters["vek_ms"] = vek_s * 1e3;
  state.counters["openblas_ms"] = ob_s * 1e3;
  state.counters["vs_openblas"] = ob_s / vek_s;
  state.SetLabel(which == 0 ? "dgesdd" : which == 1 ? "dsyevd" : "dgeev");
}

bool short_run(int argc, char** argv) {
  const std::string flag = "--benchmark_min_time=";
  for (int i = 1; i < argc; ++i)
    if (std::strncmp(argv[i], flag.c_str(), flag.size()) == 0) return std::atof(argv[i] + flag.size()) < 0.5;
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = short_run(argc, argv);
  const int64_t gemm_n = quick ? 400 : 2000, lu_n = quick ? 800 : 4000;
  for (auto* b : {benchmark::RegisterBenchmark("BM_Dgemm", BM_Dgemm)->Args({gemm_n, 1})->Args({gemm_n, 2}),
                  benchmark::RegisterBenchmark("BM_Dgetrf", BM_Dgetrf)->Args({lu_n, 1})->Args({lu_n, 2})})
    b->ArgNames({"n", "threads"})->UseManualTime()->Unit(benchmark::kMillisecond);
  const int64_t screen_n = quick ? 200 : 1000;
  benchmark::RegisterBenchmark("BM_Screen", BM_Screen)
      ->Args({screen_n, 0})->Args({screen_n, 1})->Args({screen_n, 2})
      ->ArgNames({"n", "driver"})->UseManualTime()->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
