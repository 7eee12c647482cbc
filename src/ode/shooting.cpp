// Shooting to a matching point. The unknowns p are the estimated components of y(a), in index order, then
// those of y(b); there are n of them, as many as the matching conditions y_forward(xm) = y_backward(xm).
//
// The Jacobian of the matching residual is found by internal numerical differentiation: each unknown
// component is perturbed in a copy of the system, and all copies of one direction are integrated together
// as one system, so that they share the integrator's steps. The difference quotients are then differences of
// one smooth discrete map, free of the noise that separately chosen step sequences would add, at the cost of
// integrating n + 2 copies in all. The Newton step is damped by halving until the residual's 2-norm falls
// (Armijo's test with slope 1e-4), or the residual is within the tolerance.
#include "ode/shooting.h"

#include <algorithm>
#include <cmath>

#include "frame/constants.h"
#include "ode/dormand_prince.h"
#include "ode/elimination.h"

namespace vek::ode {
namespace {

constexpr double kArmijoSlope = 1e-4;
constexpr double kSmallestDamping = 1.0 / 1024;

// Where one integration of the copies ended, for the Newton iteration.
struct Pass {
  Outcome outcome = Outcome::reached;
  double x = 0.0;
};

class Shooter {
 public:
  Shooter(const BoundaryProblem& problem, const ShootingControls& controls, RightHandSide f,
          std::span<double> work)
      : pb_(problem), f_(f), max_calls_(controls.max_calls) {
    n_ = static_cast<int64_t>(pb_.u.size());
    for (int64_t i = 0; i < n_; ++i) unknown_u_ += pb_.known_u[i] == 1 ? 0 : 1;
    unknown_v_ = n_ - unknown_u_;
    const double tol = std::max(controls.tol, 1000 * constants::eps());
    tol_ = tol;
    integration_ = Tolerance{tol / 10, tol / 10};
    // The workspace, as shooting_work_size counts it.
    const size_t n = static_cast<size_t>(n_);
    double* w = work.data();
    jacobian_ = w, w += n * n;
    residual_ = w, w += n;
    step_ = w, w += n;
    p_ = w, w += n;
    trial_ = w, w += n;
    forward_ = w, w += n * static_cast<size_t>(unknown_u_ + 1);
    backward_ = w, w += n * static_cast<size_t>(unknown_v_ + 1);
    stages_ = std::span<double>(w, dp54_work_size(n * static_cast<size_t>(std::max(unknown_u_, unknown_v_) + 1)));
  }

  ShootingResult solve(int64_t max_iterations) {
    gather(p_);
    ShootingResult out;
    const Pass first = evaluate(p_);
    if (first.outcome != Outcome::reached) return finish(out, first);
    accepted_residual_ = largest_residual_;
    for (;;) {
      if (out.iterations == max_iterations) {
        out.status = ShootingStatus::not_converged;
        return finish(out);
      }
      ++out.iterations;
      for (int64_t i = 0; i < n_; ++i) step_[i] = -residual_[i];
      if (!solve_in_place(n_, jacobian_, step_)) {
        out.status = ShootingStatus::singular;
        return finish(out);
      }
      double change = 0.0;
      for (int64_t i = 0; i < n_; ++i) change = std::max(change, std::abs(step_[i]) / std::max(1.0, std::abs(p_[i])));
      if (change <= tol_) {
        for (int64_t i = 0; i < n_; ++i) p_[i] += step_[i];
        return finish(out);
      }
      // Damped step: halve until the residual falls enough, or give up.
      const double merit = norm2(residual_);
      Pass failed;
      double damping = 1.0;
      for (;;) {
        for (int64_t i = 0; i < n_; ++i) trial_[i] = p_[i] + damping * step_[i];
        const Pass pass = evaluate(trial_);
        if (pass.outcome == Outcome::too_many_evaluations) return finish(out, pass);
        if (pass.outcome == Outcome::reached &&
            (norm2(residual_) <= (1 - kArmijoSlope * damping) * merit || within_tolerance()))
          break;
        if (pass.outcome != Outcome::reached) failed = pass;
        damping /= 2;
        if (damping < kSmallestDamping) {
          if (failed.outcome != Outcome::reached) return finish(out, failed);
          out.status = ShootingStatus::no_descent;
          return finish(out);
        }
      }
      std::copy(trial_, trial_ + n_, p_);
      accepted_residual_ = largest_residual_;
    }
  }

 private:
  // The unknowns from u and v, and back.
  void gather(double* p) const {
    int64_t k = 0;
    for (int64_t i = 0; i < n_; ++i)
      if (pb_.known_u[i] != 1) p[k++] = pb_.u[i];
    for (int64_t i = 0; i < n_; ++i)
      if (pb_.known_v[i] != 1) p[k++] = pb_.v[i];
  }
  void scatter(const double* p) const {
    int64_t k = 0;
    for (int64_t i = 0; i < n_; ++i)
      if (pb_.known_u[i] != 1) pb_.u[i] = p[k++];
    for (int64_t i = 0; i < n_; ++i)
      if (pb_.known_v[i] != 1) pb_.v[i] = p[k++];
  }

  // Copy 0 holds the boundary values with the unknowns p; copy j >= 1 the same with the j-th unknown moved
  // by about sqrt(eps) relative. Integrates all copies from `from` to xm; column `column + j - 1` of the
  // Jacobian gets sign * (copy j - copy 0) / (its perturbation) at xm.
  Pass shoot(std::span<const double> boundary, std::span<const int64_t> known, const double* p, double from,
             double* copies, int64_t count, int64_t column, double sign) {
    const size_t n = static_cast<size_t>(n_);
    double* base = copies;
    for (int64_t i = 0, k = 0; i < n_; ++i) base[i] = known[i] == 1 ? boundary[i] : p[k++];
    // The perturbation of each copy, kept in the Jacobian's column until the differences replace it.
    for (int64_t j = 1, i = 0; j <= count - 1; ++j, ++i) {
      while (known[i] == 1) ++i;
      double* copy = copies + j * n_;
      std::copy(base, base + n, copy);
      copy[i] = base[i] + std::sqrt(constants::eps()) * std::max(1.0, std::abs(base[i]));
      jacobian_[(column + j - 1) * n_] = copy[i] - base[i];
    }
    const std::span<double> state(copies, n * static_cast<size_t>(count));
    auto system = [&](double x, const double* y, double* dy) {
      for (int64_t c = 0; c < count; ++c) f_(x, y + c * n_, dy + c * n_);
    };
    const int64_t budget = (max_calls_ - calls_) / count;
    const Integration run = integrate_dp54(system, from, pb_.xm, state, integration_,
                                           stages_.first(dp54_work_size(state.size())), budget);
    calls_ += run.evaluations * count;
    if (run.outcome != Outcome::reached) return Pass{run.outcome, run.x};
    for (int64_t j = 1; j <= count - 1; ++j) {
      double* col = jacobian_ + (column + j - 1) * n_;
      const double scale = sign / col[0];
      for (int64_t i = 0; i < n_; ++i) col[i] = (copies[j * n_ + i] - base[i]) * scale;
    }
    return Pass{};
  }

  // The residual and Jacobian at the unknowns p.
  Pass evaluate(const double* p) {
    const Pass fwd = shoot(pb_.u, pb_.known_u, p, pb_.a, forward_, unknown_u_ + 1, 0, 1.0);
    if (fwd.outcome != Outcome::reached) return fwd;
    const Pass bwd = shoot(pb_.v, pb_.known_v, p + unknown_u_, pb_.b, backward_, unknown_v_ + 1, unknown_u_, -1.0);
    if (bwd.outcome != Outcome::reached) return bwd;
    largest_residual_ = 0.0;
    for (int64_t i = 0; i < n_; ++i) {
      residual_[i] = forward_[i] - backward_[i];
      largest_residual_ = std::max(largest_residual_, std::abs(residual_[i]));
    }
    return fwd;
  }

  // Every component of the residual within tol relative to the solution's size at xm (absolute below 1).
  bool within_tolerance() const {
    for (int64_t i = 0; i < n_; ++i)
      if (!(std::abs(residual_[i]) <= tol_ * std::max(1.0, std::abs(forward_[i])))) return false;
    return true;
  }

  double norm2(const double* v) const {
    double sum = 0.0;
    for (int64_t i = 0; i < n_; ++i) sum += v[i] * v[i];
    return std::sqrt(sum);
  }

  ShootingResult& finish(ShootingResult& out, Pass failed = {}) {
    if (failed.outcome != Outcome::reached) {
      out.status = failed.outcome == Outcome::step_too_small ? ShootingStatus::step_too_small
                   : failed.outcome == Outcome::not_finite   ? ShootingStatus::not_finite
                                                             : ShootingStatus::too_many_calls;
      out.x = failed.x;
    }
    out.calls = calls_;
    out.residual = accepted_residual_;
    scatter(p_);
    return out;
  }

  const BoundaryProblem& pb_;
  RightHandSide f_;
  int64_t max_calls_;
  int64_t n_ = 0, unknown_u_ = 0, unknown_v_ = 0;
  int64_t calls_ = 0;
  double tol_ = 0.0;
  Tolerance integration_{};
  double largest_residual_ = 0.0;   // of the last evaluation
  double accepted_residual_ = 0.0;  // of the current iterate p
  double *jacobian_, *residual_, *step_, *p_, *trial_, *forward_, *backward_;
  std::span<double> stages_;
};

}  // namespace

ShootingResult solve_by_shooting(const BoundaryProblem& problem, const ShootingControls& controls, RightHandSide f,
                                 std::span<double> work) {
  Shooter shooter(problem, controls, f, work);
  return shooter.solve(controls.max_iterations);
}

}  // namespace vek::ode
