// d01amf, d01aqf, d01apf and d01bdf (through their exported entries) against GSL's transcriptions of the same
// QUADPACK algorithms, with the same tolerances and room for 100 subintervals:
//   0 d01amf / gsl_integration_qagiu: log(x)/(1+100x^2) over (0,inf), EPSREL = 1e-10
//   1 d01aqf / gsl_integration_qawc:  1/(5x^3+6) over (-1,5), pole at 0, EPSREL = 1e-12
//   2 d01apf / gsl_integration_qaws:  1/(1+log(x)^2)^2 x^-0.5 (1-x)^-0.3 log(x) log(1-x) over (0,1), EPSREL = 1e-7
//   3 d01bdf / gsl_integration_qng:   x^2.6 log(1/x) over (0,1), EPSREL = 1e-9 (43 points)
// Counters: evaluations of each ("vek_evals", "gsl_evals", which must be equal), microseconds per integration
// ("vek_us", "gsl_us") and "vs_gsl" = VEK time / GSL time, each the best of the runs.
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

constexpr int64_t kLimit = 100;

double log_lorentz(double x) { return std::log(x) / (1 + 100 * x * x); }
double cubic_inverse(double x) { return 1 / (5 * x * x * x + 6); }
double log_square(double x) {
  const double l = std::log(x);
  return 1 / ((1 + l * l) * (1 + l * l));
}
double power_log(double x) { return std::pow(x, 2.6) * std::log(1 / x); }

const char* const kNames[] = {"d01amf_qagiu", "d01aqf_qawc", "d01apf_qaws", "d01bdf_qng"};
double (*const kIntegrands[])(double) = {log_lorentz, cubic_inverse, log_square, power_log};

double vek_f(const double* x, int64_t* iuser, double*) {
  ++iuser[0];
  return kIntegrands[iuser[1]](*x);
}

void BM_QuadInf(benchmark::State& state) {
  const int64_t problem = state.range(0);
  state.SetLabel(kNames[problem]);
  gsl_set_error_handler_off();
  gsl_integration_workspace* gw = gsl_integration_workspace_alloc(kLimit + 1);
  gsl_integration_qaws_table* table = gsl_integration_qaws_table_alloc(-0.5, -0.3, 1, 1);
  std::vector<double> w(4 * kLimit);
  std::vector<int64_t> iw(kLimit);
  int64_t vek_evals = 0, gsl_evals = 0;
  auto vek = [&] {
    int64_t iuser[2] = {0, problem}, ifail = 1;
    const int64_t lw = 4 * kLimit, liw = kLimit, inf = 1, key = 4;
    const double zero = 0.0, one = 1.0, minus_one = -1.0, five = 5.0, alfa = -0.5, beta = -0.3;
    double result = 0, abserr = 0, epsabs = 0.0;
    switch (problem) {
      case 0: {
        const double epsrel = 1e-10;
        d01amf_(vek_f, &zero, &inf, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw, iuser,
                nullptr, &ifail);
        break;
      }
      case 1: {
        const double epsrel = 1e-12;
        d01aqf_(vek_f, &minus_one, &five, &zero, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw,
                iuser, nullptr, &ifail);
        break;
      }
      case 2: {
        const double epsrel = 1e-7;
        d01apf_(vek_f, &zero, &one, &alfa, &beta, &key, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(),
                &liw, iuser, nullptr, &ifail);
        break;
      }
      default: {
        const double epsrel = 1e-9;
        d01bdf_(vek_f, &zero, &one, &epsabs, &epsrel, &result, &abserr, iuser, nullptr, &ifail);
      }
    }
    vek_evals = iuser[0];
    return result;
  };
  auto gsl = [&] {
    vek::bench::CountedFunction counted{kIntegrands[problem]};
    gsl_function fn{vek::bench::counted_call, &counted};
    double result = 0, abserr = 0;
    size_t neval = 0;
    switch (problem) {
      case 0:
        gsl_integration_qagiu(&fn, 0.0, 0.0, 1e-10, kLimit + 1, gw, &result, &abserr);
        break;
      case 1:
        gsl_integration_qawc(&fn, -1.0, 5.0, 0.0, 0.0, 1e-12, kLimit, gw, &result, &abserr);
        break;
      case 2:
        gsl_integration_qaws(&fn, 0.0, 1.0, table, 0.0, 1e-7, kLimit, gw, &result, &abserr);
        break;
      default:
        gsl_integration_qng(&fn, 0.0, 1.0, 0.0, 1e-9, &result, &abserr, &neval);
    }
    gsl_evals = counted.calls;
    return result;
  };
  vek::bench::race_against_gsl(state, vek, gsl, vek_evals, gsl_evals);
  gsl_integration_qaws_table_free(table);
  gsl_integration_workspace_free(gw);
}

}  // namespace

BENCHMARK(BM_QuadInf)->DenseRange(0, 3)->ArgName("problem")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
