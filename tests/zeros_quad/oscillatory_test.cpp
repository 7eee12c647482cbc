// d01anf and d01asf (the weight cos(omega x) or sin(omega x)) and the batch forms d01atf and d01auf, through
// their exported entries.
// Fidelity: on every case of data/oscillatory_gsl.txt (GSL's transcriptions of QUADPACK's dqawoe and dqawfe,
// run by data/make_oscillatory_gsl.c) IFAIL, the evaluations, LAST (LST and the cycle integrals for d01asf) and
// the subinterval lists equal GSL's; reversed limits give the negated result with the same counts; the
// results lie within their error estimates of the exact values of data/oscillatory_exact.txt (mpmath, by
// data/make_oscillatory_exact.py). The batch forms give d01ajf's and d01akf's results bit for bit with the same
// evaluations, on the cases of data/quadrature_gsl.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "frame/text.h"
#include "oscillatory_integrands.h"
#include "quadrature_integrands.h"
#include "support/capture.h"
#include "support/report.h"
#include "vek.h"

namespace {

oscillatory_integrand_fn g_f = nullptr;

// IUSER(1) counts the calls, RUSER(1) is the integrand's parameter.
double user_f(const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return g_f(*x, ruser[0]);
}

struct Outcome {
  int64_t ifail = 0;
  double result = 0, abserr = 0;
  int64_t evaluations = 0;
  std::vector<double> w;
  std::vector<int64_t> iw;
  int64_t lst = 0;
  std::vector<double> rslst, erlst;
  std::vector<int64_t> ierlst;
};

// Workspace for LIMIT subintervals and the moments of MAXP1 levels.
void make_workspace(Outcome& r, int64_t limit, int64_t maxp1, int64_t& lw, int64_t& liw) {
  liw = 2 * limit;
  lw = 4 * limit + 25 * maxp1;
  r.w.assign(static_cast<size_t>(std::max<int64_t>(lw, 1)), -1.0);
  r.iw.assign(static_cast<size_t>(std::max<int64_t>(liw, 1)), -1);
}

Outcome finite(oscillatory_integrand_fn f, double alpha, double a, double b, double omega, int64_t key, double epsabs,
           double epsrel, int64_t limit, int64_t maxp1 = 21, int64_t ifail = 1) {
  Outcome r;
  int64_t lw, liw, iuser[1] = {0};
  double ruser[1] = {alpha};
  make_workspace(r, limit, maxp1, lw, liw);
  g_f = f;
  d01anf_(user_f, &a, &b, &omega, &key, &epsabs, &epsrel, &r.result, &r.abserr, r.w.data(), &lw, r.iw.data(), &liw,
          iuser, ruser, &ifail);
  r.ifail = ifail;
  r.evaluations = iuser[0];
  return r;
}

Outcome semi_infinite(oscillatory_integrand_fn f, double alpha, double a, double omega, int64_t key, double epsabs,
                  int64_t limlst, int64_t limit, int64_t maxp1 = 21, int64_t ifail = 1) {
  Outcome r;
  int64_t lw, liw, iuser[1] = {0};
  double ruser[1] = {alpha};
  make_workspace(r, limit, maxp1, lw, liw);
  r.rslst.assign(static_cast<size_t>(std::max<int64_t>(limlst, 1)), -1.0);
  r.erlst = r.rslst;
  r.ierlst.assign(r.rslst.size(), -1);
  g_f = f;
  d01asf_(user_f, &a, &omega, &key, &epsabs, &r.result, &r.abserr, &limlst, &r.lst, r.erlst.data(), r.rslst.data(),
          r.ierlst.data(), r.w.data(), &lw, r.iw.data(), &liw, iuser, ruser, &ifail);
  r.ifail = ifail;
  r.evaluations = iuser[0];
  return r;
}

bool close(double x, double y, double rel) { return std::abs(x - y) <= rel * std::max(std::abs(x), std::abs(y)); }

std::ifstream data_file(const std::string& name) { return std::ifstream(std::string(VEK_TEST_DATA_DIR) + "/" + name); }

// One case of oscillatory_gsl.txt; for d01asf B is unused and `rows` holds the cycles (value, error).
struct GslCase {
  std::string routine, integrand;
  double alpha = 0, a = 0, b = 0, omega = 0;
  int64_t key = 0;
  double epsabs = 0, epsrel = 0;
  int64_t limit = 0, ifail = 0, evaluations = 0, count = 0, last = 0;
  double result = 0, abserr = 0;
  std::vector<std::vector<double>> rows;
};

std::vector<GslCase> gsl_cases() {
  std::ifstream in = data_file("oscillatory_gsl.txt");
  std::vector<GslCase> cases;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream s(line);
    GslCase c;
    s >> c.routine >> c.integrand >> c.alpha >> c.a;
    if (c.routine == "d01anf") {
      s >> c.b >> c.omega >> c.key >> c.epsabs >> c.epsrel >> c.limit >> c.ifail >> c.evaluations >> c.count;
      c.last = c.count;
    } else {
      s >> c.omega >> c.key >> c.epsabs >> c.limit >> c.ifail >> c.evaluations >> c.count >> c.last;
    }
    s >> c.result >> c.abserr;
    const size_t width = c.routine == "d01anf" ? 4 : 2;
    c.rows.assign(static_cast<size_t>(c.count), std::vector<double>(width));
    for (auto& row : c.rows)
      for (double& v : row) in >> v;
    std::getline(in, line);
    cases.push_back(c);
  }
  return cases;
}

// An error estimate as GSL's: where the 15-point rule's floor 50 eps resabs decides, up to half GSL's (eps =
// 2^-53 here, 2^-52 in GSL); the Clenshaw-Curtis estimate, a difference of two rules, to 1e-2 (the cosines of
// its nodes are correctly rounded here, GSL's may differ in the last bit); an estimate at the level of the
// rounding of the value it belongs to (1e-13 of it), to that level.
bool error_as_gsl(double e, double g, double value) {
  return close(e, g, 1e-2) || (e >= 0.5 * g && e < g) || std::abs(e - g) <= 1e-13 * std::abs(value);
}

// The cases of data/oscillatory_deviations.txt, "ROUTINE INTEGRAND ALPHA OMEGA KEY LIMIT".
std::vector<std::string> deviating_cases() {
  std::ifstream in = data_file("oscillatory_deviations.txt");
  std::vector<std::string> keys;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') keys.push_back(line.substr(0, line.find(" |")));
  return keys;
}

TEST(Oscillatory, AgreesWithGslAndReversesLimits) {
  const std::vector<GslCase> cases = gsl_cases();
  const std::vector<std::string> deviating = deviating_cases();
  ASSERT_EQ(cases.size(), 33u);
  ASSERT_EQ(deviating.size(), 1u);
  for (const GslCase& c : cases) {
    std::ostringstream key;
    key << c.routine << " " << c.integrand << " " << c.alpha << " " << c.omega << " " << c.key << " " << c.limit;
    SCOPED_TRACE(key.str());
    const oscillatory_integrand_fn f = oscillatory_integrand(c.integrand.c_str());
    ASSERT_NE(f, nullptr);
    if (std::find(deviating.begin(), deviating.end(), key.str()) != deviating.end()) {
      // Another path of the same algorithm: a result as good as the estimates say.
      const Outcome r = finite(f, c.alpha, c.a, c.b, c.omega, c.key, c.epsabs, c.epsrel, c.limit);
      EXPECT_EQ(r.ifail, c.ifail);
      EXPECT_LE(std::abs(r.result - c.result), std::max(r.abserr, c.abserr));
      continue;
    }
    if (c.routine == "d01anf") {
      const Outcome r = finite(f, c.alpha, c.a, c.b, c.omega, c.key, c.epsabs, c.epsrel, c.limit);
      EXPECT_EQ(r.ifail, c.ifail);
      EXPECT_EQ(r.evaluations, c.evaluations);
      ASSERT_EQ(r.iw[0], c.last);
      EXPECT_TRUE(close(r.result, c.result, 1e-13)) << r.result << " vs " << c.result;
      EXPECT_TRUE(error_as_gsl(r.abserr, c.abserr, c.result)) << r.abserr << " vs " << c.abserr;
      const size_t n = static_cast<size_t>(c.last);
      for (size_t i = 0; i < n; ++i) {
        SCOPED_TRACE("interval " + std::to_string(i + 1));
        EXPECT_EQ(r.w[i], c.rows[i][0]);
        EXPECT_EQ(r.w[n + i], c.rows[i][1]);
        EXPECT_TRUE(close(r.w[3 * n + i], c.rows[i][2], 1e-12)) << r.w[3 * n + i] << " vs " << c.rows[i][2];
        EXPECT_TRUE(error_as_gsl(r.w[2 * n + i], c.rows[i][3], c.rows[i][2])) << r.w[2 * n + i] << " vs " << c.rows[i][3];
      }
      for (size_t i = 4 * n; i < r.w.size(); ++i) ASSERT_EQ(r.w[i], 0.0) << "W(" << i + 1 << ")";
      // One level of moments kept (the others computed when needed) changes nothing; nor do reversed limits
      // but the sign.
      const Outcome one = finite(f, c.alpha, c.a, c.b, c.omega, c.key, c.epsabs, c.epsrel, c.limit, 1);
      EXPECT_EQ(one.result, r.result);
      EXPECT_EQ(one.abserr, r.abserr);
      EXPECT_EQ(one.evaluations, r.evaluations);
      const Outcome back = finite(f, c.alpha, c.b, c.a, c.omega, c.key, c.epsabs, c.epsrel, c.limit);
      EXPECT_EQ(back.result, -r.result);
      EXPECT_EQ(back.abserr, r.abserr);
      EXPECT_EQ(back.ifail, r.ifail);
      EXPECT_EQ(back.iw[0], r.iw[0]);
      EXPECT_EQ(back.evaluations, r.evaluations);
    } else {
      // GSL's limit is also the subdivision limit of each cycle, where it stops one bisection early.
      const Outcome r = semi_infinite(f, c.alpha, c.a, c.omega, c.key, c.epsabs, c.limit, c.limit - 1);
      EXPECT_EQ(r.ifail, c.ifail);
      EXPECT_EQ(r.evaluations, c.evaluations);
      ASSERT_EQ(r.lst, c.count);
      EXPECT_EQ(r.iw[0], c.last);
      EXPECT_TRUE(close(r.result, c.result, 1e-13)) << r.result << " vs " << c.result;
      EXPECT_TRUE(error_as_gsl(r.abserr, c.abserr, c.result)) << r.abserr << " vs " << c.abserr;
      for (size_t k = 0; k < static_cast<size_t>(r.lst); ++k) {
        SCOPED_TRACE("cycle " + std::to_string(k + 1));
        EXPECT_TRUE(close(r.rslst[k], c.rows[k][0], 1e-12)) << r.rslst[k] << " vs " << c.rows[k][0];
        EXPECT_TRUE(error_as_gsl(r.erlst[k], c.rows[k][1], c.rows[k][0])) << r.erlst[k] << " vs " << c.rows[k][1];
      }
    }
  }
}

// A = B, LIMIT = 1, tolerances of either sign, and integrands with NaN or infinite values: defined IFAIL values,
// the work bounded.
TEST(Oscillatory, EdgeCases) {
  const Outcome empty = finite(oi_log, 0, 0.5, 0.5, 100, 1, 0, 1e-10, 100);
  EXPECT_EQ(empty.ifail, 0);
  EXPECT_EQ(empty.result, 0.0);
  EXPECT_EQ(empty.evaluations, 15);
  const Outcome one = finite(oi_log, 0, 0, 1, 100, 1, 0, 1e-10, 1);
  EXPECT_EQ(one.ifail, 1);
  EXPECT_EQ(one.evaluations, 25);
  EXPECT_EQ(one.iw[0], 1);
  const Outcome plus = finite(oi_log, 0, 0, 1, 100, 2, 1e-9, 1e-8, 100);
  const Outcome minus = finite(oi_log, 0, 0, 1, 100, 2, -1e-9, -1e-8, 100);
  EXPECT_EQ(minus.result, plus.result);
  EXPECT_EQ(minus.w, plus.w);

  const oscillatory_integrand_fn nan_f = [](double, double) { return std::numeric_limits<double>::quiet_NaN(); };
  const oscillatory_integrand_fn inf_f = [](double x, double) { return x < 0.5 ? HUGE_VAL : 1.0; };
  for (const oscillatory_integrand_fn f : {nan_f, inf_f}) {
    const Outcome r = finite(f, 0, 0, 1, 100, 1, 0, 1e-10, 100);
    EXPECT_TRUE(r.ifail >= 1 && r.ifail <= 5) << r.ifail;
    EXPECT_LE(r.iw[0], 100);
    const Outcome s = semi_infinite(f, 0, 0, 1, 1, 1e-8, 50, 100);
    EXPECT_TRUE(s.ifail >= 1 && s.ifail <= 3) << s.ifail;
    EXPECT_LE(s.lst, 50);
    EXPECT_NE(s.ierlst[0], 0);  // the first cycle holds the bad values (for NaN, every cycle)
  }
}

// The results against the exact values, each within its error estimate, the estimate within the accuracy
// asked for.
TEST(Oscillatory, ExactValues) {
  std::ifstream in = data_file("oscillatory_exact.txt");
  int cases = 0;
  for (std::string line; std::getline(in, line); ++cases) {
    std::istringstream s(line);
    std::string routine, name, b_text;
    double alpha, a, omega, exact;
    int64_t key;
    s >> routine >> name >> alpha >> a >> b_text >> omega >> key >> exact;
    SCOPED_TRACE(line);
    const oscillatory_integrand_fn f = oscillatory_integrand(name.c_str());
    const double tolerance = std::max(1e-12, 1e-9 * std::abs(exact));
    const Outcome r = routine == "d01anf" ? finite(f, alpha, a, std::stod(b_text), omega, key, 1e-12, 1e-9, 1000)
                                          : semi_infinite(f, alpha, a, omega, key, tolerance, 1000, 500);
    EXPECT_EQ(r.ifail, 0);
    EXPECT_LE(std::abs(r.result - exact), std::max(r.abserr, 4e-16 * std::abs(exact)));
    EXPECT_LE(r.abserr, tolerance);
  }
  EXPECT_EQ(cases, 25);
}

// The batch forms on the cases of d01ajf and d01akf in quadrature_gsl.txt: the same W, IW, results and IFAIL,
// F called once per subinterval with all its abscissae.
int64_t g_batch_calls = 0;
quadrature_integrand_fn g_q = nullptr;
void batch_f(const double* x, double* fv, const int64_t* n, int64_t* iuser, double* ruser) {
  ++g_batch_calls;
  for (int64_t i = 0; i < *n; ++i) fv[i] = g_q(x[i], ruser[0]);
  iuser[0] += *n;
}
double scalar_f(const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return g_q(*x, ruser[0]);
}

TEST(Batch, SameAsOnePointAtATime) {
  std::ifstream in = data_file("quadrature_gsl.txt");
  int compared = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#' || !std::isalpha(static_cast<unsigned char>(line[0]))) continue;
    std::istringstream s(line);
    std::string routine, name;
    double alpha, a, b, epsabs, epsrel;
    int64_t npts, limit;
    s >> routine >> name >> alpha >> a >> b >> npts;
    if (routine == "d01alf") continue;
    s >> epsabs >> epsrel >> limit;
    SCOPED_TRACE(line);
    g_q = quadrature_integrand(name.c_str());
    const bool extrapolating = routine == "d01ajf";
    const int64_t points = extrapolating ? 21 : 61;
    int64_t lw = 4 * limit, liw = limit;
    Outcome one, batch;
    for (Outcome* r : {&one, &batch}) {
      r->w.assign(static_cast<size_t>(lw), -1.0);
      r->iw.assign(static_cast<size_t>(liw), -1);
      int64_t iuser[1] = {0}, ifail = 1;
      double ruser[1] = {alpha};
      g_batch_calls = 0;
      if (r == &one)
        (extrapolating ? d01ajf_ : d01akf_)(scalar_f, &a, &b, &epsabs, &epsrel, &r->result, &r->abserr, r->w.data(),
                                            &lw, r->iw.data(), &liw, iuser, ruser, &ifail);
      else
        (extrapolating ? d01atf_ : d01auf_)(batch_f, &a, &b, &epsabs, &epsrel, &r->result, &r->abserr, r->w.data(),
                                            &lw, r->iw.data(), &liw, iuser, ruser, &ifail);
      r->ifail = ifail;
      r->evaluations = iuser[0];
    }
    EXPECT_EQ(batch.ifail, one.ifail);
    EXPECT_EQ(batch.result, one.result);
    EXPECT_EQ(batch.abserr, one.abserr);
    EXPECT_EQ(batch.w, one.w);
    EXPECT_EQ(batch.iw, one.iw);
    EXPECT_EQ(batch.evaluations, one.evaluations);
    EXPECT_EQ(g_batch_calls * points, batch.evaluations);
    ++compared;
  }
  EXPECT_EQ(compared, 57);
}

// Every message of the four routines, through the printed report (IFAIL = -1) and silently (IFAIL = 1).
TEST(Oscillatory, EveryMessage) {
  using vek::testing::ReportCase;
  auto anf = [](quadrature_integrand_fn f, double alpha, double omega, int64_t key, double epsrel, int64_t lw,
                int64_t liw) {
    return [=](int64_t* fail) {
      std::vector<double> w(static_cast<size_t>(std::max<int64_t>(lw, 1)));
      std::vector<int64_t> iw(static_cast<size_t>(std::max<int64_t>(liw, 1)));
      int64_t iuser[1] = {0}, k = key, lw_ = lw, liw_ = liw;
      double a = 0, b = 1, om = omega, epsabs = 0, eps = epsrel, result, abserr, ruser[1] = {alpha};
      g_f = f;
      d01anf_(user_f, &a, &b, &om, &k, &epsabs, &eps, &result, &abserr, w.data(), &lw_, iw.data(), &liw_, iuser,
              ruser, fail);
    };
  };
  // x^-1 cannot be integrated at 0: bisection ends at the two narrowest neighbours in W.
  const Outcome bad = finite(qi_power, -1, 0, 1, 1, 1, 0, 1e-10, 2000);
  ASSERT_EQ(bad.ifail, 3);
  const std::string bad_interval = "** (" + vek::text::real_text(bad.w[0]) + ", " +
                                   vek::text::real_text(bad.w[static_cast<size_t>(bad.iw[0]) + 1]) + ")";
  vek::testing::expect_reports(
      "D01ANF",
      {{"KEY", 6, {"** On entry, KEY = 3", "** Constraint: KEY = 1 or 2."}, anf(oi_log, 0, 10, 3, 1e-8, 125, 50)},
       {"LIW", 6, {"** On entry, LIW = 1", "** Constraint: LIW >= 2."}, anf(oi_log, 0, 10, 1, 1e-8, 125, 1)},
       {"LW", 6, {"** On entry, LW = 124 and LIW = 50.", "** Constraint: LW >= 4*(LIW/2) + 25."},
        anf(oi_log, 0, 10, 1, 1e-8, 124, 50)},
       {"limit", 1, {"** The maximum number of subdivisions (LIMIT) has been reached:", "** LIMIT = 4, LW = 41 and",
                     "** LIW = 8"}, anf(oi_log, 0, 31.4, 1, 1e-10, 41, 8)},
       {"round-off", 2, {"** Round-off error prevents the requested tolerance from being achieved:",
                         "** EPSABS = 0 and EPSREL = 1e-15"}, anf(qi_exp, 1, 50, 1, 1e-15, 4025, 2000)},
       {"bad integrand", 3, {"** Extremely bad integrand behaviour occurs around the sub-interval", bad_interval},
        anf(qi_power, -1, 1, 1, 1e-10, 8525, 4000)},
       {"table", 4, {"** Round-off error is detected in the extrapolation table."},
        anf(qi_power_log, -0.99, 1, 1, 1e-12, 4025, 2000)},
       {"divergent", 5, {"** The integral is probably divergent or slowly convergent."},
        anf(qi_power, -1.5, 1, 1, 1e-10, 4025, 2000)}});

  auto asf = [](quadrature_integrand_fn f, double alpha, double omega, int64_t key, double epsabs, int64_t limlst,
                int64_t lw, int64_t liw) {
    return [=](int64_t* fail) {
      std::vector<double> w(static_cast<size_t>(std::max<int64_t>(lw, 1))), rs(1000), er(1000);
      std::vector<int64_t> iw(static_cast<size_t>(std::max<int64_t>(liw, 1))), ie(1000);
      int64_t iuser[1] = {0}, k = key, lw_ = lw, liw_ = liw, lim = limlst, lst = 0;
      double a = 0, om = omega, eps = epsabs, result, abserr, ruser[1] = {alpha};
      g_f = f;
      d01asf_(user_f, &a, &om, &k, &eps, &result, &abserr, &lim, &lst, er.data(), rs.data(), ie.data(), w.data(),
              &lw_, iw.data(), &liw_, iuser, ruser, fail);
    };
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  vek::testing::expect_reports(
      "D01ASF",
      {{"KEY", 6, {"** On entry, KEY = 0", "** Constraint: KEY = 1 or 2."}, asf(oi_decay, 1, 1, 0, 1e-8, 50, 925, 200)},
       {"OMEGA", 6, {"** On entry, OMEGA = 0", "** Constraint: OMEGA /= 0."}, asf(oi_decay, 1, 0, 1, 1e-8, 50, 925, 200)},
       {"OMEGA NaN", 6, {"** On entry, OMEGA = NaN", "** Constraint: OMEGA /= 0."},
        asf(oi_decay, 1, nan, 1, 1e-8, 50, 925, 200)},
       {"EPSABS", 6, {"** On entry, EPSABS = 0", "** Constraint: EPSABS /= 0."},
        asf(oi_decay, 1, 1, 1, 0, 50, 925, 200)},
       {"LIMLST", 6, {"** On entry, LIMLST = 2", "** Constraint: LIMLST >= 3."},
        asf(oi_decay, 1, 1, 1, 1e-8, 2, 925, 200)},
       {"LIW", 6, {"** On entry, LIW = 1", "** Constraint: LIW >= 2."}, asf(oi_decay, 1, 1, 1, 1e-8, 50, 925, 1)},
       {"LW", 6, {"** On entry, LW = 424 and LIW = 200.", "** Constraint: LW >= 4*(LIW/2) + 25."},
        asf(oi_decay, 1, 1, 1, 1e-8, 50, 424, 200)},
       {"cycles", 1, {"** The maximum number of cycles (LIMLST) has been reached:", "** LIMLST = 3"},
        asf(oi_power, -0.5, 1.5707963267948966, 1, 1e-10, 3, 925, 200)},
       {"table", 2, {"** The extrapolation over the cycles does not reach the requested accuracy."},
        asf(oi_power, -0.5, 1.5707963267948966, 1, 1e-20, 1000, 925, 200)},
       {"failed cycles", 3, {"** Bad integrand behaviour occurs within one or more cycles:",
                             "** see IERLST(1..LST), LST = 6."}, asf(oi_decay, 1, 1, 1, 1e-10, 50, 425, 2)}});

  // The batch forms report as d01ajf and d01akf do.
  for (const bool extrapolating : {true, false}) {
    auto batch = [extrapolating](quadrature_integrand_fn f, double alpha, double b, double epsabs, double epsrel,
                                 int64_t lw, int64_t liw) {
      return [=](int64_t* fail) {
        std::vector<double> w(static_cast<size_t>(std::max<int64_t>(lw, 1)));
        std::vector<int64_t> iw(static_cast<size_t>(std::max<int64_t>(liw, 1)));
        int64_t iuser[1] = {0}, lw_ = lw, liw_ = liw;
        double a = 0, b_ = b, ea = epsabs, er = epsrel, result, abserr, ruser[1] = {alpha};
        g_q = f;
        (extrapolating ? d01atf_ : d01auf_)(batch_f, &a, &b_, &ea, &er, &result, &abserr, w.data(), &lw_, iw.data(),
                                            &liw_, iuser, ruser, fail);
      };
    };
    std::vector<ReportCase> cases = {
        {"LW", 6, {"** On entry, LW = 3", "** Constraint: LW >= 4."}, batch(qi_exp, 1, 1, 0, 1e-10, 3, 0)},
        {"LIW", 6, {"** On entry, LIW = 0", "** Constraint: LIW >= 1."}, batch(qi_exp, 1, 1, 0, 1e-10, 4, 0)},
        {"limit", 1, {"** The maximum number of subdivisions (LIMIT) has been reached:", "** LIMIT = 2, LW = 9 and",
                      "** LIW = 3"}, batch(qi_power_log, -0.9, 1, 0, 1e-10, 9, 3)},
        {"round-off", 2, {"** Round-off error prevents the requested tolerance from being achieved:",
                          "** EPSABS = -0 and EPSREL = 1e-15"}, batch(qi_exp, 1, 1, -0.0, 1e-15, 400, 100)},
    };
    if (extrapolating) {
      cases.push_back({"table", 4, {"** Round-off error is detected in the extrapolation table."},
                       batch(qi_power_log, -0.99, 1, 0, 1e-12, 4000, 1000)});
      cases.push_back({"divergent", 5, {"** The integral is probably divergent or slowly convergent."},
                       batch(qi_power, -1.5, 1, 0, 1e-10, 4000, 1000)});
    }
    // Bad behaviour reported as the one-point-at-a-time routine reports it.
    const double bad_b = extrapolating ? 3 : 1;
    const quadrature_integrand_fn bad_f = extrapolating ? qi_cubic_log : qi_step;
    std::vector<std::string> scalar_report = vek::testing::console_lines([&] {
      std::vector<double> w(4000);
      std::vector<int64_t> iw(1000);
      int64_t iuser[1] = {0}, lw = 4000, liw = 1000, ifail = -1;
      double a = 0, ea = extrapolating ? 0 : 1e-14, er = extrapolating ? 2e-14 : 0, result, abserr,
             ruser[1] = {extrapolating ? 0 : 0.3};
      g_q = bad_f;
      (extrapolating ? d01ajf_ : d01akf_)(scalar_f, &a, &bad_b, &ea, &er, &result, &abserr, w.data(), &lw, iw.data(),
                                          &liw, iuser, ruser, &ifail);
    });
    ASSERT_EQ(scalar_report.size(), 4u);
    cases.push_back({"bad integrand", 3, {scalar_report[0].substr(1), scalar_report[1].substr(1)},
                     extrapolating ? batch(qi_cubic_log, 0, 3, 0, 2e-14, 4000, 1000)
                                   : batch(qi_step, 0.3, 1, 1e-14, 0, 4000, 1000)});
    vek::testing::expect_reports(extrapolating ? "D01ATF" : "D01AUF", cases);
  }
}

}  // namespace
