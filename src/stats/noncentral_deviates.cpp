// Deviates of the non-central chi-square, F and t distributions (noncentral.h). The search variable makes the
// logarithm of a tail near linear where it is small: the chi-square and F lower tails behave as x^(df/2) near
// 0 and their upper tails as powers times e^(-x/2) or as x^(-df2/2), so u = ln x; the t's tails fall as
// |t|^(-df), so u = asinh t, which is ln(2t) far out and t near 0. Each search starts at the mean (or its
// stand-in where the mean is infinite).
#include <cmath>

#include "stats/noncentral.h"
#include "stats/tail_inverse.h"

namespace vek::stats {

double noncentral_chi_square_deviate(double p, bool lower, double df, double lambda) {
  return std::exp(solve_for_tail(p, lower, std::log(df + lambda), [&](double u, bool lo) {
    const TailPair t = noncentral_chi_square(std::exp(u), df, lambda);
    return lo ? t.lower : t.upper;
  }));
}

double noncentral_f_deviate(double p, bool lower, double df1, double df2, double lambda) {
  const double centre = (1.0 + lambda / df1) * (df2 > 2.0 ? df2 / (df2 - 2.0) : 1.0);
  return std::exp(solve_for_tail(p, lower, std::log(centre), [&](double u, bool lo) {
    const TailPair t = noncentral_f(std::exp(u), df1, df2, lambda);
    return lo ? t.lower : t.upper;
  }));
}

double noncentral_t_deviate(double p, bool lower, double df, double delta) {
  return std::sinh(solve_for_tail(p, lower, std::asinh(delta), [&](double u, bool lo) {
    const TailPair t = noncentral_t(std::sinh(u), df, delta);
    return lo ? t.lower : t.upper;
  }));
}

}  // namespace vek::stats
