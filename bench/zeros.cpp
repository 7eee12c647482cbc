// c05ayf (and the c05azf reverse-communication loop) against GSL's Brent solver (gsl_root_fsolver_brent) on
// standard functions, in the same run. Both stop when the bracket is 2e-12 wide: c05ayf with EPS = 1e-12 (its
// absolute test |xm| <= EPS on the half-width), GSL with gsl_root_test_interval(lo, hi, 2e-12, 0).
// Counters per function: evaluations of each ("vek_evals", "gsl_evals"; c05ayf's include the final check at
// the converged point), nanoseconds per solve ("vek_ns", "azf_ns" for the caller-driven loop, "gsl_ns"),
// "vs_gsl" = c05ayf time / GSL time and the error of each result against the known zero.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_roots.h>

#include <chrono>
#include <cmath>
#include <cstdint>

#include "vek.h"

namespace {

constexpr double kEps = 1e-12;

struct Problem {
  const char* name;
  double (*f)(double);
  double a, b, zero;
};

// Classic test functions of bracketing solvers: a smooth cubic, a transcendental fixed point, a simple zero
// of an oscillating function, a steep power and a triple zero (where interpolation fails and bisection works).
const Problem kProblems[] = {
    {"cubic", [](double x) { return x * x * x - 2 * x - 5; }, 2.0, 3.0, 2.0945514815423265},
    {"cos_x_minus_x", [](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.7390851332151607},
    {"sin", [](double x) { return std::sin(x); }, 3.0, 4.0, 3.141592653589793},
    {"x20_minus_1", [](double x) { return std::pow(x, 20) - 1; }, 0.0, 5.0, 1.0},
    {"triple_zero", [](double x) { return (x - 1) * (x - 1) * (x - 1); }, 0.0, 3.0, 1.0},
};

struct Counted {
  const Problem* p;
  int64_t calls = 0;
};

double vek_f(const double* x, int64_t* iuser, double*) {
  ++iuser[0];
  return kProblems[iuser[1]].f(*x);
}

double gsl_f(double x, void* params) {
  auto* c = static_cast<Counted*>(params);
  ++c->calls;
  return c->p->f(x);
}

double solve_vek(int64_t problem, int64_t* evaluations) {
  const Problem& p = kProblems[problem];
  int64_t iuser[2] = {0, problem}, ifail = 1;
  double x = 0.0;
  const double eta = 0.0;
  c05ayf_(&p.a, &p.b, &kEps, &eta, vek_f, &x, iuser, nullptr, &ifail);
  *evaluations = iuser[0];
  return x;
}

double solve_azf(int64_t problem) {
  const Problem& p = kProblems[problem];
  double x = p.a, y = p.b, fx = 0.0, c[10] = {};
  const double tolx = kEps;
  const int64_t ir = 1;
  int64_t ind = 1, ifail = 1;
  do {
    c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail);
    if (ind != 0) fx = p.f(x);
  } while (ind != 0);
  return x;
}

double solve_gsl(gsl_root_fsolver* s, int64_t problem, int64_t* evaluations) {
  Counted counted{&kProblems[problem]};
  gsl_function fn{gsl_f, &counted};
  gsl_root_fsolver_set(s, &fn, counted.p->a, counted.p->b);
  double x = counted.p->a;
  for (int iter = 0; iter < 200; ++iter) {
    gsl_root_fsolver_iterate(s);
    x = gsl_root_fsolver_root(s);
    if (gsl_root_test_interval(gsl_root_fsolver_x_lower(s), gsl_root_fsolver_x_upper(s), 2 * kEps, 0) != GSL_CONTINUE)
      break;
  }
  *evaluations = counted.calls;
  return x;
}

template <class Solve>
double ns_per_solve(Solve solve, int repeats) {
  const auto t0 = std::chrono::steady_clock::now();
  for (int k = 0; k < repeats; ++k) benchmark::DoNotOptimize(solve());
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count() / repeats;
}

void BM_Zero(benchmark::State& state) {
  const int64_t problem = state.range(0);
  state.SetLabel(kProblems[problem].name);
  gsl_set_error_handler_off();
  gsl_root_fsolver* s = gsl_root_fsolver_alloc(gsl_root_fsolver_brent);
  constexpr int kRepeats = 200;
  int64_t vek_evals = 0, gsl_evals = 0;
  double vek_ns = 0, azf_ns = 0, gsl_ns = 0, x_vek = 0, x_gsl = 0;
  for (auto _ : state) {
    const double ns = ns_per_solve([&] { return x_vek = solve_vek(problem, &vek_evals); }, kRepeats);
    vek_ns += ns;
    state.SetIterationTime(ns * kRepeats * 1e-9);
    azf_ns += ns_per_solve([&] { return solve_azf(problem); }, kRepeats);
    gsl_ns += ns_per_solve([&] { return x_gsl = solve_gsl(s, problem, &gsl_evals); }, kRepeats);
  }
  gsl_root_fsolver_free(s);
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_evals"] = static_cast<double>(vek_evals);
  state.counters["gsl_evals"] = static_cast<double>(gsl_evals);
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["azf_ns"] = azf_ns / runs;
  state.counters["gsl_ns"] = gsl_ns / runs;
  state.counters["vs_gsl"] = vek_ns / gsl_ns;
  state.counters["vek_error"] = std::abs(x_vek - kProblems[problem].zero);
  state.counters["gsl_error"] = std::abs(x_gsl - kProblems[problem].zero);
}

}  // namespace

BENCHMARK(BM_Zero)->DenseRange(0, 4)->ArgName("function")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
