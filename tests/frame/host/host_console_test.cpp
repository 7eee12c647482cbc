// A host process that provides its own console function, as a MATLAB session does: every console record
// of the shipped library must reach it (formatted: the library doubles '%' for it), and standard output must
// receive nothing.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "vek.h"

namespace {
std::string g_host_console;
}

extern "C" int mexPrintf(const char* format, ...) {
  char buf[4096];
  va_list args;
  va_start(args, format);
  const int n = std::vsnprintf(buf, sizeof buf, format, args);
  va_end(args);
  g_host_console += buf;
  return n;
}

TEST(HostConsole, ReceivesEveryConsoleRecord) {
  g_host_console.clear();
  ::testing::internal::CaptureStdout();
  const int64_t six = 6, zero = 0, nine = 9, none = -1;
  x04baf_(&six, "50% done, 100%% sure", 20);
  x04baf_(&zero, "   ", 3);
  x04baf_(&nine, "unit 9 has no file", 18);
  x04baf_(&none, "dropped", 7);
  const int64_t unit = 9, mode = 4;
  int64_t ifail = -1;
  x04acf_(&unit, "x", &mode, &ifail, 1);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(ifail, 1);
  EXPECT_EQ(g_host_console,
            "50% done, 100%% sure\n"
            " \n"
            "unit 9 has no file\n"
            " ** On entry, MODE = 4.\n"
            " ** Constraint: 0 <= MODE <= 2.\n"
            " ** ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     1\n"
            " ** VEK soft failure - control returned\n");
}
