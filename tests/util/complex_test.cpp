// The A02 complex helpers: the edge cases of their documented order of operations, and agreement with the
// C library's complex functions and with extended-precision references over random operands spread across
// the whole exponent range.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <limits>
#include <random>

#include "util/complex.h"
#include "vek.h"

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon() / 2;

struct Pair {
  double re, im;
};

Pair root(double xr, double xi) {
  Pair y{};
  a02aaf_(&xr, &xi, &y.re, &y.im);
  return y;
}

Pair quotient(double xr, double xi, double yr, double yi) {
  Pair z{};
  a02acf_(&xr, &xi, &yr, &yi, &z.re, &z.im);
  return z;
}

double modulus(double xr, double xi) { return a02abf_(&xr, &xi); }

// Relative difference of two complex values in units of 2^-53, measured against the larger modulus.
double rel_diff(std::complex<long double> got, std::complex<long double> ref) {
  const long double scale = std::max(std::abs(ref), std::abs(got));
  if (scale == 0) return 0;
  return static_cast<double>(std::abs(got - ref) / scale / kEps);
}

TEST(ComplexHelpers, SquareRootEdgeCases) {
  Pair y = root(-4.0, 0.0);
  EXPECT_EQ(y.re, 0.0);
  EXPECT_FALSE(std::signbit(y.re));
  EXPECT_EQ(y.im, 2.0);
  y = root(-4.0, -0.0);
  EXPECT_EQ(y.re, 0.0);
  EXPECT_TRUE(std::signbit(y.re));
  EXPECT_EQ(y.im, 2.0);
  y = root(0.0, 0.0);
  EXPECT_EQ(y.re, 0.0);
  EXPECT_EQ(y.im, 0.0);
  y = root(-0.0, -0.0);  // XR = -0 counts as XR >= 0: (s, q) = (0, -0)
  EXPECT_EQ(y.re, 0.0);
  EXPECT_TRUE(std::signbit(y.im));
  y = root(4.0, 0.0);
  EXPECT_EQ(y.re, 2.0);
  EXPECT_EQ(y.im, 0.0);
  y = root(-3.0, -4.0);  // lower half-plane: (-q, -s) with q < 0
  EXPECT_NEAR(y.re, 1.0, 4 * kEps);
  EXPECT_NEAR(y.im, -2.0, 8 * kEps);
  const double big = std::numeric_limits<double>::max() / 2;
  y = root(big, big);  // the halving keeps ax/2 + t finite, where ax + t would overflow
  EXPECT_TRUE(std::isfinite(y.re) && std::isfinite(y.im));
  EXPECT_NEAR(y.re / std::sqrt(big), 1.0986841134678100, 4 * kEps);  // sqrt((1 + sqrt 2) / 2)
  const double tiny = std::numeric_limits<double>::denorm_min();
  y = root(tiny, 0.0);
  EXPECT_GT(y.re, 0.0);
  y = root(std::nan(""), 1.0);
  EXPECT_TRUE(std::isnan(y.re) || std::isnan(y.im));
}

TEST(ComplexHelpers, ModulusEdgeCases) {
  EXPECT_EQ(modulus(3e307, 4e307), 5e307);
  EXPECT_EQ(modulus(-3.0, 0.0), 3.0);
  EXPECT_EQ(modulus(0.0, -0.0), 0.0);
  EXPECT_EQ(modulus(3e-320, 4e-320), 5e-320);
  EXPECT_EQ(modulus(std::numeric_limits<double>::infinity(), 1.0), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(modulus(std::nan(""), 1.0)));
  EXPECT_TRUE(std::isnan(modulus(1.0, std::nan(""))));
  EXPECT_EQ(modulus(-2.5, 2.5), modulus(2.5, -2.5));
}

TEST(ComplexHelpers, QuotientEdgeCases) {
  const double big = std::numeric_limits<double>::max();
  Pair z = quotient(big, big, big, big);
  EXPECT_EQ(z.re, 1.0);
  EXPECT_EQ(z.im, 0.0);
  z = quotient(big * 0.75, big * 0.5, big, big * 0.5);  // both scaled down by 16
  EXPECT_NEAR(z.re, 0.8, 4 * kEps);
  EXPECT_NEAR(z.im, 0.1, 4 * kEps);
  const double tiny = std::numeric_limits<double>::denorm_min();
  z = quotient(tiny * 3, tiny * 4, tiny, 0.0);  // both scaled up by 2^106
  EXPECT_EQ(z.re, 3.0);
  EXPECT_EQ(z.im, 4.0);
  z = quotient(1.0, 0.0, 0.0, 1.0);  // the tie branch: 1/i = -i
  EXPECT_EQ(z.re, 0.0);
  EXPECT_EQ(z.im, -1.0);
  z = quotient(1e300, 1e300, 1e-300, 0.0);  // the true quotient overflows: only then does the result
  EXPECT_TRUE(std::isinf(z.re) && std::isinf(z.im));
  z = quotient(1.0, 1.0, 0.0, 0.0);  // no check is made: the division by zero shows
  EXPECT_FALSE(std::isfinite(z.re) && std::isfinite(z.im));
  const vek::util::Complex k = vek::util::complex_divide(5.0, 0.0, 0.0, 2.0);
  EXPECT_EQ(k.re, 0.0);
  EXPECT_EQ(k.im, -2.5);
}

TEST(ComplexHelpers, AgreeWithCLibraryAndExtendedPrecision) {
  std::mt19937_64 gen(20261122);
  std::uniform_real_distribution<double> mant(-1.0, 1.0);
  std::uniform_int_distribution<int> expo(-300, 300);
  auto draw = [&] { return std::ldexp(mant(gen), expo(gen)); };
  double worst_abs = 0, worst_sqrt = 0, worst_div = 0;
  double clib_abs = 0, clib_sqrt = 0, clib_div = 0;
  for (int k = 0; k < 5000; ++k) {
    const double xr = draw(), xi = draw(), yr = draw(), yi = draw();
    const std::complex<long double> x(xr, xi), y(yr, yi);

    const double m = modulus(xr, xi);
    worst_abs = std::max(worst_abs, rel_diff(m, std::abs(x)));
    clib_abs = std::max(clib_abs, rel_diff(m, std::hypot(xr, xi)));

    const Pair s = root(xr, xi);
    EXPECT_GE(s.re, 0.0);
    worst_sqrt = std::max(worst_sqrt, rel_diff({s.re, s.im}, std::sqrt(x)));
    const std::complex<double> cs = std::sqrt(std::complex<double>(xr, xi));
    clib_sqrt = std::max(clib_sqrt, rel_diff({s.re, s.im}, {cs.real(), cs.imag()}));

    const Pair q = quotient(xr, xi, yr, yi);
    const std::complex<long double> ref = x / y;
    const long double mag = std::abs(ref);
    if (mag > 1e-300L && mag < 1e300L) {  // a representable quotient of full precision
      worst_div = std::max(worst_div, rel_diff({q.re, q.im}, ref));
      const std::complex<double> cq = std::complex<double>(xr, xi) / std::complex<double>(yr, yi);
      clib_div = std::max(clib_div, rel_diff({q.re, q.im}, {cq.real(), cq.imag()}));
    }
  }
  std::printf("largest relative error (units of 2^-53): modulus %.2f, square root %.2f, quotient %.2f\n",
              worst_abs, worst_sqrt, worst_div);
  std::printf("largest relative difference from the C library: modulus %.2f, square root %.2f, quotient %.2f\n",
              clib_abs, clib_sqrt, clib_div);
  EXPECT_LT(worst_abs, 3.0);
  EXPECT_LT(worst_sqrt, 6.0);
  EXPECT_LT(worst_div, 8.0);
  EXPECT_LT(clib_abs, 4.0);
  EXPECT_LT(clib_sqrt, 8.0);
  EXPECT_LT(clib_div, 10.0);
}

}  // namespace
