// d01ajf (through its exported entry) against GSL's gsl_integration_qags, the same QUADPACK algorithm, on two
// classic integrands with the same tolerances (EPSABS = 0, EPSREL = 1e-10): log(x)/sqrt(x) over [0,1] (an
// end-point singularity, extrapolation at work) and cos(100 sin x) over [0,pi] (oscillation, many bisections),
// both with room for 100 subintervals (d01ajf zeroes W beyond the lists it uses, a cost proportional to LW).
// Counters per integrand: evaluations of each ("vek_evals", "gsl_evals", which must be equal), microseconds per
// integration ("vek_us", "gsl_us") and "vs_gsl" = d01ajf time / GSL time. Each figure is the best of the runs.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "vek.h"

namespace {

constexpr double kEpsRel = 1e-10;
constexpr int64_t kLimit = 100;

struct Problem {
  const char* name;
  double (*f)(double);
  double a, b;
};

const Problem kProblems[] = {
    {"log_over_sqrt", [](double x) { return std::log(x) / std::sqrt(x); }, 0.0, 1.0},
    {"cos_100_sin", [](double x) { return std::cos(100.0 * std::sin(x)); }, 0.0, 3.141592653589793},
};

double vek_f(const double* x, int64_t* iuser, double*) {
  ++iuser[0];
  return kProblems[iuser[1]].f(*x);
}

struct Counted {
  const Problem* p;
  int64_t calls = 0;
};

double gsl_f(double x, void* params) {
  auto* c = static_cast<Counted*>(params);
  ++c->calls;
  return c->p->f(x);
}

template <class Integrate>
double us_per_integration(Integrate integrate, int repeats) {
  const auto t0 = std::chrono::steady_clock::now();
  for (int k = 0; k < repeats; ++k) benchmark::DoNotOptimize(integrate());
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count() / repeats;
}

void BM_Quadrature(benchmark::State& state) {
  const int64_t problem = state.range(0);
  const Problem& p = kProblems[problem];
  state.SetLabel(p.name);
  gsl_set_error_handler_off();
  gsl_integration_workspace* gw = gsl_integration_workspace_alloc(kLimit + 1);
  std::vector<double> w(4 * kLimit);
  std::vector<int64_t> iw(kLimit);
  int64_t vek_evals = 0, gsl_evals = 0;
  auto vek = [&] {
    int64_t iuser[2] = {0, problem}, ifail = 1;
    const int64_t lw = 4 * kLimit, liw = kLimit;
    const double epsabs = 0.0, epsrel = kEpsRel;
    double result = 0, abserr = 0;
    d01ajf_(vek_f, &p.a, &p.b, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw, iuser, nullptr,
            &ifail);
    vek_evals = iuser[0];
    return result;
  };
  auto gsl = [&] {
    Counted counted{&p};
    gsl_function fn{gsl_f, &counted};
    double result = 0, abserr = 0;
    gsl_integration_qags(&fn, p.a, p.b, 0.0, kEpsRel, kLimit + 1, gw, &result, &abserr);
    gsl_evals = counted.calls;
    return result;
  };
  constexpr int kRepeats = 50;
  double vek_us = 1e300, gsl_us = 1e300;
  for (auto _ : state) {
    const double v = us_per_integration(vek, kRepeats);
    const double g = us_per_integration(gsl, kRepeats);
    vek_us = std::min(vek_us, v);
    gsl_us = std::min(gsl_us, g);
    state.SetIterationTime(v * kRepeats * 1e-6);
  }
  gsl_integration_workspace_free(gw);
  state.counters["vek_evals"] = static_cast<double>(vek_evals);
  state.counters["gsl_evals"] = static_cast<double>(gsl_evals);
  state.counters["vek_us"] = vek_us;
  state.counters["gsl_us"] = gsl_us;
  state.counters["vs_gsl"] = vek_us / gsl_us;
  if (vek_evals != gsl_evals) state.SkipWithError("the evaluation counts differ");
}

}  // namespace

BENCHMARK(BM_Quadrature)->DenseRange(0, 1)->ArgName("integrand")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
