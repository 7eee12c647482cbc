// G01GBF, G01GCF and G01GDF against mpmath tables (both tails), their limits, their deviates G01GTF, G01GXF and
// G01GFF, and every message.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "stats/data_table.h"
#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::data_table;
using vek::testing::expect_report;

double chi2(char tail, double x, double df, double lambda) {
  int64_t ifail = 1;
  const double p = g01gcf_(&tail, &x, &df, &lambda, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return p;
}

double ncf(char tail, double f, double df1, double df2, double lambda) {
  int64_t ifail = 1;
  const double p = g01gdf_(&tail, &f, &df1, &df2, &lambda, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return p;
}

double nct(char tail, double t, double df, double delta) {
  int64_t ifail = 1;
  const double p = g01gbf_(&tail, &t, &df, &delta, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return p;
}

// Relative error against the reference, with an absolute floor for the tails tabled as absolute.
struct Worst {
  const char* name;
  double rel = 0, abs = 0;
  void check(double got, double want, double rel_tol, bool relative, const std::string& where) {
    const double e = std::fabs(got - want);
    if (relative && want > 1e-300) {
      rel = std::max(rel, e / want);
      EXPECT_LE(e, rel_tol * want) << name << " " << where << " got " << got << " want " << want;
    } else {
      abs = std::max(abs, e);
      EXPECT_LE(e, 4e-16) << name << " " << where << " got " << got << " want " << want;
    }
  }
  ~Worst() { std::printf("%s: worst relative error %.2g, worst absolute (where only absolute) %.2g\n", name, rel, abs); }
};

// A DF whose half underflows (the smallest subnormal) takes the limit DF -> 0, which the regular path at
// DF = 1e-300 approaches to O(DF); for the t both tails tend to Phi(-DELTA) and Phi(DELTA).
TEST(Noncentral, SmallestSubnormalDfIsTheZeroLimit) {
  const double tiny = 4.94e-324, small = 1e-300;
  for (const char tail : {'L', 'U'}) {
    for (const double x : {0.3, 1.0, 7.0}) {
      EXPECT_NEAR(chi2(tail, x, tiny, 1.0), chi2(tail, x, small, 1.0), 1e-14) << tail << x;
      EXPECT_NEAR(ncf(tail, x, tiny, 3.0, 2.0), ncf(tail, x, small, 3.0, 2.0), 1e-14) << tail << x;
      EXPECT_NEAR(ncf(tail, x, 3.0, tiny, 2.0), ncf(tail, x, 3.0, small, 2.0), 1e-14) << tail << x;
    }
  }
  for (const double delta : {-2.0, 0.5}) {
    for (const double t : {-1.0, 1.0}) {
      EXPECT_NEAR(nct('L', t, tiny, delta), 0.5 * std::erfc(delta / std::sqrt(2.0)), 1e-15) << t << delta;
      EXPECT_NEAR(nct('U', t, tiny, delta), 0.5 * std::erfc(-delta / std::sqrt(2.0)), 1e-15) << t << delta;
    }
  }
  EXPECT_EQ(chi2('U', 1.0, tiny, 0.0), 0.0);  // no degrees and no centrality: the point mass at 0
}

TEST(Noncentral, ChiSquareBothTailsAgainstReference) {
  const auto rows = data_table("noncentral_chi2.txt");
  ASSERT_GT(rows.size(), 150U);
  Worst worst{"chi-square"};
  for (const auto& r : rows) {
    const std::string at = std::to_string(r[0]) + " " + std::to_string(r[1]) + " " + std::to_string(r[2]);
    worst.check(chi2('L', r[0], r[1], r[2]), r[3], 1e-13, true, at + " L");
    worst.check(chi2('u', r[0], r[1], r[2]), r[4], 1e-13, true, at + " U");
  }
  EXPECT_EQ(chi2('L', INFINITY, 3.0, 2.0), 1.0);
  EXPECT_EQ(chi2('U', INFINITY, 3.0, 2.0), 0.0);
  EXPECT_EQ(chi2('L', 0.0, 3.0, 2.0), 0.0);
}

TEST(Noncentral, FBothTailsAgainstReference) {
  const auto rows = data_table("noncentral_f.txt");
  ASSERT_GT(rows.size(), 110U);
  Worst worst{"F"};
  for (const auto& r : rows) {
    const std::string at = std::to_string(r[0]) + " " + std::to_string(r[1]) + " " + std::to_string(r[2]) + " " +
                           std::to_string(r[3]);
    worst.check(ncf('l', r[0], r[1], r[2], r[3]), r[4], 1e-13, true, at + " L");
    worst.check(ncf('U', r[0], r[1], r[2], r[3]), r[5], 1e-13, true, at + " U");
  }
  EXPECT_EQ(ncf('L', INFINITY, 3.0, 4.0, 2.0), 1.0);
  EXPECT_EQ(ncf('U', INFINITY, 3.0, 4.0, 2.0), 0.0);
}

TEST(Noncentral, TBothTailsAgainstReference) {
  const auto rows = data_table("noncentral_t.txt");
  ASSERT_GT(rows.size(), 130U);
  Worst worst{"t"};
  for (const auto& r : rows) {
    const double t = r[0], df = r[1], delta = r[2];
    const std::string at = std::to_string(t) + " " + std::to_string(df) + " " + std::to_string(delta);
    // The tail on the far side from delta (t >= 0 > delta upper, t < 0 < delta lower) alternates: absolute.
    worst.check(nct('L', t, df, delta), r[3], 1e-13, !(t < 0 && delta > 0), at + " L");
    worst.check(nct('U', t, df, delta), r[4], 1e-13, !(t >= 0 && delta < 0), at + " U");
  }
  EXPECT_EQ(nct('L', INFINITY, 3.0, 2.0), 1.0);
  EXPECT_EQ(nct('U', -INFINITY, 3.0, 2.0), 1.0);
  EXPECT_TRUE(std::isnan(nct('L', NAN, 3.0, 2.0)));
}

// The deviates recover each tabled point from its tabled smaller tail, to what the conditioning allows: the
// tail at the deviate is the asked-for one to 1e-12 relative, and the deviate is within that much of the
// point, in units of the tail's own sensitivity to x (measured by differences of the probability routines).
TEST(Noncentral, DeviatesInvertTheTabledTails) {
  struct Family {
    const char* file;
    size_t parameters;
    double (*probability)(char, double, const std::vector<double>&);
    double (*deviate)(char, double, const std::vector<double>&, int64_t*);
  };
  const Family families[] = {
      {"noncentral_chi2.txt", 2, [](char t, double x, const std::vector<double>& r) { return chi2(t, x, r[1], r[2]); },
       [](char t, double p, const std::vector<double>& r, int64_t* f) { return g01gxf_(&t, &p, &r[1], &r[2], f, 1); }},
      {"noncentral_f.txt", 3, [](char t, double x, const std::vector<double>& r) { return ncf(t, x, r[1], r[2], r[3]); },
       [](char t, double p, const std::vector<double>& r, int64_t* f) {
         return g01gff_(&t, &p, &r[1], &r[2], &r[3], f, 1);
       }},
      {"noncentral_t.txt", 2, [](char t, double x, const std::vector<double>& r) { return nct(t, x, r[1], r[2]); },
       [](char t, double p, const std::vector<double>& r, int64_t* f) { return g01gtf_(&t, &p, &r[1], &r[2], f, 1); }},
  };
  for (const Family& fam : families) {
    int checked = 0, row = 0;
    for (const auto& r : data_table(fam.file)) {
      if (row++ % 2 != 0) continue;  // every other point: each deviate costs some 40 probabilities
      const double x = r[0], lower = r[fam.parameters + 1], upper = r[fam.parameters + 2];
      const char tail = lower <= upper ? 'L' : 'U';
      const double p = std::min(lower, upper);
      const bool far_side = std::string(fam.file) == "noncentral_t.txt" && ((x < 0 && r[2] > 0) || (x >= 0 && r[2] < 0));
      if (p < 1e-280 || p >= 0.5 || x == 0.0 || !std::isfinite(x)) continue;
      int64_t ifail = 1;
      const double got = fam.deviate(tail, p, r, &ifail);
      EXPECT_EQ(ifail, 0);
      const double tol = 1e-12 * p + (far_side ? 4e-16 : 0.0);  // the t's far-side tail is absolute
      EXPECT_NEAR(fam.probability(tail, got, r), p, tol) << fam.file << " " << x << " got " << got;
      const double h = 1e-6 * std::fabs(x);
      const double slope = std::fabs(fam.probability(tail, x + h, r) - fam.probability(tail, x - h, r)) / (2 * h);
      if (far_side && p < 1e-10) continue;  // the point itself is not resolved by an absolute tail
      EXPECT_LE(std::fabs(got - x), 2 * tol / slope + 1e-14 * std::fabs(x)) << fam.file << " " << x;
      ++checked;
    }
    EXPECT_GT(checked, 30) << fam.file;
  }
}

TEST(Noncentral, Messages) {
  char tail = 'C';
  double x = 1.0, df = 2.0, lam = 3.0, df2 = 4.0;
  const auto chi = [&](int64_t* f) { g01gcf_(&tail, &x, &df, &lam, f, 1); };
  const auto fd = [&](int64_t* f) { g01gdf_(&tail, &x, &df, &df2, &lam, f, 1); };
  const auto td = [&](int64_t* f) { g01gbf_(&tail, &x, &df, &lam, f, 1); };
  const char* invalid = " ** On entry, TAIL is not valid: TAIL = 'C'";
  expect_report(chi, 1, {invalid}, "G01GCF");
  expect_report(fd, 1, {invalid}, "G01GDF");
  expect_report(td, 1, {invalid}, "G01GBF");
  tail = 'U';
  x = -0.5;
  expect_report(chi, 2, {" ** On entry, X = -0.5.", " ** Constraint: X >= 0.0."}, "G01GCF");
  expect_report(fd, 2, {" ** On entry, F = -0.5.", " ** Constraint: F >= 0.0."}, "G01GDF");
  x = 1.0;
  for (const double bad : {0.0, 2e6}) {
    df = bad;
    const std::string v = bad == 0.0 ? "0" : "2e+06";
    expect_report(chi, 3, {" ** On entry, DF = " + v + ".", " ** Constraint: 0.0 < DF <= 1.0e6."}, "G01GCF");
    expect_report(fd, 3, {" ** On entry, DF1 = " + v + ".", " ** Constraint: 0.0 < DF1 <= 1.0e6."}, "G01GDF");
    expect_report(td, 2, {" ** On entry, DF = " + v + ".", " ** Constraint: 0.0 < DF <= 1.0e6."}, "G01GBF");
    df = 2.0;
    df2 = bad;
    expect_report(fd, 3, {" ** On entry, DF2 = " + v + ".", " ** Constraint: 0.0 < DF2 <= 1.0e6."}, "G01GDF");
    df2 = 4.0;
  }
  lam = -1.0;
  expect_report(chi, 3, {" ** On entry, RLAMDA = -1.", " ** Constraint: 0.0 <= RLAMDA <= 1.0e6."}, "G01GCF");
  expect_report(fd, 3, {" ** On entry, RLAMDA = -1.", " ** Constraint: 0.0 <= RLAMDA <= 1.0e6."}, "G01GDF");
  lam = -1500.0;
  expect_report(td, 3, {" ** On entry, DELTA = -1500.", " ** Constraint: abs(DELTA) <= 1000.0."}, "G01GBF");
  // Checks in declared order: X before DF before RLAMDA; a NaN fails its check.
  x = NAN;
  df = -1.0;
  expect_report(chi, 2, {" ** On entry, X = NaN.", " ** Constraint: X >= 0.0."}, "G01GCF");
}

// The deviates check TAIL, then P (open at both ends), then the parameters in their order.
TEST(Noncentral, DeviateMessages) {
  char bad = 'S', lu = 'L';
  double half = 0.5, zero = 0.0, one = 1.0, two = 2.0, neg = -1.0, big = 2e6, far = 1001.0;
  const std::string kTail = "** On entry, TAIL is not valid: TAIL = 'S'";
  const std::vector<vek::testing::ReportCase> cases = {
      {"G01GXF", 1, {kTail}, [&](int64_t* f) { g01gxf_(&bad, &zero, &neg, &neg, f, 1); }},
      {"G01GXF", 2, {"** On entry, P = 0.", "** Constraint: P > 0.0."}, [&](int64_t* f) { g01gxf_(&lu, &zero, &neg, &neg, f, 1); }},
      {"G01GXF", 2, {"** On entry, P = 1.", "** Constraint: P < 1.0."}, [&](int64_t* f) { g01gxf_(&lu, &one, &neg, &neg, f, 1); }},
      {"G01GXF", 3, {"** On entry, DF = 2e+06.", "** Constraint: 0.0 < DF <= 1.0e6."},
       [&](int64_t* f) { g01gxf_(&lu, &half, &big, &neg, f, 1); }},
      {"G01GXF", 3, {"** On entry, RLAMDA = -1.", "** Constraint: 0.0 <= RLAMDA <= 1.0e6."},
       [&](int64_t* f) { g01gxf_(&lu, &half, &two, &neg, f, 1); }},
      {"G01GFF", 1, {kTail}, [&](int64_t* f) { g01gff_(&bad, &zero, &neg, &neg, &neg, f, 1); }},
      {"G01GFF", 2, {"** On entry, P = 0.", "** Constraint: P > 0.0."},
       [&](int64_t* f) { g01gff_(&lu, &zero, &neg, &neg, &neg, f, 1); }},
      {"G01GFF", 2, {"** On entry, P = 1.", "** Constraint: P < 1.0."},
       [&](int64_t* f) { g01gff_(&lu, &one, &neg, &neg, &neg, f, 1); }},
      {"G01GFF", 3, {"** On entry, DF1 = -1.", "** Constraint: 0.0 < DF1 <= 1.0e6."},
       [&](int64_t* f) { g01gff_(&lu, &half, &neg, &neg, &neg, f, 1); }},
      {"G01GFF", 3, {"** On entry, DF2 = 0.", "** Constraint: 0.0 < DF2 <= 1.0e6."},
       [&](int64_t* f) { g01gff_(&lu, &half, &two, &zero, &neg, f, 1); }},
      {"G01GFF", 3, {"** On entry, RLAMDA = 2e+06.", "** Constraint: 0.0 <= RLAMDA <= 1.0e6."},
       [&](int64_t* f) { g01gff_(&lu, &half, &two, &two, &big, f, 1); }},
      {"G01GTF", 1, {kTail}, [&](int64_t* f) { g01gtf_(&bad, &zero, &neg, &far, f, 1); }},
      {"G01GTF", 2, {"** On entry, P = 0.", "** Constraint: P > 0.0."}, [&](int64_t* f) { g01gtf_(&lu, &zero, &neg, &far, f, 1); }},
      {"G01GTF", 2, {"** On entry, P = 1.", "** Constraint: P < 1.0."}, [&](int64_t* f) { g01gtf_(&lu, &one, &neg, &far, f, 1); }},
      {"G01GTF", 3, {"** On entry, DF = -1.", "** Constraint: 0.0 < DF <= 1.0e6."},
       [&](int64_t* f) { g01gtf_(&lu, &half, &neg, &far, f, 1); }},
      {"G01GTF", 3, {"** On entry, DELTA = 1001.", "** Constraint: abs(DELTA) <= 1000.0."},
       [&](int64_t* f) { g01gtf_(&lu, &half, &two, &far, f, 1); }},
  };
  for (const auto& c : cases) vek::testing::expect_reports(c.what, {c});
}

}  // namespace
