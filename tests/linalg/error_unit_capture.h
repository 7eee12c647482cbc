// Sends the error unit to a file for the lifetime of the object, so a test can read back exactly the records
// a routine printed (through x04acf/x04aaf, as a user would redirect them). The file name holds the process
// id: CTest runs the test cases as separate processes side by side.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vek.h"

class ErrorUnitCapture {
 public:
  ErrorUnitCapture() : path_(testing::TempDir() + "vek_linalg_error_unit_" + std::to_string(getpid()) + ".txt") {
    int64_t get = 0, mode = 1, ifail = 1, set = 1;
    x04aaf_(&get, &saved_);
    x04acf_(&kUnit, path_.c_str(), &mode, &ifail, static_cast<int64_t>(path_.size()));
    EXPECT_EQ(ifail, 0) << "cannot open " << path_;
    int64_t unit = kUnit;
    x04aaf_(&set, &unit);
  }
  ~ErrorUnitCapture() {
    restore();
    std::remove(path_.c_str());
  }

  // The records written so far (closes the capture).
  std::vector<std::string> lines() {
    restore();
    std::vector<std::string> out;
    std::ifstream in(path_);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }

 private:
  void restore() {
    if (closed_) return;
    closed_ = true;
    int64_t set = 1, ifail = 1;
    x04aaf_(&set, &saved_);
    x04adf_(&kUnit, &ifail);
  }

  static constexpr int64_t kUnit = 71;
  std::string path_;
  int64_t saved_ = 6;
  bool closed_ = false;
};
