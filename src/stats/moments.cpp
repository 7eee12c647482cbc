#include "stats/moments.h"

#include <cmath>
#include <limits>

#include "stats/compensated_sum.h"

namespace vek::stats {

using Sum = CompensatedSum;

Moments moments(std::span<const double> x, std::span<const double> weights) {
  const bool weighted = !weights.empty();
  auto w = [&](size_t i) { return weighted ? weights[i] : 1.0; };
  Moments m{0, 0, 0, 0, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 0, 0};
  Sum wsum, wxsum;
  bool nan = false;
  for (size_t i = 0; i < x.size(); ++i) {
    if (!(w(i) > 0.0)) continue;
    ++m.positive;
    nan = nan || std::isnan(x[i]);
    m.min = std::fmin(m.min, x[i]);
    m.max = std::fmax(m.max, x[i]);
    wsum.add(w(i));
    wxsum.add(w(i) * x[i]);
  }
  m.weight_sum = wsum.value();
  if (m.positive == 0) return m;
  if (nan) {
    const double q = std::numeric_limits<double>::quiet_NaN();
    return {q, q, q, q, q, q, m.weight_sum, m.positive};
  }
  double mean = wxsum.value() / m.weight_sum;
  Sum correction;
  for (size_t i = 0; i < x.size(); ++i) {
    if (w(i) > 0.0) correction.add(w(i) * (x[i] - mean));
  }
  mean += correction.value() / m.weight_sum;
  m.mean = mean;
  if (m.positive < 2) return m;
  Sum d2, d3, d4;
  for (size_t i = 0; i < x.size(); ++i) {
    if (!(w(i) > 0.0)) continue;
    const double d = x[i] - mean, wd2 = w(i) * d * d;
    d2.add(wd2);
    d3.add(wd2 * d);
    d4.add(wd2 * d * d);
  }
  // W (n - 1) / n, n the observations with positive weight: n - 1 for unit weights, and positive for any
  // weights, however small their sum.
  const auto n = static_cast<double>(m.positive);
  const double var = d2.value() / (m.weight_sum * (n - 1.0) / n);
  m.sd = std::sqrt(var);
  if (var > 0.0) {
    m.skewness = d3.value() / m.weight_sum / (var * m.sd);
    m.kurtosis = d4.value() / m.weight_sum / (var * var) - 3.0;
  }
  return m;
}

}  // namespace vek::stats
