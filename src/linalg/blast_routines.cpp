// Bodies of chapter F16 (BLAS technical-forum operations); the declared checks (f16.decl) have been made and
// reported. Vectors follow the BLAS stride rule: element i (0-based) of X is X(1 + i*INCX) for INCX > 0 and
// X(1 + (N-1-i)*|INCX|) for INCX < 0. Sums run in element order.
#include <cstdint>

#include "layers/f16.h"

namespace {

// Offset of element i of a strided vector of n elements.
inline int64_t at(int64_t i, int64_t n, int64_t inc) { return inc > 0 ? i * inc : (n - 1 - i) * -inc; }

}  // namespace

namespace vek::routines {

// CONJ is ignored for real data.
void f16eaf::run(const int64_t*, const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
                 const double* beta, const double* y, const int64_t* incy, double* r) {
  double dot = 0.0;
  for (int64_t i = 0; i < *n; ++i) dot += x[at(i, *n, *incx)] * y[at(i, *n, *incy)];
  *r = *beta * *r + *alpha * dot;
}

void f16ecf::run(const int64_t* n, const double* alpha, const double* x, const int64_t* incx, const double* beta,
                 double* y, const int64_t* incy) {
  for (int64_t i = 0; i < *n; ++i) {
    double& yi = y[at(i, *n, *incy)];
    yi = *alpha * x[at(i, *n, *incx)] + *beta * yi;
  }
}

void f16ehf::run(const int64_t* n, const double* alpha, const double* x, const int64_t* incx, const double* beta,
                 const double* y, const int64_t* incy, double* w, const int64_t* incw) {
  for (int64_t i = 0; i < *n; ++i)
    w[at(i, *n, *incw)] = *alpha * x[at(i, *n, *incx)] + *beta * y[at(i, *n, *incy)];
}

}  // namespace vek::routines
