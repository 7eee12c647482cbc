// What the D01 tests share: the user function that counts its calls in IUSER(1) and evaluates a test integrand
// with the parameter RUSER(1), the outcome of a call, the reference subinterval lists of GSL's runs and the cases that part from them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "frame/text.h"
#include "quadrature_integrands.h"

namespace quadrature_harness {

inline quadrature_integrand_fn g_integrand = nullptr;
inline int64_t* g_iuser = nullptr;
inline double* g_ruser = nullptr;

// IUSER(1) counts the calls, RUSER(1) is the integrand's parameter; both must arrive as passed.
inline double user_f(const double* x, int64_t* iuser, double* ruser) {
  EXPECT_TRUE(iuser == g_iuser && ruser == g_ruser);
  ++iuser[0];
  return g_integrand(*x, ruser[0]);
}

struct Outcome {
  int64_t ifail = 0;
  double result = 0, abserr = 0;
  int64_t evaluations = 0;
  std::vector<double> w;
  std::vector<int64_t> iw;
};

struct Interval {
  double a, b, value, error;
};

inline bool close(double x, double y, double rel) {
  return std::abs(x - y) <= rel * std::max(std::abs(x), std::abs(y));
}

// The four lists of W (LAST = intervals.size() each) against GSL's. Values agree to 1e-13; an error estimate at
// the rule's floor 50 eps resabs may be down to half GSL's (eps = 2^-53 here, 2^-52 there); values below 1e-15
// and errors below 1e-13 of the value are rounding alone.
inline void expect_lists(const Outcome& r, const std::vector<Interval>& gsl) {
  const size_t n = gsl.size();
  for (size_t i = 0; i < n; ++i) {
    const Interval& g = gsl[i];
    SCOPED_TRACE("interval " + std::to_string(i + 1));
    EXPECT_EQ(r.w[i], g.a);
    EXPECT_EQ(r.w[n + i], g.b);
    const double v = r.w[3 * n + i], e = r.w[2 * n + i];
    EXPECT_TRUE(close(v, g.value, 1e-13) || std::abs(v - g.value) <= 1e-15) << v << " vs " << g.value;
    EXPECT_TRUE(close(e, g.error, 1e-12) || (e >= 0.5 * g.error && e < g.error) ||
                std::abs(e - g.error) <= 1e-13 * std::abs(g.value))
        << e << " vs " << g.error;
  }
}

// The records of IFAIL 3 after a run that ended with it: the subinterval of bad behaviour is the last one
// bisected, the narrowest two neighbours in the sorted W.
inline std::vector<std::string> bad_integrand_records(const Outcome& r) {
  const size_t n = static_cast<size_t>(r.iw[0]);
  size_t k = 0;
  for (size_t i = 1; i + 1 < n; ++i)
    if (r.w[n + i + 1] - r.w[i] < r.w[n + k + 1] - r.w[k]) k = i;
  return {"** Extremely bad integrand behaviour occurs around the sub-interval",
          "** (" + vek::text::real_text(r.w[k]) + ", " + vek::text::real_text(r.w[n + k + 1]) + ")"};
}

// The keys of the cases listed in a deviations file of the test data ("KEY | reason" lines), where a routine
// takes another path than GSL's transcription by design.
inline std::set<std::string> deviating_cases(const char* file) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/" + file);
  std::set<std::string> keys;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') keys.insert(line.substr(0, line.find(" |")));
  return keys;
}

}  // namespace quadrature_harness
