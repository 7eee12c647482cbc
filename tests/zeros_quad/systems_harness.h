// Calls of the seven solvers for systems (c05qbf, c05qcf, c05qdf, c05qsf, c05rbf, c05rcf, c05rdf) through their exported
// entries on one problem with one set of settings, the reverse-communication forms driven by the usual loop.
// FCN counts its calls and can be told to set IFLAG negative at a given call.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mgh_systems.h"
#include "vek.h"

namespace vek::testing {

enum class Solver { qbf, qcf, qdf, qsf, rbf, rcf, rdf };

struct SystemSetup {
  SystemProblem problem;
  int64_t n;
  double xtol = 1e-10;
  std::optional<int64_t> maxfev{};  // default 200*(n+1)
  std::optional<int64_t> ml{}, mu{};  // default n-1 (a full Jacobian)
  double epsfcn = 0.0;
  int64_t mode = 1;
  std::vector<double> diag{};  // MODE = 2: the scale (empty: ones)
  double factor = 100.0;
  int64_t nprint = 0;
  int64_t stop_at_call = 0;  // FCN sets IFLAG = -7 at this call (0: never)
  int64_t irevcm_start = 0;  // what the reverse-communication loop passes first
  std::vector<int64_t> irow{}, icol{};  // c05qsf's pattern (empty: every element)
  std::optional<int64_t> nnz{};         // default the pattern's length
  double start_scale = 1.0;  // start from this times the standard point (this in every component if that is 0)
};

struct SystemRun {
  int64_t ifail = 0;
  std::vector<double> x, fvec, fjac, r, qtf;
  int64_t nfev = 0, njev = 0;
  int64_t monitor_calls = 0;  // FCN calls with IFLAG = 0
};

namespace detail {

struct FcnState {
  const SystemSetup* setup = nullptr;
  int64_t calls = 0, by_iflag[3] = {};  // all calls, and those with IFLAG = 0, 1, 2 on entry
};
inline FcnState g_fcn;

// Returns false when FCN is to stop the run.
inline bool count_call(int64_t* iflag) {
  ++g_fcn.calls;
  if (*iflag >= 0 && *iflag <= 2) ++g_fcn.by_iflag[*iflag];
  if (g_fcn.calls == g_fcn.setup->stop_at_call) *iflag = -7;
  return *iflag > 0;
}
inline void fcn(const int64_t* n, const double* x, double* f, int64_t*, double*, int64_t* iflag) {
  if (count_call(iflag)) g_fcn.setup->problem.f(*n, x, f);
}
inline void fcn_jacobian(const int64_t* n, const double* x, double* f, double* jac, int64_t*, double*,
                         int64_t* iflag) {
  if (!count_call(iflag)) return;
  if (*iflag == 2) g_fcn.setup->problem.jacobian(*n, x, jac);
  else g_fcn.setup->problem.f(*n, x, f);
}

}  // namespace detail

inline SystemRun run_system(Solver solver, const SystemSetup& s, int64_t ifail_in = 1) {
  const int64_t n = s.n, nn = n > 0 ? n : 0;
  const int64_t maxfev = s.maxfev.value_or(200 * (n + 1)), ml = s.ml.value_or(n - 1), mu = s.mu.value_or(n - 1);
  SystemRun out;
  out.x.resize(nn);
  if (n > 0) s.problem.start(n, out.x.data());
  if (s.start_scale != 1.0) {
    const bool zero = std::all_of(out.x.begin(), out.x.end(), [](double v) { return v == 0.0; });
    for (double& v : out.x) v = zero ? s.start_scale : s.start_scale * v;
  }
  out.fvec.assign(nn, 0.0);
  out.fjac.assign(nn * nn, 0.0);
  out.r.assign(nn * (nn + 1) / 2, 0.0);
  out.qtf.assign(nn, 0.0);
  std::vector<double> diag = s.diag.empty() ? std::vector<double>(nn, 1.0) : s.diag;
  std::vector<int64_t> iuser(1);
  std::vector<double> ruser(1);
  detail::g_fcn = {&s, 0, {}};
  int64_t ifail = ifail_in;
  double *x = out.x.data(), *fvec = out.fvec.data(), *fjac = out.fjac.data(), *r = out.r.data(),
         *qtf = out.qtf.data();
  switch (solver) {
    case Solver::qbf: c05qbf_(detail::fcn, &n, x, fvec, &s.xtol, iuser.data(), ruser.data(), &ifail); break;
    case Solver::qsf: {
      std::vector<int64_t> irow = s.irow, icol = s.icol;
      if (irow.empty())
        for (int64_t k = 0; k < nn * nn; ++k) irow.push_back(k % n + 1), icol.push_back(k / n + 1);
      const int64_t nnz = s.nnz.value_or(static_cast<int64_t>(irow.size()));
      c05qsf_(detail::fcn, &n, x, fvec, &s.xtol, &nnz, irow.data(), icol.data(), iuser.data(), ruser.data(), &ifail);
      break;
    }
    case Solver::rbf:
      c05rbf_(detail::fcn_jacobian, &n, x, fvec, fjac, &s.xtol, iuser.data(), ruser.data(), &ifail);
      break;
    case Solver::qcf:
      c05qcf_(detail::fcn, &n, x, fvec, &s.xtol, &maxfev, &ml, &mu, &s.epsfcn, &s.mode, diag.data(), &s.factor,
              &s.nprint, &out.nfev, fjac, r, qtf, iuser.data(), ruser.data(), &ifail);
      break;
    case Solver::rcf:
      c05rcf_(detail::fcn_jacobian, &n, x, fvec, fjac, &s.xtol, &maxfev, &s.mode, diag.data(), &s.factor,
              &s.nprint, &out.nfev, &out.njev, r, qtf, iuser.data(), ruser.data(), &ifail);
      break;
    case Solver::qdf:
    case Solver::rdf: {
      std::vector<int64_t> iwsav(11, 0);
      std::vector<double> rwsav(5 * nn + 4, 0.0);
      int64_t irevcm = s.irevcm_start;
      do {
        ifail = ifail_in;
        if (solver == Solver::qdf)
          c05qdf_(&irevcm, &n, x, fvec, &s.xtol, &maxfev, &ml, &mu, &s.epsfcn, &s.mode, diag.data(), &s.factor,
                  &out.nfev, fjac, r, qtf, iwsav.data(), rwsav.data(), &ifail);
        else
          c05rdf_(&irevcm, &n, x, fvec, fjac, &s.xtol, &maxfev, &s.mode, diag.data(), &s.factor, &out.nfev,
                  &out.njev, r, qtf, iwsav.data(), rwsav.data(), &ifail);
        if (irevcm == 2) s.problem.f(n, x, fvec);
        if (irevcm == 3) s.problem.jacobian(n, x, fjac);
      } while (irevcm != 0);
      break;
    }
  }
  out.ifail = ifail;
  out.monitor_calls = detail::g_fcn.by_iflag[0];
  if (solver == Solver::qbf || solver == Solver::qsf || solver == Solver::rbf) {
    out.nfev = detail::g_fcn.by_iflag[1];
    out.njev = detail::g_fcn.by_iflag[2];
  }
  return out;
}

}  // namespace vek::testing
