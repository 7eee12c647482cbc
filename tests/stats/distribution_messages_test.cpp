// The distribution functions' and deviates' messages, each to the character, in their declared order (TAIL
// first, then P, then the parameters), and the exact values and limits at the ends of their ranges.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::expect_report;

const std::string kTail = " ** On entry, TAIL is not valid: TAIL = '";
const std::string kP0 = " ** Constraint: P > 0.0.";
const std::string kP1 = " ** Constraint: P < 1.0.";

TEST(DistributionMessages, ProbabilitiesInTheirDeclaredOrder) {
  char tail = 'X', lu = 'L', c = 'c';
  double t = 1.0, df = -1.0, neg = -0.5, one = 1.0, two = 2.0, zero = 0.0;
  // TAIL before the parameters; 'C' and 'S' only for t.
  expect_report([&](int64_t* f) { g01ebf_(&tail, &t, &df, f, 1); }, 1, {kTail + "X'"}, "G01EBF");
  expect_report([&](int64_t* f) { g01ebf_(&lu, &t, &df, f, 1); }, 2,
                {" ** On entry, DF = -1.", " ** Constraint: DF > 0.0."}, "G01EBF");
  expect_report([&](int64_t* f) { g01ecf_(&c, &neg, &df, f, 1); }, 1, {kTail + "c'"}, "G01ECF");
  expect_report([&](int64_t* f) { g01ecf_(&lu, &neg, &df, f, 1); }, 2,
                {" ** On entry, X = -0.5.", " ** Constraint: X >= 0.0."}, "G01ECF");
  expect_report([&](int64_t* f) { g01ecf_(&lu, &one, &df, f, 1); }, 3,
                {" ** On entry, DF = -1.", " ** Constraint: DF > 0.0."}, "G01ECF");
  expect_report([&](int64_t* f) { g01edf_(&tail, &neg, &df, &df, f, 1); }, 1, {kTail + "X'"}, "G01EDF");
  expect_report([&](int64_t* f) { g01edf_(&lu, &neg, &df, &df, f, 1); }, 2,
                {" ** On entry, F = -0.5.", " ** Constraint: F >= 0.0."}, "G01EDF");
  expect_report([&](int64_t* f) { g01edf_(&lu, &one, &zero, &df, f, 1); }, 3,
                {" ** On entry, DF1 = 0.", " ** Constraint: DF1 > 0.0."}, "G01EDF");
  expect_report([&](int64_t* f) { g01edf_(&lu, &one, &one, &df, f, 1); }, 3,
                {" ** On entry, DF2 = -1.", " ** Constraint: DF2 > 0.0."}, "G01EDF");
  expect_report([&](int64_t* f) { g01eef_(&c, &neg, &df, &df, f, 1); }, 1, {kTail + "c'"}, "G01EEF");
  expect_report([&](int64_t* f) { g01eef_(&lu, &neg, &df, &df, f, 1); }, 2,
                {" ** On entry, X = -0.5.", " ** Constraint: X >= 0.0."}, "G01EEF");
  expect_report([&](int64_t* f) { g01eef_(&lu, &two, &df, &df, f, 1); }, 2,
                {" ** On entry, X = 2.", " ** Constraint: X <= 1.0."}, "G01EEF");
  expect_report([&](int64_t* f) { g01eef_(&lu, &one, &df, &df, f, 1); }, 3,
                {" ** On entry, A = -1.", " ** Constraint: A > 0.0."}, "G01EEF");
  expect_report([&](int64_t* f) { g01eef_(&lu, &one, &one, &zero, f, 1); }, 3,
                {" ** On entry, B = 0.", " ** Constraint: B > 0.0."}, "G01EEF");
  expect_report([&](int64_t* f) { g01eff_(&tail, &neg, &df, &df, f, 1); }, 1, {kTail + "X'"}, "G01EFF");
  expect_report([&](int64_t* f) { g01eff_(&lu, &neg, &df, &df, f, 1); }, 2,
                {" ** On entry, G = -0.5.", " ** Constraint: G >= 0.0."}, "G01EFF");
  expect_report([&](int64_t* f) { g01eff_(&lu, &one, &df, &df, f, 1); }, 3,
                {" ** On entry, A = -1.", " ** Constraint: A > 0.0."}, "G01EFF");
  expect_report([&](int64_t* f) { g01eff_(&lu, &one, &one, &neg, f, 1); }, 3,
                {" ** On entry, B = -0.5.", " ** Constraint: B > 0.0."}, "G01EFF");
  expect_report([&](int64_t* f) { g01ekf_(&c, &neg, &one, &df, f, 1); }, 1, {kTail + "c'"}, "G01EKF");
  expect_report([&](int64_t* f) { g01ekf_(&lu, &neg, &one, &df, f, 1); }, 2,
                {" ** On entry, X = -0.5.", " ** Constraint: X >= 0.0."}, "G01EKF");
  expect_report([&](int64_t* f) { g01ekf_(&lu, &one, &one, &df, f, 1); }, 3,
                {" ** On entry, SIGMA = -1.", " ** Constraint: SIGMA > 0.0."}, "G01EKF");
  int64_t k = 3, n = -2, l = 5, m = 7, big = 11;
  expect_report([&](int64_t* f) { g01bkf_(&tail, &neg, &k, f, 1); }, 1, {kTail + "X'"}, "G01BKF");
  expect_report([&](int64_t* f) { g01bkf_(&lu, &neg, &k, f, 1); }, 2,
                {" ** On entry, RLAMDA = -0.5.", " ** Constraint: RLAMDA >= 0.0."}, "G01BKF");
  expect_report([&](int64_t* f) { g01bjf_(&c, &n, &neg, &k, f, 1); }, 1, {kTail + "c'"}, "G01BJF");
  expect_report([&](int64_t* f) { g01bjf_(&lu, &n, &neg, &k, f, 1); }, 2,
                {" ** On entry, N = -2.", " ** Constraint: N >= 0."}, "G01BJF");
  expect_report([&](int64_t* f) { g01bjf_(&lu, &l, &neg, &k, f, 1); }, 3,
                {" ** On entry, P = -0.5.", " ** Constraint: P >= 0.0."}, "G01BJF");
  expect_report([&](int64_t* f) { g01bjf_(&lu, &l, &two, &k, f, 1); }, 3,
                {" ** On entry, P = 2.", " ** Constraint: P <= 1.0."}, "G01BJF");
  expect_report([&](int64_t* f) { g01blf_(&tail, &n, &l, &m, &k, f, 1); }, 1, {kTail + "X'"}, "G01BLF");
  expect_report([&](int64_t* f) { g01blf_(&lu, &n, &l, &m, &k, f, 1); }, 2,
                {" ** On entry, N = -2.", " ** Constraint: N >= 0."}, "G01BLF");
  expect_report([&](int64_t* f) { g01blf_(&lu, &m, &big, &l, &k, f, 1); }, 3,
                {" ** On entry, L = 11 and N = 7.", " ** Constraint: 0 <= L <= N."}, "G01BLF");
  expect_report([&](int64_t* f) { g01blf_(&lu, &big, &l, &n, &k, f, 1); }, 4,
                {" ** On entry, M = -2 and N = 11.", " ** Constraint: 0 <= M <= N."}, "G01BLF");
  // The logarithms of the tails check as G01EAF and G01EFF do.
  expect_report([&](int64_t* f) { g01erf_(&tail, &t, f, 1); }, 1,
                {" ** On entry, TAIL is an invalid character: TAIL = 'X'"}, "G01ERF");
  expect_report([&](int64_t* f) { g01esf_(&c, &neg, &df, &df, f, 1); }, 1, {kTail + "c'"}, "G01ESF");
  expect_report([&](int64_t* f) { g01esf_(&lu, &neg, &df, &df, f, 1); }, 2,
                {" ** On entry, G = -0.5.", " ** Constraint: G >= 0.0."}, "G01ESF");
  expect_report([&](int64_t* f) { g01esf_(&lu, &one, &df, &df, f, 1); }, 3,
                {" ** On entry, A = -1.", " ** Constraint: A > 0.0."}, "G01ESF");
  expect_report([&](int64_t* f) { g01esf_(&lu, &one, &one, &neg, f, 1); }, 3,
                {" ** On entry, B = -0.5.", " ** Constraint: B > 0.0."}, "G01ESF");
}

TEST(DistributionMessages, DeviatesCheckTailThenPThenParameters) {
  char bad = 'q', lu = 'u', s = 'S';
  double p0 = 0.0, p1 = 1.0, half = 0.5, neg = -1.0, nan = std::numeric_limits<double>::quiet_NaN();
  // TAIL before P, and 'S' accepted only by the t deviate.
  expect_report([&](int64_t* f) { g01fbf_(&bad, &p0, &neg, f, 1); }, 1, {kTail + "q'"}, "G01FBF");
  expect_report([&](int64_t* f) { g01fcf_(&s, &p0, &neg, f, 1); }, 1, {kTail + "S'"}, "G01FCF");
  for (char tail : {'L', 'U', 'C', 'S'}) {  // the bounds are exclusive under every tail
    expect_report([&](int64_t* f) { g01fbf_(&tail, &p0, &neg, f, 1); }, 2, {" ** On entry, P = 0.", kP0}, "G01FBF");
    expect_report([&](int64_t* f) { g01fbf_(&tail, &p1, &neg, f, 1); }, 2, {" ** On entry, P = 1.", kP1}, "G01FBF");
  }
  expect_report([&](int64_t* f) { g01fbf_(&lu, &half, &neg, f, 1); }, 3,
                {" ** On entry, DF = -1.", " ** Constraint: DF > 0.0."}, "G01FBF");
  expect_report([&](int64_t* f) { g01fcf_(&lu, &nan, &neg, f, 1); }, 2, {" ** On entry, P = NaN.", kP0}, "G01FCF");
  expect_report([&](int64_t* f) { g01fcf_(&lu, &p1, &neg, f, 1); }, 2, {" ** On entry, P = 1.", kP1}, "G01FCF");
  expect_report([&](int64_t* f) { g01fcf_(&lu, &half, &neg, f, 1); }, 3,
                {" ** On entry, DF = -1.", " ** Constraint: DF > 0.0."}, "G01FCF");
  expect_report([&](int64_t* f) { g01fdf_(&bad, &half, &neg, &neg, f, 1); }, 1, {kTail + "q'"}, "G01FDF");
  expect_report([&](int64_t* f) { g01fdf_(&lu, &p0, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 0.", kP0}, "G01FDF");
  expect_report([&](int64_t* f) { g01fdf_(&lu, &p1, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 1.", kP1}, "G01FDF");
  expect_report([&](int64_t* f) { g01fdf_(&lu, &half, &neg, &neg, f, 1); }, 3,
                {" ** On entry, DF1 = -1.", " ** Constraint: DF1 > 0.0."}, "G01FDF");
  expect_report([&](int64_t* f) { g01fdf_(&lu, &half, &half, &neg, f, 1); }, 3,
                {" ** On entry, DF2 = -1.", " ** Constraint: DF2 > 0.0."}, "G01FDF");
  for (auto* fn : {g01fef_, g01fff_}) {
    const std::string name = fn == g01fef_ ? "G01FEF" : "G01FFF";
    expect_report([&](int64_t* f) { fn(&bad, &half, &neg, &neg, f, 1); }, 1, {kTail + "q'"}, name);
    expect_report([&](int64_t* f) { fn(&lu, &p0, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 0.", kP0}, name);
    expect_report([&](int64_t* f) { fn(&lu, &p1, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 1.", kP1}, name);
    expect_report([&](int64_t* f) { fn(&lu, &half, &neg, &neg, f, 1); }, 3,
                  {" ** On entry, A = -1.", " ** Constraint: A > 0.0."}, name);
    expect_report([&](int64_t* f) { fn(&lu, &half, &half, &neg, f, 1); }, 3,
                  {" ** On entry, B = -1.", " ** Constraint: B > 0.0."}, name);
  }
  expect_report([&](int64_t* f) { g01fkf_(&bad, &half, &neg, &neg, f, 1); }, 1, {kTail + "q'"}, "G01FKF");
  expect_report([&](int64_t* f) { g01fkf_(&lu, &p0, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 0.", kP0}, "G01FKF");
  expect_report([&](int64_t* f) { g01fkf_(&lu, &p1, &neg, &neg, f, 1); }, 2, {" ** On entry, P = 1.", kP1}, "G01FKF");
  expect_report([&](int64_t* f) { g01fkf_(&lu, &half, &neg, &neg, f, 1); }, 3,
                {" ** On entry, SIGMA = -1.", " ** Constraint: SIGMA > 0.0."}, "G01FKF");
}

TEST(DistributionMessages, DiscreteDeviatesAndLogTails) {
  char bad = 'C', x = 'X', lu = 'U';
  double half = 0.5, zero = 0.0, one = 1.0, neg = -1.0, two = 2.0, huge = 2e15;
  int64_t n = 10, nneg = -3, l = 4, big = 12;
  const std::string kProb0 = " ** Constraint: PROB > 0.0.", kProb1 = " ** Constraint: PROB < 1.0.";
  // TAIL, then PROB (open at both ends), then the parameters in their order; the logarithms of the t, F and
  // beta tails check as G01EBF, G01EDF and G01EEF do.
  const std::vector<vek::testing::ReportCase> cases = {
      {"G01BMF", 1, {kTail.substr(1) + "C'"}, [&](int64_t* f) { g01bmf_(&bad, &nneg, &neg, &zero, f, 1); }},
      {"G01BMF", 2, {"** On entry, PROB = 0.", kProb0.substr(1)},
       [&](int64_t* f) { g01bmf_(&lu, &nneg, &neg, &zero, f, 1); }},
      {"G01BMF", 2, {"** On entry, PROB = 1.", kProb1.substr(1)},
       [&](int64_t* f) { g01bmf_(&lu, &nneg, &neg, &one, f, 1); }},
      {"G01BMF", 3, {"** On entry, N = -3.", "** Constraint: N >= 0."},
       [&](int64_t* f) { g01bmf_(&lu, &nneg, &neg, &half, f, 1); }},
      {"G01BMF", 3, {"** On entry, P = -1.", "** Constraint: P >= 0.0."},
       [&](int64_t* f) { g01bmf_(&lu, &n, &neg, &half, f, 1); }},
      {"G01BMF", 3, {"** On entry, P = 2.", "** Constraint: P <= 1.0."},
       [&](int64_t* f) { g01bmf_(&lu, &n, &two, &half, f, 1); }},
      {"G01BNF", 1, {kTail.substr(1) + "C'"}, [&](int64_t* f) { g01bnf_(&bad, &neg, &zero, f, 1); }},
      {"G01BNF", 2, {"** On entry, PROB = 0.", kProb0.substr(1)}, [&](int64_t* f) { g01bnf_(&lu, &neg, &zero, f, 1); }},
      {"G01BNF", 2, {"** On entry, PROB = 1.", kProb1.substr(1)}, [&](int64_t* f) { g01bnf_(&lu, &neg, &one, f, 1); }},
      {"G01BNF", 3, {"** On entry, RLAMDA = 2e+15.", "** Constraint: 0.0 <= RLAMDA <= 1.0e15."},
       [&](int64_t* f) { g01bnf_(&lu, &huge, &half, f, 1); }},
      {"G01BPF", 1, {kTail.substr(1) + "C'"}, [&](int64_t* f) { g01bpf_(&bad, &nneg, &big, &l, &zero, f, 1); }},
      {"G01BPF", 2, {"** On entry, PROB = 0.", kProb0.substr(1)},
       [&](int64_t* f) { g01bpf_(&lu, &nneg, &big, &l, &zero, f, 1); }},
      {"G01BPF", 2, {"** On entry, PROB = 1.", kProb1.substr(1)},
       [&](int64_t* f) { g01bpf_(&lu, &nneg, &big, &l, &one, f, 1); }},
      {"G01BPF", 3, {"** On entry, N = -3.", "** Constraint: N >= 0."},
       [&](int64_t* f) { g01bpf_(&lu, &nneg, &big, &l, &half, f, 1); }},
      {"G01BPF", 3, {"** On entry, L = 12 and N = 10.", "** Constraint: 0 <= L <= N."},
       [&](int64_t* f) { g01bpf_(&lu, &n, &big, &l, &half, f, 1); }},
      {"G01BPF", 3, {"** On entry, M = -3 and N = 10.", "** Constraint: 0 <= M <= N."},
       [&](int64_t* f) { g01bpf_(&lu, &n, &l, &nneg, &half, f, 1); }},
      {"G01ETF", 1, {kTail.substr(1) + "X'"}, [&](int64_t* f) { g01etf_(&x, &one, &zero, f, 1); }},
      {"G01ETF", 2, {"** On entry, DF = 0.", "** Constraint: DF > 0.0."},
       [&](int64_t* f) { g01etf_(&lu, &one, &zero, f, 1); }},
      {"G01EUF", 1, {kTail.substr(1) + "C'"}, [&](int64_t* f) { g01euf_(&bad, &neg, &one, &one, f, 1); }},
      {"G01EUF", 2, {"** On entry, F = -1.", "** Constraint: F >= 0.0."},
       [&](int64_t* f) { g01euf_(&lu, &neg, &neg, &neg, f, 1); }},
      {"G01EUF", 3, {"** On entry, DF1 = -1.", "** Constraint: DF1 > 0.0."},
       [&](int64_t* f) { g01euf_(&lu, &one, &neg, &neg, f, 1); }},
      {"G01EUF", 3, {"** On entry, DF2 = -1.", "** Constraint: DF2 > 0.0."},
       [&](int64_t* f) { g01euf_(&lu, &one, &one, &neg, f, 1); }},
      {"G01EVF", 1, {kTail.substr(1) + "C'"}, [&](int64_t* f) { g01evf_(&bad, &neg, &neg, &neg, f, 1); }},
      {"G01EVF", 2, {"** On entry, X = -1.", "** Constraint: X >= 0.0."},
       [&](int64_t* f) { g01evf_(&lu, &neg, &neg, &neg, f, 1); }},
      {"G01EVF", 2, {"** On entry, X = 2.", "** Constraint: X <= 1.0."},
       [&](int64_t* f) { g01evf_(&lu, &two, &one, &one, f, 1); }},
      {"G01EVF", 3, {"** On entry, A = -1.", "** Constraint: A > 0.0."},
       [&](int64_t* f) { g01evf_(&lu, &half, &neg, &neg, f, 1); }},
      {"G01EVF", 3, {"** On entry, B = -1.", "** Constraint: B > 0.0."},
       [&](int64_t* f) { g01evf_(&lu, &half, &one, &neg, f, 1); }},
  };
  for (const auto& c : cases) vek::testing::expect_reports(c.what, {c});
}

double call(double (*fn)(const char*, const double*, const double*, int64_t*, int64_t), char tail, double x,
            double a) {
  int64_t ifail = 1;
  const double v = fn(&tail, &x, &a, &ifail, 1);
  EXPECT_EQ(ifail, 0);
  return v;
}

TEST(DistributionValues, ExactValuesLimitsAndDefinedResults) {
  // t at 0 is a half exactly in either one-sided tail; infinite df is the normal, bit for bit.
  EXPECT_EQ(call(g01ebf_, 'L', 0.0, 3.0), 0.5);
  EXPECT_EQ(call(g01ebf_, 'U', 0.0, 3.0), 0.5);
  EXPECT_EQ(call(g01ebf_, 'S', 0.0, 3.0), 1.0);
  EXPECT_EQ(call(g01ebf_, 'C', 0.0, 3.0), 0.0);
  const double inf = HUGE_VAL;
  for (double t : {-3.0, 0.7, 12.0}) {
    int64_t ifail = 1;
    char tail = 'U';
    EXPECT_EQ(call(g01ebf_, 'U', t, inf), g01eaf_(&tail, &t, &ifail, 1));
  }
  EXPECT_EQ(call(g01ebf_, 'U', inf, 2.0), 0.0);
  EXPECT_EQ(call(g01ebf_, 'L', inf, 2.0), 1.0);
  EXPECT_TRUE(std::isnan(call(g01ebf_, 'L', NAN, 2.0)));
  // Cauchy (df = 1): P(T > t) = 1/2 - atan(t)/pi, and its deviate tan(pi (1/2 - p)); df = 2 in closed form.
  EXPECT_NEAR(call(g01ebf_, 'U', 1.0, 1.0), 0.25, 1e-16);
  EXPECT_NEAR(call(g01ebf_, 'U', 1e200, 1.0), 1.0 / (M_PI * 1e200), 1e-214);
  EXPECT_NEAR(call(g01fbf_, 'U', 0.25, 1.0), 1.0, 4e-16);
  EXPECT_NEAR(call(g01ebf_, 'U', 2.0, 2.0), 0.091751709536136983634, 3e-17);  // 1/2 - 1/sqrt 6 (mpmath)
  // Chi-square with 2 df is the exponential of mean 2: both tails exactly in closed form.
  EXPECT_NEAR(call(g01ecf_, 'U', 1400.0, 2.0), std::exp(-700.0), 4e-16 * std::exp(-700.0));
  EXPECT_NEAR(call(g01ecf_, 'L', 1e-300, 2.0), 0.5e-300, 4e-16 * 0.5e-300);
  EXPECT_EQ(call(g01ecf_, 'L', 0.0, 2.0), 0.0);
  EXPECT_EQ(call(g01ecf_, 'U', 0.0, 2.0), 1.0);
  EXPECT_EQ(call(g01ecf_, 'U', inf, 2.0), 0.0);
  EXPECT_NEAR(call(g01fcf_, 'U', std::exp(-700.0), 2.0), 1400.0, 1400.0 * 4e-16);
  // F with infinite df is chi-square scaled; beta(1, 1) is uniform.
  int64_t ifail = 1;
  char u = 'U';
  double f = 1.5, d1 = 4.0, d2 = inf, x = 6.0;
  EXPECT_EQ(g01edf_(&u, &f, &d1, &d2, &ifail, 1), call(g01ecf_, 'U', x, 4.0));
  double b = 0.3, one = 1.0, inf_point = inf;
  EXPECT_NEAR(g01eef_(&u, &b, &one, &one, &ifail, 1), 0.7, 1e-16);
  // Discrete ends: k below the support, at its top, and a Poisson of mean 0.
  int64_t kneg = -1, n = 10, k10 = 10, k0 = 0;
  double p = 0.3, zero = 0.0;
  char l = 'L';
  EXPECT_EQ(g01bjf_(&l, &n, &p, &kneg, &ifail, 1), 0.0);
  EXPECT_EQ(g01bjf_(&u, &n, &p, &k10, &ifail, 1), 0.0);
  EXPECT_EQ(g01bkf_(&l, &zero, &k0, &ifail, 1), 1.0);
  EXPECT_EQ(g01bkf_(&u, &zero, &k0, &ifail, 1), 0.0);
  // Binomial with one trial: P(X > 0) = p.
  int64_t one_trial = 1;
  EXPECT_EQ(g01bjf_(&u, &one_trial, &p, &k0, &ifail, 1), p);
  // Hypergeometric drawing everything: X = M with certainty.
  int64_t pop = 20, marked = 7, k6 = 6, k7 = 7;
  EXPECT_EQ(g01blf_(&l, &pop, &pop, &marked, &k6, &ifail, 1), 0.0);
  EXPECT_EQ(g01blf_(&l, &pop, &pop, &marked, &k7, &ifail, 1), 1.0);
  // Logarithms of tails at the ends: ln 1 = 0 and ln 0 = -inf exactly, -inf where x^2 overflows, NaN kept.
  const char lucs[] = "LUCS";
  for (double point : {-inf, inf, -1e160}) {
    const double lower = point < 0.0 ? -inf : 0.0, ends[] = {lower, point < 0.0 ? 0.0 : -inf, 0.0, -inf};
    for (int j = 0; j < 4; ++j) EXPECT_EQ(g01erf_(&lucs[j], &point, &ifail, 1), ends[j]) << point << lucs[j];
  }
  EXPECT_EQ(g01erf_(&lucs[2], &zero, &ifail, 1), -inf);
  EXPECT_EQ(g01erf_(&lucs[3], &zero, &ifail, 1), 0.0);
  double nan = NAN, half = 0.5, two = 2.0;
  EXPECT_TRUE(std::isnan(g01erf_(&lucs[0], &nan, &ifail, 1)));
  EXPECT_EQ(g01esf_(&l, &zero, &half, &two, &ifail, 1), -inf);
  EXPECT_EQ(g01esf_(&u, &zero, &half, &two, &ifail, 1), 0.0);
  EXPECT_EQ(g01esf_(&l, &inf_point, &half, &two, &ifail, 1), 0.0);
  EXPECT_EQ(g01esf_(&u, &inf_point, &half, &two, &ifail, 1), -inf);
  // Shape 1 is the exponential: ln Q = -x exactly in closed form, far beyond Q's underflow.
  double far = 3e4;
  EXPECT_NEAR(g01esf_(&u, &far, &one, &two, &ifail, 1), -1.5e4, 1.5e4 * 4e-16);
  EXPECT_EQ(ifail, 0);
}

}  // namespace
