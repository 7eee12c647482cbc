// c05awf and c05axf: the zeros of test equations and of the Alefeld-Potra-Shi problems against mpmath
// (data/continuation_roots.txt, made by data/make_continuation_roots.py), evaluation counts beside c05auf and
// c05ayf, and the reverse-communication form making exactly the evaluations of the direct one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "aps_problems.h"
#include "vek.h"

namespace {

using Function = std::function<double(double)>;

// The test equations of the reference file, by name.
const std::map<std::string, Function>& equations() {
  static const std::map<std::string, Function> table = {
      {"atan", [](double x) { return std::atan(x); }},
      {"tanh", [](double x) { return std::tanh(x); }},
      {"log", [](double x) { return std::log(x); }},
      {"brent_cubic", [](double x) { return x * x * x - 2 * x - 5; }},
      {"power20", [](double x) { return std::pow(x, 20) - 1; }},
      {"cos_minus_x", [](double x) { return std::cos(x) - x; }},
      {"kepler", [](double x) { return x - 0.9 * std::sin(x) - 1; }},
      {"exp_minus_ten_thousand", [](double x) { return std::exp(x) - 10000; }},
      {"triple", [](double x) { return (x - 1) * (x - 1) * (x - 1); }},
  };
  return table;
}

struct Equation {
  std::string name;
  double x0, zero;
};

struct Reference {
  std::vector<Equation> equations;
  std::vector<double> aps;  // in the order of aps_problems()
};

Reference read_reference() {
  std::ifstream file(std::string(VEK_TEST_DATA_DIR) + "/continuation_roots.txt");
  Reference r;
  std::string line, kind, name;
  while (std::getline(file, line)) {
    std::istringstream in(line);
    in >> kind;
    if (kind == "eq") {
      Equation e;
      in >> e.name >> e.x0 >> e.zero;
      r.equations.push_back(e);
    } else if (kind == "aps") {
      double zero = 0.0;
      in >> name >> zero;
      r.aps.push_back(zero);
    }
  }
  return r;
}

// The function the routines call: the current one, with every point recorded.
const Function* g_f = nullptr;
std::vector<double> g_points;
double recorded(const double* x, int64_t*, double*) {
  g_points.push_back(*x);
  return (*g_f)(*x);
}

struct Result {
  double x;
  int64_t ifail;
  std::vector<double> points;
};

Result direct(const Function& f, double x0, double eps, double eta, int64_t nfmax) {
  g_f = &f;
  g_points.clear();
  Result r{x0, 1, {}};
  c05awf_(&r.x, &eps, &eta, recorded, &nfmax, nullptr, nullptr, &r.ifail);
  r.points = g_points;
  return r;
}

// c05axf from IND = 1 (or -1 with FX = f(X0)) with the scale c05awf computes, evaluating f as asked.
Result reverse(const Function& f, double x0, double tol, int64_t ir, int64_t ind = 1) {
  const double scal = std::sqrt(0x1p-53) * std::max(1.0, std::abs(x0));
  Result r{x0, 1, {}};
  double fx = ind == 1 ? 0.0 : f(x0), c[26] = {};
  do {
    r.ifail = 1;
    c05axf_(&r.x, &fx, &tol, &ir, &scal, c, &ind, &r.ifail);
    if (ind != 0) {
      r.points.push_back(r.x);
      fx = f(r.x);
    }
  } while (ind != 0 && r.points.size() < 100000);
  return r;
}

int near_point_calls(const Function& f, double x0, double h, double eps) {
  g_f = &f;
  g_points.clear();
  double x = x0, a = 0.0, b = 0.0;
  const double eta = 0.0;
  int64_t ifail = 1;
  c05auf_(&x, &h, &eps, &eta, recorded, &a, &b, nullptr, nullptr, &ifail);
  return ifail == 0 ? static_cast<int>(g_points.size()) : -1;
}

int interval_calls(const Function& f, double a, double b, double eps) {
  g_f = &f;
  g_points.clear();
  double x = 0.0;
  const double eta = 0.0;
  int64_t ifail = 1;
  c05ayf_(&a, &b, &eps, &eta, recorded, &x, nullptr, nullptr, &ifail);
  return ifail == 0 ? static_cast<int>(g_points.size()) : -1;
}

// c05awf's IFAIL for a failure c05axf reports too (scale, stall, tolerance): c05axf's number for it.
int64_t as_reverse_ifail(int64_t direct_ifail) { return direct_ifail >= 3 ? direct_ifail - 1 : direct_ifail; }

bool near(double x, double zero, double eps) { return std::abs(x - zero) <= 10 * eps * std::max(1.0, std::abs(zero)); }

}  // namespace

TEST(Continuation, TestEquationsAgainstMpmath) {
  const Reference ref = read_reference();
  ASSERT_EQ(ref.equations.size(), equations().size());
  const double eps = 1e-12;
  int total = 0, total_auf = 0;
  for (const Equation& e : ref.equations) {
    SCOPED_TRACE(e.name);
    const Function& f = equations().at(e.name);
    const Result r = direct(f, e.x0, eps, 0.0, 1000);
    EXPECT_EQ(r.ifail, 0);
    EXPECT_TRUE(near(r.x, e.zero, eps)) << r.x << " against " << e.zero;
    const int auf = near_point_calls(f, e.x0, 0.1 * std::max(1.0, std::abs(e.x0)), eps);
    std::printf("  %-24s c05awf %3zu evaluations, c05auf %3d\n", e.name.c_str(), r.points.size(), auf);
    total += static_cast<int>(r.points.size());
    total_auf += auf;
  }
  std::printf("  total: c05awf %d, c05auf %d\n", total, total_auf);
}

// The direct form is c05axf's run with IR = 1 and c05awf's scale: the same points, to the bit, the same X and
// IFAIL; and with ETA the run stops at the first point with |F| <= ETA.
TEST(Continuation, ReverseCommunicationMakesTheDirectEvaluations) {
  const Reference ref = read_reference();
  for (const Equation& e : ref.equations) {
    SCOPED_TRACE(e.name);
    const Function& f = equations().at(e.name);
    for (double eps : {1e-4, 1e-12, 1e-300}) {
      const Result d = direct(f, e.x0, eps, 0.0, 1000);
      const Result c = reverse(f, e.x0, eps, 1);
      EXPECT_EQ(d.points, c.points) << eps;
      EXPECT_EQ(d.x, c.x);
      EXPECT_EQ(as_reverse_ifail(d.ifail), c.ifail);
    }
    const Result d = direct(f, e.x0, 1e-12, 0.0, 1000), given = reverse(f, e.x0, 1e-12, 1, -1);
    EXPECT_EQ(std::vector<double>(d.points.begin() + 1, d.points.end()), given.points);  // f(X0) was given
    const double eta = 1e-3;
    const Result with_eta = direct(f, e.x0, 1e-300, eta, 1000), f_test = reverse(f, e.x0, eta, 2);
    EXPECT_EQ(with_eta.points, f_test.points);
    EXPECT_LE(std::abs(f(with_eta.x)), eta);
  }
}

// From the middle of each interval, EPS = 1e-10: every zero returned is mpmath's to the tolerance, or a point
// where F is 0 in floating point (F underflows away from the zero: problems 3 and 13).
TEST(Continuation, AlefeldPotraShiAgainstMpmath) {
  const Reference ref = read_reference();
  const std::vector<vek::testing::ApsProblem> problems = vek::testing::aps_problems();
  ASSERT_EQ(ref.aps.size(), problems.size());
  const double eps = 1e-10;
  int solved = 0, underflow = 0, failed = 0, awf = 0, auf = 0, ayf = 0, compared = 0;
  for (size_t k = 0; k < problems.size(); ++k) {
    const vek::testing::ApsProblem& p = problems[k];
    SCOPED_TRACE(p.name + " (" + std::to_string(k) + ")");
    const double mid = p.a + (p.b - p.a) / 2;
    const Result r = direct(p.f, mid, eps, 0.0, 1000);
    if (r.ifail != 0) {
      EXPECT_TRUE(r.ifail >= 2 && r.ifail <= 5) << r.ifail;
      ++failed;
      continue;
    }
    const bool at_zero = near(r.x, ref.aps[k], eps);
    EXPECT_TRUE(at_zero || p.f(r.x) == 0.0) << r.x << " against " << ref.aps[k];
    ++(at_zero ? solved : underflow);
    const int near_calls = near_point_calls(p.f, mid, (p.b - p.a) / 512, eps);
    const int interval = interval_calls(p.f, p.a, p.b, eps);
    if (at_zero && near_calls > 0 && interval > 0) {
      awf += static_cast<int>(r.points.size());
      auf += near_calls;
      ayf += interval;
      ++compared;
    }
  }
  std::printf("  %d to the zero, %d at an underflow, %d failures; on the %d solved by all three: c05awf %d, "
              "c05auf %d, c05ayf %d evaluations\n", solved, underflow, failed, compared, awf, auf, ayf);
}
