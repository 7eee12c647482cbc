// The routed complex kernels (src/linalg/vector_kernel_routes.cpp) through the library's published names
// against Debian's shared OpenBLAS called directly (its own kernels, unrouted), one thread each, alternating
// calls in the same run, on the shapes the routing splits: zgemv 'N' with M = 2 (mod 4), zhemv 'U' with odd N
// and unit increments, strided zdotc. Counter "vs_openblas" = OpenBLAS time / library time of the fastest
// calls (1 = the same speed). Full sizes n = 2002 (matrix) and 2^21 (dot); a short run (--benchmark_min_time
// below 0.5, as under CTest) uses 202 and 2^14.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <omp.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "vek.h"

namespace {

void* openblas_symbol(const char* symbol) {
  static void* h = dlopen(VEK_OPENBLAS64_SHARED, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
  if (h == nullptr) throw std::runtime_error(dlerror());
  void* f = dlsym(h, symbol);
  if (f == nullptr) throw std::runtime_error(std::string(symbol) + " not in OpenBLAS");
  return f;
}

bool short_run = false;

// Alternates the two calls and reports their fastest times.
void compare(benchmark::State& state, const std::function<void()>& library, const std::function<void()>& openblas) {
  using clock = std::chrono::steady_clock;
  double best_vek = 1e30, best_ob = 1e30;
  for (auto _ : state) {
    auto t0 = clock::now();
    library();
    auto t1 = clock::now();
    openblas();
    auto t2 = clock::now();
    best_vek = std::min(best_vek, std::chrono::duration<double>(t1 - t0).count());
    best_ob = std::min(best_ob, std::chrono::duration<double>(t2 - t1).count());
  }
  state.counters["vek_us"] = best_vek * 1e6;
  state.counters["openblas_us"] = best_ob * 1e6;
  state.counters["vs_openblas"] = best_ob / best_vek;
}

std::vector<vek_complex> data(std::size_t n, int salt) {
  std::vector<vek_complex> v(n);
  for (std::size_t i = 0; i < n; ++i) v[i] = {0.5 + static_cast<double>((i * 37 + salt) % 11) / 8.0, 0.25};
  return v;
}

using Zgemv = void (*)(const char*, const int64_t*, const int64_t*, const vek_complex*, const vek_complex*,
                       const int64_t*, const vek_complex*, const int64_t*, const vek_complex*, vek_complex*,
                       const int64_t*, int64_t);
using Zdot = vek_complex (*)(const int64_t*, const vek_complex*, const int64_t*, const vek_complex*, const int64_t*);

void BM_ZgemvN(benchmark::State& state) {
  omp_set_num_threads(1);
  const int64_t m = short_run ? 202 : 2002, n = m - 2, one = 1;
  const auto a = data(static_cast<std::size_t>(m * n), 1), x = data(static_cast<std::size_t>(n), 2);
  auto y = data(static_cast<std::size_t>(m), 3);
  const vek_complex alpha{1, 0.5}, beta{0.5, 0};
  const auto ob = reinterpret_cast<Zgemv>(openblas_symbol("zgemv_"));
  compare(state, [&] { zgemv_("N", &m, &n, &alpha, a.data(), &m, x.data(), &one, &beta, y.data(), &one, 1); },
          [&] { ob("N", &m, &n, &alpha, a.data(), &m, x.data(), &one, &beta, y.data(), &one, 1); });
}

void BM_ZhemvUpper(benchmark::State& state) {
  omp_set_num_threads(1);
  const int64_t n = short_run ? 201 : 2001, one = 1;
  const auto a = data(static_cast<std::size_t>(n * n), 4), x = data(static_cast<std::size_t>(n), 5);
  auto y = data(static_cast<std::size_t>(n), 6);
  const vek_complex alpha{1, 0.5}, beta{0.5, 0};
  using Zhemv = void (*)(const char*, const int64_t*, const vek_complex*, const vek_complex*, const int64_t*,
                         const vek_complex*, const int64_t*, const vek_complex*, vek_complex*, const int64_t*, int64_t);
  const auto hemv = reinterpret_cast<Zhemv>(openblas_symbol("zhemv_"));
  compare(state, [&] { zhemv_("U", &n, &alpha, a.data(), &n, x.data(), &one, &beta, y.data(), &one, 1); },
          [&] { hemv("U", &n, &alpha, a.data(), &n, x.data(), &one, &beta, y.data(), &one, 1); });
}

void BM_ZdotcStrided(benchmark::State& state) {
  omp_set_num_threads(1);
  const int64_t n = short_run ? 1 << 14 : 1 << 21, two = 2, one = 1;
  const auto x = data(static_cast<std::size_t>(2 * n), 7), y = data(static_cast<std::size_t>(n), 8);
  const auto ob = reinterpret_cast<Zdot>(openblas_symbol("zdotc_"));
  volatile double sink = 0;
  compare(state, [&] { sink = sink + zdotc_(&n, x.data(), &two, y.data(), &one).re; },
          [&] { sink = sink + ob(&n, x.data(), &two, y.data(), &one).re; });
}

}  // namespace

int main(int argc, char** argv) {
  for (int k = 1; k < argc; ++k)
    if (std::strncmp(argv[k], "--benchmark_min_time=", 21) == 0) short_run = std::atof(argv[k] + 21) < 0.5;
  benchmark::Initialize(&argc, argv);
  benchmark::RegisterBenchmark("BM_ZgemvN", BM_ZgemvN)->UseRealTime();
  benchmark::RegisterBenchmark("BM_ZhemvUpper", BM_ZhemvUpper)->UseRealTime();
  benchmark::RegisterBenchmark("BM_ZdotcStrided", BM_ZdotcStrided)->UseRealTime();
  benchmark::RunSpecifiedBenchmarks();
}
