// Bodies of d01amf (infinite ranges, QUADPACK's dqagie), d01aqf (Cauchy principal value, dqawce), d01apf
// (algebraico-logarithmic end-point weights, dqawse) and d01bdf (the non-adaptive Patterson rules, dqng), as GSL
// transcribes them (d01.decl). The declared checks have passed: for the adaptive ones LIMIT = min(LW/4, LIW) is
// at least 1 (at least 2 for d01apf), and W and IW are packed and sorted on every exit with a result.
#include <algorithm>
#include <cstdint>

#include "layers/d01.h"
#include "zeros_quad/patterson.h"
#include "zeros_quad/quadrature_body.h"
#include "zeros_quad/weighted_quadrature.h"

namespace vek::routines {

// The range is mapped onto (0, 1] by x = BOUND + (1-t)/t (INF = 1) or BOUND - (1-t)/t (INF = -1), dx = dt/t^2;
// for INF = 2, BOUND = 0 and f(x) + f(-x) is integrated over (0, inf). The intervals in W are those of t.
void d01amf::run(frame::ErrorBuffer& err, vek_d01amf_f_adapter f_adapter, vek_d01amf_f_fn f, const double* bound,
                 const int64_t* inf, const double* epsabs, const double* epsrel, double* result, double* abserr,
                 double* w, const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser, double* ruser) {
  const bool both = *inf == 2;
  const double origin = both ? 0.0 : *bound, sense = *inf == -1 ? -1.0 : 1.0;
  auto integrate = [&](auto& fx, zeros_quad::IntervalList& list) {
    auto transformed = [&](double t) {
      const double x = (1.0 - t) / t;
      const double y = both ? fx(x) + fx(-x) : fx(origin + sense * x);
      return (y / t) / t;
    };
    auto rule = [&](double s, double u) { return zeros_quad::apply_rule(zeros_quad::kKronrod15, transformed, s, u); };
    return zeros_quad::integrate_extrapolated(zeros_quad::RuleOnInterval(rule), 0.0, 1.0, {*epsabs, *epsrel}, list);
  };
  zeros_quad::run_adaptive<d01amf>(err, std::min(*lw / 4, *liw), d01amf_fh_, f_adapter, f, iuser, ruser, integrate,
                                   epsabs, epsrel, result, abserr, w, lw, iw, liw);
}

// Integrated over [min(A,B), max(A,B)], the result negated when B < A.
void d01aqf::run(frame::ErrorBuffer& err, vek_d01aqf_f_adapter f_adapter, vek_d01aqf_f_fn f, const double* a,
                 const double* b, const double* c, const double* epsabs, const double* epsrel, double* result,
                 double* abserr, double* w, const int64_t* lw, int64_t* iw, const int64_t* liw, int64_t* iuser,
                 double* ruser) {
  const double lo = std::min(*a, *b), hi = std::max(*a, *b), pole = *c;
  auto integrate = [&](auto& fx, zeros_quad::IntervalList& list) {
    auto rule = [&](double s, double u) { return zeros_quad::cauchy_rule(fx, s, u, pole); };
    zeros_quad::QuadratureOutcome out =
        zeros_quad::integrate_cauchy(zeros_quad::RuleOnInterval(rule), lo, hi, pole, {*epsabs, *epsrel}, list);
    if (*b < *a) out.result = -out.result;
    return out;
  };
  zeros_quad::run_adaptive<d01aqf>(err, std::min(*lw / 4, *liw), d01aqf_fh_, f_adapter, f, iuser, ruser, integrate,
                                   epsabs, epsrel, result, abserr, w, lw, iw, liw);
}

void d01apf::run(frame::ErrorBuffer& err, vek_d01apf_f_adapter f_adapter, vek_d01apf_f_fn f, const double* a,
                 const double* b, const double* alfa, const double* beta, const int64_t* key, const double* epsabs,
                 const double* epsrel, double* result, double* abserr, double* w, const int64_t* lw, int64_t* iw,
                 const int64_t* liw, int64_t* iuser, double* ruser) {
  const zeros_quad::EndpointWeight weight = zeros_quad::endpoint_weight(*a, *b, *alfa, *beta, *key);
  auto integrate = [&](auto& fx, zeros_quad::IntervalList& list) {
    auto rule = [&](double s, double u) { return zeros_quad::endpoint_rule(fx, weight, s, u); };
    return zeros_quad::integrate_endpoint_weight(zeros_quad::RuleOnInterval(rule), *a, *b, {*epsabs, *epsrel}, list);
  };
  zeros_quad::run_adaptive<d01apf>(err, std::min(*lw / 4, *liw), d01apf_fh_, f_adapter, f, iuser, ruser, integrate,
                                   epsabs, epsrel, result, abserr, w, lw, iw, liw);
}

void d01bdf::run(frame::ErrorBuffer& err, vek_d01bdf_f_adapter f_adapter, vek_d01bdf_f_fn f, const double* a,
                 const double* b, const double* epsabs, const double* epsrel, double* result, double* abserr,
                 int64_t* iuser, double* ruser) {
  const zeros_quad::PattersonOutcome out =
      zeros_quad::with_user_integrand(d01bdf_fh_, f_adapter, f, iuser, ruser, [&](auto& fx) {
        return zeros_quad::integrate_patterson(fx, *a, *b, {*epsabs, *epsrel});
      });
  *result = out.result;
  *abserr = out.abserr;
  if (!out.converged) err.fail(not_reached, *epsabs, *epsrel);
}

}  // namespace vek::routines
