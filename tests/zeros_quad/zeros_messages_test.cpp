// Every message of c05azf and c05ayf through the exported entries: the printed report compared line by line,
// IFAIL on exit, nothing printed with IFAIL = 1; IND is 0 after every failure of c05azf, and c05ayf's argument
// checks fail before F is called.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "message_cases.h"
#include "vek.h"

namespace {

using vek::testing::check_cases;

double square_minus_two(double x) { return x * x - 2.0; }

// Runs c05azf from IND = 1 on f, from the points x and y, until IND = 0, calling with the given IFAIL each
// time; returns the number of values asked for and the final X in x_out (if not null).
int run_kernel(double (*f)(double), double x, double y, double tolx, int64_t ir, int64_t* ifail, double* x_out) {
  double c[10] = {}, fx = 0.0;
  int64_t ind = 1;
  int evaluations = 0;
  const int64_t ifail_in = *ifail;
  do {
    *ifail = ifail_in;
    c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, ifail);
    if (ind != 0) {
      fx = f(x);
      ++evaluations;
    }
  } while (ind != 0 && evaluations < 10000);
  if (x_out != nullptr) *x_out = x;
  return evaluations;
}

// One call of c05azf with the given IND and arguments; checks that IND is 0 afterwards.
void kernel_call(int64_t ind, double tolx, int64_t ir, int64_t* ifail) {
  double x = 1.0, y = 2.0, fx = -1.0, c[10] = {};
  c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, ifail);
  EXPECT_EQ(ind, 0);
}

int g_calls = 0;
double counted_square_minus_two(const double* x, int64_t*, double*) {
  ++g_calls;
  return square_minus_two(*x);
}
double counted_pole(const double* x, int64_t*, double*) {
  ++g_calls;
  return 1.0 / (*x - 1.0);
}

}  // namespace

TEST(ZeroMessages, KernelEveryMessage) {
  const std::vector<std::string> pole = {
      "** The final interval may contain a pole rather than a zero.",
      "** Note that this error exit is not completely reliable: it may be taken",
      "** in extreme cases when [X,Y] contains a zero, or it may not be taken",
      "** when [X,Y] contains a pole.",
      "** Both these cases occur most frequently when TOLX is large."};
  check_cases("C05AZF", {
      {"same sign, values given", 1,
       {"** On entry, f(X) and f(Y) have the same sign with neither equalling 0.0:", "** f(X) = 2 and f(Y) = 7"},
       [](int64_t* f) {
         double x = 2.0, y = 3.0, fx = square_minus_two(2.0), tolx = 1e-8, c[10] = {};
         c[0] = square_minus_two(3.0);
         int64_t ir = 0, ind = -1;
         c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, f);
         EXPECT_EQ(ind, 0);
       }},
      {"same sign, values asked for", 1,
       {"** On entry, f(X) and f(Y) have the same sign with neither equalling 0.0:",
        "** f(X) = -1.75 and f(Y) = -0.4375"},
       [](int64_t* f) { run_kernel(square_minus_two, 0.5, 1.25, 1e-8, 0, f, nullptr); }},
      {"IND = 0", 2, {"** On entry, IND = 0", "** Constraint: IND = -1, 1, 2, 3 or 4."},
       [](int64_t* f) { kernel_call(0, 1e-8, 0, f); }},
      {"IND = 5 before a bad TOLX", 2, {"** On entry, IND = 5", "** Constraint: IND = -1, 1, 2, 3 or 4."},
       [](int64_t* f) { kernel_call(5, 0.0, 0, f); }},
      {"IND = -2", 2, {"** On entry, IND = -2", "** Constraint: IND = -1, 1, 2, 3 or 4."},
       [](int64_t* f) { kernel_call(-2, 1e-8, 0, f); }},
      {"TOLX = 0 before a bad IR", 3, {"** On entry, TOLX = 0", "** Constraint: TOLX > 0.0."},
       [](int64_t* f) { kernel_call(4, 0.0, 7, f); }},
      {"TOLX = NaN", 3, {"** On entry, TOLX = NaN", "** Constraint: TOLX > 0.0."},
       [](int64_t* f) { kernel_call(2, NAN, 0, f); }},
      {"TOLX < 0", 3, {"** On entry, TOLX = -1e-06", "** Constraint: TOLX > 0.0."},
       [](int64_t* f) { kernel_call(1, -1e-6, 0, f); }},
      {"IR = -1", 3, {"** On entry, IR = -1", "** Constraint: IR = 0, 1 or 2."},
       [](int64_t* f) { kernel_call(3, 1e-8, -1, f); }},
      {"IR = 3", 3, {"** On entry, IR = 3", "** Constraint: IR = 0, 1 or 2."},
       [](int64_t* f) { kernel_call(1, 1e-8, 3, f); }},
      {"pole", 4, pole,
       [](int64_t* f) { run_kernel([](double x) { return 1.0 / (x - 1.0); }, 0.0, 2.0, 1e-6, 0, f, nullptr); }},
      {"tolerance too small", 5,
       {"** The tolerance TOLX has been set too small for the problem",
        "** being solved. However, the values X and Y returned may well", "** be good approximations to the zero.",
        "** TOLX = 1e-300"},
       [](int64_t* f) {
         double x = 0.0;
         run_kernel(square_minus_two, 0.0, 4.0, 1e-300, 1, f, &x);
         EXPECT_NEAR(x, std::sqrt(2.0), 4e-16);
       }},
  });
}

TEST(ZeroMessages, DriverEveryMessage) {
  check_cases("C05AYF", {
      {"EPS = 0", 1, {"** On entry, EPS = 0", "** Constraint: EPS > 0.0."},
       [](int64_t* f) {
         const double a = 1.0, b = 2.0, eps = 0.0, eta = 0.0;
         double x = 0.0;
         g_calls = 0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"EPS = 0 is reported before A = B", 1, {"** On entry, EPS = 0", "** Constraint: EPS > 0.0."},
       [](int64_t* f) {
         const double a = 1.0, b = 1.0, eps = 0.0, eta = 0.0;
         double x = 0.0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
       }},
      {"EPS = NaN", 1, {"** On entry, EPS = NaN", "** Constraint: EPS > 0.0."},
       [](int64_t* f) {
         const double a = 1.0, b = 2.0, eps = NAN, eta = 0.0;
         double x = 0.0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
       }},
      {"A = B", 1, {"** On entry, A = 1.5 and B = 1.5", "** Constraint: A /= B."},
       [](int64_t* f) {
         const double a = 1.5, b = 1.5, eps = 1e-8, eta = 0.0;
         double x = 0.0;
         g_calls = 0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"A = NaN", 1, {"** On entry, A = NaN and B = 2", "** Constraint: A /= B."},
       [](int64_t* f) {
         const double a = NAN, b = 2.0, eps = 1e-8, eta = 0.0;
         double x = 0.0;
         g_calls = 0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"same sign", 1,
       {"** On entry, F(A) and F(B) have the same sign with neither equalling 0.0:", "** F(A) = 2 and F(B) = 7"},
       [](int64_t* f) {
         const double a = 2.0, b = 3.0, eps = 1e-8, eta = 0.0;
         double x = 0.0;
         g_calls = 0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
         EXPECT_EQ(g_calls, 2);
         EXPECT_EQ(x, 3.0);
       }},
      {"EPS too small", 2,
       {"** No further improvement in the solution is possible.", "** EPS is too small: EPS = 1e-300",
        "** The final value of X returned is an accurate approximation to the zero."},
       [](int64_t* f) {
         const double a = 0.0, b = 4.0, eps = 1e-300, eta = 0.0;
         double x = 0.0;
         c05ayf_(&a, &b, &eps, &eta, counted_square_minus_two, &x, nullptr, nullptr, f);
         EXPECT_NEAR(x, std::sqrt(2.0), 4e-16);
       }},
      {"pole", 3,
       {"** The function values in the interval [A,B] might contain",
        "** a pole rather than a zero. Reducing EPS may help in distinguishing between", "** a pole and a zero."},
       [](int64_t* f) {
         const double a = 0.0, b = 2.0, eps = 1e-6, eta = 0.0;
         double x = 0.0;
         c05ayf_(&a, &b, &eps, &eta, counted_pole, &x, nullptr, nullptr, f);
         EXPECT_NEAR(x, 1.0, 2e-6);
       }},
  });
}

namespace {

// One call of c05avf; IND is 0 afterwards.
void search_call(double x, double h, double boundl, double boundu, int64_t ind, int64_t* ifail) {
  double fx = 1.0, y = 0.0, c[11] = {};
  c05avf_(&x, &fx, &h, &boundl, &boundu, &y, c, &ind, ifail);
  EXPECT_EQ(ind, 0);
}

double counted_plus_one_squared(const double* x, int64_t*, double*) {
  ++g_calls;
  return *x * *x + 1.0;
}

void near_call(double x, double h, double eps, double (*f)(const double*, int64_t*, double*), int64_t* ifail) {
  const double eta = 0.0;
  double a = 0.0, b = 0.0;
  g_calls = 0;
  c05auf_(&x, &h, &eps, &eta, f, &a, &b, nullptr, nullptr, ifail);
}

}  // namespace

TEST(ZeroMessages, SearchAndNearEveryMessage) {
  check_cases("C05AVF", {
      {"bounds reversed", 1, {"** On entry, BOUNDL = 1 and", "** BOUNDU = 1", "** Constraint: BOUNDL < BOUNDU."},
       [](int64_t* f) { search_call(1.0, 0.1, 1.0, 1.0, 1, f); }},
      {"X outside, before a bad H", 1,
       {"** On entry, X = 3, BOUNDL = 0", "** and BOUNDU = 2", "** Constraint: BOUNDL <= X <= BOUNDU."},
       [](int64_t* f) { search_call(3.0, 0.0, 0.0, 2.0, 1, f); }},
      {"both steps outside", 1,
       {"** On entry, X+H and X-H both lie outside the interval [BOUNDL,BOUNDU]:", "** X = 1, H = 5",
        "** BOUNDL = 0 and BOUNDU = 2"},
       [](int64_t* f) { search_call(1.0, 5.0, 0.0, 2.0, -1, f); }},
      {"H too small", 2, {"** On entry, H is too small for use as a perturbation of X:", "** X = 1 and H = 1e-17"},
       [](int64_t* f) { search_call(1.0, 1e-17, 0.0, 2.0, 1, f); }},
      {"IND = 4, bounds not looked at", 3, {"** On entry, IND = 4", "** Constraint: IND = -1, 1, 2 or 3."},
       [](int64_t* f) { search_call(5.0, 0.0, 1.0, 0.0, 4, f); }},
      {"no sign change", 4, {"** An interval containing the zero could not be found."},
       [](int64_t* f) {
         double x = 0.5, h = 0.25, y = 0.0, fx = 0.0, c[11] = {};
         const double lo = 0.0, hi = 1.0;
         const int64_t ifail_in = *f;
         int64_t ind = 1;
         for (int calls = 0; ind != 0 && calls < 1000; ++calls) {
           *f = ifail_in;
           c05avf_(&x, &fx, &h, &lo, &hi, &y, c, &ind, f);
           fx = x * x + 1.0;
         }
         EXPECT_LE(x, y);
       }},
  });
  check_cases("C05AUF", {
      {"EPS = 0", 1, {"** On entry, EPS = 0", "** Constraint: EPS > 0.0."},
       [](int64_t* f) { near_call(1.0, 0.0, 0.0, counted_square_minus_two, f); }},
      {"H too small", 1, {"** On entry, X = 1 and H = 0", "** Constraint: X+H /= X (to machine accuracy)."},
       [](int64_t* f) {
         near_call(1.0, 0.0, 1e-8, counted_square_minus_two, f);
         EXPECT_EQ(g_calls, 0);
       }},
      {"no bracket", 2,
       {"** An interval containing the zero could not be found.",
        "** Increasing H and calling C05AUF again will increase the range searched for",
        "** the zero. Decreasing H and calling C05AUF again will refine the mesh used",
        "** in the search for the zero."},
       [](int64_t* f) { near_call(0.5, 0.001, 1e-10, counted_plus_one_squared, f); }},
      {"pole", 3, {"** Solution may be a pole rather than a zero."},
       [](int64_t* f) { near_call(1.1, -0.3, 1e-9, counted_pole, f); }},
      {"EPS too small", 4,
       {"** The tolerance EPS has been set too small for the problem", "** being solved. However, the value X returned is",
        "** a good approximation to the zero.", "** EPS = 1e-300"},
       [](int64_t* f) { near_call(1.0, 0.1, 1e-300, counted_square_minus_two, f); }},
  });
}
