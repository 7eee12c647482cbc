// Every message of c05awf, c05axf and c05zdf through the exported entries, to the character (IFAIL = -1
// prints the report, IFAIL = 1 prints nothing); F returning NaN or infinities ends c05awf with a documented IFAIL.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

std::string shortest(double v) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, v).ptr};
}

int g_calls = 0;
std::vector<double> g_points;
double (*g_f)(double) = nullptr;
double counted(const double* x, int64_t*, double*) {
  ++g_calls;
  g_points.push_back(*x);
  return g_f(*x);
}

double square_minus_two(double x) { return x * x - 2.0; }
double plus_one_squared(double x) { return x * x + 1.0; }
double constant(double) { return 1.0; }

// c05awf on f from x with the given EPS, ETA and NFMAX; X on exit in *x_out if not null.
void direct(double (*f)(double), double x, double eps, int64_t nfmax, int64_t* ifail, double* x_out = nullptr) {
  const double eta = 0.0;
  g_f = f;
  g_calls = 0;
  g_points.clear();
  c05awf_(&x, &eps, &eta, counted, &nfmax, nullptr, nullptr, ifail);
  if (x_out != nullptr) *x_out = x;
}

// c05axf from IND = 1 until IND = 0, with the given IFAIL on every call; X on exit in *x_out if not null.
void reverse(double (*f)(double), double x, double tol, int64_t ir, double scal, int64_t* ifail,
             double* x_out = nullptr) {
  double fx = 0.0, c[26] = {};
  int64_t ind = 1;
  const int64_t ifail_in = *ifail;
  for (int calls = 0; ind != 0 && calls < 100000; ++calls) {
    *ifail = ifail_in;
    c05axf_(&x, &fx, &tol, &ir, &scal, c, &ind, ifail);
    fx = f(x);
  }
  if (x_out != nullptr) *x_out = x;
}

// One call of c05axf with the given IND; IND is 0 afterwards.
void reverse_call(int64_t ind, double tol, int64_t ir, double scal, int64_t* ifail) {
  double x = 1.0, fx = 0.5, c[26] = {};
  c05axf_(&x, &fx, &tol, &ir, &scal, c, &ind, ifail);
  EXPECT_EQ(ind, 0);
}

// The stall report for x^2 + 1 from 1: theta = f(X)/f(1) at the X returned.
std::vector<std::string> stall_records(double x) {
  return {"** The continuation cannot proceed beyond",
          "** theta = " + shortest(plus_one_squared(x) / 2.0) + " and X = " + shortest(x) + ".",
          "** F may have no zero near the starting point, or a turning point of the path",
          "** (a zero of f') may lie between the starting point and the zero."};
}

void check(int64_t m, int64_t n, int64_t mode, int64_t* ifail) {
  double x[2] = {1, 2}, fvec[2] = {}, fjac[4] = {}, xp[2] = {}, fvecp[2] = {}, err[2] = {};
  c05zdf_(&mode, &m, &n, x, fvec, fjac, xp, fvecp, err, ifail);
}

}  // namespace

TEST(ContinuationMessages, DirectEveryMessage) {
  double stalled_at = 0.0;
  int64_t ifail = 1;
  direct(plus_one_squared, 1.0, 1e-10, 1000, &ifail, &stalled_at);
  vek::testing::expect_reports("C05AWF", {
      {"EPS = 0, F not called", 1, {"** On entry, EPS = 0", "** Constraint: EPS > 0.0."},
       [](int64_t* f) {
         direct(square_minus_two, 1.0, 0.0, 10, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"EPS = NaN before NFMAX = 0", 1, {"** On entry, EPS = NaN", "** Constraint: EPS > 0.0."},
       [](int64_t* f) { direct(square_minus_two, 1.0, NAN, 0, f); }},
      {"NFMAX = -1", 1, {"** On entry, NFMAX = -1", "** Constraint: NFMAX > 0."},
       [](int64_t* f) { direct(square_minus_two, 1.0, 1e-8, -1, f); }},
      {"NFMAX calls made", 2, {"** More than NFMAX calls have been made to F."},
       [](int64_t* f) {
         direct(square_minus_two, 1.0, 1e-8, 3, f);
         EXPECT_EQ(g_calls, 3);
       }},
      {"F constant", 3, {"** Internal scale factor invalid for this problem.",
                          "** Consider using C05AXF instead and setting SCAL."},
       [](int64_t* f) {
         double x = 0.0;
         direct(constant, 0.5, 1e-8, 10, f, &x);
         EXPECT_EQ(g_calls, 2);
         EXPECT_EQ(x, 0.5);
       }},
      {"X = NaN, F not called", 3, {"** Internal scale factor invalid for this problem.",
                                    "** Consider using C05AXF instead and setting SCAL."},
       [](int64_t* f) {
         direct(square_minus_two, NAN, 1e-8, 10, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"a turning point, no zero", 4, stall_records(stalled_at),
       [](int64_t* f) { direct(plus_one_squared, 1.0, 1e-10, 1000, f); }},
      {"EPS too small", 5,
       {"** The tolerance EPS has been set too small for the problem", "** being solved. However, the value X returned is",
        "** a good approximation to the zero.", "** EPS = 1e-300"},
       [](int64_t* f) {
         double x = 0.0;
         direct(square_minus_two, 1.0, 1e-300, 1000, f, &x);
         EXPECT_NEAR(x, std::sqrt(2.0), 4e-16);
       }},
  });
  EXPECT_EQ(ifail, 4);
  EXPECT_LT(std::abs(stalled_at), 1e-4);  // the minimum of x^2 + 1
}

TEST(ContinuationMessages, ReverseEveryMessage) {
  double stalled_at = 0.0;
  int64_t ifail = 1;
  reverse(plus_one_squared, 1.0, 1e-10, 0, 1e-3, &ifail, &stalled_at);
  vek::testing::expect_reports("C05AXF", {
      {"IND = 0", 1, {"** On entry, IND = 0", "** Constraint: IND = -1, 1, 2, 3 or 4."},
       [](int64_t* f) { reverse_call(0, 1e-8, 0, 1e-3, f); }},
      {"IND = 5 before TOL = 0", 1, {"** On entry, IND = 5", "** Constraint: IND = -1, 1, 2, 3 or 4."},
       [](int64_t* f) { reverse_call(5, 0.0, 0, 1e-3, f); }},
      {"TOL = NaN before IR = 3", 1, {"** On entry, TOL = NaN", "** Constraint: TOL > 0.0."},
       [](int64_t* f) { reverse_call(4, NAN, 3, 1e-3, f); }},
      {"IR = 3", 1, {"** On entry, IR = 3", "** Constraint: IR = 0, 1 or 2."},
       [](int64_t* f) { reverse_call(-1, 1e-8, 3, 1e-3, f); }},
      {"SCAL too small", 1, {"** On entry, X = 1 and SCAL = 1e-17", "** Constraint: X+SCAL /= X (to machine accuracy)."},
       [](int64_t* f) { reverse_call(1, 1e-8, 1, 1e-17, f); }},
      {"F constant", 2,
       {"** Scale factor SCAL invalid for this problem: SCAL = 0.001",
        "** f at the starting point, or f(X+SCAL) - f(X), is not finite, or the",
        "** difference is negligible: no slope of f can be formed. Try a larger SCAL."},
       [](int64_t* f) { reverse(constant, 0.5, 1e-8, 0, 1e-3, f); }},
      {"a turning point, no zero", 3, stall_records(stalled_at),
       [](int64_t* f) { reverse(plus_one_squared, 1.0, 1e-10, 0, 1e-3, f); }},
      {"TOL too small", 4,
       {"** The tolerance TOL has been set too small for the problem", "** being solved. However, the value X returned may well be",
        "** a good approximation to the zero.", "** TOL = 1e-300"},
       [](int64_t* f) { reverse(square_minus_two, 1.0, 1e-300, 1, 1e-3, f); }},
  });
  EXPECT_EQ(ifail, 3);
  // SCAL is looked at only when a run starts: SCAL = 0 with IND = 3 is a normal call.
  double x = 1.0, fx = 0.5, scal = 1e-3, tol = 1e-8, c[26] = {};
  int64_t ir = 0, ind = -1;
  c05axf_(&x, &fx, &tol, &ir, &scal, c, &ind, &ifail);
  scal = 0.0;
  fx = 0.25;
  c05axf_(&x, &fx, &tol, &ir, &scal, c, &ind, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(ind, 4);
}

TEST(ContinuationMessages, JacobianCheckEveryMessage) {
  vek::testing::expect_reports("C05ZDF", {
      {"M = 0 before N = 0", 1, {"** On entry, M = 0", "** Constraint: M >= 1."},
       [](int64_t* f) { check(0, 0, 1, f); }},
      {"N = -1 before MODE = 0", 1, {"** On entry, N = -1", "** Constraint: N >= 1."},
       [](int64_t* f) { check(2, -1, 0, f); }},
      {"MODE = 3", 1, {"** On entry, MODE = 3", "** Constraint: MODE = 1 or 2."},
       [](int64_t* f) { check(2, 2, 3, f); }},
  });
}

// NaN or infinite values of F: at the start the scale is invalid (IFAIL 3); NaN from the fourth call on leaves no
// step that decreases |f|, and the run stalls (IFAIL 4) at the last point where F was finite (the third), or
// stops at NFMAX (IFAIL 2) there.
TEST(ContinuationMessages, NonFiniteValuesOfF) {
  struct Row {
    double (*f)(double);
    int64_t nfmax, ifail;
    size_t calls;       // 0: not checked
    size_t last_finite;  // X on exit is the point of this call
  };
  static int calls_so_far = 0;
  double (*nan_from_fourth)(double) = [](double x) { return ++calls_so_far < 4 ? x * x - 2.0 : NAN; };
  const std::vector<Row> rows = {
      {+[](double) -> double { return NAN; }, 100, 3, 1, 1},
      {+[](double) -> double { return INFINITY; }, 100, 3, 1, 1},
      {+[](double x) -> double { return x <= 1.0 ? 0.5 : -INFINITY; }, 100, 3, 2, 1},
      {nan_from_fourth, 1000, 4, 0, 3},
      {nan_from_fourth, 10, 2, 10, 3},
  };
  for (const Row& r : rows) {
    calls_so_far = 0;
    int64_t ifail = 1;
    double x = 0.0;
    direct(r.f, 1.0, 1e-10, r.nfmax, &ifail, &x);
    EXPECT_EQ(ifail, r.ifail);
    EXPECT_TRUE(r.calls == 0 || g_points.size() == r.calls) << g_points.size();
    ASSERT_GE(g_points.size(), r.last_finite);
    EXPECT_EQ(x, g_points[r.last_finite - 1]);
  }
}
