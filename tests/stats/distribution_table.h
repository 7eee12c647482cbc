// Reading the reference tables of make_distribution_tables.py and measuring errors against them: each row is a
// region name followed by numbers; errors are relative, in units of 2^-52 (below the normal range, in units of
// the subnormal spacing), collected per region as the largest seen.
#pragma once

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace vek::testing {

struct TableRow {
  std::string region;
  std::vector<double> v;
};

inline std::vector<TableRow> distribution_table(const std::string& name) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/" + name);
  std::vector<TableRow> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    TableRow row;
    fields >> row.region;
    for (std::string f; fields >> f;) row.v.push_back(std::strtod(f.c_str(), nullptr));  // keeps subnormals
    rows.push_back(row);
  }
  return rows;
}

inline double relative_ulps(double got, double want) {
  if (got == want) return 0.0;
  if (!std::isfinite(got)) return std::numeric_limits<double>::infinity();
  return std::fabs(got - want) / std::fmax(std::fabs(want), 0x1p-1022) / 0x1p-52;
}

// The largest error per region, and the bounds kept in distribution_bounds.txt ("region bound" lines).
class RegionErrors {
 public:
  void add(const std::string& region, double err) {
    double& m = max_[region];
    if (!(err <= m)) m = err;
  }
  const std::map<std::string, double>& max() const { return max_; }

  static std::map<std::string, double> bounds() {
    std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/distribution_bounds.txt");
    std::map<std::string, double> b;
    for (std::string line; std::getline(in, line);) {
      if (line.empty() || line[0] == '#') continue;
      std::istringstream fields(line);
      std::string region;
      double bound;
      if (fields >> region >> bound) b[region] = bound;
    }
    return b;
  }

 private:
  std::map<std::string, double> max_;
};

}  // namespace vek::testing
