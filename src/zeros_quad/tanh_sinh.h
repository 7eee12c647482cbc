// The double-exponential (tanh-sinh) rule of Takahasi and Mori (1974) over a finite interval, with the step
// halved level by level and each level's estimate compared with the last. The integrand is given the abscissa
// and its signed offset from the nearer end, computed without cancellation, so that an end-point singularity
// can be evaluated as close to the end as doubles allow.
#pragma once

#include <cstdint>
#include <type_traits>

namespace vek::zeros_quad {

// f(x, xc): xc = x - a for x in the lower half of [a, b], x - b in the upper half.
class EndpointIntegrand {
 public:
  template <class F>
  requires(!std::is_same_v<F, EndpointIntegrand>) explicit EndpointIntegrand(F& f)
      : object_(&f), call_([](void* o, double x, double xc) { return (*static_cast<F*>(o))(x, xc); }) {}
  double operator()(double x, double xc) const { return call_(object_, x, xc); }

 private:
  void* object_;
  double (*call_)(void*, double, double);
};

// truncated: converged, but the part of the integral nearer the ends than doubles reach (abserr) is larger than
// the tolerance.
enum class TanhSinhEnd { converged, level_limit, round_off, not_finite, truncated };

struct TanhSinhOutcome {
  double result = 0.0;
  double abserr = 0.0;
  int64_t evaluations = 0;
  int levels = 0;  // step halvings done
  TanhSinhEnd end = TanhSinhEnd::converged;
  double bad_x = 0.0, bad_xc = 0.0;  // not_finite: where
};

// The largest number of step halvings (the step from 1 down to 2^-12, at most about 50 000 evaluations).
inline constexpr int kTanhSinhMaxLevel = 12;

// The integral of f over [a, b] (finite; b < a gives the negated integral) to max(|epsabs|, |epsrel| |I|).
TanhSinhOutcome integrate_tanh_sinh(EndpointIntegrand f, double a, double b, double epsabs, double epsrel);

}  // namespace vek::zeros_quad
