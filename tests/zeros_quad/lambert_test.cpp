// c05baf against mpmath (data/lambert_w.txt, made by data/make_lambert_table.py): both branches, the argument
// given directly and as its distance from -1/e, near the branch point, near 0, and up to the largest double;
// then the domain messages and the results at the edges.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

double lambert(double x, int64_t branch, bool offset, int64_t* ifail) {
  const int64_t off = offset ? 1 : 0;
  return c05baf_(&x, &branch, &off, ifail);
}

// |got - want| in units of the spacing of doubles at want.
double ulps(double got, double want) {
  if (got == want) return 0.0;
  const double spacing = std::nextafter(std::abs(want), INFINITY) - std::abs(want);
  return std::abs(got - want) / spacing;
}

// Calls row(line, region, branch, offset, numbers) for each point of a table in the data folder; the numbers
// are read back from their repr() text to the same doubles. Returns the number of points.
template <class Row>
int for_each_point(const std::string& name, Row row) {
  std::ifstream file(std::string(VEK_TEST_DATA_DIR) + "/" + name);
  EXPECT_TRUE(file.good()) << name;
  int points = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    std::string region, text;
    int64_t branch = 0, offset = 0;
    in >> region >> branch >> offset;
    std::vector<double> numbers;
    while (in >> text) numbers.push_back(std::strtod(text.c_str(), nullptr));
    row(line, region, branch, offset, numbers);
    ++points;
  }
  return points;
}

}  // namespace

TEST(LambertW, AgainstMpmathOnBothBranches) {
  std::map<std::string, double> worst;
  const int points = for_each_point("lambert_w.txt", [&](const std::string& line, const std::string& region,
                                                         int64_t branch, int64_t offset, const std::vector<double>& v) {
    int64_t ifail = -1;
    const double got = lambert(v[0], branch, offset != 0, &ifail);
    EXPECT_EQ(ifail, 0) << line;
    const double e = ulps(got, v[1]);
    worst[region] = std::max(worst[region], e);
    EXPECT_LE(e, 2.0) << line << " got " << got;
  });
  EXPECT_GT(points, 400);
  for (const auto& [region, e] : worst) std::printf("  %-14s max %.2f ulp\n", region.c_str(), e);
}

TEST(LambertW, MessagesAndEdges) {
  const auto report = [](const std::vector<std::string>& records, int64_t ifail, double x, int64_t branch,
                         bool offset) {
    std::vector<std::string> printed;
    for (const std::string& r : records) printed.push_back(" " + r);
    vek::testing::expect_report([&](int64_t* f) { EXPECT_EQ(lambert(x, branch, offset, f), 0.0); },
                                ifail, printed, "C05BAF");
  };
  report({"** On entry, BRANCH = 1", "** Constraint: BRANCH = 0 or -1."}, 1, -5.0, 1, false);
  report({"** On entry, OFFSET = .TRUE. and X = -1e-20", "** Constraint: if OFFSET = .TRUE., X >= 0.0."}, 2,
         -1e-20, 0, true);
  report({"** On entry, OFFSET = .FALSE. and X = -0.4", "** Constraint: if OFFSET = .FALSE., X >= -exp(-1)."}, 2,
         -0.4, -1, false);
  const std::vector<std::string> lower = {"** On entry, BRANCH = -1 and X = 0",
                                          "** Constraint: if BRANCH = -1, the argument must be negative:",
                                          "** X < 0.0 if OFFSET = .FALSE., X < exp(-1) if OFFSET = .TRUE."};
  report(lower, 3, 0.0, -1, false);
  report({"** On entry, BRANCH = -1 and X = 0.5", lower[1], lower[2]}, 3, 0.5, -1, true);

  int64_t ifail = -1;
  constexpr double kInf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isnan(lambert(NAN, 0, false, &ifail)));
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(lambert(kInf, 0, false, &ifail), kInf);
  EXPECT_EQ(lambert(0.0, 0, false, &ifail), 0.0);
  EXPECT_TRUE(std::signbit(lambert(-0.0, 0, false, &ifail)));
  EXPECT_EQ(lambert(std::exp(1.0), 0, false, &ifail), 1.0);
  // The branch point: exactly from the distance 0, and from the double nearest -1/e (just below it).
  for (int64_t branch : {0, -1}) {
    EXPECT_EQ(lambert(0.0, branch, true, &ifail), -1.0);
    EXPECT_EQ(lambert(-std::exp(-1.0), branch, false, &ifail), -1.0);
    EXPECT_EQ(ifail, 0);
  }
  // Both branches are inverses of w e^w on their own side of -1.
  for (double w : {-1.5, -7.25, -40.0, -700.0}) {
    const double z = w * std::exp(w);
    EXPECT_NEAR(lambert(z, -1, false, &ifail), w, 4e-16 * std::abs(w)) << w;
  }
  EXPECT_EQ(lambert(-5e-324, -1, false, &ifail) < -750, true);
}

TEST(LambertW, ComplexAgainstMpmath) {
  // Relative error |w - W| / |W| in units of 2^-52, per region; RESID small against |z|.
  std::map<std::string, double> worst;
  const int points = for_each_point("lambert_w_complex.txt", [&](const std::string& line, const std::string& region,
                                                                 int64_t branch, int64_t offset,
                                                                 const std::vector<double>& v) {
    const vek_complex z{v[0], v[1]};
    vek_complex w{};
    double resid = -1.0;
    int64_t ifail = -1;
    c05bbf_(&z, &branch, &offset, &w, &resid, &ifail);
    EXPECT_EQ(ifail, 0) << line;
    const double e = std::hypot(w.re - v[2], w.im - v[3]) / std::hypot(v[2], v[3]) / 0x1p-52;
    worst[region] = std::max(worst[region], e);
    EXPECT_LE(e, 3.0) << line << " got " << w.re << " " << w.im;
    EXPECT_GE(resid, 0.0);
  });
  EXPECT_GT(points, 400);
  for (const auto& [region, e] : worst) std::printf("  %-14s max %.2f x 2^-52\n", region.c_str(), e);

  // W_k(0) is -inf off the principal branch; the principal W(0) = 0.
  const vek_complex zero{0.0, 0.0};
  vek_complex w{};
  double resid = 0.0;
  int64_t branch = 0, offset = 0, ifail = -1;
  c05bbf_(&zero, &branch, &offset, &w, &resid, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(w.re, 0.0);
  branch = 3;
  vek::testing::expect_report(
      [&](int64_t* f) {
        c05bbf_(&zero, &branch, &offset, &w, &resid, f);
        EXPECT_EQ(w.re, -std::numeric_limits<double>::infinity());
      },
      1, {" ** On entry, Z = 0 and BRANCH = 3: W is infinite there.", " ** Constraint: if BRANCH /= 0, the argument must not be 0."},
      "C05BBF");
}
