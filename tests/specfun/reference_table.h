// Reading the committed high-precision tables (data/<function>.txt, written by data/make_tables.py) and the
// accepted errors beside them (data/accuracy.txt), and measuring errors in units in the last place.
#pragma once

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace vek::testing {

struct TableRow {
  std::string region;
  std::vector<double> args;
  std::vector<long double> refs;
};

inline std::string data_path(const std::string& file) { return std::string(VEK_TEST_DATA_DIR) + "/" + file; }

// A row holds the region, `nargs` arguments, then the reference values.
inline std::vector<TableRow> read_table(const std::string& name, size_t nargs) {
  std::vector<TableRow> rows;
  std::ifstream in(data_path(name + ".txt"));
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    TableRow row;
    fields >> row.region;
    for (std::string f; fields >> f;) {
      if (row.args.size() < nargs) row.args.push_back(std::strtod(f.c_str(), nullptr));
      else row.refs.push_back(std::strtold(f.c_str(), nullptr));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

// accuracy.txt: "<function> <region> <max error in ulps>" per line.
inline std::map<std::string, double> read_accuracy() {
  std::map<std::string, double> bounds;
  std::ifstream in(data_path("accuracy.txt"));
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string function, region;
    double ulps = 0;
    if (fields >> function >> region >> ulps) bounds[function + " " + region] = ulps;
  }
  return bounds;
}

// |computed - ref| in units of the spacing of doubles at ref (the subnormal spacing below the normal range).
// Infinite or NaN disagreements count as infinitely wrong; matching infinities as exact.
inline double ulp_error(double computed, long double ref) {
  if (std::isinf(ref) || std::isnan(computed) || std::isinf(computed))
    return static_cast<long double>(computed) == ref ? 0.0 : HUGE_VAL;
  const long double mag = std::fabs(ref);
  const int exponent = mag >= 0x1p-1022L ? std::ilogb(static_cast<double>(mag)) : -1022;
  const long double ulp = std::ldexp(1.0L, exponent - 52);
  return static_cast<double>(std::fabs(static_cast<long double>(computed) - ref) / ulp);
}

}  // namespace vek::testing
