// QUADPACK's dqawfe step by step, with two changes, both as in GSL's qawf: the partial sum that stands for the
// result when the series is not extrapolated includes the cycle just integrated (dqawfe leaves it out), and
// the cycle ends are a + k c, not sums of c accumulating their rounding.
#include "zeros_quad/fourier_integral.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "zeros_quad/epsilon_table.h"

namespace vek::zeros_quad {

double fourier_cycle(double omega) {
  const double w = std::abs(omega);
  return (2.0 * std::floor(w) + 1.0) * std::numbers::pi / w;
}

FourierOutcome integrate_fourier(RuleAtLevel rule, double a, double omega, double epsabs, CycleLists cycles,
                                 IntervalList& list, int64_t* level) {
  constexpr double p = 0.9;
  const double p1 = 1.0 - p;
  const double cycle = fourier_cycle(omega);
  // The first cycle is asked for a tenth of the accuracy, each later one for 0.9 times the one before.
  double eps = epsabs > constants::safe_range() / p1 ? epsabs * p1 : epsabs;
  const double ep = eps;
  double fact = 1.0, correc = 0.0, errsum = 0.0, drl = 0.0, psum = 0.0;
  FourierOutcome out;
  EpsilonTable table;
  int ktmin = 0;
  bool failed_cycle = false;
  auto partial_sum = [&] {
    out.result = psum;
    out.abserr = errsum + drl;
    return out;
  };
  for (int64_t lst = 1; lst <= cycles.limit; ++lst) {
    out.cycles = lst;
    const double c1 = a + static_cast<double>(lst - 1) * cycle;
    const QuadratureOutcome c = integrate_oscillatory(rule, c1, c1 + cycle, omega, {eps * fact, 0.0}, list, level);
    const size_t k = static_cast<size_t>(lst - 1);
    cycles.result[k] = c.result;
    cycles.error[k] = c.abserr;
    cycles.end[k] = static_cast<int64_t>(c.end);
    fact *= p;
    errsum += c.abserr;
    drl = 50.0 * std::abs(c.result);
    psum += c.result;
    // The sum of the errors and fifty times the last term meet the accuracy.
    if (errsum + drl <= epsabs && lst >= 6) return partial_sum();
    correc = std::max(correc, c.abserr);
    if (c.end != QuadratureEnd::converged) {
      eps = std::max(ep, correc * p1);
      failed_cycle = true;
      out.end = FourierEnd::cycles_failed;
    }
    if (failed_cycle && errsum + drl <= correc * 10.0 && lst > 5) return partial_sum();
    table.append(psum);
    if (lst >= 3) {
      if (lst == cycles.limit) out.end = FourierEnd::cycle_limit;
      const Extrapolation x = table.extrapolate();
      ++ktmin;
      if (ktmin >= 15 && out.abserr <= 1e-3 * (errsum + drl)) out.end = FourierEnd::table_round_off;
      if (!(x.error > out.abserr) || lst == 3) {
        out.abserr = x.error;
        out.result = x.value;
        ktmin = 0;
        if (out.abserr + 10.0 * correc <= epsabs || (out.abserr <= epsabs && 10.0 * correc >= epsabs)) break;
      }
      if (out.end == FourierEnd::cycle_limit || out.end == FourierEnd::table_round_off) break;
    }
  }
  // The extrapolated value, unless the partial sum is the better one.
  out.abserr += 10.0 * correc;
  if (out.end == FourierEnd::converged) return out;
  if (out.result == 0.0 || psum == 0.0) {
    if (out.abserr > errsum) return partial_sum();
    if (psum == 0.0) return out;
  }
  if (out.abserr / std::abs(out.result) > (errsum + drl) / std::abs(psum)) return partial_sum();
  if (out.end != FourierEnd::cycles_failed) out.abserr += drl;
  return out;
}

}  // namespace vek::zeros_quad
