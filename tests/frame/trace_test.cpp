// The argument trace: the 100-column layout, the record shape at each level, the NaN counter.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/capture.h"
#include "vek.h"

using vek::testing::console_lines;
using Lines = std::vector<std::string>;

namespace {

// Columns 1-4 blank, name from 5 (45 wide), ":    " in 50-54, value from 55; trailing blanks not written.
std::string trace_line(const std::string& name, const std::string& value) {
  std::string s = "    " + name + std::string(45 - name.size(), ' ') + ":    " + value;
  return s.substr(0, s.find_last_not_of(' ') + 1);
}

std::string int20(long long v) {
  std::string s = std::to_string(v);
  return std::string(20 - s.size(), ' ') + s;
}

const std::string kSeparator = "    " + std::string(75, '-');

Lines header(const std::string& name, bool on_entry) {
  return {" ", kSeparator, "    " + name, on_entry ? "    On entry:" : "    On exit:", kSeparator};
}

void set_level(int64_t level) { y90gcft_(&level); }

struct TraceOff {
  ~TraceOff() { set_level(0); }
};

Lines concat(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& p : parts) all.insert(all.end(), p.begin(), p.end());
  return all;
}

}  // namespace

TEST(Trace, LevelZeroPrintsNothing) {
  int64_t get = 0, level = -1;
  y90gczn_(&get, &level);
  EXPECT_EQ(level, 0);
  int64_t unit = 6;
  EXPECT_EQ(console_lines([&] { x04aaf_(&get, &unit); }), Lines{});
  EXPECT_EQ(unit, 6);
}

TEST(Trace, TracedCallLayout) {
  TraceOff off;
  set_level(2);
  const int64_t unit = 41, mode = 5;
  int64_t ifail = 1;
  const Lines lines = console_lines([&] { x04acf_(&unit, "data.txt", &mode, &ifail, 8); });
  const std::string errbuf = "|    1|99999|1|" + std::string(19, ' ') + "5|";
  const Lines expected = concat({
      header("X04ACFT", true),
      {trace_line("IOUNIT", int20(41)), trace_line("FILE", "data.txt"), trace_line("MODE", int20(5)), kSeparator,
       " "},
      header("X04ACFT", false),
      {trace_line("IOUNIT", int20(41)), trace_line("FILE", "data.txt"), trace_line("MODE", int20(5)),
       trace_line("ERRBUF", errbuf), trace_line("IFAIL", int20(1)), kSeparator, " "},
  });
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(ifail, 1);
}

TEST(Trace, LongNamesValuesAndArrays) {
  const int64_t level = 2, no = 0, value = -12;
  const std::string name50(50, 'N');
  EXPECT_EQ(console_lines([&] { y90adft_(name50.data(), &value, &level, &no, 50); }),
            Lines{"    " + std::string(42, 'N') + "...:    " + int20(-12)});
  const int64_t yes = 1;
  const Lines with_address = console_lines([&] { y90aeft_("FLAG", &yes, &level, &yes, 4); });
  ASSERT_EQ(with_address.size(), 2u);
  EXPECT_EQ(with_address[0], trace_line("FLAG", ".TRUE."));
  EXPECT_EQ(with_address[1].substr(0, 56), trace_line("   Address", "0x"));
  const double x[12] = {1.5, -0.25, NAN, INFINITY, 0, 0, 0, 0, 0, 0, 0, 12};
  const int64_t n = 12, one = 1;
  const Lines full = console_lines([&] { y90bgzn_("X", x, &n, &level, &no, 1); });
  ASSERT_EQ(full.size(), 12u);
  EXPECT_EQ(full[0], trace_line("X(1)", "  1.5000000000000000E+00"));
  EXPECT_EQ(full[1], trace_line("X(2)", " -2.5000000000000000E-01"));
  EXPECT_EQ(full[2], trace_line("X(3)", "NaN"));
  EXPECT_EQ(full[3], trace_line("X(4)", "Infinity"));
  const Lines brief = console_lines([&] { y90bgzn_("X", x, &n, &one, &no, 1); });
  ASSERT_EQ(brief.size(), 11u);
  EXPECT_EQ(brief[10], trace_line("X(11:12)", "not shown at trace level 1"));
  const std::string long_text(60, 't');
  EXPECT_EQ(console_lines([&] { y90aaft_("T", long_text.data(), &level, &no, 1, 60); }),
            (Lines{trace_line("T", std::string(46, 't')), trace_line("", std::string(14, 't'))}));
}

TEST(Trace, LevelThreeCountsNaNsOnly) {
  TraceOff off;
  int64_t reset = 0, read = 1, bump = 2, count = -1;
  y90gdzn_(&reset, &count);
  const int64_t three = 3, no = 0;
  const double nan = NAN, one = 1.0;
  EXPECT_TRUE(console_lines([&] {
                y90agft_("A", &nan, &three, &no, 1);
                y90agft_("B", &one, &three, &no, 1);
                y90agft_("C", &nan, &three, &no, 1);
              }).empty());
  y90gdzn_(&read, &count);
  EXPECT_EQ(count, 2);
  y90gdzn_(&bump, &count);
  y90gdzn_(&read, &count);
  EXPECT_EQ(count, 3);
  // A traced call at level 3: header, the count, the separator; no argument lines, no closing empty line.
  set_level(3);
  int64_t get = 0, unit = 0;
  const Lines lines = console_lines([&] { x04aaf_(&get, &unit); });
  const Lines tail = {trace_line("NaNs so far", int20(3)), kSeparator};
  EXPECT_EQ(lines, concat({header("X04AAFT", true), tail, header("X04AAFT", false), tail}));
  // The wrappers count every NaN real that passes: a02acf with XR a NaN sees it on entry and on exit, and
  // its two NaN results on exit.
  y90gdzn_(&reset, &count);
  double zr = 0, zi = 0;
  const double two = 2.0;
  console_lines([&] { a02acf_(&nan, &one, &two, &one, &zr, &zi); });
  y90gdzn_(&read, &count);
  EXPECT_EQ(count, 4);
  y90gdzn_(&reset, &count);
  y90gdzn_(&read, &count);
  EXPECT_EQ(count, 0);
}
