// The base generators through the exported entries: streams against independent computations of their
// recurrences, skip-ahead against drawing, leap-frog against the unsplit stream, split requests, and the
// normal generator's thread independence.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "support/mrg32k3a_reference.h"
#include "vek.h"

namespace {

using State = std::vector<int64_t>;

State initialised(int64_t genid, std::vector<int64_t> seeds, int64_t subid = 1, int64_t lstate = 0) {
  int64_t len = lstate, ifail = 1;
  const auto lseed = static_cast<int64_t>(seeds.size());
  State state(1);
  if (len <= 0) {
    g05kff_(&genid, &subid, seeds.data(), &lseed, state.data(), &len, &ifail);
    EXPECT_EQ(ifail, -1);
  }
  state.assign(static_cast<size_t>(len), 0);
  ifail = 1;
  g05kff_(&genid, &subid, seeds.data(), &lseed, state.data(), &len, &ifail);
  EXPECT_EQ(ifail, 0) << "GENID " << genid;
  return state;
}

std::vector<double> draw(State& state, int64_t n) {
  std::vector<double> x(static_cast<size_t>(n));
  int64_t ifail = 1;
  g05saf_(&n, state.data(), x.data(), &ifail);
  EXPECT_EQ(ifail, 0);
  return x;
}

void skip(State& state, int64_t n) {
  int64_t ifail = 1;
  g05kjf_(&n, state.data(), &ifail);
  EXPECT_EQ(ifail, 0);
}

struct Generator {
  int64_t genid, subid;
  std::vector<int64_t> seeds;
};

const std::vector<Generator>& all_generators() {
  static const std::vector<Generator> g = {
      {1, 1, {1762543}}, {2, 17, {1762543, 9}}, {3, 1, {1762543}}, {4, 1, {1762543, 5, 7}},
      {5, 0, {1762543}}, {6, 1, {1762543, 2, 3}}};
  return g;
}

TEST(Streams, Genid1IsTheStatedCongruentialArithmetic) {
  const unsigned __int128 a = 302875106592253, mod = static_cast<unsigned __int128>(1) << 60;
  for (int64_t seed : {int64_t{1}, int64_t{123}, int64_t{987654321987}, INT64_MAX}) {
    State state = initialised(1, {seed});
    // The multiplier's limbs and the initial x, as stored.
    EXPECT_EQ((State{state[8], state[9], state[10], state[11]}), (State{17917, 13895, 19930, 8}));
    unsigned __int128 x = (4 * (static_cast<unsigned __int128>(seed) % (static_cast<unsigned __int128>(1) << 58)) + 2) * a % mod;
    EXPECT_EQ(state[4] + (state[5] << 15) + (state[6] << 30) + (state[7] << 45), static_cast<int64_t>(x));
    const std::vector<double> u = draw(state, 1000);
    for (double v : u) {
      x = x * a % mod;
      const auto hi = static_cast<double>(static_cast<uint64_t>(x >> 30)), lo = static_cast<double>(static_cast<uint64_t>(x & 0x3fffffff));
      ASSERT_EQ(v, 1.0 - (hi * 0x1p-30 + lo * 0x1p-60));
    }
  }
  State one = initialised(1, {123}), two = initialised(1, {123, 9});
  EXPECT_EQ(draw(one, 50), draw(two, 50));
}

TEST(Streams, MersenneTwisterIsMt19937) {
  for (uint32_t seed : {5489u, 1u, 4294967295u}) {
    State state = initialised(3, {static_cast<int64_t>(seed)});
    std::mt19937 reference(seed);
    for (double u : draw(state, 5000)) ASSERT_EQ(static_cast<uint32_t>(u * 0x1p32 - 0.5), reference());
  }
}

TEST(Streams, Mrg32k3aIsLEcuyersAlgorithm) {
  const std::vector<int64_t> seeds = {12345, 23456, 34567, 45678, 56789, 67890};
  State state = initialised(6, seeds);
  vek::testing::Mrg32k3aReference ref{12345, 23456, 34567, 45678, 56789, 67890};
  // Lengths that use the four-lane path and the plain one.
  for (int64_t n : {1, 7, 1024, 5000}) {
    for (double u : draw(state, n)) ASSERT_NEAR(u, ref.next(), 1e-16);
  }
  State six = initialised(6, seeds), seven = initialised(6, {12345, 23456, 34567, 45678, 56789, 67890, 5});
  EXPECT_EQ(draw(six, 100), draw(seven, 100));
}

TEST(Streams, SkipAheadEqualsDrawing) {
  for (const Generator& g : all_generators()) {
    SCOPED_TRACE(g.genid);
    for (int64_t n : {0, 1, 1000, 1000000}) {
      State drawn = initialised(g.genid, g.seeds, g.subid, g.genid == 3 ? 1260 : 0), skipped = drawn;
      draw(drawn, n);
      skip(skipped, n);
      ASSERT_EQ(draw(drawn, 20), draw(skipped, 20)) << "n = " << n;
    }
    State once = initialised(g.genid, g.seeds, g.subid, g.genid == 3 ? 1260 : 0), twice = once;
    skip(once, int64_t{1} << 40);
    skip(twice, int64_t{1} << 39);
    skip(twice, int64_t{1} << 39);
    EXPECT_EQ(draw(once, 20), draw(twice, 20));
  }
}

TEST(Streams, LeapFrogTakesEveryNthValue) {
  for (const Generator& g : all_generators()) {
    if (g.genid == 5) continue;  // ACORN cannot leap-frog
    SCOPED_TRACE(g.genid);
    State whole = initialised(g.genid, g.seeds, g.subid);
    const std::vector<double> all = draw(whole, 400);
    for (auto [n, k] : {std::pair<int64_t, int64_t>{1, 1}, {3, 1}, {3, 2}, {3, 3}, {7, 5}}) {
      State part = initialised(g.genid, g.seeds, g.subid);
      int64_t ifail = 1;
      g05khf_(&n, &k, part.data(), &ifail);
      ASSERT_EQ(ifail, 0);
      const std::vector<double> got = draw(part, 400 / n);
      for (size_t i = 0; i < got.size(); ++i) ASSERT_EQ(got[i], all[static_cast<size_t>(k - 1 + n * static_cast<int64_t>(i))]);
    }
    // A leap-frogged stream skips in its own steps: skipping 5 passes 5 of its values.
    State part = initialised(g.genid, g.seeds, g.subid, g.genid == 3 ? 1260 : 0);
    int64_t n = 4, k = 2, ifail = 1;
    g05khf_(&n, &k, part.data(), &ifail);
    skip(part, 5);
    EXPECT_EQ(draw(part, 1)[0], all[1 + 4 * 5]);
  }
}

TEST(Streams, SplitRequestsAndOpenInterval) {
  for (const Generator& g : all_generators()) {
    SCOPED_TRACE(g.genid);
    State one = initialised(g.genid, g.seeds, g.subid), parts = one;
    const std::vector<double> whole = draw(one, 3000);
    std::vector<double> pieces;
    for (int64_t n : {1, 999, 0, 2000}) {
      const std::vector<double> p = draw(parts, n);
      pieces.insert(pieces.end(), p.begin(), p.end());
    }
    EXPECT_EQ(whole, pieces);

    // Chi-square over 100 bins and the lag-1 correlation, for 2e5 draws.
    const std::vector<double> u = draw(one, 200000);
    std::vector<double> bins(100, 0.0);
    double sum = 0, sum_lag = 0, sum_sq = 0;
    for (size_t i = 0; i < u.size(); ++i) {
      ASSERT_GT(u[i], 0.0);
      ASSERT_LT(u[i], 1.0);
      bins[static_cast<size_t>(u[i] * 100)] += 1;
      sum += u[i];
      sum_sq += u[i] * u[i];
      if (i > 0) sum_lag += u[i] * u[i - 1];
    }
    const double expected = static_cast<double>(u.size()) / 100;
    double chi2 = 0;
    for (double b : bins) chi2 += (b - expected) * (b - expected) / expected;
    EXPECT_LT(chi2, 160.0);  // 99 degrees of freedom: P(chi2 > 160) < 1e-4
    const double n = static_cast<double>(u.size()), mean = sum / n, var = sum_sq / n - mean * mean;
    EXPECT_LT(std::fabs((sum_lag / (n - 1) - mean * mean) / var), 0.012);  // 5 standard deviations
  }
}

TEST(Streams, NormalVariatesIndependentOfThreads) {
  const int64_t n = 200000;
  const double xmu = 1.5, var = 4.0;
  auto normals = [&](int64_t threads) {
    int64_t ifail = 1;
    x06aaf_(&threads, &ifail);
    State state = initialised(1, {42});
    std::vector<double> x(static_cast<size_t>(n));
    ifail = 1;
    g05skf_(&n, &xmu, &var, state.data(), x.data(), &ifail);
    EXPECT_EQ(ifail, 0);
    return x;
  };
  const int64_t before = x06acf_();
  const std::vector<double> one = normals(1);
  EXPECT_EQ(normals(2), one);
  EXPECT_EQ(normals(3), one);
  EXPECT_EQ(normals(4), one);
  std::vector<double> inside;
#pragma omp parallel num_threads(2)
  {
#pragma omp single
    inside = normals(4);
  }
  EXPECT_EQ(inside, one);
  int64_t ifail = 1;
  x06aaf_(&before, &ifail);

  // The values are the inverse normal of the uniforms of the same stream.
  State state = initialised(1, {42});
  const std::vector<double> u = draw(state, 1000);
  double mean = 0;
  for (size_t i = 0; i < u.size(); ++i) {
    const double z = (one[i] - xmu) / 2.0;
    ASSERT_NEAR(0.5 * std::erfc(-z / std::sqrt(2.0)), u[i], 1e-14 + 1e-13 * u[i]);
  }
  for (double v : one) mean += v;
  // The vectorised transform is the scalar kernel bit for bit: with mean 0 and variance 1 each value is the
  // normal deviate of its uniform, as G01FAF computes it.
  State unit_state = initialised(1, {42}), same = unit_state;
  const int64_t m = 4096;
  const double zero = 0.0, unit = 1.0;
  std::vector<double> z(static_cast<size_t>(m));
  int64_t fail = 1;
  g05skf_(&m, &zero, &unit, unit_state.data(), z.data(), &fail);
  const std::vector<double> uniforms = draw(same, m);
  for (size_t i = 0; i < z.size(); ++i) {
    fail = 1;
    ASSERT_EQ(z[i], g01faf_("L", &uniforms[i], &fail, 1));
  }
  EXPECT_NEAR(mean / static_cast<double>(n), xmu, 5 * 2.0 / std::sqrt(static_cast<double>(n)));
}

}  // namespace
