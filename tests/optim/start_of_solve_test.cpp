// The solver's start for the E04UCF option set: the defaults and range rules applied to a copy of the store,
// and the parameter listing, record by record. The default tolerances are checked against the values of
// tests/optim/data/listing_values.py (mpmath).
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "optim/e04uc_options.h"
#include "optim/option_line.h"

namespace vek::optim {
namespace {

// From data/listing_values.py.
constexpr double kFunctionPrecision = 4.37390359787e-15;     // eps^0.9
constexpr double kOptimality = 3.25608223985e-12;            // eps_R^0.8
constexpr double kHalfDigits = 1.05367121277e-8;             // eps^0.5
constexpr double kThirdDigits = 5.43232038726e-6;            // eps^0.33
constexpr double kConditionBound = 94906265.6243;            // eps^-0.5
constexpr double kCentralInterval = 1.82594141118e-5;        // eps_R^0.33
constexpr double kHalfToThePower08 = 0.574349177499;         // 0.5^0.8

class StartOfSolve : public ::testing::Test {
 protected:
  StartOfSolve() : store(areas) { initialise(store); }

  void set(std::initializer_list<std::string_view> lines) {
    for (std::string_view line : lines)
      process_line(e04uc::family, store, line, [&](std::string_view r) { ADD_FAILURE() << "wrote " << r; });
  }

  // Starts a solve with sizes `in`; the parameters in force.
  e04uc::Store start(e04uc::Inputs in) {
    listing.clear();
    run = e04uc::start_of_solve(store, in, [&](std::string_view r) { listing.emplace_back(r); });
    return e04uc::Store(run);
  }

  SaveAreas areas;
  e04uc::Store store;
  SaveAreas run;
  std::vector<std::string> listing;
};

void expect_near_relative(double value, double reference, const char* what) {
  EXPECT_NEAR(value / reference, 1.0, 1e-11) << what << " = " << value;
}

TEST_F(StartOfSolve, DefaultsAfterDefaults) {
  set({"Iter 5", "Crash Tolerance 0.5", "Verify", "Defaults"});
  const e04uc::Store p = start({10, 5, 4});
  EXPECT_TRUE(listing.empty());  // the solver's own print level: 0
  EXPECT_EQ(p.major_iterations(), 85);  // max(50, 3 (n + nL) + 10 nN)
  EXPECT_EQ(p.minor_iterations(), 57);  // max(50, 3 (n + nL + nN))
  EXPECT_EQ(p.major_print_level(), 0);
  EXPECT_EQ(p.minor_print_level(), 0);
  EXPECT_EQ(p.derivative_level(), 3);
  EXPECT_EQ(p.verify_level(), 0);
  EXPECT_EQ(p.start_mode(), 0);
  EXPECT_EQ(p.hessian(), 0);
  EXPECT_EQ(p.monitoring_unit(), -1);
  EXPECT_EQ(p.start_objective_check(), 1);
  EXPECT_EQ(p.stop_objective_check(), 10);
  EXPECT_EQ(p.start_constraint_check(), 1);
  EXPECT_EQ(p.stop_constraint_check(), 10);
  EXPECT_EQ(p.nonlinear_jacobian_variables(), 10);
  EXPECT_EQ(p.nonlinear_objective_variables(), 10);
  EXPECT_EQ(p.nonlinear_variables(), 10);
  expect_near_relative(p.function_precision(), kFunctionPrecision, "function precision");
  expect_near_relative(p.optimality_tolerance(), kOptimality, "optimality tolerance");
  expect_near_relative(p.linear_feasibility(), kHalfDigits, "linear feasibility");
  expect_near_relative(p.nonlinear_feasibility(), kHalfDigits, "nonlinear feasibility");
  expect_near_relative(p.condition_bound(), kConditionBound, "condition bound");
  EXPECT_EQ(p.crash_tolerance(), 0.01);
  EXPECT_EQ(p.line_search_tolerance(), 0.9);
  EXPECT_EQ(p.step_limit(), 2.0);
  EXPECT_EQ(p.infinite_bound(), 9.9999e19);
  EXPECT_EQ(p.infinite_step(), 9.9999e19);
  // Intervals to be computed: the central interval is left to the solver as well.
  EXPECT_EQ(p.difference_interval(), kRealMarker);
  EXPECT_EQ(p.central_interval(), kRealMarker);
  // Stored-only values keep the marker; so does the store itself.
  EXPECT_EQ(p.problem_number(), kMarker);
  EXPECT_EQ(store.major_iterations(), kMarker);
  EXPECT_EQ(store.crash_tolerance(), kRealMarker);
}

TEST_F(StartOfSolve, ListingOfTheDefaults) {
  set({"Major Print Level 10"});
  start({10, 5, 4});
  EXPECT_EQ(listing, (std::vector<std::string>{
      " Parameters",
      " ----------",
      "",
      " Variables..............        10      Linear constraints.....         5",
      " Nonlinear constraints..         4",
      "",
      " Infinite bound size....  1.00E+20      Start mode.............      COLD",
      " Infinite step size.....  1.00E+20      Hessian................        NO",
      " Step limit.............  2.00E+00",
      "",
      " Linear feasibility.....  1.05E-08      Crash tolerance........  1.00E-02",
      " Nonlinear feasibility..  1.05E-08      Optimality tolerance...  3.26E-12",
      " Line search tolerance..  9.00E-01      Function precision.....  4.37E-15",
      " Condition bound........  9.49E+07",
      "",
      " Derivative level.......         3      Monitoring file........        -1",
      " Verify level...........         0",
      "",
      " Major iterations limit.        85      Major print level......        10",
      " Minor iterations limit.        57      Minor print level......         0",
      "",
      " Difference intervals to be computed.",
  }));
}

TEST_F(StartOfSolve, ListingWithChecksAndUserIntervals) {
  set({"Print Level 1", "Difference Interval 1e-6", "Verify Level 1", "Derivative Level 1",
       "Start Objective Check at Variable 3", "Stop Objective Check at Variable 20", "Warm Start", "Hessian Yes",
       "Monitoring File 9", "Minor Print Level 5", "Infinite Bound Size 1e15"});
  const e04uc::Store p = start({10, 0, 2});
  expect_near_relative(p.central_interval(), kCentralInterval, "central interval");
  expect_near_relative(p.nonlinear_feasibility(), kThirdDigits, "nonlinear feasibility, differenced Jacobian");
  EXPECT_EQ(p.monitoring_unit(), 9);  // the minor print level reaches 5
  EXPECT_EQ(p.infinite_step(), 9.9999e19);
  EXPECT_EQ(listing, (std::vector<std::string>{
      " Parameters",
      " ----------",
      "",
      " Variables..............        10      Linear constraints.....         0",
      " Nonlinear constraints..         2",
      "",
      " Infinite bound size....  1.00E+15      Start mode.............      WARM",
      " Infinite step size.....  1.00E+20      Hessian................       YES",
      " Step limit.............  2.00E+00",
      "",
      " Linear feasibility.....  1.05E-08      Crash tolerance........  1.00E-02",
      " Nonlinear feasibility..  5.43E-06      Optimality tolerance...  3.26E-12",
      " Line search tolerance..  9.00E-01      Function precision.....  4.37E-15",
      " Condition bound........  9.49E+07",
      "",
      " Derivative level.......         1      Monitoring file........         9",
      " Verify level...........         1",
      " Objective check start..         3      Objective check stop...        10",
      " Constraint check start.         1      Constraint check stop..        10",
      "",
      " Major iterations limit.        50      Major print level......         1",
      " Minor iterations limit.        50      Minor print level......         5",
      "",
      " User-supplied difference intervals.",
      " Difference interval....  1.00E-06      Central interval.......  1.83E-05",
  }));
}

TEST_F(StartOfSolve, RangeRules) {
  set({"Verify Level 7", "Infinite Bound Size = -1", "Derivative Level 5", "Hessian Yes", "IPRMLS 30 = 4",
       "Crash Tolerance 1.0", "Line Search Tolerance -0.1", "Optimality Tolerance 1e-20", "Step Limit 0",
       "Condition Bound 0.5", "Function Precision 0.5", "Major Iterations 0", "Minor Iterations 0",
       "Start Constraints Check 5", "Stop Constraints Check 3", "Monitoring File 9", "Central Interval 0.5"});
  store.hessian() = 2;  // beyond what a line can set: the rule still applies
  store.start_mode() = 3;
  const e04uc::Store p = start({4, 1, 1});
  EXPECT_EQ(p.verify_level(), 0);
  EXPECT_EQ(p.infinite_bound(), 9.9999e19);
  EXPECT_EQ(p.derivative_level(), 3);
  EXPECT_EQ(p.hessian(), 0);
  EXPECT_EQ(p.start_mode(), 0);
  EXPECT_EQ(p.crash_tolerance(), 0.01);
  EXPECT_EQ(p.line_search_tolerance(), 0.9);
  EXPECT_EQ(p.function_precision(), 0.5);  // in [eps, 1): kept
  expect_near_relative(p.optimality_tolerance(), kHalfToThePower08, "optimality tolerance for eps_R = 0.5");
  EXPECT_EQ(p.step_limit(), 2.0);
  EXPECT_NEAR(p.condition_bound(), kConditionBound, 1e-4);
  EXPECT_EQ(p.major_iterations(), 0);  // only a negative limit is replaced
  EXPECT_EQ(p.minor_iterations(), 50);
  EXPECT_EQ(p.stop_constraint_check(), 3);
  EXPECT_EQ(p.start_constraint_check(), 1);  // beyond the stop value
  EXPECT_EQ(p.monitoring_unit(), -1);  // both print levels below 5
  EXPECT_EQ(p.central_interval(), 0.5);  // in range: kept, though the intervals are computed
  EXPECT_EQ(p.iprmls()[29], 4);  // unnamed elements pass unchanged
  // Stored values are never overwritten.
  EXPECT_EQ(store.verify_level(), 7);
  EXPECT_EQ(store.infinite_bound(), -1.0);
  EXPECT_EQ(store.hessian(), 2);
  // Infinite step: the larger of 9.9999e19 and the infinite bound.
  set({"Infinite Bound 1e30", "Infinite Step -5"});
  EXPECT_EQ(start({4, 1, 1}).infinite_step(), 1e30);
  set({"Infinite Step 1e10"});
  EXPECT_EQ(start({4, 1, 1}).infinite_step(), 1e10);
  set({"Function Precision 1.0", "Optimality Tolerance 0.5"});
  const e04uc::Store q = start({4, 1, 1});
  expect_near_relative(q.function_precision(), kFunctionPrecision, "function precision");
  EXPECT_EQ(q.optimality_tolerance(), 0.5);
}

TEST_F(StartOfSolve, HugeSizesSaturate) {
  constexpr int64_t big = std::numeric_limits<int64_t>::max();
  const e04uc::Store p = start({big, big, big});
  EXPECT_EQ(p.major_iterations(), big);
  EXPECT_EQ(p.minor_iterations(), big);
  EXPECT_EQ(p.stop_objective_check(), big);
  const e04uc::Store q = start({-5, 0, 0});  // sizes the solver would reject: still defined
  EXPECT_EQ(q.major_iterations(), 50);
  EXPECT_EQ(q.stop_objective_check(), -5);
  EXPECT_EQ(q.start_objective_check(), 1);
}

TEST_F(StartOfSolve, PendingResetAndFlags) {
  set({"Iter 9", "Nolist"});
  store.set_reset_pending(true);
  const e04uc::Store p = start({3, 0, 0});
  EXPECT_EQ(p.major_iterations(), 50);
  EXPECT_FALSE(p.reset_pending());
  EXPECT_TRUE(store.reset_pending());  // the store is untouched
  EXPECT_EQ(store.major_iterations(), 9);
}

}  // namespace
}  // namespace vek::optim
