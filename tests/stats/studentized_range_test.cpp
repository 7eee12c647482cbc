// G01EMF and G01FMF against an mpmath table of the defining double integral (and, for more groups at finite V,
// a double-precision quadrature of it), and every message.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::expect_report;

TEST(StudentizedRange, ProbabilitiesAndDeviatesAgainstReference) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/studentized_range.txt");
  int probabilities = 0, deviates = 0;
  int64_t ifail_unused = 0;
  double worst_p = 0, worst_q = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string first, nu_text;
    int64_t k = 0, ifail = 1;
    fields >> first;
    if (first == "double" || first == "double_deviate") {  // more groups at finite V: a double-precision reference
      double at = 0, nu = 0, want = 0;
      fields >> at >> nu >> k >> want;
      const double got = first == "double" ? g01emf_(&at, &nu, &k, &ifail) : g01fmf_(&at, &nu, &k, &ifail);
      EXPECT_EQ(ifail, 0);
      EXPECT_NEAR(got, want, 1e-11 * want) << line;
      ++(first == "double" ? probabilities : deviates);
      continue;
    }
    if (first == "deviate") {
      double p = 0, want = 0;
      fields >> p >> nu_text >> k >> want;
      double nu = std::strtod(nu_text.c_str(), nullptr);
      const double q = g01fmf_(&p, &nu, &k, &ifail);
      EXPECT_EQ(ifail, 0);
      worst_q = std::max(worst_q, std::fabs(q - want) / want);
      EXPECT_NEAR(q, want, 1e-12 * want) << line;
      ++deviates;
      continue;
    }
    double q = std::strtod(first.c_str(), nullptr), lower = 0, upper = 0;
    fields >> nu_text >> k >> lower >> upper;
    double nu = std::strtod(nu_text.c_str(), nullptr);
    const double got = g01emf_(&q, &nu, &k, &ifail);
    EXPECT_EQ(ifail, 0);
    // Relative to the smaller tail, less the rounding of a lower tail near 1.
    const double err = std::max(0.0, std::fabs(got - lower) - 0x1p-52 * lower) / std::min(lower, upper);
    worst_p = std::max(worst_p, err);
    EXPECT_LE(err, 1e-13) << line << " got " << got;
    ++probabilities;
  }
  EXPECT_GE(probabilities, 19);
  EXPECT_GE(deviates, 9);
  std::printf("studentized range: worst error relative to the smaller tail %.2g, deviates %.2g\n", worst_p, worst_q);
  // More groups at finite nu: nu = 1e12 differs from the limit nu = inf by O(1/nu).
  for (int64_t groups : {3, 10}) {
    for (double at : {1.0, 3.5}) {
      double inf = INFINITY, large = 1e12;
      const double limit = g01emf_(&at, &inf, &groups, &ifail_unused), near = g01emf_(&at, &large, &groups, &ifail_unused);
      EXPECT_NEAR(near, limit, 1e-10 * std::min(limit, 1 - limit)) << groups << " " << at;
    }
  }
  double q = 0.0, big = INFINITY, nu = 5.0;
  int64_t k = 3, ifail = 0;
  EXPECT_EQ(g01emf_(&q, &nu, &k, &ifail), 0.0);
  EXPECT_EQ(g01emf_(&big, &nu, &k, &ifail), 1.0);
}

// Two groups at V = 1: Q = sqrt(2) abs(T) with T Cauchy, so P(Q <= q) = (2/pi) atan(q/sqrt 2) in closed form,
// down to the smallest q and the smallest P; both calls must stay cheap at V = 1.
TEST(StudentizedRange, TwoGroupsOneDegreeAgainstClosedForm) {
  double v = 1.0;
  int64_t k = 2, ifail = 1;
  for (double q : {1e-10, 1e-100, 1e-300, 0.7, 2.5}) {
    const double want = 2.0 / M_PI * std::atan(q / std::sqrt(2.0));
    EXPECT_NEAR(g01emf_(&q, &v, &k, &ifail), want, 1e-13 * want) << q;
    EXPECT_EQ(ifail, 0);
  }
  for (double p : {0.5, 1e-200}) {
    const double want = std::sqrt(2.0) * std::tan(p * M_PI / 2.0);
    EXPECT_NEAR(g01fmf_(&p, &v, &k, &ifail), want, 1e-12 * want) << p;
    EXPECT_EQ(ifail, 0);
  }
  // The smallest P: a subnormal deviate whose probability rounds back to P's neighbourhood.
  double p = 4.94e-324;
  const double q = g01fmf_(&p, &v, &k, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_GT(q, 0.0);
  EXPECT_LT(q, 1e-320);
}

TEST(StudentizedRange, Messages) {
  double q = -1.0, v = 10.0, p = 0.5;
  int64_t ir = 3;
  const auto prob = [&](int64_t* f) { g01emf_(&q, &v, &ir, f); };
  const auto dev = [&](int64_t* f) { g01fmf_(&p, &v, &ir, f); };
  expect_report(prob, 1, {" ** On entry, Q = -1.", " ** Constraint: Q >= 0.0."}, "G01EMF");
  q = 2.0;
  v = 0.5;
  expect_report(prob, 1, {" ** On entry, V = 0.5.", " ** Constraint: V >= 1.0."}, "G01EMF");
  expect_report(dev, 1, {" ** On entry, V = 0.5.", " ** Constraint: V >= 1.0."}, "G01FMF");
  v = 10.0;
  for (const int64_t bad : {1, 201}) {
    ir = bad;
    const std::string rec = " ** On entry, IR = " + std::to_string(bad) + ".";
    expect_report(prob, 1, {rec, " ** Constraint: 2 <= IR <= 200."}, "G01EMF");
    expect_report(dev, 1, {rec, " ** Constraint: 2 <= IR <= 200."}, "G01FMF");
  }
  p = 0.0;
  expect_report(dev, 1, {" ** On entry, P = 0.", " ** Constraint: P > 0.0."}, "G01FMF");
  p = 1.0;
  expect_report(dev, 1, {" ** On entry, P = 1.", " ** Constraint: P < 1.0."}, "G01FMF");
}

}  // namespace
