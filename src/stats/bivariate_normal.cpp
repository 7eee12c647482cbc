// The bivariate normal upper probability by Genz's method (A. Genz, "Numerical computation of rectangular
// bivariate and trivariate normal and t probabilities", Statistics and Computing 14, 2004): for |r| < 0.925
// the integral over the arcsine of the correlation (Drezner and Wesolowsky), for |r| >= 0.925 the integral
// about r = +-1 with its singular part removed analytically; Gauss-Legendre rules of 6, 12 or 20 points.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <span>

#include "stats/gauss_legendre.h"
#include "stats/normal_more.h"

namespace vek::stats {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

std::span<const GaussNode> rule_for(double abs_r) {
  if (abs_r < 0.3) return kGauss6;
  if (abs_r < 0.75) return kGauss12;
  return kGauss20;
}

// P(X >= h, Y >= k) for |r| < 0.925 and finite h, k: the probability at r = 0 plus the integral of the
// density's derivative in r, written in theta = asin(r): (1/2pi) int_0^asin r exp(-(h^2 + k^2 - 2hk sin)/
// (2 cos^2)) dtheta.
double moderate_correlation(double h, double k, double r) {
  const double hk = h * k, hs = (h * h + k * k) / 2.0, asr = std::asin(r);
  double sum = 0.0;
  for (const GaussNode& node : rule_for(std::fabs(r))) {
    for (const double x : {node.x, -node.x}) {
      const double sn = std::sin(asr * (x + 1.0) / 2.0);
      sum += node.w * std::exp((sn * hk - hs) / (1.0 - sn * sn));
    }
  }
  return sum * asr / (2.0 * kTwoPi) + normal_upper(h) * normal_upper(k);
}

// The same for |r| >= 0.925: the integral in x = sqrt(1 - r'^2) from r' = 1 (or -1) back to r, whose leading
// singular behaviour is integrated in closed form (the first two terms of its expansion), so that the
// Gauss rule sees only a smooth remainder, then the limit at r' = +-1 added.
double strong_correlation(double h, double k, double r) {
  if (r < 0.0) k = -k;
  const double hk = h * k;
  double bvn = 0.0;
  if (std::fabs(r) < 1.0) {
    const double as = (1.0 - r) * (1.0 + r), bs = (h - k) * (h - k);
    double a = std::sqrt(as);
    const double c = (4.0 - hk) / 8.0, d = (12.0 - hk) / 16.0;
    bvn = a * std::exp(-(bs / as + hk) / 2.0) * (1.0 - c * (bs - as) * (1.0 - d * bs / 5.0) / 3.0 + c * d * as * as / 5.0);
    if (hk > -160.0) {
      const double b = std::sqrt(bs);
      bvn -= std::exp(-hk / 2.0) * std::sqrt(kTwoPi) * normal_upper(b / a) * b * (1.0 - c * bs * (1.0 - d * bs / 5.0) / 3.0);
    }
    a /= 2.0;
    for (const GaussNode& node : kGauss20) {
      for (const double x : {node.x, -node.x}) {
        const double xs = (a * (x + 1.0)) * (a * (x + 1.0)), rs = std::sqrt(1.0 - xs);
        // exp(-hk/(1 + rs)) / rs less the two-term expansion, with the common factor taken out and
        // 1 - rs written as xs / (1 + rs), so the difference does not cancel.
        const double lift = std::exp(-hk * xs / (2.0 * (1.0 + rs) * (1.0 + rs))) / rs;
        bvn += a * node.w * std::exp(-(bs / xs + hk) / 2.0) * (lift - (1.0 + c * xs * (1.0 + d * xs)));
      }
    }
    bvn = -bvn / kTwoPi;
  }
  // The limits: P(X >= max(h, k)) at r = 1; at r = -1, with k the negated argument, P(h <= X <= k)
  // (0 when k <= h).
  if (r > 0.0) return bvn + normal_upper(std::max(h, k));
  return -bvn + normal_interval(h, std::max(h, k));
}

}  // namespace

double bivariate_normal_upper(double h, double k, double r) {
  if (std::isnan(h) || std::isnan(k) || std::isnan(r)) return std::numeric_limits<double>::quiet_NaN();
  if (h == std::numeric_limits<double>::infinity() || k == std::numeric_limits<double>::infinity()) return 0.0;
  if (h == -std::numeric_limits<double>::infinity()) return normal_upper(k);
  if (k == -std::numeric_limits<double>::infinity()) return normal_upper(h);
  const double p = std::fabs(r) < 0.925 ? moderate_correlation(h, k, r) : strong_correlation(h, k, r);
  if (p < kBivariateTailRoute && std::fabs(r) < 1.0) return bivariate_normal_upper_tail(h, k, r);
  return std::clamp(p, 0.0, 1.0);
}

}  // namespace vek::stats
