// The test functions of the zero finders, by the names data/make_sequences.py gives them. Only + - * / (and
// one IEEE division by zero), so that the library and the Python transcription evaluate them to the same bits.
#pragma once

#include <map>
#include <string>

namespace vek::testing {

using RealFunction = double (*)(double);

inline const std::map<std::string, RealFunction>& zero_test_functions() {
  static const std::map<std::string, RealFunction> table = {
      {"square_minus_two", [](double x) { return x * x - 2.0; }},
      {"brent_cubic", [](double x) { return x * x * x - 2.0 * x - 5.0; }},
      {"triple_root", [](double x) { return (x - 1.0) * (x - 1.0) * (x - 1.0); }},
      {"reciprocal", [](double x) { return 1.0 / x - 3.0; }},
      {"pole", [](double x) { return 1.0 / (x - 1.0); }},
      {"plus_one_squared", [](double x) { return x * x + 1.0; }},
  };
  return table;
}

}  // namespace vek::testing
