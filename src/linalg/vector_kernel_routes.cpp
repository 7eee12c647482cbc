// Kernels of OpenBLAS (0.3.21, Debian's build) that read one element past a vector ending the caller's array,
// and the library's routing around them. Each is redirected here when the archive is renamed
// (src/linalg/openblas.cmake: the archive's own definition becomes vekob_openblas_<name>, and every caller,
// OpenBLAS's own routines included, reaches the function below). The over-reading shapes are split so that
// no call of OpenBLAS's kernel reaches past an array; every other call goes to the kernel unchanged.
#include <cstdint>

#include "vek.h"

extern "C" {
void vekob_openblas_zhemv_(const char* uplo, const int64_t* n, const vek_complex* alpha, const vek_complex* a,
                           const int64_t* lda, const vek_complex* x, const int64_t* incx, const vek_complex* beta,
                           vek_complex* y, const int64_t* incy, int64_t uplo_len);
void vekob_zhemv_(const char* uplo, const int64_t* n, const vek_complex* alpha, const vek_complex* a,
                  const int64_t* lda, const vek_complex* x, const int64_t* incx, const vek_complex* beta,
                  vek_complex* y, const int64_t* incy, int64_t uplo_len);
}

namespace {

vek_complex mul(vek_complex a, vek_complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
vek_complex add(vek_complex a, vek_complex b) { return {a.re + b.re, a.im + b.im}; }
bool is_zero(vek_complex a) { return a.re == 0 && a.im == 0; }

}  // namespace

// Y := ALPHA*A*X + BETA*Y with A Hermitian. In the over-reading shape the leading order N - 1 (even) goes to
// OpenBLAS and the last row and column of the upper triangle are added here:
//   Y(1:N-1) += ALPHA*X(N)*A(1:N-1, N),   Y(N) := BETA*Y(N) + ALPHA*(A(1:N-1, N)^H X(1:N-1) + A(N, N) X(N)),
// the diagonal's imaginary part taken as zero, and BETA = 0 setting Y(N) without reading it, as published.
// ALPHA = 0 only scales Y, which OpenBLAS does without the kernel.
extern "C" void vekob_zhemv_(const char* uplo, const int64_t* n, const vek_complex* alpha, const vek_complex* a,
                             const int64_t* lda, const vek_complex* x, const int64_t* incx, const vek_complex* beta,
                             vek_complex* y, const int64_t* incy, int64_t uplo_len) {
  const bool over_reads = uplo_len > 0 && (*uplo == 'U' || *uplo == 'u') && *n > 0 && *n % 2 == 1 &&
                          *incy == 1 && *incx != 0 && *lda >= *n && !is_zero(*alpha);
  if (!over_reads) return vekob_openblas_zhemv_(uplo, n, alpha, a, lda, x, incx, beta, y, incy, uplo_len);
  const int64_t leading = *n - 1, ix = *incx;
  // Element i (from 0) of X is x0[i*INCX]: a negative increment stores the vector backwards from the end. The
  // leading part ends one stride earlier, so with a negative increment it starts one stride later.
  const vek_complex* x0 = ix > 0 ? x : x - leading * ix;
  if (leading > 0)
    vekob_openblas_zhemv_(uplo, &leading, alpha, a, lda, ix > 0 ? x : x - ix, incx, beta, y, incy, uplo_len);
  const vek_complex* col = a + leading * *lda;
  const vek_complex xl = x0[leading * ix];
  const vek_complex scaled = mul(*alpha, xl);
  vek_complex dot{col[leading].re * xl.re, col[leading].re * xl.im};
  for (int64_t i = 0; i < leading; ++i) {
    y[i] = add(y[i], mul(scaled, col[i]));
    const vek_complex xi = x0[i * ix];
    dot = add(dot, mul({col[i].re, -col[i].im}, xi));
  }
  const vek_complex kept = is_zero(*beta) ? vek_complex{0, 0} : mul(*beta, y[leading]);
  y[leading] = add(kept, mul(*alpha, dot));
}

// The complex dot-product kernel of OpenBLAS's x86-64 targets from Sandy Bridge on (one C source, built once
// per target) reads one stride past both vectors when either increment is not 1: its strided loop loads the
// next pair ahead. OpenBLAS's own routines call it directly through their kernel table (zlauu2 of zpotri and
// zpftri with rows of the caller's matrix, zdotc_ and zdotu_), so these kernels are the ones redirected here.
// Element i (from 0) is at x[2*i*INCX] in a kernel's coordinates, whatever the increment's sign: the last pair
// is taken off and added here, and the kernel's look-ahead reaches no further than that last pair.
namespace {

using DotKernel = __complex__ double (*)(int64_t n, const double* x, int64_t incx, const double* y, int64_t incy);

__complex__ double split_dot(DotKernel kernel, bool conjugate, int64_t n, const double* x, int64_t incx,
                             const double* y, int64_t incy) {
  if (n <= 0 || (incx == 1 && incy == 1)) return kernel(n, x, incx, y, incy);
  const __complex__ double lead = n > 1 ? kernel(n - 1, x, incx, y, incy) : 0;
  const double* xl = x + 2 * (n - 1) * incx;
  const double* yl = y + 2 * (n - 1) * incy;
  const double xi = conjugate ? -xl[1] : xl[1];
  __complex__ double last;
  __real__ last = xl[0] * yl[0] - xi * yl[1];
  __imag__ last = xl[0] * yl[1] + xi * yl[0];
  return lead + last;
}

}  // namespace

// The non-transposed complex matrix-vector kernels (Y += ALPHA*op(A)*X for op(A) = A or conj(A), X or conj(X))
// of the Haswell-class targets, one C source: with M = 2 (mod 4) they read one stride past X's last element
// (the two-row tail loads the next column's multiplier ahead). OpenBLAS calls them for zgemv_ with TRANS = 'N'
// (per thread block of rows), and directly from its own routines (zlauu2 of zpotri and zpftri). The last
// column goes to the kernel on its own with its multiplier copied into a two-element vector, whose second
// element is what that call's look-ahead reads; the call for the other columns looks ahead only as far as
// X's last element. Element j of X is at x[2*j*INCX] in the kernel's coordinates.
namespace {

using GemvKernel = int (*)(int64_t m, int64_t n, int64_t unused, double alpha_re, double alpha_im, const double* a,
                           int64_t lda, const double* x, int64_t incx, double* y, int64_t incy, double* buffer);

int split_gemv(GemvKernel kernel, int64_t m, int64_t n, int64_t unused, double alpha_re, double alpha_im,
               const double* a, int64_t lda, const double* x, int64_t incx, double* y, int64_t incy, double* buffer) {
  if (m % 4 != 2 || n <= 0) return kernel(m, n, unused, alpha_re, alpha_im, a, lda, x, incx, y, incy, buffer);
  if (n > 1) kernel(m, n - 1, unused, alpha_re, alpha_im, a, lda, x, incx, y, incy, buffer);
  const double* xl = x + 2 * (n - 1) * incx;
  const double last[4] = {xl[0], xl[1], 0, 0};
  return kernel(m, 1, unused, alpha_re, alpha_im, a + 2 * (n - 1) * lda, lda, last, 1, y, incy, buffer);
}

}  // namespace

#define VEK_ROUTE_GEMV_KERNEL(variant, target)                                                                  \
  extern "C" int vekob_openblas_zgemv_##variant##_##target(int64_t, int64_t, int64_t, double, double,          \
                                                           const double*, int64_t, const double*, int64_t,       \
                                                           double*, int64_t, double*);                           \
  extern "C" int vekob_zgemv_##variant##_##target(int64_t m, int64_t n, int64_t unused, double ar, double ai,   \
                                                  const double* a, int64_t lda, const double* x, int64_t incx,   \
                                                  double* y, int64_t incy, double* buffer) {                     \
    return split_gemv(vekob_openblas_zgemv_##variant##_##target, m, n, unused, ar, ai, a, lda, x, incx, y, incy, \
                      buffer);                                                                                    \
  }
#define VEK_ROUTE_GEMV_KERNELS(target)                                                                          \
  VEK_ROUTE_GEMV_KERNEL(n, target) VEK_ROUTE_GEMV_KERNEL(r, target) VEK_ROUTE_GEMV_KERNEL(o, target)            \
  VEK_ROUTE_GEMV_KERNEL(s, target)
VEK_ROUTE_GEMV_KERNELS(HASWELL)
VEK_ROUTE_GEMV_KERNELS(SKYLAKEX)
VEK_ROUTE_GEMV_KERNELS(COOPERLAKE)
VEK_ROUTE_GEMV_KERNELS(ZEN)

#define VEK_ROUTE_DOT_KERNEL(target, conjugate)                                                                  \
  extern "C" __complex__ double vekob_openblas_zdot##conjugate##_k_##target(int64_t, const double*, int64_t,      \
                                                                            const double*, int64_t);              \
  extern "C" __complex__ double vekob_zdot##conjugate##_k_##target(int64_t n, const double* x, int64_t incx,      \
                                                                   const double* y, int64_t incy) {               \
    return split_dot(vekob_openblas_zdot##conjugate##_k_##target, #conjugate[0] == 'c', n, x, incx, y, incy);    \
  }
#define VEK_ROUTE_DOT_KERNELS(target) VEK_ROUTE_DOT_KERNEL(target, c) VEK_ROUTE_DOT_KERNEL(target, u)
VEK_ROUTE_DOT_KERNELS(SANDYBRIDGE)
VEK_ROUTE_DOT_KERNELS(HASWELL)
VEK_ROUTE_DOT_KERNELS(SKYLAKEX)
VEK_ROUTE_DOT_KERNELS(COOPERLAKE)
VEK_ROUTE_DOT_KERNELS(ZEN)
VEK_ROUTE_DOT_KERNELS(BULLDOZER)
VEK_ROUTE_DOT_KERNELS(PILEDRIVER)
VEK_ROUTE_DOT_KERNELS(STEAMROLLER)
VEK_ROUTE_DOT_KERNELS(EXCAVATOR)
