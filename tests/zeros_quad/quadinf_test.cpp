// d01amf, d01aqf, d01apf and d01bdf through their exported entries.
// Fidelity: on every case of data/quadinf_gsl.txt (GSL's qagiu/qagil/qagi, qawc, qaws and qng, run by
// data/make_quadinf_gsl.c) IFAIL, the evaluations, LAST and the four subinterval lists equal GSL's, except the
// cases of data/quadinf_deviations.txt; accuracy: where IFAIL = 0 the result is within its error estimate of the
// exact value (data/quadinf_exact.txt, mpmath, by data/make_quadinf_exact.py).
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "quadinf_integrands.h"
#include "quadrature_harness.h"
#include "support/report.h"
#include "vek.h"

namespace {

using namespace quadrature_harness;

struct Call {
  std::string routine;  // d01amf: p = BOUND INF; d01aqf: A B C; d01apf: A B ALFA BETA KEY; d01bdf: A B
  quadrature_integrand_fn f;
  double alpha;
  std::vector<double> p;
  double epsabs, epsrel;
  int64_t lw, liw;
};

Outcome run(const Call& c, int64_t ifail = 1) {
  Outcome r;
  r.w.assign(static_cast<size_t>(std::max<int64_t>(c.lw, 1)), -1.0);
  r.iw.assign(static_cast<size_t>(std::max<int64_t>(c.liw, 1)), -1);
  int64_t iuser[1] = {0};
  double ruser[1] = {c.alpha};
  g_integrand = c.f, g_iuser = iuser, g_ruser = ruser;
  const double* p = c.p.data();
  double* w = r.w.data();
  int64_t* iw = r.iw.data();
  if (c.routine == "d01amf") {
    const int64_t inf = static_cast<int64_t>(p[1]);
    d01amf_(user_f, &p[0], &inf, &c.epsabs, &c.epsrel, &r.result, &r.abserr, w, &c.lw, iw, &c.liw, iuser, ruser,
            &ifail);
  } else if (c.routine == "d01aqf") {
    d01aqf_(user_f, &p[0], &p[1], &p[2], &c.epsabs, &c.epsrel, &r.result, &r.abserr, w, &c.lw, iw, &c.liw, iuser,
            ruser, &ifail);
  } else if (c.routine == "d01apf") {
    const int64_t key = static_cast<int64_t>(p[4]);
    d01apf_(user_f, &p[0], &p[1], &p[2], &p[3], &key, &c.epsabs, &c.epsrel, &r.result, &r.abserr, w, &c.lw, iw,
            &c.liw, iuser, ruser, &ifail);
  } else {
    d01bdf_(user_f, &p[0], &p[1], &c.epsabs, &c.epsrel, &r.result, &r.abserr, iuser, ruser, &ifail);
  }
  r.ifail = ifail;
  r.evaluations = iuser[0];
  return r;
}

struct GslCase {
  Call call;
  std::string integrand, key, full_key;  // the words up to the parameters, and up to LIMIT
  int64_t limit, ifail, evaluations, last;
  double result, abserr, exact = NAN, rtol = 0;
  std::vector<Interval> intervals;
};

std::string data_path(const char* name) { return std::string(VEK_TEST_DATA_DIR) + "/" + name; }

// ROUTINE INTEGRAND ALPHA NPAR PARAMETERS...: the key of a case in the exact values and the deviations.
std::vector<GslCase> gsl_cases() {
  std::map<std::string, std::pair<double, double>> exact;
  std::ifstream ex(data_path("quadinf_exact.txt"));
  for (std::string line; std::getline(ex, line);) {
    const size_t rtol_at = line.rfind(' '), exact_at = line.rfind(' ', rtol_at - 1);
    exact[line.substr(0, exact_at)] = {std::stod(line.substr(exact_at + 1)), std::stod(line.substr(rtol_at + 1))};
  }
  std::ifstream in(data_path("quadinf_gsl.txt"));
  std::vector<GslCase> cases;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream s(line);
    GslCase c;
    size_t npar = 0;
    s >> c.call.routine >> c.integrand >> c.call.alpha >> npar;
    c.call.p.resize(npar);
    for (double& p : c.call.p) s >> p;
    s >> c.call.epsabs >> c.call.epsrel >> c.limit >> c.ifail >> c.evaluations >> c.last >> c.result >> c.abserr;
    c.call.f = quadinf_integrand(c.integrand.c_str());
    c.call.lw = 4 * c.limit;
    c.call.liw = c.limit;
    std::istringstream k(line);
    for (size_t i = 0; i < 4 + npar + 3; ++i) {
      std::string word;
      k >> word;
      c.full_key += (i ? " " : "") + word;
      if (i + 1 == 4 + npar) c.key = c.full_key;
    }
    if (exact.count(c.key)) std::tie(c.exact, c.rtol) = exact[c.key];
    c.intervals.resize(static_cast<size_t>(c.last));
    for (Interval& i : c.intervals) in >> i.a >> i.b >> i.value >> i.error;
    if (c.last > 0) std::getline(in, line);  // the end of the last interval's line
    cases.push_back(c);
  }
  return cases;
}


// W holds LAST intervals tiling the range (of t for d01amf), zeros after the four lists, and IW(1) = LAST.
void expect_workspace(const Outcome& r, const GslCase& c) {
  const size_t n = static_cast<size_t>(r.iw[0]);
  ASSERT_TRUE(n >= 1 && 4 * n <= r.w.size());
  const bool infinite = c.call.routine == "d01amf";
  EXPECT_EQ(r.w[0], infinite ? 0.0 : std::min(c.call.p[0], c.call.p[1]));
  EXPECT_EQ(r.w[2 * n - 1], infinite ? 1.0 : std::max(c.call.p[0], c.call.p[1]));
  for (size_t i = 1; i < n; ++i) ASSERT_EQ(r.w[i], r.w[n + i - 1]) << "interval " << i + 1;
  for (size_t i = 4 * n; i < r.w.size(); ++i) ASSERT_EQ(r.w[i], 0.0) << "W(" << i + 1 << ")";
  if (infinite) {
    EXPECT_EQ(r.evaluations, (c.call.p[1] == 2 ? 2 : 1) * (30 * r.iw[0] - 15));
  }
}

TEST(QuadInf, AgreesWithGslAndExactValues) {
  const std::vector<GslCase> cases = gsl_cases();
  const std::set<std::string> deviating = deviating_cases("quadinf_deviations.txt");
  ASSERT_EQ(cases.size(), 58u);
  std::map<std::string, std::set<int64_t>> ends;  // the IFAIL values the data reach, by routine
  size_t agreeing = 0, exact_checked = 0;
  for (const GslCase& c : cases) {
    const std::string& key = c.full_key;
    SCOPED_TRACE(key);
    ends[c.call.routine].insert(c.ifail);
    ASSERT_NE(c.call.f, nullptr);
    const Outcome r = run(c.call);
    if (c.call.routine != "d01bdf") expect_workspace(r, c);
    if (deviating.count(key)) {
      EXPECT_TRUE(r.ifail >= 0 && r.ifail <= 5);
      EXPECT_LE(std::abs(r.result - c.result), std::max(r.abserr, c.abserr) + 1e-13 * std::abs(c.result));
    } else {
      ++agreeing;
      EXPECT_EQ(r.ifail, c.ifail);
      EXPECT_EQ(r.evaluations, c.evaluations);
      EXPECT_TRUE(close(r.result, c.result, 1e-13) || std::abs(r.result - c.result) <= 1e-15)
          << r.result << " vs " << c.result;
      EXPECT_TRUE(close(r.abserr, c.abserr, 1e-12) || std::abs(r.abserr - c.abserr) <= 1e-13 * std::abs(c.result) ||
                  (r.abserr >= 0.05 * c.abserr && r.abserr < c.abserr))
          << r.abserr << " vs " << c.abserr;
      if (c.call.routine != "d01bdf") {
        EXPECT_EQ(r.iw[0], c.last);
        expect_lists(r, c.intervals);
      }
    }
    if (r.ifail == 0 && std::isfinite(c.exact)) {
      ++exact_checked;
      EXPECT_LE(std::abs(r.result - c.exact), r.abserr + c.rtol * std::abs(c.exact)) << r.result << " vs " << c.exact;
    }
    // Reversed limits (d01aqf, d01bdf): the negated result from the same evaluations.
    if (c.call.routine == "d01aqf" || c.call.routine == "d01bdf") {
      Call back = c.call;
      std::swap(back.p[0], back.p[1]);
      const Outcome b = run(back);
      EXPECT_EQ(b.result, -r.result);
      EXPECT_EQ(b.abserr, r.abserr);
      EXPECT_EQ(b.ifail, r.ifail);
      EXPECT_EQ(b.evaluations, r.evaluations);
    }
  }
  EXPECT_EQ(agreeing, cases.size() - deviating.size());
  EXPECT_GE(exact_checked, 40u);
  EXPECT_EQ(ends["d01amf"], (std::set<int64_t>{0, 1, 2, 5}));
  EXPECT_EQ(ends["d01aqf"], (std::set<int64_t>{0, 1, 2}));
  EXPECT_EQ(ends["d01apf"], (std::set<int64_t>{0, 1, 3}));
  EXPECT_EQ(ends["d01bdf"], (std::set<int64_t>{0, 1}));
}

double nan_f(double, double) { return std::numeric_limits<double>::quiet_NaN(); }
// Integrands over (0, inf) for the failures of d01amf: exp(-x) with a fast ripple of amplitude 10^-alpha (round-off),
// x^alpha exp(-x) (round-off in the extrapolation table for alpha near -1), exp(-x)/|x - alpha| (not integrable).
double exp_rippled(double x, double alpha) { return std::exp(-x) * (1 + std::pow(10.0, -alpha) * std::sin(1e7 * x)); }
double power_exp(double x, double alpha) { return std::pow(x, alpha) * std::exp(-x); }
double exp_over_distance(double x, double alpha) { return std::exp(-x) / std::abs(x - alpha); }

// LIMIT = 1 (2 for d01apf): the first step alone, then IFAIL 1 with W packed; INF = -1 as the mirror image of
// INF = 1; A = B; an integrand that is NaN everywhere ends in a documented IFAIL within LIMIT subintervals.
TEST(QuadInf, EdgeCases) {
  for (const int64_t inf : {1, 2}) {
    const Outcome one = run({"d01amf", qi_gauss_linear, 1, {0, double(inf)}, 0, 1e-14, 7, 1});
    EXPECT_EQ(one.ifail, 1);
    EXPECT_EQ(one.evaluations, 15 * inf);
    EXPECT_EQ(one.w, (std::vector<double>{0, 1, one.abserr, one.result, 0, 0, 0}));
    EXPECT_EQ(one.iw[0], 1);
  }
  const Outcome two = run({"d01apf", qi_peak, 3, {0, 1, -0.5, 0.5, 1}, 0, 1e-10, 8, 2});
  EXPECT_EQ(two.ifail, 1);
  EXPECT_EQ(two.iw[0], 2);
  EXPECT_EQ(two.w[0], 0.0);
  EXPECT_EQ(two.w[3], 1.0);
  EXPECT_EQ(two.result, two.w[6] + two.w[7]);

  // exp(x) over (-inf, 1) and exp(-x) over (-1, inf) take the same values at the same t.
  const Outcome left = run({"d01amf", qi_exp, 1, {1, -1}, 0, 1e-12, 400, 100});
  const Outcome right = run({"d01amf", qi_exp, -1, {-1, 1}, 0, 1e-12, 400, 100});
  EXPECT_EQ(left.ifail, 0);
  EXPECT_EQ(left.result, right.result);
  EXPECT_EQ(left.evaluations, right.evaluations);
  EXPECT_EQ(left.w, right.w);

  const Outcome empty_pv = run({"d01aqf", qi_exp, 1, {0.5, 0.5, 0.2}, 0, 1e-10, 400, 100});
  EXPECT_EQ(empty_pv.ifail, 0);
  EXPECT_EQ(empty_pv.result, 0.0);
  const Outcome empty_rule = run({"d01bdf", qi_exp, 1, {0.5, 0.5}, 0, 1e-10, 0, 0});
  EXPECT_EQ(empty_rule.ifail, 0);
  EXPECT_EQ(empty_rule.result, 0.0);
  EXPECT_EQ(empty_rule.evaluations, 21);

  const Call nans[] = {{"d01amf", nan_f, 0, {0, 2}, 0, 1e-10, 400, 100},
                       {"d01aqf", nan_f, 0, {0, 1, 0.5}, 0, 1e-10, 400, 100},
                       {"d01apf", nan_f, 0, {0, 1, -0.5, -0.5, 4}, 0, 1e-10, 400, 100}};
  for (const Call& c : nans) {
    SCOPED_TRACE(c.routine);
    const Outcome r = run(c);
    EXPECT_TRUE(r.ifail >= 1 && r.ifail <= 5) << r.ifail;
    EXPECT_LE(r.iw[0], 100);
    EXPECT_LE(r.evaluations, 60 * 100);
  }
  const Outcome nan_rule = run({"d01bdf", nan_f, 0, {0, 1}, 0, 1e-10, 0, 0});
  EXPECT_EQ(nan_rule.ifail, 1);
  EXPECT_EQ(nan_rule.evaluations, 87);
}

// Every message of the four routines, printed (IFAIL = -1) to the character and silent with IFAIL = 1.
TEST(QuadInf, EveryMessage) {
  using vek::testing::ReportCase;
  auto call = [](Call c) { return [c](int64_t* ifail) { *ifail = run(c, *ifail).ifail; }; };
  const std::vector<std::string> limit_2 = {"** The maximum number of subdivisions (LIMIT) has been reached:",
                                            "** LIMIT = 2, LW = 9 and", "** LIW = 2"};
  auto round_off = [](const char* epsabs, const char* epsrel) {
    return std::vector<std::string>{"** Round-off error prevents the requested tolerance from being achieved:",
                                    std::string("** EPSABS = ") + epsabs + " and EPSREL = " + epsrel};
  };
  vek::testing::expect_reports(
      "D01AMF",
      {{"INF", 6, {"** On entry, INF = 0", "** Constraint: INF = -1, 1 or 2."},
        call({"d01amf", qi_exp, -1, {0, 0}, 0, 1e-10, 400, 100})},
       {"LW", 6, {"** On entry, LW = 3", "** Constraint: LW >= 4."}, call({"d01amf", qi_exp, -1, {0, 1}, 0, 1e-10, 3, 100})},
       {"LIW", 6, {"** On entry, LIW = 0", "** Constraint: LIW >= 1."}, call({"d01amf", qi_exp, -1, {0, 1}, 0, 1e-10, 4, 0})},
       {"limit", 1, limit_2, call({"d01amf", qi_log_lorentz, 0, {0, 1}, 0, 1e-10, 9, 2})},
       {"round-off", 2, round_off("0", "1e-12"), call({"d01amf", exp_rippled, 8, {0, 1}, 0, 1e-12, 4000, 1000})},
       {"bad integrand", 3, bad_integrand_records(run({"d01amf", exp_over_distance, 1.5, {0, 1}, 0, 1e-10, 4000, 1000})),
        call({"d01amf", exp_over_distance, 1.5, {0, 1}, 0, 1e-10, 4000, 1000})},
       {"table round-off", 4, {"** Round-off error is detected in the extrapolation table."},
        call({"d01amf", power_exp, -0.99, {0, 1}, 0, 1e-12, 4000, 1000})},
       {"divergent", 5, {"** The integral is probably divergent or slowly convergent."},
        call({"d01amf", qi_sin, 1, {0, 1}, 0, 1e-6, 800, 200})}});
  vek::testing::expect_reports(
      "D01AQF",
      {{"C at A", 6, {"** On entry, A = 0, B = 1 and C = 0.", "** Constraint: C /= A and C /= B."},
        call({"d01aqf", qi_exp, 1, {0, 1, 0}, 0, 1e-10, 400, 100})},
       {"C NaN", 6, {"** On entry, A = 0, B = 1 and C = NaN.", "** Constraint: C /= A and C /= B."},
        call({"d01aqf", qi_exp, 1, {0, 1, NAN}, 0, 1e-10, 400, 100})},
       {"LW", 6, {"** On entry, LW = 3", "** Constraint: LW >= 4."}, call({"d01aqf", qi_exp, 1, {0, 1, 0.5}, 0, 1e-10, 3, 100})},
       {"LIW", 6, {"** On entry, LIW = 0", "** Constraint: LIW >= 1."}, call({"d01aqf", qi_exp, 1, {0, 1, 0.5}, 0, 1e-10, 4, 0})},
       {"limit", 1, limit_2, call({"d01aqf", qi_peak, 2, {0, 1, 0.5}, 0, 1e-10, 9, 2})},
       {"round-off", 2, round_off("0", "1e-12"), call({"d01aqf", qi_rippled, 8, {0, 1, 0.4}, 0, 1e-12, 4000, 1000})},
       {"bad integrand", 3, bad_integrand_records(run({"d01aqf", qi_step, 0.3, {0, 1, 0.7}, 1e-14, 0, 4000, 1000})),
        call({"d01aqf", qi_step, 0.3, {0, 1, 0.7}, 1e-14, 0, 4000, 1000})}});
  vek::testing::expect_reports(
      "D01APF",
      {{"B", 6, {"** On entry, A = 1 and B = 1.", "** Constraint: B > A."},
        call({"d01apf", qi_exp, 1, {1, 1, 0, 0, 1}, 0, 1e-10, 400, 100})},
       {"ALFA", 6, {"** On entry, ALFA = -1", "** Constraint: ALFA > -1."},
        call({"d01apf", qi_exp, 1, {0, 1, -1, 0, 1}, 0, 1e-10, 400, 100})},
       {"BETA", 6, {"** On entry, BETA = NaN", "** Constraint: BETA > -1."},
        call({"d01apf", qi_exp, 1, {0, 1, 0, NAN, 1}, 0, 1e-10, 400, 100})},
       {"KEY", 6, {"** On entry, KEY = 5", "** Constraint: KEY = 1, 2, 3 or 4."},
        call({"d01apf", qi_exp, 1, {0, 1, 0, 0, 5}, 0, 1e-10, 400, 100})},
       {"LW", 6, {"** On entry, LW = 7", "** Constraint: LW >= 8."}, call({"d01apf", qi_exp, 1, {0, 1, 0, 0, 1}, 0, 1e-10, 7, 100})},
       {"LIW", 6, {"** On entry, LIW = 1", "** Constraint: LIW >= 2."}, call({"d01apf", qi_exp, 1, {0, 1, 0, 0, 1}, 0, 1e-10, 8, 1})},
       {"limit", 1, limit_2, call({"d01apf", qi_peak, 3, {0, 1, -0.5, 0.5, 1}, 0, 1e-10, 9, 2})},
       {"round-off", 2, round_off("0", "1e-12"), call({"d01apf", qi_rippled, 8, {0, 1, -0.5, -0.5, 1}, 0, 1e-12, 4000, 1000})},
       {"bad integrand", 3, bad_integrand_records(run({"d01apf", qi_step, 0.3, {0, 1, -0.5, -0.5, 1}, 1e-14, 0, 4000, 1000})),
        call({"d01apf", qi_step, 0.3, {0, 1, -0.5, -0.5, 1}, 1e-14, 0, 4000, 1000})}});
  vek::testing::expect_reports(
      "D01BDF", {{"87 points", 1, {"** The 87-point rule does not reach the requested accuracy:", "** EPSABS = 0 and EPSREL = 1e-10"},
                  call({"d01bdf", qi_peak, 2, {0, 1}, 0, 1e-10, 0, 0})}});
}

}  // namespace
