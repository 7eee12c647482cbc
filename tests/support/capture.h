// Test support: what the library printed on the console (standard output when no host console exists),
// split into lines, and the lines of a file.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace vek::testing {

inline std::vector<std::string> split_lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

inline std::vector<std::string> console_lines(const std::function<void()>& run) {
  ::testing::internal::CaptureStdout();
  run();
  return split_lines(::testing::internal::GetCapturedStdout());
}

inline std::vector<std::string> file_lines(const std::string& path) {
  std::ifstream in(path);
  std::stringstream all;
  all << in.rdbuf();
  return split_lines(all.str());
}

}  // namespace vek::testing
