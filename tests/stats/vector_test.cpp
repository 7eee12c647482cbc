// The vectorised probabilities: bit for bit the scalar routines at every point, for 1, 2 and 3 threads; the
// parameters taken cyclically; per-point statuses and the IFAIL 3 report; the argument messages.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

using vek::testing::expect_report;

bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

struct Points {
  std::vector<double> x, df, mu, sd, shape, scale;
};

Points make_points(int64_t n) {
  std::mt19937_64 gen(11);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  Points pts;
  for (int64_t i = 0; i < n; ++i) pts.x.push_back(i % 97 == 5 ? -1.0 : std::pow(10.0, 4 * u(gen) - 2));
  for (int i = 0; i < 13; ++i) pts.df.push_back(i == 7 ? 0.0 : std::pow(10.0, 5 * u(gen) - 1));
  for (int i = 0; i < 5; ++i) pts.mu.push_back(4 * u(gen) - 2);
  for (int i = 0; i < 3; ++i) pts.sd.push_back(i == 2 ? -1.0 : 0.5 + u(gen));
  for (int i = 0; i < 7; ++i) pts.shape.push_back(std::pow(10.0, 4 * u(gen) - 1));
  for (int i = 0; i < 2; ++i) pts.scale.push_back(0.5 + u(gen));
  return pts;
}

// The vector routine's P and IVALID, and the scalar routines' values and IFAILs at the same points.
struct Result {
  std::vector<double> p;
  std::vector<int64_t> ivalid;
  int64_t ifail;
};

Result vector_call(char routine, char tail, const Points& v) {
  const int64_t n = static_cast<int64_t>(v.x.size());
  Result r{std::vector<double>(v.x.size()), std::vector<int64_t>(v.x.size()), 1};
  const int64_t ldf = static_cast<int64_t>(v.df.size()), lmu = static_cast<int64_t>(v.mu.size());
  const int64_t lsd = static_cast<int64_t>(v.sd.size()), la = static_cast<int64_t>(v.shape.size());
  const int64_t lb = static_cast<int64_t>(v.scale.size());
  switch (routine) {
    case 'N': g01saf_(&tail, &n, v.x.data(), &lmu, v.mu.data(), &lsd, v.sd.data(), r.p.data(), r.ivalid.data(), &r.ifail, 1); break;
    case 'T': g01sbf_(&tail, &n, v.x.data(), &ldf, v.df.data(), r.p.data(), r.ivalid.data(), &r.ifail, 1); break;
    case 'C': g01scf_(&tail, &n, v.x.data(), &ldf, v.df.data(), r.p.data(), r.ivalid.data(), &r.ifail, 1); break;
    default: g01sff_(&tail, &n, v.x.data(), &la, v.shape.data(), &lb, v.scale.data(), r.p.data(), r.ivalid.data(), &r.ifail, 1);
  }
  return r;
}

Result scalar_calls(char routine, char tail, const Points& v) {
  Result r{{}, {}, 0};
  for (size_t i = 0; i < v.x.size(); ++i) {
    int64_t ifail = 1;
    double p = 0.0;
    const double df = v.df[i % v.df.size()], a = v.shape[i % v.shape.size()], b = v.scale[i % v.scale.size()];
    if (routine == 'N') {
      const double z = (v.x[i] - v.mu[i % v.mu.size()]) / v.sd[i % v.sd.size()];
      p = v.sd[i % v.sd.size()] > 0.0 ? g01eaf_(&tail, &z, &ifail, 1) : (ifail = 1, 0.0);
    } else if (routine == 'T') {
      p = g01ebf_(&tail, &v.x[i], &df, &ifail, 1);
    } else if (routine == 'C') {
      p = g01ecf_(&tail, &v.x[i], &df, &ifail, 1);
    } else {
      p = g01eff_(&tail, &v.x[i], &a, &b, &ifail, 1);
    }
    r.p.push_back(ifail == 0 ? p : 0.0);
    r.ivalid.push_back(ifail == 0 ? 0 : -1);
  }
  return r;
}

TEST(VectorProbabilities, BitForBitTheScalarRoutinesForAnyThreadCount) {
  const Points pts = make_points(5000);
  const int64_t threads_before = x06acf_();
  for (char routine : {'N', 'T', 'C', 'G'}) {
    for (char tail : {'L', 'u'}) {
      const Result scalar = scalar_calls(routine, tail, pts);
      for (int64_t threads : {1, 2, 3}) {
        int64_t ifail = 0;
        x06aaf_(&threads, &ifail);
        const Result vec = vector_call(routine, tail, pts);
        EXPECT_TRUE(same_bits(vec.p, scalar.p)) << routine << tail << " " << threads << " threads";
        EXPECT_EQ(vec.ifail, 3) << routine;  // every set has invalid points
        for (size_t i = 0; i < pts.x.size(); ++i)
          ASSERT_EQ(vec.ivalid[i] != 0, scalar.ivalid[i] != 0) << routine << " point " << i;
      }
    }
  }
  int64_t ifail = 0, restore = threads_before;
  x06aaf_(&restore, &ifail);
}

TEST(VectorProbabilities, StatusesAndMessages) {
  Points pts;
  pts.x = {1.0, -2.0, 3.0, 4.0};
  pts.df = {2.0, -1.0};
  pts.shape = {1.0};
  pts.scale = {0.0, 1.0};
  const Result chi = vector_call('C', 'U', pts);
  EXPECT_EQ(chi.ivalid, (std::vector<int64_t>{0, 1, 0, 2}));  // X checked before DF, as in G01ECF
  EXPECT_EQ(chi.p[1], 0.0);
  EXPECT_NEAR(chi.p[2], std::exp(-1.5), 1e-16);  // chi-square with 2 df: e^(-x/2)
  const Result gam = vector_call('G', 'L', pts);
  EXPECT_EQ(gam.ivalid, (std::vector<int64_t>{2, 1, 2, 0}));
  const int64_t n = 4, zero = 0, neg = -1, one = 1;
  std::vector<double> p(4);
  std::vector<int64_t> iv(4);
  char tail = 'U', bad = 'Z';
  expect_report([&](int64_t* f) { g01scf_(&tail, &n, pts.x.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); }, 3,
                {" ** On entry, at least one point was invalid:",
                 " ** 1 of the N points have IVALID(i) /= 0; their probabilities are 0.0."},
                "G01SCF");
  expect_report([&](int64_t* f) { g01sbf_(&bad, &n, pts.x.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); }, 1,
                {" ** On entry, TAIL is not valid: TAIL = 'Z'"}, "G01SBF");
  expect_report([&](int64_t* f) { g01saf_(&bad, &n, pts.x.data(), &one, pts.df.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); },
                1, {" ** On entry, TAIL is an invalid character: TAIL = 'Z'"}, "G01SAF");
  // The lower/upper routines reject 'C' and 'S', which the normal and t routines accept.
  char central = 'C', sig = 'S';
  expect_report([&](int64_t* f) { g01scf_(&central, &n, pts.x.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); }, 1,
                {" ** On entry, TAIL is not valid: TAIL = 'C'"}, "G01SCF");
  expect_report([&](int64_t* f) { g01sff_(&sig, &n, pts.x.data(), &one, pts.df.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); },
                1, {" ** On entry, TAIL is not valid: TAIL = 'S'"}, "G01SFF");
  // N before the parameter array lengths, which are themselves invalid here.
  const std::vector<std::string> n_neg = {" ** On entry, N = -1.", " ** Constraint: N >= 0."};
  expect_report([&](int64_t* f) { g01saf_(&tail, &neg, pts.x.data(), &zero, pts.df.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, n_neg, "G01SAF");
  expect_report([&](int64_t* f) { g01sbf_(&tail, &neg, pts.x.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); }, 2,
                n_neg, "G01SBF");
  expect_report([&](int64_t* f) { g01scf_(&tail, &neg, pts.x.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); }, 2,
                n_neg, "G01SCF");
  expect_report([&](int64_t* f) { g01sff_(&tail, &neg, pts.x.data(), &zero, pts.df.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, n_neg, "G01SFF");
  expect_report([&](int64_t* f) { g01sbf_(&tail, &n, pts.x.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); }, 2,
                {" ** On entry, LDF = 0.", " ** Constraint: LDF >= 1."}, "G01SBF");
  expect_report([&](int64_t* f) { g01scf_(&tail, &n, pts.x.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); }, 2,
                {" ** On entry, LDF = 0.", " ** Constraint: LDF >= 1."}, "G01SCF");
  expect_report([&](int64_t* f) { g01saf_(&tail, &n, pts.x.data(), &zero, pts.df.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, {" ** On entry, LXMU = 0.", " ** Constraint: LXMU >= 1."}, "G01SAF");
  expect_report([&](int64_t* f) { g01saf_(&tail, &n, pts.x.data(), &one, pts.df.data(), &neg, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, {" ** On entry, LXSTD = -1.", " ** Constraint: LXSTD >= 1."}, "G01SAF");
  expect_report([&](int64_t* f) { g01sff_(&tail, &n, pts.x.data(), &zero, pts.df.data(), &one, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, {" ** On entry, LA = 0.", " ** Constraint: LA >= 1."}, "G01SFF");
  expect_report([&](int64_t* f) { g01sff_(&tail, &n, pts.x.data(), &one, pts.df.data(), &zero, pts.df.data(), p.data(), iv.data(), f, 1); },
                2, {" ** On entry, LB = 0.", " ** Constraint: LB >= 1."}, "G01SFF");
  // N = 0 is a valid empty call.
  int64_t ifail = 1;
  g01sff_(&tail, &zero, pts.x.data(), &one, pts.df.data(), &one, pts.df.data(), p.data(), iv.data(), &ifail, 1);
  EXPECT_EQ(ifail, 0);
}

}  // namespace
