#include "tour.h"
#include "vek.h"

static void print_reals(const char* label, const double* v, int n) {
  printf("%s", label);
  for (int i = 0; i < n; ++i) printf(" %.6f", v[i]);
  printf("\n");
}

void tour_random(void) {
  tour_section("Random numbers (g05): two generators, skip-ahead and leap-frog");
  int64_t genid = 1, subid = 1, seed[1] = {1762543}, lseed = 1, lstate = 0, ifail = 1;
  int64_t state[61];
  /* LSTATE = 0 asks for the length (IFAIL = -1 on a query, silently with IFAIL = 1 on entry). */
  g05kff_(&genid, &subid, seed, &lseed, state, &lstate, &ifail);
  printf("GENID 1 needs LSTATE = %lld\n", (long long)lstate);
  ifail = 0;
  g05kff_(&genid, &subid, seed, &lseed, state, &lstate, &ifail);
  double u[6];
  int64_t n = 6;
  g05saf_(&n, state, u, &ifail);
  print_reals("GENID 1 uniforms:", u, 6);

  /* Two independent streams for two workers: block splitting by skip-ahead ... */
  int64_t mrg = 6, len6 = 61, block = 1000000000;
  int64_t first[61], second[61];
  g05kff_(&mrg, &subid, seed, &lseed, first, &len6, &ifail);
  for (int i = 0; i < 61; ++i) second[i] = first[i];
  g05kjf_(&block, second, &ifail);
  n = 3;
  g05saf_(&n, first, u, &ifail);
  g05saf_(&n, second, u + 3, &ifail);
  print_reals("MRG32k3a stream 1, and stream 2 from 10^9 values on:", u, 6);

  /* ... or interleaving by leap-frog: stream K of 2 gets values K, K+2, K+4, ... */
  int64_t two = 2, k1 = 1, k2 = 2;
  g05kff_(&mrg, &subid, seed, &lseed, first, &len6, &ifail);
  for (int i = 0; i < 61; ++i) second[i] = first[i];
  g05khf_(&two, &k1, first, &ifail);
  g05khf_(&two, &k2, second, &ifail);
  g05saf_(&n, first, u, &ifail);
  g05saf_(&n, second, u + 3, &ifail);
  print_reals("leap-frog streams 1 and 2 of 2:", u, 6);

  double z[4];
  const double xmu = 10.0, var = 4.0;
  n = 4;
  g05skf_(&n, &xmu, &var, state, z, &ifail);
  print_reals("normal variates, mean 10, variance 4:", z, 4);
}
