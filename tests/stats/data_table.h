// The numeric tables of tests/stats/data: one row a line, '#' lines and blank lines skipped.
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace vek::testing {

inline std::vector<std::vector<double>> data_table(const std::string& name) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/" + name);
  std::vector<std::vector<double>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::vector<double> row;
    for (std::string f; fields >> f;) row.push_back(std::strtod(f.c_str(), nullptr));  // keeps subnormals
    rows.push_back(row);
  }
  return rows;
}

}  // namespace vek::testing
