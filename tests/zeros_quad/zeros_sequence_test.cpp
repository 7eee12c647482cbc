// Fidelity of the zero finders: every call of the reverse-communication sequences (IND, X and Y or H returned)
// and every point at which the drivers evaluate F, against a second implementation of the documented algorithm
// (data/make_sequences.py, whose output data/sequences.txt is committed). The iterates must agree to the bit.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "functions.h"
#include "vek.h"

namespace {

using vek::testing::RealFunction;

struct Step {
  int64_t ind;
  double x, y;
};

struct KernelRun {
  std::string name, function;
  int64_t ind;
  double x, y, tolx;
  int64_t ir;
  std::vector<Step> steps;  // after each call that asks for a value
  int64_t ifail;
  double x_end, y_end;
};

struct DriverRun {
  std::string name, function;
  double a, b, eps, eta;
  std::vector<double> evaluations;
  int64_t ifail;
  double x_end;
};

double real(std::istringstream& in) {
  std::string word;
  in >> word;
  return std::strtod(word.c_str(), nullptr);  // repr() text reads back to the same double
}

struct SearchRun {
  std::string name, function;
  int64_t ind;
  double x, h, boundl, boundu;
  std::vector<Step> steps;  // IND, X and H (in the field y) after each call that asks for a value
  int64_t ifail;
  double x_end, y_end, c1_end;
};

struct NearRun {
  std::string name, function;
  double x, h, eps, eta;
  std::vector<double> evaluations;
  int64_t ifail;
  double x_end, a_end, b_end;
};

struct Sequences {
  std::vector<KernelRun> kernel;
  std::vector<DriverRun> driver;
  std::vector<SearchRun> search;
  std::vector<NearRun> near;
};

const Sequences& sequences() {
  static const Sequences all = [] {
    Sequences s;
    std::ifstream file(std::string(VEK_TEST_DATA_DIR) + "/sequences.txt");
    EXPECT_TRUE(file.good()) << "data/sequences.txt";
    std::string run;  // "azf" or "ayf": the kind of the run being read
    for (std::string line; std::getline(file, line);) {
      std::istringstream in(line);
      std::string key;
      in >> key;
      if (key == "azf") {
        KernelRun r;
        in >> r.name >> r.function >> r.ind;
        r.x = real(in), r.y = real(in), r.tolx = real(in);
        in >> r.ir;
        s.kernel.push_back(r);
        run = key;
      } else if (key == "avf") {
        SearchRun r;
        in >> r.name >> r.function >> r.ind;
        r.x = real(in), r.h = real(in), r.boundl = real(in), r.boundu = real(in);
        s.search.push_back(r);
        run = key;
      } else if (key == "auf") {
        NearRun r;
        in >> r.name >> r.function;
        r.x = real(in), r.h = real(in), r.eps = real(in), r.eta = real(in);
        s.near.push_back(r);
        run = key;
      } else if (key == "step") {
        Step st{};
        in >> st.ind;
        st.x = real(in), st.y = real(in);
        (run == "azf" ? s.kernel.back().steps : s.search.back().steps).push_back(st);
      } else if (key == "ayf") {
        DriverRun r;
        in >> r.name >> r.function;
        r.a = real(in), r.b = real(in), r.eps = real(in), r.eta = real(in);
        s.driver.push_back(r);
        run = key;
      } else if (key == "eval") {
        (run == "ayf" ? s.driver.back().evaluations : s.near.back().evaluations).push_back(real(in));
      } else if (key == "done" && run == "azf") {
        KernelRun& r = s.kernel.back();
        in >> r.ifail;
        r.x_end = real(in), r.y_end = real(in);
      } else if (key == "done" && run == "ayf") {
        DriverRun& r = s.driver.back();
        in >> r.ifail;
        r.x_end = real(in);
      } else if (key == "done" && run == "avf") {
        SearchRun& r = s.search.back();
        in >> r.ifail;
        r.x_end = real(in), r.y_end = real(in), r.c1_end = real(in);
      } else if (key == "done") {
        NearRun& r = s.near.back();
        in >> r.ifail;
        r.x_end = real(in), r.a_end = real(in), r.b_end = real(in);
      }
    }
    return s;
  }();
  return all;
}

uint64_t bits(double v) { return std::bit_cast<uint64_t>(v); }

RealFunction function_named(const std::string& name) {
  const auto& table = vek::testing::zero_test_functions();
  const auto it = table.find(name);
  EXPECT_NE(it, table.end()) << name;
  return it == table.end() ? nullptr : it->second;
}

// The driver's user function: the test function chosen for the run, each point logged.
RealFunction g_function = nullptr;
std::vector<double> g_points;

double logged(const double* x, int64_t*, double*) {
  g_points.push_back(*x);
  return g_function(*x);
}

}  // namespace

TEST(ZeroSequences, ReverseCommunicationCallByCall) {
  ASSERT_EQ(sequences().kernel.size(), 8u);
  for (const KernelRun& r : sequences().kernel) {
    SCOPED_TRACE(r.name);
    const RealFunction f = function_named(r.function);
    ASSERT_NE(f, nullptr);
    double x = r.x, y = r.y, fx = 0.0, c[10] = {};
    int64_t ind = r.ind, ifail = 1;
    if (ind == -1) {
      fx = f(x);
      c[0] = f(y);
    }
    size_t calls = 0;
    for (;;) {
      const bool final_check_pending = c[9] == 1.0 && calls > 0;
      ifail = 1;
      c05azf_(&x, &y, &fx, &r.tolx, &r.ir, c, &ind, &ifail);
      if (ind == 0) {
        // A converged run ends after the final evaluation at the converged point.
        if (r.ifail == 0 || r.ifail == 4) {
          EXPECT_TRUE(final_check_pending || fx == 0.0);
        }
        break;
      }
      ASSERT_LT(calls, r.steps.size()) << "more calls than the second implementation makes";
      const Step& s = r.steps[calls];
      EXPECT_EQ(ind, s.ind) << "call " << calls;
      EXPECT_EQ(bits(x), bits(s.x)) << "call " << calls << ": " << x << " vs " << s.x;
      EXPECT_EQ(bits(y), bits(s.y)) << "call " << calls;
      EXPECT_EQ(ifail, 0);
      ++calls;
      fx = f(x);
    }
    EXPECT_EQ(calls, r.steps.size());
    EXPECT_EQ(ifail, r.ifail);
    EXPECT_EQ(bits(x), bits(r.x_end)) << x << " vs " << r.x_end;
    EXPECT_EQ(bits(y), bits(r.y_end));
    // The IND sequence of a start without values: 1 -> 2 -> 3 -> 4 ... 4 -> 0.
    if (r.ind == 1 && r.steps.size() >= 2) {
      EXPECT_EQ(r.steps[0].ind, 2);
      EXPECT_EQ(r.steps[1].ind, 3);
      for (size_t k = 2; k < r.steps.size(); ++k) EXPECT_EQ(r.steps[k].ind, 4) << k;
    }
    // A success leaves X and Y enclosing the zero: f changes sign between them, or f(X) = 0.
    if (ifail == 0) {
      EXPECT_TRUE(f(x) == 0.0 || (f(x) > 0.0) != (f(y) > 0.0)) << x << " " << y;
    }
  }
}

TEST(ZeroSequences, DriverEvaluationPoints) {
  ASSERT_EQ(sequences().driver.size(), 6u);
  for (const DriverRun& r : sequences().driver) {
    SCOPED_TRACE(r.name);
    g_function = function_named(r.function);
    ASSERT_NE(g_function, nullptr);
    g_points.clear();
    double x = -1.0;
    int64_t iuser[1] = {0}, ifail = 1;
    double ruser[1] = {0.0};
    c05ayf_(&r.a, &r.b, &r.eps, &r.eta, logged, &x, iuser, ruser, &ifail);
    EXPECT_EQ(ifail, r.ifail);
    EXPECT_EQ(bits(x), bits(r.x_end)) << x << " vs " << r.x_end;
    ASSERT_EQ(g_points.size(), r.evaluations.size());
    for (size_t k = 0; k < g_points.size(); ++k) EXPECT_EQ(bits(g_points[k]), bits(r.evaluations[k])) << k;
  }
}

TEST(ZeroSequences, SignChangeSearchCallByCall) {
  ASSERT_EQ(sequences().search.size(), 6u);
  for (const SearchRun& r : sequences().search) {
    SCOPED_TRACE(r.name);
    const RealFunction f = function_named(r.function);
    ASSERT_NE(f, nullptr);
    double x = r.x, h = r.h, y = 0.0, fx = r.ind == -1 ? f(r.x) : 0.0, c[11] = {};
    int64_t ind = r.ind, ifail = 1;
    size_t calls = 0;
    for (;;) {
      ifail = 1;
      c05avf_(&x, &fx, &h, &r.boundl, &r.boundu, &y, c, &ind, &ifail);
      if (ind == 0) break;
      ASSERT_LT(calls, r.steps.size()) << "more calls than the second implementation makes";
      EXPECT_EQ(ind, r.steps[calls].ind) << "call " << calls;
      EXPECT_EQ(bits(x), bits(r.steps[calls].x)) << "call " << calls << ": " << x << " vs " << r.steps[calls].x;
      EXPECT_EQ(bits(h), bits(r.steps[calls].y)) << "call " << calls;
      ++calls;
      fx = f(x);
    }
    EXPECT_EQ(calls, r.steps.size());
    EXPECT_EQ(ifail, r.ifail);
    EXPECT_EQ(bits(x), bits(r.x_end)) << x << " vs " << r.x_end;
    EXPECT_EQ(bits(y), bits(r.y_end)) << y << " vs " << r.y_end;
    EXPECT_EQ(bits(c[0]), bits(r.c1_end));
    // A success is what c05azf takes with IND = -1: f changes sign between X and Y (or f(X) = 0), C(1) = f(Y).
    if (ifail == 0 && f(x) != 0.0) {
      EXPECT_NE(f(x) >= 0.0, f(y) >= 0.0);
      EXPECT_EQ(c[0], f(y));
    }
  }
}

TEST(ZeroSequences, ZeroNearPointEvaluationPoints) {
  ASSERT_EQ(sequences().near.size(), 6u);
  for (const NearRun& r : sequences().near) {
    SCOPED_TRACE(r.name);
    g_function = function_named(r.function);
    ASSERT_NE(g_function, nullptr);
    g_points.clear();
    double x = r.x, a = 0.0, b = 0.0, ruser[1] = {0.0};
    int64_t iuser[1] = {0}, ifail = 1;
    c05auf_(&x, &r.h, &r.eps, &r.eta, logged, &a, &b, iuser, ruser, &ifail);
    EXPECT_EQ(ifail, r.ifail);
    EXPECT_EQ(bits(x), bits(r.x_end)) << x << " vs " << r.x_end;
    EXPECT_EQ(bits(a), bits(r.a_end)) << a << " vs " << r.a_end;
    EXPECT_EQ(bits(b), bits(r.b_end)) << b << " vs " << r.b_end;
    ASSERT_EQ(g_points.size(), r.evaluations.size());
    for (size_t k = 0; k < g_points.size(); ++k) EXPECT_EQ(bits(g_points[k]), bits(r.evaluations[k])) << k;
  }
}
