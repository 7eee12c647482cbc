/* The reference runs of the adaptive integrators: GSL's QUADPACK transcriptions (Debian's libgsl-dev) on the
 * test integrands of ../quadrature_integrands.h, written to quadrature_gsl.txt for test_zeros_quad. GSL is used
 * only here, never linked into the library or the tests. Build and run once from this folder:
 *
 *     cc -O2 -o /tmp/make_quadrature_gsl make_quadrature_gsl.c -lgsl -lgslcblas -lm
 *     /tmp/make_quadrature_gsl > quadrature_gsl.txt
 *
 * Per case one line
 *     ROUTINE INTEGRAND ALPHA A B NPTS POINTS... EPSABS EPSREL LIMIT IFAIL EVALUATIONS LAST RESULT ABSERR
 * followed by LAST lines "A B VALUE ERROR", the subintervals in increasing order of left end point.
 * ROUTINE d01ajf runs gsl_integration_qags, d01alf gsl_integration_qagp (with the NPTS break-points POINTS),
 * d01akf gsl_integration_qag with the 61-point rule. qags ends one bisection before QUADPACK's dqagse, which
 * d01ajf follows (its test is iteration >= limit - 1): it is given LIMIT + 1 when LIMIT > 1, so that both stop
 * with LIMIT subintervals. IFAIL is GSL's
 * error reason mapped to the routines' numbering (its status alone does not tell the two round-off cases
 * apart). EVALUATIONS counts the calls of the integrand. */
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>
#include <gsl/gsl_version.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "gsl_reference.h"

struct test_case {
  const char* routine;
  const char* integrand;
  double alpha, a, b, epsabs, epsrel;
  size_t limit;
  size_t npts;
  double points[3];
};

static const struct test_case cases[] = {
    /* GSL's own test cases for qags and qag (integration/test.c) */
    {"d01ajf", "power_log", 2.6, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "log_power", 2.0, 1.0, 1000.0, 1e-7, 0.0, 1000},
    {"d01akf", "power_log", 2.6, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01akf", "cos_sin", 1.3, 0.3, 2.71, 1e-14, 0.0, 1000},
    {"d01akf", "peak", 2.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01akf", "peak", 2.0, 0.0, 1.0, 0.0, 1e-12, 3},
    /* end-point singularities */
    {"d01ajf", "power_log", 0.5, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "power_log", -0.5, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "power_log", -0.9, 0.0, 1.0, 1e-3, 0.0, 1000},
    {"d01ajf", "log_over_sqrt", 0.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "log_over_sqrt", 0.0, 0.0, 1.0, 1e-12, 1e-12, 1000},
    {"d01ajf", "power", -0.5, 0.0, 1.0, 0.0, 1e-12, 1000},
    {"d01ajf", "power", -0.99, 0.0, 1.0, 0.0, 1e-6, 1000},
    /* interior singularities and peaks */
    {"d01ajf", "interior_root", 0.3333333333333333, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "interior_log", 0.7, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 1e-10, 1000},
    {"d01ajf", "peak", 0.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "peak", 2.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "peak", 5.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "lorentz", 8.0, 0.0, 1.0, 0.0, 1e-8, 1000},
    /* oscillation */
    {"d01ajf", "cos_sin", 1.3, 0.0, 3.141592653589793, 0.0, 1e-10, 1000},
    {"d01ajf", "cos_freq_sin", 100.0, 0.0, 3.141592653589793, 0.0, 1e-10, 1000},
    {"d01ajf", "x_sin_inverse", 0.0, 0.0, 1.0, 0.0, 1e-6, 1000},
    {"d01akf", "cos_freq_sin", 100.0, 0.0, 3.141592653589793, 0.0, 1e-10, 1000},
    {"d01akf", "cos_sin", 5.0, 0.0, 3.141592653589793, 0.0, 1e-12, 1000},
    {"d01akf", "sin", 0.0, 0.0, 100.0, 1e-10, 0.0, 1000},
    /* smooth: one rule application */
    {"d01ajf", "exp", 1.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01akf", "exp", 1.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "exp", 1.0, 0.0, 1.0, 0.0, 2e-14, 1000},
    /* the subdivision limit */
    {"d01ajf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 1},
    {"d01ajf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 2},
    {"d01ajf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 5},
    {"d01ajf", "cos_freq_sin", 100.0, 0.0, 3.141592653589793, 0.0, 1e-10, 10},
    {"d01ajf", "interior_log", 0.7, 0.0, 1.0, 0.0, 1e-10, 12},
    {"d01akf", "cos_freq_sin", 100.0, 0.0, 3.141592653589793, 0.0, 1e-10, 4},
    {"d01akf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 20},
    /* failures: divergence, round-off, bad behaviour */
    {"d01ajf", "power", -1.0, 0.0, 1.0, 0.0, 1e-10, 100},
    {"d01ajf", "power", -1.5, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "power", -1.01, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "step", 0.3, 0.0, 1.0, 0.0, 1e-12, 1000},
    {"d01ajf", "step", 0.3, 0.0, 1.0, 1e-14, 0.0, 1000},
    {"d01ajf", "x_sin_inverse", 0.0, 0.0, 1.0, 0.0, 1e-13, 200},
    {"d01ajf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 2e-14, 1000},
    {"d01akf", "step", 0.3, 0.0, 1.0, 1e-14, 0.0, 1000},
    {"d01akf", "power", -0.5, 0.0, 1.0, 0.0, 1e-13, 1000},
    {"d01akf", "interior_log", 0.7, 0.0, 1.0, 0.0, 2e-14, 1000},
    {"d01akf", "power", -1.0, 0.0, 1.0, 0.0, 1e-10, 100},
    {"d01ajf", "rippled", 8.0, 0.0, 1.0, 0.0, 1e-12, 1000},
    {"d01ajf", "rippled", 10.0, 0.0, 1.0, 0.0, 1e-13, 1000},
    {"d01akf", "rippled", 8.0, 0.0, 1.0, 0.0, 1e-12, 1000},
    {"d01ajf", "power", -0.999, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "power_log", -0.99, 0.0, 1.0, 0.0, 1e-12, 1000},
    {"d01ajf", "interior_root", 0.3, 0.0, 1.0, 0.0, 1e-13, 1000},
    {"d01ajf", "lorentz", 14.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    {"d01ajf", "log_over_sqrt", 0.0, 0.0, 1.0, 0.0, 2e-14, 1000},
    {"d01akf", "lorentz", 14.0, 0.0, 1.0, 0.0, 1e-10, 1000},
    /* break-points (GSL's qagp test first) */
    {"d01alf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 1e-3, 1000, 2, {1.0, 1.4142135623730951}},
    {"d01alf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 1e-10, 1000, 2, {1.0, 1.4142135623730951}},
    {"d01alf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 1e-10, 5, 2, {1.0, 1.4142135623730951}},
    {"d01alf", "cubic_log", 0.0, 0.0, 3.0, 0.0, 1e-10, 4, 2, {1.0, 1.4142135623730951}},
    {"d01alf", "interior_root", 0.3333333333333333, 0.0, 1.0, 0.0, 1e-10, 1000, 1, {0.3333333333333333}},
    {"d01alf", "interior_log", 0.7, 0.0, 1.0, 0.0, 1e-10, 1000, 1, {0.7}},
    {"d01alf", "step", 0.3, 0.0, 1.0, 0.0, 1e-10, 1000, 1, {0.3}},
    {"d01alf", "power_log", -0.9, 0.0, 1.0, 0.0, 1e-10, 1000, 3, {0.5, 0.25, 0.75}},
    {"d01alf", "peak", 3.0, 0.0, 1.0, 0.0, 1e-10, 1000, 1, {0.7853981633974483}},
    {"d01alf", "power_log", -0.5, 0.0, 1.0, 0.0, 1e-10, 1000, 0, {0.0}},
    {"d01alf", "cos_freq_sin", 100.0, 0.0, 3.141592653589793, 0.0, 1e-10, 1000, 2, {1.0, 2.0}},
    {"d01alf", "power", -1.5, 0.0, 1.0, 0.0, 1e-10, 1000, 1, {0.5}},
    {"d01alf", "x_sin_inverse", 0.0, 0.0, 1.0, 0.0, 1e-6, 1000, 1, {0.1}},
};

static int by_value(const void* x, const void* y) {
  const double* p = x;
  const double* q = y;
  return (*p > *q) - (*p < *q);
}

int main(void) {
  gsl_set_error_handler(remember);
  gsl_integration_workspace* w = gsl_integration_workspace_alloc(1001);
  printf("# Made by make_quadrature_gsl.c with GSL %s\n", GSL_VERSION);
  for (size_t k = 0; k < sizeof cases / sizeof cases[0]; ++k) {
    const struct test_case* c = &cases[k];
    struct counted counted = {quadrature_integrand(c->integrand), c->alpha, 0};
    gsl_function fn = {call, &counted};
    double result = 0, abserr = 0;
    last_reason = 0;
    const size_t reach = c->limit > 1 ? c->limit + 1 : 1;
    double pts[5] = {c->a};
    for (size_t i = 0; i < c->npts; ++i) pts[i + 1] = c->points[i];
    pts[c->npts + 1] = c->b;
    qsort(pts, c->npts + 2, sizeof(double), by_value);
    int status;
    if (strcmp(c->routine, "d01ajf") == 0)
      status = gsl_integration_qags(&fn, c->a, c->b, c->epsabs, c->epsrel, reach, w, &result, &abserr);
    else if (strcmp(c->routine, "d01alf") == 0)
      status = gsl_integration_qagp(&fn, pts, c->npts + 2, c->epsabs, c->epsrel, c->limit, w, &result, &abserr);
    else
      status = gsl_integration_qag(&fn, c->a, c->b, c->epsabs, c->epsrel, c->limit, GSL_INTEG_GAUSS61, w, &result,
                                   &abserr);
    const size_t last = w->size;
    printf("%s %s %.17g %.17g %.17g %zu", c->routine, c->integrand, c->alpha, c->a, c->b, c->npts);
    for (size_t i = 0; i < c->npts; ++i) printf(" %.17g", c->points[i]);
    printf(" %.17g %.17g %zu %d %ld %zu %.17g %.17g\n", c->epsabs, c->epsrel, c->limit, ifail_of(status),
           counted.calls, last, result, abserr);
    print_intervals(w, last);
  }
  gsl_integration_workspace_free(w);
  return 0;
}
