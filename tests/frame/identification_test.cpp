// The A00 routines: the banner's fixed lines exactly, its build lines non-empty and true of this build, and
// a00adf returning the same facts.
#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <chrono>
#include <regex>
#include <string>
#include <vector>

#include "support/unit_capture.h"
#include "vek.h"

namespace {

using Lines = std::vector<std::string>;

Lines banner() {
  vek::testing::UnitCapture cap;
  a00aaf_();
  return cap.lines();
}

std::string after(const std::string& line, const std::string& prefix) {
  EXPECT_EQ(line.compare(0, prefix.size(), prefix), 0) << line;
  return line.substr(std::min(prefix.size(), line.size()));
}

struct Details {
  std::string impl, prec, pcode, mark, hardware, os, compiler, flags, built;
  int64_t licval = -1;
};

std::string trimmed(const char* p, size_t n) {
  std::string s(p, n);
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}

Details details() {
  char t[9][200];
  Details d;
  a00adf_(t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8], &d.licval, 200, 200, 200, 200, 200, 200, 200, 200,
          200);
  d.impl = trimmed(t[0], 200);
  d.prec = trimmed(t[1], 200);
  d.pcode = trimmed(t[2], 200);
  d.mark = trimmed(t[3], 200);
  d.hardware = trimmed(t[4], 200);
  d.os = trimmed(t[5], 200);
  d.compiler = trimmed(t[6], 200);
  d.flags = trimmed(t[7], 200);
  d.built = trimmed(t[8], 200);
  return d;
}

TEST(Identification, BannerFixedLines) {
  const Lines b = banner();
  ASSERT_EQ(b.size(), 33u);
  const std::pair<size_t, const char*> fixed[] = {
      {0, " *** Start of VEK Toolbox for MATLAB implementation details ***"},
      {1, " "},
      {6, " "},
      {7, " Created using:"},
      {11, " "},
      {12, " "},
      {13, " Applicable to:"},
      {17, " and compatible systems."},
      {18, " "},
      {19, " *** End of VEK Toolbox for MATLAB implementation details ***"},
      {20, " *** Start of VEK Engine implementation details ***"},
      {21, " "},
      {22, " Precision: double"},
      {24, " Hardware:"},
      {26, " Operating system:"},
      {28, " C++ compiler:"},
      {30, " C++ compiler flags:"},
      {32, " *** End of VEK Engine implementation details ***"},
  };
  for (const auto& [k, text] : fixed) EXPECT_EQ(b[k], text) << "line " << k + 1;
  // The "Applicable to" block repeats the "Created using" block.
  for (size_t k = 8; k <= 10; ++k) EXPECT_EQ(b[k], b[k + 6]);
  for (const std::string& line : b) EXPECT_LE(line.size(), 132u);
}

TEST(Identification, BuildLinesAreTrueOfThisBuild) {
  const Lines b = banner();
  ASSERT_EQ(b.size(), 33u);
  const Details d = details();
  EXPECT_EQ(after(b[2], " Implementation title: "), d.impl);
  EXPECT_EQ(after(b[3], "            Precision: "), d.prec);
  EXPECT_EQ(after(b[4], "         Product Code: "), d.pcode);
  EXPECT_EQ(after(b[5], "                 Mark: "), d.mark + " (self-contained)");
  EXPECT_EQ(after(b[8], "     hardware - "), d.hardware);
  EXPECT_EQ(after(b[9], "     op. sys. - "), d.os);
  EXPECT_EQ(after(b[10], "     compiler - "), d.compiler);
  EXPECT_EQ(after(b[23], " Built on: "), d.built);
  EXPECT_EQ(after(b[25], "  "), d.hardware);
  EXPECT_EQ(after(b[27], "  "), d.os);
  EXPECT_EQ(after(b[29], "  "), d.compiler);
  EXPECT_EQ(after(b[31], "  "), d.flags.substr(0, 130));  // a banner record holds 132 characters
  EXPECT_EQ(d.licval, 1);
  EXPECT_EQ(a00acf_() & 1, 1);

  for (const std::string* s : {&d.impl, &d.prec, &d.pcode, &d.mark, &d.hardware, &d.os, &d.compiler, &d.flags,
                               &d.built})
    EXPECT_FALSE(s->empty());
  EXPECT_EQ(d.prec, "double");
  EXPECT_TRUE(std::regex_match(d.mark, std::regex(R"(\d+\.\d+\.\d+)"))) << d.mark;
  // The compiler line names the compiler that built this program (built by the same compiler as the library).
  const std::string version = __VERSION__;
  EXPECT_NE(d.compiler.find(version.substr(0, version.find(' '))), std::string::npos) << d.compiler;
#if defined(__clang__)
  EXPECT_NE(d.compiler.find("Clang"), std::string::npos) << d.compiler;
#elif defined(__GNUC__)
  EXPECT_NE(d.compiler.find("GNU"), std::string::npos) << d.compiler;
#endif
  // The library is built without contraction and for generic x86-64.
  EXPECT_NE(d.flags.find("-ffp-contract=off"), std::string::npos) << d.flags;
  EXPECT_EQ(d.flags.find("-march=native"), std::string::npos) << d.flags;
#if defined(__x86_64__)
  EXPECT_EQ(d.hardware, "x86_64");
  EXPECT_NE(d.impl.find("x86_64"), std::string::npos);
#endif
  utsname u{};
  ASSERT_EQ(uname(&u), 0);
  EXPECT_EQ(d.os.rfind(u.sysname, 0), 0u) << d.os;
  // Built in the past, in this century.
  std::smatch date;
  ASSERT_TRUE(std::regex_search(d.built, date, std::regex(R"(^(\d{4})-(\d{2})-(\d{2}) \d{2}:\d{2}:\d{2} UTC$)")))
      << d.built;
  const auto built = std::chrono::sys_days(std::chrono::year(std::stoi(date[1])) / std::stoi(date[2]) / std::stoi(date[3]));
  EXPECT_LE(built, std::chrono::system_clock::now());
  EXPECT_GE(std::stoi(date[1]), 2000);
}

TEST(Identification, ShortTextsAreCutAndNegativeUnitsSilent) {
  char impl[5], other[1];
  int64_t lic = 0;
  a00adf_(impl, other, other, other, other, other, other, other, other, &lic, 5, 0, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(std::string(impl, 5), details().impl.substr(0, 5));
  const int64_t set = 1, get = 0;
  int64_t saved = 0, off = -1;
  x04abf_(&get, &saved);
  x04abf_(&set, &off);
  testing::internal::CaptureStdout();
  a00aaf_();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  x04abf_(&set, &saved);
}

}  // namespace
