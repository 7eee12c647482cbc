// The rules and drivers of the weighted integrators (Piessens et al., QUADPACK 1983, as GSL transcribes them):
// the Cauchy principal value of the integral of f(x)/(x - c) (dqawce), and integrals of f times the
// algebraico-logarithmic end-point weight (x-a)^alpha (b-x)^beta, times log(x-a), log(b-x) or both (dqawse). Both
// apply the modified Clenshaw-Curtis rule of chebyshev_series.h where the weight is singular in or next to a
// subinterval, and the 15-point Gauss-Kronrod rule to f times the weight elsewhere. An estimate from a
// Chebyshev rule is returned with resasc equal to it, which keeps it out of the drivers' round-off counters.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "zeros_quad/adaptive_quadrature.h"
#include "zeros_quad/chebyshev_series.h"
#include "zeros_quad/gauss_kronrod.h"

namespace vek::zeros_quad {

// The modified moments of 1/(t - cc) on [-1, 1] (principal values for |cc| < 1), forward recurrence.
std::array<double, 25> cauchy_moments(double cc);

// The principal value of the integral of f(x)/(x - c) over [a, b]: the Chebyshev rule when c lies in or near
// [a, b] (|cc| <= 1.1 for c at cc in the variable of [-1, 1]), else the 15-point rule.
template <class Integrand>
RuleEstimate cauchy_rule(Integrand& f, double a, double b, double c) {
  const double cc = (2.0 * c - b - a) / (b - a);
  if (!(std::abs(cc) <= 1.1)) {
    auto weighted = [&](double x) { return f(x) / (x - c); };
    return apply_rule(kKronrod15, weighted, a, b);
  }
  const SeriesIntegral r = integrate_series(chebyshev_series(f, a, b), cauchy_moments(cc));
  const double error = std::abs(r.res24 - r.res12);
  return {r.res24, error, 0.0, error};
}

// The weight (x-a)^alpha (b-x)^beta log(x-a)^mu log(b-x)^nu over [a, b], with the modified moments of its two
// end factors on [-1, 1]: ri of (1+t)^alpha, rg of (1+t)^alpha log((1+t)/2), rj of (1-t)^beta, rh of
// (1-t)^beta log((1-t)/2), against T_0..T_24.
struct EndpointWeight {
  double a, b, alpha, beta;
  bool log_left, log_right;  // mu = 1, nu = 1
  std::array<double, 25> ri, rj, rg, rh;
};
// KEY 1: no logarithm, 2: log(x-a), 3: log(b-x), 4: both.
EndpointWeight endpoint_weight(double a, double b, double alpha, double beta, int64_t key);

// The factors of the weight at x: the left one (x-a)^alpha log(x-a)^mu, the right one, or both.
inline double weight_factor(const EndpointWeight& w, double x, bool left, bool right) {
  double factor = 1.0;
  if (left && w.alpha != 0.0) factor *= std::pow(x - w.a, w.alpha);
  if (right && w.beta != 0.0) factor *= std::pow(w.b - x, w.beta);
  if (left && w.log_left) factor *= std::log(x - w.a);
  if (right && w.log_right) factor *= std::log(w.b - x);
  return factor;
}

// The rule on a subinterval of width w touching a singular end, from the expansion s of f times the far factor:
// with the distance d = (w/2)(1 + t) from that end, the near factor d^exponent (times log d = log w +
// log((1+t)/2) when with_log) gives (w/2)^(exponent+1) (sum c r [log w] + sum c rlog).
RuleEstimate endpoint_series_rule(const ChebyshevSeries& s, const std::array<double, 25>& r,
                                  const std::array<double, 25>& rlog, bool with_log, double exponent, double width);

// The integral of f times the weight over [a1, b1] inside [a, b].
template <class Integrand>
RuleEstimate endpoint_rule(Integrand& f, const EndpointWeight& w, double a1, double b1) {
  if (a1 == w.a && (w.alpha != 0.0 || w.log_left)) {
    auto far = [&](double x) { return weight_factor(w, x, false, true) * f(x); };
    return endpoint_series_rule(chebyshev_series(far, a1, b1), w.ri, w.rg, w.log_left, w.alpha, b1 - a1);
  }
  if (b1 == w.b && (w.beta != 0.0 || w.log_right)) {
    auto far = [&](double x) { return weight_factor(w, x, true, false) * f(x); };
    return endpoint_series_rule(chebyshev_series(far, a1, b1), w.rj, w.rh, w.log_right, w.beta, b1 - a1);
  }
  auto weighted = [&](double x) { return weight_factor(w, x, true, true) * f(x); };
  return apply_rule(kKronrod15, weighted, a1, b1);
}

// The principal value over [lo, hi], lo < hi, c inside or outside but not at an end: one rule over the whole
// interval, accepted when its error is below the tolerance and 1% of the result, then bisection (continue_plain).
QuadratureOutcome integrate_cauchy(RuleOnInterval rule, double lo, double hi, double c, Tolerances tol,
                                   IntervalList& list);

// The integral over [a, b], a < b, list.limit() >= 2: the rule over the two halves, accepted as for
// integrate_cauchy, then bisection.
QuadratureOutcome integrate_endpoint_weight(RuleOnInterval rule, double a, double b, Tolerances tol,
                                            IntervalList& list);

}  // namespace vek::zeros_quad
