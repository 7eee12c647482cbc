// The continuation stepper, one evaluation per call (continuation.h). Every test that decides between two
// paths is written so that a NaN takes the path that ends or fails the step, and every loop is bounded by a
// count of its own; the counts kept in C end the run when they are out of range, whatever the caller leaves
// there, so that a run never goes on for ever.
#include "zeros_quad/continuation.h"

#include <algorithm>
#include <cmath>

#include "frame/constants.h"

namespace vek::zeros_quad {
namespace {

using Outcome = ContinuationOutcome;

constexpr double kAcceptFraction = 0.25;     // a step with theta > 0 ends within dtheta/4 of its target
constexpr int64_t kPathEvaluations = 4;      // evaluations a step with theta > 0 may take
constexpr int64_t kFinalEvaluations = 100;   // evaluations of the final step before it counts as failed
constexpr int64_t kMaxSteps = 200;           // steps in theta, accepted or not, in one run
constexpr double kNegligibleStep = 16;       // dtheta <= 16 eps |theta|: a step no longer tells f apart
constexpr double kRoundingSteps = 4;         // a move of at most 4 eps |x| is a move by rounding only

ContinuationStep ask(int64_t& ind, int64_t what) {
  ind = what;
  return {Outcome::evaluate};
}

ContinuationStep end(int64_t& ind, Outcome outcome, double theta = 0.0) {
  ind = continuation_ind::finished;
  return {outcome, theta};
}

bool usable(double slope) { return std::isfinite(slope) && slope != 0.0; }

bool passes(const StopTest& t, double x, double f, double slope) {
  const bool x_ok = std::abs(f / slope) <= t.xtol * std::max(1.0, std::abs(x));
  const bool f_ok = std::abs(f) <= t.ftol;
  return t.both ? x_ok && f_ok : x_ok || f_ok;
}

double abs_theta(ContinuationState s) { return std::abs(s.fa() / s.f0()); }

void accept(ContinuationState s, double x, double f) {
  s.xa() = x;
  s.fa() = f;
  s.slope_a() = s.slope();
}

// The next step from the accepted point: asks for its first point (the Euler predictor), or ends the run. A
// first point that is not finite, or equal to xa, fails the step at once without an evaluation.
ContinuationStep begin_step(ContinuationState s, double& x, int64_t& ind) {
  for (int64_t tries = 0; tries < kMaxSteps && s.steps() >= 0.0 && s.steps() < kMaxSteps; ++tries) {
    s.steps() += 1;
    const double theta = abs_theta(s);
    const bool final = !(s.dtheta() < theta);
    if (!final && !(s.dtheta() > kNegligibleStep * constants::eps() * theta)) break;
    const double target = final ? 0.0 : std::copysign(std::abs(s.fa()) - s.dtheta() * std::abs(s.f0()), s.fa());
    const double next = s.xa() - (s.fa() - target) / s.slope_a();
    if (std::isfinite(next) && next != s.xa()) {
      s.target() = target;
      s.xp() = s.xa();
      s.fp() = s.fa();
      s.slope() = s.slope_a();
      s.k() = 0;
      s.xk() = x = next;
      return ask(ind, continuation_ind::path_value);
    }
    if (final && next == s.xa()) {  // the secant step to the zero is below the rounding of xa
      x = s.xa();
      return end(ind, Outcome::tolerance_too_small);
    }
    s.dtheta() = std::fmin(s.dtheta(), theta) / 2;
  }
  x = s.xa();
  return end(ind, Outcome::stalled, s.fa() / s.f0());
}

ContinuationStep fail_step(ContinuationState s, double& x, int64_t& ind) {
  s.dtheta() = std::fmin(s.dtheta(), abs_theta(s)) / 2;
  return begin_step(s, x, ind);
}

// f(xk) has arrived for the current step (target 0 in the final step).
ContinuationStep path_value(ContinuationState s, double& x, double fk, const StopTest& test, int64_t& ind) {
  const double xk = x = s.xk();
  s.k() += 1;
  if (fk == 0.0) return end(ind, Outcome::zero);
  const bool final = s.target() == 0.0;
  const double residual = fk - s.target();
  const bool accepted =
      !final && std::abs(fk) <= std::abs(s.target()) + kAcceptFraction * s.dtheta() * std::abs(s.f0());
  const bool decreased = std::abs(residual) < std::abs(s.fp() - s.target());  // false for a NaN
  // The secant through a point that made things worse is no guide: the slope is kept from the last good one.
  const double quotient = (fk - s.fp()) / (xk - s.xp());
  if ((accepted || decreased) && usable(quotient)) s.slope() = quotient;
  if (std::abs(fk) < std::abs(s.fp()) && passes(test, xk, fk, s.slope())) return end(ind, Outcome::zero);

  if (accepted) {
    accept(s, xk, fk);
    if (s.k() <= 2) s.dtheta() *= 2;
    return begin_step(s, x, ind);
  }
  if (!decreased) {
    if (final) {
      // The best point is the previous one; after a move by rounding only, nothing better can be found.
      if (std::abs(xk - s.xp()) <= kRoundingSteps * constants::eps() * std::abs(s.xp())) {
        x = s.xp();
        return end(ind, Outcome::tolerance_too_small);
      }
      accept(s, s.xp(), s.fp());
    }
    // f moved away from the target from the accepted point itself: the slope there has the wrong sign, and the
    // secant through the two points has the right one. (A move the right way but too far only needs damping.)
    if (s.xp() == s.xa() && usable(quotient) && (fk - s.fp()) * (s.target() - s.fp()) < 0) s.slope_a() = quotient;
    return fail_step(s, x, ind);
  }
  const double next = xk - residual / s.slope();
  if (final && next == xk) return end(ind, Outcome::tolerance_too_small);
  const double limit = final ? kFinalEvaluations : kPathEvaluations;
  if (!(s.k() > 0.0 && s.k() < limit) || !std::isfinite(next) || next == xk) {
    if (final) accept(s, xk, fk);
    return fail_step(s, x, ind);
  }
  s.xp() = xk;
  s.fp() = fk;
  s.xk() = x = next;
  return ask(ind, continuation_ind::path_value);
}

}  // namespace

ContinuationStep continuation_step(ContinuationState s, double& x, double fx, double scal, const StopTest& test,
                                   int64_t& ind) {
  switch (ind) {
    case continuation_ind::start:
      s.x0() = x;
      return ask(ind, continuation_ind::start_value);

    case continuation_ind::start_with_value:
    case continuation_ind::start_value: {
      if (ind == continuation_ind::start_with_value) s.x0() = x;
      const double x0 = x = s.x0();
      s.f0() = fx;
      if (fx == 0.0) return end(ind, Outcome::zero);
      const double shifted = x0 + scal;
      s.h() = shifted - x0;
      if (!std::isfinite(fx) || !std::isfinite(shifted) || s.h() == 0.0) return end(ind, Outcome::scale_invalid);
      x = shifted;
      return ask(ind, continuation_ind::difference_value);
    }

    case continuation_ind::difference_value: {
      const double x0 = s.x0(), f0 = s.f0(), difference = fx - f0;
      if (fx == 0.0) {
        x = x0 + s.h();
        return end(ind, Outcome::zero);
      }
      x = x0;
      const double slope = difference / s.h();
      const double negligible = kRoundingSteps * constants::eps() * std::max(std::abs(f0), std::abs(fx));
      if (!(std::abs(difference) > negligible) || !usable(slope)) return end(ind, Outcome::scale_invalid);
      s.xa() = x0;
      s.fa() = f0;
      s.slope_a() = s.slope() = slope;
      s.dtheta() = 1.0;
      s.steps() = 0.0;
      if (passes(test, x0, f0, slope)) return end(ind, Outcome::zero);
      return begin_step(s, x, ind);
    }

    default:  // continuation_ind::path_value, the only other value the checks admit
      return path_value(s, x, fx, test, ind);
  }
}

double continuation_best_point(ContinuationState s) { return s.steps() > 0.0 ? s.xa() : s.x0(); }

}  // namespace vek::zeros_quad
