// The option routines through their exported entries: E04UEF and E04UDF on the E04UCF family's
// library-global store, E04DKF and E04DJF on the E04DGF family's; the records on the advisory unit (captured
// in a file), the Major print level rule, and options files read through the units.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "optim/e04dg_options.h"
#include "optim/e04uc_options.h"
#include "support/unit_capture.h"
#include "vek.h"

namespace vek::optim {
namespace {

class OptionRoutines : public ::testing::Test {
 protected:
  // Each test starts from a freshly initialised store, as a new process would.
  OptionRoutines() {
    initialise(e04uc::global_store());
    initialise(e04dg::global_store());
  }

  static void set(const std::string& line) { e04uef_(line.data(), static_cast<int64_t>(line.size())); }

  static std::vector<std::string> set_all(std::initializer_list<std::string> lines) {
    testing::UnitCapture capture;
    for (const std::string& line : lines) set(line);
    return capture.lines();
  }

  // The listing of a solver start on the global store, for n = 3 and no constraints.
  static std::vector<std::string> solver_listing() {
    std::vector<std::string> out;
    e04uc::start_of_solve(e04uc::global_store(), {3, 0, 0}, [&](std::string_view r) { out.emplace_back(r); });
    return out;
  }

  static e04uc::Store store() { return e04uc::global_store(); }
};

TEST_F(OptionRoutines, HeaderOnTheFirstCallThenEchoes) {
  EXPECT_EQ(set_all({"Iter 100", "Crash Tolerance = 0.5", "* a comment"}),
            (std::vector<std::string>{" Calls to E04UEF", " ---------------", " Iter 100",
                                      " Crash Tolerance = 0.5", " * a comment"}));
  EXPECT_EQ(store().major_iterations(), 100);
  EXPECT_EQ(store().crash_tolerance(), 0.5);
  EXPECT_EQ(set_all({"Lin 3"}), (std::vector<std::string>{" Lin 3", " XXX  Ambiguous keyword:              LIN"}));
}

TEST_F(OptionRoutines, ErrorInTheFirstLineComesBeforeTheHeader) {
  EXPECT_EQ(set_all({"Banana Split", "Major 7"}),
            (std::vector<std::string>{" XXX  Keyword not recognized:         BANANA", " Calls to E04UEF",
                                      " ---------------", " Banana Split", " Major 7",
                                      " XXX  Second keyword not recognized:  7"}));
}

TEST_F(OptionRoutines, NolistAndList) {
  EXPECT_TRUE(set_all({"Nolist", "Iter 5", "Banana", "List"}).empty());
  EXPECT_EQ(store().major_iterations(), 5);
  EXPECT_EQ(set_all({"Crash Tolerance 0.25", "NOLIST", "Iter 6"}),
            (std::vector<std::string>{" Crash Tolerance 0.25", " NOLIST"}));
  EXPECT_EQ(store().major_iterations(), 6);
  // The header waits for a first call with listing: a first LIST line prints it.
  initialise(store());
  EXPECT_EQ(set_all({"List"}), (std::vector<std::string>{" Calls to E04UEF", " ---------------", " List"}));
}

TEST_F(OptionRoutines, LineCutAt72AndHiddenLength) {
  const std::string line = "Major Iterations Limit" + std::string(48, ' ') + "12345";
  const auto out = set_all({line});
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[2], " Major Iterations Limit" + std::string(48, ' ') + "12");
  EXPECT_EQ(store().major_iterations(), 12);
  // Only STR(1:len) is read.
  e04uef_("Iter 100XYZ", 8);
  EXPECT_EQ(store().major_iterations(), 100);
  // A zero or negative length is an empty line.
  e04uef_("Iter 200", 0);
  e04uef_("Iter 300", -4);
  EXPECT_EQ(store().major_iterations(), 100);
}

// The Major print level still unset after an option call becomes 10; the solver alone leaves it at 0.
TEST_F(OptionRoutines, MajorPrintLevelRule) {
  EXPECT_TRUE(solver_listing().empty());
  EXPECT_EQ(store().major_print_level(), kMarker);
  set_all({"Iter 60"});
  EXPECT_EQ(store().major_print_level(), 10);
  EXPECT_EQ(solver_listing().size(), 22u);
  // DEFAULTS followed by a solve: the table's defaults, listed (the call put the 10 back).
  set_all({"Defaults"});
  EXPECT_EQ(store().major_iterations(), kMarker);
  EXPECT_EQ(store().major_print_level(), 10);
  const auto listing = solver_listing();
  ASSERT_EQ(listing.size(), 22u);
  EXPECT_EQ(listing[0], " Parameters");
  EXPECT_EQ(listing[18], " Major iterations limit.        50      Major print level......        10");
  // Print Level = 0 after DEFAULTS silences the listing.
  set_all({"Defaults", "Print Level = 0"});
  EXPECT_EQ(store().major_print_level(), 0);
  EXPECT_TRUE(solver_listing().empty());
}

// E04DKF: its own header and store, and no print-level rule (the E04DGF solver's own default is 10).
TEST_F(OptionRoutines, E04dkfOnItsOwnStore) {
  testing::UnitCapture capture;
  for (const std::string line : {"Iter 60", "Lin 0.5", "Major Print Level 5"})
    e04dkf_(line.data(), static_cast<int64_t>(line.size()));
  EXPECT_EQ(capture.lines(),
            (std::vector<std::string>{" Calls to E04DKF", " ---------------", " Iter 60", " Lin 0.5",
                                      " Major Print Level 5", " XXX  Keyword not recognized:         MAJOR"}));
  EXPECT_EQ(e04dg::global_store().iteration_limit(), 60);
  EXPECT_EQ(e04dg::global_store().line_search_tolerance(), 0.5);
  EXPECT_EQ(e04dg::global_store().print_level(), kMarker);
  EXPECT_EQ(store().major_iterations(), kMarker);
}

TEST_F(OptionRoutines, NothingPrintedOnANegativeAdvisoryUnit) {
  int64_t saved = 0;
  const int64_t get = 0, put = 1;
  int64_t none = -1;
  x04abf_(&get, &saved);
  x04abf_(&put, &none);
  set("Banana");
  set("Iter 7");
  x04abf_(&put, &saved);
  EXPECT_EQ(store().major_iterations(), 7);
  EXPECT_EQ(store().advisory_unit(), -1);
}

class OptionsFileRoutine : public OptionRoutines {
 protected:
  static constexpr int64_t kUnit = 72;

  ~OptionsFileRoutine() override {
    int64_t ifail = 1;
    x04adf_(&kUnit, &ifail);
    std::remove(path_.c_str());
  }

  // Writes `records` to a file and opens it for reading on unit 72.
  void file(const std::vector<std::string>& records) {
    std::ofstream f(path_);
    for (const std::string& r : records) f << r << '\n';
    f.close();
    const int64_t mode = 0;
    int64_t ifail = 1;
    x04acf_(&kUnit, path_.c_str(), &mode, &ifail, static_cast<int64_t>(path_.size()));
    ASSERT_EQ(ifail, 0);
  }

  // E04UDF on `unit`: INFORM and the records written.
  static std::pair<int64_t, std::vector<std::string>> read(int64_t unit = kUnit) {
    testing::UnitCapture capture;
    int64_t inform = -7;
    e04udf_(&unit, &inform);
    return {inform, capture.lines()};
  }

  std::string path_ = ::testing::TempDir() + "vek_options_" + std::to_string(getpid()) + ".txt";
};

TEST_F(OptionsFileRoutine, Inform0) {
  file({"Begin", "  Iter 100", "  Verify No", "End"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 0);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", "   Iter 100",
                                           "   Verify No", " End"}));
  EXPECT_EQ(store().major_iterations(), 100);
  EXPECT_EQ(store().verify_level(), -1);
  EXPECT_EQ(store().major_print_level(), 10);
  // The first E04UEF call afterwards still prints its header.
  EXPECT_EQ(set_all({"Iter 5"}), (std::vector<std::string>{" Calls to E04UEF", " ---------------", " Iter 5"}));
}

TEST_F(OptionsFileRoutine, Inform1) {
  for (int64_t unit : {-1, 100}) {
    const auto [inform, out] = read(unit);
    EXPECT_EQ(inform, 1);
    EXPECT_TRUE(out.empty());
  }
  EXPECT_EQ(store().major_print_level(), 10);
}

TEST_F(OptionsFileRoutine, Inform2) {
  file({"Begin", "Iter 100"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 2);
  EXPECT_EQ(out, (std::vector<std::string>{
                     " OPTIONS file", " ------------", " Begin", " Iter 100",
                     " XXX  End-of-file encountered while processing an OPTIONS file on unit 72"}));
}

TEST_F(OptionsFileRoutine, Inform3) {
  file({"Skip", "Iter 100"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 3);
  EXPECT_EQ(out, std::vector<std::string>{" XXX  End-of-file encountered while looking for an OPTIONS file on unit 72"});
  // No file open on the unit: cannot be read.
  const auto [inform_closed, out_closed] = read(73);
  EXPECT_EQ(inform_closed, 3);
  EXPECT_EQ(out_closed,
            std::vector<std::string>{" XXX  End-of-file encountered while looking for an OPTIONS file on unit 73"});
  EXPECT_EQ(store().major_iterations(), kMarker);
}

TEST_F(OptionsFileRoutine, Inform4) {
  file({"Endrun", "Begin", "Iter 100", "End"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 4);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(store().major_iterations(), kMarker);
}

TEST_F(OptionsFileRoutine, Inform5) {
  file({"Iter 5", "Skip", "Begin", "Iter 9", "End"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 5);
  EXPECT_EQ(out, (std::vector<std::string>{" XXX  Error while looking for an OPTIONS file on unit 72",
                                           " XXX  The file should start with BEGIN, SKIP or ENDRUN",
                                           " XXX  but the first record found was the following:",
                                           " Iter 5",
                                           " ---",
                                           " XXX  Continuing to look for OPTIONS file...",
                                           " OPTIONS file",
                                           " ------------",
                                           " Begin",
                                           " Iter 9",
                                           " End"}));
  EXPECT_EQ(store().major_iterations(), 9);
}

// A file of several blocks, each after SKIP lines: each call reads the next block from the unit.
TEST_F(OptionsFileRoutine, SeveralBlocksReadInTurn) {
  file({"Skip  the first block", "Begin", "Iter 10", "End", "Skip", "Skip  the second block", "Begin",
        "Iter 20", "End"});
  const auto [first, first_out] = read();
  EXPECT_EQ(first, 0);
  EXPECT_EQ(first_out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", " Iter 10", " End"}));
  EXPECT_EQ(store().major_iterations(), 10);
  const auto [second, second_out] = read();
  EXPECT_EQ(second, 0);
  EXPECT_EQ(second_out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", " Iter 20", " End"}));
  EXPECT_EQ(store().major_iterations(), 20);
  const auto [third, third_out] = read();
  EXPECT_EQ(third, 3);
  EXPECT_EQ(third_out,
            std::vector<std::string>{" XXX  End-of-file encountered while looking for an OPTIONS file on unit 72"});
}

// E04DJF reads into the E04DGF family's store alone.
TEST_F(OptionsFileRoutine, E04djfOnItsOwnStore) {
  file({"Begin", "Iteration Limit 70", "Verify No", "End"});
  testing::UnitCapture capture;
  int64_t unit = kUnit, inform = -7;
  e04djf_(&unit, &inform);
  EXPECT_EQ(inform, 0);
  EXPECT_EQ(capture.lines(), (std::vector<std::string>{" OPTIONS file", " ------------", " Begin",
                                                       " Iteration Limit 70", " Verify No", " End"}));
  EXPECT_EQ(e04dg::global_store().iteration_limit(), 70);
  EXPECT_EQ(e04dg::global_store().verify_level(), -1);
  EXPECT_EQ(e04dg::global_store().print_level(), kMarker);
  EXPECT_EQ(store().major_iterations(), kMarker);
  unit = 100;
  e04djf_(&unit, &inform);
  EXPECT_EQ(inform, 1);
}

TEST_F(OptionsFileRoutine, BeginNolistSilencesTheFile) {
  file({"Begin Nolist", "Iter 8", "Banana", "End"});
  const auto [inform, out] = read();
  EXPECT_EQ(inform, 0);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(store().major_iterations(), 8);
  // The first E04UEF call sets listing on again, as every first call does.
  EXPECT_EQ(set_all({"Iter 9"}), (std::vector<std::string>{" Calls to E04UEF", " ---------------", " Iter 9"}));
}

}  // namespace
}  // namespace vek::optim
