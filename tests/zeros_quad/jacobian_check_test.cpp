// c05zdf on Powell's singular function (More, Garbow and Hillstrom's test set, ACM TOMS 7, 1981) at its
// standard start, with a fifth function identically 0: the analytic Jacobian passes, a Jacobian with one wrong
// column is flagged in exactly the rows that depend on that variable.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "vek.h"

namespace {

constexpr int64_t kM = 5, kN = 4;

std::vector<double> functions(const double* x) {
  return {x[0] + 10 * x[1], std::sqrt(5.0) * (x[2] - x[3]), std::pow(x[1] - 2 * x[2], 2),
          std::sqrt(10.0) * std::pow(x[0] - x[3], 2), 0.0};
}

// Column-major, leading dimension kM.
std::vector<double> jacobian(const double* x) {
  const double u = 2 * (x[1] - 2 * x[2]), v = 2 * std::sqrt(10.0) * (x[0] - x[3]), r5 = std::sqrt(5.0);
  return {1, 0, 0, v, 0,  10, 0, u, 0, 0,  0, r5, -2 * u, 0, 0,  0, -r5, 0, -v, 0};
}

std::vector<double> grades(const std::vector<double>& fjac) {
  double x[kN] = {3, -1, 0, 1}, xp[kN] = {};
  int64_t mode = 1, m = kM, n = kN, ifail = 1;
  std::vector<double> err(kM, -1.0), fvec = functions(x);
  c05zdf_(&mode, &m, &n, x, nullptr, nullptr, xp, nullptr, nullptr, &ifail);
  EXPECT_EQ(ifail, 0);
  const std::vector<double> fvecp = functions(xp);
  mode = 2;
  c05zdf_(&mode, &m, &n, x, fvec.data(), fjac.data(), xp, fvecp.data(), err.data(), &ifail);
  EXPECT_EQ(ifail, 0);
  return err;
}

}  // namespace

TEST(JacobianCheck, RightPassesAndAWrongColumnIsFlagged) {
  const double x[kN] = {3, -1, 0, 1};
  const std::vector<double> right = jacobian(x);
  for (double e : grades(right)) EXPECT_GE(e, 0.9);

  struct Row {
    int64_t column;
    double factor, shift;       // the column becomes factor * column + shift
    std::vector<bool> flagged;  // the rows expected below 0.5
  };
  const std::vector<Row> rows = {
      {2, -1.0, 0.0, {false, true, true, false, false}},    // sign of d/dx3 wrong
      {0, 10.0, 0.0, {true, false, false, true, false}},    // d/dx1 ten times too large
      {1, 1.0, 1.0, {true, true, true, true, true}},        // d/dx2 shifted by 1: every row, the zero one too
      {3, NAN, 0.0, {true, true, true, true, true}},        // NaN entries
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.column);
    std::vector<double> wrong = right;
    for (int64_t i = 0; i < kM; ++i) wrong[r.column * kM + i] = r.factor * wrong[r.column * kM + i] + r.shift;
    const std::vector<double> err = grades(wrong);
    for (int64_t i = 0; i < kM; ++i) EXPECT_EQ(err[i] < 0.5, r.flagged[i]) << "row " << i << ": " << err[i];
  }
}
