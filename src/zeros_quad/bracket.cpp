// The bracketing zero finder, one evaluation per call (bracket.h). Every test that decides between two paths
// is written so that a NaN takes the path that ends: no interpolation from NaN values, the rounding-level exit
// for a NaN bracket.
#include "zeros_quad/bracket.h"

#include <algorithm>
#include <cmath>

#include "frame/constants.h"

namespace vek::zeros_quad {
namespace {

// The points of one step: b the best so far, c the contrapoint, a the previous b; d and e the last two steps.
struct Bracket {
  double a, fa, b, fb, c, fc, d, e;

  // c := a: f changed sign between a and b, so a becomes the contrapoint and both step memories restart.
  void restart_from_a() {
    c = a;
    fc = fa;
    d = e = b - a;
  }
};

// Half the bracket (c - b)/2; for a bracket wider than the largest double, c/2 - b/2, which cannot overflow.
double half_width(double b, double c) {
  const double xm = (c - b) / 2;
  return std::isinf(xm) ? c / 2 - b / 2 : xm;
}

BracketStep ask(int64_t& ind, int64_t what) {
  ind = what;
  return {BracketOutcome::evaluate};
}

BracketStep end(int64_t& ind, BracketOutcome outcome) {
  ind = ind_state::finished;
  return {outcome};
}

BracketStep no_sign_change(int64_t& ind, double f_first, double f_second) {
  ind = ind_state::finished;
  return {BracketOutcome::same_sign, f_first, f_second};
}

// From a bracket [b, c] with f(b), f(c) of opposite signs: converged (X := b, one more evaluation there),
// stuck at rounding level, or the next point to evaluate.
BracketStep iterate(BracketState s, Bracket k, double& x, double& y, double tolx, ErrorTest test, int64_t& ind) {
  if (std::abs(k.fc) < std::abs(k.fb)) {  // b becomes the better point
    k.a = k.b;
    k.b = k.c;
    k.c = k.a;
    k.fa = k.fb;
    k.fb = k.fc;
    k.fc = k.fa;
  }
  const double xm = half_width(k.b, k.c);
  const double r = test == ErrorTest::absolute ? 0.0 : 1.0;
  const double scale = test == ErrorTest::relative ? 0.0 : 1.0;
  const double tol = tolx * std::max(r * std::abs(k.b), scale);
  if (std::abs(xm) <= tol || k.fb == 0.0) {
    x = k.b;
    y = k.c;
    s.converged() = 1.0;
    return ask(ind, ind_state::iterate_value);  // the final evaluation at b checks for a pole
  }
  if (!(std::abs(xm) > constants::eps() * std::abs(k.b))) return end(ind, BracketOutcome::tolerance_too_small);

  double d = xm, e = xm;  // bisection unless the interpolated step is accepted
  if (std::abs(k.e) >= tol && std::abs(k.fa) > std::abs(k.fb)) {
    const double sb = k.fb / k.fa;
    double p, q;
    if (k.a == k.c) {  // two distinct points: the secant
      p = 2 * xm * sb;
      q = 1 - sb;
    } else {  // inverse quadratic interpolation through a, b, c
      const double qa = k.fa / k.fc;
      const double rb = k.fb / k.fc;
      p = sb * (2 * xm * qa * (qa - rb) - (k.b - k.a) * (rb - 1));
      q = (qa - 1) * (rb - 1) * (sb - 1);
    }
    if (p > 0) {
      q = -q;
    } else {
      p = -p;
    }
    // The step p/q must land well inside the bracket and be less than half the step before last.
    if (2 * p < 3 * xm * q - std::abs(tol * q) && p < std::abs(k.e * q / 2)) {
      e = k.d;
      d = p / q;
    }
  }
  const double next = std::abs(d) > tol ? k.b + d : (k.c > k.b ? k.b + tol : k.b - tol);
  s.a() = k.b;
  s.fa() = k.fb;
  s.c() = k.c;
  s.fc() = k.fc;
  s.d() = d;
  s.e() = e;
  s.b() = next;
  x = next;
  return ask(ind, ind_state::iterate_value);
}

// The second starting value fb (at b = C(4)) has arrived, f at the first point a is in C(2): the first bracket,
// or false when the two values do not change sign.
bool first_bracket(BracketState s, double fb, Bracket& k) {
  if (same_sign(s.fa(), fb)) return false;
  s.fmax() = std::fmax(s.fmax(), std::abs(fb));  // a NaN value does not count
  k = {s.a(), s.fa(), s.b(), fb, 0, 0, 0, 0};
  k.restart_from_a();
  return true;
}

}  // namespace

// Each case either ends, asks for a value, or sets up the bracket for the one iteration step at the end.
BracketStep bracket_step(BracketState s, double& x, double& y, double fx, double tolx, ErrorTest test, int64_t& ind) {
  Bracket k{};
  switch (ind) {
    case ind_state::start:
      s.a() = x;
      return ask(ind, ind_state::first_value);

    case ind_state::first_value:
    case ind_state::start_with_values: {
      if (fx == 0.0) {
        y = x;
        return end(ind, BracketOutcome::zero);
      }
      const bool values_given = ind == ind_state::start_with_values;
      if (values_given) s.a() = x;
      s.fa() = fx;
      s.fmax() = std::abs(fx);
      s.converged() = 0.0;
      x = y;  // the second point is evaluated next
      y = s.a();
      s.b() = x;
      if (!values_given) return ask(ind, ind_state::second_value);
      ind = ind_state::second_value;
      // The given f(Y) goes on as the second value at once; 0 there is no exact zero, only non-positive.
      if (!first_bracket(s, s.fy(), k)) return no_sign_change(ind, s.fa(), s.fy());
      break;
    }

    case ind_state::second_value:
      if (fx == 0.0) {
        y = x;
        return end(ind, BracketOutcome::zero);
      }
      if (!first_bracket(s, fx, k)) return no_sign_change(ind, s.fa(), fx);
      break;

    default:  // ind_state::iterate_value, the only other value the checks admit
      if (fx == 0.0) {
        y = x;
        return end(ind, BracketOutcome::zero);
      }
      if (s.converged() != 0.0) {  // the final evaluation at the converged point
        return end(ind, std::abs(fx) <= s.fmax() ? BracketOutcome::zero : BracketOutcome::pole);
      }
      k = {s.a(), s.fa(), s.b(), fx, s.c(), s.fc(), s.d(), s.e()};
      if (same_sign(k.fb, k.fc)) k.restart_from_a();
      break;
  }
  return iterate(s, k, x, y, tolx, test, ind);
}

}  // namespace vek::zeros_quad
