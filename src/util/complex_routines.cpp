// Workers of the A02 complex helpers: thin shells over the kernels of util/complex.h.
#include "layers/a02.h"
#include "util/complex.h"

extern "C" {

void a02aafn_(const double* xr, const double* xi, double* yr, double* yi) {
  const vek::util::Complex y = vek::util::complex_sqrt(*xr, *xi);
  *yr = y.re;
  *yi = y.im;
}

double a02abfn_(const double* xr, const double* xi) { return vek::util::complex_abs(*xr, *xi); }

void a02acfn_(const double* xr, const double* xi, const double* yr, const double* yi, double* zr, double* zi) {
  const vek::util::Complex z = vek::util::complex_divide(*xr, *xi, *yr, *yi);
  *zr = z.re;
  *zi = z.im;
}

}  // extern "C"
