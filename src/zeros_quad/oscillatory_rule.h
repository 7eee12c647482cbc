// The rule of the integrators with the weight cos(omega x) or sin(omega x) on one subinterval, QUADPACK's
// dqc25f (Piessens et al. 1983): where omega times the half-length exceeds 2, the modified Clenshaw-Curtis rule
// (f expanded in Chebyshev polynomials of degrees 12 and 24 from 25 values, integrated exactly against the
// weight through its Chebyshev moments); elsewhere the 15-point Gauss-Kronrod rule on f times the weight.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "zeros_quad/gauss_kronrod.h"

namespace vek::zeros_quad {

enum class Weight { cosine, sine };

// The moments int_{-1}^{1} T_k(t) cos(p t) dt (even k) and int_{-1}^{1} T_k(t) sin(p t) dt (odd k), k = 0..24,
// for p > 2: by forward recurrence for p > 24, else as the solution of the boundary-value problem of Olver's
// method (Piessens and Branders), its end value from the asymptotic expansion.
void chebyshev_moments(double p, double* moments);

// The moments of each bisection level, level l belonging to the subintervals of length L / 2^l (L the length
// of the level-0 interval, p = omega L / 2^(l+1), p0 its value at level 0). The first `levels` levels are kept
// in the caller's storage (25 values each) once computed; deeper ones are computed when asked for, the last of
// them kept.
class LevelMoments {
 public:
  LevelMoments(double* storage, int64_t levels, double p0) : storage_(storage), levels_(levels), p0_(p0) {}
  const double* at(int64_t level);

 private:
  double* storage_;
  int64_t levels_;
  double p0_;
  int64_t computed_ = 0;  // levels 0..computed_-1 are in storage_
  int64_t extra_level_ = -1;
  std::array<double, 25> extra_{};
};

// cos(k pi / 24), k = 1..11, correctly rounded (mpmath): the Chebyshev points of the rule on [-1, 1].
inline constexpr std::array<double, 11> kChebyshevCos = {
    0.9914448613738104, 0.9659258262890683, 0.9238795325112867, 0.8660254037844386,
    0.7933533402912352, 0.7071067811865476, 0.6087614290087207, 0.5,
    0.3826834323650898, 0.25881904510252074, 0.1305261922200516};

// The Chebyshev coefficients of degrees 12 and 24 (QUADPACK's dqcheb) from the 25 values fval[k] =
// f(cos(k pi / 24)), the first and last halved; fval is overwritten.
void chebyshev_coefficients(std::array<double, 25>& fval, std::array<double, 13>& cheb12,
                            std::array<double, 25>& cheb24);

// The Clenshaw-Curtis estimate from the coefficients and the moments of the subinterval's level (made for
// omega |h|): omega >= 0, centre the midpoint, h the half-length (negative when b < a, which turns the sine
// moments' sign). resasc is the largest double, so that the drivers never take the estimate for saturated.
RuleEstimate clenshaw_curtis_estimate(const std::array<double, 13>& cheb12, const std::array<double, 25>& cheb24,
                                      const double* moments, double omega, double centre, double h, Weight weight);

// cos(omega x) or sin(omega x).
inline double weight_at(Weight weight, double omega, double x) {
  return weight == Weight::cosine ? std::cos(omega * x) : std::sin(omega * x);
}

// The rule on [a, b] (b < a allowed) at bisection level `level`, omega >= 0.
template <class Integrand>
RuleEstimate apply_oscillatory_rule(Integrand& f, double a, double b, double omega, Weight weight,
                                    LevelMoments& moments, int64_t level) {
  const double centre = 0.5 * (a + b);
  const double h = 0.5 * (b - a);
  if (!(std::abs(omega * h) > 2.0)) {
    std::array<double, 15> x, fv;
    rule_abscissae(kKronrod15, a, b, x.data());
    for (int i = 0; i < 15; ++i) fv[i] = f(x[i]) * weight_at(weight, omega, x[i]);
    return combine_rule(kKronrod15, fv.data(), h);
  }
  // The values at the Chebyshev points centre + h cos(k pi / 24), k = 0..24.
  std::array<double, 25> fval;
  fval[0] = 0.5 * f(centre + h);
  fval[12] = f(centre);
  fval[24] = 0.5 * f(centre - h);
  for (int i = 1; i < 12; ++i) {
    fval[i] = f(h * kChebyshevCos[i - 1] + centre);
    fval[24 - i] = f(centre - h * kChebyshevCos[i - 1]);
  }
  std::array<double, 13> cheb12;
  std::array<double, 25> cheb24;
  chebyshev_coefficients(fval, cheb12, cheb24);
  return clenshaw_curtis_estimate(cheb12, cheb24, moments.at(level), omega, centre, h, weight);
}

}  // namespace vek::zeros_quad
