// d01ajf, d01akf and d01alf through their exported entries.
// Fidelity to the published algorithm: on every case of data/quadrature_gsl.txt (GSL's transcriptions of
// QUADPACK's dqagse, dqage and dqagpe, run by data/make_quadrature_gsl.c) IFAIL, the number of evaluations, LAST
// and the four subinterval lists equal GSL's; the run with the limits reversed gives the negated result with the same
// counts. Where the two differ by design: the error floor of the rule is 50 eps resabs with eps = 2^-53 here
// and 2^-52 in GSL, so an estimate at GSL's floor may be up to half as large here.
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <fstream>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "layers/d01.h"
#include "quadrature_integrands.h"
#include "quadrature_harness.h"
#include "support/report.h"
#include "vek.h"

namespace {

using namespace quadrature_harness;

// ROUTINE is d01ajf, d01akf or d01alf (with the break-points `points`).
Outcome integrate(const std::string& routine, quadrature_integrand_fn f, double alpha, double a, double b,
                  double epsabs, double epsrel, int64_t lw, int64_t liw, int64_t ifail = 1,
                  std::vector<double> points = {}) {
  Outcome r;
  r.w.assign(static_cast<size_t>(std::max<int64_t>(lw, 1)), -1.0);
  r.iw.assign(static_cast<size_t>(std::max<int64_t>(liw, 1)), -1);
  int64_t iuser[1] = {0};
  double ruser[1] = {alpha};
  g_integrand = f, g_iuser = iuser, g_ruser = ruser;
  const int64_t npts = static_cast<int64_t>(points.size());
  points.push_back(0.0);
  if (routine == "d01alf")
    d01alf_(user_f, &a, &b, &npts, points.data(), &epsabs, &epsrel, &r.result, &r.abserr, r.w.data(), &lw, r.iw.data(),
            &liw, iuser, ruser, &ifail);
  else
    (routine == "d01ajf" ? d01ajf_ : d01akf_)(user_f, &a, &b, &epsabs, &epsrel, &r.result, &r.abserr, r.w.data(), &lw,
                                              r.iw.data(), &liw, iuser, ruser, &ifail);
  r.ifail = ifail;
  r.evaluations = iuser[0];
  return r;
}

struct GslCase {
  std::string routine, integrand;
  double alpha, a, b;
  std::vector<double> points;
  double epsabs, epsrel;
  int64_t limit, ifail, evaluations, last;
  double result, abserr;
  std::vector<Interval> intervals;
};

std::vector<GslCase> gsl_cases() {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/quadrature_gsl.txt");
  std::vector<GslCase> cases;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream s(line);
    GslCase c;
    size_t npts = 0;
    s >> c.routine >> c.integrand >> c.alpha >> c.a >> c.b >> npts;
    c.points.resize(npts);
    for (double& p : c.points) s >> p;
    s >> c.epsabs >> c.epsrel >> c.limit >> c.ifail >> c.evaluations >> c.last >> c.result >> c.abserr;
    c.intervals.resize(static_cast<size_t>(c.last));
    for (Interval& i : c.intervals) in >> i.a >> i.b >> i.value >> i.error;
    std::getline(in, line);
    cases.push_back(c);
  }
  return cases;
}

// W holds LAST intervals tiling [min(A,B), max(A,B)] in increasing order (zeros after the four lists), IW(1) =
// LAST, and F was evaluated as often as LAST says.
void expect_workspace(const Outcome& r, const GslCase& c) {
  const size_t n = static_cast<size_t>(r.iw[0]);
  ASSERT_TRUE(n >= 1 && 4 * n <= r.w.size());
  EXPECT_EQ(r.w[0], std::min(c.a, c.b));
  EXPECT_EQ(r.w[2 * n - 1], std::max(c.a, c.b));
  for (size_t i = 1; i < n; ++i) ASSERT_EQ(r.w[i], r.w[n + i - 1]) << "interval " << i + 1;
  for (size_t i = 4 * n; i < r.w.size(); ++i) ASSERT_EQ(r.w[i], 0.0) << "W(" << i + 1 << ")";
  const int64_t points = c.routine == "d01akf" ? 61 : 21;
  const int64_t first = static_cast<int64_t>(c.points.size()) + 1;  // the intervals of the first pass
  EXPECT_EQ(r.evaluations, 2 * points * r.iw[0] - points * first);
}


std::string case_key(const GslCase& c) {
  std::ostringstream key;
  key << c.routine << " " << c.integrand << " " << c.alpha << " " << c.epsabs << " " << c.epsrel << " " << c.limit;
  return key.str();
}

TEST(Quadrature, AgreesWithGslAndReversesLimits) {
  const std::vector<GslCase> cases = gsl_cases();
  const std::set<std::string> deviating = deviating_cases("quadrature_deviations.txt");
  ASSERT_EQ(cases.size(), 70u);
  ASSERT_EQ(deviating.size(), 9u);
  std::set<int64_t> extrapolating_ends;  // the data reach every IFAIL of d01ajf, so W is checked after each
  for (const GslCase& c : cases)
    if (c.routine == "d01ajf") extrapolating_ends.insert(c.ifail);
  EXPECT_EQ(extrapolating_ends, (std::set<int64_t>{0, 1, 2, 3, 4, 5}));
  size_t agreeing = 0;
  for (const GslCase& c : cases) {
    const std::string key = case_key(c);
    SCOPED_TRACE(key);
    const int64_t liw = c.routine == "d01alf" ? 2 * c.limit : c.limit;
    const quadrature_integrand_fn f = quadrature_integrand(c.integrand.c_str());
    ASSERT_NE(f, nullptr);
    const Outcome r = integrate(c.routine, f, c.alpha, c.a, c.b, c.epsabs, c.epsrel, 4 * c.limit, liw, 1, c.points);
    expect_workspace(r, c);
    if (deviating.count(key)) {
      // Another path of the same algorithm: a result as good as the estimates say.
      EXPECT_TRUE(r.ifail >= 0 && r.ifail <= 5);
      EXPECT_LE(std::abs(r.result - c.result),
                std::max(std::abs(r.abserr), std::abs(c.abserr)) + 1e-13 * std::abs(c.result));
    } else {
      ++agreeing;
      EXPECT_EQ(r.ifail, c.ifail);
      EXPECT_EQ(r.iw[0], c.last);
      EXPECT_EQ(r.evaluations, c.evaluations);
      EXPECT_TRUE(close(r.result, c.result, 1e-13)) << r.result << " vs " << c.result;
      // The sum of the errors carries the rounding of its updates, eps times the largest error met; an
      // extrapolated error at its floor 0.5 eps |result| may be a twentieth of GSL's (5 eps with eps = 2^-52).
      EXPECT_TRUE(std::abs(r.abserr - c.abserr) <= 1e-13 * std::abs(c.result) ||
                  (r.abserr >= 0.05 * c.abserr && r.abserr < c.abserr))
          << r.abserr << " vs " << c.abserr;
      expect_lists(r, c.intervals);
    }
    const Outcome back = integrate(c.routine, f, c.alpha, c.b, c.a, c.epsabs, c.epsrel, 4 * c.limit, liw, 1, c.points);
    EXPECT_EQ(back.result, -r.result);
    EXPECT_EQ(back.abserr, r.abserr);
    EXPECT_EQ(back.ifail, r.ifail);
    EXPECT_EQ(back.iw[0], r.iw[0]);
    EXPECT_EQ(back.evaluations, r.evaluations);
  }
  EXPECT_EQ(agreeing, cases.size() - deviating.size());
}

const std::string kRoutines[] = {"d01ajf", "d01akf", "d01alf"};

int64_t g_adapter_calls = 0;
double counting_adapter(vek_d01ajf_f_fn fn, const double* x, int64_t* iuser, double* ruser) {
  ++g_adapter_calls;
  return fn(x, iuser, ruser);
}

// A host that hands the worker an adapter of its own has every call of F made through it.
TEST(Quadrature, HostAdapter) {
  const Outcome entry = integrate("d01ajf", qi_peak, 3, 0, 1, 0, 1e-10, 400, 100);
  int64_t iuser[1] = {0}, lw = 400, liw = 100, ierr = 0;
  double ruser[1] = {3}, a = 0, b = 1, epsabs = 0, epsrel = 1e-10, result = 0, abserr = 0;
  std::vector<double> w(400);
  std::vector<int64_t> iw(100);
  char errbuf[200];
  g_integrand = qi_peak, g_iuser = iuser, g_ruser = ruser;
  d01ajfn_(counting_adapter, user_f, &a, &b, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw, iuser,
           ruser, errbuf, &ierr, 200);
  EXPECT_EQ(ierr, 0);
  EXPECT_EQ(result, entry.result);
  EXPECT_EQ(iuser[0], entry.evaluations);
  EXPECT_EQ(g_adapter_calls, entry.evaluations);
}

// The edge cases of both routines: workspace too small before any evaluation, LIMIT = 1, A = B, negative
// tolerances, integrands with NaN or infinite values.
TEST(Quadrature, EdgeCases) {
  for (const std::string& e : kRoutines) {
    const int64_t points = e == "d01akf" ? 61 : 21;
    SCOPED_TRACE(e);
    EXPECT_EQ(integrate(e, qi_exp, 1, 0, 1, 0, 1e-10, 3, 10).ifail, 6);
    EXPECT_EQ(integrate(e, qi_exp, 1, 0, 1, 0, 1e-10, 3, 10).evaluations, 0);
    EXPECT_EQ(integrate(e, qi_exp, 1, 0, 1, 0, 1e-10, 40, 0).ifail, 6);
    EXPECT_EQ(integrate(e, qi_exp, 1, 0, 1, 0, 1e-10, 40, 0).evaluations, 0);

    const int64_t per_interval = e == "d01alf" ? 2 : 1;  // d01alf keeps the levels in IW as well
    for (const int64_t lw : {4, 7}) {                    // LIMIT = 1: one rule application, then IFAIL 1
      const Outcome one = integrate(e, qi_power_log, -0.9, 0, 1, 0, 1e-10, lw, per_interval);
      EXPECT_EQ(one.ifail, 1);
      EXPECT_EQ(one.evaluations, points);
      EXPECT_EQ(one.iw[0], 1);
      EXPECT_EQ(one.w[0], 0.0);
      EXPECT_EQ(one.w[1], 1.0);
      EXPECT_EQ(one.w[2], one.abserr);
      EXPECT_EQ(one.w[3], one.result);
    }

    const Outcome empty = integrate(e, qi_power_log, -0.9, 0.5, 0.5, 0, 1e-10, 40, 10);
    EXPECT_EQ(empty.ifail, 0);
    EXPECT_EQ(empty.result, 0.0);
    EXPECT_EQ(empty.abserr, 0.0);
    EXPECT_EQ(empty.evaluations, points);
    EXPECT_EQ(empty.iw[0], 1);

    const Outcome plus = integrate(e, qi_peak, 3, 0, 1, 1e-9, 1e-8, 400, 100 * per_interval);
    for (const double sa : {1.0, -1.0})
      for (const double sr : {1.0, -1.0}) {
        const Outcome signs = integrate(e, qi_peak, 3, 0, 1, sa * 1e-9, sr * 1e-8, 400, 100 * per_interval);
        EXPECT_EQ(signs.result, plus.result);
        EXPECT_EQ(signs.abserr, plus.abserr);
        EXPECT_EQ(signs.w, plus.w);
        EXPECT_EQ(signs.iw, plus.iw);
      }

    // NaN values everywhere end at the subdivision limit; an infinite value at one point ends in a defined way.
    const quadrature_integrand_fn nan_f = [](double, double) { return std::numeric_limits<double>::quiet_NaN(); };
    const Outcome nan = integrate(e, nan_f, 0, 0, 1, 0, 1e-10, 400, 100 * per_interval);
    EXPECT_EQ(nan.ifail, 1);
    EXPECT_EQ(nan.evaluations, 2 * points * 100 - points);
    const Outcome pole = integrate(e, qi_interior_root, 0.5, 0, 1, 0, 1e-10, 400, 100 * per_interval);
    EXPECT_TRUE(pole.ifail >= 0 && pole.ifail <= 5) << pole.ifail;
    EXPECT_EQ(pole.evaluations, 2 * points * pole.iw[0] - points);
  }
}

// Every message of both routines, through the printed report (IFAIL = -1) to the character.
TEST(Quadrature, EveryMessage) {
  auto with_points = [](std::vector<double> points, int64_t npts) {
    return [=](int64_t* fail) {
      std::vector<double> w(40), p = points;
      std::vector<int64_t> iw(10);
      int64_t iuser[1] = {0}, lw = 40, liw = 10;
      double a = 0, b = 1, epsabs = 0, epsrel = 1e-10, result, abserr, ruser[1] = {1.0};
      g_integrand = qi_exp, g_iuser = iuser, g_ruser = ruser;
      d01alf_(user_f, &a, &b, &npts, p.data(), &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw,
              iuser, ruser, fail);
    };
  };
  vek::testing::expect_report(with_points({0.5}, -1), 6, {" ** On entry, NPTS = -1", " ** Constraint: NPTS >= 0."},
                              "D01ALF");
  vek::testing::expect_report(
      with_points({0.5, 1.0}, 2), 6,
      {" ** On entry, break-points are specified outside (A,B):", " ** A = 0, B = 1 and POINTS(2) = 1"}, "D01ALF");
  vek::testing::expect_report(
      with_points({NAN}, 1), 6,
      {" ** On entry, break-points are specified outside (A,B):", " ** A = 0, B = 1 and POINTS(1) = NaN"}, "D01ALF");
  for (const std::string& e : kRoutines) {
    std::string name = e;
    for (char& ch : name) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    auto expect = [&](int64_t ifail, std::vector<std::string> records, quadrature_integrand_fn f, double alpha,
                      double epsabs, double epsrel, int64_t lw, int64_t liw) {
      SCOPED_TRACE(name + " IFAIL " + std::to_string(ifail));
      for (std::string& r : records) r = " " + r;
      vek::testing::expect_report(
          [&](int64_t* fail) { *fail = integrate(e, f, alpha, 0, 1, epsabs, epsrel, lw, liw, *fail).ifail; }, ifail,
          records, name);
    };
    if (e == "d01alf") {
      expect(6, {"** On entry, LW = 3 is too small for NPTS = 0.", "** Minimum possible dimension: 4"}, qi_exp, 1, 0,
             1e-10, 3, 0);
      expect(6, {"** On entry, LIW = 1 is too small for NPTS = 0.", "** Minimum possible dimension: 2"}, qi_exp, 1, 0,
             1e-10, 4, 1);
      expect(
          1,
          {"** The maximum number of subdivisions (LIMIT) has been reached:", "** LIMIT = 2, LW = 9 and", "** LIW = 5"},
          qi_power_log, -0.9, 0, 1e-10, 9, 5);
    } else {
      expect(6, {"** On entry, LW = 3", "** Constraint: LW >= 4."}, qi_exp, 1, 0, 1e-10, 3, 0);
      expect(6, {"** On entry, LIW = 0", "** Constraint: LIW >= 1."}, qi_exp, 1, 0, 1e-10, 4, 0);
      expect(
          1,
          {"** The maximum number of subdivisions (LIMIT) has been reached:", "** LIMIT = 2, LW = 9 and", "** LIW = 3"},
          qi_power_log, -0.9, 0, 1e-10, 9, 3);
    }
    expect(2,
           {"** Round-off error prevents the requested tolerance from being achieved:",
            "** EPSABS = -0 and EPSREL = 1e-15"},
           qi_exp, 1, -0.0, 1e-15, 400, 100);
    if (e != "d01akf") {
      expect(4, {"** Round-off error is detected in the extrapolation table."}, qi_power_log, -0.99, 0, 1e-12, 4000,
             1000);
      expect(5, {"** The integral is probably divergent or slowly convergent."}, qi_power, -1.5, 0, 1e-10, 4000, 1000);
    }
    // The subinterval of bad behaviour is the last one bisected: two neighbours in W.
    const quadrature_integrand_fn f = e != "d01akf" ? qi_cubic_log : qi_step;
    const double alpha = e != "d01akf" ? 0.0 : 0.3, b = e != "d01akf" ? 3.0 : 1.0;
    const Outcome bad = integrate(e, f, alpha, 0, b, 0, 2e-14, 4000, 1000);
    ASSERT_EQ(bad.ifail, 3);
    SCOPED_TRACE(name + " IFAIL 3");
    std::vector<std::string> records = bad_integrand_records(bad);
    for (std::string& r : records) r = " " + r;
    vek::testing::expect_report(
        [&](int64_t* fail) { *fail = integrate(e, f, alpha, 0, b, 0, 2e-14, 4000, 1000, *fail).ifail; }, 3, records,
        name);
  }
}

}  // namespace
