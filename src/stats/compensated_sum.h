// Neumaier's compensated sum: the rounding error of each addition is kept and added back at the end.
#pragma once

#include <cmath>

namespace vek::stats {

struct CompensatedSum {
  double s = 0.0, c = 0.0;
  void add(double v) {
    const double t = s + v;
    c += std::fabs(s) >= std::fabs(v) ? (s - t) + v : (v - t) + s;
    s = t;
  }
  // An infinite or NaN sum makes the compensation NaN; the plain sum is the answer then.
  double value() const { return std::isfinite(s) ? s + c : s; }
};

}  // namespace vek::stats
