/* The reference runs of the weighted integrators: GSL's transcriptions of QUADPACK's dqawoe and dqawfe
 * (gsl_integration_qawo, gsl_integration_qawf; Debian's libgsl-dev) on the integrands of
 * ../oscillatory_integrands.h, written to oscillatory_gsl.txt for test_zeros_quad. GSL is used only here. Build
 * and run once from this folder:
 *
 *     cc -O2 -o /tmp/make_oscillatory_gsl make_oscillatory_gsl.c -lgsl -lgslcblas -lm
 *     /tmp/make_oscillatory_gsl > oscillatory_gsl.txt
 *
 * d01anf: one line
 *     d01anf INTEGRAND ALPHA A B OMEGA KEY EPSABS EPSREL LIMIT IFAIL EVALUATIONS LAST RESULT ABSERR
 * followed by LAST lines "A B VALUE ERROR", the subintervals in increasing order of left end point. As qags,
 * qawo ends one bisection before dqawoe: it is given LIMIT + 1 when LIMIT > 1. Its table of moments has 1100
 * levels, more than any case reaches.
 * d01asf: one line
 *     d01asf INTEGRAND ALPHA A OMEGA KEY EPSABS LIMLST IFAIL EVALUATIONS LST LAST RESULT ABSERR
 * followed by LST lines "VALUE ERROR", the integrals over the cycles (LAST the subintervals of the last
 * cycle). qawf takes one limit for the cycles and for the subintervals of each cycle; LIMLST is that limit. KEY is 1 for the cosine, 2 for the sine; IFAIL is
 * GSL's error reason mapped to the routines' numbering; EVALUATIONS counts the calls of the integrand. */
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>
#include <gsl/gsl_version.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../oscillatory_integrands.h"

struct counted {
  oscillatory_integrand_fn f;
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

static int ifail_of(int status, int fourier) {
  static const struct {
    const char* reason;
    int ifail, fourier_ifail;
  } reasons[] = {
      {"number of iterations was insufficient", 1, 1},
      {"a maximum of one iteration was insufficient", 1, 1},
      {"maximum number of subdivisions reached", 1, 1},
      {"cannot reach tolerance because of roundoff error on first attempt", 2, 9},
      {"cannot reach tolerance because of roundoff error", 2, 9},
      {"roundoff error prevents tolerance from being achieved", 2, 9},
      {"bad integrand behavior found in the integration interval", 3, 3},
      {"roundoff error detected in the extrapolation table", 4, 2},
      {"integral is divergent, or slowly convergent", 5, 9},
  };
  if (status == GSL_SUCCESS) return 0;
  for (size_t i = 0; i < sizeof reasons / sizeof reasons[0]; ++i)
    if (last_reason && strcmp(last_reason, reasons[i].reason) == 0)
      return fourier ? reasons[i].fourier_ifail : reasons[i].ifail;
  fprintf(stderr, "unknown GSL reason: %s\n", last_reason ? last_reason : "(none)");
  exit(1);
}

struct finite_case {
  const char* integrand;
  double alpha, a, b, omega;
  int key;
  double epsabs, epsrel;
  size_t limit;
};

static const struct finite_case finite_cases[] = {
    /* GSL's qawo test, and with the limits reversed */
    {"log", 0, 0.0, 1.0, 31.41592653589793, 2, 0.0, 1e-7, 1000},
    {"log", 0, 1.0, 0.0, 31.41592653589793, 2, 0.0, 1e-7, 1000},
    /* end-point singularities under fast and slow oscillation */
    {"log", 0, 0.0, 1.0, 31.41592653589793, 1, 0.0, 1e-10, 1000},
    {"log", 0, 0.0, 1.0, 1000.0, 1, 0.0, 1e-10, 1000},
    {"power", -0.5, 0.0, 1.0, 100.0, 1, 0.0, 1e-10, 1000},
    {"power", -0.5, 0.0, 1.0, 100.0, 2, 0.0, 1e-10, 1000},
    {"power", -0.9, 0.0, 1.0, 10.0, 2, 0.0, 1e-8, 1000},
    {"power", -0.5, 0.0, 1.0, 1.0, 1, 0.0, 1e-10, 1000},
    {"power", -0.5, 0.0, 1.0, 6.0, 1, 0.0, 1e-10, 1000},
    {"power", 0.5, 0.0, 1.0, 3.0, 2, 0.0, 1e-12, 1000},
    /* smooth integrands, large omega times length */
    {"decay", 1.0, 0.0, 10.0, 100.0, 1, 0.0, 1e-10, 1000},
    {"decay", 1.0, 0.0, 10.0, 1000.0, 2, 0.0, 1e-12, 1000},
    {"lorentz", 1.0, 0.0, 10.0, 50.0, 1, 0.0, 1e-10, 1000},
    {"constant", 1.0, 0.0, 1.0, 200.0, 2, 0.0, 1e-12, 1000},
    {"lorentz", 0.01, -1.0, 1.0, 30.0, 1, 0.0, 1e-10, 1000},
    /* negative omega: the sine changes sign, the cosine does not */
    {"log", 0, 0.0, 1.0, -31.41592653589793, 2, 0.0, 1e-7, 1000},
    {"log", 0, 0.0, 1.0, -31.41592653589793, 1, 0.0, 1e-7, 1000},
    /* the subdivision limit, round-off, an absolute tolerance */
    {"log", 0, 0.0, 1.0, 31.41592653589793, 1, 0.0, 1e-10, 1},
    {"log", 0, 0.0, 1.0, 31.41592653589793, 1, 0.0, 1e-10, 4},
    {"power", -0.9, 0.0, 1.0, 10.0, 2, 0.0, 2e-14, 1000},
    {"power", -0.5, 0.0, 1.0, 100.0, 1, 1e-6, 0.0, 1000},
    {"power", -1.0, 0.0, 1.0, 10.0, 1, 0.0, 1e-10, 1000},
};

struct infinite_case {
  const char* integrand;
  double alpha, a, omega;
  int key;
  double epsabs;
  size_t limlst;
};

static const struct infinite_case infinite_cases[] = {
    /* GSL's qawf test */
    {"power", -0.5, 0.0, 1.5707963267948966, 1, 1e-7, 1000},
    {"decay", 1.0, 0.0, 1.0, 1, 1e-10, 1000},
    {"decay", 1.0, 0.0, 1.0, 2, 1e-10, 1000},
    {"lorentz", 1.0, 0.0, 1.0, 1, 1e-8, 1000},
    {"x_over", 0.0, 0.0, 2.0, 2, 1e-8, 1000},
    {"power", -1.0, 1.0, 1.0, 2, 1e-9, 1000},
    {"power", -0.5, 0.0, 10.3, 2, 1e-8, 1000},
    {"power", -0.5, 0.0, -10.3, 2, 1e-8, 1000},
    {"power", -2.0, 1.0, 3.0, 1, 1e-10, 1000},
    {"power", -0.5, 0.0, 1.5707963267948966, 1, 1e-10, 3},
    {"power", 0.5, 0.0, 1.0, 1, 1e-8, 50},
};

static int by_left_end(const void* x, const void* y) {
  const double* p = x;
  const double* q = y;
  return (p[0] > q[0]) - (p[0] < q[0]);
}

static void print_intervals(const gsl_integration_workspace* w) {
  const size_t last = w->size;
  double* rows = malloc(4 * last * sizeof(double));
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

int main(void) {
  gsl_set_error_handler(remember);
  gsl_integration_workspace* w = gsl_integration_workspace_alloc(1001);
  gsl_integration_workspace* cycles = gsl_integration_workspace_alloc(1001);
  printf("# Made by make_oscillatory_gsl.c with GSL %s\n", GSL_VERSION);
  for (size_t k = 0; k < sizeof finite_cases / sizeof finite_cases[0]; ++k) {
    const struct finite_case* c = &finite_cases[k];
    struct counted counted = {oscillatory_integrand(c->integrand), c->alpha, 0};
    gsl_function fn = {call, &counted};
    gsl_integration_qawo_table* t = gsl_integration_qawo_table_alloc(
        c->omega, c->b - c->a, c->key == 1 ? GSL_INTEG_COSINE : GSL_INTEG_SINE, 1100);
    double result = 0, abserr = 0;
    last_reason = 0;
    const size_t reach = c->limit > 1 ? c->limit + 1 : 1;
    const int status = gsl_integration_qawo(&fn, c->a, c->epsabs, c->epsrel, reach, w, t, &result, &abserr);
    printf("d01anf %s %.17g %.17g %.17g %.17g %d %.17g %.17g %zu %d %ld %zu %.17g %.17g\n", c->integrand, c->alpha,
           c->a, c->b, c->omega, c->key, c->epsabs, c->epsrel, c->limit, ifail_of(status, 0), counted.calls, w->size,
           result, abserr);
    print_intervals(w);
    gsl_integration_qawo_table_free(t);
  }
  for (size_t k = 0; k < sizeof infinite_cases / sizeof infinite_cases[0]; ++k) {
    const struct infinite_case* c = &infinite_cases[k];
    struct counted counted = {oscillatory_integrand(c->integrand), c->alpha, 0};
    gsl_function fn = {call, &counted};
    gsl_integration_qawo_table* t =
        gsl_integration_qawo_table_alloc(c->omega, 1.0, c->key == 1 ? GSL_INTEG_COSINE : GSL_INTEG_SINE, 1100);
    double result = 0, abserr = 0;
    last_reason = 0;
    /* w receives the cycles, `cycles` the subintervals of each cycle in turn */
    const int status = gsl_integration_qawf(&fn, c->a, c->epsabs, c->limlst, w, cycles, t, &result, &abserr);
    printf("d01asf %s %.17g %.17g %.17g %d %.17g %zu %d %ld %zu %zu %.17g %.17g\n", c->integrand, c->alpha, c->a,
           c->omega, c->key, c->epsabs, c->limlst, ifail_of(status, 1), counted.calls, w->size, cycles->size, result,
           abserr);
    for (size_t i = 0; i < w->size; ++i) printf("%.17g %.17g\n", w->rlist[i], w->elist[i]);
    gsl_integration_qawo_table_free(t);
  }
  gsl_integration_workspace_free(w);
  gsl_integration_workspace_free(cycles);
  return 0;
}
