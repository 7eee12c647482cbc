// The discrete deviates G01BMF, G01BNF and G01BPF against the definition, through the tails of G01BJF, G01BKF
// and G01BLF at the points of the mpmath tables: at P equal to a tail at K, and one ulp either side, the
// deviate R has its tail reaching P and R - 1 not (so P = the tail at K gives K itself wherever the tail at
// K - 1 differs).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "distribution_table.h"
#include "vek.h"

namespace {

using vek::testing::distribution_table;

struct Discrete {
  std::string file;
  // The tail at k and the deviate of prob, for the parameters of a table row.
  std::function<double(char, int64_t, const std::vector<double>&)> tail;
  std::function<int64_t(char, double, const std::vector<double>&)> deviate;
};

int64_t as_int(double v) { return static_cast<int64_t>(v); }

template <class F>
auto ok(F call) {
  int64_t ifail = 1;
  const auto v = call(&ifail);
  EXPECT_EQ(ifail, 0);
  return v;
}

std::vector<Discrete> discretes() {
  return {
      {"binomial.txt",
       [](char t, int64_t k, const auto& v) {
         const int64_t n = as_int(v[1]);
         return ok([&](int64_t* f) { return g01bjf_(&t, &n, &v[2], &k, f, 1); });
       },
       [](char t, double p, const auto& v) {
         const int64_t n = as_int(v[1]);
         return ok([&](int64_t* f) { return g01bmf_(&t, &n, &v[2], &p, f, 1); });
       }},
      {"poisson.txt",
       [](char t, int64_t k, const auto& v) { return ok([&](int64_t* f) { return g01bkf_(&t, &v[1], &k, f, 1); }); },
       [](char t, double p, const auto& v) { return ok([&](int64_t* f) { return g01bnf_(&t, &v[1], &p, f, 1); }); }},
      {"hypergeometric.txt",
       [](char t, int64_t k, const auto& v) {
         const int64_t n = as_int(v[1]), l = as_int(v[2]), m = as_int(v[3]);
         return ok([&](int64_t* f) { return g01blf_(&t, &n, &l, &m, &k, f, 1); });
       },
       [](char t, double p, const auto& v) {
         const int64_t n = as_int(v[1]), l = as_int(v[2]), m = as_int(v[3]);
         return ok([&](int64_t* f) { return g01bpf_(&t, &n, &l, &m, &p, f, 1); });
       }},
  };
}

TEST(DiscreteDeviates, SmallestPointWhoseTailReachesP) {
  for (const Discrete& d : discretes()) {
    const auto rows = distribution_table(d.file);
    ASSERT_GT(rows.size(), 40U) << d.file;
    int checked = 0;
    for (const auto& r : rows) {
      const int64_t k = as_int(r.v[0]);
      for (const char t : {'L', 'U'}) {
        // 'L': P(X <= j) >= p; 'U': P(X > j) <= p.
        const auto reaches = [&](int64_t j, double p) {
          const double v = d.tail(t, j, r.v);
          return t == 'L' ? v >= p : v <= p;
        };
        const double at_k = d.tail(t, k, r.v);
        for (const double p : {at_k, std::nextafter(at_k, 0.0), std::nextafter(at_k, 1.0)}) {
          if (!(p > 0.0 && p < 1.0)) continue;
          const int64_t got = d.deviate(t, p, r.v);
          EXPECT_TRUE(reaches(got, p)) << d.file << " " << t << " k " << k << " p " << p << " got " << got;
          EXPECT_FALSE(got > 0 && reaches(got - 1, p)) << d.file << " " << t << " k " << k << " p " << p;
          if (p == at_k && !reaches(k - 1, p)) EXPECT_EQ(got, k) << d.file << " " << t;
          ++checked;
        }
      }
    }
    EXPECT_GT(checked, 150) << d.file;
  }
}

}  // namespace
