// The Dormand-Prince 5(4) integrator kernel (the one D02HAF shoots with) against GSL's gsl_odeiv2 driver with
// its Runge-Kutta-Fehlberg 4(5) and Prince-Dormand 8(9) steppers, in the same run, on the same problem and
// the same tolerance: the Arenstorf orbit over one period (Hairer, Norsett and Wanner, Solving ODEs I, II.0),
// whose close approaches make the step sizes vary by a factor 1000. Both are asked for relative and
// absolute error TOL per step; each measures its error differently (root-mean-square here, largest
// component in GSL), so the achieved global error is reported beside the cost.
//
// Counters: microseconds per integration for each, "vs_gsl" = kernel time / GSL time, the right-hand side
// evaluations of each ("evals", "gsl_evals") and the distance of each end point from the start, which the
// exact orbit returns to ("error", "gsl_error").
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_odeiv2.h>

#include <array>
#include <chrono>
#include <cmath>
#include <vector>

#include "ode/dormand_prince.h"

namespace {

constexpr double kMu = 0.012277471;
constexpr double kPeriod = 17.0652165601579625588917206249;
constexpr std::array<double, 4> kStart = {0.994, 0.0, 0.0, -2.00158510637908252240537862224};

// The restricted three-body equations, shared by both integrators; counts its calls.
struct Arenstorf {
  long calls = 0;
  void operator()(const double* y, double* dy) {
    ++calls;
    const double nu = 1 - kMu;
    const double d1 = std::pow((y[0] + kMu) * (y[0] + kMu) + y[1] * y[1], 1.5);
    const double d2 = std::pow((y[0] - nu) * (y[0] - nu) + y[1] * y[1], 1.5);
    dy[0] = y[2];
    dy[1] = y[3];
    dy[2] = y[0] + 2 * y[3] - nu * (y[0] + kMu) / d1 - kMu * (y[0] - nu) / d2;
    dy[3] = y[1] - 2 * y[2] - nu * y[1] / d1 - kMu * y[1] / d2;
  }
};

double distance_from_start(const std::array<double, 4>& y) {
  double sum = 0.0;
  for (size_t i = 0; i < 4; ++i) sum += (y[i] - kStart[i]) * (y[i] - kStart[i]);
  return std::sqrt(sum);
}

struct Run {
  double seconds;
  long evaluations;
  double error;
};

Run run_kernel(double tol) {
  Arenstorf f;
  std::array<double, 4> y = kStart;
  std::array<double, vek::ode::dp54_work_size(4)> work;
  const auto t0 = std::chrono::steady_clock::now();
  const vek::ode::Integration r =
      vek::ode::integrate_dp54([&](double, const double* yy, double* dy) { f(yy, dy); }, 0.0, kPeriod, y,
                               vek::ode::Tolerance{tol, tol}, work, 100000000);
  const auto t1 = std::chrono::steady_clock::now();
  if (r.outcome != vek::ode::Outcome::reached) return {0.0, 0, NAN};
  return {std::chrono::duration<double>(t1 - t0).count(), f.calls, distance_from_start(y)};
}

int gsl_rhs(double, const double* y, double* dy, void* params) {
  (*static_cast<Arenstorf*>(params))(y, dy);
  return GSL_SUCCESS;
}

Run run_gsl(const gsl_odeiv2_step_type* stepper, double tol) {
  Arenstorf f;
  gsl_odeiv2_system system = {gsl_rhs, nullptr, 4, &f};
  std::array<double, 4> y = kStart;
  double x = 0.0;
  const auto t0 = std::chrono::steady_clock::now();
  gsl_odeiv2_driver* d = gsl_odeiv2_driver_alloc_y_new(&system, stepper, 1e-6, tol, tol);
  const int status = gsl_odeiv2_driver_apply(d, &x, kPeriod, y.data());
  gsl_odeiv2_driver_free(d);
  const auto t1 = std::chrono::steady_clock::now();
  if (status != GSL_SUCCESS) return {0.0, 0, NAN};
  return {std::chrono::duration<double>(t1 - t0).count(), f.calls, distance_from_start(y)};
}

// Arguments: the GSL stepper (0 rkf45, 1 rk8pd) and -log10 of the tolerance.
void BM_Arenstorf(benchmark::State& state) {
  const gsl_odeiv2_step_type* stepper = state.range(0) == 0 ? gsl_odeiv2_step_rkf45 : gsl_odeiv2_step_rk8pd;
  const double tol = std::pow(10.0, -static_cast<double>(state.range(1)));
  double kernel_s = 0.0, gsl_s = 0.0;
  Run kernel{}, gsl{};
  for (auto _ : state) {
    kernel = run_kernel(tol);
    gsl = run_gsl(stepper, tol);
    kernel_s += kernel.seconds;
    gsl_s += gsl.seconds;
    state.SetIterationTime(kernel.seconds);
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["us"] = 1e6 * kernel_s / runs;
  state.counters["gsl_us"] = 1e6 * gsl_s / runs;
  state.counters["vs_gsl"] = kernel_s / gsl_s;
  state.counters["evals"] = static_cast<double>(kernel.evaluations);
  state.counters["gsl_evals"] = static_cast<double>(gsl.evaluations);
  state.counters["error"] = kernel.error;
  state.counters["gsl_error"] = gsl.error;
}

}  // namespace

BENCHMARK(BM_Arenstorf)
    ->Args({0, 6})
    ->Args({0, 9})
    ->Args({1, 6})
    ->Args({1, 9})
    ->Args({1, 12})
    ->ArgNames({"gsl_rk8pd", "digits"})
    ->UseManualTime();
BENCHMARK_MAIN();
