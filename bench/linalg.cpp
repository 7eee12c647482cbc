// The level-3 BLAS, dgetrf, zgetrf and zpotrf through the library's published names against the same
// operations of OpenBLAS called directly (Debian's shared libopenblas64, loaded in the same process, running its
// own threads), with 1 and 2 threads, in the same run, calls alternating. Counters: GFLOP/s of each from its
// fastest call (the machine is shared: the best call is the one least disturbed), "vs_openblas" = OpenBLAS's
// fastest time / the library's fastest time, and "vs_openblas_cpu" the same ratio of process CPU time (the sum
// over the threads, far less sensitive to other users of the machine than the elapsed time; a team that waits
// on another's work spins and is counted). Targets: dgemm and the tiled level-3 routines >= 0.97 with two
// threads, dgetrf >= 0.98 with one and two, zgetrf and zpotrf >= 0.95. dgetrf also runs the reference LAPACK
// (blocked right-looking LU over the same BLAS) when it is installed: "vs_reference".
// Full sizes are n = 2000 for the real level-3 routines (1000 for the complex ones), dgetrf n = 4000, zgetrf and
// zpotrf n = 2000; a short run (--benchmark_min_time below 0.5, as under CTest) uses n = 400 and 800 so that the
// suite stays quick.
// BM_Screen: the cost of the non-finite screen in front of the iterating drivers, on finite n = 1000 problems
// (values only, so that the screen's one pass weighs most): dgesdd, dsyevd and dgeev through the library's
// names against OpenBLAS's own, one thread, alternating calls; "vs_openblas" within 0.99 is the aim.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "vek.h"

namespace {

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

double cpu_seconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// The fastest elapsed and CPU times seen for one side.
struct Best {
  double wall = 1e300, cpu = 1e300;
  // Times one call of f; returns its elapsed time.
  template <class F>
  double time(F f) {
    const double c0 = cpu_seconds();
    const double s = seconds(f);
    wall = std::min(wall, s);
    cpu = std::min(cpu, cpu_seconds() - c0);
    return s;
  }
};

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

void report(benchmark::State& state, double flops, const Best& vek, const Best& ob) {
  state.counters["vek_gflops"] = flops / vek.wall * 1e-9;
  state.counters["openblas_gflops"] = flops / ob.wall * 1e-9;
  state.counters["vs_openblas"] = ob.wall / vek.wall;
  state.counters["vs_openblas_cpu"] = ob.cpu / vek.cpu;
}

constexpr double kNotYet = 1e300;

// Both sides called once (teams started, buffers touched), then alternately timed.
template <class Ours, class Theirs>
void compare(benchmark::State& state, double flops, Ours ours, Theirs theirs) {
  ours();
  theirs();
  Best vek, ob;
  for (auto _ : state) {
    state.SetIterationTime(vek.time(ours));
    ob.time(theirs);
  }
  report(state, flops, vek, ob);
}

// The level-3 routines of BM_Level3, by number.
enum Level3 : int64_t { kDgemm, kDsymm, kDsyrk, kDsyr2k, kDtrmm, kDtrsm, kZgemm, kZherk, kLevel3Count };
constexpr const char* kLevel3Names[] = {"dgemm", "dsymm", "dsyrk", "dsyr2k", "dtrmm", "dtrsm", "zgemm", "zherk"};

// Arguments: routine, n, threads. Square operands; C = alpha A B + beta C and the like with beta = 0.5.
void BM_Level3(benchmark::State& state) {
  const int64_t which = state.range(0), n = state.range(1);
  const Threads threads(state.range(2));
  const bool complex = which == kZgemm || which == kZherk;
  const int64_t width = complex ? 2 : 1;
  std::vector<double> a = random_matrix(n * width, 1), b = random_matrix(n * width, 2), c = random_matrix(n * width, 5);
  a.resize(static_cast<size_t>(n * n * width));
  b.resize(a.size());
  c.resize(a.size());
  for (int64_t i = 0; i < n; ++i) a[static_cast<size_t>(width * (i + i * n))] += static_cast<double>(n);
  const double alpha = 1, beta = 0.5, zalpha[2] = {1, 0.5}, zbeta[2] = {0.5, 0};
  // B is overwritten by the triangular routines: scaled so that it stays of the same size call after call.
  const double tri_alpha = which == kDtrmm ? 1.0 / static_cast<double>(n) : static_cast<double>(n);
  const auto* za = reinterpret_cast<const vek_complex*>(a.data());
  const auto* zb = reinterpret_cast<const vek_complex*>(b.data());
  auto* zc = reinterpret_cast<vek_complex*>(c.data());
  const auto* zal = reinterpret_cast<const vek_complex*>(zalpha);
  const auto* zbe = reinterpret_cast<const vek_complex*>(zbeta);
  const std::string name = kLevel3Names[which];
  void* theirs = baseline_symbol(VEK_OPENBLAS64_SHARED, (name + "_").c_str());
  const double nd = static_cast<double>(n), cube = nd * nd * nd;
  // The call of one side: f is the library's routine or OpenBLAS's, of the same type.
  auto call = [&](auto f) {
    return [&, f] {
      if constexpr (std::is_same_v<decltype(f), decltype(&dgemm_)>) {
        f("N", "N", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1);
      } else if constexpr (std::is_same_v<decltype(f), decltype(&dsymm_)>) {  // also the type of dsyr2k_
        if (which == kDsyr2k) f("U", "N", &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1);
        else f("L", "L", &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1);
      } else if constexpr (std::is_same_v<decltype(f), decltype(&dsyrk_)>) {
        f("L", "N", &n, &n, &alpha, a.data(), &n, &beta, c.data(), &n, 1, 1);
      } else if constexpr (std::is_same_v<decltype(f), decltype(&dtrmm_)>) {
        f("L", "L", "N", "N", &n, &n, &tri_alpha, a.data(), &n, c.data(), &n, 1, 1, 1, 1);
      } else if constexpr (std::is_same_v<decltype(f), decltype(&zgemm_)>) {
        f("N", "N", &n, &n, &n, zal, za, &n, zb, &n, zbe, zc, &n, 1, 1);
      } else {
        f("L", "N", &n, &n, &alpha, za, &n, &beta, zc, &n, 1, 1);
      }
    };
  };
  switch (which) {
    case kDgemm: return compare(state, 2 * cube, call(&dgemm_), call(reinterpret_cast<decltype(&dgemm_)>(theirs)));
    case kDsymm: return compare(state, 2 * cube, call(&dsymm_), call(reinterpret_cast<decltype(&dsymm_)>(theirs)));
    case kDsyrk: return compare(state, cube, call(&dsyrk_), call(reinterpret_cast<decltype(&dsyrk_)>(theirs)));
    case kDsyr2k: return compare(state, 2 * cube, call(&dsyr2k_), call(reinterpret_cast<decltype(&dsyr2k_)>(theirs)));
    // dtrmm and dtrsm share their type (and the call: left, lower, no transpose).
    case kDtrmm: return compare(state, cube, call(&dtrmm_), call(reinterpret_cast<decltype(&dtrmm_)>(theirs)));
    case kDtrsm: return compare(state, cube, call(&dtrsm_), call(reinterpret_cast<decltype(&dtrsm_)>(theirs)));
    case kZgemm: return compare(state, 8 * cube, call(&zgemm_), call(reinterpret_cast<decltype(&zgemm_)>(theirs)));
    default: return compare(state, 4 * cube, call(&zherk_), call(reinterpret_cast<decltype(&zherk_)>(theirs)));
  }
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
  Best vek, openblas_best;
  double ref_s = kNotYet;
  for (auto _ : state) {
    a = a0;
    state.SetIterationTime(vek.time(ours));
    a = a0;
    openblas_best.time(theirs);
    if (ref != nullptr) {
      a = a0;
      ref_s = std::min(ref_s, seconds(reference));
    }
    benchmark::DoNotOptimize(a.data());
  }
  const double nd = static_cast<double>(n), flops = 2.0 / 3.0 * nd * nd * nd;
  report(state, flops, vek, openblas_best);
  if (ref != nullptr) {
    state.counters["reference_gflops"] = flops / ref_s * 1e-9;
    state.counters["vs_reference"] = ref_s / vek.wall;
  }
}

// Arguments: routine (0 zgetrf, 1 zpotrf with UPLO = 'L'), n, threads. A fresh copy of the matrix for every
// call, made outside the timing; the Hermitian matrix has the diagonal 2n (positive definite).
void BM_ComplexFactor(benchmark::State& state) {
  const bool cholesky = state.range(0) == 1;
  const int64_t n = state.range(1);
  const Threads threads(state.range(2));
  const std::vector<double> re = random_matrix(n, 6), im = random_matrix(n, 7);
  std::vector<double> a0(static_cast<size_t>(2 * n * n));
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < n; ++i) {
      const auto k = static_cast<size_t>(i + j * n), t = static_cast<size_t>(j + i * n);  // (i,j) and (j,i)
      const bool upper = cholesky && i < j, diagonal = cholesky && i == j;
      a0[2 * k] = diagonal ? 2.0 * static_cast<double>(n) : upper ? re[t] : re[k];
      a0[2 * k + 1] = diagonal ? 0.0 : upper ? -im[t] : im[k];
    }
  std::vector<double> a;
  std::vector<int64_t> ipiv(static_cast<size_t>(n));
  int64_t info = 0;
  const auto zgetrf = reinterpret_cast<decltype(&zgetrf_)>(baseline_symbol(VEK_OPENBLAS64_SHARED, "zgetrf_"));
  const auto zpotrf = reinterpret_cast<decltype(&zpotrf_)>(baseline_symbol(VEK_OPENBLAS64_SHARED, "zpotrf_"));
  const auto call = [&](decltype(&zgetrf_) getrf, decltype(&zpotrf_) potrf) {
    return [&, getrf, potrf] {
      auto* za = reinterpret_cast<vek_complex*>(a.data());
      if (cholesky) potrf("L", &n, za, &n, &info, 1);
      else getrf(&n, &n, za, &n, ipiv.data(), &info);
    };
  };
  const auto ours = call(&zgetrf_, &zpotrf_), theirs = call(zgetrf, zpotrf);
  a = a0;
  ours();
  a = a0;
  theirs();
  Best vek, ob;
  for (auto _ : state) {
    a = a0;
    state.SetIterationTime(vek.time(ours));
    a = a0;
    ob.time(theirs);
    if (info != 0) state.SkipWithError("factorisation failed");
  }
  const double nd = static_cast<double>(n);
  report(state, (cholesky ? 4.0 / 3.0 : 8.0 / 3.0) * nd * nd * nd, vek, ob);
  state.SetLabel(cholesky ? "zpotrf" : "zgetrf");
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
  const int64_t level3_n = quick ? 400 : 2000, lu_n = quick ? 800 : 4000;
  auto* level3 = benchmark::RegisterBenchmark("BM_Level3", BM_Level3);
  for (int64_t which = 0; which < kLevel3Count; ++which)
    for (int64_t threads : {1, 2})
      level3->Args({which, which >= kZgemm ? level3_n / 2 : level3_n, threads});
  level3->ArgNames({"routine", "n", "threads"})->UseManualTime()->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("BM_Dgetrf", BM_Dgetrf)->Args({lu_n, 1})->Args({lu_n, 2})
      ->ArgNames({"n", "threads"})->UseManualTime()->Unit(benchmark::kMillisecond);
  auto* complex_factor = benchmark::RegisterBenchmark("BM_ComplexFactor", BM_ComplexFactor);
  for (int64_t routine : {0, 1})
    for (int64_t threads : {1, 2}) complex_factor->Args({routine, quick ? 400 : 2000, threads});
  complex_factor->ArgNames({"routine", "n", "threads"})->UseManualTime()->Unit(benchmark::kMillisecond);
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
