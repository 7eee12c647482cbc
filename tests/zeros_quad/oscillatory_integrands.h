/* The integrands f of the tests of the weighted integrators d01anf and d01asf (the weight cos(omega x) or
 * sin(omega x) is the routine's), by name. Plain C, so that the generator of the reference runs
 * (data/make_oscillatory_gsl.c, which runs GSL) and the tests evaluate the same expressions. A value at a
 * singular end point is 0, as in GSL's test suite. */
#ifndef VEK_TESTS_OSCILLATORY_INTEGRANDS_H
#define VEK_TESTS_OSCILLATORY_INTEGRANDS_H

#include <math.h>
#include <string.h>

typedef double (*oscillatory_integrand_fn)(double x, double alpha);

/* log(x): with sin(10 pi x) on [0,1] GSL's qawo test. */
static double oi_log(double x, double alpha) { (void)alpha; return x == 0 ? 0 : log(x); }
/* x^alpha, for alpha < 0 singular at 0. */
static double oi_power(double x, double alpha) { return x == 0 ? 0 : pow(x, alpha); }
/* exp(-alpha x). */
static double oi_decay(double x, double alpha) { return exp(-alpha * x); }
/* 1 / (alpha^2 + x^2). */
static double oi_lorentz(double x, double alpha) { return 1 / (alpha * alpha + x * x); }
/* x / (1 + x^2): with sin over (0, inf) slowly convergent. */
static double oi_x_over(double x, double alpha) { (void)alpha; return x / (1 + x * x); }
/* alpha: a constant. */
static double oi_constant(double x, double alpha) { (void)x; return alpha; }

static oscillatory_integrand_fn oscillatory_integrand(const char* name) {
  static const struct {
    const char* name;
    oscillatory_integrand_fn f;
  } table[] = {
      {"log", oi_log},         {"power", oi_power},     {"decay", oi_decay},
      {"lorentz", oi_lorentz}, {"x_over", oi_x_over}, {"constant", oi_constant},
  };
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i)
    if (strcmp(table[i].name, name) == 0) return table[i].f;
  return 0;
}

#endif
