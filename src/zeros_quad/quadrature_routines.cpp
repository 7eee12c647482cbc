// Bodies of the D01 integrators over a finite interval (d01.decl): d01ajf (21-point rule, extrapolation),
// d01alf (the same from given break-points) and d01akf (61-point rule, no extrapolation). For d01ajf and d01akf
// the declared workspace checks have passed, so LIMIT = min(LW/4, LIW) >= 1; d01alf checks its own workspace.
// F is called through the adapter the entry passed, with IUSER and RUSER as given; on every exit with a
// result the subintervals are packed and sorted in W and IW (interval_list.h).
#include <algorithm>
#include <cstdint>
#include <vector>

#include "layers/d01.h"
#include "zeros_quad/adaptive_quadrature.h"
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

}  // namespace vek::routines
