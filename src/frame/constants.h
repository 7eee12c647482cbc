// The parameters of the arithmetic, as compile-time constants every chapter takes its tolerances, overflow
// guards and scaling thresholds from. Each real is given by its IEEE bit pattern, so the value is exact and
// does not depend on how a decimal literal is rounded.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace vek::constants {

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<float>::is_iec559,
              "the constants describe IEEE binary64 and binary32");

constexpr double pi() { return std::bit_cast<double>(UINT64_C(0x400921FB54442D18)); }
constexpr double euler_gamma() { return std::bit_cast<double>(UINT64_C(0x3FE2788CFC6FB619)); }

// 2^-53: half the spacing of doubles at 1, the bound on the relative error of one rounding.
constexpr double eps() { return std::bit_cast<double>(UINT64_C(0x3CA0000000000000)); }
// 2^-1022: the smallest positive normalised double.
constexpr double safe_min() { return std::bit_cast<double>(UINT64_C(0x0010000000000000)); }
constexpr double max_real() { return std::bit_cast<double>(UINT64_C(0x7FEFFFFFFFFFFFFF)); }
// 2^-1022 (1 + 2^-52): the smallest value whose reciprocal is finite with a margin; the safe range.
constexpr double safe_range() { return std::bit_cast<double>(UINT64_C(0x0010000000000001)); }
// 2^150.
constexpr double big_power() { return std::bit_cast<double>(UINT64_C(0x4950000000000000)); }
// ln(2^-1022) rounded to nearest: below it exp() underflows into the subnormals.
constexpr double log_safe_min() { return std::bit_cast<double>(UINT64_C(0xC086232BDD7ABCD2)); }

constexpr int64_t max_int() { return std::numeric_limits<int64_t>::max(); }
constexpr int64_t decimal_digits() { return 15; }       // floor(52 log10 2)
constexpr int64_t distinct_digits() { return 16; }      // digits that tell neighbouring doubles apart
constexpr int64_t base() { return 2; }
constexpr int64_t mantissa_digits() { return 53; }
constexpr int64_t min_exponent() { return -1021; }
constexpr int64_t max_exponent() { return 1024; }

// The same parameters of IEEE single precision.
namespace single {
constexpr float eps() { return std::bit_cast<float>(UINT32_C(0x33800000)); }
constexpr float safe_min() { return std::bit_cast<float>(UINT32_C(0x00800000)); }
constexpr float max_real() { return std::bit_cast<float>(UINT32_C(0x7F7FFFFF)); }
constexpr float safe_range() { return std::bit_cast<float>(UINT32_C(0x00800001)); }
constexpr int64_t mantissa_digits() { return 24; }
constexpr int64_t min_exponent() { return -125; }
constexpr int64_t max_exponent() { return 128; }
}  // namespace single

}  // namespace vek::constants
