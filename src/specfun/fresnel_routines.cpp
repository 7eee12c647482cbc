// Workers of the S20 routines, the Fresnel integrals (fresnel.cpp): a power series below 1, the Faddeeva
// function above. Odd in X, +-1/2 at +-infinity, NaN -> NaN; no failures.
#include "layers/s20.h"
#include "specfun/specfun.h"
#include "specfun/worker.h"

extern "C" {

double s20acfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S20ACFN", errbuf, errbuf_len, ierr, [&] { return vek::specfun::fresnel(*x).s; });
}

double s20adfn_(const double* x, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  return vek::specfun::licensed_value("S20ADFN", errbuf, errbuf_len, ierr, [&] { return vek::specfun::fresnel(*x).c; });
}

}  // extern "C"
