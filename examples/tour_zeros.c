#include <math.h>

#include "tour.h"
#include "vek.h"

static double cos_minus_x(const double* x, int64_t* iuser, double* ruser) {
  (void)iuser, (void)ruser;
  return cos(*x) - *x;
}

void tour_zeros(void) {
  tour_section("Zeros of functions (c05)");
  /* The zero of cos x - x in [0, 1], then near 3 (c05auf searches outwards for a sign change first). */
  double a = 0.0, b = 1.0, eps = 1e-12, eta = 0.0, x = 0.0;
  int64_t ifail = -1;
  c05ayf_(&a, &b, &eps, &eta, cos_minus_x, &x, NULL, NULL, &ifail);
  printf("cos x = x in [0, 1]: x = %.15f\n", x);
  double h = 0.1;
  x = 3.0;
  c05auf_(&x, &h, &eps, &eta, cos_minus_x, &a, &b, NULL, NULL, &ifail);
  printf("searching from 3: bracket [%g, %g], x = %.15f\n", a, b, x);

  /* The Lambert W function: both real branches, one near the branch point given by its distance from -1/e,
     and a complex branch. */
  double z = 1.0, d = 1e-20;
  int64_t principal = 0, lower = -1, direct = 0, offset = 1;
  printf("W0(1) = %.17g\n", c05baf_(&z, &principal, &direct, &ifail));
  printf("W-1(-1/e + 1e-20) = %.17g\n", c05baf_(&d, &lower, &offset, &ifail));
  const vek_complex zc = {-2.0, 0.0};
  vek_complex w;
  double resid = 0.0;
  int64_t k = 1;
  c05bbf_(&zc, &k, &direct, &w, &resid, &ifail);
  printf("W1(-2) = %.15f %+.15fi (residual %.1e)\n", w.re, w.im, resid);
}
