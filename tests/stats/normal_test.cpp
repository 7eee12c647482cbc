// G01EAF and G01FAF through their exported entries: the mpmath tables in both tails, the four tails' formulas
// and their relations, the Part's exact values, lower-case letters, and every message.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "stats/data_table.h"
#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::data_table;
using vek::testing::console_lines;
using vek::testing::soft_report;

double probability(char tail, double x) {
  int64_t ifail = 1;
  const double v = g01eaf_(&tail, &x, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return v;
}

double deviate(char tail, double p) {
  int64_t ifail = 1;
  const double v = g01faf_(&tail, &p, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return v;
}

constexpr double kUlp = 0x1p-52;

TEST(Normal, ProbabilitiesAgainstReference) {
  const auto rows = data_table("normal.txt");
  ASSERT_GT(rows.size(), 250U);
  const char tails[] = {'L', 'U', 'C', 'S'};
  for (const auto& r : rows) {
    const double x = r[0];
    for (int k = 0; k < 4; ++k) {
      const double want = r[static_cast<size_t>(k) + 1], got = probability(tails[k], x);
      if (want < 1e-307) {  // below the normal range: within a few subnormal spacings
        EXPECT_LE(std::fabs(got - want), 0x1p-1072) << tails[k] << " x = " << x;
        continue;
      }
      EXPECT_NEAR(got, want, 4 * kUlp * want) << tails[k] << " x = " << x;
      EXPECT_EQ(probability(static_cast<char>(tails[k] | 0x20), x), got);  // lower case, bit for bit
    }
  }
  EXPECT_EQ(probability('L', 0.0), 0.5);
  EXPECT_EQ(probability('C', 0.0), 0.0);
  EXPECT_EQ(probability('S', 0.0), 1.0);
  EXPECT_EQ(probability('U', 40.0), 0.0);
  EXPECT_EQ(probability('L', -40.0), 0.0);
}

TEST(Normal, DeviatesAgainstReferenceAndTheFourTails) {
  const auto rows = data_table("normal_inverse.txt");
  ASSERT_GT(rows.size(), 250U);
  for (const auto& r : rows) {
    const double p = r[0], want = r[1];
    const double got = deviate('L', p);
    EXPECT_NEAR(got, want, 4 * kUlp * std::fabs(want) + 1e-300) << "p = " << p;
    // The other tails are the lower deviate of the stated arguments, bit for bit, in either case.
    EXPECT_EQ(deviate('U', p), -got);
    if (p / 2 + 0.5 < 1.0) EXPECT_EQ(deviate('C', p), deviate('L', p / 2 + 0.5));
    EXPECT_EQ(deviate('s', p), -deviate('L', p / 2));
    EXPECT_EQ(deviate('l', p), got);
    // Round trip: Phi's relative condition at x is about x^2 (and erfc's own few ulp).
    if (p > 1e-300 && p < 0.999) EXPECT_NEAR(probability('L', got), p, 8 * kUlp * (2 + got * got) * p);
  }
  EXPECT_EQ(deviate('L', 0.5), 0.0);
}

TEST(Normal, MessagesAndExclusiveBounds) {
  auto eaf = [](char tail, double x, int64_t& ifail) {
    ifail = -1;
    double v = -1;
    const auto lines = console_lines([&] { v = g01eaf_(&tail, &x, &ifail, 1); });
    return std::make_pair(lines, v);
  };
  auto faf = [](char tail, double p, int64_t& ifail) {
    ifail = -1;
    double v = -1;
    const auto lines = console_lines([&] { v = g01faf_(&tail, &p, &ifail, 1); });
    return std::make_pair(lines, v);
  };
  int64_t ifail;
  EXPECT_EQ(eaf('X', 1.0, ifail).first,
            soft_report({" ** On entry, TAIL is an invalid character: TAIL = 'X'"}, "G01EAF", 1));
  // TAIL before P.
  EXPECT_EQ(faf('q', 2.0, ifail).first,
            soft_report({" ** On entry, TAIL is an invalid character: TAIL = 'q'"}, "G01FAF", 1));
  for (char tail : {'L', 'U', 'C', 'S'}) {
    auto [low, v0] = faf(tail, 0.0, ifail);
    EXPECT_EQ(low, soft_report({" ** On entry, P = 0.", " ** Constraint: P > 0.0."}, "G01FAF", 2));
    EXPECT_EQ(v0, 0.0);
    auto [high, v1] = faf(tail, 1.0, ifail);  // also for 'C' and 'S', where p/2 would be inside (0,1)
    EXPECT_EQ(high, soft_report({" ** On entry, P = 1.", " ** Constraint: P < 1.0."}, "G01FAF", 2));
    EXPECT_EQ(v1, 0.0);
  }
  EXPECT_EQ(faf('L', NAN, ifail).first[1], " ** Constraint: P > 0.0.");
}

}  // namespace
