// A table of failure cases for one routine: each call is made with IFAIL = -1 (the printed report compared with
// the records, line by line) and with IFAIL = 1 (nothing printed), and must return the case's IFAIL.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/report.h"

namespace vek::testing {

struct Case {
  std::string what;
  int64_t ifail;
  std::vector<std::string> records;    // as declared, without the leading blank
  std::function<void(int64_t*)> call;  // calls the routine with the given IFAIL
};

inline void check_cases(const std::string& routine, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
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
