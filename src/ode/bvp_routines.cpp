// Body of D02HAF: the checks the declaration cannot state (finite ends, the indicator arrays, the count of
// known values, finite boundary values), in that order after the declared ones, then the shooting kernel
// with the user's FCN called through the adapter the entry passes. IUSER and RUSER go to FCN untouched.
#include <cmath>

#include "layers/d02.h"
#include "ode/shooting.h"

namespace vek::routines {

void d02haf::run(frame::ErrorBuffer& err, double* u, const int64_t* iu, double* v, const int64_t* iv,
                 const int64_t* n, const double* a, const double* b, const double* xm, const double* tol,
                 vek_d02haf_fcn_adapter fcn_adapter, vek_d02haf_fcn_fn fcn, const int64_t* maxit,
                 const int64_t* maxcal, int64_t* iuser, double* ruser, double* w, const int64_t* lw) {
  if (!std::isfinite(*a) || !std::isfinite(*b)) return err.fail(ends_infinite, *a, *b);
  const int64_t count = *n;
  for (int64_t i = 0; i < count; ++i)
    if (iu[i] != 0 && iu[i] != 1) return err.fail(iu_invalid, i + 1, iu[i]);
  for (int64_t i = 0; i < count; ++i)
    if (iv[i] != 0 && iv[i] != 1) return err.fail(iv_invalid, i + 1, iv[i]);
  int64_t known = 0;
  for (int64_t i = 0; i < count; ++i) known += iu[i] + iv[i];
  if (known != count) return err.fail(known_count, count, known);
  for (int64_t i = 0; i < count; ++i)
    if (!std::isfinite(u[i])) return err.fail(u_not_finite, i + 1, u[i]);
  for (int64_t i = 0; i < count; ++i)
    if (!std::isfinite(v[i])) return err.fail(v_not_finite, i + 1, v[i]);

  const auto size = static_cast<size_t>(count);
  auto system = [&](double x, const double* y, double* f) { fcn_adapter(fcn, &x, y, f, iuser, ruser); };
  const ode::BoundaryProblem problem{*a, *b, *xm, {u, size}, {v, size}, {iu, size}, {iv, size}};
  const ode::ShootingResult r = ode::solve_by_shooting(problem, {*tol, *maxit, *maxcal}, ode::RightHandSide(system),
                                                       {w, static_cast<size_t>(*lw)});
  // What the caller may want to know of the run, in the first elements of the workspace.
  w[0] = r.residual;
  w[1] = static_cast<double>(r.iterations);
  w[2] = static_cast<double>(r.calls);
  switch (r.status) {
    case ode::ShootingStatus::converged: return;
    case ode::ShootingStatus::not_converged: return err.fail(not_converged, *maxit, r.residual);
    case ode::ShootingStatus::singular: return err.fail(singular, r.iterations);
    case ode::ShootingStatus::no_descent: return err.fail(no_descent, r.residual, r.iterations);
    case ode::ShootingStatus::step_too_small: return err.fail(step_too_small, r.x);
    case ode::ShootingStatus::too_many_calls: return err.fail(too_many_calls, *maxcal, r.x);
    case ode::ShootingStatus::not_finite: return err.fail(fcn_not_finite, r.x);
  }
}

}  // namespace vek::routines
