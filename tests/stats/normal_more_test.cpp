// G01EHF and G01HBF through their exported entries: the normal interval and the bivariate normal against
// mpmath, far tails, narrow intervals and correlations up to +-1, the symmetries, and every message.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "stats/data_table.h"
#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::data_table;
using vek::testing::expect_report;

double interval(double a, double b) {
  int64_t ifail = 1;
  const double p = g01ehf_(&a, &b, &ifail);
  EXPECT_EQ(ifail, 0);
  return p;
}

double bivariate(char tail, double x, double y, double rho) {
  int64_t ifail = 1;
  const double p = g01hbf_(&tail, &x, &y, &rho, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return p;
}

TEST(NormalMore, IntervalAgainstReference) {
  const auto rows = data_table("interval.txt");
  ASSERT_GT(rows.size(), 170U);
  double worst = 0;
  for (const auto& r : rows) {
    const double got = interval(r[0], r[1]), want = r[2];
    if (want < 1e-300) {  // where the probability leaves the normal range: at most a subnormal's worth
      EXPECT_LE(std::fabs(got - want), 1e-300) << r[0] << " " << r[1];
      continue;
    }
    const double rel = std::fabs(got - want) / want;
    worst = std::max(worst, rel);
    EXPECT_LE(rel, 24 * 0x1p-52) << "a = " << r[0] << " b = " << r[1];
  }
  std::printf("interval: worst relative error %.2g\n", worst);
  // The whole line, half lines, and the empty interval.
  EXPECT_EQ(interval(-INFINITY, INFINITY), 1.0);
  EXPECT_NEAR(interval(0.0, INFINITY), 0.5, 0x1p-53);
  EXPECT_EQ(interval(2.0, 2.0), 0.0);
  EXPECT_EQ(interval(INFINITY, INFINITY), 0.0);
  // Mirror image: P(a <= Z <= b) = P(-b <= Z <= -a), to rounding.
  for (const auto& r : rows) EXPECT_NEAR(interval(-r[1], -r[0]), interval(r[0], r[1]), 8 * 0x1p-52 * r[2] + 1e-310);
}

TEST(NormalMore, BivariateAgainstReference) {
  const auto rows = data_table("bivariate.txt");
  ASSERT_GT(rows.size(), 280U);
  double worst_abs = 0, worst_rel = 0;
  for (const auto& r : rows) {
    const double x = r[0], y = r[1], rho = r[2], want = r[3];
    const double got = bivariate('L', x, y, rho);
    worst_abs = std::max(worst_abs, std::fabs(got - want));
    if (want > 1e-300) worst_rel = std::max(worst_rel, std::fabs(got - want) / want);
    EXPECT_NEAR(got, want, 1e-15) << x << " " << y << " " << rho;
    // Relative where the probability is a normal number; rho within 1e-12 of +-1 is absolute only.
    if (want > 1e-300 && std::fabs(rho) < 1 - 1e-9) EXPECT_LE(std::fabs(got - want), 2e-12 * want) << x << " " << y << " " << rho;
    // Upper tail of the point is the lower of its mirror; the arguments commute.
    EXPECT_EQ(bivariate('u', -x, -y, rho), got);
    EXPECT_NEAR(bivariate('L', y, x, rho), got, 1e-16);
  }
  std::printf("bivariate: worst absolute error %.2g, worst relative %.2g\n", worst_abs, worst_rel);
}

TEST(NormalMore, BivariateFarTailsToRelativeAccuracy) {
  // Lower orthants from 1e-8 down to 1e-300, correlations across (-1, 1): relative error, in both argument
  // orders and as the upper orthant of the mirror point.
  const auto rows = data_table("bivariate_tail.txt");
  ASSERT_GT(rows.size(), 80U);
  double worst = 0;
  for (const auto& r : rows) {
    const double x = r[0], y = r[1], rho = r[2], want = r[3];
    for (const double got : {bivariate('L', x, y, rho), bivariate('L', y, x, rho), bivariate('U', -x, -y, rho)}) {
      const double rel = std::fabs(got - want) / want;
      worst = std::max(worst, rel);
      EXPECT_LE(rel, std::fabs(rho) > 0.9999 ? 2e-12 : 1e-13) << x << " " << y << " " << rho;
    }
  }
  std::printf("bivariate far tails: worst relative error %.2g\n", worst);
}

TEST(NormalMore, Messages) {
  double a = 1.0, b = 0.5, x = 0.0, rho = 0.5;
  expect_report([&](int64_t* f) { g01ehf_(&a, &b, f); }, 1, {" ** On entry, A = 1 and B = 0.5.", " ** Constraint: A <= B."},
                "G01EHF");
  char tail = 'C';
  expect_report([&](int64_t* f) { g01hbf_(&tail, &x, &x, &rho, f, 1); }, 1,
                {" ** On entry, TAIL is not valid: TAIL = 'C'."}, "G01HBF");
  tail = 'l';
  rho = -1.5;
  expect_report([&](int64_t* f) { g01hbf_(&tail, &x, &x, &rho, f, 1); }, 2,
                {" ** On entry, RHO = -1.5.", " ** Constraint: -1.0 <= RHO <= 1.0."}, "G01HBF");
  tail = 'X';  // TAIL before RHO
  expect_report([&](int64_t* f) { g01hbf_(&tail, &x, &x, &rho, f, 1); }, 1,
                {" ** On entry, TAIL is not valid: TAIL = 'X'."}, "G01HBF");
}

}  // namespace
