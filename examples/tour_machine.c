#include <string.h>

#include "tour.h"
#include "vek.h"

void tour_machine(void) {
  tour_section("Machine constants (x02)");
  printf("precision %.17g, safe range %.17g, largest %.17g, digits %lld\n", x02ajf_(), x02amf_(), x02alf_(),
         (long long)x02bjf_());

  tour_section("IEEE special values (x07)");
  int64_t isign = -1, quiet = 1;
  double inf = 0, nan = 0;
  x07baf_(&isign, &inf);
  x07bbf_(&quiet, &nan);
  printf("x07baf(-1) = %g, finite? %lld; x07bbf(1) is a NaN? %lld\n", inf, (long long)x07aaf_(&inf),
         (long long)x07abf_(&nan));

  tour_section("Complex helpers (a02)");
  double xr = -4, xi = 0, yr, yi, zr, zi, dr = 3, di = 4;
  a02aaf_(&xr, &xi, &yr, &yi);
  a02acf_(&xr, &xi, &dr, &di, &zr, &zi);
  printf("sqrt(-4) = (%g, %g); |3 + 4i| = %g; -4 / (3 + 4i) = (%g, %g)\n", yr, yi, a02abf_(&dr, &di), zr, zi);

  tour_section("Matrix printers (x04caf, x04cbf)");
  const double a[6] = {1.5, -2.25, 3.0, 4e-2, 5.0, 6.125};
  int64_t sorder = 1, m = 2, n = 3, lda = 2, nout = 6, ifail = 0, ncols = 60, indent = 2;
  const char* title = "A 2 x 3 matrix, layout chosen from the values";
  x04caf_(&sorder, "G", "N", &m, &n, a, &lda, title, &nout, &ifail, 1, 1, (int64_t)strlen(title));
  const char* rlabs = "first second";
  x04cbf_(&sorder, "Upper", "Non-unit", &m, &n, a, &lda, "1PE11.3", "Its upper triangle in 1PE11.3", "C", rlabs,
          "I", "", &ncols, &indent, &nout, &ifail, 5, 8, 7, 29, 1, 6, 1, 0);

  tour_section("Date and time (x05)");
  int64_t itime[7];
  char text[28];
  x05aaf_(itime);
  x05abf_(itime, text, 28);
  printf("now: %.28s\n", text);
}
