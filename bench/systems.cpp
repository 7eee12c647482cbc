// c05qbf against GSL's scaled hybrid solver (gsl_multiroot_fsolver_hybrids, also Powell's method with a
// difference Jacobian) on More-Garbow-Hillstrom systems from their standard starting points, in the same run,
// the discrete boundary value problem also at n = 100 and 1000.
// Both stop on the step: c05qbf with XTOL = 1e-10 (trust region radius <= XTOL ||x||), GSL when
// gsl_multiroot_test_delta(dx, x, 0, 1e-10) holds. Counters per problem: function evaluations of each
// ("vek_evals", "gsl_evals", the difference Jacobians' included), nanoseconds per solve ("vek_ns", "gsl_ns"),
// "vs_gsl" = c05qbf time / GSL time, and the final ||f|| of each.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_multiroots.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "../tests/zeros_quad/mgh_systems.h"
#include "vek.h"

namespace {

constexpr double kXtol = 1e-10;

struct Problem {
  const char* name;
  int64_t n;
};
const Problem kProblems[] = {{"rosenbrock", 2},    {"helical_valley", 3},        {"discrete_bvp", 10},
                             {"trigonometric", 10}, {"broyden_tridiagonal", 10}, {"broyden_banded", 10},
                             {"discrete_integral", 10}, {"discrete_bvp", 100}, {"discrete_bvp", 1000}};
constexpr int64_t kProblemCount = sizeof(kProblems) / sizeof(kProblems[0]);

struct Counted {
  const vek::testing::SystemProblem* p;
  int64_t calls = 0;
};

const vek::testing::SystemProblem* g_vek_problem = nullptr;  // the problem c05qbf's FCN evaluates

void vek_fcn(const int64_t* n, const double* x, double* f, int64_t* iuser, double*, int64_t* iflag) {
  if (*iflag == 0) return;
  ++iuser[0];
  g_vek_problem->f(*n, x, f);
}

int gsl_fcn(const gsl_vector* x, void* params, gsl_vector* f) {
  auto* c = static_cast<Counted*>(params);
  ++c->calls;
  c->p->f(static_cast<int64_t>(x->size), x->data, f->data);
  return GSL_SUCCESS;
}

double norm(const std::vector<double>& v) {
  double s = 0.0;
  for (double t : v) s += t * t;
  return std::sqrt(s);
}

double solve_vek(int64_t problem, int64_t* evaluations) {
  const int64_t n = kProblems[problem].n;
  std::vector<double> x(n), f(n);
  g_vek_problem = &vek::testing::mgh_system(kProblems[problem].name);
  g_vek_problem->start(n, x.data());
  int64_t iuser[1] = {0}, ifail = 1;
  double ruser[1];
  c05qbf_(vek_fcn, &n, x.data(), f.data(), &kXtol, iuser, ruser, &ifail);
  *evaluations = iuser[0];
  return norm(f);
}

double solve_gsl(gsl_multiroot_fsolver* s, int64_t problem, int64_t* evaluations) {
  const int64_t n = kProblems[problem].n;
  Counted counted{&vek::testing::mgh_system(kProblems[problem].name)};
  gsl_multiroot_function fn{gsl_fcn, static_cast<size_t>(n), &counted};
  gsl_vector* x = gsl_vector_alloc(n);
  counted.p->start(n, x->data);
  gsl_multiroot_fsolver_set(s, &fn, x);
  for (int iter = 0; iter < 1000; ++iter) {
    if (gsl_multiroot_fsolver_iterate(s) != GSL_SUCCESS) break;
    if (gsl_multiroot_test_delta(s->dx, s->x, 0.0, kXtol) != GSL_CONTINUE) break;
  }
  gsl_vector_free(x);
  *evaluations = counted.calls;
  return norm(std::vector<double>(s->f->data, s->f->data + n));
}

template <class Solve>
double ns_per_solve(Solve solve, int repeats) {
  const auto t0 = std::chrono::steady_clock::now();
  for (int k = 0; k < repeats; ++k) benchmark::DoNotOptimize(solve());
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - t0).count() / repeats;
}

void BM_System(benchmark::State& state) {
  const int64_t problem = state.range(0);
  state.SetLabel(std::string(kProblems[problem].name) + " n=" + std::to_string(kProblems[problem].n));
  gsl_set_error_handler_off();
  gsl_multiroot_fsolver* s = gsl_multiroot_fsolver_alloc(gsl_multiroot_fsolver_hybrids, kProblems[problem].n);
  // Solves of n = 1000 take about a second (a dense n by n Jacobian by n differences, then O(n^3) per
  // factorisation): one per timing there.
  const int kRepeats = kProblems[problem].n >= 1000 ? 1 : kProblems[problem].n >= 100 ? 5 : 20;
  int64_t vek_evals = 0, gsl_evals = 0;
  double vek_ns = 0, gsl_ns = 0, vek_fnorm = 0, gsl_fnorm = 0;
  for (auto _ : state) {
    const double ns = ns_per_solve([&] { return vek_fnorm = solve_vek(problem, &vek_evals); }, kRepeats);
    vek_ns += ns;
    state.SetIterationTime(ns * kRepeats * 1e-9);
    gsl_ns += ns_per_solve([&] { return gsl_fnorm = solve_gsl(s, problem, &gsl_evals); }, kRepeats);
  }
  gsl_multiroot_fsolver_free(s);
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_evals"] = static_cast<double>(vek_evals);
  state.counters["gsl_evals"] = static_cast<double>(gsl_evals);
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["gsl_ns"] = gsl_ns / runs;
  state.counters["vs_gsl"] = vek_ns / gsl_ns;
  state.counters["vek_fnorm"] = vek_fnorm;
  state.counters["gsl_fnorm"] = gsl_fnorm;
}

}  // namespace

BENCHMARK(BM_System)
    ->DenseRange(0, kProblemCount - 1)
    ->ArgName("problem")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
