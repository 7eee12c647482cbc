// The solvers for systems on the More-Garbow-Hillstrom problems (mgh_systems.h) from their standard starting
// points and from 10 and 100 times them, against MINPACK's hybrd and hybrj run with the same settings (data/systems.txt, made by
// data/make_systems_reference.py): the same ending, the same numbers of function and Jacobian evaluations, and
// every converged X within 100 XTOL of the mpmath-refined root. Then the reverse-communication forms against
// the direct ones, bit for bit, and the monitoring calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <tuple>

#include "systems_harness.h"

namespace {

using vek::testing::mgh_system;
using vek::testing::run_system;
using vek::testing::Solver;
using vek::testing::SystemRun;
using vek::testing::SystemSetup;

// ||x - root||_inf over max(1, ||root||_inf).
double scaled_error(const std::vector<double>& x, const std::vector<double>& root) {
  double err = 0.0, size = 1.0;
  for (size_t i = 0; i < x.size(); ++i) {
    err = std::max(err, std::abs(x[i] - root[i]));
    size = std::max(size, std::abs(root[i]));
  }
  return err / size;
}

// Problems on which the iterates leave MINPACK's after many steps, from differences at rounding level (a
// singular Jacobian at the root, ill-conditioning, or no root): the ending and the root agree, and the counts
// within a factor 1.5.
const std::set<std::string> kRoundingSensitive = {"powell_singular", "watson", "brown_almost_linear",
                                                  "trigonometric"};

// From 10 and 100 times the standard start the runs are longer and part from MINPACK's at rounding level (the
// first Gauss-Newton step of Rosenbrock's problem from 100 times its start already differs in the 12th digit),
// so only the outcome is compared: where MINPACK converges the routine converges too, to a root (possibly
// another one: Chebyquad's are permutations of each other); where MINPACK gives up the routine may converge
// or end with IFAIL 2 to 4. The counts are listed next to MINPACK's in the chapter's guide.
// One run ends otherwise: c05qcf on Chebyquad (n = 6) from 100 times the start stops after 10 steps without
// progress at 87 evaluations, where MINPACK's path goes on to a root after 447.
void far_start_outcome(const SystemSetup& s, const SystemRun& r, int64_t minpack_ifail, bool gives_up) {
  EXPECT_TRUE(r.ifail == 0 || ((minpack_ifail != 0 || gives_up) && r.ifail >= 2 && r.ifail <= 4)) << r.ifail;
  if (r.ifail != 0) return;
  std::vector<double> f(r.x.size());
  s.problem.f(s.n, r.x.data(), f.data());
  for (double v : f) EXPECT_LE(std::abs(v), 1e-7);
}

TEST(Systems, MinpackProblemsAgainstTheReference) {
  // The routine and settings each kind of reference run stands for (make_systems_reference.py).
  // c05qsf with every element in its pattern differences column by column, as c05qbf does.
  const std::map<std::string, std::pair<std::vector<Solver>, int64_t>> kinds = {
      {"easy", {{Solver::qbf, Solver::qsf}, 2}}, {"easy_jac", {{Solver::rbf}, 2}}, {"scaled", {{Solver::qcf}, 1}},
      {"banded", {{Solver::qcf}, 1}}, {"scaled_jac", {{Solver::rcf}, 1}}};
  std::ifstream file(std::string(VEK_TEST_DATA_DIR) + "/systems.txt");
  ASSERT_TRUE(file.good());
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    std::string kind, name;
    SystemSetup s{mgh_system("rosenbrock"), 0};
    int64_t ifail, nfev, njev;
    in >> kind >> name >> s.n >> s.start_scale >> ifail >> nfev >> njev;
    s.problem = mgh_system(name);
    s.mode = kinds.at(kind).second;
    if (kind == "banded") s.ml = vek::testing::mgh::kBandedLower, s.mu = vek::testing::mgh::kBandedUpper;
    std::vector<std::string> root(static_cast<size_t>(s.n));
    for (auto& v : root) in >> v;
    for (Solver solver : kinds.at(kind).first) {
      SCOPED_TRACE(line.substr(0, 48) + (solver == Solver::qsf ? " (c05qsf)" : ""));
      const SystemRun r = run_system(solver, s);
      if (s.start_scale != 1.0) {
        far_start_outcome(s, r, ifail, line.starts_with("scaled chebyquad 6 100 "));
        continue;
      }
      EXPECT_EQ(r.ifail, ifail);
      if (kRoundingSensitive.count(name) != 0) {
        EXPECT_LE(std::max(r.nfev, nfev), 3 * std::min(r.nfev, nfev) / 2);
      } else {
        EXPECT_EQ(r.nfev, nfev);
        EXPECT_EQ(r.njev, njev);
      }
      if (root[0] == "-") continue;
      std::vector<double> value(root.size());
      std::transform(root.begin(), root.end(), value.begin(), [](const std::string& t) { return std::stod(t); });
      EXPECT_LE(scaled_error(r.x, value), 100 * s.xtol);
    }
    ++rows;
  }
  EXPECT_GT(rows, 180);
}

// For a banded pattern the column groups are those of the band (columns j, j + ML + MU + 1, ...), so c05qsf
// takes c05qcf's iterates with that band and c05qbf's settings, with far fewer evaluations than c05qbf.
TEST(Systems, SparsePatternGroupsColumns) {
  for (auto [name, lower, upper] : {std::tuple{"broyden_tridiagonal", 1, 1}, std::tuple{"broyden_banded", 5, 1}}) {
    SCOPED_TRACE(name);
    SystemSetup s{mgh_system(name), 30};
    s.mode = 2;
    s.ml = lower, s.mu = upper;
    for (int64_t j = 0; j < s.n; ++j)
      for (int64_t i = std::max<int64_t>(0, j - upper); i <= std::min<int64_t>(s.n - 1, j + lower); ++i)
        s.irow.push_back(i + 1), s.icol.push_back(j + 1);
    const SystemRun sparse = run_system(Solver::qsf, s), banded = run_system(Solver::qcf, s);
    EXPECT_EQ(sparse.ifail, 0);
    EXPECT_EQ(sparse.x, banded.x);
    EXPECT_EQ(sparse.nfev, banded.nfev);
    EXPECT_LT(sparse.nfev, run_system(Solver::qbf, s).nfev);
  }
}

// c05qdf and c05rdf take the very iterates of c05qcf and c05rcf: every output equal to the bit, over scalings,
// a banded difference Jacobian and runs that end in each way.
TEST(Systems, ReverseCommunicationIsTheDirectRun) {
  const std::vector<SystemSetup> setups = {
      {mgh_system("rosenbrock"), 2},
      {mgh_system("powell_badly_scaled"), 2, 1e-12, {}, {}, {}, 0.0, 2, {1.0, 1e-4}},
      {mgh_system("helical_valley"), 3, 1e-10, {}, {}, {}, 1e-10, 1, {}, 1.0},
      {mgh_system("wood"), 4, 1e-10, 20},
      {mgh_system("broyden_banded"), 10, 1e-10, {}, 5, 1},
      {mgh_system("trigonometric"), 10},
      {mgh_system("discrete_integral"), 10, 0.0},
  };
  for (const SystemSetup& s : setups) {
    SCOPED_TRACE(s.problem.name);
    for (auto [direct, reverse] : {std::pair{Solver::qcf, Solver::qdf}, std::pair{Solver::rcf, Solver::rdf}}) {
      const SystemRun a = run_system(direct, s), b = run_system(reverse, s);
      EXPECT_EQ(a.ifail, b.ifail);
      EXPECT_EQ(a.nfev, b.nfev);
      EXPECT_EQ(a.njev, b.njev);
      for (auto field : {&SystemRun::x, &SystemRun::fvec, &SystemRun::fjac, &SystemRun::r, &SystemRun::qtf})
        EXPECT_EQ(a.*field, b.*field);
    }
  }
}

// NPRINT > 0 calls FCN with IFLAG = 0 at iterations 1, NPRINT+1, ...; it changes nothing else, and a negative
// IFLAG from a monitoring call stops the run like any other.
TEST(Systems, MonitoringCalls) {
  SystemSetup s{mgh_system("rosenbrock"), 2};
  const SystemRun plain = run_system(Solver::qcf, s);
  for (int64_t nprint : {1, 3}) {
    s.nprint = nprint;
    const SystemRun watched = run_system(Solver::qcf, s);
    EXPECT_GT(watched.monitor_calls, 0);
    EXPECT_EQ(watched.x, plain.x);
    EXPECT_EQ(watched.nfev, plain.nfev);
  }
  s.nprint = 1;
  s.stop_at_call = 1 + 2 + 1;  // f at the start, two differences, then the first monitoring call
  const SystemRun stopped = run_system(Solver::qcf, s);
  EXPECT_EQ(stopped.monitor_calls, 1);
  EXPECT_EQ(stopped.ifail, 1);
}

// The solvers keep nothing outside their arguments, so one may run inside another's user function: the outer
// c05qbf solves x^3 = c for c = 2 through an inner c05qbf for each value, and each inner value comes from c05ayf.
TEST(Systems, NestedInsideUserFunctions) {
  // c05ayf's F: y^3 - RUSER(1) on [0, 2].
  static auto cube_minus = [](const double* y, int64_t*, double* ruser) { return *y * *y * *y - ruser[0]; };
  // The inner c05qbf's FCN: f(y) = y - cbrt(RUSER(1)), the cube root found by c05ayf.
  static auto inner = [](const int64_t*, const double* y, double* f, int64_t* iuser, double* ruser, int64_t*) {
    double a = 0.0, b = 2.0, eps = 1e-15, eta = 0.0, root = 0.0;
    int64_t ifail = 1;
    c05ayf_(&a, &b, &eps, &eta, cube_minus, &root, iuser, ruser, &ifail);
    f[0] = ifail == 0 ? *y - root : NAN;
  };
  // The outer FCN: f(x) = x^3 - 2 written as x - (the inner solution for c = 2).
  static auto outer = [](const int64_t* n, const double* x, double* f, int64_t*, double*, int64_t*) {
    double y = 1.0, fy = 0.0, xtol = 1e-12, c[1] = {2.0};
    int64_t iuser[1] = {0}, ifail = 1;
    c05qbf_(inner, n, &y, &fy, &xtol, iuser, c, &ifail);
    f[0] = ifail == 0 ? x[0] - y : NAN;
  };
  const int64_t n = 1;
  double x = 5.0, f = 0.0, xtol = 1e-12, ruser[1] = {0.0};
  int64_t iuser[1] = {0}, ifail = 1;
  c05qbf_(outer, &n, &x, &f, &xtol, iuser, ruser, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_NEAR(x, std::cbrt(2.0), 1e-14);
}

}  // namespace
