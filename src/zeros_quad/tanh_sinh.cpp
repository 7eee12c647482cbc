// The tanh-sinh rule: x = c + h tanh((pi/2) sinh t) maps the real line onto (a, b), c the centre and h the
// half-width, and the trapezoidal rule with step s in t converges double-exponentially for integrands
// analytic inside (a, b), whatever their integrable singularities at the ends. With u = (pi/2) sinh |t| and
// e = exp(-2u), the distance of the abscissa from its end is h (1 - tanh u) = 2 h e / (1 + e) and the weight
// h (pi/2) cosh t sech^2 u = h (pi/2) cosh t 4 e / (1 + e)^2: no difference of nearly equal numbers, no
// overflow. The t-range stops where e leaves the normal numbers (|t| about 6.1) or the distance underflows:
// the integral over the last 1e-308 or so of the range is out of reach of doubles, which matters only for
// singularities near x^-1 (for x^(-1+d) it is about 1e-308^d / d) and is then reported.
//
// Levels: level 0 takes t = 0, +-1, +-2, ...; level k adds the odd multiples of 2^-k. After level 0 each side
// is cut just beyond its last term above eps/1000 of the sum of magnitudes (the terms decay double-
// exponentially past it). The error estimate of level k is the change from level k - 1, accepted from level 2
// on (h = 1/4; a coarser agreement can be chance); the rounding floor is 10 eps times the sum of magnitudes.
#include "zeros_quad/tanh_sinh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "frame/constants.h"

namespace vek::zeros_quad {
namespace {

constexpr double eps = constants::eps();
constexpr double half_pi = 0.5 * std::numbers::pi;
// e = exp(-2u) stays a normal number.
constexpr double kMinE = std::numeric_limits<double>::min();

struct Node {
  double distance;  // from the end the abscissa is near
  double weight;    // without the step
};

// The node at t for the half-width 1 (distance 0: beyond the doubles).
Node unit_node(double t) {
  if (t == 0.0) return {1.0, half_pi};
  const double u = half_pi * std::sinh(std::abs(t));
  const double e = std::exp(-2.0 * u);
  if (e < kMinE) return {0.0, 0.0};
  const double onepe = 1.0 + e;
  return {2.0 * e / onepe, half_pi * std::cosh(t) * (4.0 * e / (onepe * onepe))};
}

// The unit nodes of the first six halvings (|t| = j / 64 up to 6.5), made once: most integrations end within
// them, and a node costs three transcendental functions.
constexpr int kTabledSteps = 64;
constexpr int kTabledNodes = 6 * kTabledSteps + kTabledSteps / 2 + 1;

Node node(double t, double half) {
  static const std::array<Node, kTabledNodes> table = [] {
    std::array<Node, kTabledNodes> nodes{};
    for (int j = 0; j < kTabledNodes; ++j) nodes[static_cast<size_t>(j)] = unit_node(j / double{kTabledSteps});
    return nodes;
  }();
  const double scaled = std::abs(t) * kTabledSteps;
  const Node unit = scaled < kTabledNodes && scaled == std::floor(scaled) ? table[static_cast<size_t>(scaled)]
                                                                          : unit_node(t);
  return {half * unit.distance, half * unit.weight};
}

class Sweep {
 public:
  Sweep(EndpointIntegrand f, double lo, double hi) : f_(f), lo_(lo), hi_(hi), half_(0.5 * hi - 0.5 * lo) {}

  // Adds the term at t (both sides are separate calls); false when the abscissa is beyond the doubles or the
  // integrand is not finite there (then out.end is set).
  bool add(double t, double& term, TanhSinhOutcome& out) {
    const Node n = node(t, half_);
    if (n.distance == 0.0) return false;
    const double x = t <= 0.0 ? lo_ + n.distance : hi_ - n.distance;
    const double xc = t <= 0.0 ? n.distance : -n.distance;
    const double fx = f_(std::min(std::max(x, lo_), hi_), xc);
    ++out.evaluations;
    if (!std::isfinite(fx)) {
      out.end = TanhSinhEnd::not_finite;
      out.bad_x = std::min(std::max(x, lo_), hi_);
      out.bad_xc = xc;
      return false;
    }
    term = n.weight * fx;
    sum_ += term;
    magnitude_ += std::abs(term);
    return true;
  }

  double sum() const { return sum_; }
  double magnitude() const { return magnitude_; }

 private:
  EndpointIntegrand f_;
  double lo_, hi_, half_;
  double sum_ = 0.0, magnitude_ = 0.0;
};

}  // namespace

TanhSinhOutcome integrate_tanh_sinh(EndpointIntegrand f, double a, double b, double epsabs, double epsrel) {
  TanhSinhOutcome out;
  if (a == b) return out;
  out.abserr = std::numeric_limits<double>::infinity();  // until a level is complete
  const double sign = b < a ? -1.0 : 1.0;
  Sweep sweep(f, std::min(a, b), std::max(a, b));
  const double tol_abs = std::abs(epsabs), tol_rel = std::abs(epsrel);

  // Level 0, outwards on each side until the abscissae leave the doubles; then the cut of each side.
  double t_limit[2] = {0.0, 0.0};  // the largest |t| used on the left (t < 0) and the right
  double term = 0.0;
  if (!sweep.add(0.0, term, out)) return out;
  double terms[2][8] = {};
  int count[2] = {0, 0};
  for (int side = 0; side < 2; ++side) {
    for (int j = 1; j < 8; ++j) {
      if (!sweep.add(side == 0 ? -j : j, term, out)) {
        if (out.end == TanhSinhEnd::not_finite) return out;
        break;
      }
      terms[side][j] = std::abs(term);
      count[side] = j;
    }
  }
  // Where the last term of a side still counts (an end singularity near x^-1), the part of the integral
  // beyond it: the term over its rate of decay in t, taken from the two last terms (at least 1).
  double beyond = 0.0;
  for (int side = 0; side < 2; ++side) {
    int last = 0;
    for (int j = 1; j <= count[side]; ++j)
      if (terms[side][j] > 1e-3 * eps * sweep.magnitude()) last = j;
    t_limit[side] = std::min(last + 1, count[side]);
    if (last == count[side] && last >= 2)
      beyond += terms[side][last] / std::max(1.0, std::log(terms[side][last - 1] / terms[side][last]));
  }

  double previous = sweep.sum(), step = 1.0;
  out.result = sign * previous;
  for (int level = 1; level <= kTanhSinhMaxLevel; ++level) {
    step *= 0.5;
    for (int64_t j = 1;; j += 2) {
      const double t = static_cast<double>(j) * step;
      if (t > std::max(t_limit[0], t_limit[1])) break;
      for (int side = 0; side < 2; ++side) {
        if (t > t_limit[side]) continue;
        if (!sweep.add(side == 0 ? -t : t, term, out)) {
          if (out.end == TanhSinhEnd::not_finite) return out;
          t_limit[side] = t;  // beyond the doubles from here on
        }
      }
    }
    const double estimate = step * sweep.sum();
    const double change = std::abs(estimate - previous);
    const double floor = 10.0 * eps * step * sweep.magnitude();
    previous = estimate;
    out.levels = level;
    out.result = sign * estimate;
    out.abserr = std::max({change, floor, beyond});
    const double tol = std::max(tol_abs, tol_rel * std::abs(estimate));
    // A change within the part beyond the last abscissae comes from the ends: halving the step cannot help.
    if (level >= 2 && change <= std::max(tol, beyond)) {
      if (beyond > tol) out.end = TanhSinhEnd::truncated;
      return out;
    }
    if (change <= 10.0 * floor) {
      out.end = TanhSinhEnd::round_off;
      return out;
    }
  }
  out.end = TanhSinhEnd::level_limit;
  return out;
}

}  // namespace vek::zeros_quad
