/* What the generators of the quadrature reference runs share: the integrand counted per call, GSL's error reasons
 * mapped to the routines' IFAIL numbering (GSL's status alone does not tell the two round-off cases apart), and
 * the subintervals of a GSL workspace printed in increasing order of left end point, one "A B VALUE ERROR" line
 * each. Included by make_quadrature_gsl.c and make_quadinf_gsl.c. */
#ifndef VEK_TESTS_GSL_REFERENCE_H
#define VEK_TESTS_GSL_REFERENCE_H

#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../quadrature_integrands.h"

struct counted {
  quadrature_integrand_fn f;
  double alpha;
  long calls;
};

static double call(double x, void* p) {
  struct counted* c = p;
  ++c->calls;
  return c->f(x, c->alpha);
}

static const char* last_reason;
static void remember(const char* reason, const char* file, int line, int status) {
  (void)file, (void)line, (void)status;
  last_reason = reason;
}

static int ifail_of(int status) {
  static const struct {
    const char* reason;
    int ifail;
  } reasons[] = {
      {"number of iterations was insufficient", 1},
      {"a maximum of one iteration was insufficient", 1},
      {"a maximum of two iterations was insufficient", 1},
      {"maximum number of subdivisions reached", 1},
      {"failed to reach tolerance with highest-order rule", 1},
      {"cannot reach tolerance because of roundoff error on first attempt", 2},
      {"cannot reach tolerance because of roundoff error", 2},
      {"roundoff error prevents tolerance from being achieved", 2},
      {"bad integrand behavior found in the integration interval", 3},
      {"roundoff error detected in the extrapolation table", 4},
      {"integral is divergent, or slowly convergent", 5},
  };
  if (status == GSL_SUCCESS) return 0;
  for (size_t i = 0; i < sizeof reasons / sizeof reasons[0]; ++i)
    if (last_reason && strcmp(last_reason, reasons[i].reason) == 0) return reasons[i].ifail;
  fprintf(stderr, "unknown GSL reason: %s\n", last_reason ? last_reason : "(none)");
  exit(1);
}

static int by_left_end(const void* x, const void* y) {
  const double* p = x;
  const double* q = y;
  return (p[0] > q[0]) - (p[0] < q[0]);
}

static void print_intervals(const gsl_integration_workspace* w, size_t last) {
  double* rows = malloc((4 * last + 1) * sizeof(double));
  for (size_t i = 0; i < last; ++i) {
    rows[4 * i] = w->alist[i];
    rows[4 * i + 1] = w->blist[i];
    rows[4 * i + 2] = w->rlist[i];
    rows[4 * i + 3] = w->elist[i];
  }
  qsort(rows, last, 4 * sizeof(double), by_left_end);
  for (size_t i = 0; i < last; ++i)
    printf("%.17g %.17g %.17g %.17g\n", rows[4 * i], rows[4 * i + 1], rows[4 * i + 2], rows[4 * i + 3]);
  free(rows);
}

#endif
