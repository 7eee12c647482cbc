// The adaptive drivers of Piessens et al. (QUADPACK, 1983), step by step: dqagse (bisection, round-off
// counters, extrapolation of the areas with the epsilon algorithm once the intervals of largest error are the
// smallest ones), dqagpe (the same from the intervals between break points) and dqage (bisection alone).
// Tolerances are those of the library's machine constants: eps the relative precision, uflow the safe range
// minimum.
#include "zeros_quad/adaptive_quadrature.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zeros_quad/epsilon_table.h"

namespace vek::zeros_quad {
namespace {

constexpr double eps = constants::eps();
constexpr double uflow = constants::safe_range();

// Bisection can go no further: [a1, b2] is about as narrow as its end points' spacing. The factor 1000 in both
// places is deliberate: the test fires well before the halves become equal.
bool too_narrow(double a1, double a2, double b2) {
  return std::max(std::abs(a1), std::abs(b2)) <= (1.0 + 1000.0 * eps) * (std::abs(a2) + 1000.0 * uflow);
}

struct Bisection {
  double a1, mid, b2;
  RuleEstimate left, right;
  double area12() const { return left.result + right.result; }
  double error12() const { return left.error + right.error; }
  // Neither half's error estimate is its resasc (the estimate is not at its ceiling).
  bool estimates_informative() const { return left.resasc != left.error && right.resasc != right.error; }
};

// Interval i bisected, written into h field by field (no copy of a whole Bisection after the rule calls): at its
// midpoint, or, when it holds the pole c, at the midpoint of c and its farther end, so that c lies inside a half
// and away from its ends (QUADPACK's dqawce).
void bisect(RuleOnInterval rule, const IntervalList& list, int64_t i, Bisection& h, const double* pole = nullptr) {
  h.a1 = list.left(i);
  h.b2 = list.right(i);
  h.mid = 0.5 * (h.a1 + h.b2);
  if (pole != nullptr) {
    const double c = *pole;
    if (c > h.a1 && c <= h.mid)
      h.mid = 0.5 * (c + h.b2);
    else if (c > h.mid && c < h.b2)
      h.mid = 0.5 * (h.a1 + c);
  }
  h.left = rule(h.a1, h.mid);
  h.right = rule(h.mid, h.b2);
}

// The round-off counters of the drivers: bisections that changed neither the value nor the error much (counted
// apart while extrapolating), and, from the eleventh interval on, bisections that raised the error.
struct RoundOffCounters {
  int unchanged = 0;
  int unchanged_extrapolating = 0;
  int raised = 0;
  void count(const Bisection& h, double old_value, double errmax, bool extrapolating, int64_t last) {
    if (!h.estimates_informative()) return;
    if (std::abs(old_value - h.area12()) <= 1e-5 * std::abs(h.area12()) && h.error12() >= 0.99 * errmax)
      ++(extrapolating ? unchanged_extrapolating : unchanged);
    if (last > 10 && h.error12() > errmax) ++raised;
  }
};

// Internal error numbers of the extrapolating drivers, reduced by one on exit above 2.
enum Internal : int {
  none = 0,
  limit = 1,
  round_off = 2,
  round_off_final = 3,
  bad = 4,
  table_round_off = 5,
  divergent = 6
};

QuadratureOutcome reported(double result, double abserr, int internal, const Bisection* at) {
  QuadratureOutcome out{result, abserr, static_cast<QuadratureEnd>(internal > 2 ? internal - 1 : internal)};
  if (internal == bad) {
    out.bad_left = at->a1;
    out.bad_right = at->b2;
  }
  return out;
}

// The state and the steps the two extrapolating drivers share. They differ in where they start (the whole
// interval, or the intervals between break-points) and in how an interval is judged small: by its width
// against a bound halved after each extrapolation, or by its bisection level against a level raised each time.
class Extrapolating {
 public:
  Extrapolating(RuleOnInterval rule, IntervalList& list, Tolerances tol)
      : rule_(rule), list_(list), epsabs_(std::abs(tol.absolute)), epsrel_(std::abs(tol.relative)) {}

  double bound(double v) const { return std::max(epsabs_, epsrel_ * std::abs(v)); }

  // The first approximation (of the whole interval, or summed over the first intervals) did not suffice; it
  // opens the epsilon table unless `tabulate` is false.
  void start(double result, double errsum, double defabs, bool tabulate = true) {
    area_ = result;
    errsum_ = errsum;
    defabs_ = defabs;
    positive_ = std::abs(result) >= (1.0 - 50.0 * eps) * defabs;
    maxerr_ = list_.ranked(1);
    errmax_ = list_.error(maxerr_);
    erlarg_ = errsum;
    ertest_ = bound(result);
    result_ = result;
    if (tabulate) table_.append(result);
  }

  // After the first bisection of the whole interval: the second entry of the table, and the error over the
  // large intervals and the tolerance the extrapolation starts from.
  void second_approximation() {
    measure_large_from_here();
    table_.append(area_);
  }

  // The error over the large intervals starts as the whole error sum, the tolerance as that of the area.
  void measure_large_from_here() {
    erlarg_ = errsum_;
    ertest_ = bound(area_);
  }

  // Bisects the interval of largest error (as far as chosen) into number `last`; true when the sum of the
  // errors now meets the tolerance.
  bool bisect(int64_t last) {
    zeros_quad::bisect(rule_, list_, maxerr_, h_);
    erlast_ = errmax_;
    const double old_value = list_.value(maxerr_);
    errsum_ = errsum_ + h_.error12() - errmax_;
    area_ = area_ + h_.area12() - old_value;
    counters_.count(h_, old_value, errmax_, extrapolating_, last);
    list_.store_halves(maxerr_, h_.mid, h_.left.result, h_.left.error, h_.right.result, h_.right.error);
    maxerr_ = list_.reorder(nrmax_);
    errmax_ = list_.error(maxerr_);
    return errsum_ <= bound(area_);
  }
  QuadratureOutcome converged() const { return reported(list_.sum(), errsum_, none, nullptr); }

  // The error flags after a bisection; true when one is set.
  bool failed(int64_t last) {
    if (counters_.unchanged + counters_.unchanged_extrapolating >= 10 || counters_.raised >= 20) ier_ = round_off;
    if (counters_.unchanged_extrapolating >= 5) table_round_off_ = true;
    if (last == list_.limit()) ier_ = limit;
    if (too_narrow(h_.a1, h_.mid, h_.b2)) ier_ = bad;
    return ier_ != none;
  }

  bool extrapolation_allowed() const { return extrapolation_allowed_; }

  // Whether to go on bisecting instead of extrapolating now: while the interval of largest error is large,
  // and, once the smallest intervals carry the largest errors, while a large one is found near the top of the
  // ordering list (which is then bisected next). halves_large: the last halves count as large.
  // One step once extrapolation is allowed: go on bisecting while keep_bisecting says so (the last halves count
  // as large when wider than `small`); otherwise extrapolate and restart from the interval of largest error with
  // `small` halved. True when the run ends.
  template <class IsLarge>
  bool extrapolation_step(int64_t last, double& small, IsLarge is_large) {
    if (keep_bisecting(last, std::abs(h_.mid - h_.a1) > small, is_large)) return false;
    if (extrapolate()) return true;
    restart_from_largest();
    small *= 0.5;
    return false;
  }

  template <class IsLarge>
  bool keep_bisecting(int64_t last, bool halves_large, IsLarge is_large) {
    erlarg_ -= erlast_;
    if (halves_large) erlarg_ += h_.error12();
    if (!extrapolating_) {
      if (is_large(maxerr_)) return true;
      extrapolating_ = true;
      nrmax_ = 2;
    }
    if (table_round_off_ || !(erlarg_ > ertest_)) return false;
    const int64_t jupbnd = last > 2 + list_.limit() / 2 ? list_.limit() + 3 - last : last;
    for (int64_t k = nrmax_; k <= jupbnd; ++k) {
      maxerr_ = list_.ranked(nrmax_);
      errmax_ = list_.error(maxerr_);
      if (is_large(maxerr_)) return true;
      ++nrmax_;
    }
    return false;
  }

  // Appends the area to the epsilon table. With at least three entries, extrapolates and keeps a better value;
  // true when it meets its tolerance or the divergence signal is set (the driver then finishes).
  bool extrapolate() {
    table_.append(area_);
    if (table_.size() < 3) return false;
    const Extrapolation x = table_.extrapolate();
    ++ktmin_;
    if (ktmin_ > 5 && abserr_ < 1e-3 * errsum_) ier_ = table_round_off;
    if (x.error < abserr_) {
      ktmin_ = 0;
      abserr_ = x.error;
      result_ = x.value;
      correc_ = erlarg_;
      ertest_ = bound(x.value);
      if (abserr_ <= ertest_) return true;
    }
    if (table_.size() == 1) extrapolation_allowed_ = false;
    return ier_ == table_round_off;
  }

  // Back to the interval of largest error, before the bound of smallness is made finer.
  void restart_from_largest() {
    maxerr_ = list_.ranked(1);
    errmax_ = list_.error(maxerr_);
    nrmax_ = 1;
    extrapolating_ = false;
    erlarg_ = errsum_;
  }

  // The extrapolated value, unless the plain sum is the better one; then the divergence test.
  QuadratureOutcome finish() const {
    int ier = ier_;
    double abserr = abserr_;
    if (abserr == kNoErrorEstimate) return reported(list_.sum(), errsum_, ier, &h_);
    if (ier != none || table_round_off_) {
      if (table_round_off_) abserr += correc_;
      if (ier == none) ier = round_off_final;
      if (result_ != 0.0 && area_ != 0.0) {
        if (abserr / std::abs(result_) > errsum_ / std::abs(area_)) return reported(list_.sum(), errsum_, ier, &h_);
      } else if (abserr > errsum_) {
        return reported(list_.sum(), errsum_, ier, &h_);
      } else if (area_ == 0.0) {
        return reported(result_, abserr, ier, &h_);
      }
    }
    if (positive_ || std::max(std::abs(result_), std::abs(area_)) > 0.01 * defabs_) {
      const double ratio = result_ / area_;
      if (0.01 > ratio || ratio > 100.0 || errsum_ > std::abs(area_)) ier = divergent;
    }
    return reported(result_, abserr, ier, &h_);
  }

  int64_t maxerr() const { return maxerr_; }

 private:
  RuleOnInterval rule_;
  IntervalList& list_;
  double epsabs_, epsrel_;
  double result_ = 0.0, abserr_ = kNoErrorEstimate;  // the accepted extrapolated value and its error
  double area_ = 0.0, errsum_ = 0.0;                 // the sums of the interval values and errors
  double errmax_ = 0.0, erlast_ = 0.0;               // the error of the interval to bisect, of the last bisected
  double erlarg_ = 0.0, ertest_ = 0.0, correc_ = 0.0;
  double defabs_ = 0.0;
  bool positive_ = false, extrapolating_ = false, extrapolation_allowed_ = true, table_round_off_ = false;
  int ier_ = none, ktmin_ = 0;
  int64_t maxerr_ = 1, nrmax_ = 1;
  RoundOffCounters counters_;
  Bisection h_{};
  EpsilonTable table_;
};

}  // namespace

QuadratureOutcome integrate_extrapolated(RuleOnInterval rule, double a, double b, Tolerances tol, IntervalList& list) {
  Extrapolating d(rule, list, tol);
  const RuleEstimate whole = rule(a, b);
  list.start(a, b, whole.result, whole.error);
  const double errbnd = d.bound(whole.result);
  int ier = none;
  if (whole.error <= 100.0 * eps * whole.resabs && whole.error > errbnd) ier = round_off;
  if (list.limit() == 1) ier = limit;
  if (ier != none || (whole.error <= errbnd && whole.error != whole.resasc) || whole.error == 0.0)
    return reported(whole.result, whole.error, ier, nullptr);

  d.start(whole.result, whole.error, whole.resabs);
  double small = std::abs(b - a) * 0.375;
  auto large = [&](int64_t i) { return std::abs(list.right(i) - list.left(i)) > small; };
  for (int64_t last = 2; last <= list.limit(); ++last) {
    if (d.bisect(last)) return d.converged();
    if (d.failed(last)) break;
    if (last == 2) {
      d.second_approximation();
      continue;
    }
    if (!d.extrapolation_allowed()) continue;
    if (d.extrapolation_step(last, small, large)) break;
  }
  return d.finish();
}

QuadratureOutcome integrate_plain(RuleOnInterval rule, double a, double b, Tolerances tol, IntervalList& list) {
  const double epsabs = std::abs(tol.absolute), epsrel = std::abs(tol.relative);
  auto bound = [&](double v) { return std::max(epsabs, epsrel * std::abs(v)); };

  const RuleEstimate whole = rule(a, b);
  list.start(a, b, whole.result, whole.error);
  double errbnd = bound(whole.result);
  QuadratureOutcome out{whole.result, whole.error};
  if (whole.error <= 100.0 * eps * whole.resabs && whole.error > errbnd) out.end = QuadratureEnd::round_off;
  if (list.limit() == 1) out.end = QuadratureEnd::limit_reached;
  if (out.end != QuadratureEnd::converged || (whole.error <= errbnd && whole.error != whole.resasc) ||
      whole.error == 0.0)
    return out;

  return continue_plain(rule, tol, list, whole.result, whole.error);
}

QuadratureOutcome continue_plain(RuleOnInterval rule, Tolerances tol, IntervalList& list, double area, double errsum,
                                 const double* pole) {
  const double epsabs = std::abs(tol.absolute), epsrel = std::abs(tol.relative);
  QuadratureOutcome out;
  RoundOffCounters counters;
  int64_t nrmax = 1;
  int64_t maxerr = list.ranked(1);
  double errmax = list.error(maxerr);
  for (int64_t last = list.last() + 1; last <= list.limit(); ++last) {
    Bisection h;
    bisect(rule, list, maxerr, h, pole);
    const double old_value = list.value(maxerr);
    errsum = errsum + h.error12() - errmax;
    area = area + h.area12() - old_value;
    counters.count(h, old_value, errmax, false, last);
    const double errbnd = std::max(epsabs, epsrel * std::abs(area));
    if (!(errsum <= errbnd)) {
      if (counters.unchanged >= 6 || counters.raised >= 20) out.end = QuadratureEnd::round_off;
      if (last == list.limit()) out.end = QuadratureEnd::limit_reached;
      if (too_narrow(h.a1, h.mid, h.b2)) out = {0.0, 0.0, QuadratureEnd::bad_integrand, h.a1, h.b2};
    }
    list.store_halves(maxerr, h.mid, h.left.result, h.left.error, h.right.result, h.right.error);
    maxerr = list.reorder(nrmax);
    errmax = list.error(maxerr);
    if (out.end != QuadratureEnd::converged || errsum <= errbnd) break;
  }
  out.result = list.sum();
  out.abserr = errsum;
  return out;
}

QuadratureOutcome integrate_with_breakpoints(RuleOnInterval rule, double a, double b, std::span<const double> points,
                                             Tolerances tol, IntervalList& list, int64_t* level) {
  Extrapolating d(rule, list, tol);
  const double sign = a > b ? -1.0 : 1.0;
  auto signed_outcome = [sign](QuadratureOutcome out) {
    out.result *= sign;
    return out;
  };
  int64_t* lev = level - 1;

  // The intervals between the break points, in ascending order; an estimate that equals its resasc is
  // replaced by the sum of all the estimates.
  const int64_t nint = static_cast<int64_t>(points.size()) + 1;
  double result = 0.0, abserr = 0.0, defabs = 0.0;
  double a1 = std::min(a, b);
  std::vector<bool> ceiling(static_cast<size_t>(nint));
  for (int64_t i = 1; i <= nint; ++i) {
    const double b1 = i < nint ? points[static_cast<size_t>(i - 1)] : std::max(a, b);
    const RuleEstimate r = rule(a1, b1);
    abserr += r.error;
    result += r.result;
    ceiling[static_cast<size_t>(i - 1)] = r.error == r.resasc && r.error != 0.0;
    defabs += r.resabs;
    list.append(a1, b1, r.result, r.error);
    lev[i] = 0;
    a1 = b1;
  }
  double errsum = 0.0;
  for (int64_t i = 1; i <= nint; ++i) {
    if (ceiling[static_cast<size_t>(i - 1)]) list.set_error(i, abserr);
    errsum += list.error(i);
  }
  // The ordering list by decreasing error (a selection sort; of equal estimates the later comes first).
  for (int64_t i = 1; i < nint; ++i) {
    int64_t ind1 = list.ranked(i), k = i;
    for (int64_t j = i + 1; j <= nint; ++j) {
      const int64_t ind2 = list.ranked(j);
      if (list.error(ind1) > list.error(ind2)) continue;
      ind1 = ind2;
      k = j;
    }
    if (ind1 == list.ranked(i)) continue;
    list.set_ranked(k, list.ranked(i));
    list.set_ranked(i, ind1);
  }
  const double errbnd = d.bound(result);
  int ier = none;
  if (abserr <= 200.0 * eps * defabs && abserr > errbnd) ier = round_off;
  if (list.limit() == nint) ier = limit;
  if (ier != none || abserr <= errbnd) return signed_outcome(reported(result, abserr, ier, nullptr));

  d.start(result, errsum, defabs);
  int64_t levmax = 1;
  auto large = [&](int64_t i) { return lev[i] < levmax; };
  for (int64_t last = nint + 1; last <= list.limit(); ++last) {
    const int64_t levcur = lev[d.maxerr()] + 1;
    lev[d.maxerr()] = levcur;
    lev[last] = levcur;
    if (d.bisect(last)) return signed_outcome(d.converged());
    if (d.failed(last)) break;
    if (!d.extrapolation_allowed()) continue;
    if (d.keep_bisecting(last, levcur < levmax, large)) continue;
    if (d.extrapolate()) break;
    d.restart_from_largest();
    ++levmax;
  }
  return signed_outcome(d.finish());
}

QuadratureOutcome integrate_oscillatory(RuleAtLevel rule, double a, double b, double omega, Tolerances tol,
                                        IntervalList& list, int64_t* level) {
  int64_t current = 0;  // the level of the halves being made
  auto at_current = [&](double s, double t) { return rule(s, t, current); };
  Extrapolating d(RuleOnInterval(at_current), list, tol);
  int64_t* lev = level - 1;
  const RuleEstimate whole = rule(a, b, 0);
  list.start(a, b, whole.result, whole.error);
  lev[1] = 0;
  const double errbnd = d.bound(whole.result);
  int ier = none;
  if (whole.error <= 100.0 * eps * whole.resabs && whole.error > errbnd) ier = round_off;
  if (list.limit() == 1) ier = limit;
  if (ier != none || whole.error <= errbnd) return reported(whole.result, whole.error, ier, nullptr);

  // Extrapolation over the areas only from where the 15-point rule takes over: the first area enters the table
  // if the halves already use it, extrapolation is allowed once the quarters do.
  const double width = std::abs(b - a);
  bool extall = !(0.5 * width * omega > 2.0);
  d.start(whole.result, whole.error, whole.resabs, extall);
  if (0.25 * width * omega <= 2.0) extall = true;
  double small = width * 0.75;
  auto large = [&](int64_t i) { return std::abs(list.right(i) - list.left(i)) > small; };
  for (int64_t last = 2; last <= list.limit(); ++last) {
    current = lev[d.maxerr()] + 1;
    lev[d.maxerr()] = current;
    lev[last] = current;
    if (d.bisect(last)) return d.converged();
    if (d.failed(last)) break;
    if (last == 2 && extall) {
      small *= 0.5;
      d.second_approximation();
      continue;
    }
    if (!d.extrapolation_allowed()) continue;
    if (!extall) {
      // Not yet: wait until the interval to bisect next is small and short enough for the 15-point rule.
      const int64_t next = d.maxerr();
      const double next_width = std::abs(list.right(next) - list.left(next));
      if (next_width > small) continue;
      small *= 0.5;
      if (0.25 * next_width * omega > 2.0) continue;
      extall = true;
      d.measure_large_from_here();
      continue;
    }
    if (d.extrapolation_step(last, small, large)) break;
  }
  return d.finish();
}

}  // namespace vek::zeros_quad
