// Gamma function by recurrence to [1, 2] and a polynomial for Gamma(1 + g), g in [0, 1], in t = 2g - 1.
//
// Checks, in this order: x > 170 overflows, x < -170 underflows (|Gamma| < 1e-306 there), |x| <= 1e-17
// gives 1/x (Gamma(x) = 1/x - gamma_E + O(x), the correction is below half an ulp) unless |x| < 2.23e-308
// where 1/x is not representable, and negative integers are poles.
//
// Reduction: for x >= 1, g = x - 1 stepped down while g > 1 multiplying by each g (x - k is exact); for x < 1,
// g = x stepped up while g < 0 dividing by each value, and finally by g itself (Gamma(1+g)/g = Gamma(g)).
#include <cmath>
#include <iterator>
#include <limits>

#include "frame/constants.h"
#include "specfun/specfun.h"

namespace vek::specfun {
namespace {

// The coefficient set is chosen by the decimal digits the arithmetic holds: the polynomial below is the one
// for 13 to 15 digits (IEEE double). Other precisions would need their own sets, which this build does not carry.
static_assert(vek::constants::decimal_digits() >= 13 && vek::constants::decimal_digits() < 16,
              "no Gamma(1+g) coefficient set for this precision");

constexpr double kMaxArg = 170.0;
constexpr double kTiny = 1.0e-17;
constexpr double kNearZero = 2.23e-308;

// Gamma(1 + g) in t = 2g - 1, highest power first; constant term Gamma(3/2), the value at t = 0.
constexpr double kGamma1p[] = {
    -1.2431917056e-10,      3.6228825088e-10,      -4.0309096448e-10,     1.26523670528e-09,
    -5.41946609664e-09,     1.61313357824e-08,     -4.62092034048e-08,    1.3876034404352e-07,
    -4.1796527845376e-07,   1.25314824777728e-06,  -3.75493050232832e-06, 1.125234962812416e-05,
    -3.363759801664768e-05, 0.0001009281733953869, -0.0002968901194293069, 0.0009157859942174304,
    -0.00242259538454634,   0.009040334940477911,  -0.01341185057058971,  0.1037033634220705,
    0.01616919872444243,    0.886226925452758};

double gamma1p_poly(double g) {
  const double t = 2.0 * g - 1.0;
  double s = kGamma1p[0];
  for (size_t i = 1; i < std::size(kGamma1p); ++i) s = s * t + kGamma1p[i];
  return s;
}

}  // namespace

GammaResult gamma_checked(double x) {
  if (std::isnan(x)) return {x, GammaStatus::ok};
  const double y = std::fabs(x);
  if (y > kMaxArg) return {0.0, x > kMaxArg ? GammaStatus::overflow : GammaStatus::underflow};
  if (y <= kTiny) {
    if (y < kNearZero) return {0.0, GammaStatus::near_zero};
    return {1.0 / x, GammaStatus::ok};
  }
  if (x < 0.0 && x - (std::trunc(x) - 1.0) == 1.0) return {0.0, GammaStatus::pole};
  if (x >= 1.0) {
    double g = x - 1.0;
    double product = 1.0;
    while (g > 1.0) {
      product *= g;
      g -= 1.0;
    }
    return {gamma1p_poly(g) * product, GammaStatus::ok};
  }
  double g = x;
  double divisor = 1.0;
  while (g < 0.0) {
    divisor *= g;
    g += 1.0;
  }
  return {gamma1p_poly(g) / (divisor * g), GammaStatus::ok};
}

double gamma(double x) {
  const GammaResult r = gamma_checked(x);
  switch (r.status) {
    case GammaStatus::ok:
      return r.value;
    case GammaStatus::overflow:
      return HUGE_VAL;
    case GammaStatus::underflow:
      // Gamma(x) for x < -170 lies below 1e-306 in magnitude; its sign alternates between the poles.
      return std::isinf(x) ? std::numeric_limits<double>::quiet_NaN()
                           : (std::fmod(std::floor(x), 2.0) == 0.0 ? 0.0 : -0.0);
    case GammaStatus::near_zero:
      return std::copysign(HUGE_VAL, x);
    case GammaStatus::pole:
      return std::numeric_limits<double>::quiet_NaN();
  }
  return r.value;
}

}  // namespace vek::specfun
