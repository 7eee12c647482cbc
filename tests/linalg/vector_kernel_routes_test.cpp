// The complex matrix-vector products and dot products that OpenBLAS's kernels computed by reading one element
// past a vector (src/linalg/vector_kernel_routes.cpp), through the published names: every shape around the
// ones that over-read, on vectors of exactly the documented length against an inaccessible page on either
// side, each result against the published definition summed here term by term in long double.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "guard_page.h"
#include "vek.h"

namespace {

using vek::testing::Guard;
using vek::testing::GuardedArray;
using cl = std::complex<long double>;

cl as_long(vek_complex z) { return {z.re, z.im}; }

vek_complex entry(int64_t i, int64_t salt) {
  return {0.25 + static_cast<double>((i * 37 + salt) % 11) / 8.0,
          static_cast<double>((i * 13 + salt) % 7) / 4.0 - 0.75};
}

void fill(GuardedArray<vek_complex>& v, int64_t salt) {
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = entry(static_cast<int64_t>(i), salt);
}

// Position of element i (from 0) of a vector of n elements with increment inc, as the BLAS stores it.
std::size_t at(int64_t i, int64_t n, int64_t inc) {
  return static_cast<std::size_t>(inc > 0 ? i * inc : (n - 1 - i) * -inc);
}

// |computed - exact| within a few roundings of the terms' magnitudes.
void expect_close(vek_complex got, cl exact, long double scale, const std::string& what) {
  EXPECT_LE(std::abs(as_long(got) - exact), 1e-14L * (scale + 1)) << what;
}

// Y := ALPHA*B*X + BETA*Y for the m by n matrix B whose element (i, j) is element(i, j), by the published
// definition in long double, with each row's sum of term magnitudes as its scale; BETA = 0 does not read Y.
struct Product {
  std::vector<cl> value;
  std::vector<long double> scale;
};

template <class Element>
Product published_product(int64_t m, int64_t n, Element element, GuardedArray<vek_complex>& x, int64_t incx,
                          GuardedArray<vek_complex>& y, int64_t incy, vek_complex alpha, vek_complex beta) {
  Product p{std::vector<cl>(static_cast<std::size_t>(m)), std::vector<long double>(static_cast<std::size_t>(m))};
  for (int64_t i = 0; i < m; ++i) {
    cl sum = 0;
    long double size = 0;
    for (int64_t j = 0; j < n; ++j) {
      const cl term = element(i, j) * as_long(x[at(j, n, incx)]);
      sum += term, size += std::abs(term);
    }
    const cl yi = beta.re == 0 && beta.im == 0 ? cl(0) : as_long(y[at(i, m, incy)]);
    p.value[static_cast<std::size_t>(i)] = as_long(alpha) * sum + as_long(beta) * yi;
    p.scale[static_cast<std::size_t>(i)] = std::abs(as_long(alpha)) * size + std::abs(yi);
  }
  return p;
}

void expect_product(const Product& p, GuardedArray<vek_complex>& y, int64_t incy, const std::string& what) {
  const auto m = static_cast<int64_t>(p.value.size());
  for (int64_t i = 0; i < m; ++i)
    expect_close(y[at(i, m, incy)], p.value[static_cast<std::size_t>(i)], p.scale[static_cast<std::size_t>(i)],
                 what + " row " + std::to_string(i));
}

TEST(VectorKernelRoutes, ZgemvReadsOnlyItsVectorsAndComputesThePublishedProduct) {
  const vek_complex alpha{1.25, -0.5}, beta{0.5, 0.25};
  for (int64_t m : {1, 2, 3, 4, 5, 6, 7, 10, 14, 66})
    for (int64_t n : {1, 2, 3, 5, 70})
      for (int64_t incx : {1, 2, -1, -3})
        for (int64_t incy : {1, -2})
          for (Guard side : {Guard::after, Guard::before}) {
            const int64_t lda = m + (n % 2);
            GuardedArray<vek_complex> a(static_cast<std::size_t>(lda * (n - 1) + m), side);
            GuardedArray<vek_complex> x(static_cast<std::size_t>(1 + (n - 1) * std::abs(incx)), side);
            GuardedArray<vek_complex> y(static_cast<std::size_t>(1 + (m - 1) * std::abs(incy)), side);
            fill(a, 1), fill(x, 2), fill(y, 3);
            const auto element = [&](int64_t i, int64_t j) {
              return as_long(a[static_cast<std::size_t>(i + j * lda)]);
            };
            const Product expected = published_product(m, n, element, x, incx, y, incy, alpha, beta);
            zgemv_("N", &m, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, y.data(), &incy, 1);
            expect_product(expected, y, incy, "m=" + std::to_string(m) + " n=" + std::to_string(n) + " incx=" +
                                                  std::to_string(incx) + " incy=" + std::to_string(incy));
          }
}

TEST(VectorKernelRoutes, ZhemvReadsOnlyItsVectorsAndComputesThePublishedProduct) {
  const vek_complex alpha{0.75, 0.5};
  for (const char* uplo : {"U", "L"})
    for (int64_t n : {1, 2, 3, 4, 5, 7, 9, 33})
      for (int64_t incx : {1, -2})
        for (int64_t incy : {1, 2, -1})
          for (vek_complex beta : {vek_complex{0, 0}, vek_complex{0.5, -0.25}})
            for (Guard side : {Guard::after, Guard::before}) {
              const int64_t lda = n + 1;
              GuardedArray<vek_complex> a(static_cast<std::size_t>(lda * (n - 1) + n), side);
              GuardedArray<vek_complex> x(static_cast<std::size_t>(1 + (n - 1) * std::abs(incx)), side);
              GuardedArray<vek_complex> y(static_cast<std::size_t>(1 + (n - 1) * std::abs(incy)), side);
              fill(a, 4), fill(x, 5), fill(y, 6);
              // BETA = 0: Y is not read, so a NaN in it must not reach the result.
              if (beta.re == 0) y.fill({std::nan(""), 0});
              const bool upper = uplo[0] == 'U';
              // Element (i, j) of the Hermitian matrix from the stored triangle; the diagonal is real.
              const auto element = [&](int64_t i, int64_t j) {
                const bool stored = upper ? i <= j : i >= j;
                const cl s = as_long(a[static_cast<std::size_t>(stored ? i + j * lda : j + i * lda)]);
                return i == j ? cl(s.real(), 0) : stored ? s : std::conj(s);
              };
              const Product expected = published_product(n, n, element, x, incx, y, incy, alpha, beta);
              zhemv_(uplo, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, y.data(), &incy, 1);
              expect_product(expected, y, incy, std::string(uplo) + " n=" + std::to_string(n) + " incx=" +
                                                    std::to_string(incx) + " incy=" + std::to_string(incy) +
                                                    " beta=" + std::to_string(beta.re));
            }
}

TEST(VectorKernelRoutes, StridedComplexDotsReadOnlyTheirVectors) {
  for (int64_t n : {1, 2, 3, 4, 7, 8, 9, 31})
    for (int64_t incx : {1, 2, 3, -2})
      for (int64_t incy : {1, 2, -1})
        for (Guard side : {Guard::after, Guard::before}) {
          GuardedArray<vek_complex> x(static_cast<std::size_t>(1 + (n - 1) * std::abs(incx)), side);
          GuardedArray<vek_complex> y(static_cast<std::size_t>(1 + (n - 1) * std::abs(incy)), side);
          fill(x, 7), fill(y, 8);
          cl dotu = 0, dotc = 0;
          long double size = 0;
          for (int64_t i = 0; i < n; ++i) {
            const cl xi = as_long(x[at(i, n, incx)]), yi = as_long(y[at(i, n, incy)]);
            dotu += xi * yi, dotc += std::conj(xi) * yi, size += std::abs(xi * yi);
          }
          const std::string what = "n=" + std::to_string(n) + " incx=" + std::to_string(incx) + " incy=" +
                                   std::to_string(incy);
          expect_close(zdotu_(&n, x.data(), &incx, y.data(), &incy), dotu, size, "zdotu " + what);
          expect_close(zdotc_(&n, x.data(), &incx, y.data(), &incy), dotc, size, "zdotc " + what);
        }
}

}  // namespace
