// The modified moments and the first steps of the weighted drivers; the bisection is continue_plain's.
#include "zeros_quad/weighted_quadrature.h"

#include <algorithm>

namespace vek::zeros_quad {

// m_0 = log|(1-cc)/(1+cc)|, m_1 = 2 + cc m_0, m_k = 2 cc m_(k-1) - m_(k-2) + 2 (integral of T_(k-1)), the last
// term -4/((k-1)^2 - 1) for odd k and 0 for even k.
std::array<double, 25> cauchy_moments(double cc) {
  std::array<double, 25> m;
  m[0] = std::log(std::abs((1.0 - cc) / (1.0 + cc)));
  m[1] = 2.0 + m[0] * cc;
  for (int k = 2; k < 25; ++k) {
    m[k] = 2.0 * cc * m[k - 1] - m[k - 2];
    if (k % 2 == 1) m[k] -= 4.0 / ((k - 1.0) * (k - 1.0) - 1.0);
  }
  return m;
}

namespace {

// The moments of (1+t)^s and of (1+t)^s log((1+t)/2) against T_k on [-1, 1] by their forward recurrences
// (Piessens et al. 1983, dqmomo).
void power_moments(double s, std::array<double, 25>& r, std::array<double, 25>& rlog) {
  const double sp1 = s + 1.0, sp2 = s + 2.0, two_sp1 = std::pow(2.0, sp1);
  r[0] = two_sp1 / sp1;
  r[1] = r[0] * s / sp2;
  double an = 2.0, anm1 = 1.0;
  for (int i = 2; i < 25; ++i, anm1 = an, an += 1.0)
    r[i] = -(two_sp1 + an * (an - sp2) * r[i - 1]) / (anm1 * (an + sp1));
  rlog[0] = -r[0] / sp1;
  rlog[1] = -rlog[0] - 2.0 * two_sp1 / (sp2 * sp2);
  an = 2.0, anm1 = 1.0;
  for (int i = 2; i < 25; ++i, anm1 = an, an += 1.0)
    rlog[i] = -(an * (an - sp2) * rlog[i - 1] - an * r[i - 1] + anm1 * r[i]) / (anm1 * (an + sp1));
}

}  // namespace

EndpointWeight endpoint_weight(double a, double b, double alpha, double beta, int64_t key) {
  EndpointWeight w{a, b, alpha, beta, key == 2 || key == 4, key == 3 || key == 4, {}, {}, {}, {}};
  power_moments(alpha, w.ri, w.rg);
  // (1-t)^beta against T_k(t) is (1+u)^beta against T_k(-u) = (-1)^k T_k(u).
  power_moments(beta, w.rj, w.rh);
  for (int k = 1; k < 25; k += 2) {
    w.rj[k] = -w.rj[k];
    w.rh[k] = -w.rh[k];
  }
  return w;
}

RuleEstimate endpoint_series_rule(const ChebyshevSeries& s, const std::array<double, 25>& r,
                                  const std::array<double, 25>& rlog, bool with_log, double exponent, double width) {
  const double factor = std::pow(0.5 * width, exponent + 1.0);
  const SeriesIntegral plain = integrate_series(s, r);
  if (!with_log) {
    const double error = std::abs(factor * (plain.res24 - plain.res12));
    return {factor * plain.res24, error, 0.0, error};
  }
  const SeriesIntegral logged = integrate_series(s, rlog);
  const double u = factor * std::log(width), v = factor;
  const double error = std::abs(u * (plain.res24 - plain.res12)) + std::abs(v * (logged.res24 - logged.res12));
  return {u * plain.res24 + v * logged.res24, error, 0.0, error};
}

namespace {

// The first approximation suffices: its error below the tolerance and below 1% of it.
bool first_accepted(double result, double error, Tolerances tol) {
  return error < std::max(std::abs(tol.absolute), std::abs(tol.relative) * std::abs(result)) &&
         error < 0.01 * std::abs(result);
}

}  // namespace

QuadratureOutcome integrate_cauchy(RuleOnInterval rule, double lo, double hi, double c, Tolerances tol,
                                   IntervalList& list) {
  const RuleEstimate whole = rule(lo, hi);
  list.start(lo, hi, whole.result, whole.error);
  if (first_accepted(whole.result, whole.error, tol)) return {whole.result, whole.error};
  if (list.limit() == 1) return {whole.result, whole.error, QuadratureEnd::limit_reached};
  return continue_plain(rule, tol, list, whole.result, whole.error, &c);
}

QuadratureOutcome integrate_endpoint_weight(RuleOnInterval rule, double a, double b, Tolerances tol,
                                            IntervalList& list) {
  const double centre = 0.5 * (a + b);
  const RuleEstimate left = rule(a, centre), right = rule(centre, b);
  // The half with the larger error first (the right one on a tie, as GSL orders them).
  if (left.error > right.error) {
    list.start(a, centre, left.result, left.error);
    list.append(centre, b, right.result, right.error);
  } else {
    list.start(centre, b, right.result, right.error);
    list.append(a, centre, left.result, left.error);
  }
  const double result = left.result + right.result, error = left.error + right.error;
  if (first_accepted(result, error, tol)) return {result, error};
  if (list.limit() == 2) return {result, error, QuadratureEnd::limit_reached};
  return continue_plain(rule, tol, list, result, error);
}

}  // namespace vek::zeros_quad
