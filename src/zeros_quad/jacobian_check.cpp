// The Jacobian check (jacobian_check.h).
#include "zeros_quad/jacobian_check.h"

#include <cmath>

#include "frame/constants.h"

namespace vek::zeros_quad {
namespace {

double root_eps() { return std::sqrt(constants::eps()); }

// The grade of a relative disagreement r: 1 at eps, 0 at sqrt(eps), linear in log r between.
double grade(double r) {
  if (!(r < root_eps())) return 0.0;
  if (r <= constants::eps()) return 1.0;
  return std::log(r) / std::log(root_eps()) - 1.0;
}

}  // namespace

void jacobian_check_point(int64_t n, const double* x, double* xp) {
  for (int64_t j = 0; j < n; ++j) xp[j] = x[j] + (x[j] == 0.0 ? root_eps() : root_eps() * std::abs(x[j]));
}

void jacobian_check_compare(int64_t m, int64_t n, const double* x, const double* fvec, const double* fjac,
                            const double* xp, const double* fvecp, double* err) {
  for (int64_t i = 0; i < m; ++i) err[i] = 0.0;
  for (int64_t j = 0; j < n; ++j) {  // err holds the predicted changes first, column by column
    const double move = xp[j] - x[j];
    const double* column = fjac + j * m;
    for (int64_t i = 0; i < m; ++i) err[i] += column[i] * move;
  }
  for (int64_t i = 0; i < m; ++i) {
    const double predicted = err[i];
    const double scale = std::abs(fvec[i]) + std::abs(fvecp[i]);
    if (scale == 0.0) {
      err[i] = predicted == 0.0 ? 1.0 : 0.0;
    } else {
      err[i] = grade(std::abs(fvecp[i] - fvec[i] - predicted) / scale);
    }
  }
}

}  // namespace vek::zeros_quad
