// The Dormand-Prince 5(4) integrator kernel: its coefficients (one step reproduces the pair's stability
// polynomial, and quartics are integrated exactly), its accuracy against closed forms and the published
// Arenstorf orbit, both directions, and every way it can stop.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "ode/dormand_prince.h"

using vek::ode::integrate_dp54;
using vek::ode::Integration;
using vek::ode::Outcome;
using vek::ode::Tolerance;

namespace {

// Integrates with storage of the right size and counts the calls of f independently of the kernel.
template <class F>
Integration run(F f, double x0, double x1, std::vector<double>& y, Tolerance tol, int64_t budget = 1000000,
                int64_t* calls = nullptr) {
  std::vector<double> work(vek::ode::dp54_work_size(y.size()));
  int64_t counted = 0;
  auto counting = [&](double x, const double* yy, double* dy) {
    ++counted;
    f(x, yy, dy);
  };
  const Integration r = integrate_dp54(counting, x0, x1, std::span<double>(y), tol, std::span<double>(work), budget);
  EXPECT_EQ(r.evaluations, counted);
  if (calls) *calls = counted;
  return r;
}

}  // namespace

TEST(DormandPrince, CoefficientsOfOneStep) {
  // y' = y over one step of 0.1 (a loose tolerance lets the first step cover the interval): the result is
  // the pair's stability polynomial 1 + z + z^2/2 + z^3/6 + z^4/24 + z^5/120 + z^6/600 at z = 0.1, which
  // differs from exp(0.1) by 2.8e-10; eight evaluations (f at the start, one for the first step size, six
  // stages).
  std::vector<double> y = {1.0};
  const Integration r = run([](double, const double* yy, double* dy) { dy[0] = yy[0]; }, 0.0, 0.1, y, {1.0, 1.0});
  ASSERT_EQ(r.outcome, Outcome::reached);
  EXPECT_EQ(r.accepted, 1);
  EXPECT_EQ(r.rejected, 0);
  EXPECT_EQ(r.evaluations, 8);
  const double z = 0.1;
  const double stability = 1 + z + z * z / 2 + z * z * z / 6 + z * z * z * z / 24 + std::pow(z, 5) / 120 +
                           std::pow(z, 6) / 600;
  EXPECT_NEAR(y[0], stability, 4e-16);
  EXPECT_GT(std::abs(y[0] - std::exp(z)), 1e-10);

  // The order-5 weights integrate quartics in x exactly, whatever steps the control chooses.
  std::vector<double> q = {0.0};
  const Integration rq = run([](double x, const double*, double* dy) { dy[0] = 5 * x * x * x * x - 3 * x * x; },
                             0.0, 2.0, q, {1e-3, 1e-3});
  ASSERT_EQ(rq.outcome, Outcome::reached);
  EXPECT_NEAR(q[0], 32.0 - 8.0, 1e-13);
}

TEST(DormandPrince, AccuracyFollowsTheToleranceInBothDirections) {
  auto decay = [](double, const double* y, double* dy) { dy[0] = -y[0]; };
  auto oscillator = [](double, const double* y, double* dy) {
    dy[0] = y[1];
    dy[1] = -y[0];
  };
  double previous_error = 1.0;
  int64_t previous_calls = 0;
  for (double tol : {1e-4, 1e-6, 1e-8, 1e-10, 1e-12}) {
    std::vector<double> y = {1.0};
    int64_t calls = 0;
    ASSERT_EQ(run(decay, 0.0, 5.0, y, {tol, tol}, 1000000, &calls).outcome, Outcome::reached);
    const double error = std::abs(y[0] - std::exp(-5.0));
    EXPECT_LT(error, 10 * tol) << tol;
    EXPECT_LT(error, previous_error) << tol;
    EXPECT_GT(calls, previous_calls) << tol;
    previous_error = error;
    previous_calls = calls;

    // Backwards: from y(5) = exp(-5) to x = 0, where the solution grows, and with it the errors made early,
    // by up to e^5.
    std::vector<double> back = {std::exp(-5.0)};
    ASSERT_EQ(run(decay, 5.0, 0.0, back, {tol, tol}).outcome, Outcome::reached);
    EXPECT_NEAR(back[0], 1.0, 100 * tol) << tol;

    // Ten periods of the oscillator.
    std::vector<double> o = {0.0, 1.0};
    const double end = 20 * std::acos(-1.0);
    ASSERT_EQ(run(oscillator, 0.0, end, o, {tol, tol}).outcome, Outcome::reached);
    EXPECT_NEAR(o[0], 0.0, 100 * tol) << tol;
    EXPECT_NEAR(o[1], 1.0, 100 * tol) << tol;
  }
}

TEST(DormandPrince, ArenstorfOrbitClosesAfterItsPeriod) {
  // The restricted three-body orbit of Hairer, Norsett and Wanner (Solving ODEs I, II.0): mu = 0.012277471,
  // y(0) = (0.994, 0, 0, -2.00158510637908252240537862224) for (y1, y2, y1', y2'), periodic with period
  // T = 17.0652165601579625588917206249. Its close approaches make the step sizes vary by a factor 1000.
  const double mu = 0.012277471, nu = 1 - mu;
  auto arenstorf = [=](double, const double* y, double* dy) {
    const double d1 = std::pow((y[0] + mu) * (y[0] + mu) + y[1] * y[1], 1.5);
    const double d2 = std::pow((y[0] - nu) * (y[0] - nu) + y[1] * y[1], 1.5);
    dy[0] = y[2];
    dy[1] = y[3];
    dy[2] = y[0] + 2 * y[3] - nu * (y[0] + mu) / d1 - mu * (y[0] - nu) / d2;
    dy[3] = y[1] - 2 * y[2] - nu * y[1] / d1 - mu * y[1] / d2;
  };
  const std::vector<double> start = {0.994, 0.0, 0.0, -2.00158510637908252240537862224};
  for (double tol : {1e-7, 1e-10}) {
    std::vector<double> y = start;
    const Integration r = run(arenstorf, 0.0, 17.0652165601579625588917206249, y, {tol, tol});
    ASSERT_EQ(r.outcome, Outcome::reached);
    for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(y[i], start[i], 1e5 * tol) << tol << " " << i;
    EXPECT_GT(r.rejected, 0);  // the control had to retreat at the close approaches
  }
}

TEST(DormandPrince, EveryWayToStop) {
  auto decay = [](double, const double* y, double* dy) { dy[0] = -y[0]; };
  // An empty interval: nothing is evaluated.
  std::vector<double> y = {2.0};
  Integration r = run(decay, 1.0, 1.0, y, {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::reached);
  EXPECT_EQ(r.evaluations, 0);
  EXPECT_EQ(y[0], 2.0);

  // The budget: exactly that many calls, then the outcome says so.
  y = {1.0};
  r = run(decay, 0.0, 100.0, y, {1e-10, 1e-10}, 50);
  EXPECT_EQ(r.outcome, Outcome::too_many_evaluations);
  EXPECT_EQ(r.evaluations, 50);
  EXPECT_GT(r.x, 0.0);
  EXPECT_LT(r.x, 100.0);
  y = {1.0};
  r = run(decay, 0.0, 1.0, y, {1e-10, 1e-10}, 0);
  EXPECT_EQ(r.outcome, Outcome::too_many_evaluations);
  EXPECT_EQ(r.x, 0.0);

  // y' = y^2, y(0) = 1 reaches infinity at x = 1: the step collapses there.
  y = {1.0};
  r = run([](double, const double* yy, double* dy) { dy[0] = yy[0] * yy[0]; }, 0.0, 2.0, y, {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::step_too_small);
  EXPECT_NEAR(r.x, 1.0, 1e-6);

  // f not finite: at the start; past x = 0.3 (the steps shrink onto it); an infinity at the end point; a
  // start value that is not finite.
  const double nan = std::numeric_limits<double>::quiet_NaN();
  y = {1.0};
  r = run([=](double, const double*, double* dy) { dy[0] = nan; }, 0.0, 1.0, y, {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::not_finite);
  EXPECT_EQ(r.x, 0.0);
  EXPECT_EQ(r.evaluations, 1);
  y = {1.0};
  r = run([=](double x, const double* yy, double* dy) { dy[0] = x > 0.3 ? nan : -yy[0]; }, 0.0, 1.0, y,
          {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::not_finite);
  EXPECT_GT(r.x, 0.3);
  EXPECT_NEAR(r.x, 0.3, 1e-12);
  EXPECT_LT(r.evaluations, 1000);
  y = {1.0};
  r = run([](double x, const double*, double* dy) { dy[0] = x == 1.0 ? HUGE_VAL : 1.0; }, 0.0, 1.0, y,
          {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::not_finite);
  EXPECT_EQ(r.x, 1.0);
  y = {HUGE_VAL};
  r = run(decay, 0.0, 1.0, y, {1e-8, 1e-8});
  EXPECT_EQ(r.outcome, Outcome::not_finite);
}
