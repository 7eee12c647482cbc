#include <string.h>

#include "tour.h"
#include "vek.h"

void tour_units(void) {
  tour_section("Output units (x04)");
  int64_t iflag = 0, nerr = -1, nadv = -1;
  x04aaf_(&iflag, &nerr);
  x04abf_(&iflag, &nadv);
  printf("error unit %lld, advisory unit %lld\n", (long long)nerr, (long long)nadv);
  const char* rec = "A record written on the advisory unit by x04baf: 100% of it.";
  x04baf_(&nadv, rec, (int64_t)strlen(rec));

  tour_section("A failure reported with IFAIL = -1 (x04acf with MODE = 7)");
  int64_t unit = 9, mode = 7, ifail = -1;
  x04acf_(&unit, "out.txt", &mode, &ifail, 7);
  printf("IFAIL on exit: %lld\n", (long long)ifail);
}
