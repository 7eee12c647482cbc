// c05baf (the real Lambert W function, through its exported entry) against GSL's gsl_sf_lambert_W0 and
// gsl_sf_lambert_Wm1 on the same points, in the same run: per region, nanoseconds per call of each
// ("vek_ns", "gsl_ns") and the ratio "vs_gsl" = c05baf time / GSL time. Each figure is the best of the runs.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf_lambert.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

#include "vek.h"

namespace {

struct Region {
  const char* name;
  int64_t branch;
  double lo, hi;  // arguments log-uniform in [lo, hi] (both of one sign), or uniform when `uniform`
  bool uniform;
};

const Region kRegions[] = {
    {"principal_near_branch_point", 0, -0.36787944117144233 + 1e-12, -0.3, true},
    {"principal_moderate", 0, 1e-3, 1e3, false},
    {"principal_large", 0, 1e3, 1e300, false},
    {"lower_near_branch_point", -1, -0.36787944117144233 + 1e-12, -0.3, true},
    {"lower_small", -1, -0.3, -1e-300, false},
};

std::vector<double> points(const Region& r) {
  std::mt19937_64 rng(20261124);
  std::vector<double> x(1024);
  for (double& v : x) {
    const double u = std::uniform_real_distribution<double>(0, 1)(rng);
    v = r.uniform ? r.lo + u * (r.hi - r.lo)
                  : std::copysign(std::exp(std::log(std::abs(r.lo)) * (1 - u) + std::log(std::abs(r.hi)) * u), r.lo);
  }
  return x;
}

template <class Call>
double ns_per_call(const std::vector<double>& x, Call call) {
  const auto t0 = std::chrono::steady_clock::now();
  double sum = 0;
  for (double v : x) sum += call(v);
  benchmark::DoNotOptimize(sum);
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count() /
         static_cast<double>(x.size());
}

void BM_LambertW(benchmark::State& state) {
  const Region& r = kRegions[state.range(0)];
  state.SetLabel(r.name);
  gsl_set_error_handler_off();
  const std::vector<double> x = points(r);
  const int64_t offset = 0;
  double vek_ns = 1e300, gsl_ns = 1e300;
  for (auto _ : state) {
    const double t = ns_per_call(x, [&](double v) {
      int64_t ifail = 1;
      return c05baf_(&v, &r.branch, &offset, &ifail);
    });
    vek_ns = std::min(vek_ns, t);
    state.SetIterationTime(t * static_cast<double>(x.size()) * 1e-9);
    gsl_ns = std::min(gsl_ns, ns_per_call(x, [&](double v) {
      return r.branch == 0 ? gsl_sf_lambert_W0(v) : gsl_sf_lambert_Wm1(v);
    }));
  }
  state.counters["vek_ns"] = vek_ns;
  state.counters["gsl_ns"] = gsl_ns;
  state.counters["vs_gsl"] = vek_ns / gsl_ns;
}

}  // namespace

BENCHMARK(BM_LambertW)->DenseRange(0, 4)->ArgName("region")->UseManualTime();
BENCHMARK_MAIN();
