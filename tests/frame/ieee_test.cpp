// The X07 routines: classification, creation of infinities and NaNs (quiet versus signalling by bit pattern)
// and the trap switches, with trapping divisions run in a child process.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <limits>
#include <memory>

#include "support/unit_capture.h"
#include "frame/ieee.h"
#include "vek.h"

namespace {

constexpr uint64_t kQuietBit = UINT64_C(0x0008000000000000);
constexpr uint64_t kExponent = UINT64_C(0x7FF0000000000000);

bool is_quiet_nan(double x) {
  const uint64_t b = std::bit_cast<uint64_t>(x);
  return (b & kExponent) == kExponent && (b & kQuietBit) != 0;
}
bool is_signalling_nan(double x) {
  const uint64_t b = std::bit_cast<uint64_t>(x);
  return (b & kExponent) == kExponent && (b & kQuietBit) == 0 && (b & (kQuietBit - 1)) != 0;
}

// How a trapped division ends the child: by SIGFPE, or, under AddressSanitizer (which handles the signal
// itself), by its report and a failing exit.
#if defined(__SANITIZE_ADDRESS__)
const auto kTrapped = [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; };
constexpr const char* kTrapReport = "FPE";
#else
const auto kTrapped = ::testing::KilledBySignal(SIGFPE);
constexpr const char* kTrapReport = "";
#endif

// Restores the caller's traps at the end of a test, whatever it switched.
class Traps : public ::testing::Test {
 protected:
  void SetUp() override { x07caf_(saved_); }
  void TearDown() override { x07cbf_(saved_); }
  int64_t saved_[3] = {};
};

// The quotient is stored through a volatile so that the division is made at run time.
double divide(double a, double b) {
  volatile double x = a, y = b;
  volatile double q = x / y;
  return q;
}

TEST(Ieee, Classification) {
  const double inf = std::numeric_limits<double>::infinity();
  const double values[] = {0.0, -0.0, 1.0, std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::denorm_min(), inf, -inf,
                           std::numeric_limits<double>::quiet_NaN(), vek::ieee::signalling_nan()};
  for (double x : values) {
    EXPECT_EQ(x07aaf_(&x), std::isfinite(x) ? 1 : 0) << x;
    EXPECT_EQ(x07abf_(&x), std::isnan(x) ? 1 : 0) << x;
    const float f = static_cast<float>(x);
    EXPECT_EQ(x07aaen_(&f), std::isfinite(f) ? 1 : 0) << x;
    EXPECT_EQ(x07aben_(&f), std::isnan(f) ? 1 : 0) << x;
  }
}

TEST(Ieee, Infinities) {
  for (const int64_t isign : {int64_t{0}, int64_t{1}, int64_t{7}, int64_t{-1}, INT64_MIN}) {
    double x = 0;
    x07baf_(&isign, &x);
    EXPECT_TRUE(std::isinf(x)) << isign;
    EXPECT_EQ(std::signbit(x), isign < 0) << isign;
  }
}

TEST(Ieee, QuietOnlyForExactlyOne) {
  struct Case {
    int64_t quiet;
    bool expect_quiet;
  };
  for (const Case c : {Case{1, true}, Case{0, false}, Case{-1, false}, Case{3, false}, Case{2, false}}) {
    double x = 0;
    x07bbf_(&c.quiet, &x);
    EXPECT_EQ(is_quiet_nan(x), c.expect_quiet) << c.quiet;
    EXPECT_EQ(is_signalling_nan(x), !c.expect_quiet) << c.quiet;
    EXPECT_EQ(x07abf_(&x), 1) << c.quiet;
  }
}

TEST_F(Traps, SetAndReadBack) {
  ASSERT_TRUE(vek::ieee::traps_supported());
  const int64_t patterns[][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}, {0, 0, 0}, {-5, 2, 0}};
  for (const auto& p : patterns) {
    x07cbf_(p);
    int64_t got[3] = {-7, -7, -7};
    x07caf_(got);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(got[k], p[k] != 0 ? 1 : 0) << k;
  }
  // Underflow and inexact are left alone.
  feenableexcept(FE_UNDERFLOW);
  const int64_t off[3] = {0, 0, 0};
  x07cbf_(off);
  EXPECT_NE(fegetexcept() & FE_UNDERFLOW, 0);
  fedisableexcept(FE_UNDERFLOW);
}

TEST_F(Traps, TracedCallsDumpTheirThreeElements) {
  vek::testing::UnitCapture cap;
  const int64_t on = 2, off = 0;
  auto mode = std::make_unique<int64_t[]>(3);
  y90gcft_(&on);
  x07caf_(mode.get());
  x07cbf_(mode.get());
  y90gcft_(&off);
  int count = 0;
  for (const std::string& line : cap.lines()) count += line.find("EXCEPTIONMODE(3)") != std::string::npos;
  EXPECT_EQ(count, 3);  // x07caf on exit, x07cbf on entry and on exit
}

TEST_F(Traps, DivisionByZeroTrapsOnlyWhenEnabled) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const int64_t overflow_only[3] = {1, 0, 0};
  x07cbf_(overflow_only);
  EXPECT_TRUE(std::isinf(divide(1.0, 0.0)));
  const int64_t divide_traps[3] = {0, 1, 0};
  EXPECT_EXIT(
      {
        x07cbf_(divide_traps);
        divide(1.0, 0.0);
        std::_Exit(0);
      },
      kTrapped, kTrapReport);
  EXPECT_EXIT(
      {
        x07cbf_(divide_traps);
        x07cbf_(overflow_only);
        divide(1.0, 0.0);
        std::_Exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
