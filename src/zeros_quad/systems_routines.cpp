// Bodies of the C05 routines for n nonlinear equations in n unknowns, all driving the hybrid method's stepper
// (hybrid.h): c05qbf and c05qcf (Jacobian by differences) and c05rbf and c05rcf (the user's Jacobian) answer its
// requests with FCN; c05qdf and c05rdf hand them to the caller through IREVCM. The declared checks (c05.decl)
// have been made when a body runs.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "layers/c05.h"
#include "zeros_quad/column_groups.h"
#include "zeros_quad/hybrid.h"

namespace vek::routines {

namespace {

using zeros_quad::HybridArrays;
using zeros_quad::HybridOutcome;
using zeros_quad::HybridRequest;
using zeros_quad::HybridSettings;

// The values of IREVCM on return.
namespace irevcm_value {
inline constexpr int64_t finished = 0;
inline constexpr int64_t monitor = 1;
inline constexpr int64_t function = 2;
inline constexpr int64_t jacobian = 3;
}  // namespace irevcm_value

// The easy forms' fixed choices: MINPACK's hybrd1 and hybrj1 settings, with 200*(N+1) function values.
constexpr double kEasyFactor = 100.0;
constexpr int64_t kEasyCallsPerUnknown = 200;

// The arrays a driver owns when its caller does not pass them: one block, its size checked before anything
// is allocated (a count beyond memory is IFAIL -999 through std::bad_alloc).
class DriverWorkspace {
 public:
  DriverWorkspace(int64_t n, bool with_jacobian) {
    const __int128 big = n;
    const __int128 count =
        (with_jacobian ? big * big : 0) + big * (big + 1) / 2 + 2 * big + zeros_quad::hybrid_real_state(big);
    if (count > static_cast<__int128>(PTRDIFF_MAX / sizeof(double))) throw std::bad_alloc();
    block_.resize(static_cast<size_t>(count));
    double* next = block_.data();
    auto take = [&](__int128 k) { return std::exchange(next, next + static_cast<ptrdiff_t>(k)); };
    fjac = with_jacobian ? take(big * big) : nullptr;
    r = take(big * (big + 1) / 2);
    qtf = take(big);
    diag = take(big);
    real_state = take(zeros_quad::hybrid_real_state(n));
  }
  double* fjac;
  double* r;
  double* qtf;
  double* diag;
  double* real_state;
  std::array<int64_t, zeros_quad::kHybridIntState> int_state{};

 private:
  std::vector<double> block_;
};

struct DriverResult {
  int64_t iflag;  // negative: FCN asked to stop
  HybridOutcome outcome;
  int64_t nfev, njev;
};

// Answers the stepper's requests with `evaluate(iflag)` (1: f at X into FVEC, 2: the Jacobian into FJAC,
// 0: a monitoring call, made at iterations 1, NPRINT+1, 2*NPRINT+1 ... when NPRINT > 0) until it finishes or
// FCN sets IFLAG negative.
template <class Evaluate>
DriverResult drive(const HybridArrays& a, const HybridSettings& s, int64_t nprint, Evaluate&& evaluate) {
  HybridRequest q = zeros_quad::hybrid_start(a);
  while (q != HybridRequest::finished) {
    int64_t iflag = q == HybridRequest::jacobian ? 2 : 1;
    if (q == HybridRequest::monitor) {
      if (nprint <= 0 || (zeros_quad::hybrid_iteration(a.int_state) - 1) % nprint != 0) {
        q = zeros_quad::hybrid_resume(a, s);
        continue;
      }
      iflag = 0;
    }
    evaluate(iflag);
    if (iflag < 0) {
      zeros_quad::hybrid_abandon(a);
      return {iflag, HybridOutcome::converged, zeros_quad::hybrid_function_count(a.int_state),
              zeros_quad::hybrid_jacobian_count(a.int_state)};
    }
    q = zeros_quad::hybrid_resume(a, s);
  }
  return {0, zeros_quad::hybrid_outcome(a.int_state), zeros_quad::hybrid_function_count(a.int_state),
          zeros_quad::hybrid_jacobian_count(a.int_state)};
}

// The message for how the stepper finished: the easy forms have one message for both kinds of slow progress
// and a fixed evaluation limit, the others say which test ended the run and give MAXFEV.
template <class R>
void report(frame::ErrorBuffer& err, HybridOutcome outcome, double xtol, int64_t maxfev) {
  constexpr bool easy = !requires { R::slow_iterations; };
  switch (outcome) {
    case HybridOutcome::converged: return;
    case HybridOutcome::too_many_calls:
      if constexpr (easy) return err.fail(R::too_many_calls);
      else return err.fail(R::maxfev_reached, maxfev);
    case HybridOutcome::xtol_too_small: return err.fail(R::xtol_too_small, xtol);
    case HybridOutcome::slow_jacobians:
      if constexpr (easy) return err.fail(R::no_progress);
      else return err.fail(R::slow_jacobians, zeros_quad::kSlowJacobians);
    case HybridOutcome::slow_iterations:
      if constexpr (easy) return err.fail(R::no_progress);
      else return err.fail(R::slow_iterations, zeros_quad::kSlowIterations);
    case HybridOutcome::not_finite: return err.fail(R::not_finite);
    case HybridOutcome::not_a_root: return err.fail(R::no_progress);
  }
}

template <class R>
void report(frame::ErrorBuffer& err, const DriverResult& r, double xtol, int64_t maxfev) {
  if (r.iflag < 0) return err.fail(R::iflag_negative, r.iflag);
  report<R>(err, r.outcome, xtol, maxfev);
}

// With MODE = 2 every DIAG element must be positive (NaN is not); the first that is not is reported.
template <class R>
bool diag_acceptable(frame::ErrorBuffer& err, int64_t mode, int64_t n, const double* diag) {
  if (mode != 2) return true;
  const double* bad = std::find_if(diag, diag + n, [](double d) { return !(d > 0.0); });
  if (bad == diag + n) return true;
  err.fail(R::diag_positive, bad - diag + 1, *bad);
  return false;
}

int64_t easy_limit(int64_t n) {
  const __int128 limit = static_cast<__int128>(kEasyCallsPerUnknown) * (static_cast<__int128>(n) + 1);
  return limit > INT64_MAX ? INT64_MAX : static_cast<int64_t>(limit);
}

HybridSettings easy_settings(int64_t n, double xtol, bool user_jacobian) {
  return {xtol, easy_limit(n), n - 1, n - 1, 0.0, true, kEasyFactor, user_jacobian};
}

HybridSettings full_settings(double xtol, int64_t maxfev, int64_t ml, int64_t mu, double epsfcn, int64_t mode,
                             double factor, bool user_jacobian) {
  return {xtol, maxfev, ml, mu, epsfcn, mode == 2, factor, user_jacobian};
}

// One reverse-communication call: starts a run (IREVCM = 0) or continues it, and says on return what is asked.
template <class R>
HybridRequest communicate(frame::ErrorBuffer& err, int64_t* irevcm, int64_t mode, const HybridArrays& a,
                          const HybridSettings& s) {
  if (*irevcm == irevcm_value::finished) {
    if (!diag_acceptable<R>(err, mode, a.n, a.diag)) return HybridRequest::finished;
    return zeros_quad::hybrid_start(a);
  }
  if (!zeros_quad::hybrid_state_valid(a, s)) {
    err.fail(R::state_changed, *irevcm);
    return HybridRequest::finished;
  }
  return zeros_quad::hybrid_resume(a, s);
}

void set_irevcm(int64_t* irevcm, HybridRequest q) {
  switch (q) {
    case HybridRequest::function: *irevcm = irevcm_value::function; return;
    case HybridRequest::jacobian: *irevcm = irevcm_value::jacobian; return;
    case HybridRequest::monitor: *irevcm = irevcm_value::monitor; return;
    case HybridRequest::finished: *irevcm = irevcm_value::finished; return;
  }
}

}  // namespace

// The easy form: Jacobian by differences over all columns, diag = 1, initial radius 100 ||x|| (100 at x = 0).
void c05qbf::run(frame::ErrorBuffer& err, vek_c05qbf_fcn_adapter fcn_adapter, vek_c05qbf_fcn_fn fcn,
                 const int64_t* n, double* x, double* fvec, const double* xtol, int64_t* iuser, double* ruser) {
  DriverWorkspace w(*n, true);
  std::fill(w.diag, w.diag + *n, 1.0);
  const HybridArrays a{*n, x, fvec, w.fjac, w.r, w.qtf, w.diag, w.int_state.data(), w.real_state};
  const DriverResult r = drive(a, easy_settings(*n, *xtol, false), 0,
                               [&](int64_t& iflag) { fcn_adapter(fcn, n, x, fvec, iuser, ruser, &iflag); });
  report<c05qbf>(err, r, *xtol, 0);
}

void c05qcf::run(frame::ErrorBuffer& err, vek_c05qcf_fcn_adapter fcn_adapter, vek_c05qcf_fcn_fn fcn,
                 const int64_t* n, double* x, double* fvec, const double* xtol, const int64_t* maxfev,
                 const int64_t* ml, const int64_t* mu, const double* epsfcn, const int64_t* mode, double* diag,
                 const double* factor, const int64_t* nprint, int64_t* nfev, double* fjac, double* r, double* qtf,
                 int64_t* iuser, double* ruser) {
  *nfev = 0;
  if (!diag_acceptable<c05qcf>(err, *mode, *n, diag)) return;
  DriverWorkspace w(*n, false);
  const HybridArrays a{*n, x, fvec, fjac, r, qtf, diag, w.int_state.data(), w.real_state};
  const DriverResult result =
      drive(a, full_settings(*xtol, *maxfev, *ml, *mu, *epsfcn, *mode, *factor, false), *nprint,
            [&](int64_t& iflag) { fcn_adapter(fcn, n, x, fvec, iuser, ruser, &iflag); });
  *nfev = result.nfev;
  report<c05qcf>(err, result, *xtol, *maxfev);
}

void c05qdf::run(frame::ErrorBuffer& err, int64_t* irevcm, const int64_t* n, double* x, double* fvec,
                 const double* xtol, const int64_t* maxfev, const int64_t* ml, const int64_t* mu,
                 const double* epsfcn, const int64_t* mode, double* diag, const double* factor, int64_t* nfev,
                 double* fjac, double* r, double* qtf, int64_t* iwsav, double* rwsav) {
  const HybridArrays a{*n, x, fvec, fjac, r, qtf, diag, iwsav, rwsav};
  const HybridSettings s = full_settings(*xtol, *maxfev, *ml, *mu, *epsfcn, *mode, *factor, false);
  const HybridRequest q = communicate<c05qdf>(err, irevcm, *mode, a, s);
  if (err.ierr() != 0) return;
  *nfev = zeros_quad::hybrid_function_count(iwsav);
  set_irevcm(irevcm, q);
  if (q == HybridRequest::finished) report<c05qdf>(err, zeros_quad::hybrid_outcome(iwsav), *xtol, *maxfev);
}

// The easy form for a sparse Jacobian: c05qbf's settings, the columns differenced in the pattern's groups.
void c05qsf::run(frame::ErrorBuffer& err, vek_c05qsf_fcn_adapter fcn_adapter, vek_c05qsf_fcn_fn fcn,
                 const int64_t* n, double* x, double* fvec, const double* xtol, const int64_t* nnz,
                 const int64_t* irow, const int64_t* icol, int64_t* iuser, double* ruser) {
  for (int64_t k = 0; k < *nnz; ++k)
    if (irow[k] < 1 || irow[k] > *n || icol[k] < 1 || icol[k] > *n)
      return err.fail(pair_outside, k + 1, irow[k], icol[k]);
  DriverWorkspace w(*n, true);
  const zeros_quad::SparsePattern pattern(*n, *nnz, irow, icol);
  const zeros_quad::ColumnGroups groups = pattern.groups();
  std::fill(w.diag, w.diag + *n, 1.0);
  HybridSettings settings = easy_settings(*n, *xtol, false);
  settings.groups = &groups;
  const HybridArrays a{*n, x, fvec, w.fjac, w.r, w.qtf, w.diag, w.int_state.data(), w.real_state};
  const DriverResult r =
      drive(a, settings, 0, [&](int64_t& iflag) { fcn_adapter(fcn, n, x, fvec, iuser, ruser, &iflag); });
  report<c05qsf>(err, r, *xtol, 0);
}

// The easy form with the user's Jacobian: diag = 1, initial radius 100 ||x|| (100 at x = 0).
void c05rbf::run(frame::ErrorBuffer& err, vek_c05rbf_fcn_adapter fcn_adapter, vek_c05rbf_fcn_fn fcn,
                 const int64_t* n, double* x, double* fvec, double* fjac, const double* xtol, int64_t* iuser,
                 double* ruser) {
  DriverWorkspace w(*n, false);
  std::fill(w.diag, w.diag + *n, 1.0);
  const HybridArrays a{*n, x, fvec, fjac, w.r, w.qtf, w.diag, w.int_state.data(), w.real_state};
  const DriverResult r = drive(a, easy_settings(*n, *xtol, true), 0,
                               [&](int64_t& iflag) { fcn_adapter(fcn, n, x, fvec, fjac, iuser, ruser, &iflag); });
  report<c05rbf>(err, r, *xtol, 0);
}

void c05rcf::run(frame::ErrorBuffer& err, vek_c05rcf_fcn_adapter fcn_adapter, vek_c05rcf_fcn_fn fcn,
                 const int64_t* n, double* x, double* fvec, double* fjac, const double* xtol, const int64_t* maxfev,
                 const int64_t* mode, double* diag, const double* factor, const int64_t* nprint, int64_t* nfev,
                 int64_t* njev, double* r, double* qtf, int64_t* iuser, double* ruser) {
  *nfev = *njev = 0;
  if (!diag_acceptable<c05rcf>(err, *mode, *n, diag)) return;
  DriverWorkspace w(*n, false);
  const HybridArrays a{*n, x, fvec, fjac, r, qtf, diag, w.int_state.data(), w.real_state};
  const DriverResult result = drive(a, full_settings(*xtol, *maxfev, 0, 0, 0.0, *mode, *factor, true), *nprint,
                                    [&](int64_t& iflag) { fcn_adapter(fcn, n, x, fvec, fjac, iuser, ruser, &iflag); });
  *nfev = result.nfev;
  *njev = result.njev;
  report<c05rcf>(err, result, *xtol, *maxfev);
}

void c05rdf::run(frame::ErrorBuffer& err, int64_t* irevcm, const int64_t* n, double* x, double* fvec, double* fjac,
                 const double* xtol, const int64_t* maxfev, const int64_t* mode, double* diag, const double* factor,
                 int64_t* nfev, int64_t* njev, double* r, double* qtf, int64_t* iwsav, double* rwsav) {
  const HybridArrays a{*n, x, fvec, fjac, r, qtf, diag, iwsav, rwsav};
  const HybridSettings s = full_settings(*xtol, *maxfev, 0, 0, 0.0, *mode, *factor, true);
  const HybridRequest q = communicate<c05rdf>(err, irevcm, *mode, a, s);
  if (err.ierr() != 0) return;
  *nfev = zeros_quad::hybrid_function_count(iwsav);
  *njev = zeros_quad::hybrid_jacobian_count(iwsav);
  set_irevcm(irevcm, q);
  if (q == HybridRequest::finished) report<c05rdf>(err, zeros_quad::hybrid_outcome(iwsav), *xtol, *maxfev);
}

}  // namespace vek::routines
