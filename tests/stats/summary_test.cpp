// G01AMF, G01ANF and G01APF/G01AQF/G01ARF through their exported entries: quantiles of the nine types and
// the robust summaries against exact rational arithmetic, moments met in blocks against mpmath and against
// G01AAF and a long-double computation, and every message.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::expect_report;

// Lines "tag v1 v2 ..." of a data file, in order.
std::vector<std::pair<std::string, std::vector<double>>> tagged(const std::string& name) {
  std::ifstream in(std::string(VEK_TEST_DATA_DIR) + "/" + name);
  std::vector<std::pair<std::string, std::vector<double>>> out;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string tag;
    fields >> tag;
    std::vector<double> v;
    for (std::string f; fields >> f;) v.push_back(std::strtod(f.c_str(), nullptr));
    out.emplace_back(tag, v);
  }
  return out;
}

std::vector<double> quantiles(const std::vector<double>& x, const std::vector<double>& q, int64_t type,
                              int64_t* ifail_out = nullptr) {
  const int64_t n = static_cast<int64_t>(x.size()), nq = static_cast<int64_t>(q.size());
  std::vector<double> qv(q.size()), wk(x.size());
  int64_t ifail = 1;
  g01amf_(&n, x.data(), &nq, q.data(), &type, qv.data(), wk.data(), &ifail);
  if (ifail_out) *ifail_out = ifail;
  else EXPECT_EQ(ifail, 0);
  return qv;
}

TEST(Summary, QuantilesAgainstExactRationals) {
  std::vector<double> x;
  int rows = 0;
  for (const auto& [tag, v] : tagged("quantiles.txt")) {
    if (tag == "data") {
      x = v;
      continue;
    }
    ++rows;
    for (int64_t type = 1; type <= 9; ++type) {
      const double got = quantiles(x, {v[0]}, type)[0], want = v[static_cast<size_t>(type)];
      if (type <= 3) {
        EXPECT_EQ(got, want) << "type " << type << " p = " << v[0] << " n = " << x.size();
      } else {
        // (1 - g) x(j) + g x(j+1) with g to about 2 ulp: a few roundings of the two order statistics and of
        // their difference (the neighbours of j taken, j being found here in working precision).
        std::vector<double> s = x;
        std::sort(s.begin(), s.end());
        const auto j = static_cast<long>(std::floor(static_cast<double>(s.size()) * v[0]));
        double size = 0, step = 0;
        for (long k = std::max(0L, j - 3); k < std::min<long>(static_cast<long>(s.size()), j + 3); ++k) {
          size = std::max(size, std::fabs(s[static_cast<size_t>(k)]));
          if (k > 0) step = std::max(step, s[static_cast<size_t>(k)] - s[static_cast<size_t>(k) - 1]);
        }
        EXPECT_NEAR(got, want, 4 * 0x1p-52 * (size + step))
            << "type " << type << " p = " << v[0] << " n = " << x.size();
      }
    }
  }
  EXPECT_GT(rows, 200);
  // Several probabilities in one call give the single-probability results; the input is not changed.
  const std::vector<double> data = {5, 1, 4, 2, 3}, copy = data;
  const std::vector<double> many = quantiles(data, {0.1, 0.5, 0.9}, 7);
  EXPECT_EQ(many, (std::vector<double>{quantiles(data, {0.1}, 7)[0], 3.0, quantiles(data, {0.9}, 7)[0]}));
  EXPECT_EQ(data, copy);
  // A NaN observation makes every quantile NaN (and nothing is sorted through it).
  const std::vector<double> with_nan = quantiles({1, NAN, 3}, {0.0, 0.5}, 2);
  EXPECT_TRUE(std::isnan(with_nan[0]) && std::isnan(with_nan[1]));
}

struct RobustResult {
  double med, mad, trim, wins;
  int64_t ifail;
};

RobustResult robust(const std::vector<double>& x, double alpha) {
  const int64_t n = static_cast<int64_t>(x.size());
  std::vector<double> wk(x.size());
  RobustResult r{};
  r.ifail = 1;
  g01anf_(&n, x.data(), &alpha, &r.med, &r.mad, &r.trim, &r.wins, wk.data(), &r.ifail);
  return r;
}

TEST(Summary, RobustSummariesAgainstExactRationals) {
  std::vector<double> x;
  int rows = 0;
  for (const auto& [tag, v] : tagged("robust.txt")) {
    if (tag == "data") {
      x = v;
      continue;
    }
    ++rows;
    const RobustResult r = robust(x, v[0]);
    ASSERT_EQ(r.ifail, 0);
    EXPECT_EQ(r.med, v[1]);
    EXPECT_NEAR(r.mad, v[2], 2 * 0x1p-52 * std::fabs(v[1]));  // |x - median| rounded once
    double scale = 0;
    for (double e : x) scale = std::max(scale, std::fabs(e));
    // The means as corrected two-pass means: a few ulp of the data's magnitude.
    EXPECT_NEAR(r.trim, v[3], 4 * 0x1p-52 * scale) << "alpha " << v[0];
    EXPECT_NEAR(r.wins, v[4], 4 * 0x1p-52 * scale) << "alpha " << v[0];
  }
  EXPECT_EQ(rows, 30);
  const RobustResult nan = robust({1, 2, NAN}, 0.1);
  EXPECT_TRUE(std::isnan(nan.med) && std::isnan(nan.mad) && std::isnan(nan.trim) && std::isnan(nan.wins));
  const RobustResult one = robust({7.5}, 0.4);
  EXPECT_TRUE(one.med == 7.5 && one.mad == 0 && one.trim == 7.5 && one.wins == 7.5);
}

struct Running {
  double r[7] = {0, 0, 0, 0, 0, 0, 0};
  void add(const double* x, size_t n) {
    const auto nb = static_cast<int64_t>(n);
    int64_t ifail = 1;
    g01apf_(&nb, x, r, &ifail);
    EXPECT_EQ(ifail, 0);
  }
  void merge(const Running& other) {
    int64_t ifail = 1;
    g01aqf_(r, other.r, &ifail);
    EXPECT_EQ(ifail, 0);
  }
};

struct Stats {
  double mean, sd, skew, kurt, min, max;
  int64_t n, ifail;
};

Stats results(const Running& s) {
  Stats t{};
  t.ifail = 1;
  g01arf_(s.r, &t.mean, &t.sd, &t.skew, &t.kurt, &t.min, &t.max, &t.n, &t.ifail);
  return t;
}

TEST(Summary, BlockMomentsAgainstReferenceAndSecondMethods) {
  // The ill-conditioned unweighted samples of the moment tables, fed in uneven blocks, and again as two
  // sequences merged: the mpmath moments within the bounds G01AAF meets on them.
  std::vector<double> x;
  int used = 0;
  for (const auto& [tag, v] : tagged("moments.txt")) {
    if (tag == "data") x = v;
    if (tag == "weights" && !v.empty()) x.clear();  // weighted samples are G01AAF's alone
    if (tag != "moments" || x.empty()) continue;
    ++used;
    Running whole, left, right;
    std::mt19937_64 rng(7);
    for (size_t at = 0; at < x.size();) {
      const size_t len = std::min<size_t>(x.size() - at, 1 + rng() % 37);
      whole.add(x.data() + at, len);
      (at < x.size() / 2 ? left : right).add(x.data() + at, len);
      at += len;
    }
    left.merge(right);
    const double mean = v[0], sd = v[1], cond = 1.0 + std::fabs(mean) / sd;
    for (const Running* s : {&whole, &left}) {
      const Stats t = results(*s);
      ASSERT_EQ(t.ifail, 0);
      EXPECT_EQ(t.n, static_cast<int64_t>(x.size()));
      EXPECT_NEAR(t.mean, mean, 4 * 0x1p-52 * std::fabs(mean) + 1e-300);
      EXPECT_NEAR(t.sd, sd, 16 * 0x1p-52 * cond * sd);
      EXPECT_NEAR(t.skew, v[2], 64 * 0x1p-52 * cond * (1 + std::fabs(v[2])));
      EXPECT_NEAR(t.kurt, v[3], 64 * 0x1p-52 * cond * (1 + std::fabs(v[3])));
      EXPECT_EQ(t.min, *std::min_element(x.begin(), x.end()));
      EXPECT_EQ(t.max, *std::max_element(x.begin(), x.end()));
    }
  }
  EXPECT_EQ(used, 4);
  // Benign data: blocks of one, blocks of 1000, merges, G01AAF and a naive long-double two-pass agree.
  std::mt19937_64 rng(11);
  std::lognormal_distribution<double> dist(0.0, 0.7);
  std::vector<double> y(5000);
  for (double& e : y) e = dist(rng);
  Running ones, big;
  for (size_t i = 0; i < y.size(); ++i) ones.add(&y[i], 1);
  for (size_t i = 0; i < y.size(); i += 1000) big.add(&y[i], 1000);
  long double m = 0, m2 = 0, m3 = 0, m4 = 0;
  for (double e : y) m += e;
  m /= y.size();
  for (double e : y) {
    const long double d = e - m;
    m2 += d * d, m3 += d * d * d, m4 += d * d * d * d;
  }
  const long double n = y.size(), var = m2 / (n - 1);
  const double want[4] = {static_cast<double>(m), static_cast<double>(std::sqrt(var)),
                          static_cast<double>(m3 / n / (var * std::sqrt(var))), static_cast<double>(m4 / n / (var * var) - 3)};
  double aa[7];
  int64_t nn = static_cast<int64_t>(y.size()), iwt = 0, ifail = 1;
  g01aaf_(&nn, y.data(), &iwt, y.data(), aa, aa + 1, aa + 2, aa + 3, aa + 4, aa + 5, aa + 6, &ifail);
  for (const Running* s : {&ones, &big}) {
    const Stats t = results(*s);
    const double got[4] = {t.mean, t.sd, t.skew, t.kurt};
    for (int k = 0; k < 4; ++k) {
      EXPECT_NEAR(got[k], want[k], 1e-14 * std::fabs(want[k])) << k;
      EXPECT_NEAR(got[k], aa[k], 1e-14 * std::fabs(want[k])) << k;
    }
  }
  // Merging an empty sequence changes nothing; merging into an empty one copies.
  Running empty, copy;
  Running before = big;
  big.merge(empty);
  EXPECT_TRUE(std::equal(big.r, big.r + 7, before.r));
  copy.merge(big);
  EXPECT_TRUE(std::equal(copy.r, copy.r + 7, big.r));
  // A NaN observation: every result NaN.
  Running bad;
  const double nan_block[3] = {1, NAN, 2};
  bad.add(nan_block, 3);
  const Stats t = results(bad);
  EXPECT_TRUE(std::isnan(t.mean) && std::isnan(t.sd) && std::isnan(t.min) && std::isnan(t.max));
}

TEST(Summary, Messages) {
  const double x[3] = {1, 2, 3};
  double qv[3], wk[3], out[4];
  const double q_ok[2] = {0.5, 0.25}, q_bad[2] = {0.5, 1.5};
  const int64_t one = 1, two = 2, three = 3, zero = 0;
  int64_t type = 7;
  expect_report([&](int64_t* f) { g01amf_(&zero, x, &two, q_ok, &type, qv, wk, f); }, 1,
                {" ** On entry, N = 0.", " ** Constraint: N >= 1."}, "G01AMF");
  expect_report([&](int64_t* f) { g01amf_(&three, x, &zero, q_ok, &type, qv, wk, f); }, 1,
                {" ** On entry, NQ = 0.", " ** Constraint: NQ >= 1."}, "G01AMF");
  type = 10;
  expect_report([&](int64_t* f) { g01amf_(&three, x, &two, q_ok, &type, qv, wk, f); }, 1,
                {" ** On entry, ITYPE = 10.", " ** Constraint: 1 <= ITYPE <= 9."}, "G01AMF");
  type = 1;
  expect_report([&](int64_t* f) { g01amf_(&three, x, &two, q_bad, &type, qv, wk, f); }, 2,
                {" ** On entry, Q(2) = 1.5.", " ** Constraint: 0.0 <= Q(i) <= 1.0."}, "G01AMF");
  double alpha = 0.5;
  expect_report([&](int64_t* f) { g01anf_(&zero, x, &alpha, out, out + 1, out + 2, out + 3, wk, f); }, 1,
                {" ** On entry, N = 0.", " ** Constraint: N >= 1."}, "G01ANF");
  expect_report([&](int64_t* f) { g01anf_(&three, x, &alpha, out, out + 1, out + 2, out + 3, wk, f); }, 1,
                {" ** On entry, ALPHA = 0.5.", " ** Constraint: 0.0 <= ALPHA < 0.5."}, "G01ANF");
  double r[7] = {2.5, 0, 0, 0, 0, 0, 0}, good[7] = {0, 0, 0, 0, 0, 0, 0};
  const int64_t minus = -1;
  expect_report([&](int64_t* f) { g01apf_(&minus, x, good, f); }, 1,
                {" ** On entry, NB = -1.", " ** Constraint: NB >= 0."}, "G01APF");
  const std::vector<std::string> invalid = {" ** On entry, RCOMM(1) = 2.5.",
                                            " ** Constraint: RCOMM(1) = 0 (a new sequence) or as returned by G01APF."};
  expect_report([&](int64_t* f) { g01apf_(&one, x, r, f); }, 2, invalid, "G01APF");
  expect_report([&](int64_t* f) { g01aqf_(r, good, f); }, 2, invalid, "G01AQF");
  expect_report([&](int64_t* f) { g01aqf_(good, r, f); }, 3,
                {" ** On entry, RCOMB(1) = 2.5.", " ** Constraint: RCOMB(1) = 0 or as returned by G01APF."}, "G01AQF");
  int64_t nobs;
  expect_report([&](int64_t* f) { g01arf_(r, out, out + 1, out + 2, out + 3, qv, qv + 1, &nobs, f); }, 2, invalid,
                "G01ARF");
  r[0] = 3;
  r[2] = -1;  // a negative sum of squares is no state a sequence leaves
  expect_report([&](int64_t* f) { g01arf_(r, out, out + 1, out + 2, out + 3, qv, qv + 1, &nobs, f); }, 2,
                {" ** On entry, RCOMM(1) = 3.", invalid[1]}, "G01ARF");
  Running s;
  s.add(x, 1);
  expect_report([&](int64_t* f) { g01arf_(s.r, out, out + 1, out + 2, out + 3, qv, qv + 1, &nobs, f); }, 3,
                {" ** On entry, the number of observations = 1.",
                 " ** Constraint: at least 2 observations; S2, S3 and S4 are returned as 0."},
                "G01ARF");
  EXPECT_EQ(out[0], 1.0);
  EXPECT_EQ(nobs, 1);
  s.add(x, 1);
  expect_report([&](int64_t* f) { g01arf_(s.r, out, out + 1, out + 2, out + 3, qv, qv + 1, &nobs, f); }, 4,
                {" ** The observations are all equal:", " ** S3 and S4 are undefined and returned as 0."}, "G01ARF");
  EXPECT_EQ(out[1], 0.0);
}

}  // namespace
