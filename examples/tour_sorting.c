#include "tour.h"
#include "vek.h"

static void print_reals(const char* label, const double* v, int n) {
  printf("%s", label);
  for (int i = 0; i < n; ++i) printf(" %g", v[i]);
  printf("\n");
}

void tour_sorting(void) {
  tour_section("Threads (x06) and sorting (m01)");
  int64_t two = 2, ifail = 0;
  x06aaf_(&two, &ifail);
  printf("threads for parallel regions: %lld, in a parallel region now: %lld\n", (long long)x06acf_(),
         (long long)x06aff_());

  /* Sort elements 2..6 descending; elements 1 and 7 stay where they are. */
  double rv[7] = {9.0, 3.5, -1.0, 2.0, 8.25, 0.0, -9.0};
  int64_t m1 = 2, m2 = 6;
  print_reals("RV before:", rv, 7);
  ifail = -1;
  m01caf_(rv, &m1, &m2, "D", &ifail, 1);
  print_reals("RV(2:6) descending:", rv, 7);

  /* Rank, then rearrange by the ranks, then find where 2.5 would go. */
  double x[5] = {4.0, 1.0, 3.0, 1.0, 2.0};
  int64_t irank[5], one = 1, five = 5;
  m01daf_(x, &one, &five, "A", irank, &ifail, 1);
  printf("ranks of 4 1 3 1 2:");
  for (int i = 0; i < 5; ++i) printf(" %lld", (long long)irank[i]);
  printf("\n");
  m01eaf_(x, &one, &five, irank, &ifail);
  print_reals("rearranged:", x, 5);
  const double item = 2.5;
  printf("last element <= 2.5 is number %lld\n", (long long)m01naf_(x, &one, &five, &item, &ifail));

  tour_section("A failure reported with IFAIL = -1 (m01caf with ORDER = 'X')");
  ifail = -1;
  m01caf_(rv, &m1, &m2, "X", &ifail, 1);
  printf("IFAIL on exit: %lld\n", (long long)ifail);
}
