/* The integrands of the tests of d01amf, d01aqf, d01apf and d01bdf beyond those of quadrature_integrands.h: the
 * infinite-range and weighted cases of QUADPACK's and GSL's test suites and a few with closed forms. Plain C,
 * shared by the generator of the reference runs (data/make_quadinf_gsl.c) and the tests. For d01aqf and d01apf
 * they are the f that the routine multiplies by its weight. */
#ifndef VEK_TESTS_QUADINF_INTEGRANDS_H
#define VEK_TESTS_QUADINF_INTEGRANDS_H

#include "quadrature_integrands.h"

/* log(x) / (1 + 100 x^2) on (0, inf): -pi log(10) / 20. */
static double qi_log_lorentz(double x, double alpha) { (void)alpha; return log(x) / (1 + 100 * x * x); }
/* x^2 exp(-2^-alpha x) on (0, inf): 2^(3 alpha + 1). */
static double qi_square_exp(double x, double alpha) { return x * x * exp(-pow(2.0, -alpha) * x); }
/* x^(alpha-1) / (1 + 10 x)^2 on (0, inf): 10^-alpha (1 - alpha) pi / sin(pi alpha). */
static double qi_power_over_square(double x, double alpha) { return pow(x, alpha - 1) / pow(1 + 10 * x, 2.0); }
/* exp(-x^2 - alpha x) on (-inf, inf): sqrt(pi) exp(alpha^2 / 4). */
static double qi_gauss_linear(double x, double alpha) { return exp(-x * x - alpha * x); }
/* cos(alpha x) / (1 + x^2) on (-inf, inf): pi exp(-|alpha|). */
static double qi_cos_lorentz(double x, double alpha) { return cos(alpha * x) / (1 + x * x); }
/* 1 / (5 x^3 + 6): GSL's principal-value test over (-1, 5) with the pole at 0. */
static double qi_cubic_inverse(double x, double alpha) { (void)alpha; return 1 / (5 * x * x * x + 6); }
/* 1 / (1 + log(x)^2)^2 on (0, 1): GSL's test of the logarithmic end-point weight. */
static double qi_log_square(double x, double alpha) {
  (void)alpha;
  const double l = log(x);
  return 1 / ((1 + l * l) * (1 + l * l));
}

static quadrature_integrand_fn quadinf_integrand(const char* name) {
  static const struct {
    const char* name;
    quadrature_integrand_fn f;
  } table[] = {
      {"log_lorentz", qi_log_lorentz},     {"square_exp", qi_square_exp},     {"power_over_square", qi_power_over_square},
      {"gauss_linear", qi_gauss_linear},   {"cos_lorentz", qi_cos_lorentz}, {"cubic_inverse", qi_cubic_inverse},
      {"log_square", qi_log_square},
  };
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i)
    if (strcmp(table[i].name, name) == 0) return table[i].f;
  return quadrature_integrand(name);
}

#endif
