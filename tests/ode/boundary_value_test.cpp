// D02HAF through its exported entry on problems whose solutions are known: in closed form, from the
// committed mpmath table of Bratu's problem (data/make_bratu.py), or exactly (a cubic, which the order-5
// pair integrates without error).
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "layers/d02.h"
#include "ode/shot.h"
#include "support/capture.h"
#include "vek.h"

using vek::testing::Shot;
using vek::testing::shoot;

namespace {

// y1' = y2, y2' = -y1: y = sin x with y(0) = 0, y(pi/2) = 1, so y'(0) = 1 and y'(pi/2) = 0.
void oscillator(const double*, const double* y, double* f, int64_t*, double*) {
  f[0] = y[1];
  f[1] = -y[0];
}

// y1' = y2, y2' = y1.
void hyperbolic(const double*, const double* y, double* f, int64_t*, double*) {
  f[0] = y[1];
  f[1] = y[0];
}

// y'''' = 0 as four first-order equations.
void fourth_derivative_zero(const double*, const double* y, double* f, int64_t*, double*) {
  f[0] = y[1];
  f[1] = y[2];
  f[2] = y[3];
  f[3] = 0.0;
}

// Bratu: y'' = -lambda exp(y), lambda in RUSER(1).
void bratu(const double*, const double* y, double* f, int64_t*, double* ruser) {
  f[0] = y[1];
  f[1] = -ruser[0] * std::exp(y[0]);
}

struct BratuRow {
  std::string branch;
  double lambda, theta, dy0, ymid;
};

std::vector<BratuRow> bratu_table() {
  std::vector<BratuRow> rows;
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/bratu.txt");
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    BratuRow r;
    fields >> r.branch >> r.lambda >> r.theta >> r.dy0 >> r.ymid;
    rows.push_back(r);
  }
  return rows;
}

}  // namespace

TEST(D02haf, SineFromEitherEndAndAnyMatchingPoint) {
  const double half_pi = std::numbers::pi / 2;
  for (double xm : {0.0, 0.5, 1.0, half_pi}) {
    for (double tol : {1e-4, 1e-8, 1e-11}) {
      Shot s(2);
      s.u = {0.0, 0.3};  // y'(0) estimated
      s.iu = {1, 0};
      s.v = {1.0, 0.7};  // y'(pi/2) estimated
      s.iv = {1, 0};
      s.a = 0.0, s.b = half_pi, s.xm = xm, s.tol = tol;
      shoot(s, oscillator);
      ASSERT_EQ(s.ifail, 0) << xm << " " << tol;
      EXPECT_NEAR(s.u[1], 1.0, 10 * tol) << xm << " " << tol;
      EXPECT_NEAR(s.v[1], 0.0, 10 * tol) << xm << " " << tol;
      EXPECT_EQ(s.u[0], 0.0);  // known values are kept exactly
      EXPECT_EQ(s.v[0], 1.0);
      // A linear problem: one step, then one that confirms it.
      EXPECT_LE(s.w[1], 3.0);
      EXPECT_LE(s.w[0], 10 * tol);
    }
  }
  // The same problem on the reversed interval [pi/2, 0].
  Shot s(2);
  s.u = {1.0, 0.5};
  s.iu = {1, 0};
  s.v = {0.0, 2.0};
  s.iv = {1, 0};
  s.a = half_pi, s.b = 0.0, s.xm = 1.0, s.tol = 1e-9;
  shoot(s, oscillator);
  ASSERT_EQ(s.ifail, 0);
  EXPECT_NEAR(s.u[1], 0.0, 1e-8);
  EXPECT_NEAR(s.v[1], 1.0, 1e-8);
}

TEST(D02haf, LinearSystems) {
  // y1 = cosh(x - 1)/cosh(1) with y1(0) = 1 known at A and y2(1) = 0 known at B: the unknowns lie in
  // different components at the two ends.
  {
    Shot s(2);
    s.u = {1.0, 0.0};
    s.iu = {1, 0};
    s.v = {0.0, 0.0};
    s.iv = {0, 1};
    s.a = 0.0, s.b = 1.0, s.xm = 0.25, s.tol = 1e-10;
    shoot(s, hyperbolic);
    ASSERT_EQ(s.ifail, 0);
    EXPECT_NEAR(s.u[1], -std::tanh(1.0), 1e-9);
    EXPECT_NEAR(s.v[0], 1.0 / std::cosh(1.0), 1e-9);
    EXPECT_EQ(s.v[1], 0.0);
  }
  // y = 3x^2 - 2x^3: y(0) = y'(0) = 0, y(1) = 1, y'(1) = 0; so y''(0) = 6, y'''(0) = -12, y''(1) = -6,
  // y'''(1) = -12. Every known value at one end, and the order-5 pair integrates the cubic exactly.
  {
    Shot s(4);
    s.u = {0.0, 0.0, 1.0, 1.0};
    s.iu = {1, 1, 0, 0};
    s.v = {1.0, 0.0, 0.0, 0.0};
    s.iv = {1, 1, 0, 0};
    s.a = 0.0, s.b = 1.0, s.xm = 0.5, s.tol = 1e-10;
    shoot(s, fourth_derivative_zero);
    ASSERT_EQ(s.ifail, 0);
    EXPECT_NEAR(s.u[2], 6.0, 1e-9);
    EXPECT_NEAR(s.u[3], -12.0, 1e-9);
    EXPECT_NEAR(s.v[2], -6.0, 1e-9);
    EXPECT_NEAR(s.v[3], -12.0, 1e-9);
  }
  // All values known at B: the matching point at A makes it a backward shot over the whole interval.
  {
    Shot s(2);
    s.u = {0.0, 0.0};
    s.iu = {0, 0};
    s.v = {1.0, 0.0};
    s.iv = {1, 1};
    s.a = 0.0, s.b = std::numbers::pi / 2, s.xm = 0.0, s.tol = 1e-10;
    shoot(s, oscillator);
    ASSERT_EQ(s.ifail, 0);
    EXPECT_NEAR(s.u[0], 0.0, 1e-9);
    EXPECT_NEAR(s.u[1], 1.0, 1e-9);
  }
}

TEST(D02haf, BratuBothBranchesAgainstClosedForm) {
  const std::vector<BratuRow> rows = bratu_table();
  ASSERT_EQ(rows.size(), 7u);
  for (const BratuRow& r : rows) {
    for (double tol : {1e-6, 1e-10}) {
      Shot s(2);
      // Estimates: zero slope for the lower branch; for the upper one the slope's size, within 10%.
      const double slope = r.branch == "upper" ? 0.9 * r.dy0 : 0.0;
      s.u = {0.0, slope};
      s.iu = {1, 0};
      s.v = {0.0, -slope};
      s.iv = {1, 0};
      s.a = 0.0, s.b = 1.0, s.xm = 0.5, s.tol = tol;
      s.ruser = {r.lambda};
      shoot(s, bratu);
      ASSERT_EQ(s.ifail, 0) << r.branch << " " << r.lambda << " " << tol;
      EXPECT_NEAR(s.u[1], r.dy0, 10 * tol * std::max(1.0, r.dy0)) << r.branch << " " << r.lambda << " " << tol;
      EXPECT_NEAR(s.v[1], -r.dy0, 10 * tol * std::max(1.0, r.dy0)) << r.branch << " " << r.lambda << " " << tol;
    }
  }
}

TEST(D02haf, UserArraysReachFcnUntouched) {
  // FCN checks that it receives the caller's IUSER and RUSER (same addresses), counts its calls in IUSER(1)
  // and takes lambda from RUSER(1); nothing else of the arrays changes.
  static const int64_t* expected_iuser;
  static const double* expected_ruser;
  static bool addresses_ok;
  auto fcn = [](const double* x, const double* y, double* f, int64_t* iuser, double* ruser) {
    addresses_ok = addresses_ok && iuser == expected_iuser && ruser == expected_ruser;
    ++iuser[0];
    bratu(x, y, f, iuser, ruser);
  };
  Shot s(2);
  s.u = {0.0, 0.0};
  s.iu = {1, 0};
  s.v = {0.0, 0.0};
  s.iv = {1, 0};
  s.a = 0.0, s.b = 1.0, s.xm = 0.5, s.tol = 1e-8;
  s.iuser = {0, -7, 123456789012345};
  s.ruser = {1.0, std::numbers::e, -0.0};
  expected_iuser = s.iuser.data();
  expected_ruser = s.ruser.data();
  addresses_ok = true;
  shoot(s, fcn);
  ASSERT_EQ(s.ifail, 0);
  EXPECT_TRUE(addresses_ok);
  EXPECT_GT(s.iuser[0], 0);
  EXPECT_EQ(static_cast<double>(s.iuser[0]), s.w[2]);  // W(3) counts the calls
  EXPECT_EQ(s.iuser[1], -7);
  EXPECT_EQ(s.iuser[2], 123456789012345);
  EXPECT_EQ(s.ruser[0], 1.0);
  EXPECT_EQ(s.ruser[1], std::numbers::e);
  EXPECT_TRUE(std::signbit(s.ruser[2]));
}

TEST(D02haf, HostAdapterReachesFcnThroughTheWorker) {
  // A host calls the worker with an adapter of its own: every call of FCN passes through it.
  static int64_t adapter_calls = 0;
  auto adapter = [](vek_d02haf_fcn_fn f, const double* x, const double* y, double* dy, int64_t* iu, double* ru) {
    ++adapter_calls;
    f(x, y, dy, iu, ru);
  };
  Shot s(2);
  s.u = {0.0, 0.0};
  s.iu = {1, 0};
  s.v = {0.0, 0.0};
  s.iv = {1, 0};
  s.ruser = {1.0};
  char errbuf[200];
  int64_t ierr = -1;
  d02hafn_(s.u.data(), s.iu.data(), s.v.data(), s.iv.data(), &s.n, &s.a, &s.b, &s.xm, &s.tol, adapter, bratu,
           &s.maxit, &s.maxcal, s.iuser.data(), s.ruser.data(), s.w.data(), &s.lw, errbuf, &ierr, 200);
  EXPECT_EQ(ierr, 0);
  EXPECT_GT(adapter_calls, 0);
  EXPECT_EQ(static_cast<double>(adapter_calls), s.w[2]);
  EXPECT_NEAR(s.u[1], 0.5493527287752708, 1e-7);
}

TEST(D02haf, TracedCallShowsTheArgumentsAndStillSolves) {
  int64_t level = 1;
  Shot s(2);
  s.u = {0.0, 0.0};
  s.iu = {1, 0};
  s.v = {0.0, 0.0};
  s.iv = {1, 0};
  s.ruser = {1.0};
  y90gcft_(&level);
  const std::vector<std::string> out = vek::testing::console_lines([&] { shoot(s, bratu); });
  level = 0;
  y90gcft_(&level);
  EXPECT_EQ(s.ifail, 0);
  EXPECT_NEAR(s.u[1], 0.5493527287752708, 1e-7);
  std::string all;
  for (const std::string& line : out) all += line + "\n";
  for (const char* name : {"D02HAFT", "On entry", "On exit", "TOL", "MAXCAL", "FCN", "IFAIL"})
    EXPECT_NE(all.find(name), std::string::npos) << name << "\n" << all;
}
