#include <algorithm>
#include <cmath>
#include <limits>

#include "stats/compensated_sum.h"
#include "stats/summary.h"

namespace vek::stats {

RunningMoments load_running(const double* r) { return {r[0], r[1], r[2], r[3], r[4], r[5], r[6]}; }

void store_running(const RunningMoments& m, double* r) {
  const double v[kRunningMomentsLength] = {m.count, m.mean, m.m2, m.m3, m.m4, m.min, m.max};
  std::copy(v, v + kRunningMomentsLength, r);
}

bool valid_running(const RunningMoments& m) {
  if (!(m.count >= 0.0 && m.count < 0x1p53 && m.count == std::floor(m.count))) return false;
  return m.count == 0.0 || (!(m.m2 < 0.0) && !(m.m4 < 0.0) && !(m.min > m.max));
}

RunningMoments block_moments(std::span<const double> x) {
  if (x.empty()) return {};
  RunningMoments m{static_cast<double>(x.size()), careful_mean(x), 0, 0, 0, x[0], x[0]};
  CompensatedSum d2, d3, d4;
  for (double v : x) {
    const double d = v - m.mean, dd = d * d;
    d2.add(dd);
    d3.add(dd * d);
    d4.add(dd * dd);
    // NaN in, NaN out: a NaN observation must not be skipped by the comparisons.
    m.min = std::isnan(v) || v < m.min ? v : m.min;
    m.max = std::isnan(v) || v > m.max ? v : m.max;
  }
  m.m2 = d2.value();
  m.m3 = d3.value();
  m.m4 = d4.value();
  if (std::isnan(m.mean)) m.min = m.max = m.mean;
  return m;
}

RunningMoments merge(const RunningMoments& a, const RunningMoments& b) {
  if (b.count == 0.0) return a;
  if (a.count == 0.0) return b;
  const double na = a.count, nb = b.count, n = na + nb;
  const double d = b.mean - a.mean, fa = na / n, fb = nb / n;
  RunningMoments m{};
  m.count = n;
  // From the mean of the larger part, so that a small block moves it by a small correction.
  m.mean = na >= nb ? a.mean + d * fb : b.mean - d * fa;
  const double d2 = d * d, w = na * fb;  // w = na nb / n
  m.m2 = a.m2 + b.m2 + d2 * w;
  m.m3 = a.m3 + b.m3 + d * d2 * w * (fa - fb) + 3.0 * d * (fa * b.m2 - fb * a.m2);
  m.m4 = a.m4 + b.m4 + d2 * d2 * w * (fa * fa - fa * fb + fb * fb) + 6.0 * d2 * (fa * fa * b.m2 + fb * fb * a.m2) +
         4.0 * d * (fa * b.m3 - fb * a.m3);
  m.min = std::isnan(a.min) || std::isnan(b.min) ? std::numeric_limits<double>::quiet_NaN() : std::min(a.min, b.min);
  m.max = std::isnan(a.max) || std::isnan(b.max) ? std::numeric_limits<double>::quiet_NaN() : std::max(a.max, b.max);
  return m;
}

}  // namespace vek::stats
