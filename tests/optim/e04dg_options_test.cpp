// The E04DGF option family, a keyword table declared beside E04UCF's and run by the same machinery: what its
// lines store and report, and its start rules and listing. The listed tolerances are those of
// tests/optim/data/listing_values.py (mpmath); 1.00E-08 is (1e-10)^0.8.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "optim/e04dg_options.h"
#include "optim/option_line.h"

namespace vek::optim {
namespace {

using IntParam = int64_t& (e04dg::Store::*)() const;
using RealParam = double& (e04dg::Store::*)() const;

class E04dgOptions : public ::testing::Test {
 protected:
  E04dgOptions() : store(areas) { initialise(store); }

  std::vector<std::string> apply(std::initializer_list<std::string_view> lines) {
    std::vector<std::string> out;
    for (std::string_view line : lines)
      process_line(e04dg::family, store, line, [&](std::string_view r) { out.emplace_back(r); });
    return out;
  }

  // Every element of both areas holds the marker but `element` of the area named.
  void expect_unset_except(char area, int64_t element, const char* line) {
    for (int64_t e = 1; e <= 2 * kBlockLength; ++e) {
      if (!(area == 'I' && e == element)) {
        EXPECT_EQ(store.iwsav(e), kMarker) << line << ": IWSAV " << e;
      }
      if (!(area == 'R' && e == element)) {
        EXPECT_EQ(store.rwsav(e), kRealMarker) << line << ": RWSAV " << e;
      }
    }
  }

  std::vector<std::string> start(int64_t n) {
    std::vector<std::string> listing;
    run = e04dg::start_of_solve(store, {n}, [&](std::string_view r) { listing.emplace_back(r); });
    return listing;
  }

  SaveAreas areas;
  e04dg::Store store;
  SaveAreas run;
};

TEST_F(E04dgOptions, WhatEachLineStores) {
  struct IntRow {
    const char* line;
    IntParam param;
    int64_t element, value;
  };
  const IntRow ints[] = {
      {"Iteration Limit 100", &e04dg::Store::iteration_limit, 1, 100},
      {"Iters 100", &e04dg::Store::iteration_limit, 1, 100},
      {"ITNS=100", &e04dg::Store::iteration_limit, 1, 100},
      {"iterations:99.7", &e04dg::Store::iteration_limit, 1, 99},
      {"Print Level = -1.5", &e04dg::Store::print_level, 2, -1},
      {"Verify", &e04dg::Store::verify_level, 3, 1},
      {"Verify No", &e04dg::Store::verify_level, 3, -1},
      {"Verify Level 7", &e04dg::Store::verify_level, 3, 7},
      {"Verify 0", &e04dg::Store::verify_level, 3, 0},
      {"Verify Objective Gradients", &e04dg::Store::verify_level, 3, 1},
      {"Start Objective Check at Variable 3", &e04dg::Store::start_objective_check, 4, 3},
      {"Stop Objective Check at Variable 5", &e04dg::Store::stop_objective_check, 5, 5},
  };
  for (const IntRow& r : ints) {
    initialise(store);
    EXPECT_TRUE(apply({r.line}).empty()) << r.line;
    EXPECT_EQ((store.*r.param)(), r.value) << r.line;
    expect_unset_except('I', r.element, r.line);
  }
  struct RealRow {
    const char* line;
    RealParam param;
    int64_t element;
    double value;
  };
  const RealRow reals[] = {
      {"Lin 0.5", &e04dg::Store::line_search_tolerance, 3, 0.5},  // no LINEAR here: not ambiguous
      {"Linesearch Tolerance 0.25", &e04dg::Store::line_search_tolerance, 3, 0.25},
      {"Maximum Step Length = 1D3", &e04dg::Store::maximum_step_length, 4, 1000.0},
      {"Optimality Tolerance 1E-8 * was 1E-6", &e04dg::Store::optimality_tolerance, 2, 1e-8},
      {"function,precision:1.0E-12", &e04dg::Store::function_precision, 1, 1e-12},
  };
  for (const RealRow& r : reals) {
    initialise(store);
    EXPECT_TRUE(apply({r.line}).empty()) << r.line;
    EXPECT_EQ((store.*r.param)(), r.value) << r.line;
    expect_unset_except('R', r.element, r.line);
  }
}

TEST_F(E04dgOptions, LinesStoringNothing) {
  const std::pair<const char*, const char*> rows[] = {
      {"Major Iterations 5", " XXX  Keyword not recognized:         MAJOR"},  // E04UCF's keyword, not this table's
      {"IPRMLS 1 = 2", " XXX  Keyword not recognized:         IPRMLS"},
      {"St 3", " XXX  Ambiguous keyword:              ST"},
      {"Li 3", " XXX  Ambiguous keyword:              LI"},  // LINE (LINESEARCH) and LIST
      {"Verify Maybe", " XXX  Second keyword not recognized:  MAYBE"},
      {"Start 3", " XXX  Second keyword not recognized:  3"},
  };
  for (const auto& [line, record] : rows) {
    EXPECT_EQ(apply({line}), std::vector<std::string>{record}) << line;
    expect_unset_except(' ', 0, line);
  }
  EXPECT_TRUE(apply({"* Iter 5", "", "Begin", "List", "Nolist", "End"}).empty());
  expect_unset_except(' ', 0, "comments and directives");
  apply({"Iter 5", "Verify", "Defaults"});
  expect_unset_except(' ', 0, "Defaults");
}

TEST_F(E04dgOptions, StartRulesAndListing) {
  apply({"Iter 5", "Defaults"});
  EXPECT_EQ(start(20), (std::vector<std::string>{
      " Parameters",
      " ----------",
      "",
      " Variables..............        20",
      "",
      " Optimality tolerance...  3.26E-12      Function precision.....  4.37E-15",
      " Line search tolerance..  9.00E-01      Maximum step length....  1.00E+20",
      "",
      " Iteration limit........       100      Print level............        10",
      " Verify level...........         0",
  }));
  apply({"Verify", "Print Level 1", "Optimality Tolerance 1e-20", "Line Search Tolerance 1",
         "Maximum Step Length -3", "Start Objective Check at Variable 7", "Stop Objective Check at Variable 30",
         "Function Precision 1e-10"});
  const std::vector<std::string> listed = start(20);  // the same first records
  ASSERT_EQ(listed.size(), 11u);
  EXPECT_EQ(std::vector<std::string>(listed.begin() + 5, listed.end()), (std::vector<std::string>{
      " Optimality tolerance...  1.00E-08      Function precision.....  1.00E-10",
      " Line search tolerance..  9.00E-01      Maximum step length....  1.00E+20",
      "",
      " Iteration limit........       100      Print level............         1",
      " Verify level...........         1",
      " Objective check start..         7      Objective check stop...        20",
  }));
  EXPECT_EQ(store.optimality_tolerance(), 1e-20);  // the store keeps what was set
  apply({"Print Level 0", "Iteration Limit 0", "Verify Level 7", "Start Objective Check at Variable 3"});
  EXPECT_TRUE(start(3).empty());
  const e04dg::Store p(run);
  EXPECT_EQ(p.iteration_limit(), 0);  // only a negative limit is replaced
  EXPECT_EQ(p.verify_level(), 0);
  EXPECT_EQ(p.stop_objective_check(), 3);
  EXPECT_EQ(p.start_objective_check(), 3);
}

}  // namespace
}  // namespace vek::optim
