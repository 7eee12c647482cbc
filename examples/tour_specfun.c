#include <stdint.h>

#include "tour.h"
#include "vek.h"

void tour_specfun(void) {
  tour_section("Error function, gamma family, Faddeeva and Fresnel (s14, s15, s20)");
  const double xs[] = {-1.0, 0.0, 0.5, 2.0, 5.0};
  for (int i = 0; i < 5; ++i) {
    int64_t ifail = 0;
    const double x = xs[i];
    const double erfc_x = s15adf_(&x, &ifail);
    const double erf_x = s15aef_(&x, &ifail);
    printf("x = %5.2f  erf(x) = %.17g  erfc(x) = %.17g\n", x, erf_x, erfc_x);
  }
  double x = 4.5;
  int64_t ifail = 0;
  printf("Gamma(4.5) = %.17g, ln Gamma(100) = %.17g, psi(1) = %.17g\n", s14aaf_(&x, &ifail),
         s14abf_(&(double){100.0}, &ifail), s14acf_(&(double){1.0}, &ifail));
  double a = 3.0, p = 0.0, q = 0.0;
  x = 2.0;
  s14baf_(&a, &x, &p, &q, &ifail);
  printf("P(3, 2) = %.17g, Q(3, 2) = %.17g\n", p, q);
  double b = 2.5, w = 0.0, w1 = 0.0;
  x = 0.3;
  s14ccf_(&a, &b, &x, &w, &w1, &ifail);
  printf("I_0.3(3, 2.5) = %.17g, complement %.17g\n", w, w1);
  const vek_complex z = {1.0, 0.5};
  const vek_complex fz = s15ddf_(&z, &ifail);
  x = 2.0;
  printf("w(1 + 0.5i) = %.17g %+.17gi, S(2) = %.17g, C(2) = %.17g\n", fz.re, fz.im, s20acf_(&x, &ifail),
         s20adf_(&x, &ifail));

  tour_section("A failure reported with IFAIL = -1 (s14aaf at a pole, X = -3)");
  x = -3.0;
  ifail = -1;
  const double g = s14aaf_(&x, &ifail);
  printf("value %g, IFAIL on exit: %lld\n", g, (long long)ifail);
}
