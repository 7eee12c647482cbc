// The error-function routines through their exported entries: exact values at the cut-offs, the coefficient
// set used on each side of every break-point, symmetry, IFAIL handling and messages, and non-finite input.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <functional>
#include <iterator>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "specfun/erf_cody.h"
#include "specfun/specfun.h"
#include "support/report.h"
#include "support/capture.h"
#include "vek.h"

namespace {

namespace cody = vek::specfun::cody;
using Lines = std::vector<std::string>;
using vek::testing::expect_report;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

double erfc_entry(double x, int64_t ifail = 1) { return s15adf_(&x, &ifail); }
double erf_entry(double x, int64_t ifail = 1) { return s15aef_(&x, &ifail); }

bool same_bits(double a, double b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); }

// The three ways erfc can be formed at y = |x| > 0: set A, set C, set P.
double erfc_by_a(double x) { return 1.0 - x * cody::set_a(x * x); }
double erfc_by_c(double y) { return cody::exp_minus_square(y) * cody::set_c(y); }
double erfc_by_p(double y) { return cody::exp_minus_square(y) * cody::scaled_tail(y); }

TEST(Erfc, ExactValuesAtZeroAndTheCutOffs) {
  EXPECT_EQ(erfc_entry(0.0), 1.0);
  EXPECT_EQ(erfc_entry(-0.0), 1.0);
  EXPECT_EQ(erfc_entry(26.6), 0.0);
  EXPECT_EQ(erfc_entry(1e300), 0.0);
  EXPECT_EQ(erfc_entry(-6.5), 2.0);
  EXPECT_EQ(erfc_entry(-1e300), 2.0);
  const double below = erfc_entry(26.5999);
  EXPECT_GT(below, 0.0);
  EXPECT_LT(below, 1e-300);
  EXPECT_LT(erfc_entry(-5.0), 2.0);
}

TEST(Erfc, EachBreakPointUsesTheSetOnItsSide) {
  const double a_end = 0.46875, c_start = 0.46876, c_end = 4.0, p_start = 4.0000001;
  EXPECT_TRUE(same_bits(erfc_entry(a_end), erfc_by_a(a_end)));
  EXPECT_TRUE(same_bits(erfc_entry(-a_end), erfc_by_a(-a_end)));
  EXPECT_TRUE(same_bits(erfc_entry(c_start), erfc_by_c(c_start)));
  EXPECT_TRUE(same_bits(erfc_entry(c_end), erfc_by_c(c_end)));
  EXPECT_TRUE(same_bits(erfc_entry(-c_end), 2.0 - erfc_by_c(c_end)));
  EXPECT_TRUE(same_bits(erfc_entry(p_start), erfc_by_p(p_start)));
  EXPECT_TRUE(same_bits(erfc_entry(-p_start), 2.0 - erfc_by_p(p_start)));
  // The neighbouring set gives other bits at these points (at 0.46875 the two sets agree to the last bit), so
  // the checks above tell the sets apart.
  EXPECT_FALSE(same_bits(erfc_by_c(c_start), erfc_by_a(c_start)));
  EXPECT_FALSE(same_bits(erfc_by_c(p_start), erfc_by_p(p_start)));
  EXPECT_FALSE(same_bits(erfc_by_p(c_end), erfc_by_c(c_end)));
}

TEST(Erf, BreakPointsOddSymmetryAndSaturation) {
  EXPECT_TRUE(same_bits(erf_entry(0.46875), 0.46875 * cody::set_a(0.46875 * 0.46875)));
  const double y = 0.46876;
  EXPECT_TRUE(same_bits(erf_entry(y), (0.5 - erfc_by_c(y)) + 0.5));
  EXPECT_TRUE(same_bits(erf_entry(4.5), (0.5 - erfc_by_p(4.5)) + 0.5));
  EXPECT_EQ(erf_entry(10.0), 1.0);
  EXPECT_EQ(erf_entry(10.0000001), 1.0);
  EXPECT_EQ(erf_entry(-10.0000001), -1.0);
  EXPECT_TRUE(same_bits(erf_entry(0.0), 0.0));
  EXPECT_TRUE(same_bits(erf_entry(-0.0), -0.0));
  std::mt19937_64 gen(7);
  std::uniform_real_distribution<double> u(0.0, 12.0);
  for (int i = 0; i < 2000; ++i) {
    const double x = u(gen);
    ASSERT_TRUE(same_bits(erf_entry(-x), -erf_entry(x))) << x;
  }
}

TEST(Erf, IfailIsZeroWhateverItWasAndNothingIsPrinted) {
  for (int64_t on_entry : {-1, 0, 1, 7}) {
    int64_t ifail = on_entry;
    const double x = 0.3;
    const Lines out = vek::testing::console_lines([&] {
      s15adf_(&x, &ifail);
      int64_t again = on_entry;
      s15aef_(&x, &again);
      EXPECT_EQ(again, 0);
    });
    EXPECT_EQ(ifail, 0);
    EXPECT_TRUE(out.empty());
  }
}

TEST(ErfFamily, NonFiniteArguments) {
  EXPECT_TRUE(std::isnan(erfc_entry(kNaN)));
  EXPECT_TRUE(std::isnan(erf_entry(kNaN)));
  EXPECT_EQ(erfc_entry(kInf), 0.0);
  EXPECT_EQ(erfc_entry(-kInf), 2.0);
  EXPECT_EQ(erf_entry(kInf), 1.0);
  EXPECT_EQ(erf_entry(-kInf), -1.0);
  EXPECT_EQ(vek::specfun::erfcx(kInf), 0.0);
  EXPECT_EQ(vek::specfun::erfcx(-kInf), kInf);
  EXPECT_TRUE(std::isnan(vek::specfun::erfcx(kNaN)));
  EXPECT_EQ(vek::specfun::dawson(kInf), 0.0);
  EXPECT_TRUE(same_bits(vek::specfun::dawson(-kInf), -0.0));
  EXPECT_TRUE(same_bits(vek::specfun::dawson(-0.0), -0.0));
  EXPECT_TRUE(std::isnan(vek::specfun::dawson(kNaN)));
  EXPECT_EQ(vek::specfun::erf_inv(1.0), kInf);
  EXPECT_EQ(vek::specfun::erf_inv(-1.0), -kInf);
  EXPECT_TRUE(std::isnan(vek::specfun::erf_inv(1.5)));
  EXPECT_TRUE(std::isnan(vek::specfun::erf_inv(kNaN)));
  EXPECT_EQ(vek::specfun::erfc_inv(0.0), kInf);
  EXPECT_EQ(vek::specfun::erfc_inv(2.0), -kInf);
  EXPECT_TRUE(std::isnan(vek::specfun::erfc_inv(-1e-300)));
  EXPECT_TRUE(std::isnan(vek::specfun::erfc_inv(kNaN)));
}

vek_complex w_entry(double x, double y) {
  const vek_complex z{x, y};
  int64_t ifail = -1;
  const vek_complex w = s15ddf_(&z, &ifail);
  EXPECT_EQ(ifail, 0);
  return w;
}

TEST(Faddeeva, AxesSymmetryAndNonFiniteArguments) {
  const vek_complex at_zero = w_entry(0.0, 0.0);
  EXPECT_EQ(at_zero.re, 1.0);
  EXPECT_EQ(at_zero.im, 0.0);
  for (double y : {1e-300, 0.3, 2.0, 5.9, 6.0, 40.0, 1e200}) {
    const vek_complex w = w_entry(0.0, y);
    EXPECT_NEAR(w.re / vek::specfun::erfcx(y), 1.0, 1e-14) << y;
    EXPECT_EQ(w.im, 0.0) << y;
  }
  for (double x : {1e-300, 0.2, 1.0, 3.5, 6.9, 26.0, 30.0, 1e10}) {
    const vek_complex w = w_entry(x, 0.0);
    // exp(-x^2) with the rounding error of x^2 put back (it is |x|^2 eps / 2 relative in exp(-x * x) itself).
    const double re = std::exp(-x * x) * (1.0 - std::fma(x, x, -x * x));
    EXPECT_NEAR(w.re, re, 1e-15 * re) << x;
    EXPECT_NEAR(w.im, 2.0 / std::sqrt(M_PI) * vek::specfun::dawson(x), 1e-14 * std::fabs(w.im)) << x;
  }
  std::mt19937_64 gen(13);
  std::uniform_real_distribution<double> u(-30.0, 30.0), v(0.0, 8.0);
  for (int i = 0; i < 500; ++i) {
    const double x = u(gen), y = v(gen);
    const vek_complex w = w_entry(x, y), mirrored = w_entry(-x, y);
    ASSERT_TRUE(same_bits(w.re, mirrored.re) && same_bits(w.im, -mirrored.im)) << x << " " << y;
  }
  EXPECT_TRUE(std::isnan(w_entry(kNaN, 1.0).re));
  EXPECT_TRUE(std::isnan(w_entry(1.0, kNaN).im));
  const vek_complex far = w_entry(kInf, 1.0);
  EXPECT_EQ(far.re, 0.0);
  EXPECT_EQ(far.im, 0.0);
  const vek_complex overflow = w_entry(0.0, -30.0);
  EXPECT_EQ(overflow.re, kInf);
}

TEST(Fresnel, OddSymmetryLimitsAndNonFiniteArguments) {
  const auto s_of = [](double x) {
    int64_t ifail = -1;
    const double v = s20acf_(&x, &ifail);
    EXPECT_EQ(ifail, 0);
    return v;
  };
  const auto c_of = [](double x) {
    int64_t ifail = -1;
    const double v = s20adf_(&x, &ifail);
    EXPECT_EQ(ifail, 0);
    return v;
  };
  EXPECT_TRUE(same_bits(s_of(0.0), 0.0));
  EXPECT_TRUE(same_bits(c_of(-0.0), -0.0));
  EXPECT_EQ(s_of(kInf), 0.5);
  EXPECT_EQ(c_of(-kInf), -0.5);
  EXPECT_TRUE(std::isnan(s_of(kNaN)));
  EXPECT_TRUE(std::isnan(c_of(kNaN)));
  // Far out C and S approach 1/2 like 1/(pi x).
  EXPECT_NEAR(c_of(1e12), 0.5, 1e-12);
  EXPECT_EQ(c_of(1e200), 0.5);
  EXPECT_EQ(s_of(-1e300), -0.5);
  EXPECT_NEAR(s_of(1e12), 0.5, 1e-12);
  std::mt19937_64 gen(17);
  std::uniform_real_distribution<double> u(0.0, 50.0);
  for (int i = 0; i < 500; ++i) {
    const double x = u(gen);
    ASSERT_TRUE(same_bits(s_of(-x), -s_of(x)) && same_bits(c_of(-x), -c_of(x))) << x;
  }
  // Across the change of method at 1 the two forms agree.
  const double below = std::nextafter(1.0, 0.0);
  EXPECT_NEAR(s_of(below), s_of(1.0), 1e-15);
  EXPECT_NEAR(c_of(below), c_of(1.0), 1e-15);
}

TEST(ErfInverse, RoundTripsThroughErfAndErfc) {
  std::mt19937_64 gen(11);
  std::uniform_real_distribution<double> u(-0.999, 0.999);
  for (int i = 0; i < 500; ++i) {
    const double y = u(gen);
    EXPECT_NEAR(vek::specfun::erf(vek::specfun::erf_inv(y)), y, 4e-16) << y;
  }
  for (double q : {1e-300, 1e-100, 1e-20, 1e-5, 0.3}) {
    const double x = vek::specfun::erfc_inv(q);
    EXPECT_NEAR(vek::specfun::erfc(x) / q, 1.0, 1e-13 * std::max(1.0, x * x)) << q;
  }
}

TEST(ErfFamily, FailureMessages) {
  double x = -27.0;
  expect_report([&](int64_t* f) { s15agf_(&x, f); }, 1,
                {" ** On entry, X = -27.", " ** Constraint: X >= -26.628 (the result would overflow)."}, "S15AGF");
  double y = 1.0;
  expect_report([&](int64_t* f) { s15ahf_(&y, f); }, 1, {" ** On entry, Y = 1.", " ** Constraint: -1.0 < Y < 1.0."},
                "S15AHF");
  double q = 2.5;
  expect_report([&](int64_t* f) { s15ajf_(&q, f); }, 1, {" ** On entry, Q = 2.5.", " ** Constraint: 0.0 < Q < 2.0."},
                "S15AJF");
  double nan = kNaN;
  int64_t ifail = 1;
  EXPECT_EQ(s15ahf_(&nan, &ifail), 0.0);
  EXPECT_EQ(ifail, 1);
  ifail = 1;
  EXPECT_EQ(s15agf_(&x, &ifail), std::numeric_limits<double>::max());
  EXPECT_EQ(ifail, 1);
}

}  // namespace
