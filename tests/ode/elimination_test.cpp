// The Newton iteration's linear solver: a system that needs row exchanges, and the singular cases.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "ode/elimination.h"

using vek::ode::solve_in_place;

TEST(Elimination, SolvesWithPivotingAndRefusesSingularMatrices) {
  // Column-major J = [0 2 1; 1 1 0; 2 0 3] (a zero first pivot), x = (1, -2, 3), so r = J x = (-1, -1, 11).
  std::vector<double> j = {0, 1, 2, 2, 1, 0, 1, 0, 3};
  std::vector<double> r = {-1, -1, 11};
  ASSERT_TRUE(solve_in_place(3, j.data(), r.data()));
  EXPECT_NEAR(r[0], 1.0, 1e-15);
  EXPECT_NEAR(r[1], -2.0, 1e-15);
  EXPECT_NEAR(r[2], 3.0, 1e-15);

  // A one-by-one system.
  double one = 4.0, rhs = 2.0;
  ASSERT_TRUE(solve_in_place(1, &one, &rhs));
  EXPECT_EQ(rhs, 0.5);

  // Singular: a zero row; dependent rows up to rounding; the zero matrix; a NaN entry.
  std::vector<double> zero_row = {0, 1, 0, 1};
  std::vector<double> r2 = {1, 1};
  EXPECT_FALSE(solve_in_place(2, zero_row.data(), r2.data()));
  std::vector<double> dependent = {1.0, 1.0 / 3, 3.0, 1.0};  // row 2 = row 1 / 3
  EXPECT_FALSE(solve_in_place(2, dependent.data(), r2.data()));
  std::vector<double> zeros(4, 0.0);
  EXPECT_FALSE(solve_in_place(2, zeros.data(), r2.data()));
  std::vector<double> with_nan = {1, 0, 0, std::numeric_limits<double>::quiet_NaN()};
  EXPECT_FALSE(solve_in_place(2, with_nan.data(), r2.data()));
}
