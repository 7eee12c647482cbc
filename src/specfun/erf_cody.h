// W. J. Cody's rational Chebyshev approximations for erf, erfc and the scaled erfc (Math. Comp. 23, 1969,
// 631-637; the double-precision coefficients of his CALERF), shared by erf, erfc and erfcx. Each polynomial
// is evaluated by Horner's rule, highest power first, in exactly this order, so results are reproducible.
//
//   set A, |x| <= 0.46875:      erf(x)  = x * A(x^2)
//   set C, 0.46875 < y <= 4:    erfc(y) = exp(-y^2) * C(y)
//   set P, y > 4:               erfc(y) = exp(-y^2) / y * (1/sqrt(pi) - w P(w)),  w = 1/y^2
//
// exp(-y^2) is formed as exp(-r^2) * exp(-(y - r)(y + r)) with r = aint(16 y)/16: r^2 is exact, so the
// rounding of y^2 (which exp would magnify by y^2) never enters.
#pragma once

#include <array>
#include <cmath>

namespace vek::specfun::cody {

inline constexpr double kSmall = 0.46875;   // end of set A
inline constexpr double kMiddle = 4.0;      // end of set C
inline constexpr double kInvSqrtPi = 0.5641895835477563;

// Set A: numerator / denominator in z = x^2.
inline double set_a(double z) {
  const double num = (((0.18577770618460315 * z + 3.1611237438705655) * z + 113.86415415105016) * z +
                      377.485237685302) * z + 3209.3775891384694;
  const double den = ((((z + 23.601290952344122) * z + 244.02463793444417) * z + 1282.6165260773723) * z +
                      2844.236833439171);
  return num / den;
}

// Set C: numerator / denominator in y = |x|.
inline double set_c(double y) {
  const double num = (((((((2.1531153547440383e-8 * y + 0.5641884969886701) * y + 8.883149794388377) * y +
                          66.11919063714163) * y + 298.6351381974001) * y + 881.952221241769) * y +
                       1712.0476126340707) * y + 2051.0783778260716) * y + 1230.3393547979972;
  const double den = (((((((y + 15.744926110709835) * y + 117.6939508913125) * y + 537.1811018620099) * y +
                          1621.3895745666903) * y + 3290.7992357334597) * y + 4362.619090143247) * y +
                       3439.3676741437216) * y + 1230.3393548037495;
  return num / den;
}

// Set P: w * numerator / denominator in w = 1/x^2.
inline double set_p(double w) {
  const double num = ((((0.016315387137302097 * w + 0.30532663496123236) * w + 0.36034489994980445) * w +
                       0.12578172611122926) * w + 0.016083785148742275) * w + 0.0006587491615298378;
  const double den = ((((w + 2.568520192289822) * w + 1.8729528499234604) * w + 0.5279051029514285) * w +
                      0.06051834131244132) * w + 0.0023352049762686918;
  return w * num / den;
}

// exp(-r^2) for the split points r = k/16 below 26.6 (the largest argument that reaches the split), each
// computed once by the same exp the formula names: the results are those of calling exp every time.
inline constexpr int kSplitPoints = 426;
inline const std::array<double, kSplitPoints>& exp_minus_split_square() {
  static const std::array<double, kSplitPoints> table = [] {
    std::array<double, kSplitPoints> t{};
    for (int k = 0; k < kSplitPoints; ++k) {
      const double r = k / 16.0;
      t[static_cast<size_t>(k)] = std::exp(-r * r);
    }
    return t;
  }();
  return table;
}

// exp(-y^2) for y >= 0 through the split r = aint(16 y)/16.
inline double exp_minus_square(double y) {
  const double r = std::trunc(16.0 * y) / 16.0;
  const double head = 16.0 * y < kSplitPoints ? exp_minus_split_square()[static_cast<size_t>(16.0 * r)]
                                              : std::exp(-r * r);
  return head * std::exp(-(y - r) * (y + r));
}

// exp(y^2) erfc(y) for y > 4 (set P).
inline double scaled_tail(double y) { return (kInvSqrtPi - set_p(1.0 / (y * y))) / y; }

}  // namespace vek::specfun::cody
