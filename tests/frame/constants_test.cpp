// The X01/X02 constants through their exported entries: bit patterns, the defining properties of each value
// and agreement with the C++ kernel header.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/constants.h"
#include "vek.h"

namespace {

uint64_t bits(double x) { return std::bit_cast<uint64_t>(x); }
uint32_t bits(float x) { return std::bit_cast<uint32_t>(x); }

TEST(Constants, RealsHaveTheirBitPatterns) {
  EXPECT_EQ(bits(x01aaf_()), UINT64_C(0x400921FB54442D18));
  EXPECT_EQ(bits(x01abf_()), UINT64_C(0x3FE2788CFC6FB619));
  EXPECT_EQ(bits(x02ajf_()), UINT64_C(0x3CA0000000000000));
  EXPECT_EQ(bits(x02akf_()), UINT64_C(0x0010000000000000));
  EXPECT_EQ(bits(x02alf_()), UINT64_C(0x7FEFFFFFFFFFFFFF));
  EXPECT_EQ(bits(x02amf_()), UINT64_C(0x0010000000000001));
  EXPECT_EQ(bits(x02anf_()), UINT64_C(0x0010000000000001));
  EXPECT_EQ(bits(x02ahf_()), UINT64_C(0x4950000000000000));
  EXPECT_EQ(bits(x02akzn_()), UINT64_C(0xC086232BDD7ABCD2));
  EXPECT_EQ(bits(x02ajen_()), UINT32_C(0x33800000));
  EXPECT_EQ(bits(x02aken_()), UINT32_C(0x00800000));
  EXPECT_EQ(bits(x02alen_()), UINT32_C(0x7F7FFFFF));
  EXPECT_EQ(bits(x02amen_()), UINT32_C(0x00800001));
}

TEST(Constants, RealsHaveTheirDefiningProperties) {
  EXPECT_EQ(x01aaf_(), std::acos(-1.0));
  EXPECT_EQ(x02ajf_() * 2, std::nextafter(1.0, 2.0) - 1.0);
  EXPECT_EQ(1.0 + x02ajf_(), 1.0);  // a tie, rounded to even
  EXPECT_EQ(1.0 + 2 * x02ajf_(), std::nextafter(1.0, 2.0));
  EXPECT_EQ(x02akf_(), std::numeric_limits<double>::min());
  EXPECT_EQ(x02alf_(), std::numeric_limits<double>::max());
  EXPECT_EQ(x02amf_(), std::nextafter(x02akf_(), 1.0));
  EXPECT_TRUE(std::isfinite(1.0 / x02amf_()));
  EXPECT_EQ(x02ahf_(), std::ldexp(1.0, 150));
  EXPECT_EQ(x02akzn_(), std::log(x02akf_()));
  EXPECT_EQ(x02ajen_(), std::numeric_limits<float>::epsilon() / 2);
  EXPECT_EQ(x02aken_(), std::numeric_limits<float>::min());
  EXPECT_EQ(x02alen_(), std::numeric_limits<float>::max());
  EXPECT_EQ(x02amen_(), std::nextafter(x02aken_(), 1.0f));
}

TEST(Constants, IntegersDescribeTheFormats) {
  EXPECT_EQ(x02bbf_(), std::numeric_limits<int64_t>::max());
  int64_t wrapped = 0;
  EXPECT_TRUE(__builtin_add_overflow(x02bbf_(), int64_t{1}, &wrapped));
  EXPECT_EQ(x02bef_(), std::numeric_limits<double>::digits10);
  EXPECT_EQ(x02been_(), std::numeric_limits<double>::digits10 + 1);
  EXPECT_EQ(x02bhf_(), std::numeric_limits<double>::radix);
  EXPECT_EQ(x02bjf_(), std::numeric_limits<double>::digits);
  EXPECT_EQ(x02bkf_(), std::numeric_limits<double>::min_exponent);
  EXPECT_EQ(x02blf_(), std::numeric_limits<double>::max_exponent);
  EXPECT_EQ(x02bjen_(), std::numeric_limits<float>::digits);
  EXPECT_EQ(x02bken_(), std::numeric_limits<float>::min_exponent);
  EXPECT_EQ(x02blen_(), std::numeric_limits<float>::max_exponent);
  // 2^(e-1) at the documented exponents: normalised and finite, one step further not.
  EXPECT_TRUE(std::isnormal(std::ldexp(1.0, x02bkf_() - 1)));
  EXPECT_FALSE(std::isnormal(std::ldexp(1.0, x02bkf_() - 2)));
  EXPECT_TRUE(std::isfinite(std::ldexp(1.0, x02blf_() - 1)));
  EXPECT_FALSE(std::isfinite(std::ldexp(1.0, x02blf_())));
}

TEST(Constants, AuxiliariesAndKernelAgree) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double one = 1.0, two = 2.0;
  EXPECT_EQ(x02dazn_() & 1, 1);
  EXPECT_EQ(x02dbzn_(&nan, &nan) & 1, 1);
  EXPECT_EQ(x02dbzn_(&one, &two) & 1, 1);
  EXPECT_EQ(x02dbzn_(&one, &one), 0);
  EXPECT_EQ(x02dczn_(&one, &two), 3.0);
  static_assert(vek::constants::eps() * 2 == std::numeric_limits<double>::epsilon());
  static_assert(vek::constants::safe_min() == std::numeric_limits<double>::min());
  EXPECT_EQ(vek::constants::max_real(), x02alf_());
  EXPECT_EQ(vek::constants::single::eps(), x02ajen_());
}

}  // namespace
