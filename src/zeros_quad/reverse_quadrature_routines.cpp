// Body of d01raf (d01.decl): d01ajf's integration by reverse communication. RCOMM keeps every value of f the
// caller has returned, in the order the rule asked for them: RCOMM(1) their number, RCOMM(2) the size of the
// batch handed out, RCOMM(3..) the values. Each call runs d01ajf's driver (adaptive_quadrature.h) from the
// start with a rule that reads the stored values; the first application beyond them hands its abscissae out
// (with the second half of its bisection, 42 at a time) and ends the call. The driver is deterministic, so the
// run that finds every value stored is d01ajf's run to the bit: the same intervals, counts and IFAIL. The price
// is work of the library growing with the square of the number of bisections, small beside f in the uses
// reverse communication is for.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "layers/d01.h"
#include "zeros_quad/adaptive_quadrature.h"

namespace vek::routines {
namespace {

using zeros_quad::QuadratureEnd;
using zeros_quad::RuleEstimate;

constexpr int64_t kRulePoints = 21;

// The replayed run has reached a rule application whose values the caller has not yet returned.
struct BatchHandedOut {};

class ReplayedRule {
 public:
  ReplayedRule(const double* values, int64_t stored, double* x) : values_(values), stored_(stored), x_(x) {}

  // Application 0 is the whole interval, 2k - 1 and 2k the halves of the k-th bisection, called in turn.
  RuleEstimate operator()(double s, double t) {
    const int64_t first = applications_ * kRulePoints;
    ++applications_;
    if (first + kRulePoints <= stored_) {
      const double* v = values_ + first;
      auto stored_value = [&v](double) { return *v++; };
      return zeros_quad::apply_rule(zeros_quad::kKronrod21, stored_value, s, t);
    }
    auto record = [this](double x) {
      x_[handed_out_++] = x;
      return 0.0;
    };
    zeros_quad::apply_rule(zeros_quad::kKronrod21, record, s, t);
    if (applications_ % 2 == 0) return {};  // a left half: its right half comes next
    throw BatchHandedOut{};
  }

  int64_t handed_out() const { return handed_out_; }

 private:
  const double* values_;
  int64_t stored_;
  double* x_;
  int64_t applications_ = 0;
  int64_t handed_out_ = 0;
};

}  // namespace

void d01raf::run(frame::ErrorBuffer& err, int64_t* irevcm, const double* a, const double* b, const double* epsabs,
                 const double* epsrel, double* result, double* abserr, int64_t* nx, double* x, const double* fx,
                 double* w, const int64_t* lw, int64_t* iw, const int64_t* liw, double* rcomm,
                 const int64_t* lrcomm) {
  const int64_t limit = std::min(*lw / 4, *liw);
  const __int128 needed = static_cast<__int128>(2 * kRulePoints) * limit - kRulePoints + 2;
  *nx = 0;
  if (*lrcomm < needed) {
    *irevcm = 0;
    return err.fail(lrcomm_small, *lrcomm, static_cast<int64_t>(std::min<__int128>(needed, INT64_MAX)));
  }
  const int64_t minimum = static_cast<int64_t>(needed);
  double* values = rcomm + 2;
  int64_t stored = 0;
  if (*irevcm == 1) {
    // The batch handed out last is appended to the values; RCOMM must still describe a run in progress.
    const double count = rcomm[0], batch = rcomm[1];
    const bool valid = count >= 0.0 && count == std::floor(count) && std::fmod(count, kRulePoints) == 0.0 &&
                       (count == 0.0 ? batch == kRulePoints : batch == 2 * kRulePoints) &&
                       count + batch <= static_cast<double>(minimum - 2);
    if (!valid) {
      *irevcm = 0;
      return err.fail(comm_changed);
    }
    stored = static_cast<int64_t>(count);
    std::copy(fx, fx + static_cast<int64_t>(batch), values + stored);
    stored += static_cast<int64_t>(batch);
  }
  rcomm[0] = static_cast<double>(stored);

  ReplayedRule replay(values, stored, x);
  zeros_quad::IntervalList list(w, iw, limit);
  zeros_quad::QuadratureOutcome out;
  try {
    out = zeros_quad::integrate_extrapolated(zeros_quad::RuleOnInterval(replay), *a, *b, {*epsabs, *epsrel}, list);
  } catch (const BatchHandedOut&) {
    *irevcm = 1;
    *nx = replay.handed_out();
    rcomm[1] = static_cast<double>(*nx);
    *result = 0.0;
    *abserr = 0.0;
    return;
  }
  *irevcm = 0;
  list.pack_sorted(*lw);
  *result = out.result;
  *abserr = out.abserr;
  switch (out.end) {
    case QuadratureEnd::converged: return;
    case QuadratureEnd::limit_reached: return err.fail(limit_reached, limit, *lw, *liw);
    case QuadratureEnd::round_off: return err.fail(round_off, *epsabs, *epsrel);
    case QuadratureEnd::bad_integrand: return err.fail(bad_integrand, out.bad_left, out.bad_right);
    case QuadratureEnd::extrapolation_round_off: return err.fail(table_round_off);
    case QuadratureEnd::divergent: return err.fail(divergent);
  }
}

}  // namespace vek::routines
