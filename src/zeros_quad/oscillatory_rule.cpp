// The modified Clenshaw-Curtis rule of QUADPACK's dqc25f and dqcheb (Piessens et al. 1983; the weighted 15-point
// Gauss-Kronrod rule of dqk15w is apply_oscillatory_rule's other branch); the moments by the recurrences of
// dqc25f, the boundary-value problem solved as LINPACK's dgtsl does (Gaussian elimination with partial pivoting).
#include "zeros_quad/oscillatory_rule.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vek::zeros_quad {
namespace {

// LINPACK's dgtsl on n >= 2 equations: sub[1..n-1], diag[0..n-1] and super[0..n-2] the three diagonals
// (all overwritten), rhs replaced by the solution. A zero pivot stops the elimination (rhs then holds no
// solution; it cannot occur for the moments' systems with p > 2).
void solve_tridiagonal(int n, double* sub, double* diag, double* super, double* rhs) {
  sub[0] = diag[0];
  diag[0] = super[0];
  super[0] = 0.0;
  super[n - 1] = 0.0;
  for (int k = 0; k + 1 < n; ++k) {
    const int k1 = k + 1;
    if (std::abs(sub[k1]) >= std::abs(sub[k])) {
      std::swap(sub[k1], sub[k]);
      std::swap(diag[k1], diag[k]);
      std::swap(super[k1], super[k]);
      std::swap(rhs[k1], rhs[k]);
    }
    if (sub[k] == 0.0) return;
    const double t = -sub[k1] / sub[k];
    sub[k1] = diag[k1] + t * diag[k];
    diag[k1] = super[k1] + t * super[k];
    super[k1] = 0.0;
    rhs[k1] = rhs[k1] + t * rhs[k];
  }
  if (sub[n - 1] == 0.0) return;
  rhs[n - 1] = rhs[n - 1] / sub[n - 1];
  rhs[n - 2] = (rhs[n - 2] - diag[n - 2] * rhs[n - 1]) / sub[n - 2];
  for (int k = n - 3; k >= 0; --k) rhs[k] = (rhs[k] - diag[k] * rhs[k + 1] - super[k] * rhs[k + 2]) / sub[k];
}

constexpr int kEquations = 25;

// One family of moments from its first values (cosine: v[0..2] for T_0, T_2, T_4; sine: v[0..1] for T_1, T_3).
// The recurrence runs forward for |p| > 24; below, the next 25 values solve a tridiagonal system whose last
// right-hand side carries the asymptotic end value asap(an^2) (Olver's method).
struct MomentRecurrence {
  bool sine;
  double p, par2, par22;
  double ac, as;  // the inhomogeneous terms

  double rhs(double an2) const { return sine ? ac + (an2 - 4.0) * as : as - (an2 - 4.0) * ac; }

  template <class Asymptotic>
  void run(double* v, Asymptotic asap) const {
    const int start = sine ? 2 : 3;  // the first value not in closed form
    if (std::abs(p) > 24.0) {
      double an = sine ? 3.0 : 4.0;
      for (int i = start; i < start + 10; ++i) {
        const double an2 = an * an;
        const double inner = sine ? as : -ac, outer = sine ? ac : as;
        v[i] = ((an2 - 4.0) * (2.0 * (par22 - an2 - an2) * v[i - 1] + inner) + outer -
                par2 * (an + 1.0) * (an + 2.0) * v[i - 2]) /
               (par2 * (an - 1.0) * (an - 2.0));
        an += 2.0;
      }
      return;
    }
    double d[kEquations], d1[kEquations], d2[kEquations];
    double an = sine ? 5.0 : 6.0;
    for (int k = 0; k < kEquations - 1; ++k) {
      const double an2 = an * an;
      d[k] = -2.0 * (an2 - 4.0) * (par22 - an2 - an2);
      d2[k] = (an - 1.0) * (an - 2.0) * par2;
      d1[k + 1] = (an + 3.0) * (an + 4.0) * par2;
      v[k + start] = rhs(an2);
      an += 2.0;
    }
    const double an2 = an * an;
    const int end = kEquations - 1 + start;
    d[kEquations - 1] = -2.0 * (an2 - 4.0) * (par22 - an2 - an2);
    v[end] = rhs(an2);
    v[start] = v[start] - (sine ? 42.0 : 56.0) * par2 * v[start - 1];
    v[end] = v[end] - 2.0 * asap(an2) * par2 * (an - 1.0) * (an - 2.0);
    solve_tridiagonal(kEquations, d1, d, d2, v + start);
  }
};

}  // namespace

void chebyshev_moments(double p, double* moments) {
  const double par2 = p * p, par22 = par2 + 2.0;
  const double sinpar = std::sin(p), cospar = std::cos(p);
  double v[kEquations + 3];

  v[0] = 2.0 * sinpar / p;
  v[1] = (8.0 * cospar + (par2 + par2 - 8.0) * sinpar / p) / par2;
  v[2] = (32.0 * (par2 - 12.0) * cospar + (2.0 * ((par2 - 80.0) * par2 + 192.0) * sinpar) / p) / (par2 * par2);
  const MomentRecurrence cosine{false, p, par2, par22, 8.0 * cospar, 24.0 * p * sinpar};
  cosine.run(v, [&](double an2) {
    const double ass = p * sinpar;
    return (((((210.0 * par2 - 1.0) * cospar - (105.0 * par2 - 63.0) * ass) / an2 - (1.0 - 15.0 * par2) * cospar +
              15.0 * ass) / an2 - cospar + 3.0 * ass) / an2 - cospar) / an2;
  });
  for (int j = 0; j < 13; ++j) moments[2 * j] = v[j];

  v[0] = 2.0 * (sinpar - p * cospar) / par2;
  v[1] = (18.0 - 48.0 / par2) * sinpar / par2 + (-2.0 + 48.0 / par2) * cospar / p;
  const MomentRecurrence sine{true, p, par2, par22, -24.0 * p * cospar, -8.0 * sinpar};
  sine.run(v, [&](double an2) {
    const double ass = p * cospar;
    return (((((105.0 * par2 - 63.0) * ass + (210.0 * par2 - 1.0) * sinpar) / an2 + (15.0 * par2 - 1.0) * sinpar -
              15.0 * ass) / an2 - 3.0 * ass - sinpar) / an2 - sinpar) / an2;
  });
  for (int j = 0; j < 12; ++j) moments[2 * j + 1] = v[j];
}

const double* LevelMoments::at(int64_t level) {
  // p halves from level to level; beyond 1100 levels it is zero (and no subinterval is that narrow).
  auto p_at = [this](int64_t l) { return std::ldexp(p0_, -static_cast<int>(std::min<int64_t>(l, 1100))); };
  if (level < levels_) {
    for (; computed_ <= level; ++computed_) chebyshev_moments(p_at(computed_), storage_ + 25 * computed_);
    return storage_ + 25 * level;
  }
  if (level != extra_level_) {
    chebyshev_moments(p_at(level), extra_.data());
    extra_level_ = level;
  }
  return extra_.data();
}

void chebyshev_coefficients(std::array<double, 25>& fval, std::array<double, 13>& cheb12,
                            std::array<double, 25>& cheb24) {
  const std::array<double, 11>& x = kChebyshevCos;
  double v[12];
  for (int i = 0; i < 12; ++i) {
    const int j = 24 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  double alam1 = v[0] - v[8];
  double alam2 = x[5] * (v[2] - v[6] - v[10]);
  cheb12[3] = alam1 + alam2;
  cheb12[9] = alam1 - alam2;
  alam1 = v[1] - v[7] - v[9];
  alam2 = v[3] - v[5] - v[11];
  double alam = x[2] * alam1 + x[8] * alam2;
  cheb24[3] = cheb12[3] + alam;
  cheb24[21] = cheb12[3] - alam;
  alam = x[8] * alam1 - x[2] * alam2;
  cheb24[9] = cheb12[9] + alam;
  cheb24[15] = cheb12[9] - alam;
  const double part1 = x[3] * v[4];
  const double part2 = x[7] * v[8];
  const double part3 = x[5] * v[6];
  alam1 = v[0] + part1 + part2;
  alam2 = x[1] * v[2] + part3 + x[9] * v[10];
  cheb12[1] = alam1 + alam2;
  cheb12[11] = alam1 - alam2;
  alam = x[0] * v[1] + x[2] * v[3] + x[4] * v[5] + x[6] * v[7] + x[8] * v[9] + x[10] * v[11];
  cheb24[1] = cheb12[1] + alam;
  cheb24[23] = cheb12[1] - alam;
  alam = x[10] * v[1] - x[8] * v[3] + x[6] * v[5] - x[4] * v[7] + x[2] * v[9] - x[0] * v[11];
  cheb24[11] = cheb12[11] + alam;
  cheb24[13] = cheb12[11] - alam;
  alam1 = v[0] - part1 + part2;
  alam2 = x[9] * v[2] - part3 + x[1] * v[10];
  cheb12[5] = alam1 + alam2;
  cheb12[7] = alam1 - alam2;
  alam = x[4] * v[1] - x[8] * v[3] - x[0] * v[5] - x[10] * v[7] + x[2] * v[9] + x[6] * v[11];
  cheb24[5] = cheb12[5] + alam;
  cheb24[19] = cheb12[5] - alam;
  alam = x[6] * v[1] - x[2] * v[3] - x[10] * v[5] + x[0] * v[7] - x[8] * v[9] - x[4] * v[11];
  cheb24[7] = cheb12[7] + alam;
  cheb24[17] = cheb12[7] - alam;
  for (int i = 0; i < 6; ++i) {
    const int j = 12 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  alam1 = v[0] + x[7] * v[4];
  alam2 = x[3] * v[2];
  cheb12[2] = alam1 + alam2;
  cheb12[10] = alam1 - alam2;
  cheb12[6] = v[0] - v[4];
  alam = x[1] * v[1] + x[5] * v[3] + x[9] * v[5];
  cheb24[2] = cheb12[2] + alam;
  cheb24[22] = cheb12[2] - alam;
  alam = x[5] * (v[1] - v[3] - v[5]);
  cheb24[6] = cheb12[6] + alam;
  cheb24[18] = cheb12[6] - alam;
  alam = x[9] * v[1] - x[5] * v[3] + x[1] * v[5];
  cheb24[10] = cheb12[10] + alam;
  cheb24[14] = cheb12[10] - alam;
  for (int i = 0; i < 3; ++i) {
    const int j = 6 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  cheb12[4] = v[0] + x[7] * v[2];
  cheb12[8] = fval[0] - x[7] * fval[2];
  alam = x[3] * v[1];
  cheb24[4] = cheb12[4] + alam;
  cheb24[20] = cheb12[4] - alam;
  alam = x[7] * fval[1] - fval[3];
  cheb24[8] = cheb12[8] + alam;
  cheb24[16] = cheb12[8] - alam;
  cheb12[0] = fval[0] + fval[2];
  alam = fval[1] + fval[3];
  cheb24[0] = cheb12[0] + alam;
  cheb24[24] = cheb12[0] - alam;
  cheb12[12] = v[0] - v[2];
  cheb24[12] = cheb12[12];
  alam = 1.0 / 6.0;
  for (int i = 1; i < 12; ++i) cheb12[i] *= alam;
  alam *= 0.5;
  cheb12[0] *= alam;
  cheb12[12] *= alam;
  for (int i = 1; i < 24; ++i) cheb24[i] *= alam;
  cheb24[0] *= 0.5 * alam;
  cheb24[24] *= 0.5 * alam;
}

RuleEstimate clenshaw_curtis_estimate(const std::array<double, 13>& cheb12, const std::array<double, 25>& cheb24,
                                      const double* moments, double omega, double centre, double h, Weight weight) {
  double resc12 = cheb12[12] * moments[12], ress12 = 0.0;
  for (int k = 10; k >= 0; k -= 2) {
    resc12 += cheb12[k] * moments[k];
    ress12 += cheb12[k + 1] * moments[k + 1];
  }
  double resc24 = cheb24[24] * moments[24], ress24 = 0.0;
  double resabs = std::abs(cheb24[24]);
  for (int k = 22; k >= 0; k -= 2) {
    resc24 += cheb24[k] * moments[k];
    ress24 += cheb24[k + 1] * moments[k + 1];
    resabs += std::abs(cheb24[k]) + std::abs(cheb24[k + 1]);
  }
  // The sine moments are odd in p = omega h: with b < a they change sign.
  if (h < 0.0) {
    ress12 = -ress12;
    ress24 = -ress24;
  }
  const double estc = std::abs(resc24 - resc12), ests = std::abs(ress24 - ress12);
  const double conc = h * std::cos(centre * omega), cons = h * std::sin(centre * omega);
  RuleEstimate r{0.0, 0.0, resabs * std::abs(h), std::numeric_limits<double>::max()};
  if (weight == Weight::cosine) {
    r.result = conc * resc24 - cons * ress24;
    r.error = std::abs(conc * estc) + std::abs(cons * ests);
  } else {
    r.result = conc * ress24 + cons * resc24;
    r.error = std::abs(conc * ests) + std::abs(cons * estc);
  }
  return r;
}

}  // namespace vek::zeros_quad
