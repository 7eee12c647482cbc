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
#include <cmath>
#include <cstdint>
#include <vector>

#include "quadrature_timing.h"
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
    vek::bench::CountedFunction counted{p.f};
    gsl_function fn{vek::bench::counted_call, &counted};
    double result = 0, abserr = 0;
    gsl_integration_qags(&fn, p.a, p.b, 0.0, kEpsRel, kLimit + 1, gw, &result, &abserr);
    gsl_evals = counted.calls;
    return result;
  };
  vek::bench::race_against_gsl(state, vek, gsl, vek_evals, gsl_evals);
  gsl_integration_workspace_free(gw);
}

}  // namespace

BENCHMARK(BM_Quadrature)->DenseRange(0, 1)->ArgName("integrand")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
