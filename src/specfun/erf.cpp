// erfc, erf and the scaled erfcx from Cody's sets (erf_cody.h). The branch structure, cut-offs and order of
// operations are fixed: erfc is exactly 1 at 0, exactly 0 from 26.6 up (where it underflows) and exactly 2
// from -6.5 down (where 2 - erfc(|x|) rounds to 2); erf is odd bit for bit and exactly +-1 beyond 10.
#include <cmath>

#include "specfun/erf_cody.h"
#include "specfun/specfun.h"

namespace vek::specfun {

double erfc(double x) {
  const double y = std::fabs(x);
  if (y <= cody::kSmall) return 1.0 - x * cody::set_a(x * x);
  if (std::isnan(x)) return x;
  double v;
  if (y <= cody::kMiddle) {
    v = cody::exp_minus_square(y) * cody::set_c(y);
  } else {
    if (x >= 26.6) return 0.0;
    if (x <= -6.5) return 2.0;
    v = cody::exp_minus_square(y) * cody::scaled_tail(y);
  }
  return x > 0.0 ? v : 2.0 - v;
}

double erf(double x) {
  const double y = std::fabs(x);
  if (y <= cody::kSmall) return x * cody::set_a(x * x);
  if (std::isnan(x)) return x;
  if (y > 10.0) return x >= 0.0 ? 1.0 : -1.0;
  const double scaled = y <= cody::kMiddle ? cody::set_c(y) : cody::scaled_tail(y);
  const double v = cody::exp_minus_square(y) * scaled;
  const double e = (0.5 - v) + 0.5;
  return x < 0.0 ? -e : e;
}

// erfcx(x) = exp(x^2) erfc(x): the sets give it without any exponential for x > 0.46875; for x < 0 it is
// 2 exp(x^2) - erfcx(-x), with exp(x^2) formed from the exact split x^2 = s + e (s the rounded square).
double erfcx(double x) {
  const double y = std::fabs(x);
  if (std::isnan(x)) return x;
  if (x > cody::kMiddle) return cody::scaled_tail(x);
  if (x > cody::kSmall) return cody::set_c(x);
  const double s = x * x;
  const double e = std::fma(x, x, -s);
  const double exp_square = std::exp(s) * (1.0 + e);
  if (y <= cody::kSmall) return exp_square * (1.0 - x * cody::set_a(s));
  if (x < -26.7) return HUGE_VAL;
  const double tail = y <= cody::kMiddle ? cody::set_c(y) : cody::scaled_tail(y);
  return 2.0 * exp_square - tail;
}

}  // namespace vek::specfun
