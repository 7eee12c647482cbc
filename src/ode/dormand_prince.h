// The embedded Runge-Kutta pair of Dormand and Prince, order 5 with an order-4 error estimate, with
// step-size control: the integrator that the ODE routines share. A system y' = f(x, y) of n equations is
// integrated from x0 to x1 (either direction) in the caller's y, with storage from the caller; the
// right-hand side is any callable f(x, y, dy) writing n derivatives. The kernel never allocates, prints or
// stops: it returns what happened and where.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "frame/constants.h"

namespace vek::ode {

// The coefficients: J. R. Dormand and P. J. Prince, "A family of embedded Runge-Kutta formulae", J. Comput.
// Appl. Math. 6 (1980) 19-26, as tabulated in Hairer, Norsett and Wanner, "Solving Ordinary Differential
// Equations I", Table II.5.2. The seventh stage is f at the order-5 result (first same as last), so an
// accepted step costs six evaluations. kE holds b - b*, the weights of the order-5 result minus those of
// the order-4 one.
namespace dp54 {
inline constexpr double kC2 = 1.0 / 5, kC3 = 3.0 / 10, kC4 = 4.0 / 5, kC5 = 8.0 / 9;
inline constexpr double kA21 = 1.0 / 5;
inline constexpr double kA31 = 3.0 / 40, kA32 = 9.0 / 40;
inline constexpr double kA41 = 44.0 / 45, kA42 = -56.0 / 15, kA43 = 32.0 / 9;
inline constexpr double kA51 = 19372.0 / 6561, kA52 = -25360.0 / 2187, kA53 = 64448.0 / 6561,
                        kA54 = -212.0 / 729;
inline constexpr double kA61 = 9017.0 / 3168, kA62 = -355.0 / 33, kA63 = 46732.0 / 5247, kA64 = 49.0 / 176,
                        kA65 = -5103.0 / 18656;
inline constexpr double kB1 = 35.0 / 384, kB3 = 500.0 / 1113, kB4 = 125.0 / 192, kB5 = -2187.0 / 6784,
                        kB6 = 11.0 / 84;
inline constexpr double kE1 = 71.0 / 57600, kE3 = -71.0 / 16695, kE4 = 71.0 / 1920, kE5 = -17253.0 / 339200,
                        kE6 = 22.0 / 525, kE7 = -1.0 / 40;
}  // namespace dp54

// Mixed error test per component: |error_i| <= absolute + relative * max(|y_i| before, |y_i| after), in
// the root-mean-square norm over the components. absolute > 0, relative >= 0.
struct Tolerance {
  double relative;
  double absolute;
};

enum class Outcome {
  reached,               // y holds y(x1)
  step_too_small,        // the step needed fell below 16 eps times the size of x
  too_many_evaluations,  // the evaluation budget ran out
  not_finite,            // f returned a value that is not finite, and no smaller step avoided it
};

struct Integration {
  Outcome outcome = Outcome::reached;
  double x = 0.0;           // x1 when reached, else where the integration stopped (or met the bad value)
  int64_t evaluations = 0;  // calls of f
  int64_t accepted = 0;     // steps
  int64_t rejected = 0;
};

// Doubles of storage the integrator needs for n equations: the seven stages and one trial vector.
constexpr size_t dp54_work_size(size_t n) { return 8 * n; }

namespace detail {

inline bool all_finite(const double* v, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (!std::isfinite(v[i])) return false;
  return true;
}

// Root-mean-square of v / (absolute + relative |y|), for the size of the first step.
inline double scaled_norm(const double* v, const double* y, size_t n, Tolerance tol) {
  double sum = 0.0;
  for (size_t i = 0; i < n; ++i) {
    const double r = v[i] / (tol.absolute + tol.relative * std::abs(y[i]));
    sum += r * r;
  }
  return std::sqrt(sum / static_cast<double>(n));
}

}  // namespace detail

// Integrates y' = f(x, y) from x0 to x1 in y (n = y.size() >= 1), with work.size() >= dp54_work_size(n)
// and at most max_evaluations calls of f. The first step is chosen from f at x0 and one trial evaluation
// (Hairer, Norsett and Wanner, II.4); each next step from the error estimate err of the last one, by the
// factor 0.9 err^(-1/5) kept within [0.2, 10] (at most 1 right after a rejection). A step whose stages are
// not all finite is rejected as if its error were huge: if that goes on until the step is too small, the
// outcome is not_finite at the stage's x.
template <class F>
Integration integrate_dp54(F&& f, double x0, double x1, std::span<double> y, Tolerance tol, std::span<double> work,
                           int64_t max_evaluations) {
  using namespace dp54;
  const size_t n = y.size();
  Integration out;
  out.x = x0;
  if (x0 == x1) return out;
  double* k1 = work.data();
  double* k2 = k1 + n;
  double* k3 = k2 + n;
  double* k4 = k3 + n;
  double* k5 = k4 + n;
  double* k6 = k5 + n;
  double* k7 = k6 + n;
  double* yt = k7 + n;  // stage arguments, then the order-5 result
  double* y0 = y.data();
  const double direction = x1 > x0 ? 1.0 : -1.0;
  const double span = std::abs(x1 - x0);
  auto eval = [&](double x, const double* arg, double* dy) -> bool {
    if (out.evaluations >= max_evaluations) {
      out.outcome = Outcome::too_many_evaluations;
      out.x = x;
      return false;
    }
    ++out.evaluations;
    f(x, arg, dy);
    return true;
  };

  // f at the start, then the initial step from its size and from one trial step.
  if (!eval(x0, y0, k1)) return out;
  if (!detail::all_finite(y0, n) || !detail::all_finite(k1, n)) {
    out.outcome = Outcome::not_finite;
    return out;
  }
  double h;
  {
    const double d0 = detail::scaled_norm(y0, y0, n, tol);
    const double d1 = detail::scaled_norm(k1, y0, n, tol);
    double h0 = (d0 < 1e-5 || d1 < 1e-5) ? 1e-6 : 0.01 * d0 / d1;
    h0 = std::min(h0, span);
    for (size_t i = 0; i < n; ++i) yt[i] = y0[i] + direction * h0 * k1[i];
    if (!eval(x0 + direction * h0, yt, k2)) return out;
    for (size_t i = 0; i < n; ++i) k3[i] = k2[i] - k1[i];
    const double d2 = detail::scaled_norm(k3, y0, n, tol) / h0;
    const double dmax = std::max(d1, d2);
    const double h1 = std::isfinite(dmax) ? (dmax <= 1e-15 ? std::max(1e-6, h0 * 1e-3) : std::pow(0.01 / dmax, 0.2))
                                          : h0 * 1e-3;
    h = std::min({100 * h0, h1, span});
  }

  double x = x0;
  bool rejected_last = false;
  bool bad_values = false;  // the last rejection was for a value that is not finite
  double bad_x = x0;
  for (;;) {
    const bool last = h >= std::abs(x1 - x) * (1 - 4 * constants::eps());
    if (!last && h < 16 * constants::eps() * std::max(std::abs(x), span)) {
      out.outcome = bad_values ? Outcome::not_finite : Outcome::step_too_small;
      out.x = bad_values ? bad_x : x;
      return out;
    }
    const double hs = last ? x1 - x : direction * h;  // signed; the last step lands exactly on x1
    const double x_end = last ? x1 : x + hs;
    double* const k[] = {k2, k3, k4, k5, k6, k7};
    const double xk[] = {x + kC2 * hs, x + kC3 * hs, x + kC4 * hs, x + kC5 * hs, x_end, x_end};

    for (size_t i = 0; i < n; ++i) yt[i] = y0[i] + hs * kA21 * k1[i];
    if (!eval(xk[0], yt, k2)) return out;
    for (size_t i = 0; i < n; ++i) yt[i] = y0[i] + hs * (kA31 * k1[i] + kA32 * k2[i]);
    if (!eval(xk[1], yt, k3)) return out;
    for (size_t i = 0; i < n; ++i) yt[i] = y0[i] + hs * (kA41 * k1[i] + kA42 * k2[i] + kA43 * k3[i]);
    if (!eval(xk[2], yt, k4)) return out;
    for (size_t i = 0; i < n; ++i)
      yt[i] = y0[i] + hs * (kA51 * k1[i] + kA52 * k2[i] + kA53 * k3[i] + kA54 * k4[i]);
    if (!eval(xk[3], yt, k5)) return out;
    for (size_t i = 0; i < n; ++i)
      yt[i] = y0[i] + hs * (kA61 * k1[i] + kA62 * k2[i] + kA63 * k3[i] + kA64 * k4[i] + kA65 * k5[i]);
    if (!eval(xk[4], yt, k6)) return out;
    for (size_t i = 0; i < n; ++i)
      yt[i] = y0[i] + hs * (kB1 * k1[i] + kB3 * k3[i] + kB4 * k4[i] + kB5 * k5[i] + kB6 * k6[i]);
    if (!eval(xk[5], yt, k7)) return out;

    double sum = 0.0;
    for (size_t i = 0; i < n; ++i) {
      const double e = hs * (kE1 * k1[i] + kE3 * k3[i] + kE4 * k4[i] + kE5 * k5[i] + kE6 * k6[i] + kE7 * k7[i]);
      const double r = e / (tol.absolute + tol.relative * std::max(std::abs(y0[i]), std::abs(yt[i])));
      sum += r * r;
    }
    const double err = std::sqrt(sum / static_cast<double>(n));
    if (err <= 1.0) {
      std::copy(yt, yt + n, y0);
      std::swap(k1, k7);  // f at the new point starts the next step
      x = x_end;
      ++out.accepted;
      if (last) {
        out.x = x1;
        return out;
      }
      const double grow = err == 0.0 ? 10.0 : std::clamp(0.9 * std::pow(err, -0.2), 0.2, 10.0);
      h = std::abs(hs) * (rejected_last ? std::min(grow, 1.0) : grow);
      rejected_last = bad_values = false;
      continue;
    }
    // Rejected: a NaN error (or an infinite one from a stage that is not finite) shrinks the step the most,
    // and a stage that is not finite is remembered with its x.
    ++out.rejected;
    rejected_last = true;
    bad_values = false;
    for (int s = 0; s < 6 && !bad_values; ++s) {
      if (!detail::all_finite(k[s], n)) {
        bad_values = true;
        bad_x = xk[s];
      }
    }
    const double shrink = err < HUGE_VAL ? std::clamp(0.9 * std::pow(err, -0.2), 0.2, 1.0) : 0.2;
    h = std::abs(hs) * shrink;
  }
}

}  // namespace vek::ode
