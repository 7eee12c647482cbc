// The double-exponential integrator d01rgf against the adaptive Gauss-Kronrod integrator d01ajf, both through
// their exported entries, on the same integrands over [0,1] with the same tolerance (EPSABS = 0, EPSREL =
// 1e-10): end-point singularities of growing strength, a logarithmic one, and a smooth integrand. d01rgf's F
// is given the offset from the nearer end and uses it; d01ajf's F computes 1 - x where it needs the distance
// to the right end. Counters per integrand: evaluations ("rgf_evals", "ajf_evals"), the errors against the
// closed form ("rgf_err", "ajf_err"), microseconds per integration ("rgf_us", "ajf_us") and "vs_ajf" = d01rgf
// time / d01ajf time. Each time is the best of the runs.
// The rule generator d01bcf against GSL's gsl_integration_fixed_alloc (Golub-Welsch with eigenvectors) for
// Legendre, Laguerre and Hermite rules of 20, 100 and 400 points: microseconds per rule ("vek_us", "gsl_us"),
// "vs_gsl" and the largest differences from GSL's rule, abscissae relative to max(|x|, 1) and weights relative
// to the largest weight ("x_diff", "w_diff").
#include <benchmark/benchmark.h>
#include <gsl/gsl_integration.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "quadrature_timing.h"
#include "vek.h"

namespace {

constexpr double kEpsRel = 1e-10;
constexpr int64_t kLimit = 200;

struct Problem {
  const char* name;
  double (*f)(double left, double right);  // of the distances to the two ends
  double exact;
};

const Problem kProblems[] = {
    {"x^-0.5", [](double l, double) { return 1 / std::sqrt(l); }, 2.0},
    {"(1-x)^-0.9", [](double, double r) { return std::pow(r, -0.9); }, 10.0},
    {"log(x)/sqrt(x)", [](double l, double) { return std::log(l) / std::sqrt(l); }, -4.0},
    {"(x(1-x))^-0.75", [](double l, double r) { return std::pow(l * r, -0.75); }, 7.4162987092054876},
    {"exp(x)", [](double l, double) { return std::exp(l); }, 1.7182818284590452},
};

double rgf_f(const double* x, const double* xc, int64_t* iuser, double*) {
  ++iuser[0];
  const double left = *xc > 0 ? *xc : *x, right = *xc < 0 ? -*xc : 1 - *x;
  return kProblems[iuser[1]].f(left, right);
}

double ajf_f(const double* x, int64_t* iuser, double*) {
  ++iuser[0];
  return kProblems[iuser[1]].f(*x, 1 - *x);
}

// The library's call and the baseline timed in turn at every iteration: the best microseconds per call of each.
template <class Ours, class Baseline>
std::pair<double, double> best_times(benchmark::State& state, Ours ours, Baseline baseline, int repeats) {
  double ours_us = 1e300, baseline_us = 1e300;
  for (auto _ : state) {
    const double o = vek::bench::us_per_integration(ours, repeats), b = vek::bench::us_per_integration(baseline, repeats);
    ours_us = std::min(ours_us, o);
    baseline_us = std::min(baseline_us, b);
    state.SetIterationTime(o * repeats * 1e-6);
  }
  return {ours_us, baseline_us};
}

void BM_TanhSinhVsAdaptive(benchmark::State& state) {
  const int64_t problem = state.range(0);
  const Problem& p = kProblems[problem];
  state.SetLabel(p.name);
  std::vector<double> w(4 * kLimit);
  std::vector<int64_t> iw(kLimit);
  int64_t rgf_evals = 0, ajf_evals = 0;
  double rgf_result = 0, ajf_result = 0;
  const double a = 0, b = 1, epsabs = 0, epsrel = kEpsRel;
  auto rgf = [&] {
    int64_t iuser[2] = {0, problem}, ifail = 1, nevals = 0;
    double abserr = 0;
    d01rgf_(rgf_f, &a, &b, &epsabs, &epsrel, &rgf_result, &abserr, &nevals, iuser, nullptr, &ifail);
    rgf_evals = iuser[0];
    return rgf_result;
  };
  auto ajf = [&] {
    int64_t iuser[2] = {0, problem}, ifail = 1;
    const int64_t lw = 4 * kLimit, liw = kLimit;
    double abserr = 0;
    d01ajf_(ajf_f, &a, &b, &epsabs, &epsrel, &ajf_result, &abserr, w.data(), &lw, iw.data(), &liw, iuser, nullptr,
            &ifail);
    ajf_evals = iuser[0];
    return ajf_result;
  };
  const auto [rgf_us, ajf_us] = best_times(state, rgf, ajf, 20);
  state.counters["rgf_evals"] = static_cast<double>(rgf_evals);
  state.counters["ajf_evals"] = static_cast<double>(ajf_evals);
  state.counters["rgf_err"] = std::abs(rgf_result - p.exact) / std::abs(p.exact);
  state.counters["ajf_err"] = std::abs(ajf_result - p.exact) / std::abs(p.exact);
  state.counters["rgf_us"] = rgf_us;
  state.counters["ajf_us"] = ajf_us;
  state.counters["vs_ajf"] = rgf_us / ajf_us;
}

void BM_GaussRule(benchmark::State& state) {
  const int64_t family = state.range(0), n = state.range(1);
  const gsl_integration_fixed_type* types[] = {gsl_integration_fixed_legendre, gsl_integration_fixed_laguerre,
                                               gsl_integration_fixed_hermite};
  const int64_t itypes[] = {1, 3, 4};
  const char* names[] = {"Legendre", "Laguerre", "Hermite"};
  state.SetLabel(names[family]);
  const double a = 0, b = 1, c = 0, d = 0;
  std::vector<double> w(static_cast<size_t>(n)), x(static_cast<size_t>(n));
  auto vek = [&] {
    int64_t ifail = 1, itype = itypes[family], points = n;
    d01bcf_(&itype, &a, &b, &c, &d, &points, w.data(), x.data(), &ifail);
    return w[0];
  };
  std::vector<std::pair<double, double>> gsl_rule(static_cast<size_t>(n));
  auto gsl = [&] {
    gsl_integration_fixed_workspace* ws = gsl_integration_fixed_alloc(types[family], static_cast<size_t>(n), a, b, 0, 0);
    const double* gx = gsl_integration_fixed_nodes(ws);
    const double* gw = gsl_integration_fixed_weights(ws);
    for (size_t i = 0; i < gsl_rule.size(); ++i) gsl_rule[i] = {gx[i], gw[i]};
    gsl_integration_fixed_free(ws);
    return gsl_rule[0].second;
  };
  const auto [vek_us, gsl_us] = best_times(state, vek, gsl, n >= 400 ? 2 : 20);
  std::sort(gsl_rule.begin(), gsl_rule.end());
  double x_diff = 0, w_diff = 0, w_max = 0;
  for (size_t i = 0; i < w.size(); ++i) w_max = std::max(w_max, w[i]);
  for (size_t i = 0; i < w.size(); ++i) {
    x_diff = std::max(x_diff, std::abs(x[i] - gsl_rule[i].first) / std::max(std::abs(x[i]), 1.0));
    w_diff = std::max(w_diff, std::abs(w[i] - gsl_rule[i].second) / w_max);
  }
  state.counters["vek_us"] = vek_us;
  state.counters["gsl_us"] = gsl_us;
  state.counters["vs_gsl"] = vek_us / gsl_us;
  state.counters["x_diff"] = x_diff;
  state.counters["w_diff"] = w_diff;
}

}  // namespace

BENCHMARK(BM_GaussRule)
    ->ArgsProduct({{0, 1, 2}, {20, 100, 400}})
    ->ArgNames({"family", "n"})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TanhSinhVsAdaptive)->DenseRange(0, 4)->ArgName("integrand")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
