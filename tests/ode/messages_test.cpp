// D02HAF's failures through its exported entry: every declared message to the character, in the documented
// order of the checks; the two-digit IFAIL (1 silent and soft, 11 printed and soft, 10 and 0 printed and
// hard); bad input that must end in a defined error, never a crash or a hang.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "ode/shot.h"
#include "support/capture.h"
#include "vek.h"

using vek::testing::console_lines;
using vek::testing::file_lines;
using vek::testing::Shot;
using vek::testing::shoot;
using Lines = std::vector<std::string>;

namespace {

void oscillator(const double*, const double* y, double* f, int64_t*, double*) {
  f[0] = y[1];
  f[1] = -y[0];
}

void bratu(const double*, const double* y, double* f, int64_t*, double* ruser) {
  f[0] = y[1];
  f[1] = -ruser[0] * std::exp(y[0]);
}

// A well-posed problem (the sine on [0, pi/2]) that each test spoils in one way.
Shot sine_problem() {
  Shot s(2);
  s.u = {0.0, 0.3};
  s.iu = {1, 0};
  s.v = {1.0, 0.7};
  s.iv = {1, 0};
  s.a = 0.0, s.b = std::numbers::pi / 2, s.xm = 0.5, s.tol = 1e-8;
  return s;
}

// The report of a soft printed failure (IFAIL = 11 on entry).
Lines soft_report(Lines records, int64_t ifail) {
  char header[80];
  std::snprintf(header, sizeof header, " ** ABNORMAL EXIT from VEK Library routine D02HAF: IFAIL =%6lld",
                static_cast<long long>(ifail));
  records.push_back(header);
  records.push_back(" ** VEK soft failure - control returned");
  return records;
}

// Calls with IFAIL = 11 and compares the printed report and the IFAIL returned.
void expect_report(Shot s, vek_d02haf_fcn_fn fcn, int64_t ifail, const Lines& records) {
  s.ifail = 11;
  const Lines out = console_lines([&] { shoot(s, fcn); });
  EXPECT_EQ(s.ifail, ifail);
  EXPECT_EQ(out, soft_report(records, ifail));
}

// A real as the reports show it: its shortest exact text.
std::string shown(double x) {
  char buf[32];
  return std::string(buf, std::to_chars(buf, buf + sizeof buf, x).ptr);
}

}  // namespace

TEST(D02hafMessages, DeclaredChecksInOrder) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Shot s = sine_problem();
  s.n = 0;
  expect_report(s, oscillator, 1, {" ** On entry, N = 0.", " ** Constraint: N >= 1."});
  s.n = -5;
  s.a = s.b = 1.0;  // also wrong, but N is checked first
  expect_report(s, oscillator, 1, {" ** On entry, N = -5.", " ** Constraint: N >= 1."});

  s = sine_problem();
  s.a = s.b = 0.5;
  expect_report(s, oscillator, 1, {" ** On entry, A = 0.5 and B = 0.5.", " ** Constraint: A /= B."});
  s.a = nan;  // A /= B holds for a NaN, yet the check fails
  expect_report(s, oscillator, 1, {" ** On entry, A = NaN and B = 0.5.", " ** Constraint: A /= B."});

  s = sine_problem();
  s.xm = -0.25;
  expect_report(s, oscillator, 1,
                {" ** On entry, A = 0 and B = 1.5707963267948966,", " ** XM = -0.25.",
                 " ** Constraint: min(A,B) <= XM <= max(A,B)."});
  s.a = 2.0, s.b = 1.0, s.xm = nan;
  expect_report(s, oscillator, 1,
                {" ** On entry, A = 2 and B = 1,", " ** XM = NaN.", " ** Constraint: min(A,B) <= XM <= max(A,B)."});

  s = sine_problem();
  s.tol = 0.0;
  expect_report(s, oscillator, 1, {" ** On entry, TOL = 0.", " ** Constraint: TOL > 0.0."});
  s.tol = nan;
  expect_report(s, oscillator, 1, {" ** On entry, TOL = NaN.", " ** Constraint: TOL > 0.0."});

  s = sine_problem();
  s.maxit = 0;
  expect_report(s, oscillator, 1, {" ** On entry, MAXIT = 0.", " ** Constraint: MAXIT >= 1."});
  s = sine_problem();
  s.maxcal = -1;
  expect_report(s, oscillator, 1, {" ** On entry, MAXCAL = -1.", " ** Constraint: MAXCAL >= 1."});

  s = sine_problem();
  s.lw = 2 * (10 * 2 + 14) - 1;
  expect_report(s, oscillator, 1, {" ** On entry, LW = 67 and N = 2.", " ** Constraint: LW >= N*(10*N+14)."});
  // One short of the relation fails for any N (the arrays are not read); the exact length is what every
  // successful test passes.
  for (int64_t n : {1, 3, 1000, 900000000}) {
    s.n = n;
    s.lw = n * (10 * n + 14) - 1;
    expect_report(s, oscillator, 1,
                  {" ** On entry, LW = " + std::to_string(s.lw) + " and N = " + std::to_string(n) + ".",
                   " ** Constraint: LW >= N*(10*N+14)."});
  }
  // A huge N with a huge LW: the relation is computed without overflow and fails, before any array is read.
  s.n = std::numeric_limits<int64_t>::max();
  s.lw = std::numeric_limits<int64_t>::max();
  expect_report(s, oscillator, 1,
                {" ** On entry, LW = 9223372036854775807 and N = 9223372036854775807.",
                 " ** Constraint: LW >= N*(10*N+14)."});
}

TEST(D02hafMessages, BodyChecksInOrder) {
  const double inf = std::numeric_limits<double>::infinity();
  Shot s = sine_problem();
  s.b = inf, s.xm = 1.0;
  s.iu[0] = 7;  // also wrong, but the ends are checked first
  expect_report(s, oscillator, 1, {" ** On entry, A = 0 and B = Infinity.", " ** Constraint: A and B are finite."});

  s = sine_problem();
  s.iu[1] = 2;
  s.iv[0] = -1;
  expect_report(s, oscillator, 1, {" ** On entry, IU(2) = 2.", " ** Constraint: IU(I) = 0 or 1."});
  s.iu[1] = 0;
  expect_report(s, oscillator, 1, {" ** On entry, IV(1) = -1.", " ** Constraint: IV(I) = 0 or 1."});

  s = sine_problem();
  s.iv = {1, 1};
  expect_report(s, oscillator, 1,
                {" ** On entry, N = 2 and the known boundary values number 3.",
                 " ** Constraint: exactly N of IU(1:N), IV(1:N) are 1."});
  s.iu = {0, 0}, s.iv = {0, 0};
  expect_report(s, oscillator, 1,
                {" ** On entry, N = 2 and the known boundary values number 0.",
                 " ** Constraint: exactly N of IU(1:N), IV(1:N) are 1."});

  // Estimates must be finite too, not only known values.
  s = sine_problem();
  s.u[1] = std::numeric_limits<double>::quiet_NaN();
  s.v[1] = inf;
  expect_report(s, oscillator, 1, {" ** On entry, U(2) = NaN.", " ** Constraint: U(I) is finite."});
  s.u[1] = 0.0;
  expect_report(s, oscillator, 1, {" ** On entry, V(2) = Infinity.", " ** Constraint: V(I) is finite."});
}

TEST(D02hafMessages, ComputationalFailures) {
  // Newton steps: Bratu's problem with lambda = 1 needs four; allowed one, the residual left is reported
  // and returned in W(1).
  Shot s = sine_problem();
  s.u = {0.0, 0.0}, s.v = {0.0, 0.0}, s.b = 1.0, s.ruser = {1.0}, s.maxit = 1;
  {
    Shot t = s;
    t.ifail = 1;
    shoot(t, bratu);
    ASSERT_EQ(t.ifail, 2);
    EXPECT_EQ(t.w[1], 1.0);
    EXPECT_GT(t.w[0], 0.0);
    expect_report(s, bratu, 2,
                  {" ** The Newton iteration did not converge in MAXIT = 1 steps;",
                   " ** the largest matching residual is " + shown(t.w[0]) + "."});
  }

  // y' = 0 with the first component known at both ends: the first matching condition does not depend on
  // the unknowns, and the Jacobian has a zero row.
  auto constant = [](const double*, const double*, double* f, int64_t*, double*) { f[0] = f[1] = 0.0; };
  expect_report(sine_problem(), constant, 3,
                {" ** The Jacobian of the matching conditions is singular at Newton step 1:",
                 " ** the known values may fix no unique solution; check IU, IV, U, V and XM."});

  // Bratu with lambda = 4, past the fold at 3.51: no solution, and the damped steps stop reducing the
  // residual.
  s = sine_problem();
  s.u = {0.0, 0.0}, s.v = {0.0, 0.0}, s.b = 1.0, s.ruser = {4.0};
  {
    Shot t = s;
    shoot(t, bratu);
    ASSERT_EQ(t.ifail, 3);
    expect_report(s, bratu, 3,
                  {" ** No damped Newton step reduces the matching residual " + shown(t.w[0]),
                   " ** at Newton step " + std::to_string(static_cast<int64_t>(t.w[1])) +
                       ": improve the estimates in U and V, or move XM."});
  }

  // y' = y^2, y(0) = 1 blows up at x = 1: the step size collapses there.
  auto blow_up = [](const double*, const double* y, double* f, int64_t*, double*) { f[0] = y[0] * y[0]; };
  Shot b(1);
  b.u = {1.0}, b.iu = {1}, b.v = {0.0}, b.iv = {0}, b.a = 0.0, b.b = 2.0, b.xm = 2.0, b.ifail = 11;
  const Lines out = console_lines([&] { shoot(b, blow_up); });
  ASSERT_EQ(b.ifail, 4);
  ASSERT_EQ(out.size(), 4u);
  const std::string prefix = " ** The integration step has become too small at X = ";
  ASSERT_EQ(out[0].substr(0, prefix.size()), prefix);
  ASSERT_EQ(out[0].back(), ':');
  EXPECT_NEAR(std::stod(out[0].substr(prefix.size())), 1.0, 1e-6);
  EXPECT_EQ(Lines(out.begin() + 1, out.end()),
            Lines(soft_report({" ** TOL may be too small, or the solution may be singular near X."}, 4)));

  // MAXCAL = 1 cannot pay for the first evaluation of the two copies shot from A.
  s = sine_problem();
  s.maxcal = 1;
  expect_report(s, oscillator, 5,
                {" ** MAXCAL = 1 calls of FCN have not sufficed.", " ** The integration stopped at X = 0."});

  // FCN returning NaN (or an infinity) at the start.
  auto nan_everywhere = [](const double*, const double*, double* f, int64_t*, double*) {
    f[0] = std::numeric_limits<double>::quiet_NaN();
    f[1] = 0.0;
  };
  expect_report(sine_problem(), nan_everywhere, 6, {" ** FCN returned a value that is not finite at X = 0."});
  auto infinite_at_b = [](const double* x, const double*, double* f, int64_t*, double*) {
    f[0] = 0.0;
    f[1] = *x == std::numbers::pi / 2 ? -std::numeric_limits<double>::infinity() : 1.0;
  };
  expect_report(sine_problem(), infinite_at_b, 6,
                {" ** FCN returned a value that is not finite at X = 1.5707963267948966."});
}

TEST(D02hafMessages, NanInsideTheIntervalEndsInADefinedError) {
  // NaN beyond x = 0.3: the steps shrink towards it and the integration stops there with IFAIL = 6, in a
  // bounded number of calls.
  auto nan_beyond = [](const double* x, const double* y, double* f, int64_t*, double*) {
    f[0] = y[1];
    f[1] = *x > 0.3 ? std::numeric_limits<double>::quiet_NaN() : -y[0];
  };
  Shot s = sine_problem();
  s.xm = s.b;
  shoot(s, nan_beyond);
  EXPECT_EQ(s.ifail, 6);
  EXPECT_LT(s.w[2], 5000.0);
  EXPECT_EQ(s.u[1], 0.3);  // the estimates are returned as they came
  EXPECT_EQ(s.v[1], 0.7);
}

TEST(D02hafMessages, ExtremeEndsEndInADefinedError) {
  // Ends at +-1e308 are finite, but no step the integrator may take (16 eps times the length) is small enough
  // for the oscillator: IFAIL = 4 at the start, after the two evaluations that choose the first step.
  Shot s = sine_problem();
  s.a = -1e308, s.b = 1e308, s.xm = 0.0;
  expect_report(s, oscillator, 4,
                {" ** The integration step has become too small at X = -1e+308:",
                 " ** TOL may be too small, or the solution may be singular near X."});
  s.ifail = 1;
  shoot(s, oscillator);
  EXPECT_EQ(s.w[2], 4.0);
}

TEST(D02hafMessagesDeathTest, TwoDigitIfail) {
  const Lines n_records = {" ** On entry, N = 0.", " ** Constraint: N >= 1."};
  Shot bad = sine_problem();
  bad.n = 0;
  // Units digit not 0 and tens digit 0: soft and silent; both not 0: soft and printed. The sign is ignored.
  for (int64_t mode : {1, -1, 5, 101}) {
    Shot s = bad;
    s.ifail = mode;
    EXPECT_TRUE(console_lines([&] { shoot(s, oscillator); }).empty()) << mode;
    EXPECT_EQ(s.ifail, 1) << mode;
  }
  for (int64_t mode : {11, -11, 21, 111}) {
    Shot s = bad;
    s.ifail = mode;
    EXPECT_EQ(console_lines([&] { shoot(s, oscillator); }), soft_report(n_records, 1)) << mode;
    EXPECT_EQ(s.ifail, 1) << mode;
  }
  // Success prints nothing and returns 0 whatever IFAIL was, 0 included.
  for (int64_t mode : {0, 1, 10, 11}) {
    Shot s = sine_problem();
    s.ifail = mode;
    EXPECT_TRUE(console_lines([&] { shoot(s, oscillator); }).empty()) << mode;
    EXPECT_EQ(s.ifail, 0) << mode;
  }
  // 10, 0 and -10: the report, the hard-failure line, and the process stops (exit status 0). The error unit
  // is sent to a file so that the child's report can be read after it has gone.
  for (int64_t mode : {10, 0, -10}) {
    const std::string path = ::testing::TempDir() + "vek_d02haf_hard_" + std::to_string(mode + 10) + ".txt";
    std::remove(path.c_str());
    auto fail_hard = [&] {
      const int64_t unit = 41, write = 1, set = 1;
      int64_t ifail = 1, nerr = unit;
      x04acf_(&unit, path.c_str(), &write, &ifail, static_cast<int64_t>(path.size()));
      x04aaf_(&set, &nerr);
      Shot s = bad;
      s.ifail = mode;
      shoot(s, oscillator);
      std::fprintf(stderr, "returned\n");  // must not be reached
    };
    EXPECT_EXIT(fail_hard(), ::testing::ExitedWithCode(0), "^$") << mode;
    Lines expected = n_records;
    expected.push_back(" ** ABNORMAL EXIT from VEK Library routine D02HAF: IFAIL =     1");
    expected.push_back(" ** VEK hard failure - execution terminated");
    EXPECT_EQ(file_lines(path), expected) << mode;
  }
}
