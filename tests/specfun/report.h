// Checking a failure report: a call made with IFAIL = -1 prints the message records and the two exit lines on
// the console, and returns with IFAIL set to the error number.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/capture.h"

namespace vek::testing {

inline void expect_report(const std::function<void(int64_t*)>& call, int64_t ifail_expected,
                          const std::vector<std::string>& records, const std::string& routine) {
  int64_t ifail = -1;
  const std::vector<std::string> out = console_lines([&] { call(&ifail); });
  std::vector<std::string> expected = records;
  std::string number = std::to_string(ifail_expected);
  expected.push_back(" ** ABNORMAL EXIT from VEK Library routine " + routine + ": IFAIL =" +
                     std::string(6 - number.size(), ' ') + number);
  expected.push_back(" ** VEK soft failure - control returned");
  EXPECT_EQ(ifail, ifail_expected) << routine;
  EXPECT_EQ(out, expected) << routine;
}

}  // namespace vek::testing
