#include "util/complex.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace vek::util {
namespace {

// The double nearest 1/sqrt(2).
constexpr double kRootHalf = 0.7071067811865476;

// Scaling thresholds of the quotient: BIG just below 2^1020 (so that the sums of Smith's method cannot
// overflow), SMALL = 2^-968 (so that their products keep full precision); the factors are powers of two.
constexpr double kBig = std::bit_cast<double>(UINT64_C(0x7F9FFFFFFFFFFFFF));
constexpr double kSmall = 0x1p-968;
constexpr double kUp = 0x1p106;
constexpr double kDown = 0x1p-106;
constexpr double kSixteenth = 0x1p-4;

}  // namespace

double complex_abs(double x, double y) {
  const double ax = std::fabs(x);
  const double ay = std::fabs(y);
  // Written so that a NaN part makes b NaN and the result NaN.
  const double a = ax >= ay ? ax : ay;
  const double b = ax >= ay ? ay : ax;
  if (b == 0.0) return a;
  const double r = b / a;
  return a * std::sqrt(1.0 + r * r);
}

Complex complex_sqrt(double x, double y) {
  const double ax = std::fabs(x);
  double s;
  if (ax > 1.0) {
    const double half = ax / 2.0;
    s = std::sqrt(half + complex_abs(half, y / 2.0));
  } else {
    s = std::sqrt(ax + complex_abs(ax, y)) * kRootHalf;
  }
  const double q = y != 0.0 ? y / (2.0 * s) : y;
  if (x >= 0.0) return {s, q};  // -0 included
  if (q >= 0.0) return {q, s};
  return {-q, -s};  // q negative or NaN
}

Complex complex_divide(double xr, double xi, double yr, double yi) {
  double f = 1.0;
  double m = std::fmax(std::fabs(xr), std::fabs(xi));
  if (m > kBig) {
    xr *= kSixteenth;
    xi *= kSixteenth;
    f = 16.0;
  } else if (m < kSmall) {
    xr *= kUp;
    xi *= kUp;
    f = kDown;
  }
  m = std::fmax(std::fabs(yr), std::fabs(yi));
  if (m > kBig) {
    yr *= kSixteenth;
    yi *= kSixteenth;
    f *= kSixteenth;
  } else if (m < kSmall) {
    yr *= kUp;
    yi *= kUp;
    f *= kUp;
  }
  double d, p, q;
  if (std::fabs(yr) > std::fabs(yi)) {
    const double r = yi / yr;
    d = yr + yi * r;
    p = xr + xi * r;
    q = xi - xr * r;
  } else {
    const double r = yr / yi;
    d = yi + yr * r;
    p = xr * r + xi;
    q = xi * r - xr;
  }
  const double e = 1.0 / d;
  return {(p * e) * f, (q * e) * f};
}

}  // namespace vek::util
