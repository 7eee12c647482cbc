// The argument trace of the reverse-communication routine: an intermediate return shows only IND on exit, the
// final return every argument.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture.h"
#include "vek.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kSeparator = "    " + std::string(75, '-');

std::string trace_line(const std::string& name, const std::string& value) {
  std::string s = "    " + name + std::string(45 - name.size(), ' ') + ":    " + value;
  return s.substr(0, s.find_last_not_of(' ') + 1);
}

std::string int20(long long v) {
  const std::string s = std::to_string(v);
  return std::string(20 - s.size(), ' ') + s;
}

// The lines after "On exit:" and its separator.
Lines exit_part(const Lines& all) {
  for (size_t i = 0; i + 1 < all.size(); ++i) {
    if (all[i] == "    On exit:") return Lines(all.begin() + static_cast<std::ptrdiff_t>(i) + 2, all.end());
  }
  return {};
}

// The names shown in a part, in order.
Lines names(const Lines& part) {
  Lines out;
  for (const std::string& line : part) {
    if (line.size() > 49 && line[49] == ':') out.push_back(line.substr(4, line.find_last_not_of(' ', 48) - 3));
  }
  return out;
}

struct TraceLevel {
  explicit TraceLevel(int64_t level) { y90gcft_(&level); }
  ~TraceLevel() {
    const int64_t off = 0;
    y90gcft_(&off);
  }
};

}  // namespace

TEST(ZeroTrace, IntermediateReturnsShowOnlyInd) {
  double x = 1.0, y = 2.0, fx = 0.0, tolx = 1e-6, c[10] = {};
  const int64_t ir = 0;
  int64_t ind = 1, ifail = 1;
  Lines first;
  {
    TraceLevel on(2);
    first = vek::testing::console_lines([&] { c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail); });
  }
  ASSERT_EQ(ind, 2);
  // On entry every input; on this intermediate exit IND alone.
  Lines entry_names = names(Lines(first.begin(), first.end() - static_cast<std::ptrdiff_t>(exit_part(first).size())));
  Lines expected_entry = {"X", "Y", "FX", "TOLX", "IR"};
  for (int k = 1; k <= 10; ++k) expected_entry.push_back("C(" + std::to_string(k) + ")");
  expected_entry.push_back("IND");
  EXPECT_EQ(entry_names, expected_entry);
  EXPECT_EQ(exit_part(first), (Lines{trace_line("IND", int20(2)), kSeparator, " "}));

  // Run to the end untraced, then trace the final call: its exit shows every argument, ERRBUF and IFAIL.
  while (true) {
    fx = x * x - 2.0;
    c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail);
    if (ind == 4 && c[9] == 1.0) break;  // converged: the next call is the last
  }
  fx = x * x - 2.0;
  Lines last;
  {
    TraceLevel on(2);
    last = vek::testing::console_lines([&] { c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail); });
  }
  ASSERT_EQ(ind, 0);
  Lines expected_exit = expected_entry;
  expected_exit.push_back("ERRBUF");
  expected_exit.push_back("IFAIL");
  EXPECT_EQ(names(exit_part(last)), expected_exit);

  // A failure is a final return too: IND 0 and every argument shown.
  ind = 7;
  ifail = 1;  // soft and silent: only the trace is printed
  Lines failed;
  {
    TraceLevel on(2);
    failed = vek::testing::console_lines([&] { c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail); });
  }
  EXPECT_EQ(ind, 0);
  EXPECT_EQ(names(exit_part(failed)), expected_exit);
}
