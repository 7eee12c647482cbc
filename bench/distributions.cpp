// The normal, t and gamma probabilities and the normal deviate through their exported entries (IFAIL included),
// against Boost.Math's distributions on the same points in the same run, and the vectorised t probability per
// point. Counters: ns per call of each and "vs_boost" = entry time / Boost time. Boost is called with its
// default policy (double promoted to long double internally).
#include <benchmark/benchmark.h>

#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

#include "boost_comparison.h"
#include "vek.h"

namespace {

constexpr size_t kPoints = 2048;

struct Point {
  double x, a, b;
};

std::vector<Point> points(double x_lo, double x_hi, double a_lo, double a_hi, bool log_a) {
  std::mt19937_64 gen(2026);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  std::vector<Point> v(kPoints);
  for (Point& p : v) {
    p.a = log_a ? std::pow(10.0, a_lo + (a_hi - a_lo) * u(gen)) : a_lo + (a_hi - a_lo) * u(gen);
    p.x = x_lo + (x_hi - x_lo) * u(gen);
    p.b = 1.0;
  }
  return v;
}

// x in [-6, 6], the upper tail.
void BM_NormalProbability(benchmark::State& state) {
  compare(state, points(-6.0, 6.0, 0.0, 0.0, false),
          [](const Point& p) {
            int64_t ifail = 1;
            return g01eaf_("U", &p.x, &ifail, 1);
          },
          [](const Point& p) { return cdf(complement(boost::math::normal_distribution<double>(), p.x)); });
}

// p uniform in (0, 1), the lower deviate.
void BM_NormalDeviate(benchmark::State& state) {
  compare(state, points(1e-9, 1.0 - 1e-9, 0.0, 0.0, false),
          [](const Point& p) {
            int64_t ifail = 1;
            return g01faf_("L", &p.x, &ifail, 1);
          },
          [](const Point& p) { return quantile(boost::math::normal_distribution<double>(), p.x); });
}

// Argument 0: df in [1, 50]; 1: df in [1e3, 1e6] (log-uniform); t in [-6, 6], the upper tail.
void BM_TProbability(benchmark::State& state) {
  const auto pts = state.range(0) == 0 ? points(-6.0, 6.0, 1.0, 50.0, false) : points(-6.0, 6.0, 3.0, 6.0, true);
  compare(state, pts,
          [](const Point& p) {
            int64_t ifail = 1;
            return g01ebf_("U", &p.x, &p.a, &ifail, 1);
          },
          [](const Point& p) { return cdf(complement(boost::math::students_t_distribution<double>(p.a), p.x)); });
}

// Shape a in [0.5, 20], g in [0, 3a] (x scaled below), scale 1, the lower tail.
void BM_GammaProbability(benchmark::State& state) {
  auto pts = points(0.0, 3.0, 0.5, 20.0, false);
  for (Point& p : pts) p.x *= p.a;
  compare(state, pts,
          [](const Point& p) {
            int64_t ifail = 1;
            return g01eff_("L", &p.x, &p.a, &p.b, &ifail, 1);
          },
          [](const Point& p) { return cdf(boost::math::gamma_distribution<double>(p.a, p.b), p.x); });
}

// The vectorised t probability (one call for all points, df in [1, 50]) per point, against Boost point by point.
void BM_TProbabilityVector(benchmark::State& state) {
  const auto pts = points(-6.0, 6.0, 1.0, 50.0, false);
  std::vector<double> t, df, out(pts.size());
  std::vector<int64_t> ivalid(pts.size());
  for (const Point& p : pts) {
    t.push_back(p.x);
    df.push_back(p.a);
  }
  const int64_t n = static_cast<int64_t>(pts.size());
  double vek_ns = 0.0, boost_ns = 0.0;
  for (auto _ : state) {
    const auto t0 = std::chrono::steady_clock::now();
    int64_t ifail = 1;
    g01sbf_("U", &n, t.data(), &n, df.data(), out.data(), ivalid.data(), &ifail, 1);
    const auto t1 = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(out.data());
    vek_ns += std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(n);
    boost_ns += ns_per_call(pts, [](const Point& p) {
      return cdf(complement(boost::math::students_t_distribution<double>(p.a), p.x));
    });
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["vek_ns"] = vek_ns / runs;
  state.counters["boost_ns"] = boost_ns / runs;
  state.counters["vs_boost"] = vek_ns / boost_ns;
}

}  // namespace

BENCHMARK(BM_NormalProbability);
BENCHMARK(BM_NormalDeviate);
BENCHMARK(BM_TProbability)->Arg(0)->Arg(1);
BENCHMARK(BM_GammaProbability);
BENCHMARK(BM_TProbabilityVector);
BENCHMARK_MAIN();
