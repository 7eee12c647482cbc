// Every routine of the chapters through its exported entry, on every combination of hostile arguments (NaN,
// infinities, signed zeros, subnormals, huge values, poles): each call returns, with an IFAIL the routine
// documents, and a value that is NaN only where the documentation says so (a NaN argument, or a limit that does
// not exist).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "specfun/specfun.h"
#include "vek.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

const std::vector<double> kHostile = {kNaN, kInf, -kInf, 0.0, -0.0, 5e-324, -5e-324, 1e-300, 1e300, -1e300,
                                      -3.0, 0.5, 1.0, 2.0, 170.5, -170.5, 1e16};

using Args = std::vector<double>;

struct Routine {
  std::string name;
  size_t nargs;
  std::set<int64_t> ifails;  // the documented IFAIL values
  std::function<double(const Args&, int64_t*)> call;
  std::function<bool(const Args&)> nan_documented;  // besides a NaN argument
};

bool never(const Args&) { return false; }
bool both_infinite(const Args& v) { return std::isinf(v[0]) && std::isinf(v[1]); }

const std::vector<Routine>& routines() {
  static const std::vector<Routine> all = {
      {"s15adf", 1, {0}, [](const auto& v, int64_t* f) { return s15adf_(&v[0], f); }, never},
      {"s15aef", 1, {0}, [](const auto& v, int64_t* f) { return s15aef_(&v[0], f); }, never},
      {"s15agf", 1, {0, 1}, [](const auto& v, int64_t* f) { return s15agf_(&v[0], f); }, never},
      {"s15aff", 1, {0}, [](const auto& v, int64_t* f) { return s15aff_(&v[0], f); }, never},
      {"s15ahf", 1, {0, 1}, [](const auto& v, int64_t* f) { return s15ahf_(&v[0], f); }, never},
      {"s15ajf", 1, {0, 1}, [](const auto& v, int64_t* f) { return s15ajf_(&v[0], f); }, never},
      {"s15ddf", 2, {0},
       [](const auto& v, int64_t* f) {
         const vek_complex z{v[0], v[1]};
         const vek_complex w = s15ddf_(&z, f);
         return std::isnan(w.re) || std::isnan(w.im) ? kNaN : w.re;
       },
       [](const Args& v) { return v[1] == -kInf || (v[1] < 0.0 && std::isinf(2.0 * v[0] * v[1])); }},
      {"s20acf", 1, {0}, [](const auto& v, int64_t* f) { return s20acf_(&v[0], f); }, never},
      {"s20adf", 1, {0}, [](const auto& v, int64_t* f) { return s20adf_(&v[0], f); }, never},
      {"s14aaf", 1, {0, 1, 2, 3, 4}, [](const auto& v, int64_t* f) { return s14aaf_(&v[0], f); }, never},
      {"s14abf", 1, {0, 1, 2}, [](const auto& v, int64_t* f) { return s14abf_(&v[0], f); }, never},
      {"s14ahf", 1, {0, 1, 2},
       [](const auto& v, int64_t* f) {
         double sgn = 0;
         const double r = s14ahf_(&v[0], &sgn, f);
         EXPECT_TRUE(sgn == 1.0 || sgn == -1.0);
         return r;
       },
       never},
      {"s14acf", 1, {0, 1}, [](const auto& v, int64_t* f) { return s14acf_(&v[0], f); }, never},
      {"s14aef", 2, {0, 1, 2, 3},
       [](const auto& v, int64_t* f) {
         const int64_t n = std::isfinite(v[1]) && std::fabs(v[1]) < 1e6 ? static_cast<int64_t>(v[1]) : -1;
         return s14aef_(&v[0], &n, f);
       },
       never},
      {"s14cbf", 2, {0, 1, 2}, [](const auto& v, int64_t* f) { return s14cbf_(&v[0], &v[1], f); }, never},
      {"s14baf", 2, {0, 1, 2, 3},
       [](const auto& v, int64_t* f) {
         double p = 0, q = 0;
         s14baf_(&v[0], &v[1], &p, &q, f);
         return std::isnan(p) || std::isnan(q) ? kNaN : p;
       },
       both_infinite},
      {"s14bbf", 3, {0, 1, 2, 3, 4},
       [](const auto& v, int64_t* f) { return s14bbf_(&v[0], &v[1], &v[2], f); }, never},
      {"s14ccf", 3, {0, 1, 2, 3},
       [](const auto& v, int64_t* f) {
         double w = 0, w1 = 0;
         s14ccf_(&v[0], &v[1], &v[2], &w, &w1, f);
         return std::isnan(w) || std::isnan(w1) ? kNaN : w;
       },
       both_infinite},
  };
  return all;
}

void every_combination(size_t nargs, std::vector<double>& args, const std::function<void()>& visit) {
  if (args.size() == nargs) return visit();
  for (double v : kHostile) {
    args.push_back(v);
    every_combination(nargs, args, visit);
    args.pop_back();
  }
}

TEST(BadInput, EveryRoutineReturnsADocumentedIfail) {
  for (const Routine& r : routines()) {
    std::vector<double> args;
    every_combination(r.nargs, args, [&] {
      int64_t ifail = 1;
      const double value = r.call(args, &ifail);
      std::ostringstream where;
      where << r.name << "(";
      for (double a : args) where << a << " ";
      ASSERT_TRUE(r.ifails.count(ifail)) << where.str() << ") IFAIL " << ifail;
      bool any_nan = false;
      for (double a : args) any_nan = any_nan || std::isnan(a);
      if (!any_nan && !r.nan_documented(args)) EXPECT_FALSE(std::isnan(value)) << where.str() << ")";
    });
  }
}

TEST(BadInput, KernelsWithoutAnEntryReturnDefinedValues) {
  namespace sf = vek::specfun;
  const std::vector<double> parameters = {kNaN, kInf, 0.0, 5e-324, 1e-300, 0.5, 2.0, 1e12, 1e300};
  const std::vector<double> probabilities = {kNaN, -0.5, 0.0, 5e-324, 1e-300, 0.5, 1.0, 1.5};
  for (double a : parameters)
    for (double b : parameters) {
      for (double p : probabilities)
        for (double q : probabilities) {
          const sf::BetaIncInverse r = sf::beta_inc_inv(a, b, p, q);
          const bool valid = a > 0 && b > 0 && std::isfinite(a) && std::isfinite(b) && p >= 0 && p <= 1 && q >= 0 && q <= 1;
          if (valid) {
            ASSERT_TRUE(r.x >= 0.0 && r.x <= 1.0 && r.y >= 0.0 && r.y <= 1.0) << a << " " << b << " " << p << " " << q;
          } else {
            ASSERT_TRUE(std::isnan(r.x) && std::isnan(r.y)) << a << " " << b << " " << p << " " << q;
          }
        }
      for (double x : probabilities) {
        const double density = sf::beta_inc_derivative(a, b, x);
        ASSERT_TRUE(std::isnan(density) || density >= 0.0) << a << " " << b << " " << x;
      }
    }
  for (int64_t n : {int64_t{-1}, int64_t{0}, int64_t{171}, int64_t{1} << 62})
    for (int64_t k : {int64_t{-1}, int64_t{0}, int64_t{3}, int64_t{1} << 61, int64_t{1} << 62}) {
      const double c = sf::binomial(n, k);
      ASSERT_TRUE(n < 0 ? std::isnan(c) : c >= 0.0) << n << " " << k;
      ASSERT_TRUE(n < 0 ? std::isnan(sf::factorial(n)) : sf::factorial(n) >= 1.0) << n;
    }
}

}  // namespace
