// The bivariate normal upper probability with relative accuracy, for the small probabilities where Genz's
// method (absolute error about 1e-16) keeps few digits.
//
// P(X >= h, Y >= k) = int_h^inf phi(x) Q((k - r x)/sigma) dx, sigma = sqrt(1 - r^2), Q the normal upper tail.
// With x = h + s the integrand is e^G(s) / sqrt(2 pi), G(s) = -(h + s)^2/2 + ln Q(z(s)), z(s) = (k - r h - r s)/
// sigma. G is concave (phi and Q are log-concave), so the integrand has one peak s* (0 when G decreases from
// the start) and falls at least like a Gaussian away from it. G is formed in long double, ln Q(z) for z > 0 as
// ln(erfcx(z/sqrt 2)/2) - z^2/2, so nothing underflows before the final exponential, and the large exponents
// keep their digits. The integral of e^(G - G*) runs over panels from s* outward, each a 20-point Gauss-
// Legendre rule over a width of at most 4 local standard deviations (1/sqrt(-G'')) and 20 e-foldings of the
// slope (20/|G'|) at either end, until G has fallen 60 below its peak (by concavity the rest is below e^-60
// of the whole).
#include <algorithm>
#include <cmath>
#include <numbers>

#include "specfun/specfun.h"
#include "stats/gauss_legendre.h"
#include "stats/normal_more.h"

namespace vek::stats {
namespace {

constexpr long double kSqrtHalf = 0.70710678118654752440L;
constexpr double kSqrtTwoOverPi = 0.79788456080286535588;
// The integration stops where G has fallen this far below its peak.
constexpr long double kDepth = 60.0L;
// Widths of a panel: local standard deviations and e-foldings of the slope.
constexpr long double kDeviations = 4.0L;
constexpr long double kFoldings = 20.0L;
constexpr int kMaxPanels = 400;

// ln Q(z).
long double log_upper_tail(long double z) {
  if (z > 0.0L) return std::log(0.5L * specfun::erfcx(static_cast<double>(z * kSqrtHalf))) - 0.5L * z * z;
  return std::log1p(-static_cast<long double>(normal_upper(static_cast<double>(-z))));
}

// The inverse Mills ratio phi(z)/Q(z) = sqrt(2/pi)/erfcx(z/sqrt 2) (0 once erfcx overflows, z below -38).
double inverse_mills(long double z) { return kSqrtTwoOverPi / specfun::erfcx(static_cast<double>(z * kSqrtHalf)); }

struct Exponent {
  long double h, k0, r, sigma;  // k0 = k - r h
  long double z(long double s) const { return (k0 - r * s) / sigma; }
  long double value(long double s) const { return -0.5L * (h + s) * (h + s) + log_upper_tail(z(s)); }
  long double slope(long double s) const { return -(h + s) + r / sigma * inverse_mills(z(s)); }
  // -G'' = 1 + (r/sigma)^2 m (m - z), m the inverse Mills ratio; m (m - z) lies in (0, 1).
  long double curvature(long double s) const {
    const long double zz = z(s), m = inverse_mills(zz);
    return 1.0L + (r / sigma) * (r / sigma) * std::clamp(m * (m - zz), 0.0L, 1.0L);
  }
  long double scale(long double s) const {
    return std::min(kDeviations / std::sqrt(curvature(s)), kFoldings / std::max(std::fabs(slope(s)), 1e-300L));
  }
};

// The peak of the concave G on [0, inf): 0 where G decreases from there, else the zero of G' by bisection,
// bracketed by doubling (G' <= -(h + s) + |r|/sigma (|z| + 1) falls below 0 eventually).
long double peak(const Exponent& g) {
  if (!(g.slope(0.0L) > 0.0L)) return 0.0L;
  long double lo = 0.0L, hi = 1.0L;
  for (int i = 0; i < 2000 && g.slope(hi) > 0.0L; ++i) {
    lo = hi;
    hi *= 2.0L;
  }
  for (int i = 0; i < 80 && hi - lo > 1e-6L * g.scale(lo); ++i) {
    const long double mid = 0.5L * (lo + hi);
    (g.slope(mid) > 0.0L ? lo : hi) = mid;
  }
  return 0.5L * (lo + hi);
}

// int of e^(G(s) - top) over panels from `from` in the direction dir (+1 or -1), ending at `end` (0 going
// left) or where G has fallen kDepth below top.
long double panels(const Exponent& g, long double from, int dir, long double top) {
  long double sum = 0.0L, s = from;
  for (int n = 0; n < kMaxPanels; ++n) {
    if (dir < 0 && s <= 0.0L) break;
    long double width = g.scale(s);
    for (int i = 0; i < 8; ++i) {  // no wider than the scale at the far end either
      const long double far = g.scale(s + dir * width);
      if (!(far < width)) break;
      width = far;
    }
    long double next = s + dir * width;
    if (dir < 0) next = std::max(next, 0.0L);
    const long double mid = 0.5L * (s + next), half = 0.5L * std::fabs(next - s);
    for (const GaussNode& node : kGauss20) {
      for (const double x : {node.x, -node.x}) sum += node.w * half * std::exp(g.value(mid + half * x) - top);
    }
    s = next;
    if (g.value(s) - top < -kDepth) break;
  }
  return sum;
}

}  // namespace

double bivariate_normal_upper_tail(double h, double k, double r) {
  if (k > h) std::swap(h, k);  // integrate over the variable with the larger threshold
  const long double lr = r;
  const Exponent g{h, k - lr * h, lr, std::sqrt((1.0L - lr) * (1.0L + lr))};
  const long double s0 = peak(g), top = g.value(s0);
  if (std::isnan(top)) return static_cast<double>(top);
  if (top < -800.0L) return 0.0;  // below the subnormals: the integral is at most a few units
  const long double integral = panels(g, s0, 1, top) + panels(g, s0, -1, top);
  return static_cast<double>(std::exp(top) * integral / std::sqrt(2.0L * std::numbers::pi_v<long double>));
}

}  // namespace vek::stats
