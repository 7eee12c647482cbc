// Adaptive cubature over a hyper-rectangle for a vector of integrands sharing their evaluations: the
// Genz-Malik degree-7 rule with its embedded degree-5 rule (Genz and Malik 1980), globally adaptive bisection of
// the region with the largest error, the regions kept as a max-heap in caller-owned workspace.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace vek::zeros_quad {

// Evaluations of one application of the rule in n dimensions: 2^n + 2n^2 + 2n + 1.
int64_t genz_malik_points(int64_t ndim);

// The regions a run limited to `maxpts` evaluations can create (each bisection costs two rule applications):
// 1 + (maxpts - rule)/(2 rule), for maxpts >= rule.
int64_t cubature_regions(int64_t ndim, int64_t maxpts);

// Reals of one region in the workspace: priority, bisection axis, centre (ndim), half-widths (ndim), estimates
// (nfun) and error estimates (nfun).
inline int64_t cubature_record(int64_t ndim, int64_t nfun) { return 2 + 2 * ndim + 2 * nfun; }

// f(z, values) writes the nfun integrand values at the point z.
using Integrands = std::function<void(const double* z, double* values)>;

struct CubatureProblem {
  int64_t ndim, nfun;
  const double* a;  // lower and upper limits (b < a allowed: the integral changes sign)
  const double* b;
  int64_t minpts, maxpts;  // rule <= maxpts, minpts <= maxpts
  double epsabs, epsrel;   // absolute values are used
};

enum class CubatureEnd { converged, maxpts_reached, not_finite };

struct CubatureOutcome {
  CubatureEnd end = CubatureEnd::converged;
  int64_t evaluations = 0;
  int64_t worst = 0;  // maxpts_reached: the integrand (0-based) whose error is furthest above its request
};

// Integrates into result and abserr (nfun each), using workspace w of at least
// cubature_regions(ndim, maxpts) * cubature_record(ndim, nfun) reals.
CubatureOutcome integrate_cubature(const Integrands& f, const CubatureProblem& p, std::span<double> result,
                                   std::span<double> abserr, double* w);

}  // namespace vek::zeros_quad
