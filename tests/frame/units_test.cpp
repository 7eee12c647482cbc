// Output units: unit numbers, records on the console and in files, open/close/read with their messages,
// and bad input that must give defined results.
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

void write(int64_t unit, const std::string& rec) { x04baf_(&unit, rec.data(), int64_t(rec.size())); }

int64_t open_file(int64_t unit, const std::string& path, int64_t mode, int64_t ifail = 1) {
  x04acf_(&unit, path.data(), &mode, &ifail, int64_t(path.size()));
  return ifail;
}

int64_t close_file(int64_t unit) {
  int64_t ifail = 1;
  x04adf_(&unit, &ifail);
  return ifail;
}

int64_t read(int64_t unit, std::string& rec, int64_t ifail = 1) {
  x04bbf_(&unit, rec.data(), &ifail, int64_t(rec.size()));
  return ifail;
}

std::string temp(const char* name) { return ::testing::TempDir() + name; }

}  // namespace

TEST(Units, ErrorAndAdvisoryUnitSettings) {
  int64_t get = 0, set = 1, other = 2, value = -1;
  x04aaf_(&get, &value);
  EXPECT_EQ(value, 6);
  value = 17;
  x04aaf_(&set, &value);
  value = 99;
  x04aaf_(&other, &value);  // changes nothing, leaves NERR as given
  EXPECT_EQ(value, 99);
  x04aaf_(&get, &value);
  EXPECT_EQ(value, 17);
  value = 6;
  x04aaf_(&set, &value);
  x04abf_(&get, &value);
  EXPECT_EQ(value, 6);
  value = -1;
  x04abf_(&set, &value);
  x04abf_(&get, &value);
  EXPECT_EQ(value, -1);
  value = 6;
  x04abf_(&set, &value);
}

TEST(Units, ConsoleRecords) {
  // One percent sign shows as one; blank and empty records print one blank; trailing blanks are dropped;
  // unit -1 is silent; units 0 and 9 (nothing open) go to the console.
  EXPECT_EQ(console_lines([] {
              write(6, "100% sure, 50%% of it   ");
              write(6, "    ");
              write(6, "");
              write(-1, "dropped");
              write(0, "unit zero");
              write(9, "unit nine");
            }),
            (Lines{"100% sure, 50%% of it", " ", " ", "unit zero", "unit nine"}));
  const std::string huge(100000, 'x');
  EXPECT_EQ(console_lines([&] { write(6, huge); }), Lines{huge});
}

TEST(Units, WriteAppendThenReadBackToEndOfFile) {
  const std::string path = temp("vek_units_rw.txt");
  EXPECT_EQ(open_file(9, path, 1), 0);
  write(9, "first record");
  write(9, "");
  EXPECT_TRUE(console_lines([] { write(9, "to the file"); }).empty());
  EXPECT_EQ(close_file(9), 0);
  EXPECT_EQ(open_file(9, path, 2), 0);
  write(9, "appended");
  EXPECT_EQ(close_file(9), 0);
  EXPECT_EQ(file_lines(path), (Lines{"first record", " ", "to the file", "appended"}));

  EXPECT_EQ(open_file(10, path + "   ", 0), 0);  // trailing blanks of the name are not part of it
  std::string rec(8, '?');
  EXPECT_EQ(read(10, rec), 0);
  EXPECT_EQ(rec, "first re");  // cut to RECIN's length
  std::string wide(20, '?');
  EXPECT_EQ(read(10, wide), 0);
  EXPECT_EQ(wide, std::string(20, ' '));
  EXPECT_EQ(read(10, wide), 0);
  EXPECT_EQ(wide, "to the file         ");
  EXPECT_EQ(read(10, wide), 0);
  EXPECT_EQ(read(10, wide), 1);  // end of file, silently with IFAIL = 1
  EXPECT_EQ(console_lines([&] { read(10, wide, -1); }),
            (Lines{" ** End-of-file detected in a READ statement.",
                   " ** ABNORMAL EXIT from VEK Library routine X04BBF: IFAIL =     1",
                   " ** VEK soft failure - control returned"}));
  EXPECT_EQ(close_file(10), 0);
  EXPECT_EQ(close_file(10), 0);  // nothing open any more: nothing to do
  std::string untouched = "keep";
  EXPECT_EQ(read(-3, untouched), 0);  // NIN negative reads nothing
  EXPECT_EQ(untouched, "keep");
}

TEST(Units, OpenFailuresAndMessages) {
  const std::string missing = temp("no_such_dir/") + "file.txt";
  EXPECT_EQ(console_lines([] { open_file(11, "x", 3, -1); }),
            (Lines{" ** On entry, MODE = 3.", " ** Constraint: 0 <= MODE <= 2.",
                   " ** ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     1",
                   " ** VEK soft failure - control returned"}));
  EXPECT_EQ(open_file(11, "x", -1), 1);
  EXPECT_EQ(console_lines([] { open_file(11, "/nonexistent-dir/input.dat", 0, -1); }),
            (Lines{" ** Cannot open file '/nonexistent-dir/input.dat' for reading on channel", " ** 11.",
                   " ** ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     2",
                   " ** VEK soft failure - control returned"}));
  EXPECT_EQ(open_file(11, "/nonexistent-dir/out.dat", 1), 3);
  // A name holding the error buffer's separator byte still gets its own report (IFAIL 2, not -99).
  EXPECT_EQ(console_lines([] { open_file(11, std::string("/nonexistent-dir/a\x01" "b"), 0, -1); }),
            (Lines{" ** Cannot open file '/nonexistent-dir/a b' for reading on channel", " ** 11.",
                   " ** ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     2",
                   " ** VEK soft failure - control returned"}));
  // A long name is cut with "..." so that the record fits; the unit stands on its own record.
  const std::string long_name = "/nonexistent-dir/" + std::string(983, 'n');
  const Lines lines = console_lines([&] { open_file(12, long_name, 2, -1); });
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], " ** Cannot open file '" + long_name.substr(0, 29) + "...' for appending on channel");
  EXPECT_LE(lines[0].size(), 80u);
  EXPECT_EQ(lines[1], " ** 12.");
  // An empty name, a negative unit and an unopened unit for reading.
  EXPECT_EQ(open_file(13, "", 1), 3);
  EXPECT_EQ(open_file(13, "    ", 2), 4);
  EXPECT_EQ(open_file(-5, temp("vek_neg.txt"), 1), 3);
  std::string rec(4, ' ');
  EXPECT_EQ(console_lines([&] { read(14, rec, -1); }).at(0), " ** No file is open for reading on channel 14.");
  // A file opened for writing cannot be read; a huge unit number is an ordinary unit.
  const int64_t huge_unit = INT64_MAX;
  EXPECT_EQ(open_file(huge_unit, temp("vek_huge_unit.txt"), 1), 0);
  EXPECT_EQ(read(huge_unit, rec), 2);
  write(huge_unit, "fine");
  EXPECT_EQ(close_file(huge_unit), 0);
  EXPECT_EQ(file_lines(temp("vek_huge_unit.txt")), Lines{"fine"});
}

TEST(Units, ReopeningAUnitClosesItsFile) {
  const std::string a = temp("vek_units_a.txt"), b = temp("vek_units_b.txt");
  EXPECT_EQ(open_file(15, a, 1), 0);
  write(15, "to a");
  EXPECT_EQ(open_file(15, "/nonexistent-dir/c.txt", 1), 3);  // a failed open leaves a open
  write(15, "still a");
  EXPECT_EQ(open_file(15, b, 1), 0);
  write(15, "to b");
  EXPECT_EQ(close_file(15), 0);
  EXPECT_EQ(file_lines(a), (Lines{"to a", "still a"}));
  EXPECT_EQ(file_lines(b), Lines{"to b"});
}

TEST(Units, CloseReportsARecordThatCannotBeWritten) {
  // The device that is always full takes the records into the buffer; the flush at the close fails.
  if (std::FILE* probe = std::fopen("/dev/full", "w")) {
    std::fclose(probe);
  } else {
    GTEST_SKIP() << "no /dev/full";
  }
  EXPECT_EQ(open_file(16, "/dev/full", 1), 0);
  int64_t unit = 16, ifail = -1;
  // Written inside the capture, which flushes every stream when it starts.
  EXPECT_EQ(console_lines([&] {
              write(16, "lost");
              x04adf_(&unit, &ifail);
            }),
            (Lines{" ** Cannot close file associated with channel 16.",
                   " ** ABNORMAL EXIT from VEK Library routine X04ADF: IFAIL =     1",
                   " ** VEK soft failure - control returned"}));
  EXPECT_EQ(ifail, 1);
  EXPECT_EQ(close_file(16), 0);  // the unit is free again
}
