// Body of c05zdf: the Jacobian check (jacobian_check.h); the declared checks on M, N and MODE have been made.
#include "layers/c05.h"
#include "zeros_quad/jacobian_check.h"

namespace vek::routines {

void c05zdf::run(frame::ErrorBuffer&, const int64_t* mode, const int64_t* m, const int64_t* n, const double* x,
                 const double* fvec, const double* fjac, double* xp, const double* fvecp, double* errs) {
  if (*mode == 1) return zeros_quad::jacobian_check_point(*n, x, xp);
  zeros_quad::jacobian_check_compare(*m, *n, x, fvec, fjac, xp, fvecp, errs);
}

}  // namespace vek::routines
