// Serial routines called from several caller threads at once, each with its own arguments: special
// functions (with their silent failures, IFAIL = 1 on entry), ranking and searching, a zero finder with a
// user function and its own IUSER/RUSER, and a matrix printer writing on a unit of its own. Every thread must
// get exactly what a serial call gets: the routines keep no state between calls, and a unit's file is its
// caller's.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "team.h"
#include "vek.h"

namespace vek_threads_test {
namespace {

constexpr int kCallers = 8;

// Bits of a double, so that a NaN or a signed zero compares as itself.
uint64_t bits(double x) {
  uint64_t b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

// Values and IFAILs of a sweep of special-function calls, including arguments that fail.
std::vector<uint64_t> special_functions(int caller) {
  std::vector<uint64_t> out;
  for (int k = 0; k < 400; ++k) {
    const double x = (k - 200) * 0.37 + caller * 0.011;
    int64_t ifail = 1;
    out.push_back(bits(s14aaf_(&x, &ifail)));
    out.push_back(static_cast<uint64_t>(ifail));
    ifail = 1;
    out.push_back(bits(s14abf_(&x, &ifail)));
    out.push_back(static_cast<uint64_t>(ifail));
    ifail = 1;
    out.push_back(bits(s15adf_(&x, &ifail)));
    ifail = 1;
    out.push_back(bits(s20acf_(&x, &ifail)));
    const double a = std::fabs(x) + 0.5 * caller - 1.0;  // some A <= 0: IFAIL 1
    const double xx = std::fabs(x);
    double p = -1, q = -1;
    ifail = 1;
    s14baf_(&a, &xx, &p, &q, &ifail);
    out.insert(out.end(), {bits(p), bits(q), static_cast<uint64_t>(ifail)});
  }
  const double pole = -3.0, huge = 200.0;  // gamma at a pole and beyond overflow
  for (double x : {pole, huge}) {
    int64_t ifail = 1;
    out.push_back(bits(s14aaf_(&x, &ifail)));
    out.push_back(static_cast<uint64_t>(ifail));
  }
  return out;
}

// Ranks and searches of a vector of the caller's, and a bad ORDER (IFAIL 2, silent).
std::vector<int64_t> ranking(int caller) {
  std::vector<double> v(5000);
  for (size_t i = 0; i < v.size(); ++i) v[i] = std::sin(static_cast<double>(i * (caller + 1)));
  const int64_t m1 = 1, m2 = static_cast<int64_t>(v.size());
  std::vector<int64_t> rank(v.size()), out;
  int64_t ifail = 1;
  m01daf_(v.data(), &m1, &m2, "D", rank.data(), &ifail, 1);
  out = rank;
  out.push_back(ifail);
  ifail = 1;
  m01daf_(v.data(), &m1, &m2, "X", rank.data(), &ifail, 1);
  out.push_back(ifail);
  std::vector<double> sorted = v;
  ifail = 1;
  m01caf_(sorted.data(), &m1, &m2, "A", &ifail, 1);
  for (double item : {-2.0, -0.5, 0.0, 0.25 * caller, 3.0}) {
    ifail = 1;
    out.push_back(m01naf_(sorted.data(), &m1, &m2, &item, &ifail));
    out.push_back(ifail);
  }
  return out;
}

// The zero of x^3 - c in [0, 4], c passed in RUSER, the calls counted in IUSER.
double cube_minus(const double* x, int64_t* iuser, double* ruser) {
  ++iuser[0];
  return *x * *x * *x - ruser[0];
}

std::vector<uint64_t> zeros(int caller) {
  std::vector<uint64_t> out;
  for (int k = 0; k < 50; ++k) {
    const double a = 0.0, b = 4.0, eps = 1e-13, eta = 0.0;
    double x = -1.0, ruser[1] = {1.0 + 0.1 * k + 0.01 * caller};
    int64_t iuser[1] = {0}, ifail = 1;
    c05ayf_(&a, &b, &eps, &eta, cube_minus, &x, iuser, ruser, &ifail);
    out.insert(out.end(), {bits(x), static_cast<uint64_t>(iuser[0]), static_cast<uint64_t>(ifail)});
    const double wrong = 2.0;  // no sign change in [2, 4]: IFAIL 1
    ifail = 1;
    c05ayf_(&wrong, &b, &eps, &eta, cube_minus, &x, iuser, ruser, &ifail);
    out.push_back(static_cast<uint64_t>(ifail));
  }
  return out;
}

std::string temp_file(int caller) {
  return (std::filesystem::path(testing::TempDir()) / ("vek_threads_print_" + std::to_string(caller) + ".txt"))
      .string();
}

// A matrix printed with x04cbf on unit 40 + caller, opened on the caller's own file; the file's text.
std::string printed(int caller) {
  const int64_t unit = 40 + caller, write = 1, sorder = 1, m = 7, n = 9, ncols = 60, indent = 2;
  const std::string path = temp_file(caller);
  int64_t ifail = 1;
  x04acf_(&unit, path.data(), &write, &ifail, static_cast<int64_t>(path.size()));
  if (ifail != 0) return "open failed";
  std::vector<double> a(static_cast<size_t>(m * n));
  for (size_t i = 0; i < a.size(); ++i) a[i] = std::exp(0.1 * static_cast<double>(i)) * (caller + 1);
  const std::string title = "Caller " + std::to_string(caller);
  const char rlabs[] = "r1r2r3r4r5r6r7";
  ifail = 1;
  x04cbf_(&sorder, "G", "N", &m, &n, a.data(), &m, "1PE12.4", title.data(), "C", rlabs, "I", "", &ncols, &indent,
          &unit, &ifail, 1, 1, 7, static_cast<int64_t>(title.size()), 1, 2, 1, 0);
  const int64_t printed_ifail = ifail;
  ifail = 1;
  x04cbf_(&sorder, "G", "N", &m, &n, a.data(), &m, "Q9", title.data(), "C", rlabs, "I", "", &ncols, &indent,
          &unit, &ifail, 1, 1, 2, static_cast<int64_t>(title.size()), 1, 2, 1, 0);  // bad FORM: silent
  const int64_t bad_form_ifail = ifail;
  x04adf_(&unit, &ifail);
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  std::filesystem::remove(path);
  return text.str() + "ifail " + std::to_string(printed_ifail) + " " + std::to_string(bad_form_ifail);
}

struct Everything {
  std::vector<uint64_t> special, zero;
  std::vector<int64_t> ranks;
  std::string print;
  bool operator==(const Everything&) const = default;
};

Everything everything(int caller) { return {special_functions(caller), zeros(caller), ranking(caller), printed(caller)}; }

TEST(SerialRoutines, ConcurrentCallersGetTheSerialResults) {
  std::vector<Everything> serial;
  for (int t = 0; t < kCallers; ++t) serial.push_back(everything(t));
  // The sweep includes failures; the printer wrote its matrix, and then failed on the bad FORM.
  EXPECT_NE(serial[0].print.find("Caller 0"), std::string::npos);
  EXPECT_NE(serial[0].print.find("ifail 0 "), std::string::npos);
  EXPECT_EQ(serial[0].print.find("ifail 0 0"), std::string::npos);
  for (int round = 0; round < 3; ++round) {
    std::vector<Everything> concurrent(kCallers);
    on_caller_threads(kCallers, [&](int t) { concurrent[static_cast<size_t>(t)] = everything(t); });
    for (int t = 0; t < kCallers; ++t)
      EXPECT_TRUE(concurrent[static_cast<size_t>(t)] == serial[static_cast<size_t>(t)]) << "caller " << t;
  }
}

}  // namespace
}  // namespace vek_threads_test
