#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

#include "stats/compensated_sum.h"
#include "stats/summary.h"

namespace vek::stats {
namespace {

// floor(c p + m) and the fraction above it, with c p formed exactly (hi + lo) and the rounding error of
// adding m kept (so the fraction is good to about the rounding of m, not of the sum); `zero` when the
// fraction is exactly 0. Types 1 to 3, which test for it, have m = 0 or -1/2, whose sum with hi is exact for
// the sample sizes an array can have.
struct Split {
  int64_t j;
  double g;
  bool zero;
};

Split split(double c, double p, double m) {
  const double hi = c * p, s = hi + m, bm = s - hi;
  const double lo = std::fma(c, p, -hi) + ((hi - (s - bm)) + (m - bm));  // Knuth's two-sum for s
  double j = std::floor(s);
  if (s == j && lo < 0.0) j -= 1.0;
  return {static_cast<int64_t>(j), (s - j) + lo, s == j && lo == 0.0};
}

}  // namespace

double quantile(std::span<const double> sorted, double p, int type) {
  const auto n = static_cast<int64_t>(sorted.size());
  const auto nd = static_cast<double>(n);
  auto x = [&](int64_t k) { return sorted[static_cast<size_t>(std::clamp<int64_t>(k, 1, n) - 1)]; };
  double m = 0.0;
  switch (type) {
    case 3: m = -0.5; break;
    case 5: m = 0.5; break;
    case 6: m = p; break;
    case 7: m = 1.0 - p; break;
    case 8: m = (p + 1.0) / 3.0; break;
    case 9: m = p / 4.0 + 0.375; break;
    default: break;
  }
  const Split h = split(nd, p, m);
  switch (type) {
    case 1: return x(h.zero ? h.j : h.j + 1);
    case 2: return h.zero ? std::midpoint(x(h.j), x(h.j + 1)) : x(h.j + 1);
    case 3: return x(h.zero && h.j % 2 == 0 ? h.j : h.j + 1);
    default: return std::lerp(x(h.j), x(h.j + 1), std::min(h.g, 1.0));
  }
}

double careful_mean(std::span<const double> x) {
  CompensatedSum sum;
  for (double v : x) sum.add(v);
  const auto count = static_cast<double>(x.size());
  const double mean = sum.value() / count;
  if (!std::isfinite(mean)) return mean;
  CompensatedSum deviation;
  for (double v : x) deviation.add(v - mean);
  return mean + deviation.value() / count;
}

Robust robust_summary(std::span<const double> x, double alpha, std::span<double> work) {
  if (std::any_of(x.begin(), x.end(), [](double v) { return std::isnan(v); })) {
    const double q = std::numeric_limits<double>::quiet_NaN();
    return {q, q, q, q};
  }
  const size_t n = x.size();
  std::copy(x.begin(), x.end(), work.begin());
  std::sort(work.begin(), work.end());
  Robust r{};
  r.median = quantile(work, 0.5, 2);
  // k = floor(alpha n) exactly, so that alpha = 0.1 with n = 10 cuts one observation at each end.
  const Split cut = split(static_cast<double>(n), alpha, 0.0);
  const auto k = static_cast<size_t>(cut.j);
  const std::span<const double> kept(work.data() + k, n - 2 * k);
  r.trimmed_mean = careful_mean(kept);
  // The winsorised mean as the trimmed one plus the pull of the 2k observations moved to the kept ends.
  const double t = r.trimmed_mean, lo = kept.front() - t, hi = kept.back() - t;
  CompensatedSum inner;
  for (double v : kept) inner.add(v - t);
  r.winsorised_mean = std::isfinite(t) ? t + (static_cast<double>(k) * (lo + hi) + inner.value()) / static_cast<double>(n)
                                        : t;
  for (size_t i = 0; i < n; ++i) work[i] = std::fabs(work[i] - r.median);
  std::sort(work.begin(), work.end());
  r.mad = quantile(work, 0.5, 2);
  return r;
}

}  // namespace vek::stats
