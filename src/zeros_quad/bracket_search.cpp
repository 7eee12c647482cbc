// The outward search for a sign change, one evaluation per call (bracket_search.h). Every path ends: the step
// doubles on every move, so a bound is reached after finitely many moves; a move to a bound already reached
// (or a NaN trial point, possible only with an infinite bound) is refused; and the refinements are counted in C.
#include "zeros_quad/bracket_search.h"

#include <cmath>

namespace vek::zeros_quad {
namespace {

// The search's own sign rule: 0 counts as positive. A NaN has no sign and never makes a bracket.
bool changes_sign(double base, double v) {
  if (std::isnan(base) || std::isnan(v)) return false;
  return (base >= 0.0) != (v >= 0.0);
}

SearchOutcome ask(int64_t& ind, int64_t what) {
  ind = what;
  return SearchOutcome::evaluate;
}

SearchOutcome end(int64_t& ind, SearchOutcome outcome) {
  ind = search_ind::finished;
  return outcome;
}

// Moves X to the trial point X + H, pulled back to a bound it reaches or passes; false when the move is
// refused. The boundary-aware form first records a start on a bound and turns H inwards there.
bool take_step(SearchState s, double& x, double& h, SearchBounds bounds, bool boundary_aware) {
  if (boundary_aware) {
    if (x == bounds.lower) {
      s.bounds() = -1.0;
      if (x + h < bounds.lower) h = -h;
    } else if (x == bounds.upper) {
      s.bounds() = 1.0;
      if (x + h > bounds.upper) h = -h;
    }
  }
  double trial = x + h;
  const double reached = s.bounds();
  if (std::isnan(trial)) return false;
  if (trial >= bounds.upper) {
    if (reached == 1.0 || std::abs(reached) > 1.5) return false;
    trial = bounds.upper;
    s.bounds() = reached == 0.0 ? 1.0 : 2.0;
  } else if (trial <= bounds.lower) {
    if (reached == -1.0 || std::abs(reached) > 1.5) return false;
    trial = bounds.lower;
    s.bounds() = reached == 0.0 ? -1.0 : -2.0;
  }
  x = trial;
  return true;
}

// No sign change found: X <= Y are the points reached nearest each bound, C(1) = f(Y).
SearchOutcome give_up(SearchState s, double& x, double& y, int64_t& ind) {
  const bool ordered = s.lowest() <= s.highest();
  x = ordered ? s.lowest() : s.highest();
  y = ordered ? s.highest() : s.lowest();
  s.f_base() = ordered ? s.f_highest() : s.f_lowest();
  return end(ind, SearchOutcome::no_bracket);
}

// A refused move: restart from x0 with the finer step -H0/10, H0/100, -H0/1000 in turn (each the quotient
// rounded once); give up after the third, or when the step no longer moves x0.
SearchOutcome refine(SearchState s, double& x, double& y, double& h, SearchBounds bounds, int64_t& ind) {
  static constexpr double kDivisor[] = {-10.0, 100.0, -1000.0};
  while (s.refinements() < 3.0) {
    h = s.h0() / kDivisor[static_cast<int>(s.refinements())];
    s.refinements() += 1.0;
    const double x0 = s.x0();
    if (x0 + h == x0) break;
    x = y = s.lowest() = s.highest() = x0;
    s.f_base() = s.f_lowest() = s.f_highest() = s.f_x0();
    s.bounds() = 0.0;
    if (take_step(s, x, h, bounds, true)) return ask(ind, search_ind::trial_value);
  }
  return give_up(s, x, y, ind);
}

}  // namespace

SearchOutcome search_step(SearchState s, double& x, double& y, double& h, double fx, SearchBounds bounds,
                          int64_t& ind) {
  switch (ind) {
    case search_ind::start:
    case search_ind::start_with_value:
      y = s.x0() = s.lowest() = s.highest() = x;
      s.h0() = h;
      s.refinements() = 0.0;
      s.bounds() = 0.0;
      if (ind == search_ind::start) return ask(ind, search_ind::start_value);
      [[fallthrough]];

    case search_ind::start_value:
      s.f_base() = s.f_x0() = s.f_lowest() = s.f_highest() = fx;
      if (fx == 0.0) {
        y = x;
        return end(ind, SearchOutcome::bracket);
      }
      if (take_step(s, x, h, bounds, true)) return ask(ind, search_ind::trial_value);
      return refine(s, x, y, h, bounds, ind);

    default: {  // search_ind::trial_value, the only other value the checks admit
      s.f_latest() = fx;
      if (fx == 0.0) {
        y = x;
        s.f_base() = fx;
        return end(ind, SearchOutcome::bracket);
      }
      if (changes_sign(s.f_base(), fx)) {  // every point so far had f(x0)'s sign: pair X with the nearer extreme
        const bool lower = std::abs(x - s.lowest()) <= std::abs(x - s.highest());
        y = lower ? s.lowest() : s.highest();
        s.f_base() = lower ? s.f_lowest() : s.f_highest();
        return end(ind, SearchOutcome::bracket);
      }
      if (std::abs(x - bounds.lower) <= std::abs(s.lowest() - bounds.lower)) {
        s.lowest() = x;
        s.f_lowest() = fx;
      } else if (std::abs(x - bounds.upper) <= std::abs(s.highest() - bounds.upper)) {
        s.highest() = x;
        s.f_highest() = fx;
      }
      if (std::abs(fx) < std::abs(s.f_base())) {  // downhill: the base moves on, same direction
        h = 2 * h;
        y = x;
        s.f_base() = fx;
      } else {  // uphill: turn round
        h = -2 * h;
      }
      if (take_step(s, x, h, bounds, false)) return ask(ind, search_ind::trial_value);
      return refine(s, x, y, h, bounds, ind);
    }
  }
}

}  // namespace vek::zeros_quad
