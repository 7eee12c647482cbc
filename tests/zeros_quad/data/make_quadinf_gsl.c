/* The reference runs of d01amf, d01aqf, d01apf and d01bdf: GSL's QUADPACK transcriptions (Debian's libgsl-dev)
 * qagiu/qagil/qagi, qawc, qaws and qng on the integrands of ../quadinf_integrands.h, written to quadinf_gsl.txt
 * for test_zeros_quad. GSL is used only here. Build and run once from this folder:
 *
 *     cc -O2 -o /tmp/make_quadinf_gsl make_quadinf_gsl.c -lgsl -lgslcblas -lm
 *     /tmp/make_quadinf_gsl > quadinf_gsl.txt
 *
 * Per case one line
 *     ROUTINE INTEGRAND ALPHA NPAR PARAMETERS... EPSABS EPSREL LIMIT IFAIL EVALUATIONS LAST RESULT ABSERR
 * followed by LAST lines "A B VALUE ERROR", the subintervals in increasing order of left end point (for d01amf
 * those of the variable t of (0,1]). The parameters are the routine's: d01amf BOUND INF, d01aqf A B C, d01apf A B
 * ALFA BETA KEY, d01bdf A B (LIMIT and LAST 0). qagiu, qagil and qagi run qags, which ends one bisection before
 * QUADPACK's dqagie: they are given LIMIT + 1 when LIMIT > 1, as in make_quadrature_gsl.c. IFAIL is GSL's error
 * reason mapped to the routines' numbering; EVALUATIONS counts the calls of the integrand. */
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>
#include <gsl/gsl_version.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../quadinf_integrands.h"
#include "gsl_reference.h"

struct test_case {
  const char* routine;
  const char* integrand;
  double alpha;
  size_t npar;
  double p[5];
  double epsabs, epsrel;
  size_t limit;
};

static const struct test_case cases[] = {
    /* infinite ranges: GSL's tests of qagiu, qagil, qagi first */
    {"d01amf", "log_lorentz", 0.0, 2, {0.0, 1}, 0.0, 1e-3, 1000},
    {"d01amf", "square_exp", 5.0, 2, {0.0, 1}, 0.0, 1e-7, 1000},
    {"d01amf", "power_over_square", 1.0, 2, {0.0, 1}, 0.0, 1e-3, 1000},
    {"d01amf", "gauss_linear", 1.0, 2, {0.0, 2}, 0.0, 1e-7, 1000},
    {"d01amf", "exp", 1.0, 2, {1.0, -1}, 0.0, 1e-7, 1000},
    {"d01amf", "log_lorentz", 0.0, 2, {0.0, 1}, 0.0, 1e-10, 1000},
    {"d01amf", "power_over_square", 0.5, 2, {0.0, 1}, 0.0, 1e-10, 1000},
    {"d01amf", "gauss_linear", 1.0, 2, {0.0, 2}, 0.0, 1e-12, 1000},
    {"d01amf", "exp", -1.0, 2, {2.0, 1}, 0.0, 1e-10, 1000},
    {"d01amf", "exp", 2.0, 2, {-3.0, -1}, 1e-12, 0.0, 1000},
    {"d01amf", "cos_lorentz", 1.0, 2, {0.0, 2}, 0.0, 1e-8, 100},
    {"d01amf", "cos_lorentz", 10.0, 2, {0.0, 2}, 1e-3, 0.0, 100},
    {"d01amf", "power", -2.0, 2, {1.0, 1}, 0.0, 1e-10, 1000},
    {"d01amf", "sin", 1.0, 2, {0.0, 1}, 0.0, 1e-6, 200},
    {"d01amf", "power", -1.0, 2, {1.0, 1}, 0.0, 1e-10, 200},
    {"d01amf", "power", -1.01, 2, {1.0, 1}, 0.0, 1e-10, 1000},
    {"d01amf", "log_lorentz", 0.0, 2, {0.0, 1}, 0.0, 1e-10, 1},
    {"d01amf", "log_lorentz", 0.0, 2, {0.0, 1}, 0.0, 1e-10, 4},
    {"d01amf", "cos_lorentz", 10.0, 2, {0.0, 2}, 0.0, 1e-8, 10},
    {"d01amf", "gauss_linear", 1.0, 2, {0.0, 2}, 0.0, 1.2e-14, 1000},
    /* Cauchy principal values: GSL's qawc test first */
    {"d01aqf", "cubic_inverse", 0.0, 3, {-1.0, 5.0, 0.0}, 0.0, 1e-3, 1000},
    {"d01aqf", "cubic_inverse", 0.0, 3, {-1.0, 5.0, 0.0}, 0.0, 1e-12, 1000},
    {"d01aqf", "exp", 1.0, 3, {0.0, 1.0, 0.5}, 0.0, 1e-10, 1000},
    {"d01aqf", "exp", 1.0, 3, {0.0, 1.0, 0.999}, 0.0, 1e-10, 1000},
    {"d01aqf", "exp", 1.0, 3, {0.0, 1.0, 1e-6}, 0.0, 1e-10, 1000},
    {"d01aqf", "exp", 1.0, 3, {0.0, 1.0, 1.04}, 0.0, 1e-10, 1000},
    {"d01aqf", "exp", 1.0, 3, {0.0, 1.0, 3.0}, 0.0, 1e-10, 1000},
    {"d01aqf", "power", 0.0, 3, {0.0, 1.0, 0.3}, 1e-13, 0.0, 1000},
    {"d01aqf", "peak", 2.0, 3, {0.0, 1.0, 0.5}, 0.0, 1e-10, 1000},
    {"d01aqf", "cos_freq_sin", 100.0, 3, {0.0, 3.141592653589793, 1.0}, 0.0, 1e-8, 1000},
    {"d01aqf", "lorentz", 2.0, 3, {0.0, 1.0, 0.25}, 0.0, 1e-8, 1000},
    {"d01aqf", "peak", 2.0, 3, {0.0, 1.0, 0.5}, 0.0, 1e-10, 3},
    {"d01aqf", "step", 0.3, 3, {0.0, 1.0, 0.7}, 1e-14, 0.0, 1000},
    {"d01aqf", "rippled", 8.0, 3, {0.0, 1.0, 0.4}, 0.0, 1e-12, 1000},
    /* algebraico-logarithmic end-point weights: GSL's qaws test first (log(x-a), then every weight) */
    {"d01apf", "log_square", 0.0, 5, {0.0, 1.0, 0.0, 0.0, 2}, 0.0, 1e-7, 1000},
    {"d01apf", "log_square", 0.0, 5, {0.0, 1.0, -0.5, -0.3, 1}, 0.0, 1e-7, 1000},
    {"d01apf", "log_square", 0.0, 5, {0.0, 1.0, -0.5, -0.3, 2}, 0.0, 1e-7, 1000},
    {"d01apf", "log_square", 0.0, 5, {0.0, 1.0, -0.5, -0.3, 3}, 0.0, 1e-7, 1000},
    {"d01apf", "log_square", 0.0, 5, {0.0, 1.0, -0.5, -0.3, 4}, 0.0, 1e-7, 1000},
    {"d01apf", "power", 0.0, 5, {0.0, 1.0, -0.5, -0.5, 1}, 0.0, 1e-12, 1000},
    {"d01apf", "exp", 1.0, 5, {0.0, 1.0, -0.9, 2.5, 1}, 0.0, 1e-12, 1000},
    {"d01apf", "exp", 1.0, 5, {0.0, 1.0, 2.5, -0.9, 2}, 0.0, 1e-12, 1000},
    {"d01apf", "exp", 1.0, 5, {-1.0, 2.0, 0.0, -0.5, 3}, 0.0, 1e-12, 1000},
    {"d01apf", "exp", 1.0, 5, {-1.0, 2.0, 0.3, 0.7, 4}, 0.0, 1e-12, 1000},
    {"d01apf", "exp", 1.0, 5, {0.0, 1.0, 0.0, 0.0, 1}, 0.0, 1e-12, 1000},
    {"d01apf", "peak", 3.0, 5, {0.0, 1.0, -0.5, 0.5, 1}, 0.0, 1e-10, 1000},
    {"d01apf", "cos_freq_sin", 30.0, 5, {0.0, 3.141592653589793, -0.7, -0.7, 4}, 0.0, 1e-10, 1000},
    {"d01apf", "peak", 3.0, 5, {0.0, 1.0, -0.5, 0.5, 1}, 0.0, 1e-10, 4},
    {"d01apf", "step", 0.3, 5, {0.0, 1.0, -0.5, -0.5, 1}, 1e-14, 0.0, 1000},
    /* the non-adaptive rule: GSL's qng tests first (21, 43, 87 points, and 87 not enough) */
    {"d01bdf", "power_log", 2.6, 2, {0.0, 1.0}, 0.0, 1e-1, 0},
    {"d01bdf", "power_log", 2.6, 2, {0.0, 1.0}, 0.0, 1e-9, 0},
    {"d01bdf", "cos_sin", 1.3, 2, {0.3, 2.71}, 0.0, 1e-12, 0},
    {"d01bdf", "power_log", 2.6, 2, {0.0, 1.0}, 0.0, 1e-13, 0},
    {"d01bdf", "exp", 1.0, 2, {0.0, 1.0}, 0.0, 1e-10, 0},
    {"d01bdf", "exp", 1.0, 2, {0.0, 1.0}, 1e-14, 0.0, 0},
    {"d01bdf", "peak", 2.0, 2, {0.0, 1.0}, 0.0, 1e-10, 0},
    {"d01bdf", "cos_freq_sin", 10.0, 2, {0.0, 3.141592653589793}, 0.0, 1e-10, 0},
    {"d01bdf", "lorentz", 1.0, 2, {0.0, 1.0}, 1e-8, 0.0, 0},
};

int main(void) {
  gsl_set_error_handler(remember);
  gsl_integration_workspace* w = gsl_integration_workspace_alloc(1001);
  printf("# Made by make_quadinf_gsl.c with GSL %s\n", GSL_VERSION);
  for (size_t k = 0; k < sizeof cases / sizeof cases[0]; ++k) {
    const struct test_case* c = &cases[k];
    struct counted counted = {quadinf_integrand(c->integrand), c->alpha, 0};
    gsl_function fn = {call, &counted};
    double result = 0, abserr = 0;
    size_t last = 0;
    last_reason = 0;
    int status;
    if (strcmp(c->routine, "d01amf") == 0) {
      const size_t reach = c->limit > 1 ? c->limit + 1 : 1;
      const int inf = (int)c->p[1];
      if (inf == 1)
        status = gsl_integration_qagiu(&fn, c->p[0], c->epsabs, c->epsrel, reach, w, &result, &abserr);
      else if (inf == -1)
        status = gsl_integration_qagil(&fn, c->p[0], c->epsabs, c->epsrel, reach, w, &result, &abserr);
      else
        status = gsl_integration_qagi(&fn, c->epsabs, c->epsrel, reach, w, &result, &abserr);
      last = w->size;
    } else if (strcmp(c->routine, "d01aqf") == 0) {
      status = gsl_integration_qawc(&fn, c->p[0], c->p[1], c->p[2], c->epsabs, c->epsrel, c->limit, w, &result,
                                    &abserr);
      last = w->size;
    } else if (strcmp(c->routine, "d01apf") == 0) {
      const int key = (int)c->p[4];
      gsl_integration_qaws_table* t =
          gsl_integration_qaws_table_alloc(c->p[2], c->p[3], key == 2 || key == 4, key == 3 || key == 4);
      status = gsl_integration_qaws(&fn, c->p[0], c->p[1], t, c->epsabs, c->epsrel, c->limit, w, &result, &abserr);
      gsl_integration_qaws_table_free(t);
      last = w->size;
    } else {
      size_t neval = 0;
      status = gsl_integration_qng(&fn, c->p[0], c->p[1], c->epsabs, c->epsrel, &result, &abserr, &neval);
    }
    printf("%s %s %.17g %zu", c->routine, c->integrand, c->alpha, c->npar);
    for (size_t i = 0; i < c->npar; ++i) printf(" %.17g", c->p[i]);
    printf(" %.17g %.17g %zu %d %ld %zu %.17g %.17g\n", c->epsabs, c->epsrel, c->limit, ifail_of(status),
           counted.calls, last, result, abserr);
    print_intervals(w, last);
  }
  gsl_integration_workspace_free(w);
  return 0;
}
