#include "stats/normal.h"

#include <cmath>

#include "random/inverse_normal.h"
#include "specfun/specfun.h"

namespace vek::stats {
namespace {

constexpr double kInvSqrt2 = 0.7071067811865475;

}  // namespace

Tail tail_of(char letter) {
  switch (letter & ~0x20) {
    case 'L': return Tail::lower;
    case 'U': return Tail::upper;
    case 'C': return Tail::central;
    default: return Tail::significance;
  }
}

double normal_probability(Tail tail, double x) {
  switch (tail) {
    case Tail::lower: return 0.5 * specfun::erfc(-x * kInvSqrt2);
    case Tail::upper: return 0.5 * specfun::erfc(x * kInvSqrt2);
    case Tail::central: return specfun::erf(std::fabs(x) * kInvSqrt2);
    case Tail::significance: return specfun::erfc(std::fabs(x) * kInvSqrt2);
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
