#include "stats/normal.h"

#include <cmath>

#include "frame/text.h"
#include "random/inverse_normal.h"
#include "specfun/specfun.h"

namespace vek::stats {
namespace {

constexpr double kInvSqrt2 = 0.7071067811865475;

// P(Z >= x). erfc(x/sqrt 2) at the rounded argument would carry its rounding magnified by the conditioning
// x^2 of the tail (60 ulps at x = 8); from x = 1 the tail is 0.5 erfcx(x/sqrt 2) exp(-x^2/2) instead, with
// x^2 split exactly into h + l by a fused multiply-add, so that only erfcx (conditioning about 1) sees the
// rounded argument. The tail reaches the subnormals at x = 37.5 and 0 beyond x = 38.5.
double upper_tail(double x) {
  if (!(x > 1.0)) return 0.5 * specfun::erfc(x * kInvSqrt2);
  if (x > 39.0) return 0.0;  // also x = +inf, whose fma would be NaN
  const double h = x * x, l = std::fma(x, x, -h);
  return 0.5 * specfun::erfcx(x * kInvSqrt2) * (1.0 - 0.5 * l) * std::exp(-0.5 * h);
}

}  // namespace

Tail tail_of(char letter) {
  switch (letter & ~0x20) {
    case 'L': return Tail::lower;
    case 'U': return Tail::upper;
    case 'C': return Tail::central;
    default: return Tail::significance;
  }
}

Tail tail_of(const char* tail, int64_t len) { return tail_of(text::option_letter(tail, len)); }

double normal_probability(Tail tail, double x) {
  switch (tail) {
    case Tail::lower: return upper_tail(-x);
    case Tail::upper: return upper_tail(x);
    case Tail::central: return specfun::erf(std::fabs(x) * kInvSqrt2);
    case Tail::significance: return 2.0 * upper_tail(std::fabs(x));
  }
  return 0.0;
}

double normal_deviate(Tail tail, double p) {
  switch (tail) {
    case Tail::lower: return random::inverse_normal(p);
    case Tail::upper: return -random::inverse_normal(p);
    case Tail::central: return random::inverse_normal(p / 2 + 0.5);
    case Tail::significance: return -random::inverse_normal(p / 2);
  }
  return 0.0;
}

}  // namespace vek::stats
