// Bodies of the S20 routines, the Fresnel integrals (fresnel.cpp): a power series below 1, the Faddeeva
// function above. Odd in X, +-1/2 at +-infinity, NaN -> NaN; no failures.
#include "layers/s20.h"
#include "specfun/specfun.h"

namespace vek::routines {

double s20acf::run(frame::ErrorBuffer&, const double* x) { return specfun::fresnel(*x).s; }
double s20adf::run(frame::ErrorBuffer&, const double* x) { return specfun::fresnel(*x).c; }

}  // namespace vek::routines
