// The Gauss-rule members of D01 through their exported entries: d01bcf against mpmath's rules
// (data/gauss_rules.txt, made by data/make_gauss_rules.py) and against closed-form moments; d01baf and the
// product rule d01fbf against products of one-dimensional integrals up to 10 dimensions; d01rgf on end-point
// singularities of every strength against closed forms; d01raf against d01ajf on the classic cases of
// data/quadrature_gsl.txt, bit for bit; and every message of the five.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "frame/text.h"
#include "quadrature_integrands.h"
#include "support/report.h"
#include "vek.h"

namespace {

constexpr double kEps = 0x1p-53;

struct Rule {
  std::vector<double> w, x;
  int64_t ifail = 0;
};

Rule gauss(int64_t itype, double a, double b, double c, double d, int64_t n, int64_t ifail = 1) {
  Rule r{std::vector<double>(static_cast<size_t>(std::max<int64_t>(n, 1))),
         std::vector<double>(static_cast<size_t>(std::max<int64_t>(n, 1))), ifail};
  d01bcf_(&itype, &a, &b, &c, &d, &n, r.w.data(), r.x.data(), &r.ifail);
  return r;
}

// The length scale of a rule: abscissae are compared in units of eps times max(|x|, scale).
double scale_of(int64_t itype, double a, double b) {
  switch (std::abs(itype)) {
    case 2: return a + b;
    case 3: return 1.0 / b;
    case 4: return 1.0 / std::sqrt(b);
    default: return b - a;
  }
}

TEST(GaussRules, AgreeWithMpmath) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/gauss_rules.txt");
  // The worst errors allowed: abscissae 1 ulp of max(|x|, scale), weights 6 ulps (measured: 0.5 and 3.9).
  constexpr double node_ulps = 1, weight_ulps = 6;
  int cases = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream s(line);
    int64_t itype, n;
    double a, b, c, d;
    s >> itype >> a >> b >> c >> d >> n;
    SCOPED_TRACE(line);
    const Rule r = gauss(itype, a, b, c, d, n);
    ASSERT_EQ(r.ifail, 0);
    double worst_x = 0, worst_w = 0;
    for (int64_t i = 0; i < n; ++i) {
      double x, w;
      in >> x >> w;
      const size_t k = static_cast<size_t>(i);
      worst_x = std::max(worst_x, std::abs(r.x[k] - x) / (kEps * std::max(std::abs(x), scale_of(itype, a, b))));
      worst_w = std::max(worst_w, std::abs(r.w[k] - w) / (kEps * std::abs(w)));
    }
    std::getline(in, line);
    EXPECT_LE(worst_x, node_ulps);
    EXPECT_LE(worst_w, weight_ulps);
    ++cases;
  }
  EXPECT_EQ(cases, 21);
}

// sum W(i) g(X(i)) against the integral of w g for the monomials (rational family: powers of 1/(x+B)) up to
// degree 2N - 1, closed forms in log-gamma and log-beta.
TEST(GaussRules, ExactMoments) {
  struct Moments {
    int64_t itype;
    double a, b, c, d;
    std::function<double(double x, int k)> g;
    std::function<double(int k)> exact;
  };
  const std::vector<Moments> table = {
      {1, -1, 3, 0, 0, [](double x, int k) { return std::pow(x, k); },
       [](int k) { return (std::pow(3.0, k + 1) - std::pow(-1.0, k + 1)) / (k + 1); }},
      {2, 1, 0.5, 2.5, 0, [](double x, int k) { return std::pow(x + 0.5, -k); },
       [](int k) { return std::pow(1.5, 1.0 - 2.5 - k) / (2.5 + k - 1); }},
      {3, 0, 2, 0.5, 0, [](double x, int k) { return std::pow(x, k); },
       [](int k) { return std::exp(std::lgamma(1.5 + k) - (1.5 + k) * std::log(2.0)); }},
      {4, 0, 3, 0, 0, [](double x, int k) { return std::pow(x, k); },
       [](int k) { return k % 2 ? 0.0 : std::exp(std::lgamma(0.5 * (k + 1)) - 0.5 * (k + 1) * std::log(3.0)); }},
      {5, 0, 1, 1.5, -0.5, [](double x, int k) { return std::pow(x, k); },
       [](int k) { return std::exp(std::lgamma(0.5 + k) + std::lgamma(2.5) - std::lgamma(3.0 + k)); }},
  };
  for (const Moments& m : table) {
    for (int64_t n : {1, 4, 9}) {
      const Rule r = gauss(m.itype, m.a, m.b, m.c, m.d, n);
      ASSERT_EQ(r.ifail, 0);
      for (int k = 0; k < 2 * n; ++k) {
        double sum = 0, mag = 0;
        for (size_t i = 0; i < r.w.size(); ++i) sum += r.w[i] * m.g(r.x[i], k), mag += std::abs(r.w[i] * m.g(r.x[i], k));
        EXPECT_NEAR(sum, m.exact(k), 64 * kEps * mag) << "ITYPE " << m.itype << " N " << n << " k " << k;
      }
    }
  }
}

// Large rules stay finite, ordered and normalised: the weights sum to the integral of w.
TEST(GaussRules, LargeRules) {
  const struct {
    int64_t itype;
    double a, b, c, d, mass;
  } table[] = {{1, 0, 1, 0, 0, 1.0},
               {3, 0, 1, 0, 0, 1.0},
               {4, 0, 1, 0, 0, std::sqrt(std::numbers::pi)},
               {5, -1, 1, 0.5, 0.5, 0.5 * std::numbers::pi},
               {-4, 0, 1, 0, 0, 0}};
  for (const auto& t : table) {
    const Rule r = gauss(t.itype, t.a, t.b, t.c, t.d, 500);
    ASSERT_EQ(r.ifail, 0);
    double sum = 0;
    for (size_t i = 0; i < r.w.size(); ++i) {
      ASSERT_TRUE(std::isfinite(r.w[i]) && r.w[i] >= 0 && std::isfinite(r.x[i]));
      if (i > 0) {
        ASSERT_LT(r.x[i - 1], r.x[i]);
      }
      sum += r.w[i];
    }
    if (t.mass > 0) {
      EXPECT_NEAR(sum, t.mass, 1e-13 * t.mass) << t.itype;
    }
  }
}

// IUSER(1) counts the calls; RUSER(1) is a parameter of the integrand.
double rule_f(const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return std::exp(ruser[0] * *x);
}

double fixed_rule(int64_t itype, double a, double b, double c, double d, int64_t n, double param,
                  int64_t* ifail_out = nullptr) {
  int64_t iuser[1] = {0}, ifail = 1;
  double ruser[1] = {param}, result = 0;
  d01baf_(rule_f, &itype, &a, &b, &c, &d, &n, &result, iuser, ruser, &ifail);
  if (ifail_out) *ifail_out = ifail;
  EXPECT_EQ(iuser[0], ifail == 0 ? n : iuser[0]);
  return result;
}

// F(x) = prod_j exp(r_j x_j) over the product of the rules of each dimension.
double product_f(const int64_t* ndim, const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  double s = 0;
  for (int64_t j = 0; j < *ndim; ++j) s += ruser[j] * x[j];
  return std::exp(s);
}

TEST(GaussRules, FixedAndProductRules) {
  // d01baf: the rule is exact for exp(r x) up to truncation: against closed forms.
  EXPECT_NEAR(fixed_rule(1, 0, 1, 0, 0, 12, 1.0), std::exp(1.0) - 1, 1e-15);
  EXPECT_NEAR(fixed_rule(3, 0, 2, 0, 0, 30, -1.0), 1.0 / 3, 1e-15);    // int e^{-2x} e^{-x} = 1/3
  EXPECT_NEAR(fixed_rule(-3, 0, 1, 0, 0, 40, -2.0), 0.5, 1e-15);       // int e^{-2x} = 1/2
  EXPECT_NEAR(fixed_rule(4, 0, 1, 0, 0, 20, 1.0), std::sqrt(std::numbers::pi) * std::exp(0.25), 1e-14);
  // d01fbf up to 10 dimensions, each dimension's rule chosen in turn, against the product of d01baf results.
  const struct {
    int64_t itype;
    double a, b, c, d, r;
  } dims[] = {{1, 0, 1, 0, 0, 0.7}, {3, 0, 2, 0.5, 0, 0.3}, {4, 1, 1, 0, 0, -0.4}, {5, 0, 1, 0.5, 1.5, 1.1},
              {-3, 0, 1, 0, 0, -1.5}, {2, 1, 1, 3, 0, 0.0}, {1, -2, 1, 0, 0, 0.2}, {4, 0, 2, 0, 0, 0.1},
              {5, -1, 1, -0.5, -0.5, 0.9}, {1, 0, 3, 0, 0, -0.3}};
  for (int64_t ndim = 1; ndim <= 10; ++ndim) {
    std::vector<int64_t> nptvec;
    std::vector<double> w, x, ruser;
    double expected = 1;
    for (int64_t j = 0; j < ndim; ++j) {
      const auto& dj = dims[j];
      const int64_t n = ndim <= 6 ? 5 : 4;
      const Rule r = gauss(dj.itype, dj.a, dj.b, dj.c, dj.d, n);
      nptvec.push_back(n);
      w.insert(w.end(), r.w.begin(), r.w.end());
      x.insert(x.end(), r.x.begin(), r.x.end());
      ruser.push_back(dj.r);
      expected *= fixed_rule(dj.itype, dj.a, dj.b, dj.c, dj.d, n, dj.r);
    }
    int64_t lwa = static_cast<int64_t>(w.size()), iuser[1] = {0}, ifail = 1;
    double result = 0;
    d01fbf_(product_f, &ndim, nptvec.data(), &lwa, w.data(), x.data(), &result, iuser, ruser.data(), &ifail);
    EXPECT_EQ(ifail, 0);
    EXPECT_NEAR(result, expected, 1e-14 * std::abs(expected)) << ndim;
    double points = 1;
    for (int64_t n : nptvec) points *= static_cast<double>(n);
    EXPECT_EQ(static_cast<double>(iuser[0]), points);
  }
}

// d01rgf: F(X, XC) with XC the offset from the nearer end; RUSER(1) the exponent.
struct EndCase {
  const char* what;
  double (*f)(double x, double xc, double p);
  double p, a, b, epsrel, exact;
  int64_t ifail;
};

double end_f(const double* x, const double* xc, int64_t* iuser, double* ruser);
const EndCase* g_end_case = nullptr;
double end_f(const double* x, const double* xc, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return g_end_case->f(*x, *xc, ruser[0]);
}

struct EndOutcome {
  double result = 0, abserr = 0;
  int64_t nevals = 0, calls = 0, ifail = 0;
};

EndOutcome tanh_sinh(const EndCase& c, double epsabs, int64_t ifail = 1) {
  g_end_case = &c;
  EndOutcome r;
  int64_t iuser[1] = {0};
  double ruser[1] = {c.p};
  r.ifail = ifail;
  d01rgf_(end_f, &c.a, &c.b, &epsabs, &c.epsrel, &r.result, &r.abserr, &r.nevals, iuser, ruser, &r.ifail);
  r.calls = iuser[0];
  return r;
}

// The distance to the left end (XC > 0) or to the right end (XC < 0).
double left_distance(double x, double xc) { return xc > 0 ? xc : x; }
double right_distance(double x, double xc) { return xc < 0 ? -xc : 1 - x; }

const EndCase kEndCases[] = {
    {"x^-1/2", [](double x, double xc, double p) { return std::pow(left_distance(x, xc), p); }, -0.5, 0, 1, 1e-12, 2.0, 0},
    {"x^-0.9", [](double x, double xc, double p) { return std::pow(left_distance(x, xc), p); }, -0.9, 0, 1, 1e-12, 10.0, 0},
    {"(1-x)^-0.99 to 1e-2",
     [](double x, double xc, double p) { return std::pow(right_distance(x, xc), p); }, -0.99, 0, 1, 1e-2, 100.0, 0},
    {"(1-x)^-0.99 to 1e-10",
     [](double x, double xc, double p) { return std::pow(right_distance(x, xc), p); }, -0.99, 0, 1, 1e-10, 100.0, 4},
    {"both ends", [](double x, double xc, double p) {
       return std::pow(left_distance(x, xc) * right_distance(x, xc), p); }, -0.75, 0, 1, 1e-12,
     std::tgamma(0.25) * std::tgamma(0.25) / std::tgamma(0.5), 0},
    {"log x / sqrt x", [](double x, double xc, double) {
       const double t = left_distance(x, xc); return std::log(t) / std::sqrt(t); }, 0, 0, 1, 1e-12, -4.0, 0},
    {"log(1-x) on [1,-1]", [](double x, double xc, double) { return std::log(xc < 0 ? -xc : 1 - x); }, 0, 1, -1,
     1e-12, -(2 * std::log(2.0) - 2), 0},
    {"smooth exp", [](double x, double, double) { return std::exp(x); }, 0, -1, 2, 1e-13,
     std::exp(2.0) - std::exp(-1.0), 0},
    {"oscillating", [](double x, double, double) { return std::cos(30 * x); }, 0, 0, 1, 1e-12, std::sin(30.0) / 30, 0},
};

TEST(GaussRules, TanhSinhEndSingularities) {
  for (const EndCase& c : kEndCases) {
    SCOPED_TRACE(c.what);
    const EndOutcome r = tanh_sinh(c, 0.0);
    EXPECT_EQ(r.ifail, c.ifail);
    EXPECT_EQ(r.nevals, r.calls);
    EXPECT_LE(std::abs(r.result - c.exact), std::max(r.abserr, 4 * kEps * std::abs(c.exact)));
    if (c.ifail == 0) {
      EXPECT_LE(std::abs(r.result - c.exact), std::max(c.epsrel, 8 * kEps) * std::abs(c.exact));
    }
  }
}

// d01raf, looped by reverse communication over the integrand f(x, alpha) with room for `limit` subintervals.
struct RafRun {
  double result = 0, abserr = 0;
  std::vector<double> w;
  std::vector<int64_t> iw;
  int64_t ifail = 1, evaluations = 0;
};

RafRun reverse_communication(quadrature_integrand_fn f, double alpha, double a, double b, double epsabs,
                             double epsrel, int64_t limit, int64_t ifail = 1) {
  RafRun r;
  int64_t lw = 4 * limit, liw = limit, lrcomm = 42 * limit - 19, irevcm = 0, nx = 0;
  r.w.assign(static_cast<size_t>(lw), 0.0);
  r.iw.assign(static_cast<size_t>(liw), 0);
  std::vector<double> rcomm(static_cast<size_t>(lrcomm)), x(42), fx(42);
  for (int64_t round = 0; round <= 2 * limit; ++round) {
    r.ifail = ifail;
    d01raf_(&irevcm, &a, &b, &epsabs, &epsrel, &r.result, &r.abserr, &nx, x.data(), fx.data(), r.w.data(), &lw,
            r.iw.data(), &liw, rcomm.data(), &lrcomm, &r.ifail);
    if (irevcm != 1) break;
    for (int64_t i = 0; i < nx; ++i) fx[static_cast<size_t>(i)] = f(x[static_cast<size_t>(i)], alpha);
    r.evaluations += nx;
  }
  return r;
}

quadrature_integrand_fn g_ajf_integrand = nullptr;
double ajf_f(const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return g_ajf_integrand(*x, ruser[0]);
}

// Against d01ajf on every d01ajf case of the GSL table: the same result, error, IFAIL, evaluations and lists.
TEST(GaussRules, ReverseCommunicationIsD01ajf) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/quadrature_gsl.txt");
  int cases = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream s(line);
    std::string routine, integrand;
    double alpha, a, b, epsabs, epsrel;
    int64_t npts, limit;
    if (!(s >> routine) || routine != "d01ajf") continue;
    s >> integrand >> alpha >> a >> b >> npts >> epsabs >> epsrel >> limit;
    SCOPED_TRACE(line.substr(0, 80));
    g_ajf_integrand = quadrature_integrand(integrand.c_str());
    int64_t lw = 4 * limit, liw = limit, iuser[1] = {0}, ifail = 1;
    double ruser[1] = {alpha}, result, abserr;
    std::vector<double> w(static_cast<size_t>(lw));
    std::vector<int64_t> iw(static_cast<size_t>(liw));
    d01ajf_(ajf_f, &a, &b, &epsabs, &epsrel, &result, &abserr, w.data(), &lw, iw.data(), &liw, iuser, ruser, &ifail);
    const RafRun r = reverse_communication(g_ajf_integrand, alpha, a, b, epsabs, epsrel, limit);
    EXPECT_EQ(r.ifail, ifail);
    EXPECT_EQ(r.evaluations, iuser[0]);
    EXPECT_EQ(r.result, result);
    EXPECT_EQ(r.abserr, abserr);
    EXPECT_EQ(r.w, w);
    EXPECT_EQ(r.iw, iw);
    ++cases;
  }
  EXPECT_EQ(cases, 41);
}

TEST(GaussRules, EveryMessage) {
  using vek::testing::ReportCase;
  // The argument checks of the rule family, each provoked through the generator and through d01baf.
  struct FamilyCase {
    const char* what;
    int64_t ifail;
    std::vector<std::string> records;
    int64_t itype;
    double a, b, c, d;
    int64_t n;
  };
  const std::vector<FamilyCase> family = {
      {"ITYPE", 1, {"** On entry, ITYPE = 0", "** Constraint: ITYPE = 1, 2, 3, 4, 5, -1, -2, -3, -4 or -5."}, 0, 0, 1, 0, 0, 3},
      {"N", 2, {"** On entry, N = 0", "** Constraint: 1 <= N <= 10000."}, 1, 0, 1, 0, 0, 0},
      {"interval", 3, {"** On entry, ITYPE = -5, A = 1 and B = 1", "** Constraint: A and B finite, A < B."}, -5, 1, 1, 0, 0, 3},
      {"scale", 3, {"** On entry, ITYPE = 4, A = 0 and B = -1", "** Constraint: A and B finite, B > 0.0."}, 4, 0, -1, 0, 0, 3},
      {"rational", 3, {"** On entry, ITYPE = 2, A = 1 and B = -1", "** Constraint: A and B finite, A + B > 0.0."}, 2, 1, -1, 2, 0, 3},
      {"C", 4, {"** On entry, ITYPE = 3 and C = -1", "** Constraint: -1.0 < C <= 1000.0."}, 3, 0, 1, -1, 0, 3},
      {"C rational", 4, {"** On entry, ITYPE = 2 and C = 1", "** Constraint: 1.0 < C <= 1000.0."}, 2, 0, 1, 1, 0, 3},
      {"D", 4, {"** On entry, ITYPE = 5 and D = NaN", "** Constraint: -1.0 < D <= 1000.0."}, 5, 0, 1, 0, NAN, 3}};
  std::vector<ReportCase> generator, integration;
  for (const FamilyCase& f : family) {
    generator.push_back({f.what, f.ifail, f.records, [f](int64_t* fail) {
                           *fail = gauss(f.itype, f.a, f.b, f.c, f.d, f.n, *fail).ifail;
                         }});
    integration.push_back({f.what, f.ifail, f.records, [f](int64_t* fail) {
                            int64_t itype = f.itype, n = f.n, iuser[1] = {0};
                            double a = f.a, b = f.b, c = f.c, d = f.d, result, ruser[1] = {1.0};
                            d01baf_(rule_f, &itype, &a, &b, &c, &d, &n, &result, iuser, ruser, fail);
                          }});
  }
  integration.push_back({"not finite", 5, {"** F returned a value that is not finite at X = 0.5."}, [](int64_t* fail) {
                          int64_t itype = 1, n = 1, iuser[1] = {0};
                          double a = 0, b = 1, c = 0, d = 0, result, ruser[1] = {NAN};
                          d01baf_(rule_f, &itype, &a, &b, &c, &d, &n, &result, iuser, ruser, fail);
                        }});
  vek::testing::expect_reports("D01BCF", generator);
  vek::testing::expect_reports("D01BAF", integration);

  auto fbf = [](int64_t ndim, std::vector<int64_t> nptvec, int64_t lwa, double r) {
    return [=](int64_t* fail) {
      std::vector<int64_t> np = nptvec;
      np.resize(21, 1);
      std::vector<double> w(64, 1.0), x(64, 1.0), ruser(21, r);
      int64_t nd = ndim, l = lwa, iuser[1] = {0};
      double result;
      d01fbf_(product_f, &nd, np.data(), &l, w.data(), x.data(), &result, iuser, ruser.data(), fail);
    };
  };
  vek::testing::expect_reports(
      "D01FBF",
      {{"NDIM", 1, {"** On entry, NDIM = 21", "** Constraint: 1 <= NDIM <= 20."}, fbf(21, {}, 64, 0)},
       {"NPTVEC", 2, {"** On entry, NPTVEC(2) = 0", "** Constraint: NPTVEC(j) >= 1 for every j."},
        fbf(2, {1, 0}, 64, 0)},
       {"LWA", 3,
        {"** On entry, LWA = 4 and NPTVEC(1) + ... + NPTVEC(NDIM) = 5",
         "** Constraint: LWA >= NPTVEC(1) + ... + NPTVEC(NDIM)."},
        fbf(2, {2, 3}, 4, 0)},
       {"points", 4,
        {"** On entry, NPTVEC(1) * ... * NPTVEC(NDIM) = " + vek::text::real_text(std::pow(4.0, 20)),
         "** Constraint: NPTVEC(1) * ... * NPTVEC(NDIM) <= 2^32."},
        fbf(20, std::vector<int64_t>(20, 4), 1000, 0)},
       {"not finite", 5, {"** F returned a value that is not finite at point 1 of the product rule."},
        fbf(1, {3}, 3, 1000)}});

  const EndCase pole = {"pole", [](double x, double, double) { return std::log(x - 0.5); }, 0, 0, 1, 1e-10, 0, 0};
  const EndCase hard = {"hard", [](double x, double, double) { return std::sin(1 / x); }, 0, 0, 1, 1e-12, 0, 0};
  const EndCase smooth = {"smooth", [](double x, double, double) { return std::exp(x); }, 0, 0, 1, 1e-17, 0, 0};
  const EndCase root = kEndCases[3];
  auto rgf = [](const EndCase& c, double a, double b) {
    return [c, a, b](int64_t* fail) {
      EndCase k = c;
      k.a = a, k.b = b;
      *fail = tanh_sinh(k, 0.0, *fail).ifail;
    };
  };
  const EndOutcome limit = tanh_sinh(hard, 0.0), trunc = tanh_sinh(root, 0.0);
  vek::testing::expect_reports(
      "D01RGF",
      {{"level limit", 1,
        {"** The required accuracy was not achieved after 12 halvings of the step:",
         "** ABSERR = " + vek::text::real_text(limit.abserr)},
        rgf(hard, 0, 1)},
       {"round-off", 2, {"** Round-off error prevents the requested tolerance from being achieved:",
                         "** EPSABS = 0 and EPSREL = 1e-17"}, rgf(smooth, 0, 1)},
       {"not finite", 3, {"** F returned a value that is not finite at X = 0.5,", "** XC = 0.5."},
        rgf(pole, 0, 1)},
       {"truncated", 4,
        {"** The integrand is not negligible at the abscissae nearest to the ends, and",
         "** the part of the integral beyond them, about " + vek::text::real_text(trunc.abserr) + ", exceeds it."},
        rgf(root, 0, 1)},
       {"A infinite", 5, {"** On entry, A = -Infinity and B = 1", "** Constraint: A and B finite."},
        rgf(pole, -INFINITY, 1)}});

  auto raf = [](int64_t irevcm, int64_t lw, int64_t liw, int64_t lrcomm, double corrupt) {
    return [=](int64_t* fail) {
      int64_t ir = irevcm, nx, l = lw, li = liw, lr = lrcomm;
      double a = 0, b = 1, epsabs = 0, epsrel = 1e-10, result, abserr;
      std::vector<double> x(42), fx(42, 1.0), w(40), rcomm(400, 0.0);
      std::vector<int64_t> iw(10);
      rcomm[0] = corrupt, rcomm[1] = 21;
      d01raf_(&ir, &a, &b, &epsabs, &epsrel, &result, &abserr, &nx, x.data(), fx.data(), w.data(), &l, iw.data(),
              &li, rcomm.data(), &lr, fail);
    };
  };
  auto loop = [](quadrature_integrand_fn f, double alpha, double b, double epsabs, double epsrel, int64_t limit) {
    return [=](int64_t* fail) { *fail = reverse_communication(f, alpha, 0, b, epsabs, epsrel, limit, *fail).ifail; };
  };
  // The subinterval of bad behaviour is the last one bisected: the narrowest in W.
  const RafRun bad = reverse_communication(qi_cubic_log, 0, 0, 3, 0, 2e-14, 1000);
  const size_t n = static_cast<size_t>(bad.iw[0]);
  size_t narrowest = 0;
  for (size_t i = 1; i + 1 < n; ++i)
    if (bad.w[n + i + 1] - bad.w[i] < bad.w[n + narrowest + 1] - bad.w[narrowest]) narrowest = i;
  vek::testing::expect_reports(
      "D01RAF",
      {{"IREVCM", 7, {"** On entry, IREVCM = 2", "** Constraint: IREVCM = 0 or 1."}, raf(2, 40, 10, 400, 0)},
       {"LW", 6, {"** On entry, LW = 3", "** Constraint: LW >= 4."}, raf(0, 3, 10, 400, 0)},
       {"LIW", 6, {"** On entry, LIW = 0", "** Constraint: LIW >= 1."}, raf(0, 40, 0, 400, 0)},
       {"LRCOMM", 6, {"** On entry, LRCOMM = 400", "** Constraint: LRCOMM >= 42*min(LW/4,LIW) - 19 = 401."},
        raf(0, 40, 10, 400, 0)},
       {"RCOMM", 7, {"** On entry, IREVCM = 1, but RCOMM does not hold an integration in progress."},
        raf(1, 36, 10, 400, 7)},
       {"limit", 1,
        {"** The maximum number of subdivisions (LIMIT) has been reached:", "** LIMIT = 2, LW = 8 and",
         "** LIW = 2"},
        loop(qi_power_log, -0.9, 1, 0, 1e-10, 2)},
       {"round-off", 2,
        {"** Round-off error prevents the requested tolerance from being achieved:",
         "** EPSABS = 0 and EPSREL = 1e-15"},
        loop(qi_exp, 1, 1, 0, 1e-15, 100)},
       {"bad integrand", 3,
        {"** Extremely bad integrand behaviour occurs around the sub-interval",
         "** (" + vek::text::real_text(bad.w[narrowest]) + ", " + vek::text::real_text(bad.w[n + narrowest + 1]) +
             ")"},
        loop(qi_cubic_log, 0, 3, 0, 2e-14, 1000)},
       {"table", 4, {"** Round-off error is detected in the extrapolation table."},
        loop(qi_power_log, -0.99, 1, 0, 1e-12, 1000)},
       {"divergent", 5, {"** The integral is probably divergent or slowly convergent."},
        loop(qi_power, -1.5, 1, 0, 1e-10, 1000)}});
}

}  // namespace
