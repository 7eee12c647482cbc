#include "tour.h"
#include "vek.h"

void tour_linalg(void) {
  tour_section("Linear algebra under published and library names (dgesv = f07aaf, f04baf)");
  /* A X = B for a 3 by 3 system, once through the published LAPACK name, once through the F04 driver. */
  const double a0[9] = {4, 1, 0, 1, 5, 2, 0, 2, 6}; /* column-major */
  double a[9], b[3] = {5, 10, 14}, rcond = 0, errbnd = 0;
  int64_t n = 3, nrhs = 1, ipiv[3], info = -1, ifail = -1;
  for (int i = 0; i < 9; ++i) a[i] = a0[i];
  dgesv_(&n, &nrhs, a, &n, ipiv, b, &n, &info);
  printf("dgesv:  INFO = %lld, x = %.15g %.15g %.15g\n", (long long)info, b[0], b[1], b[2]);
  double b2[3] = {5, 10, 14};
  for (int i = 0; i < 9; ++i) a[i] = a0[i];
  f04baf_(&n, &nrhs, a, &n, ipiv, b2, &n, &rcond, &errbnd, &ifail);
  printf("f04baf: IFAIL = %lld, x = %.15g %.15g %.15g, RCOND = %.3g, ERRBND = %.3g\n", (long long)ifail, b2[0], b2[1],
         b2[2], rcond, errbnd);

  tour_section("An illegal argument: dgetrf with LDA < M (INFO = -4, nothing stops)");
  int64_t m = 3, lda = 2;
  dgetrf_(&m, &n, a, &lda, ipiv, &info);
  printf("INFO = %lld\n", (long long)info);

  tour_section("Single precision: sgemm");
  const float s[4] = {1, 2, 3, 4}, one = 1, zero = 0;
  float c[4];
  int64_t two = 2;
  sgemm_("N", "T", &two, &two, &two, &one, s, &two, s, &two, &zero, c, &two, 1, 1);
  printf("A A**T = [%g %g; %g %g]\n", c[0], c[2], c[1], c[3]);
}
