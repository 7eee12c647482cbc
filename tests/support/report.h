// The report a soft, printed failure writes (IFAIL = -1 on entry): the message records, the ABNORMAL EXIT
// line and the soft-failure line, to compare with what a call printed on the console.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/capture.h"

namespace vek::testing {

// `records` as printed, each with its leading blank.
inline std::vector<std::string> soft_report(std::vector<std::string> records, const std::string& routine,
                                            int64_t ifail) {
  const std::string number = std::to_string(ifail);
  records.push_back(" ** ABNORMAL EXIT from VEK Library routine " + routine + ": IFAIL =" +
                    std::string(number.size() < 6 ? 6 - number.size() : 0, ' ') + number);
  records.push_back(" ** VEK soft failure - control returned");
  return records;
}

// Calls with IFAIL = -1 and checks the printed report and the IFAIL returned.
inline void expect_report(const std::function<void(int64_t*)>& call, int64_t ifail_expected,
                          const std::vector<std::string>& records, const std::string& routine) {
  int64_t ifail = -1;
  const std::vector<std::string> out = console_lines([&] { call(&ifail); });
  EXPECT_EQ(ifail, ifail_expected) << routine;
  EXPECT_EQ(out, soft_report(records, routine, ifail_expected)) << routine;
}

// One failure of a routine: what is tried, the IFAIL expected, the records as declared (without the leading
// blank) and the call, given the IFAIL to pass.
struct ReportCase {
  std::string what;
  int64_t ifail;
  std::vector<std::string> records;
  std::function<void(int64_t*)> call;
};

// Each case: the report printed with IFAIL = -1, and nothing printed with IFAIL = 1; the same IFAIL from both.
inline void expect_reports(const std::string& routine, const std::vector<ReportCase>& cases) {
  for (const ReportCase& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<std::string> printed;
    for (const std::string& r : c.records) printed.push_back(" " + r);
    expect_report(c.call, c.ifail, printed, routine);
    int64_t ifail = 1;  // soft and silent
    EXPECT_TRUE(console_lines([&] { c.call(&ifail); }).empty());
    EXPECT_EQ(ifail, c.ifail);
  }
}

}  // namespace vek::testing
