// Captures the records a routine writes on the advisory and error units: opens a file on a spare unit number
// with x04acf and points both units at it, as a user would redirect them; lines() closes the file and returns
// its records. The units are restored when the capture ends. The file name holds the process id, since CTest
// runs test cases as separate processes side by side.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "vek.h"

namespace vek::testing {

class UnitCapture {
 public:
  static constexpr int64_t kUnit = 71;

  UnitCapture() : path_(::testing::TempDir() + "vek_unit_capture_" + std::to_string(getpid()) + "_" +
              std::to_string(counter()++) + ".txt") {
    const int64_t mode = 1;
    int64_t ifail = 1;
    x04acf_(&kUnit, path_.c_str(), &mode, &ifail, static_cast<int64_t>(path_.size()));
    EXPECT_EQ(ifail, 0) << "cannot open " << path_;
    const int64_t get = 0, set = 1;
    x04abf_(&get, &saved_adv_);
    x04aaf_(&get, &saved_err_);
    int64_t unit = kUnit;
    x04abf_(&set, &unit);
    x04aaf_(&set, &unit);
  }
  ~UnitCapture() {
    close();
    const int64_t set = 1;
    x04abf_(&set, &saved_adv_);
    x04aaf_(&set, &saved_err_);
    std::remove(path_.c_str());
  }
  UnitCapture(const UnitCapture&) = delete;
  UnitCapture& operator=(const UnitCapture&) = delete;

  std::vector<std::string> lines() {
    close();
    std::vector<std::string> out;
    std::ifstream in(path_);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }

 private:
  void close() {
    if (closed_) return;
    int64_t ifail = 1;
    x04adf_(&kUnit, &ifail);
    closed_ = true;
  }
  static int& counter() {
    static int n = 0;
    return n;
  }

  std::string path_;
  int64_t saved_adv_ = 6, saved_err_ = 6;
  bool closed_ = false;
};

}  // namespace vek::testing
