// d01anf and d01asf (through their exported entries) against GSL's gsl_integration_qawo and
// gsl_integration_qawf, the same QUADPACK algorithms: log(x) sin(10 pi x) over [0,1] (EPSREL = 1e-10) and
// cos(pi x / 2) / sqrt(x) over (0, infinity) (EPSABS = 1e-10), with room for 100 subintervals (per cycle).
// GSL's table of Chebyshev moments (21 levels) is made once outside the timing, as a caller reusing it would;
// d01anf and d01asf compute the moments they need in every call. Counters: evaluations ("vek_evals",
// "gsl_evals", which must be equal), microseconds per integration ("vek_us", "gsl_us", and "gsl_table_us" with
// the table made afresh in each call), "vs_gsl" = VEK time / GSL time and "vs_gsl_table" against the latter,
// each the best of the runs.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "quadrature_timing.h"
#include "vek.h"

namespace {

constexpr int64_t kLimit = 100;
constexpr int64_t kLevels = 21;

double log_x(double x) { return x == 0 ? 0 : std::log(x); }
double inverse_root(double x) { return x == 0 ? 0 : 1 / std::sqrt(x); }

double (*g_vek_f)(double) = nullptr;
double vek_f(const double* x, int64_t* iuser, double*) {
  ++iuser[0];
  return g_vek_f(*x);
}

void BM_Oscillatory(benchmark::State& state) {
  const bool fourier = state.range(0) == 1;
  state.SetLabel(fourier ? "qawf cos(pi x/2)/sqrt(x)" : "qawo log(x) sin(10 pi x)");
  gsl_set_error_handler_off();
  const double omega = fourier ? std::numbers::pi / 2 : 10 * std::numbers::pi;
  g_vek_f = fourier ? inverse_root : log_x;
  gsl_integration_workspace* gw = gsl_integration_workspace_alloc(kLimit + 1);
  gsl_integration_workspace* gc = gsl_integration_workspace_alloc(kLimit + 1);
  gsl_integration_qawo_table* table =
      gsl_integration_qawo_table_alloc(omega, 1.0, fourier ? GSL_INTEG_COSINE : GSL_INTEG_SINE, kLevels);
  std::vector<double> w(4 * kLimit + 25 * kLevels), rslst(kLimit), erlst(kLimit);
  std::vector<int64_t> iw(2 * kLimit), ierlst(kLimit);
  int64_t vek_evals = 0, gsl_evals = 0;
  auto vek = [&] {
    int64_t iuser[1] = {0}, ifail = 1, key = fourier ? 1 : 2, lst = 0;
    const int64_t lw = static_cast<int64_t>(w.size()), liw = 2 * kLimit, limlst = kLimit + 1;
    const double a = 0.0, b = 1.0, zero = 0.0, tol = 1e-10;
    double result = 0, abserr = 0;
    if (fourier)
      d01asf_(vek_f, &a, &omega, &key, &tol, &result, &abserr, &limlst, &lst, erlst.data(), rslst.data(),
              ierlst.data(), w.data(), &lw, iw.data(), &liw, iuser, nullptr, &ifail);
    else
      d01anf_(vek_f, &a, &b, &omega, &key, &zero, &tol, &result, &abserr, w.data(), &lw, iw.data(), &liw, iuser,
              nullptr, &ifail);
    vek_evals = iuser[0];
    return result;
  };
  auto gsl = [&] {
    vek::bench::CountedFunction counted{g_vek_f};
    gsl_function fn{vek::bench::counted_call, &counted};
    double result = 0, abserr = 0;
    if (fourier)
      gsl_integration_qawf(&fn, 0.0, 1e-10, kLimit + 1, gc, gw, table, &result, &abserr);
    else
      gsl_integration_qawo(&fn, 0.0, 0.0, 1e-10, kLimit + 1, gw, table, &result, &abserr);
    gsl_evals = counted.calls;
    return result;
  };
  auto gsl_table = [&] {
    gsl_integration_qawo_table_set(table, omega, 1.0, fourier ? GSL_INTEG_COSINE : GSL_INTEG_SINE);
    return gsl();
  };
  constexpr int kRepeats = 50;
  double vek_us = 1e300, gsl_us = 1e300, gsl_table_us = 1e300;
  for (auto _ : state) {
    const double v = vek::bench::us_per_integration(vek, kRepeats);
    const double g = vek::bench::us_per_integration(gsl, kRepeats);
    vek_us = std::min(vek_us, v);
    gsl_us = std::min(gsl_us, g);
    gsl_table_us = std::min(gsl_table_us, vek::bench::us_per_integration(gsl_table, kRepeats));
    state.SetIterationTime(v * kRepeats * 1e-6);
  }
  gsl_integration_qawo_table_free(table);
  gsl_integration_workspace_free(gw);
  gsl_integration_workspace_free(gc);
  state.counters["vek_evals"] = static_cast<double>(vek_evals);
  state.counters["gsl_evals"] = static_cast<double>(gsl_evals);
  state.counters["vek_us"] = vek_us;
  state.counters["gsl_us"] = gsl_us;
  state.counters["gsl_table_us"] = gsl_table_us;
  state.counters["vs_gsl"] = vek_us / gsl_us;
  state.counters["vs_gsl_table"] = vek_us / gsl_table_us;
  if (vek_evals != gsl_evals) state.SkipWithError("the evaluation counts differ");
}

}  // namespace

BENCHMARK(BM_Oscillatory)->DenseRange(0, 1)->ArgName("fourier")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
