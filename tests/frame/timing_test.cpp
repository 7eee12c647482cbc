// The X05 routines: date and time fields against the C library's clock, the text form of known and of
// invalid dates, and the processor and wall clocks measuring work and sleep.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <ctime>
#include <memory>
#include <string>
#include <thread>

#include "support/unit_capture.h"
#include "vek.h"

namespace {

std::string text_of(const int64_t (&t)[7], int64_t len = 28) {
  std::string s(static_cast<size_t>(len), '#');
  x05abf_(t, s.data(), len);
  return s;
}

TEST(Timing, DateAndTimeAgreeWithTheSystemClock) {
  const std::time_t before = std::time(nullptr);
  int64_t t[7];
  x05aaf_(t);
  const std::time_t after = std::time(nullptr);
  std::tm b{}, a{};
  localtime_r(&before, &b);
  localtime_r(&after, &a);
  EXPECT_TRUE(t[0] == b.tm_year + 1900 || t[0] == a.tm_year + 1900);
  EXPECT_TRUE(t[1] == b.tm_mon + 1 || t[1] == a.tm_mon + 1);
  EXPECT_TRUE(t[2] == b.tm_mday || t[2] == a.tm_mday);
  const int64_t secs = t[3] * 3600 + t[4] * 60 + t[5];
  const int64_t lo = b.tm_hour * 3600 + b.tm_min * 60 + b.tm_sec, hi = a.tm_hour * 3600 + a.tm_min * 60 + a.tm_sec;
  if (lo <= hi) EXPECT_TRUE(secs >= lo && secs <= hi) << secs;
  EXPECT_TRUE(t[6] >= 0 && t[6] <= 999);
  EXPECT_EQ(text_of(t).size(), 28u);
  EXPECT_EQ(text_of(t).find('*'), std::string::npos) << text_of(t);
}

TEST(Timing, TextOfKnownAndInvalidDates) {
  EXPECT_EQ(text_of({2026, 11, 22, 4, 20, 8, 123}), "Sun 22 Nov 2026 04:20:08.123");
  EXPECT_EQ(text_of({2024, 2, 29, 23, 59, 60, 7}), "Thu 29 Feb 2024 23:59:60.007");
  EXPECT_EQ(text_of({1970, 1, 1, 0, 0, 0, 0}), "Thu 01 Jan 1970 00:00:00.000");
  EXPECT_EQ(text_of({2023, 2, 29, 0, 0, 0, 0}), "??? 29 Feb 2023 00:00:00.000");  // not a date
  EXPECT_EQ(text_of({-5, 13, 0, 24, -1, 61, 1000}), "??? ** ??? **** **:**:**.***");
  EXPECT_EQ(text_of({INT64_MIN, INT64_MAX, 1, 1, 1, 1, 1}), "??? 01 ??? **** 01:01:01.001");
  EXPECT_EQ(text_of({2026, 11, 22, 4, 20, 8, 123}, 10), "Sun 22 Nov");
  EXPECT_EQ(text_of({2026, 11, 22, 4, 20, 8, 123}, 30), "Sun 22 Nov 2026 04:20:08.123  ");
}

TEST(Timing, ClocksMeasureWorkAndSleep) {
  // Busy until the C library's processor clock has advanced 30 ms: the same work on both clocks.
  const double wall0 = x05bbf_(), cpu0 = x05baf_();
  const std::clock_t c0 = std::clock();
  volatile double sink = 0;
  while (std::clock() - c0 < CLOCKS_PER_SEC * 3 / 100) sink = sink + std::sqrt(sink + 1.0);
  const double cpu1 = x05baf_();
  const double c_seconds = static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC;
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const double wall1 = x05bbf_(), cpu2 = x05baf_();
  EXPECT_NEAR(cpu1 - cpu0, c_seconds, 0.005);
  // Process CPU time can outrun the wall clock when other threads of the process run (an OpenMP team left
  // spinning by an earlier test), so only the sleep is certain wall time.
  EXPECT_GE(wall1 - wall0, 0.049);
  EXPECT_LT(wall1 - wall0, 10.0);
  EXPECT_LT(cpu2 - cpu1, 0.04);  // sleeping uses (almost) no processor time
}

// With the trace on, the wrappers dump ITIME as the 7 integers it is declared with, and no more: the arrays
// are exactly that long (an address sanitizer build catches any read beyond).
TEST(Timing, TracedCallsDumpTheirArguments) {
  vek::testing::UnitCapture cap;
  const int64_t on = 2, off = 0;
  y90gcft_(&on);
  auto itime = std::make_unique<int64_t[]>(7);
  x05aaf_(itime.get());
  auto text = std::make_unique<char[]>(28);
  x05abf_(itime.get(), text.get(), 28);
  y90gcft_(&off);
  int count = 0;
  for (const std::string& line : cap.lines()) count += line.find("ITIME(7)") != std::string::npos;
  EXPECT_EQ(count, 3);  // x05aaf on exit, x05abf on entry and on exit
}

}  // namespace
