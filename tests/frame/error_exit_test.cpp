// The error exit through the exported entries: which IFAIL values print, which stop, the exact report.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/capture.h"
#include "vek.h"

using vek::testing::console_lines;
using vek::testing::file_lines;
using Lines = std::vector<std::string>;

namespace {

// x04acf with MODE = 7 fails with IFAIL 1 and the MODE message pair.
int64_t open_with_bad_mode(int64_t ifail) {
  const int64_t unit = 31, mode = 7;
  x04acf_(&unit, "unused.txt", &mode, &ifail, 10);
  return ifail;
}

const Lines kModeReport = {
    " ** On entry, MODE = 7.",
    " ** Constraint: 0 <= MODE <= 2.",
    " ** ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     1",
    " ** VEK soft failure - control returned",
};

int64_t exit_two_digit(int64_t ifail, int64_t ierr) {
  const int64_t nrec = 1;
  const char rec[] = " ** A record.";
  return p01abyu_(&ifail, &ierr, "ROUTIN", &nrec, rec, 6, sizeof rec - 1);
}

}  // namespace

TEST(ErrorExit, SoftFailurePrintedOnlyForMinusOne) {
  int64_t result = 0;
  EXPECT_EQ(console_lines([&] { result = open_with_bad_mode(-1); }), kModeReport);
  EXPECT_EQ(result, 1);
  for (int64_t quiet : {1, 5, -7, 99}) {
    EXPECT_TRUE(console_lines([&] { result = open_with_bad_mode(quiet); }).empty()) << quiet;
    EXPECT_EQ(result, 1) << quiet;
  }
}

TEST(ErrorExit, SuccessPrintsNothingWhateverIfailOnEntry) {
  for (int64_t on_entry : {0, 1, -1, 5}) {
    int64_t ifail = on_entry;
    const int64_t unit = 32, mode = 1;
    const std::string path = ::testing::TempDir() + "vek_success.txt";
    EXPECT_TRUE(console_lines([&] { x04acf_(&unit, path.c_str(), &mode, &ifail, int64_t(path.size())); }).empty());
    EXPECT_EQ(ifail, 0);
    x04adf_(&unit, &ifail);
  }
  const int64_t ifail = 0, ierr = 0, nrec = 0;
  EXPECT_EQ(p01abzu_(&ifail, &ierr, "X", &nrec, "", 1, 0), 0);
}

TEST(ErrorExitDeathTest, HardFailurePrintsStopsAndFlushesFiles) {
  const std::string path = ::testing::TempDir() + "vek_hard_failure.txt";
  std::remove(path.c_str());
  auto fail_hard_into_file = [&] {
    const int64_t unit = 33, mode = 1, set = 1;
    int64_t ifail = 1, nerr = unit;
    x04acf_(&unit, path.c_str(), &mode, &ifail, int64_t(path.size()));
    x04aaf_(&set, &nerr);
    open_with_bad_mode(0);
    std::fprintf(stderr, "returned\n");  // must not be reached
  };
  EXPECT_EXIT(fail_hard_into_file(), ::testing::ExitedWithCode(0), "^$");
  Lines expected(kModeReport.begin(), kModeReport.end() - 1);
  expected.push_back(" ** VEK hard failure - execution terminated");
  EXPECT_EQ(file_lines(path), expected);
}

TEST(ErrorExitDeathTest, TwoDigitForm) {
  // Units digit 0: hard; tens digit non-zero: printed; the sign is ignored.
  const Lines soft_printed = {" ** A record.", " ** ABNORMAL EXIT from VEK Library routine ROUTIN: IFAIL =     3",
                              " ** VEK soft failure - control returned"};
  int64_t result = 0;
  EXPECT_EQ(console_lines([&] { result = exit_two_digit(11, 3); }), soft_printed);
  EXPECT_EQ(result, 3);
  EXPECT_EQ(console_lines([&] { result = exit_two_digit(-11, 3); }), soft_printed);
  EXPECT_TRUE(console_lines([&] { result = exit_two_digit(1, 3); }).empty());
  EXPECT_EQ(result, 3);
  EXPECT_TRUE(console_lines([&] { exit_two_digit(-1, 3); }).empty());
  EXPECT_EXIT(exit_two_digit(0, 3), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(exit_two_digit(10, 3), ::testing::ExitedWithCode(0), "");
  // |INT64_MIN| ends in 8 with tens digit 0: soft and silent, computed without overflow.
  EXPECT_TRUE(console_lines([&] { result = exit_two_digit(INT64_MIN, 3); }).empty());
}

TEST(ErrorExit, HeaderNumberRightAlignedOrAsterisks) {
  const int64_t silent = 0, hard = 0, nrec = 0;
  auto header = [&](int64_t ierr) {
    return console_lines([&] { p01abxu_(&silent, &hard, &ierr, "M01CAF", &nrec, "", 6, 80); }).at(0);
  };
  EXPECT_EQ(header(-99), " ** ABNORMAL EXIT from VEK Library routine M01CAF: IFAIL =   -99");
  EXPECT_EQ(header(999999), " ** ABNORMAL EXIT from VEK Library routine M01CAF: IFAIL =999999");
  EXPECT_EQ(header(1000000), " ** ABNORMAL EXIT from VEK Library routine M01CAF: IFAIL =******");
  EXPECT_EQ(header(-100000), " ** ABNORMAL EXIT from VEK Library routine M01CAF: IFAIL =******");
  const int64_t yes = 1;
  EXPECT_TRUE(console_lines([&] {
                int64_t ierr = 4;
                p01abxu_(&yes, &yes, &ierr, "M01CAF", &nrec, "", 6, 80);
              }).empty());
}
