// G01AAF through its exported entry: moments of ill-conditioned samples (large offsets, small spread),
// weighted and unweighted, against mpmath; zero weights leave observations out; every message.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::console_lines;
using vek::testing::soft_report;

struct Sample {
  std::vector<double> x, w, ref;
};

std::vector<double> numbers(std::istringstream& in) {
  std::vector<double> v;
  for (std::string f; in >> f;) v.push_back(std::strtod(f.c_str(), nullptr));
  return v;
}

std::vector<Sample> samples() {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/moments.txt");
  std::vector<Sample> out;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string tag;
    fields >> tag;
    if (tag == "data") out.push_back({numbers(fields), {}, {}});
    if (tag == "weights") out.back().w = numbers(fields);
    if (tag == "moments") out.back().ref = numbers(fields);
  }
  return out;
}

struct Result {
  double mean, sd, skew, kurt, min, max, wsum;
  int64_t ifail;
};

Result g01aaf(const std::vector<double>& x, const std::vector<double>& w, int64_t ifail_in = 1) {
  const int64_t n = static_cast<int64_t>(x.size()), iwt = w.empty() ? 0 : 1;
  Result r{};
  r.ifail = ifail_in;
  const double dummy = 0.0;
  g01aaf_(&n, x.data(), &iwt, w.empty() ? &dummy : w.data(), &r.mean, &r.sd, &r.skew, &r.kurt, &r.min, &r.max,
          &r.wsum, &r.ifail);
  return r;
}

TEST(Moments, IllConditionedSamplesAgainstReference) {
  const auto all = samples();
  ASSERT_EQ(all.size(), 6U);
  for (const Sample& s : all) {
    const Result r = g01aaf(s.x, s.w);
    ASSERT_EQ(r.ifail, 0);
    const double mean = s.ref[0], sd = s.ref[1];
    double magnitude = 0, weight = 0;  // the mean's condition: sum |w x| / W
    for (size_t i = 0; i < s.x.size(); ++i) {
      magnitude += (s.w.empty() ? 1.0 : s.w[i]) * std::fabs(s.x[i]);
      weight += s.w.empty() ? 1.0 : s.w[i];
    }
    EXPECT_NEAR(r.mean, mean, 4 * 0x1p-52 * magnitude / weight);
    // The deviations carry the rounding of the data's offset: relative error of sd about |mean|/sd ulp.
    const double cond = 1.0 + std::fabs(mean) / sd;
    EXPECT_NEAR(r.sd, sd, 16 * 0x1p-52 * cond * sd);
    EXPECT_NEAR(r.skew, s.ref[2], 64 * 0x1p-52 * cond * (1 + std::fabs(s.ref[2])));
    EXPECT_NEAR(r.kurt, s.ref[3], 64 * 0x1p-52 * cond * (1 + std::fabs(s.ref[3])));
    double lo = INFINITY, hi = -INFINITY, wsum = 0;
    for (size_t i = 0; i < s.x.size(); ++i) {
      const double wi = s.w.empty() ? 1.0 : s.w[i];
      if (wi > 0) lo = std::fmin(lo, s.x[i]), hi = std::fmax(hi, s.x[i]);
      wsum += wi;
    }
    EXPECT_EQ(r.min, lo);
    EXPECT_EQ(r.max, hi);
    EXPECT_NEAR(r.wsum, wsum, 1e-12 * wsum);
  }
  // Unit weights are the unweighted sample; zero weights remove their observations.
  const Sample& plain = all[3];
  const Result unit = g01aaf(plain.x, std::vector<double>(plain.x.size(), 1.0)), none = g01aaf(plain.x, {});
  EXPECT_NEAR(unit.sd, none.sd, 1e-14 * none.sd);
  std::vector<double> x = {1, 2, 3, 1e300, 4}, w = {1, 1, 1, 0, 1};
  const Result skipped = g01aaf(x, w), four = g01aaf({1, 2, 3, 4}, {});
  EXPECT_EQ(skipped.mean, four.mean);
  EXPECT_EQ(skipped.max, 4.0);
  EXPECT_NEAR(skipped.sd, four.sd, 1e-15);
}

TEST(Moments, Messages) {
  int64_t n = 0, iwt = 0, ifail = -1;
  double x[3] = {1, 2, 3}, w[3] = {1, -0.5, 2}, out[7];
  EXPECT_EQ(console_lines([&] { g01aaf_(&n, x, &iwt, w, out, out + 1, out + 2, out + 3, out + 4, out + 5, out + 6, &ifail); }),
            soft_report({" ** On entry, N = 0.", " ** Constraint: N >= 1."}, "G01AAF", 1));
  n = 3;
  iwt = 2;
  ifail = -1;
  EXPECT_EQ(console_lines([&] { g01aaf_(&n, x, &iwt, w, out, out + 1, out + 2, out + 3, out + 4, out + 5, out + 6, &ifail); }),
            soft_report({" ** On entry, IWT = 2.", " ** Constraint: IWT = 0 or 1."}, "G01AAF", 1));
  iwt = 1;
  ifail = -1;
  EXPECT_EQ(console_lines([&] { g01aaf_(&n, x, &iwt, w, out, out + 1, out + 2, out + 3, out + 4, out + 5, out + 6, &ifail); }),
            soft_report({" ** On entry, WT(2) = -0.5.", " ** Constraint: WT(i) >= 0.0."}, "G01AAF", 2));
  w[1] = 0;
  w[2] = 0;
  ifail = -1;
  EXPECT_EQ(console_lines([&] { g01aaf_(&n, x, &iwt, w, out, out + 1, out + 2, out + 3, out + 4, out + 5, out + 6, &ifail); }),
            soft_report({" ** On entry, the number of observations with positive weight = 1.",
                         " ** Constraint: at least 2 such observations; S2, S3 and S4 are returned as 0."},
                        "G01AAF", 3));
  EXPECT_EQ(out[0], 1.0);  // the mean is still returned
  EXPECT_EQ(out[1], 0.0);
  const Result equal = g01aaf({2.5, 2.5, 2.5}, {}, -1);
  EXPECT_EQ(equal.ifail, 4);
  EXPECT_EQ(equal.mean, 2.5);
  EXPECT_EQ(equal.sd, 0.0);
  const Result with_nan = g01aaf({1, NAN, 3}, {});
  EXPECT_TRUE(std::isnan(with_nan.mean) && std::isnan(with_nan.sd) && std::isnan(with_nan.max));
}

}  // namespace
