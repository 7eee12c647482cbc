// Two-point boundary-value problems y' = f(x, y) on [a, b] by shooting to a matching point: some
// components of y(a) and some of y(b) are known, the others are found by a damped Newton iteration that
// makes the solution integrated forward from a and the one integrated backward from b meet at xm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace vek::ode {

// The user's right-hand side f(x, y) -> dy for one copy of the system, called by reference without owning
// the callable.
class RightHandSide {
 public:
  template <class F>
    requires(!std::is_same_v<std::remove_cv_t<F>, RightHandSide>)  // copies stay copies
  explicit RightHandSide(F& f) : object_(&f), call_(&invoke<F>) {}
  void operator()(double x, const double* y, double* dy) const { call_(object_, x, y, dy); }

 private:
  template <class F>
  static void invoke(void* object, double x, const double* y, double* dy) {
    (*static_cast<F*>(object))(x, y, dy);
  }
  void* object_;
  void (*call_)(void*, double, const double*, double*);
};

// The problem: n equations on [a, b] (a != b, both finite, xm between them). u and v hold y(a) and y(b);
// where known_u[i] (known_v[i]) is 1 the value is given and kept, elsewhere it is an estimate that the
// solver improves. The known values number n in all.
struct BoundaryProblem {
  double a, b, xm;
  std::span<double> u, v;
  std::span<const int64_t> known_u, known_v;
};

struct ShootingControls {
  double tol;              // accuracy asked of the boundary values (raised to 1000 eps at least)
  int64_t max_iterations;  // Newton steps
  int64_t max_calls;       // calls of f for one copy of the system
};

enum class ShootingStatus {
  converged,
  not_converged,     // max_iterations Newton steps made
  singular,          // the Jacobian of the matching conditions is singular to working precision
  no_descent,        // no damped Newton step reduces the matching residual
  step_too_small,    // the integrator could not go on at x
  too_many_calls,    // max_calls reached
  not_finite,        // f returned a value that is not finite at x
};

struct ShootingResult {
  ShootingStatus status = ShootingStatus::converged;
  int64_t iterations = 0;  // Newton steps made
  int64_t calls = 0;       // calls of f
  double residual = 0.0;   // largest |y_forward(xm) - y_backward(xm)| at the last accepted iterate
  double x = 0.0;          // where an integration failed
};

// Doubles of workspace for n equations: 10 n^2 + 14 n.
constexpr size_t shooting_work_size(size_t n) { return n * (10 * n + 14); }

// Solves the problem; work.size() >= shooting_work_size(n). On return u and v hold the last accepted
// boundary values (the solution when converged).
ShootingResult solve_by_shooting(const BoundaryProblem& problem, const ShootingControls& controls,
                                 RightHandSide f, std::span<double> work);

}  // namespace vek::ode
