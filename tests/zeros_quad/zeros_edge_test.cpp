// The zero finders at their edges: exact zeros at the starting points, the sign rule (0 and NaN count as
// non-positive), ETA's strict test, user functions returning NaN or infinities, odd intervals, IUSER and
// RUSER passed through untouched, a host's own adapter, independent runs interleaved on distinct states, and
// the outward search ending on functions and bounds that give it nothing to find.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "layers/c05.h"
#include "support/report.h"
#include "vek.h"

namespace {

double square_minus_two(double x) { return x * x - 2.0; }

struct Kernel {
  double x, y, fx = 0.0, tolx = 1e-10;
  int64_t ir = 0, ind = 1, ifail = 1;
  double c[10] = {};

  void call() {
    ifail = 1;
    c05azf_(&x, &y, &fx, &tolx, &ir, c, &ind, &ifail);
  }
  // Calls until IND = 0, evaluating f as asked; returns the number of evaluations (at most `limit`).
  int run(double (*f)(double), int limit = 100000) {
    int evaluations = 0;
    call();
    while (ind != 0 && evaluations < limit) {
      fx = f(x);
      ++evaluations;
      call();
    }
    return evaluations;
  }
};

// A user function with a count of its calls.
int g_calls = 0;
double (*g_f)(double) = nullptr;
double counted(const double* x, int64_t*, double*) {
  ++g_calls;
  return g_f(*x);
}

struct Driver {
  double a, b, eps = 1e-10, eta = 0.0, x = -99.0;
  int64_t ifail = 1;

  int run(double (*f)(double)) {
    g_f = f;
    g_calls = 0;
    ifail = 1;
    c05ayf_(&a, &b, &eps, &eta, counted, &x, nullptr, nullptr, &ifail);
    return g_calls;
  }
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

}  // namespace

TEST(ZeroEdges, KernelExactZerosAndTheSignRule) {
  // IND = 1 and f(X) = 0: IND goes 1 -> 2, then 0 at the first value, Y = X.
  Kernel k{.x = std::sqrt(4.0), .y = 5.0};
  k.call();
  EXPECT_EQ(k.ind, 2);
  EXPECT_EQ(k.x, 2.0);
  k.fx = 0.0;
  k.call();
  EXPECT_EQ(k.ind, 0);
  EXPECT_EQ(k.ifail, 0);
  EXPECT_EQ(k.x, 2.0);
  EXPECT_EQ(k.y, 2.0);

  // The second value 0 (IND = 3) is an exact zero at the second point.
  Kernel second{.x = 0.0, .y = 3.0};
  second.call();
  second.fx = -1.0;
  second.call();
  EXPECT_EQ(second.ind, 3);
  EXPECT_EQ(second.x, 3.0);
  EXPECT_EQ(second.y, 0.0);
  second.fx = 0.0;
  second.call();
  EXPECT_EQ(second.ind, 0);
  EXPECT_EQ(second.ifail, 0);
  EXPECT_EQ(second.x, 3.0);
  EXPECT_EQ(second.y, 3.0);

  // IND = -1 with FX = 0: finished at once.
  Kernel given{.x = 1.0, .y = 2.0, .fx = 0.0, .ind = -1};
  given.c[0] = 5.0;
  given.call();
  EXPECT_EQ(given.ind, 0);
  EXPECT_EQ(given.ifail, 0);
  EXPECT_EQ(given.y, 1.0);

  // IND = -1 with C(1) = f(Y) = 0 is no exact zero: 0 counts as non-positive, so with f(X) < 0 the two values
  // have the same sign ...
  Kernel negative{.x = 1.0, .y = 2.0, .fx = -3.0, .ind = -1};
  negative.c[0] = 0.0;
  negative.call();
  EXPECT_EQ(negative.ind, 0);
  EXPECT_EQ(negative.ifail, 1);
  // ... and with f(X) > 0 they bracket a zero, found at Y by the final evaluation there.
  Kernel positive{.x = 1.0, .y = 2.0, .fx = 3.0, .ind = -1};
  positive.c[0] = 0.0;
  positive.call();
  EXPECT_EQ(positive.ind, 4);
  EXPECT_EQ(positive.x, 2.0);
  EXPECT_EQ(positive.c[9], 1.0);  // converged, the final evaluation pending
  positive.fx = 0.0;
  positive.call();
  EXPECT_EQ(positive.ind, 0);
  EXPECT_EQ(positive.ifail, 0);
  EXPECT_EQ(positive.x, 2.0);
}

TEST(ZeroEdges, KernelStateFieldsAndIndependentRuns) {
  // After the two starting values the array holds the bracket as documented: C(3) a, C(4) b, C(7) c ...
  Kernel k{.x = 1.0, .y = 2.0};
  k.call();
  k.fx = square_minus_two(k.x);
  k.call();
  k.fx = square_minus_two(k.x);
  k.call();
  ASSERT_EQ(k.ind, 4);
  const vek::routines::c05azf::c_state s(k.c);
  EXPECT_EQ(s.a(), 1.0);    // the previous iterate: the better starting point, |f(1)| < |f(2)|
  EXPECT_EQ(s.fa(), -1.0);
  EXPECT_EQ(s.c(), 2.0);    // the contrapoint
  EXPECT_EQ(s.fc(), 2.0);
  EXPECT_EQ(s.b(), k.x);    // the point asked for: the secant step 1/3 from 1
  EXPECT_EQ(s.d(), 1.0 / 3.0);
  EXPECT_EQ(s.e(), 1.0);    // the first step memory: the starting interval
  EXPECT_EQ(k.x, 1.0 + 1.0 / 3.0);
  EXPECT_EQ(s.fmax(), 2.0);
  EXPECT_EQ(s.converged(), 0.0);

  // Two searches interleaved call by call on their own arrays end as each does alone: no hidden state.
  Kernel alone1{.x = 1.0, .y = 2.0}, alone2{.x = 3.0, .y = 2.0};
  const int n1 = alone1.run(square_minus_two);
  const int n2 = alone2.run([](double x) { return x * x * x - 2.0 * x - 5.0; });
  Kernel p{.x = 1.0, .y = 2.0}, q{.x = 3.0, .y = 2.0};
  p.call();
  q.call();
  int m1 = 0, m2 = 0;
  while (p.ind != 0 || q.ind != 0) {
    if (p.ind != 0) {
      p.fx = square_minus_two(p.x), ++m1;
      p.call();
    }
    if (q.ind != 0) {
      q.fx = q.x * q.x * q.x - 2.0 * q.x - 5.0, ++m2;
      q.call();
    }
  }
  EXPECT_EQ(m1, n1);
  EXPECT_EQ(m2, n2);
  EXPECT_EQ(p.x, alone1.x);
  EXPECT_EQ(q.x, alone2.x);
}

TEST(ZeroEdges, KernelOddInputsEnd) {
  // A NaN starting point: the first value is NaN, counted as non-positive; either same sign (IFAIL 1) or a NaN
  // bracket that ends at once at rounding level (IFAIL 5). Never a long march.
  Kernel nan_x{.x = kNaN, .y = 2.0};
  EXPECT_LE(nan_x.run(square_minus_two), 2);
  EXPECT_EQ(nan_x.ind, 0);
  EXPECT_EQ(nan_x.ifail, 5);
  Kernel nan_y{.x = 0.0, .y = kNaN};  // f(0) < 0 and NaN: both non-positive
  EXPECT_LE(nan_y.run(square_minus_two), 2);
  EXPECT_EQ(nan_y.ifail, 1);

  // A function that is NaN inside the bracket: bisection only, towards the end where f > 0, and the final
  // value (NaN) is reported as a possible pole.
  Kernel inner{.x = 0.0, .y = 1.0, .tolx = 1e-12, .ir = 1};
  const int n = inner.run([](double x) { return x == 0.0 ? -1.0 : x == 1.0 ? 1.0 : kNaN; });
  EXPECT_LE(n, 45);
  EXPECT_EQ(inner.ifail, 4);
  EXPECT_NEAR(inner.x, 1.0, 2e-12);  // within the converged bracket, 2 TOLX wide

  // A bracket wider than the largest double is halved without overflow.
  Kernel wide{.x = -1e308, .y = 1.5e308, .tolx = 1e-12};
  EXPECT_LE(wide.run([](double x) { return x - 1.0; }), 10);
  EXPECT_EQ(wide.ifail, 0);
  EXPECT_NEAR(wide.x, 1.0, 2e-12);

  // Infinite end points and an infinite tolerance end too.
  Kernel infinite{.x = -kInf, .y = kInf, .ir = 1};
  EXPECT_LE(infinite.run([](double x) { return std::tanh(x); }), 3);
  EXPECT_EQ(infinite.ind, 0);
  Kernel loose{.x = 0.0, .y = 3.0, .tolx = kInf};
  EXPECT_EQ(loose.run(square_minus_two), 3);  // converged at once: the final evaluation only
  EXPECT_EQ(loose.ifail, 0);

  // A relative test around a zero at 0: the bracket shrinks until f is exactly 0 (no endless loop).
  Kernel relative{.x = -1.0, .y = 2.0, .tolx = 1e-10, .ir = 2};
  EXPECT_LE(relative.run([](double x) { return x * (1.0 + x * x); }), 40);
  EXPECT_EQ(relative.ifail, 0);
  EXPECT_LE(std::abs(relative.x), 1e-300);
}

TEST(ZeroEdges, DriverStartingPointsAndEta) {
  // |F(A)| < ETA: X = A after one evaluation, F(B) not evaluated.
  Driver d{.a = 1.0, .b = 2.0, .eta = 1.5};
  EXPECT_EQ(d.run(square_minus_two), 1);
  EXPECT_EQ(d.ifail, 0);
  EXPECT_EQ(d.x, 1.0);
  // The test is strict: |F(A)| = ETA is not accepted, nor is |F(B)| = ETA; the secant then lands on the zero.
  Driver equal{.a = 0.0, .b = 2.0, .eta = 1.0};
  EXPECT_EQ(equal.run([](double x) { return x - 1.0; }), 3);
  EXPECT_EQ(equal.ifail, 0);
  EXPECT_EQ(equal.x, 1.0);
  // |F(B)| < ETA: X = B after two evaluations; F(A) = 0 with ETA = 0: X = A.
  Driver at_b{.a = 0.0, .b = 1.5, .eta = 0.3};
  EXPECT_EQ(at_b.run(square_minus_two), 2);
  EXPECT_EQ(at_b.x, 1.5);
  Driver zero_a{.a = 2.0, .b = 5.0};
  EXPECT_EQ(zero_a.run([](double x) { return x - 2.0; }), 1);
  EXPECT_EQ(zero_a.x, 2.0);
  EXPECT_EQ(zero_a.ifail, 0);
  // A point inside with |F| < ETA ends the search there; with a large ETA it takes fewer evaluations.
  Driver tight{.a = 0.0, .b = 2.0, .eps = 1e-14}, loose{.a = 0.0, .b = 2.0, .eps = 1e-14, .eta = 1e-3};
  const int n_tight = tight.run(square_minus_two), n_loose = loose.run(square_minus_two);
  EXPECT_LT(n_loose, n_tight);
  EXPECT_LT(std::abs(square_minus_two(loose.x)), 1e-3);
  EXPECT_NEAR(tight.x, std::sqrt(2.0), 2e-14);
}

TEST(ZeroEdges, DriverFunctionsReturningNaNOrInfinity) {
  // NaN everywhere: both values count as non-positive, so the same-sign failure after two evaluations.
  const auto always_nan = [](double) { return kNaN; };
  vek::testing::expect_report(
      [&](int64_t* ifail) {
        const double a = 0.0, b = 1.0, eps = 1e-8, eta = 0.0;
        double x = 0.0;
        g_f = always_nan;
        g_calls = 0;
        c05ayf_(&a, &b, &eps, &eta, counted, &x, nullptr, nullptr, ifail);
        EXPECT_EQ(g_calls, 2);
      },
      1,
      {" ** On entry, F(A) and F(B) have the same sign with neither equalling 0.0:",
       " ** F(A) = NaN and F(B) = NaN"},
      "C05AYF");
  // NaN inside the interval: bisection to the end where F > 0, then the NaN there is taken for a pole.
  Driver inner{.a = 0.0, .b = 1.0, .eps = 1e-8};
  EXPECT_LE(inner.run([](double x) { return x == 0.0 ? -1.0 : x == 1.0 ? 1.0 : kNaN; }), 32);
  EXPECT_EQ(inner.ifail, 3);
  EXPECT_NEAR(inner.x, 1.0, 2e-8);
  // NaN at A only and F(B) > 0: the search continues from B and finds the zero of the rest.
  Driver nan_a{.a = 0.0, .b = 3.0};
  EXPECT_LE(nan_a.run([](double x) { return x == 0.0 ? kNaN : square_minus_two(x); }), 15);
  EXPECT_EQ(nan_a.ifail, 0);
  EXPECT_NEAR(nan_a.x, std::sqrt(2.0), 1e-10);
  // An infinite value at a starting point is a value like any other: the zero is found, and the final check
  // at it cannot exceed the larger starting value.
  Driver inf_a{.a = 0.0, .b = 2.0};
  inf_a.run([](double x) { return 1.0 / x - 1.0; });
  EXPECT_EQ(inf_a.ifail, 0);
  EXPECT_NEAR(inf_a.x, 1.0, 1e-10);
}

TEST(ZeroEdges, DriverUserArraysAndHostAdapter) {
  // F reads its data from RUSER and counts its calls in IUSER(1); the driver passes the caller's own arrays on
  // every call and changes nothing in them.
  static int64_t* seen_iuser = nullptr;
  static double* seen_ruser = nullptr;
  static bool same_arrays = true;
  std::vector<int64_t> iuser = {0, 17, -4};
  std::vector<double> ruser = {3.0, 0.25};
  seen_iuser = iuser.data();
  seen_ruser = ruser.data();
  const auto f = [](const double* x, int64_t* iu, double* ru) {
    same_arrays = same_arrays && iu == seen_iuser && ru == seen_ruser;
    ++iu[0];
    return *x * *x - ru[0];  // zero at sqrt(RUSER(1))
  };
  const double a = 0.0, b = 3.0, eps = 1e-12, eta = 0.0;
  double x = 0.0;
  int64_t ifail = 0;
  c05ayf_(&a, &b, &eps, &eta, f, &x, iuser.data(), ruser.data(), &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_TRUE(same_arrays);
  EXPECT_GT(iuser[0], 2);
  EXPECT_EQ(iuser[1], 17);
  EXPECT_EQ(iuser[2], -4);
  EXPECT_EQ(ruser, (std::vector<double>{3.0, 0.25}));
  EXPECT_NEAR(x, std::sqrt(3.0), 1e-12);

  // A host calls the worker with an adapter of its own: every evaluation passes through it, and the result is
  // the entry's.
  static int64_t adapter_calls = 0;
  const auto adapter = [](vek_c05ayf_f_fn fn, const double* t, int64_t* iu, double* ru) {
    ++adapter_calls;
    return fn(t, iu, ru);
  };
  iuser[0] = 0;
  double x_host = 0.0;
  char errbuf[200];
  int64_t ierr = -1;
  c05ayfn_(&a, &b, &eps, &eta, adapter, f, &x_host, iuser.data(), ruser.data(), errbuf, &ierr, 200);
  EXPECT_EQ(ierr, 0);
  EXPECT_EQ(adapter_calls, iuser[0]);
  EXPECT_EQ(x_host, x);
}

TEST(ZeroEdges, DriverAccuracyOnStandardFunctions) {
  // Zeros known independently: ln 2, the fixed point of cos (0.739085133215160641655312087673873...,
  // A003957), pi/2 and 2^(1/3). With EPS = 1e-12 the error is within EPS.
  struct Known {
    double (*f)(double);
    double a, b, zero;
  };
  const Known known[] = {
      {[](double x) { return std::exp(x) - 2.0; }, 0.0, 3.0, std::log(2.0)},
      {[](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.7390851332151607},
      {[](double x) { return std::cos(x); }, 1.0, 3.0, std::acos(-1.0) / 2},
      {[](double x) { return x * x * x - 2.0; }, -1.0, 5.0, std::cbrt(2.0)},
  };
  for (const Known& k : known) {
    Driver d{.a = k.a, .b = k.b, .eps = 1e-12};
    EXPECT_LE(d.run(k.f), 16);
    EXPECT_EQ(d.ifail, 0);
    EXPECT_NEAR(d.x, k.zero, 1e-12) << k.zero;
  }
}

TEST(ZeroEdges, SearchEndsOnOddFunctionsAndBounds) {
  // The outward search with infinite bounds, a function that is NaN or constant in sign everywhere, or a huge
  // starting step: every run ends (IND = 0) with IFAIL 4 and X <= Y, the extreme points it reached.
  struct Case {
    double x, h, boundl, boundu;
    double (*f)(double);
  };
  const Case cases[] = {
      {0.0, 1.0, -kInf, kInf, [](double) { return kNaN; }},
      {1.0, 0.5, -kInf, kInf, [](double x) { return x * x + 1.0; }},
      {0.0, kInf, 0.0, kInf, [](double x) { return x + 1.0; }},
      {0.0, -1e300, -kInf, 1.0, [](double) { return 1.0; }},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.h);
    double x = k.x, h = k.h, y = 0.0, fx = 0.0, c[11] = {};
    int64_t ind = 1, ifail = 1;
    int calls = 0;
    for (; calls < 100000; ++calls) {
      ifail = 1;
      c05avf_(&x, &fx, &h, &k.boundl, &k.boundu, &y, c, &ind, &ifail);
      if (ind == 0) break;
      fx = k.f(x);
    }
    EXPECT_EQ(ind, 0);
    EXPECT_EQ(ifail, 4);
    EXPECT_LE(x, y);
  }
  // c05auf on a function that is NaN away from its start: the search ends with IFAIL 2 and A <= X <= B.
  double x = 2.0, a = 0.0, b = 0.0;
  const double h = 0.5, eps = 1e-10, eta = 0.0;
  int64_t ifail = 1;
  g_f = [](double t) { return t == 2.0 ? 1.0 : kNaN; };
  c05auf_(&x, &h, &eps, &eta, counted, &a, &b, nullptr, nullptr, &ifail);
  EXPECT_EQ(ifail, 2);
  EXPECT_EQ(x, 2.0);
  EXPECT_LE(a, x);
  EXPECT_LE(x, b);
}
