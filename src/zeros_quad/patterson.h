// The non-adaptive integrator of Piessens et al. (QUADPACK 1983, dqng): the 10-point Gauss rule and its
// successive Kronrod-Patterson extensions to 21, 43 and 87 points (Patterson, Math. Comp. 22, 1968), each
// reusing every value of f already computed, stopping at the first whose error estimate meets the tolerance.
//
// Tables: computed by tools/make_patterson_tables.py (mpmath, 300 digits) and rounded to nearest; they equal the
// published tables of dqng. x1 holds the positive Gauss nodes, x2, x3, x4 the positive nodes each extension
// adds, from the largest down; the weights of a rule are given at the nodes of x1, x2, ... in that order
// ("a") and at its new nodes then the centre ("b").
#pragma once

#include <array>
#include <cmath>

#include "zeros_quad/adaptive_quadrature.h"
#include "zeros_quad/gauss_kronrod.h"

namespace vek::zeros_quad {

namespace patterson {
inline constexpr std::array<double, 5> x1 = {0.9739065285171717, 0.8650633666889845, 0.6794095682990244,
                                             0.4333953941292472, 0.14887433898163122};
inline constexpr std::array<double, 5> x2 = {0.9956571630258081, 0.9301574913557082, 0.7808177265864169,
                                             0.5627571346686047, 0.2943928627014602};
inline constexpr std::array<double, 11> x3 = {
    0.999333360901932,  0.9874334029080889, 0.9548079348142663, 0.9001486957483283, 0.8251983149831141,
    0.732148388989305,  0.6228479705377252, 0.4994795740710565, 0.36490166134658075, 0.2222549197766013,
    0.07465061746138332};
inline constexpr std::array<double, 22> x4 = {
    0.9999029772627293,  0.9979898959866788,  0.9921754978606873, 0.9813581635727128, 0.9650576238583847,
    0.9431676131336706,  0.9158064146855072,  0.8832216577713164, 0.8457107484624157, 0.8035576580352309,
    0.7570057306854956,  0.7062732097873218,  0.6515894665011779, 0.5932233740579611, 0.531493605970832,
    0.46676362304202285, 0.3994248478592188,  0.3298748771061883, 0.25850355920216156, 0.18569539656834666,
    0.11184221317990747, 0.03735212339461987};
inline constexpr std::array<double, 5> w10 = {0.06667134430868814, 0.1494513491505806, 0.21908636251598204,
                                              0.26926671930999635, 0.29552422471475287};
inline constexpr std::array<double, 5> w21a = {0.032558162307964725, 0.07503967481091996, 0.10938715880229764,
                                               0.13470921731147334, 0.14773910490133849};
inline constexpr std::array<double, 6> w21b = {0.011694638867371874, 0.054755896574351995, 0.0931254545836976,
                                               0.12349197626206584,  0.14277593857706009,  0.1494455540029169};
inline constexpr std::array<double, 10> w43a = {0.016296734289666565, 0.0375228761208695,  0.05469490205825544,
                                                0.06735541460947808,  0.07387019963239395, 0.005768556059769796,
                                                0.027371890593248842, 0.04656082691042883, 0.06174499520144257,
                                                0.07138726726869339};
inline constexpr std::array<double, 12> w43b = {
    0.001844477640212414, 0.010798689585891651, 0.021895363867795427, 0.032597463975345686,
    0.04216313793519181,  0.050741939600184575, 0.05837939554261925,  0.06474640495144589,
    0.06956619791235648,  0.07282444147183322,  0.07450775101417512,  0.07472214751740301};
inline constexpr std::array<double, 21> w87a = {
    0.008148377384149173,  0.018761438201562824, 0.027347451050052287, 0.03367770731163793,  0.036935099820427905,
    0.0028848724302115306, 0.013685946022712702, 0.02328041350288831,  0.03087249761171336,  0.03569363363941877,
    0.0009152833452022414, 0.005399280219300471, 0.01094767960111893,  0.016298731696787336, 0.021081568889203834,
    0.025370969769253827,  0.029189697756475754, 0.03237320246720279,  0.034783098950365146, 0.03641222073135179,
    0.037253875503047706};
inline constexpr std::array<double, 23> w87b = {
    0.00027414556376207234, 0.0018071241550579428, 0.0040968692827591646, 0.006758290051847379,
    0.009549957672201646,   0.012329447652244854,  0.015010447346388952,  0.01754896798624319,
    0.019938037786440887,   0.022194935961012286,  0.024339147126000805,  0.026374505414839208,
    0.0282869107887712,     0.030052581128092695,  0.03164675137143993,   0.033050413419978504,
    0.034255099704226064,   0.03526241266015668,   0.0360769896228887,    0.03669860449845609,
    0.037120549269832576,   0.03733422875193504,   0.037361073762679026};
}  // namespace patterson

struct PattersonOutcome {
  double result;
  double abserr;
  int points;      // 21, 43 or 87: the evaluations of f
  bool converged;  // the error estimate met max(|epsabs|, |epsrel| |result|)
};

// The integral of f over [a, b] (b < a gives the negated integral). The error estimate of each rule is the
// difference from the one before, rescaled as the Gauss-Kronrod rules do with resabs and resasc of the 21-point
// rule.
template <class Integrand>
PattersonOutcome integrate_patterson(Integrand& f, double a, double b, Tolerances tol) {
  using namespace patterson;
  const double centre = 0.5 * (a + b), h = 0.5 * (b - a), abs_h = std::abs(h);
  const auto accepted = [&](double result, double error) {
    return error <= std::max(std::abs(tol.absolute), std::abs(tol.relative) * std::abs(result));
  };
  const double f_centre = f(centre);
  std::array<double, 21> pair_sums;  // f(c + h x) + f(c - h x) over x1, x2, x3
  std::array<double, 5> fv1, fv2, fv3, fv4;
  double res10 = 0.0, res21 = w21b[5] * f_centre, resabs = w21b[5] * std::abs(f_centre);
  for (int k = 0; k < 5; ++k) {
    const double u = h * x1[k];
    fv1[k] = f(centre + u);
    fv2[k] = f(centre - u);
    pair_sums[k] = fv1[k] + fv2[k];
    res10 += w10[k] * pair_sums[k];
    res21 += w21a[k] * pair_sums[k];
    resabs += w21a[k] * (std::abs(fv1[k]) + std::abs(fv2[k]));
  }
  for (int k = 0; k < 5; ++k) {
    const double u = h * x2[k];
    fv3[k] = f(centre + u);
    fv4[k] = f(centre - u);
    pair_sums[5 + k] = fv3[k] + fv4[k];
    res21 += w21b[k] * pair_sums[5 + k];
    resabs += w21b[k] * (std::abs(fv3[k]) + std::abs(fv4[k]));
  }
  const double mean = 0.5 * res21;
  double resasc = w21b[5] * std::abs(f_centre - mean);
  for (int k = 0; k < 5; ++k)
    resasc += w21a[k] * (std::abs(fv1[k] - mean) + std::abs(fv2[k] - mean)) +
              w21b[k] * (std::abs(fv3[k] - mean) + std::abs(fv4[k] - mean));
  resabs *= abs_h;
  resasc *= abs_h;
  PattersonOutcome out{res21 * h, rescaled_error((res21 - res10) * h, resabs, resasc), 21, false};
  if ((out.converged = accepted(out.result, out.abserr))) return out;

  double res43 = w43b[11] * f_centre;
  for (int k = 0; k < 10; ++k) res43 += pair_sums[k] * w43a[k];
  for (int k = 0; k < 11; ++k) {
    const double u = h * x3[k];
    pair_sums[10 + k] = f(centre + u) + f(centre - u);
    res43 += pair_sums[10 + k] * w43b[k];
  }
  out = {res43 * h, rescaled_error((res43 - res21) * h, resabs, resasc), 43, false};
  if ((out.converged = accepted(out.result, out.abserr))) return out;

  double res87 = w87b[22] * f_centre;
  for (int k = 0; k < 21; ++k) res87 += pair_sums[k] * w87a[k];
  for (int k = 0; k < 22; ++k) {
    const double u = h * x4[k];
    res87 += w87b[k] * (f(centre + u) + f(centre - u));
  }
  out = {res87 * h, rescaled_error((res87 - res43) * h, resabs, resasc), 87, false};
  out.converged = accepted(out.result, out.abserr);
  return out;
}

}  // namespace vek::zeros_quad
