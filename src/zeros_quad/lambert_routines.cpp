// Body of c05baf, the real Lambert W function (kernel lambert_w.cpp). BRANCH has been checked. A NaN X gives
// NaN with IFAIL 0; an argument outside the branch's domain gives IFAIL 2 or 3 and the result 0, as every
// failure of the routine does.
#include <cmath>
#include <complex>

#include "layers/c05.h"
#include "zeros_quad/lambert_w.h"

namespace vek::routines {

double c05baf::run(frame::ErrorBuffer& err, const double* x, const int64_t* branch, const int64_t* offset) {
  if (std::isnan(*x)) return *x;
  const bool offset_given = *offset != 0;
  const zeros_quad::LambertArgument arg = zeros_quad::lambert_argument(*x, offset_given);
  // With OFFSET the distance itself must not be negative; without, the double nearest -1/e (just below it)
  // counts as the branch point.
  if (offset_given ? *x < 0 : arg.y < -zeros_quad::kLambertBranchSlack) {
    err.fail(offset_given ? offset_negative : below_branch_point, *x);
    return 0.0;
  }
  const auto b = *branch == 0 ? zeros_quad::LambertBranch::principal : zeros_quad::LambertBranch::lower;
  if (b == zeros_quad::LambertBranch::lower && !(arg.z < 0)) {
    err.fail(lower_not_negative, *x);
    return 0.0;
  }
  return zeros_quad::lambert_w(arg, b);
}

// The complex W on any branch. Z = 0 (the argument, not the offset) on a branch other than 0 fails with W =
// -inf; a NaN part gives NaN. RESID = |w e^w - z| in the library's arithmetic.
void c05bbf::run(frame::ErrorBuffer& err, const vek_complex* z, const int64_t* branch, const int64_t* offset,
                 vek_complex* w, double* resid) {
  const zeros_quad::ComplexLambertArgument arg =
      zeros_quad::lambert_argument(std::complex<double>(z->re, z->im), *offset != 0);
  const std::complex<double> result = zeros_quad::lambert_w(arg, *branch);
  *w = {result.real(), result.imag()};
  *resid = std::abs(result * std::exp(result) - arg.z);
  if (arg.z == 0.0 && *branch != 0) {
    *resid = 0.0;
    err.fail(infinite_at_zero, *branch);
  }
}

}  // namespace vek::routines
