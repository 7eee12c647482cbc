/* The integrands of the quadrature tests, by name: the classic test integrands of QUADPACK (Piessens et al.
 * 1983, chapter 4) as GSL's test suite uses them, and a few more with known behaviour. Plain C, so that the
 * generator of the reference lists (data/make_quadrature_gsl.c, which runs GSL) and the tests evaluate the same
 * expressions with the same C library. */
#ifndef VEK_TESTS_QUADRATURE_INTEGRANDS_H
#define VEK_TESTS_QUADRATURE_INTEGRANDS_H

#include <math.h>
#include <string.h>

typedef double (*quadrature_integrand_fn)(double x, double alpha);

/* x^alpha log(1/x) on [0,1]; integral 1/(alpha+1)^2. */
static double qi_power_log(double x, double alpha) { return pow(x, alpha) * log(1 / x); }
/* 4^-alpha / ((x - pi/4)^2 + 16^-alpha): a peak of height 4^alpha at pi/4. */
static double qi_peak(double x, double alpha) {
  return pow(4.0, -alpha) / (pow(x - 0.78539816339744830962, 2.0) + pow(16.0, -alpha));
}
/* cos(2^alpha sin x) on [0,pi]: pi J0(2^alpha). */
static double qi_cos_sin(double x, double alpha) { return cos(pow(2.0, alpha) * sin(x)); }
/* cos(alpha sin x): the same with the frequency given directly. */
static double qi_cos_freq_sin(double x, double alpha) { return cos(alpha * sin(x)); }
/* log(1/x)^(alpha - 1), integrated over [1,1000] in GSL's suite. */
static double qi_log_power(double x, double alpha) { return pow(log(1 / x), alpha - 1); }
/* log(x) / sqrt(x) on [0,1]: -4. */
static double qi_log_over_sqrt(double x, double alpha) { (void)alpha; return log(x) / sqrt(x); }
/* |x - alpha|^-1/2: an interior singularity at alpha. */
static double qi_interior_root(double x, double alpha) { return 1 / sqrt(fabs(x - alpha)); }
/* log|x - alpha|: an interior logarithmic singularity. */
static double qi_interior_log(double x, double alpha) { return log(fabs(x - alpha)); }
/* x^3 log|(x^2 - 1)(x^2 - 2)| on [0,3], singular at 1 and sqrt(2) (GSL's break-point test). */
static double qi_cubic_log(double x, double alpha) {
  (void)alpha;
  const double x2 = x * x;
  return x2 * x * log(fabs((x2 - 1.0) * (x2 - 2.0)));
}
/* exp(alpha x): smooth. */
static double qi_exp(double x, double alpha) { return exp(alpha * x); }
/* x^alpha: divergent at 0 for alpha <= -1. */
static double qi_power(double x, double alpha) { return pow(x, alpha); }
/* A jump from 0 to 1 at alpha. */
static double qi_step(double x, double alpha) { return x < alpha ? 0.0 : 1.0; }
/* x sin(1/x): ever faster oscillation towards 0. */
static double qi_x_sin_inverse(double x, double alpha) { (void)alpha; return x * sin(1 / x); }
/* 1 / ((x - 1/2)^2 + 10^-alpha): a narrow peak. */
static double qi_lorentz(double x, double alpha) { return 1 / ((x - 0.5) * (x - 0.5) + pow(10.0, -alpha)); }
/* sin(x) / x^alpha ... with alpha = 0 plainly sin(x). */
static double qi_sin(double x, double alpha) { return sin(x) / pow(x, alpha); }

/* cos(x) with a fast ripple of amplitude 10^-alpha: a value the rule cannot resolve below that level. */
static double qi_rippled(double x, double alpha) { return cos(x) + pow(10.0, -alpha) * sin(1e7 * x); }

static quadrature_integrand_fn quadrature_integrand(const char* name) {
  static const struct {
    const char* name;
    quadrature_integrand_fn f;
  } table[] = {
      {"power_log", qi_power_log},       {"peak", qi_peak},
      {"cos_sin", qi_cos_sin},           {"cos_freq_sin", qi_cos_freq_sin},
      {"log_power", qi_log_power},       {"log_over_sqrt", qi_log_over_sqrt},
      {"interior_root", qi_interior_root}, {"interior_log", qi_interior_log},
      {"cubic_log", qi_cubic_log},       {"exp", qi_exp},
      {"power", qi_power},               {"step", qi_step},
      {"x_sin_inverse", qi_x_sin_inverse}, {"lorentz", qi_lorentz},
      {"sin", qi_sin},                   {"rippled", qi_rippled},
  };
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i)
    if (strcmp(table[i].name, name) == 0) return table[i].f;
  return 0;
}

#endif
