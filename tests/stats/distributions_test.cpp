// The distribution functions and their deviates through their exported entries against the mpmath tables of
// make_distribution_tables.py: every tail of every row, the largest relative error per region held to the
// bounds kept in distribution_bounds.txt, lower-case TAIL bit for bit the same as upper case, and the deviate
// of each reference probability back to the table's point within the conditioning P/density.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <tuple>

#include "distribution_table.h"
#include "vek.h"

namespace {

using vek::testing::distribution_table;
using vek::testing::RegionErrors;
using vek::testing::relative_ulps;

// A call through an exported entry with IFAIL = 1, which must succeed.
template <class F>
double ok(F call) {
  int64_t ifail = 1;
  const double v = call(&ifail);
  EXPECT_EQ(ifail, 0);
  return v;
}

char lower_case(char c) { return static_cast<char>(c | 0x20); }

// Probability(tail, row) and Deviate(tail, p, row) for one distribution; the table's columns are the point,
// `params` parameters, then the tails in the order of `tails`, then (continuous) the density.
struct Distribution {
  std::string file;
  std::string tails;
  size_t params;
  std::function<double(char, const std::vector<double>&)> probability;
  std::function<double(char, double, const std::vector<double>&)> deviate;  // empty for discrete ones
};

void check(const Distribution& d, RegionErrors& errors) {
  const auto rows = distribution_table(d.file);
  ASSERT_GT(rows.size(), 50U) << d.file;
  for (const auto& r : rows) {
    for (size_t k = 0; k < d.tails.size(); ++k) {
      const char tail = d.tails[k];
      const double want = r.v[1 + d.params + k];
      const double got = d.probability(tail, r.v);
      errors.add(r.region, relative_ulps(got, want));
      EXPECT_EQ(d.probability(lower_case(tail), r.v), got) << d.file << " " << tail;  // bit for bit
      if (!d.deviate || !(want > 0.0 && want < 1.0)) continue;
      // The deviate of the reference probability: its error in x is the probability's error over the density.
      const double x = (tail == 'C' || tail == 'S') ? std::fabs(r.v[0]) : r.v[0];
      const double density = r.v.back() * ((tail == 'C' || tail == 'S') ? 2.0 : 1.0);
      const double back = d.deviate(tail, want, r.v);
      const double scale = (std::fabs(x) + want / density) * 0x1p-52;
      errors.add(d.file.substr(0, d.file.size() - 4) + "_deviate", std::fabs(back - x) / scale);
      EXPECT_EQ(d.deviate(lower_case(tail), want, r.v), back);
    }
  }
}

std::vector<Distribution> distributions() {
  std::vector<Distribution> d;
  d.push_back({"t.txt", "LUCS", 1,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01ebf_(&t, &v[0], &v[1], f, 1); }); },
               [](char t, double p, const auto& v) { return ok([&](int64_t* f) { return g01fbf_(&t, &p, &v[1], f, 1); }); }});
  d.push_back({"chisq.txt", "LU", 1,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01ecf_(&t, &v[0], &v[1], f, 1); }); },
               [](char t, double p, const auto& v) { return ok([&](int64_t* f) { return g01fcf_(&t, &p, &v[1], f, 1); }); }});
  d.push_back({"gamma.txt", "LU", 2,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01eff_(&t, &v[0], &v[1], &v[2], f, 1); }); },
               [](char t, double p, const auto& v) {
                 return ok([&](int64_t* f) { return g01fff_(&t, &p, &v[1], &v[2], f, 1); });
               }});
  d.push_back({"f.txt", "LU", 2,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01edf_(&t, &v[0], &v[1], &v[2], f, 1); }); },
               [](char t, double p, const auto& v) {
                 return ok([&](int64_t* f) { return g01fdf_(&t, &p, &v[1], &v[2], f, 1); });
               }});
  d.push_back({"beta.txt", "LU", 2,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01eef_(&t, &v[0], &v[1], &v[2], f, 1); }); },
               [](char t, double p, const auto& v) {
                 return ok([&](int64_t* f) { return g01fef_(&t, &p, &v[1], &v[2], f, 1); });
               }});
  d.push_back({"lognormal.txt", "LU", 2,
               [](char t, const auto& v) { return ok([&](int64_t* f) { return g01ekf_(&t, &v[0], &v[1], &v[2], f, 1); }); },
               [](char t, double p, const auto& v) {
                 return ok([&](int64_t* f) { return g01fkf_(&t, &p, &v[1], &v[2], f, 1); });
               }});
  d.push_back({"poisson.txt", "LU", 1,
               [](char t, const auto& v) {
                 const int64_t k = static_cast<int64_t>(v[0]);
                 return ok([&](int64_t* f) { return g01bkf_(&t, &v[1], &k, f, 1); });
               },
               {}});
  d.push_back({"binomial.txt", "LU", 2,
               [](char t, const auto& v) {
                 const int64_t k = static_cast<int64_t>(v[0]), n = static_cast<int64_t>(v[1]);
                 return ok([&](int64_t* f) { return g01bjf_(&t, &n, &v[2], &k, f, 1); });
               },
               {}});
  d.push_back({"hypergeometric.txt", "LU", 3,
               [](char t, const auto& v) {
                 const int64_t k = static_cast<int64_t>(v[0]), n = static_cast<int64_t>(v[1]);
                 const int64_t l = static_cast<int64_t>(v[2]), m = static_cast<int64_t>(v[3]);
                 return ok([&](int64_t* f) { return g01blf_(&t, &n, &l, &m, &k, f, 1); });
               },
               {}});
  return d;
}

// The logarithms of the tails, relative to the logarithm, far beyond the underflow of the tails.
void check_log_tails(RegionErrors& errors) {
  const auto normal = distribution_table("normal_log.txt");
  ASSERT_GT(normal.size(), 50U);
  for (const auto& r : normal) {
    for (size_t k = 0; k < 4; ++k) {
      const char tail = "LUCS"[k];
      const double got = ok([&](int64_t* f) { return g01erf_(&tail, &r.v[0], f, 1); });
      errors.add(r.region, relative_ulps(got, r.v[1 + k]));
      const char lc = lower_case(tail);
      EXPECT_EQ(ok([&](int64_t* f) { return g01erf_(&lc, &r.v[0], f, 1); }), got);
    }
  }
  // The gamma, beta, t and F tables: the point, the parameters, then ln of the tails in the order given.
  using LogTail = std::function<double(char, const std::vector<double>&, int64_t*)>;
  const std::vector<std::tuple<std::string, std::string, LogTail>> tables = {
      {"gamma_log.txt", "LU", [](char t, const auto& v, int64_t* f) { return g01esf_(&t, &v[0], &v[1], &v[2], f, 1); }},
      {"beta_log.txt", "LU", [](char t, const auto& v, int64_t* f) { return g01evf_(&t, &v[0], &v[1], &v[2], f, 1); }},
      {"f_log.txt", "LU", [](char t, const auto& v, int64_t* f) { return g01euf_(&t, &v[0], &v[1], &v[2], f, 1); }},
      {"t_log.txt", "LUCS", [](char t, const auto& v, int64_t* f) { return g01etf_(&t, &v[0], &v[1], f, 1); }}};
  for (const auto& [file, tails, log_tail] : tables) {
    const auto rows = distribution_table(file);
    ASSERT_GT(rows.size(), 20U) << file;
    for (const auto& r : rows) {
      const size_t first = r.v.size() - tails.size();
      for (size_t k = 0; k < tails.size(); ++k) {
        const double got = ok([&](int64_t* f) { return log_tail(tails[k], r.v, f); });
        errors.add(r.region, relative_ulps(got, r.v[first + k]));
      }
    }
  }
}

TEST(Distributions, AccuracyAgainstReferenceWithinTheKeptBounds) {
  RegionErrors errors;
  for (const auto& d : distributions()) check(d, errors);
  check_log_tails(errors);
  const auto bounds = RegionErrors::bounds();
  for (const auto& [region, err] : errors.max()) {
    std::printf("%-28s max %.3g ulp\n", region.c_str(), err);
    const auto b = bounds.find(region);
    if (b == bounds.end()) {
      ADD_FAILURE() << region << " has no bound";
      continue;
    }
    EXPECT_LE(err, b->second) << region;
  }
}

}  // namespace
