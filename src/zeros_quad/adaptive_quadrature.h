// The globally adaptive integrators over a finite interval: the subinterval with the largest error estimate is
// bisected until the sum of the estimates meets the requested accuracy. integrate_extrapolated accelerates the
// sequence of approximations with the epsilon algorithm (QUADPACK's dqagse), integrate_with_breakpoints too after
// starting from given break points (dqagpe); integrate_plain does not extrapolate (dqage).
// Both keep their subintervals in an IntervalList over the caller's workspace.
#pragma once

#include <cstdint>
#include <span>
#include <type_traits>

#include "zeros_quad/gauss_kronrod.h"
#include "zeros_quad/interval_list.h"

namespace vek::zeros_quad {

// A rule applied to one subinterval, passed by reference to a callable that outlives the call.
class RuleOnInterval {
 public:
  template <class Rule>
  requires(!std::is_same_v<Rule, RuleOnInterval>) explicit RuleOnInterval(Rule& rule)
      : object_(&rule), call_([](void* o, double a, double b) { return (*static_cast<Rule*>(o))(a, b); }) {}
  RuleEstimate operator()(double a, double b) const { return call_(object_, a, b); }

 private:
  void* object_;
  RuleEstimate (*call_)(void*, double, double);
};

// A rule applied to one subinterval at its bisection level (0 for the whole interval), as the rule with the
// weight cos(omega x) or sin(omega x) needs it; passed by reference like RuleOnInterval.
class RuleAtLevel {
 public:
  template <class Rule>
  requires(!std::is_same_v<Rule, RuleAtLevel>) explicit RuleAtLevel(Rule& rule)
      : object_(&rule),
        call_([](void* o, double a, double b, int64_t level) { return (*static_cast<Rule*>(o))(a, b, level); }) {}
  RuleEstimate operator()(double a, double b, int64_t level) const { return call_(object_, a, b, level); }

 private:
  void* object_;
  RuleEstimate (*call_)(void*, double, double, int64_t);
};

// The accuracy requested: max(|absolute|, |relative| |I|).
struct Tolerances {
  double absolute;
  double relative;
};

// How an integration ended, numbered as the routines report it.
enum class QuadratureEnd {
  converged = 0,
  limit_reached = 1,
  round_off = 2,
  bad_integrand = 3,  // bad_left, bad_right: the subinterval
  extrapolation_round_off = 4,
  divergent = 5,
};

struct QuadratureOutcome {
  double result = 0.0;
  double abserr = 0.0;
  QuadratureEnd end = QuadratureEnd::converged;
  double bad_left = 0.0;
  double bad_right = 0.0;
};

QuadratureOutcome integrate_extrapolated(RuleOnInterval rule, double a, double b, Tolerances tol, IntervalList& list);
QuadratureOutcome integrate_plain(RuleOnInterval rule, double a, double b, Tolerances tol, IntervalList& list);

// The bisection loop of integrate_plain from the intervals already in `list`, whose values and errors sum to
// area and errsum (QUADPACK's dqage, and dqawce and dqawse after their first step). With a pole, an interval
// holding it is not bisected but split at the midpoint of the pole and its farther end (dqawce).
QuadratureOutcome continue_plain(RuleOnInterval rule, Tolerances tol, IntervalList& list, double area, double errsum,
                                 const double* pole = nullptr);

// The extrapolating integrator started from the subintervals between the break points (QUADPACK's dqagpe):
// `points` the interior break points in ascending order, list.limit() > points.size(), `level` room for
// list.limit() bisection levels. Which intervals count as small goes by their level, not their width.
QuadratureOutcome integrate_with_breakpoints(RuleOnInterval rule, double a, double b, std::span<const double> points,
                                             Tolerances tol, IntervalList& list, int64_t* level);

// The extrapolating integrator for f(x) cos(omega x) or f(x) sin(omega x) (QUADPACK's dqawoe): `rule` the
// oscillatory rule, `omega` >= 0 its frequency, `level` room for list.limit() bisection levels. Extrapolation
// starts once the subintervals are short enough for the 15-point rule (omega times a quarter of the length at
// most 2); which intervals count as small goes by width, halved as in dqawoe.
QuadratureOutcome integrate_oscillatory(RuleAtLevel rule, double a, double b, double omega, Tolerances tol,
                                        IntervalList& list, int64_t* level);

}  // namespace vek::zeros_quad
