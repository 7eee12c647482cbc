// One option line applied to a local E04UCF store: what each line stores, what it leaves alone, and every
// record it writes.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "optim/e04uc_options.h"
#include "optim/option_line.h"

namespace vek::optim {
namespace {

class OptionLine : public ::testing::Test {
 protected:
  OptionLine() : store(areas) { initialise(store); }

  // Applies the lines in turn; the records written.
  std::vector<std::string> apply(std::initializer_list<std::string_view> lines) {
    std::vector<std::string> out;
    for (std::string_view line : lines)
      process_line(e04uc::family, store, line, [&](std::string_view r) { out.emplace_back(r); });
    return out;
  }

  // Every parameter element still holds the marker, except those named.
  void expect_unset_except(std::initializer_list<int64_t> ints, std::initializer_list<int64_t> reals) {
    for (int64_t e = 1; e <= 2 * kBlockLength; ++e) {
      if (std::find(ints.begin(), ints.end(), e) == ints.end()) {
        EXPECT_EQ(store.iwsav(e), kMarker) << "IWSAV " << e;
      }
      if (std::find(reals.begin(), reals.end(), e) == reals.end()) {
        EXPECT_EQ(store.rwsav(e), kRealMarker) << "RWSAV " << e;
      }
    }
  }

  SaveAreas areas;
  e04uc::Store store;
};

TEST_F(OptionLine, IterationLimitSpelledThreeWays) {
  for (const char* line : {"Iter 100", "ITNS=100", "Major Iterations Limit 100", "iters:100", "Major Itns 100"}) {
    initialise(store);
    EXPECT_TRUE(apply({line}).empty()) << line;
    EXPECT_EQ(store.major_iterations(), 100) << line;
    expect_unset_except({1}, {});
  }
}

TEST_F(OptionLine, LineIsExactAndLinAmbiguous) {
  EXPECT_TRUE(apply({"Line 0.5"}).empty());
  EXPECT_EQ(store.line_search_tolerance(), 0.5);
  EXPECT_TRUE(apply({"Linesearch Tolerance 0.25"}).empty());
  EXPECT_EQ(store.line_search_tolerance(), 0.25);
  EXPECT_EQ(apply({"Lin 0.7"}), std::vector<std::string>{" XXX  Ambiguous keyword:              LIN"});
  EXPECT_EQ(store.line_search_tolerance(), 0.25);
  expect_unset_except({}, {9});
  EXPECT_TRUE(apply({"Linear Feasibility Tolerance 1e-6", "Linear Constraints 4"}).empty());
  EXPECT_EQ(store.linear_feasibility(), 1e-6);
  EXPECT_EQ(store.linear_constraints(), 4);
}

TEST_F(OptionLine, CommentsAndEmptyLines) {
  EXPECT_TRUE(apply({"Step Limit = 2.0 * was 1.0"}).empty());
  EXPECT_EQ(store.step_limit(), 2.0);
  EXPECT_TRUE(apply({"* Step Limit = 5.0", "", "     ", "*", "  * Iter 5"}).empty());
  EXPECT_EQ(store.step_limit(), 2.0);
  expect_unset_except({}, {8});
}

TEST_F(OptionLine, ValuesAndTruncation) {
  EXPECT_TRUE(apply({"Major Iterations Limit 99.7", "Minor Iterations -1.5", "Crash Tolerance 1D-3",
                     "Function Precision = 1.0E-12", "step,limit:3", "Monitoring File"}).empty());
  EXPECT_EQ(store.major_iterations(), 99);
  EXPECT_EQ(store.minor_iterations(), -1);
  EXPECT_EQ(store.iprmls()[0], -1);  // the minor limit is IPRMLS(1)
  EXPECT_EQ(store.crash_tolerance(), 1e-3);
  EXPECT_EQ(store.function_precision(), 1e-12);
  EXPECT_EQ(store.step_limit(), 3.0);
  EXPECT_EQ(store.monitoring_unit(), 0);  // no number: 0.0
  // The value is the first numeric token after the keyword, wherever it stands.
  EXPECT_TRUE(apply({"Derivative 2 Level 3", "Optimality Tolerance is about 1E-8 or so"}).empty());
  EXPECT_EQ(store.derivative_level(), 2);
  EXPECT_EQ(store.optimality_tolerance(), 1e-8);
  // A number past column 72 is not read.
  EXPECT_TRUE(apply({"Major Print Level" + std::string(53, ' ') + "12345"}).empty());
  EXPECT_EQ(store.major_print_level(), 12);
}

TEST_F(OptionLine, LowerCaseAndSynonymsOfSecondKeywords) {
  EXPECT_TRUE(apply({"major print level 5", "Problem No. 7", "Problem Number 8", "problem 9",
                     "minor iters 30"}).empty());
  EXPECT_EQ(store.major_print_level(), 5);
  EXPECT_EQ(store.problem_number(), 9);
  EXPECT_EQ(store.minor_iterations(), 30);
}

TEST_F(OptionLine, VerifyForms) {
  struct Case {
    const char* line;
    int64_t level;
  };
  for (const Case& c : {Case{"VERIFY", 3}, Case{"Verify No", -1}, Case{"Verify Level 7", 7}, Case{"Verify 2", 2},
                        Case{"Verify = 13", 13}, Case{"Verify Yes", 3}, Case{"Verify Gradients", 3},
                        Case{"Verify Objective Gradients", 1}, Case{"Verify Constraint Gradients", 2},
                        Case{"Verify * later", 3}, Case{"Verify Level", 0}}) {
    initialise(store);
    EXPECT_TRUE(apply({c.line}).empty()) << c.line;
    EXPECT_EQ(store.verify_level(), c.level) << c.line;
  }
  initialise(store);
  EXPECT_EQ(apply({"Verify Maybe"}), std::vector<std::string>{" XXX  Second keyword not recognized:  MAYBE"});
  EXPECT_EQ(apply({"Verify N"}), std::vector<std::string>{" XXX  Second keyword not recognized:  N"});
  expect_unset_except({}, {});
}

TEST_F(OptionLine, SwitchesAndStartModes) {
  EXPECT_TRUE(apply({"Hessian Yes"}).empty());
  EXPECT_EQ(store.hessian(), 1);
  EXPECT_TRUE(apply({"Hessian No"}).empty());
  EXPECT_EQ(store.hessian(), 0);
  EXPECT_TRUE(apply({"Hessian Yes", "Hessian Perhaps"}).empty());  // anything but YES is NO
  EXPECT_EQ(store.hessian(), 0);
  EXPECT_TRUE(apply({"Warm Start"}).empty());
  EXPECT_EQ(store.start_mode(), 1);
  EXPECT_TRUE(apply({"Cold Start 5"}).empty());  // the number is ignored
  EXPECT_EQ(store.start_mode(), 0);
}

TEST_F(OptionLine, KeywordsNeedingASecondKeyword) {
  const std::vector<std::string> out = apply({"Major 100", "Infinite 1e10", "Nonlinear Feasibility 1e-5",
                                              "Infinite Bound Size = -1", "Infinite Step 1e25", "Start Objective 2",
                                              "Stop Constraints 5", "Major Bogus 3", "Minor"});
  EXPECT_EQ(out, (std::vector<std::string>{" XXX  Second keyword not recognized:  100",
                                           " XXX  Second keyword not recognized:  1E10",
                                           " XXX  Second keyword not recognized:  BOGUS",
                                           std::string(kSecondNotRecognized)}));
  EXPECT_EQ(store.nonlinear_feasibility(), 1e-5);
  EXPECT_EQ(store.infinite_bound(), -1.0);
  EXPECT_EQ(store.infinite_step(), 1e25);
  EXPECT_EQ(store.start_objective_check(), 2);
  EXPECT_EQ(store.stop_constraint_check(), 5);
  expect_unset_except({8, 11}, {3, 6, 7});
}

TEST_F(OptionLine, FeasibilitySetsBothTolerancesAndRowTheNonlinearOne) {
  EXPECT_TRUE(apply({"Feasibility Tolerance 1e-7"}).empty());
  EXPECT_EQ(store.linear_feasibility(), 1e-7);
  EXPECT_EQ(store.nonlinear_feasibility(), 1e-7);
  EXPECT_TRUE(apply({"Row Tolerance 1e-9"}).empty());
  EXPECT_EQ(store.linear_feasibility(), 1e-7);
  EXPECT_EQ(store.nonlinear_feasibility(), 1e-9);
}

TEST_F(OptionLine, UnknownAndAmbiguousKeywordsStoreNothing) {
  EXPECT_EQ(apply({"Iterate 5", "Banana 3", "St 4", "Major Iterations Limit 7"}),
            (std::vector<std::string>{" XXX  Keyword not recognized:         ITERATE",
                                      " XXX  Keyword not recognized:         BANANA",
                                      " XXX  Ambiguous keyword:              ST"}));
  expect_unset_except({1}, {});
  EXPECT_EQ(store.major_iterations(), 7);
}

TEST_F(OptionLine, ErrorRecordsOnlyWhenListing) {
  store.set_listing(false);
  EXPECT_TRUE(apply({"Banana 3", "Lin 2", "Major 4", "IPRMLS 31 = 5"}).empty());
  expect_unset_except({}, {});
}

TEST_F(OptionLine, SubscriptedBlocks) {
  EXPECT_TRUE(apply({"IPRMLS 3 = 5", "RPRMLS 30 = 0.5", "IPRMLS 1 = 77", "RPRMLS 2.9 4.5"}).empty());
  EXPECT_EQ(store.iprmls()[2], 5);
  EXPECT_EQ(store.iwsav(33), 5);
  EXPECT_EQ(store.rprmls()[29], 0.5);
  EXPECT_EQ(store.minor_iterations(), 77);  // IPRMLS(1) is the minor iterations limit
  EXPECT_EQ(store.crash_tolerance(), 4.5);  // RPRMLS(2): the subscript truncated
  EXPECT_EQ(apply({"IPRMLS 31 = 5", "RPRMLS 0 = 1", "IPRMLS -3 9", "RPRMLS", "IPRMLS 1E30 2"}),
            (std::vector<std::string>{" XXX  The PARM subscript is out of range: 31",
                                      " XXX  The PARM subscript is out of range: 0",
                                      " XXX  The PARM subscript is out of range: -3",
                                      " XXX  The PARM subscript is out of range: 0",
                                      " XXX  The PARM subscript is out of range: 9223372036854775807"}));
  expect_unset_except({31, 33}, {32, 60});
}

TEST_F(OptionLine, DefaultsAndDirectives) {
  apply({"Iter 100", "Crash Tolerance 0.5", "IPRMLS 5 = 1"});
  EXPECT_TRUE(apply({"Defaults"}).empty());
  const RecordSink no_records = [](std::string_view r) { ADD_FAILURE() << "wrote " << r; };
  expect_unset_except({}, {});
  EXPECT_EQ(process_line(e04uc::family, store, "Begin", no_records).directive, Directive::begin);
  EXPECT_EQ(process_line(e04uc::family, store, "End", no_records).directive, Directive::end);
  EXPECT_EQ(process_line(e04uc::family, store, "List", no_records).directive, Directive::list);
  EXPECT_EQ(process_line(e04uc::family, store, "nolist 5", no_records).directive, Directive::nolist);
  const LineResult begin = process_line(e04uc::family, store, "BEGIN NOLIST", no_records);
  EXPECT_EQ(begin.directive, Directive::begin);
  EXPECT_EQ(begin.after_begin, Directive::nolist);
  EXPECT_EQ(process_line(e04uc::family, store, "Begin Lis", no_records).after_begin, Directive::list);
  EXPECT_EQ(process_line(e04uc::family, store, "Begin Iter", no_records).after_begin, Directive::none);
  EXPECT_EQ(process_line(e04uc::family, store, "Iter 5", no_records).directive, Directive::none);
  // The directives change nothing in the store.
  EXPECT_TRUE(store.listing());
  expect_unset_except({1}, {});
}

TEST_F(OptionLine, PendingResetComesFirst) {
  for (int64_t e = 1; e <= 2 * kBlockLength; ++e) {
    store.iwsav(e) = 1;
    store.rwsav(e) = 1.0;
  }
  store.set_reset_pending(true);
  apply({"Iter 10"});
  EXPECT_FALSE(store.reset_pending());
  expect_unset_except({1}, {});
  apply({"Crash Tolerance 0.1"});  // no further reset
  EXPECT_EQ(store.major_iterations(), 10);
}

}  // namespace
}  // namespace vek::optim
