// Bodies of the D01 integrators over a finite interval (d01.decl): d01ajf (21-point rule, extrapolation),
// d01alf (the same from given break-points) and d01akf (61-point rule, no extrapolation). For d01ajf and d01akf
// the declared workspace checks have passed, so LIMIT = min(LW/4, LIW) >= 1; d01alf checks its own workspace.
// F is called through the adapter the entry passed, with IUSER and RUSER as given; on every exit with a
// result the subintervals are packed and sorted in W and IW (interval_list.h).
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "layers/d01.h"
#include "zeros_quad/adaptive_quadrature.h"
#include "zeros_quad/fourier_integral.h"
#include "zeros_quad/oscillatory_rule.h"
#include "zeros_quad/quadrature_body.h"

namespace vek::routines {
namespace {

// Runs integrate_with(integrand, A, B, tolerances, list) over LIMIT subintervals, F called through f_adapter,
// then packs and sorts W and IW and reports the outcome.
template <class R, class Adapter, class Function, class Integrate>
void integrate(frame::ErrorBuffer& err, int64_t limit, Integrate integrate_with, Adapter own_adapter, Adapter f_adapter,
               Function f, const double* a, const double* b, const double* epsabs, const double* epsrel, double* result,
               double* abserr, double* w, const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser,
               double* ruser) {
  auto over_a_b = [&](auto& integrand, zeros_quad::IntervalList& list) {
    return integrate_with(integrand, *a, *b, zeros_quad::Tolerances{*epsabs, *epsrel}, list);
  };
  zeros_quad::run_adaptive<R>(err, limit, own_adapter, f_adapter, f, iuser, ruser, over_a_b, epsabs, epsrel, result,
                              abserr, w, lw, iw, liw);
}

// The integrator `driver(rule, A, B, tolerances, list)` with the rule of `table` applied to the integrand.
template <int Points, class Driver>
auto with_rule(const zeros_quad::KronrodTable<Points>& table, Driver driver) {
  return [&table, driver](auto& integrand, double lo, double hi, zeros_quad::Tolerances tol,
                          zeros_quad::IntervalList& list) {
    auto rule = [&](double s, double t) { return zeros_quad::apply_rule(table, integrand, s, t); };
    return driver(zeros_quad::RuleOnInterval(rule), lo, hi, tol, list);
  };
}

}  // namespace

void d01ajf::run(frame::ErrorBuffer& err, vek_d01ajf_f_adapter f_adapter, vek_d01ajf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr, double* w,
                 const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  integrate<d01ajf>(err, std::min(*lw / 4, *liw), with_rule(zeros_quad::kKronrod21, zeros_quad::integrate_extrapolated),
                    d01ajf_fh_, f_adapter, f, a, b, epsabs, epsrel, result, abserr, w, lw, iw, liw, iuser, ruser);
}

void d01akf::run(frame::ErrorBuffer& err, vek_d01akf_f_adapter f_adapter, vek_d01akf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr, double* w,
                 const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  integrate<d01akf>(err, std::min(*lw / 4, *liw), with_rule(zeros_quad::kKronrod61, zeros_quad::integrate_plain),
                    d01akf_fh_, f_adapter, f, a, b, epsabs, epsrel, result, abserr, w, lw, iw, liw, iuser, ruser);
}

// The break-points are checked and sorted; LIMIT = min(LW/4, LIW/2), and IW(LIMIT+1..2*LIMIT) holds the levels.
void d01alf::run(frame::ErrorBuffer& err, vek_d01alf_f_adapter f_adapter, vek_d01alf_f_fn f, const double* a,
                 const double* b, const int64_t* npts, const double* points, const double* epsabs, const double* epsrel,
                 double* result, double* abserr, double* w, const int64_t* lw, int64_t* iw, const int64_t* liw,
                 int64_t* iuser, double* ruser) {
  const __int128 intervals = static_cast<__int128>(*npts) + 1;
  auto shown = [](__int128 m) { return static_cast<int64_t>(std::min<__int128>(m, INT64_MAX)); };
  if (*lw < 4 * intervals) return err.fail(lw_small, *lw, *npts, shown(4 * intervals));
  if (*liw < 2 * intervals) return err.fail(liw_small, *liw, *npts, shown(2 * intervals));
  const double lo = std::min(*a, *b), hi = std::max(*a, *b);
  for (int64_t i = 0; i < *npts; ++i)
    if (!(lo < points[i] && points[i] < hi)) return err.fail(points_outside, *a, *b, i + 1, points[i]);
  std::vector<double> sorted(points, points + *npts);
  std::sort(sorted.begin(), sorted.end());

  const int64_t limit = std::min(*lw / 4, *liw / 2);
  auto from_breakpoints = [&](zeros_quad::RuleOnInterval rule, double s, double t, zeros_quad::Tolerances tol,
                              zeros_quad::IntervalList& list) {
    return zeros_quad::integrate_with_breakpoints(rule, s, t, sorted, tol, list, iw + limit);
  };
  integrate<d01alf>(err, limit, with_rule(zeros_quad::kKronrod21, from_breakpoints), d01alf_fh_, f_adapter, f, a, b,
                    epsabs, epsrel, result, abserr, w, lw, iw, liw, iuser, ruser);
}

// The weighted integrators: LIMIT = LIW/2 subintervals, W(4*LIMIT+1..) the moments of MAXP1 = (LW - 4*LIMIT)/25
// bisection levels, IW(LIMIT+1..2*LIMIT) the levels. The rule works with |OMEGA|: with the sine and OMEGA < 0
// the integral, and the integrals over the subintervals in W, change sign afterwards.
namespace {

bool workspace_too_small(int64_t lw, int64_t limit) { return lw < 4 * static_cast<__int128>(limit) + 25; }

zeros_quad::Weight weight_of(int64_t key) { return key == 1 ? zeros_quad::Weight::cosine : zeros_quad::Weight::sine; }

// What the oscillatory rule needs besides the integrand: |OMEGA|, the weight, the moments of the levels and
// room for the level of each subinterval (IW after the ordering list).
struct Oscillatory {
  double omega;
  zeros_quad::Weight weight;
  zeros_quad::LevelMoments moments;
  int64_t* level;

  template <class Integrand>
  auto rule(Integrand& integrand) {
    return [this, &integrand](double s, double t, int64_t l) {
      return zeros_quad::apply_oscillatory_rule(integrand, s, t, omega, weight, moments, l);
    };
  }
};

// With the sine and a negative frequency: RESULT and the LAST packed interval values of W change sign.
void negate_for_sine(double* result, double* w, const int64_t* iw) {
  *result = -*result;
  const int64_t last = iw[0];
  for (int64_t i = 0; i < last; ++i) w[3 * last + i] = -w[3 * last + i];
}

}  // namespace

void d01anf::run(frame::ErrorBuffer& err, vek_d01anf_f_adapter f_adapter, vek_d01anf_f_fn f, const double* a,
                 const double* b, const double* omega, const int64_t* key, const double* epsabs, const double* epsrel,
                 double* result, double* abserr, double* w, const int64_t* lw, int64_t* iw, const int64_t* liw,
                 int64_t* iuser, double* ruser) {
  const int64_t limit = *liw / 2;
  if (workspace_too_small(*lw, limit)) return err.fail(lw_small, *lw, *liw);
  const double frequency = std::abs(*omega);
  Oscillatory osc{frequency, weight_of(*key),
                  zeros_quad::LevelMoments(w + 4 * limit, (*lw - 4 * limit) / 25, 0.5 * frequency * std::abs(*b - *a)),
                  iw + limit};
  auto integrate_weighted = [&](auto& integrand, double lo, double hi, zeros_quad::Tolerances tol,
                                zeros_quad::IntervalList& list) {
    auto rule = osc.rule(integrand);
    return zeros_quad::integrate_oscillatory(zeros_quad::RuleAtLevel(rule), lo, hi, frequency, tol, list, osc.level);
  };
  integrate<d01anf>(err, limit, integrate_weighted, d01anf_fh_, f_adapter, f, a, b, epsabs, epsrel, result, abserr, w,
                    lw, iw, liw, iuser, ruser);
  if (osc.weight == zeros_quad::Weight::sine && *omega < 0.0) negate_for_sine(result, w, iw);
}

// The cycles all have one length, so the moments of a level serve every cycle. W and IW hold the subintervals
// of the last cycle on exit, packed and sorted as for d01anf.
void d01asf::run(frame::ErrorBuffer& err, vek_d01asf_f_adapter f_adapter, vek_d01asf_f_fn f, const double* a,
                 const double* omega, const int64_t* key, const double* epsabs, double* result, double* abserr,
                 const int64_t* limlst, int64_t* lst, double* erlst, double* rslst, int64_t* ierlst, double* w,
                 const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  const int64_t limit = *liw / 2;
  if (workspace_too_small(*lw, limit)) return err.fail(lw_small, *lw, *liw);
  const double frequency = std::abs(*omega);
  Oscillatory osc{frequency, weight_of(*key),
                  zeros_quad::LevelMoments(w + 4 * limit, (*lw - 4 * limit) / 25,
                                           0.5 * frequency * zeros_quad::fourier_cycle(frequency)),
                  iw + limit};
  zeros_quad::IntervalList list(w, iw, limit);
  const zeros_quad::FourierOutcome out =
      zeros_quad::with_user_integrand(d01asf_fh_, f_adapter, f, iuser, ruser, [&](auto& integrand) {
        auto rule = osc.rule(integrand);
        return zeros_quad::integrate_fourier(zeros_quad::RuleAtLevel(rule), *a, frequency, std::abs(*epsabs),
                                             {rslst, erlst, ierlst, *limlst}, list, osc.level);
      });
  list.pack_sorted(*lw);
  *result = out.result;
  *abserr = out.abserr;
  *lst = out.cycles;
  if (osc.weight == zeros_quad::Weight::sine && *omega < 0.0) {
    negate_for_sine(result, w, iw);
    for (int64_t k = 0; k < *lst; ++k) rslst[k] = -rslst[k];
  }
  switch (out.end) {
    case zeros_quad::FourierEnd::converged:
      return;
    case zeros_quad::FourierEnd::cycle_limit:
      return err.fail(cycle_limit, *limlst);
    case zeros_quad::FourierEnd::table_round_off:
      return err.fail(table_bad);
    case zeros_quad::FourierEnd::cycles_failed:
      return err.fail(cycles_failed, *lst);
  }
}

// The batch forms: the same integrators, F evaluating all abscissae of one subinterval per call.
void d01atf::run(frame::ErrorBuffer& err, vek_d01atf_f_adapter f_adapter, vek_d01atf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr, double* w,
                 const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  integrate<d01atf>(err, std::min(*lw / 4, *liw), with_rule(zeros_quad::kKronrod21, zeros_quad::integrate_extrapolated),
                    d01atf_fh_, f_adapter, f, a, b, epsabs, epsrel, result, abserr, w, lw, iw, liw, iuser, ruser);
}

void d01auf::run(frame::ErrorBuffer& err, vek_d01auf_f_adapter f_adapter, vek_d01auf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr, double* w,
                 const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  integrate<d01auf>(err, std::min(*lw / 4, *liw), with_rule(zeros_quad::kKronrod61, zeros_quad::integrate_plain),
                    d01auf_fh_, f_adapter, f, a, b, epsabs, epsrel, result, abserr, w, lw, iw, liw, iuser, ruser);
}

}  // namespace vek::routines
