// The hybrid method's stepper (hybrid.h). Each function of the form after_* takes up the run where the request
// it names was answered and returns the next request.
#include "zeros_quad/hybrid.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "zeros_quad/hybrid_linalg.h"

namespace vek::zeros_quad {

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon();

// The request a run is waiting on (int_state[0]).
enum class Stage : int64_t { initial_value = 1, difference, jacobian_value, monitor, trial_value, finished };

// Named views of the two state arrays.
class Counters {
 public:
  explicit Counters(int64_t* c) : c_(c) {}
  Stage stage() const { return static_cast<Stage>(c_[0]); }
  void set_stage(Stage s) const { c_[0] = static_cast<int64_t>(s); }
  int64_t& nfev() const { return c_[1]; }
  int64_t& njev() const { return c_[2]; }
  int64_t& iter() const { return c_[3]; }
  int64_t& successes() const { return c_[4]; }    // consecutive steps with ratio >= 0.1
  int64_t& failures() const { return c_[5]; }     // consecutive steps with ratio < 0.1
  int64_t& slow_steps() const { return c_[6]; }   // steps since ||f|| last fell by 0.1%
  int64_t& slow_jacobians() const { return c_[7]; }  // Jacobians since a step after one cut ||f|| by 10%
  int64_t& fresh_jacobian() const { return c_[8]; }  // 1 while no Broyden update followed the last Jacobian
  int64_t& group() const { return c_[9]; }        // the column group being differenced
  int64_t& outcome() const { return c_[10]; }

 private:
  int64_t* c_;
};

struct RealState {
  RealState(double* w, int64_t n)
      : delta(w[0]), fnorm(w[1]), xnorm(w[2]), pnorm(w[3]), best_x(w + 4), best_f(w + 4 + n),
        step(w + 4 + 2 * n), wa2(w + 4 + 3 * n), wa3(w + 4 + 4 * n) {}
  double& delta;   // the trust region radius
  double& fnorm;   // ||f(best_x)||
  double& xnorm;   // ||diag best_x||
  double& pnorm;   // ||diag step||
  double* best_x;  // the best point so far and f there
  double* best_f;
  double* step;    // the step on trial
  double* wa2;     // scratch
  double* wa3;
};

bool all_finite(int64_t n, const double* v) {
  return std::all_of(v, v + n, [](double t) { return std::isfinite(t); });
}

// The number of column groups for differencing: the pattern's, or for a band such that columns j and
// j + groups never share a row of it.
int64_t difference_groups(const HybridArrays& a, const HybridSettings& s) {
  const int64_t n = a.n;
  if (s.groups != nullptr) return s.groups->count;
  if (s.ml >= n - 1 || s.mu >= n - 1) return n;
  return std::min(s.ml + s.mu + 1, n);
}

// Calls column(j) for every column of the group being differenced.
template <class Column>
void for_each_in_group(const HybridArrays& a, const HybridSettings& s, int64_t group, Column&& column) {
  if (s.groups != nullptr) {
    for (int64_t j = 0; j < a.n; ++j)
      if (s.groups->group_of[j] == group) column(j);
    return;
  }
  for (int64_t j = group; j < a.n; j += difference_groups(a, s)) column(j);
}

double difference_scale(const HybridSettings& s) { return std::sqrt(s.epsfcn > kEps ? s.epsfcn : kEps); }

double difference_step(double eps, double xj) {
  const double h = eps * std::abs(xj);
  return h == 0.0 ? eps : h;
}

void show_best(const HybridArrays& a, const RealState& w) {
  std::copy(w.best_x, w.best_x + a.n, a.x);
  std::copy(w.best_f, w.best_f + a.n, a.fvec);
}

HybridRequest finish(const HybridArrays& a, HybridOutcome outcome) {
  const Counters c(a.int_state);
  show_best(a, RealState(a.real_state, a.n));
  c.outcome() = static_cast<int64_t>(outcome);
  c.set_stage(Stage::finished);
  return HybridRequest::finished;
}

HybridRequest ask_difference(const HybridArrays& a, const HybridSettings& s) {
  const Counters c(a.int_state);
  const RealState w(a.real_state, a.n);
  const double eps = difference_scale(s);
  std::copy(w.best_x, w.best_x + a.n, a.x);
  for_each_in_group(a, s, c.group(), [&](int64_t j) { a.x[j] = w.best_x[j] + difference_step(eps, w.best_x[j]); });
  c.set_stage(Stage::difference);
  return HybridRequest::function;
}

HybridRequest ask_jacobian(const HybridArrays& a, const HybridSettings& s) {
  const Counters c(a.int_state);
  c.fresh_jacobian() = 1;
  if (!s.user_jacobian) {
    c.group() = 0;
    return ask_difference(a, s);
  }
  show_best(a, RealState(a.real_state, a.n));
  ++c.njev();
  c.set_stage(Stage::jacobian_value);
  return HybridRequest::jacobian;
}

HybridRequest ask_monitor(const HybridArrays& a) {
  show_best(a, RealState(a.real_state, a.n));
  Counters(a.int_state).set_stage(Stage::monitor);
  return HybridRequest::monitor;
}

// The Jacobian in fjac is complete: Q R, the scaling, the first radius, Q^T f; then the first step.
HybridRequest factorize(const HybridArrays& a, const HybridSettings& s) {
  const int64_t n = a.n;
  const Counters c(a.int_state);
  const RealState w(a.real_state, n);
  if (!all_finite(n * n, a.fjac)) return finish(a, HybridOutcome::not_finite);
  double* rdiag = w.step;
  double* column_norms = w.wa2;
  householder_qr(n, a.fjac, rdiag, column_norms);
  if (c.iter() == 1) {
    if (!s.scale_given)
      for (int64_t j = 0; j < n; ++j) a.diag[j] = column_norms[j] == 0.0 ? 1.0 : column_norms[j];
    for (int64_t j = 0; j < n; ++j) w.wa3[j] = a.diag[j] * w.best_x[j];
    w.xnorm = euclidean_norm(n, w.wa3);
    w.delta = s.factor * w.xnorm;
    if (w.delta == 0.0) w.delta = s.factor;
  }
  // Q^T f, one reflection at a time.
  std::copy(w.best_f, w.best_f + n, a.qtf);
  for (int64_t j = 0; j < n; ++j) {
    const double* aj = a.fjac + j * n;
    if (aj[j] == 0.0) continue;
    double sum = 0.0;
    for (int64_t i = j; i < n; ++i) sum += aj[i] * a.qtf[i];
    const double t = -sum / aj[j];
    for (int64_t i = j; i < n; ++i) a.qtf[i] += aj[i] * t;
  }
  for (int64_t i = 0; i < n; ++i) {
    double* row = a.r + packed_diagonal(n, i);
    row[0] = rdiag[i];
    for (int64_t j = i + 1; j < n; ++j) row[j - i] = a.fjac[i + j * n];
  }
  form_q(n, a.fjac, w.wa3);
  if (!s.scale_given)
    for (int64_t j = 0; j < n; ++j) a.diag[j] = std::max(a.diag[j], column_norms[j]);
  return ask_monitor(a);
}

HybridRequest after_initial(const HybridArrays& a, const HybridSettings& s) {
  const Counters c(a.int_state);
  const RealState w(a.real_state, a.n);
  c.nfev() = 1;
  std::copy(a.x, a.x + a.n, w.best_x);
  std::copy(a.fvec, a.fvec + a.n, w.best_f);
  if (!all_finite(a.n, a.x) || !all_finite(a.n, a.fvec)) return finish(a, HybridOutcome::not_finite);
  w.fnorm = euclidean_norm(a.n, w.best_f);
  c.iter() = 1;
  return ask_jacobian(a, s);
}

// fvec holds f at the differenced point of the current group: its columns of the Jacobian.
HybridRequest after_difference(const HybridArrays& a, const HybridSettings& s) {
  const int64_t n = a.n;
  const Counters c(a.int_state);
  const RealState w(a.real_state, n);
  ++c.nfev();
  const double eps = difference_scale(s);
  const int64_t groups = difference_groups(a, s);
  for_each_in_group(a, s, c.group(), [&](int64_t j) {
    const double h = difference_step(eps, w.best_x[j]);
    double* column = a.fjac + j * n;
    auto difference = [&](int64_t i) { column[i] = (a.fvec[i] - w.best_f[i]) / h; };
    if (s.groups != nullptr) {
      std::fill(column, column + n, 0.0);
      for (int64_t k = s.groups->column_start[j]; k < s.groups->column_start[j + 1]; ++k) difference(s.groups->rows[k]);
      return;
    }
    for (int64_t i = 0; i < n; ++i) {
      if (groups == n || (i >= j - s.mu && i <= j + s.ml)) difference(i);
      else column[i] = 0.0;
    }
  });
  if (++c.group() < groups) return ask_difference(a, s);
  return factorize(a, s);
}

// The dogleg step from the best point; f is asked for there.
HybridRequest take_step(const HybridArrays& a) {
  const int64_t n = a.n;
  const Counters c(a.int_state);
  const RealState w(a.real_state, n);
  dogleg(n, a.r, a.diag, a.qtf, w.delta, w.step, w.wa2, w.wa3);
  for (int64_t j = 0; j < n; ++j) {
    w.step[j] = -w.step[j];
    a.x[j] = w.best_x[j] + w.step[j];
    w.wa3[j] = a.diag[j] * w.step[j];
  }
  w.pnorm = euclidean_norm(n, w.wa3);
  if (c.iter() == 1) w.delta = std::min(w.delta, w.pnorm);
  c.set_stage(Stage::trial_value);
  return HybridRequest::function;
}

// Whether a radius down to XTOL ||diag x|| has found a zero: the residual may be no larger than the linear model
// f + J p can remove with a step of that size, ||f|| <= ||R diag^-1||_F XTOL ||diag x|| (a factor 10 spares the
// Broyden-updated R). At a zero this holds with room to spare; at a minimum of ||f|| where the Jacobian is
// singular the radius collapses just the same, but f is not small.
bool residual_small(const HybridArrays& a, const RealState& w, double xtol) {
  const int64_t n = a.n;
  for (int64_t j = 0; j < n; ++j) {
    for (int64_t i = 0; i <= j; ++i) w.wa2[i] = a.r[packed_diagonal(n, i) + j - i];
    w.wa3[j] = euclidean_norm(j + 1, w.wa2) / a.diag[j];
  }
  return w.fnorm <= 10.0 * euclidean_norm(n, w.wa3) * (xtol * w.xnorm);
}

// Broyden's update of Q R towards the secant condition J step = f(trial) - f(best), and of Q^T f.
void broyden_update(const HybridArrays& a, const RealState& w, bool accepted) {
  const int64_t n = a.n;
  for (int64_t j = 0; j < n; ++j) {
    const double* qj = a.fjac + j * n;
    double sum = 0.0;
    for (int64_t i = 0; i < n; ++i) sum += qj[i] * a.fvec[i];
    w.wa2[j] = (sum - w.wa3[j]) / w.pnorm;
    w.step[j] = a.diag[j] * ((a.diag[j] * w.step[j]) / w.pnorm);
    if (accepted) a.qtf[j] = sum;
  }
  rank1_update(n, a.r, w.step, w.wa2, w.wa3);
  apply_rotations(n, n, a.fjac, n, w.wa2, w.wa3);
  apply_rotations(1, n, a.qtf, 1, w.wa2, w.wa3);
}

// fvec holds f at the trial point: accept or reject it, adjust the radius, test for the end, update.
HybridRequest after_trial(const HybridArrays& a, const HybridSettings& s) {
  const int64_t n = a.n;
  const Counters c(a.int_state);
  const RealState w(a.real_state, n);
  ++c.nfev();
  const double fnorm1 = euclidean_norm(n, a.fvec);
  // A step into NaN or overflow is a failed step and teaches nothing; nor does a zero step.
  const bool finite = all_finite(n, a.fvec);
  const bool updatable = finite && w.pnorm > 0.0;
  double actred = -1.0;
  if (finite && fnorm1 < w.fnorm) actred = 1.0 - (fnorm1 / w.fnorm) * (fnorm1 / w.fnorm);
  // The predicted reduction, from ||Q^T f + R step||.
  for (int64_t i = 0; i < n; ++i) {
    const double* row = a.r + packed_diagonal(n, i);
    double sum = 0.0;
    for (int64_t j = i; j < n; ++j) sum += row[j - i] * w.step[j];
    w.wa3[i] = a.qtf[i] + sum;
  }
  const double model = euclidean_norm(n, w.wa3);
  const double prered = model < w.fnorm ? 1.0 - (model / w.fnorm) * (model / w.fnorm) : 0.0;
  const double ratio = prered > 0.0 ? actred / prered : 0.0;

  if (ratio < 0.1) {
    c.successes() = 0;
    ++c.failures();
    w.delta = 0.5 * w.delta;
  } else {
    c.failures() = 0;
    ++c.successes();
    if (ratio >= 0.5 || c.successes() > 1) w.delta = std::max(w.delta, w.pnorm / 0.5);
    if (std::abs(ratio - 1.0) <= 0.1) w.delta = w.pnorm / 0.5;
  }
  const bool accepted = ratio >= 1e-4;
  if (accepted) {
    std::copy(a.x, a.x + n, w.best_x);
    std::copy(a.fvec, a.fvec + n, w.best_f);
    for (int64_t j = 0; j < n; ++j) w.wa2[j] = a.diag[j] * w.best_x[j];
    w.xnorm = euclidean_norm(n, w.wa2);
    w.fnorm = fnorm1;
    ++c.iter();
  }
  c.slow_steps() = actred >= 1e-3 ? 0 : c.slow_steps() + 1;
  if (c.fresh_jacobian() != 0) ++c.slow_jacobians();
  if (actred >= 0.1) c.slow_jacobians() = 0;

  // Convergence first; of the other endings the last in MINPACK's order (limit, rounding, slow Jacobians,
  // slow steps) is reported when several hold.
  if (w.fnorm == 0.0) return finish(a, HybridOutcome::converged);
  if (w.delta <= s.xtol * w.xnorm)
    return finish(a, residual_small(a, w, s.xtol) ? HybridOutcome::converged : HybridOutcome::not_a_root);
  if (c.slow_steps() == kSlowIterations) return finish(a, HybridOutcome::slow_iterations);
  if (c.slow_jacobians() == kSlowJacobians) return finish(a, HybridOutcome::slow_jacobians);
  if (0.1 * std::max(0.1 * w.delta, w.pnorm) <= kEps * w.xnorm) return finish(a, HybridOutcome::xtol_too_small);
  if (c.nfev() >= s.maxfev) return finish(a, HybridOutcome::too_many_calls);
  if (c.failures() == 2) return ask_jacobian(a, s);
  if (updatable) {
    broyden_update(a, w, accepted);
    c.fresh_jacobian() = 0;
  }
  return ask_monitor(a);
}

}  // namespace

HybridRequest hybrid_start(const HybridArrays& a) {
  std::fill(a.int_state, a.int_state + kHybridIntState, 0);
  Counters(a.int_state).set_stage(Stage::initial_value);
  return HybridRequest::function;
}

HybridRequest hybrid_resume(const HybridArrays& a, const HybridSettings& s) {
  switch (Counters(a.int_state).stage()) {
    case Stage::initial_value: return after_initial(a, s);
    case Stage::difference: return after_difference(a, s);
    case Stage::jacobian_value: return factorize(a, s);
    case Stage::monitor: return take_step(a);
    case Stage::trial_value: return after_trial(a, s);
    case Stage::finished: return HybridRequest::finished;
  }
  return HybridRequest::finished;  // not reached: hybrid_state_valid rules out other stages
}

bool hybrid_state_valid(const HybridArrays& a, const HybridSettings& s) {
  const Counters c(a.int_state);
  const int64_t stage = a.int_state[0];
  if (stage < static_cast<int64_t>(Stage::initial_value) || stage > static_cast<int64_t>(Stage::finished)) return false;
  // Counts far below overflow, so that counting on cannot overflow; the flag 0 or 1.
  constexpr int64_t kCountLimit = int64_t{1} << 62;
  if (std::any_of(a.int_state + 1, a.int_state + 8, [](int64_t k) { return k < 0 || k > kCountLimit; })) return false;
  if (c.fresh_jacobian() != 0 && c.fresh_jacobian() != 1) return false;
  if (c.stage() == Stage::difference && (c.group() < 0 || c.group() >= difference_groups(a, s))) return false;
  if (c.stage() == Stage::jacobian_value && !s.user_jacobian) return false;
  return c.stage() != Stage::finished ||
         (c.outcome() >= 0 && c.outcome() <= static_cast<int64_t>(HybridOutcome::not_a_root));
}

void hybrid_abandon(const HybridArrays& a) {
  if (Counters(a.int_state).stage() != Stage::initial_value) show_best(a, RealState(a.real_state, a.n));
}

HybridOutcome hybrid_outcome(const int64_t* int_state) { return static_cast<HybridOutcome>(int_state[10]); }
int64_t hybrid_function_count(const int64_t* int_state) { return int_state[1]; }
int64_t hybrid_jacobian_count(const int64_t* int_state) { return int_state[2]; }
int64_t hybrid_iteration(const int64_t* int_state) { return int_state[3]; }

}  // namespace vek::zeros_quad
