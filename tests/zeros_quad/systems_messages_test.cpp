// Every message of the six solvers for systems through the exported entries, to the character (support/report.h),
// each provoked in every routine that declares it: the argument checks in order, FCN's request to stop, the
// evaluation limits, XTOL too small, slow progress (both measures), a radius down to XTOL away from any zero, a value that is not finite, and for the
// reverse-communication forms a bad IREVCM and state arrays not written by the routine.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/report.h"
#include "systems_harness.h"

namespace {

using vek::testing::Solver;
using vek::testing::SystemProblem;
using vek::testing::SystemSetup;

// One-unknown problems that end the iteration in each way, with their derivatives.
const SystemProblem kDecay = {  // exp(-x): ||f|| falls steadily and never reaches 0 before the limits
    "decay", [](int64_t, const double* x, double* f) { f[0] = std::exp(-x[0]); },
    [](int64_t, const double* x, double* j) { j[0] = -std::exp(-x[0]); }, [](int64_t, double* x) { x[0] = 0.0; }};
const SystemProblem kSquareMinusTwo = {  // x^2 - 2 from the double nearest its root: no step can reduce f
    "square_minus_two", [](int64_t, const double* x, double* f) { f[0] = x[0] * x[0] - 2.0; },
    [](int64_t, const double* x, double* j) { j[0] = 2.0 * x[0]; },
    [](int64_t, double* x) { x[0] = 1.4142135623730951; }};
const SystemProblem kKink = {  // sqrt|x - 1| + 1/2: the linear model keeps promising far more than it gives
    "kink", [](int64_t, const double* x, double* f) { f[0] = std::sqrt(std::abs(x[0] - 1.0)) + 0.5; },
    [](int64_t, const double* x, double* j) { j[0] = (x[0] > 1.0 ? 0.5 : -0.5) / std::sqrt(std::abs(x[0] - 1.0)); },
    [](int64_t, double* x) { x[0] = 3.0; }};
const SystemProblem kNoRoot = {  // (x^2 + 1, y^2 + 1): |f| is least at a point that is no root
    "no_root",
    [](int64_t n, const double* x, double* f) {
      for (int64_t i = 0; i < n; ++i) f[i] = x[i] * x[i] + 1.0;
    },
    [](int64_t n, const double* x, double* j) {
      for (int64_t i = 0; i < n * n; ++i) j[i] = i % (n + 1) == 0 ? 2.0 * x[i / n] : 0.0;
    },
    [](int64_t n, double* x) {
      for (int64_t i = 0; i < n; ++i) x[i] = 1.0 + static_cast<double>(i);
    }};
const SystemProblem kFalseZero = {  // x^3 - 3x + 3 from 1.5: MINPACK ends "converged" at x = 1, where f = 1, f' = 0
    "false_zero", [](int64_t, const double* x, double* f) { f[0] = (x[0] * x[0] - 3.0) * x[0] + 3.0; },
    [](int64_t, const double* x, double* j) { j[0] = 3.0 * x[0] * x[0] - 3.0; }, [](int64_t, double* x) { x[0] = 1.5; }};
const SystemProblem kNotFinite = {
    "nan", [](int64_t, const double*, double* f) { f[0] = NAN; }, [](int64_t, const double*, double* j) { j[0] = NAN; },
    [](int64_t, double* x) { x[0] = 1.0; }};

struct MessageCase {
  std::string what;
  std::vector<Solver> solvers;
  int64_t ifail;
  std::vector<std::string> records;
  std::function<void(SystemSetup&)> change;  // from Rosenbrock's problem with the harness's settings
};

const std::vector<Solver> kAll = {Solver::qbf, Solver::qcf, Solver::qdf, Solver::qsf,
                                  Solver::rbf, Solver::rcf, Solver::rdf};
const std::vector<Solver> kFull = {Solver::qcf, Solver::qdf, Solver::rcf, Solver::rdf};
const std::vector<Solver> kEasy = {Solver::qbf, Solver::qsf, Solver::rbf};
const std::vector<Solver> kCallers = {Solver::qbf, Solver::qcf, Solver::qsf, Solver::rbf, Solver::rcf};

const std::map<Solver, std::string> kNames = {{Solver::qbf, "C05QBF"}, {Solver::qcf, "C05QCF"},
                                              {Solver::qdf, "C05QDF"}, {Solver::qsf, "C05QSF"},
                                              {Solver::rbf, "C05RBF"},
                                              {Solver::rcf, "C05RCF"}, {Solver::rdf, "C05RDF"}};

const std::vector<std::string> kNotFiniteRecords = {
    "** A value of the functions or of the Jacobian is not finite (NaN or infinity).",
    "** X holds the last point accepted."};

TEST(SystemMessages, EveryMessageOfEveryRoutine) {
  const std::string slow = "** The iteration is not making good progress, as measured by the improvement";
  const std::vector<MessageCase> cases = {
      {"N = 0", kAll, 1, {"** On entry, N = 0", "** Constraint: N > 0."}, [](SystemSetup& s) { s.n = 0; }},
      {"XTOL < 0", kAll, 1, {"** On entry, XTOL = -1", "** Constraint: XTOL >= 0.0."},
       [](SystemSetup& s) { s.xtol = -1.0; }},
      {"XTOL NaN", kAll, 1, {"** On entry, XTOL = NaN", "** Constraint: XTOL >= 0.0."},
       [](SystemSetup& s) { s.xtol = NAN; }},
      {"MAXFEV = 0", kFull, 1, {"** On entry, MAXFEV = 0", "** Constraint: MAXFEV > 0."},
       [](SystemSetup& s) { s.maxfev = 0; }},
      {"MODE = 3", kFull, 1, {"** On entry, MODE = 3", "** Constraint: MODE = 1 or 2."},
       [](SystemSetup& s) { s.mode = 3; }},
      {"FACTOR = 0", kFull, 1, {"** On entry, FACTOR = 0", "** Constraint: FACTOR > 0.0."},
       [](SystemSetup& s) { s.factor = 0.0; }},
      {"ML < 0", {Solver::qcf, Solver::qdf}, 1, {"** On entry, ML = -1", "** Constraint: ML >= 0."},
       [](SystemSetup& s) { s.ml = -1; }},
      {"MU < 0", {Solver::qcf, Solver::qdf}, 1, {"** On entry, MU = -2", "** Constraint: MU >= 0."},
       [](SystemSetup& s) { s.mu = -2; }},
      {"DIAG(2) <= 0", kFull, 1,
       {"** On entry, MODE = 2 and DIAG(2) = -0.5", "** Constraint: if MODE = 2, DIAG(i) > 0.0 for all i."},
       [](SystemSetup& s) { s.mode = 2, s.diag = {1.0, -0.5}; }},
      {"IREVCM = 5", {Solver::qdf}, 1, {"** On entry, IREVCM = 5", "** Constraint: IREVCM = 0, 1 or 2."},
       [](SystemSetup& s) { s.irevcm_start = 5; }},
      {"IREVCM = 3", {Solver::qdf}, 1, {"** On entry, IREVCM = 3", "** Constraint: IREVCM = 0, 1 or 2."},
       [](SystemSetup& s) { s.irevcm_start = 3; }},
      {"IREVCM = -1", {Solver::rdf}, 1, {"** On entry, IREVCM = -1", "** Constraint: IREVCM = 0, 1, 2 or 3."},
       [](SystemSetup& s) { s.irevcm_start = -1; }},
      {"IWSAV not written", {Solver::qdf, Solver::rdf}, 1,
       {"** On entry, IREVCM = 2, but IWSAV does not hold a run in progress:",
        "** IWSAV and RWSAV must not be changed between calls."},
       [](SystemSetup& s) { s.irevcm_start = 2; }},
      {"NNZ = 0", {Solver::qsf}, 1, {"** On entry, NNZ = 0", "** Constraint: NNZ > 0."},
       [](SystemSetup& s) { s.nnz = 0; }},
      {"pair outside", {Solver::qsf}, 1,
       {"** On entry, IROW(3) = 2 and ICOL(3) = 3", "** Constraint: 1 <= IROW(k) <= N and 1 <= ICOL(k) <= N."},
       [](SystemSetup& s) { s.irow = {1, 2, 2}, s.icol = {1, 1, 3}; }},
      {"IFLAG < 0", kCallers, 1, {"** IFLAG was set negative in FCN.", "** IFLAG = -7"},
       [](SystemSetup& s) { s.stop_at_call = 3; }},
      {"200*(N+1) calls", kEasy, 2,
       {"** There have been at least 200*(N+1) calls to FCN.",
        "** Consider restarting the calculation from the point held in X."},
       [](SystemSetup& s) { s.problem = kDecay, s.n = 1; }},
      {"MAXFEV calls", kFull, 2, {"** There have been at least MAXFEV calls to FCN:", "** MAXFEV = 10"},
       [](SystemSetup& s) { s.problem = kDecay, s.n = 1, s.maxfev = 10; }},
      {"XTOL too small", kAll, 3,
       {"** No further improvement in the solution is possible.", "** XTOL is too small: XTOL = 0"},
       [](SystemSetup& s) { s.problem = kSquareMinusTwo, s.n = 1, s.xtol = 0.0; }},
      {"no progress", kEasy, 4, {"** The iteration is not making good progress."},
       [](SystemSetup& s) { s.problem = kNoRoot, s.n = 2; }},
      {"radius at XTOL, no zero", kEasy, 4, {"** The iteration is not making good progress."},
       [](SystemSetup& s) { s.problem = kFalseZero, s.n = 1, s.xtol = 1e-3; }},
      {"radius at XTOL, no zero", kFull, 4,
       {"** The iteration is not making good progress.",
        "** The step fell to XTOL where the residual is not small: X may be a minimum",
        "** of ||F(X)|| rather than a zero."},
       [](SystemSetup& s) { s.problem = kFalseZero, s.n = 1, s.xtol = 1e-3; }},
      {"slow iterations", kFull, 4, {slow, "** from the last 10 iterations."},
       [](SystemSetup& s) { s.problem = kNoRoot, s.n = 2; }},
      {"slow Jacobians", kFull, 4, {slow, "** from the last 5 Jacobian evaluations."},
       [](SystemSetup& s) { s.problem = kKink, s.n = 1; }},
      {"NaN from FCN", kAll, 5, kNotFiniteRecords, [](SystemSetup& s) { s.problem = kNotFinite, s.n = 1; }},
  };
  for (const MessageCase& c : cases) {
    for (Solver solver : c.solvers) {
      SystemSetup s{vek::testing::mgh_system("rosenbrock"), 2};
      c.change(s);
      vek::testing::expect_reports(kNames.at(solver), {{c.what, c.ifail, c.records, [solver, s](int64_t* ifail) {
                                                        *ifail = vek::testing::run_system(solver, s, *ifail).ifail;
                                                      }}});
    }
  }
}

}  // namespace
