// The Gauss-Kronrod rules of the adaptive integrators: the (2n+1)-point Kronrod extension of the n-point Gauss
// rule applied to one subinterval, with the by-products the drivers test (the rule on |f| and on the deviation
// from the mean) and the error estimate of Piessens et al. (QUADPACK, 1983).
//
// Tables: computed by tools/make_kronrod_tables.py (mpmath, 250 digits) and rounded to nearest; they equal the
// published QUADPACK tables. Abscissae on [-1, 1] from the largest down to 0; the Gauss nodes stand at the odd
// positions (counted from 0), and gauss_weights[j] belongs to nodes[2j + 1] (with an odd number of Gauss nodes,
// as in the 15-point rule, the last one belongs to the centre).
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/constants.h"

namespace vek::zeros_quad {

template <int Points>
struct KronrodTable {
  static constexpr int kHalf = (Points - 1) / 2;  // node pairs; nodes[kHalf] is the centre
  std::array<double, kHalf + 1> nodes;
  std::array<double, kHalf + 1> kronrod_weights;
  std::array<double, (kHalf + 1) / 2> gauss_weights;
};

inline constexpr KronrodTable<15> kKronrod15 = {
    {0.9914553711208126, 0.9491079123427585, 0.8648644233597691, 0.7415311855993945, 0.5860872354676911,
     0.4058451513773972, 0.20778495500789848, 0.0},
    {0.022935322010529224, 0.06309209262997856, 0.10479001032225019, 0.14065325971552592, 0.1690047266392679,
     0.19035057806478542, 0.20443294007529889, 0.20948214108472782},
    {0.1294849661688697, 0.27970539148927664, 0.3818300505051189, 0.4179591836734694}};

inline constexpr KronrodTable<21> kKronrod21 = {
    {0.9956571630258081, 0.9739065285171717, 0.9301574913557082, 0.8650633666889845, 0.7808177265864169,
     0.6794095682990244, 0.5627571346686047, 0.4333953941292472, 0.2943928627014602, 0.14887433898163122, 0.0},
    {0.011694638867371874, 0.032558162307964725, 0.054755896574351995, 0.07503967481091996, 0.0931254545836976,
     0.10938715880229764, 0.12349197626206584, 0.13470921731147334, 0.14277593857706009, 0.14773910490133849,
     0.1494455540029169},
    {0.06667134430868814, 0.1494513491505806, 0.21908636251598204, 0.26926671930999635, 0.29552422471475287}};

inline constexpr KronrodTable<61> kKronrod61 = {
    {0.9994844100504906, 0.9968934840746495, 0.9916309968704046, 0.9836681232797472, 0.9731163225011262,
     0.9600218649683075, 0.94437444474856, 0.9262000474292743, 0.9055733076999078, 0.8825605357920527,
     0.8572052335460612, 0.8295657623827684, 0.799727835821839, 0.7677774321048262, 0.7337900624532268,
     0.6978504947933158, 0.6600610641266269, 0.6205261829892429, 0.5793452358263617, 0.5366241481420199,
     0.49248046786177857, 0.44703376953808915, 0.4004012548303944, 0.3527047255308781, 0.30407320227362505,
     0.25463692616788985, 0.20452511668230988, 0.15386991360858354, 0.10280693796673702, 0.0514718425553177,
     0.0},
    {0.0013890136986770077, 0.003890461127099884, 0.0066307039159312926, 0.009273279659517764,
     0.011823015253496341, 0.014369729507045804, 0.01692088918905327, 0.019414141193942382,
     0.021828035821609193, 0.0241911620780806, 0.0265099548823331, 0.02875404876504129, 0.030907257562387762,
     0.03298144705748372, 0.034979338028060025, 0.03688236465182123, 0.038678945624727595,
     0.040374538951535956, 0.041969810215164244, 0.04345253970135607, 0.04481480013316266, 0.04605923827100699,
     0.04718554656929915, 0.04818586175708713, 0.04905543455502978, 0.04979568342707421, 0.05040592140278235,
     0.05088179589874961, 0.051221547849258774, 0.05142612853745902, 0.05149472942945157},
    {0.007968192496166605, 0.01846646831109096, 0.02878470788332337, 0.03879919256962705, 0.04840267283059405,
     0.057493156217619065, 0.06597422988218049, 0.0737559747377052, 0.08075589522942021, 0.08689978720108298,
     0.09212252223778612, 0.09636873717464425, 0.09959342058679527, 0.1017623897484055, 0.10285265289355884}};

// The error estimate of a rule from the difference of two results: raised towards resasc by
// resasc min(1, (200 err / resasc)^1.5) and kept above 50 eps resabs, the rounding error of the sum.
inline double rescaled_error(double difference, double resabs, double resasc) {
  double err = std::abs(difference);
  if (resasc != 0.0 && err != 0.0) err = resasc * std::min(1.0, std::pow(200.0 * err / resasc, 1.5));
  constexpr double eps = constants::eps();
  if (resabs > constants::safe_range() / (50.0 * eps)) err = std::max(50.0 * eps * resabs, err);
  return err;
}

// One application of a rule to [a, b] (b < a allowed: the integral changes sign, resabs and resasc do not).
struct RuleEstimate {
  double result;  // the Kronrod result
  double error;   // the estimate of |integral - result|
  double resabs;  // the Kronrod rule applied to |f|
  double resasc;  // the Kronrod rule applied to |f - mean of f|
};

// The Points abscissae of a rule on [a, b] in the order the integrand is evaluated: the centre, then the pairs
// centre -+ h x at the Gauss nodes, then at the Kronrod nodes.
template <int Points>
void rule_abscissae(const KronrodTable<Points>& t, double a, double b, double* x) {
  constexpr int half = KronrodTable<Points>::kHalf;
  const double centre = 0.5 * (a + b);
  const double h = 0.5 * (b - a);
  x[0] = centre;
  int i = 1;
  for (int k = 1; k < half; k += 2, i += 2) {
    x[i] = centre - h * t.nodes[k];
    x[i + 1] = centre + h * t.nodes[k];
  }
  for (int k = 0; k < half; k += 2, i += 2) {
    x[i] = centre - h * t.nodes[k];
    x[i + 1] = centre + h * t.nodes[k];
  }
}

// The rule from the Points values fv at the abscissae of rule_abscissae on a subinterval of half-length h (negative
// when it runs backwards). The error estimate is rescaled_error((Kronrod - Gauss) h).
template <int Points>
RuleEstimate combine_rule(const KronrodTable<Points>& t, const double* fv, double h) {
  constexpr int half = KronrodTable<Points>::kHalf;
  const double abs_h = std::abs(h);
  const double f_centre = fv[0];
  double resg = half % 2 == 1 ? t.gauss_weights[half / 2] * f_centre : 0.0;  // the centre is a Gauss node
  double resk = t.kronrod_weights[half] * f_centre;
  double resabs = std::abs(resk);
  std::array<double, half> fv1, fv2;
  int i = 1;
  for (int j = 0; j < half / 2; ++j, i += 2) {
    const int k = 2 * j + 1;
    const double f1 = fv[i], f2 = fv[i + 1];
    fv1[k] = f1;
    fv2[k] = f2;
    const double sum = f1 + f2;
    resg += t.gauss_weights[j] * sum;
    resk += t.kronrod_weights[k] * sum;
    resabs += t.kronrod_weights[k] * (std::abs(f1) + std::abs(f2));
  }
  for (int j = 0; j < (half + 1) / 2; ++j, i += 2) {
    const int k = 2 * j;
    const double f1 = fv[i], f2 = fv[i + 1];
    fv1[k] = f1;
    fv2[k] = f2;
    resk += t.kronrod_weights[k] * (f1 + f2);
    resabs += t.kronrod_weights[k] * (std::abs(f1) + std::abs(f2));
  }
  const double mean = resk * 0.5;
  double resasc = t.kronrod_weights[half] * std::abs(f_centre - mean);
  for (int k = 0; k < half; ++k) resasc += t.kronrod_weights[k] * (std::abs(fv1[k] - mean) + std::abs(fv2[k] - mean));

  resabs *= abs_h;
  resasc *= abs_h;
  return {resk * h, rescaled_error((resk - resg) * h, resabs, resasc), resabs, resasc};
}

// An integrand called with all the abscissae of one subinterval at once: f(x, fv, n) sets fv[i] = f(x[i]).
template <class Integrand>
concept BatchIntegrand = std::is_invocable_v<Integrand&, const double*, double*, int64_t>;

// One application of the rule to [a, b]; the integrand is called point by point in the order of
// rule_abscissae, or once for all of them.
template <int Points, class Integrand>
RuleEstimate apply_rule(const KronrodTable<Points>& t, Integrand& f, double a, double b) {
  std::array<double, Points> x, fv;
  rule_abscissae(t, a, b, x.data());
  if constexpr (BatchIntegrand<Integrand>)
    f(x.data(), fv.data(), int64_t{Points});
  else
    for (int i = 0; i < Points; ++i) fv[i] = f(x[i]);
  return combine_rule(t, fv.data(), 0.5 * (b - a));
}

}  // namespace vek::zeros_quad
