// The incomplete gamma and beta functions, their inverses, polygamma and the Faddeeva function through their
// exported entries (IFAIL included), against Boost.Math on the same points in the same run. Counters: ns per
// call of each and "vs_boost" = entry time / Boost time (target at most 1.5 where Boost is no more accurate).
// Boost is called with its default policy (double promoted to long double internally). s14baf returns P and Q
// together; it is timed against one Boost call (gamma_p) and against the pair (gamma_p and gamma_q), since a
// caller may need either. w(z) has no Boost counterpart: its time is reported alone.
#include <benchmark/benchmark.h>

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/polygamma.hpp>
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "boost_comparison.h"
#include "vek.h"

namespace {

constexpr size_t kPoints = 2048;

struct Point {
  double a, b, c;
};

std::vector<Point> points(double (*make_a)(std::mt19937_64&), double (*make_b)(std::mt19937_64&, double),
                          double (*make_c)(std::mt19937_64&, double, double)) {
  std::mt19937_64 gen(2026);
  std::vector<Point> v(kPoints);
  for (Point& p : v) {
    p.a = make_a(gen);
    p.b = make_b(gen, p.a);
    p.c = make_c(gen, p.a, p.b);
  }
  return v;
}

double uniform(std::mt19937_64& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }
double log_uniform(std::mt19937_64& g, double lo, double hi) { return std::pow(10.0, uniform(g, lo, hi)); }
double unused(std::mt19937_64&, double, double) { return 0.0; }

double gamma_entry(const Point& p) {
  double pp = 0, q = 0;
  int64_t ifail = 1;
  s14baf_(&p.a, &p.b, &pp, &q, &ifail);
  return pp + q;
}

// Arguments: 0 = a in [0.5, 20], x in [0, 3a]; 1 = a in [20, 1e4], x within 3 standard deviations of a.
void BM_IncompleteGamma(benchmark::State& state) {
  const std::vector<Point> pts =
      state.range(0) == 0
          ? points([](auto& g) { return uniform(g, 0.5, 20.0); }, [](auto& g, double a) { return uniform(g, 0.0, 3.0 * a); },
                   unused)
          : points([](auto& g) { return log_uniform(g, 1.3, 4.0); },
                   [](auto& g, double a) { return a + uniform(g, -3.0, 3.0) * std::sqrt(a); }, unused);
  if (state.range(1) == 0)
    compare(state, pts, gamma_entry, [](const Point& p) { return boost::math::gamma_p(p.a, p.b); });
  else
    compare(state, pts, gamma_entry,
            [](const Point& p) { return boost::math::gamma_p(p.a, p.b) + boost::math::gamma_q(p.a, p.b); });
}

// a in [0.5, 20], p uniform in (0, 1) (the smaller of p and 1 - p is matched).
void BM_InverseIncompleteGamma(benchmark::State& state) {
  const std::vector<Point> pts = points([](auto& g) { return uniform(g, 0.5, 20.0); },
                                        [](auto& g, double) { return uniform(g, 1e-6, 1.0 - 1e-6); }, unused);
  compare(state, pts,
          [](const Point& p) {
            const double q = 1.0 - p.b;
            int64_t ifail = 1;
            return s14bbf_(&p.a, &p.b, &q, &ifail);
          },
          [](const Point& p) { return p.b <= 0.5 ? boost::math::gamma_p_inv(p.a, p.b) : boost::math::gamma_q_inv(p.a, 1.0 - p.b); });
}

// Arguments: 0 = a, b in [0.5, 20], x uniform; 1 = a, b in [20, 1000], 2 = a, b in [1e5, 1e10], 3 = a in [1, 100]
// and b 1e3 to 1e9 times a, x within 3 standard deviations of the mean. Boost's ibeta against the pair of s14ccf.
void BM_IncompleteBeta(benchmark::State& state) {
  double (*const near_mean)(std::mt19937_64&, double, double) = [](auto& g, double a, double b) {
    const double m = a / (a + b);
    return std::clamp(m + uniform(g, -3.0, 3.0) * std::sqrt(m * (1 - m) / (a + b + 1)), 1e-9, 1 - 1e-9);
  };
  const std::vector<Point> pts =
      state.range(0) == 0
          ? points([](auto& g) { return uniform(g, 0.5, 20.0); }, [](auto& g, double) { return uniform(g, 0.5, 20.0); },
                   [](auto& g, double, double) { return uniform(g, 0.0, 1.0); })
      : state.range(0) == 1
          ? points([](auto& g) { return log_uniform(g, 1.3, 3.0); }, [](auto& g, double) { return log_uniform(g, 1.3, 3.0); },
                   near_mean)
      : state.range(0) == 3
          ? points([](auto& g) { return log_uniform(g, 0.0, 2.0); }, [](auto& g, double a) { return a * log_uniform(g, 3.0, 9.0); },
                   near_mean)
          : points([](auto& g) { return log_uniform(g, 5.0, 10.0); }, [](auto& g, double) { return log_uniform(g, 5.0, 10.0); },
                   near_mean);
  compare(state, pts,
          [](const Point& p) {
            double w = 0, w1 = 0;
            int64_t ifail = 1;
            s14ccf_(&p.a, &p.b, &p.c, &w, &w1, &ifail);
            return w + w1;
          },
          [](const Point& p) { return boost::math::ibeta(p.a, p.b, p.c); });
}

// Argument: the order n; x in [0.1, 50].
void BM_Polygamma(benchmark::State& state) {
  const int64_t n = state.range(0);
  const std::vector<Point> pts = points([](auto& g) { return uniform(g, 0.1, 50.0); }, [](auto&, double) { return 0.0; }, unused);
  compare(state, pts,
          [n](const Point& p) {
            int64_t ifail = 1;
            return s14aef_(&p.a, &n, &ifail);
          },
          [n](const Point& p) { return boost::math::polygamma(static_cast<int>(n), p.a); });
}

// w(z) for |Re z| < 5, 0 < Im z < 5, and below the axis; alone (no counterpart in Boost).
void BM_Faddeeva(benchmark::State& state) {
  const double sign = state.range(0) == 0 ? 1.0 : -1.0;
  std::mt19937_64 gen(2026);
  std::vector<vek_complex> zs(kPoints);
  for (auto& z : zs) z = {uniform(gen, -5.0, 5.0), sign * uniform(gen, 0.0, sign > 0 ? 5.0 : 1.0)};
  double total = 0.0;
  for (auto _ : state) {
    double sum = 0.0;
    const auto t0 = std::chrono::steady_clock::now();
    for (const auto& z : zs) {
      int64_t ifail = 1;
      sum += s15ddf_(&z, &ifail).re;
    }
    const auto t1 = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(sum);
    const double ns = std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(kPoints);
    total += ns;
    state.SetIterationTime(ns * 1e-9 * static_cast<double>(kPoints));
  }
  state.counters["vek_ns"] = total / static_cast<double>(state.iterations());
}

}  // namespace

BENCHMARK(BM_IncompleteGamma)->Args({0, 0})->Args({0, 1})->Args({1, 0})->Args({1, 1})->ArgNames({"large", "pair"})->UseManualTime();
BENCHMARK(BM_InverseIncompleteGamma)->UseManualTime();
BENCHMARK(BM_IncompleteBeta)->Arg(0)->Arg(1)->Arg(2)->Arg(3)->ArgNames({"large"})->UseManualTime();
BENCHMARK(BM_Polygamma)->Arg(0)->Arg(1)->Arg(3)->Arg(10)->ArgNames({"n"})->UseManualTime();
BENCHMARK(BM_Faddeeva)->Arg(0)->Arg(1)->ArgNames({"lower"})->UseManualTime();
BENCHMARK_MAIN();
