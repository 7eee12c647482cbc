// The report a soft, printed failure writes, line by line, to compare with what a call printed
// (support/capture.h).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "support/capture.h"

namespace vek::test {

inline std::vector<std::string> soft_report(const std::vector<std::string>& records, const std::string& routine,
                                            int64_t ifail) {
  std::vector<std::string> lines;
  for (const auto& r : records) lines.push_back(" " + r);
  char header[80];
  std::snprintf(header, sizeof header, " ** ABNORMAL EXIT from VEK Library routine %s: IFAIL =%6lld",
                routine.c_str(), static_cast<long long>(ifail));
  lines.push_back(header);
  lines.push_back(" ** VEK soft failure - control returned");
  return lines;
}

}  // namespace vek::test
