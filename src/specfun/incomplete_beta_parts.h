// Pieces of the incomplete beta function shared by its value (incomplete_beta.cpp) and its logarithm
// (incomplete_beta_log.cpp).
#pragma once

namespace vek::specfun {

// Temme's expansion is used for a, b >= kAsymptoticMin and |a - (a + b) x| <= kAsymptoticWidth min(a, b)
// (DiDonato and Morris's region; the fraction converges slowly and cancels there).
inline constexpr double kAsymptoticMin = 100.0;
inline constexpr double kAsymptoticWidth = 0.03;

// The continued fraction's value h, I_x(a, b) = h x^a y^b / (a B(a, b)), for x below (a + 1)/(a + b + 2); x + y
// = 1 with the one not above 1/2 exact. converged is false if it did not settle (or gave NaN).
long double beta_inc_fraction(double a, double b, double x, double y, bool& converged);

// ln(x^a y^b / (a B(a, b))) in long double, finite wherever x, y > 0 (the power terms themselves may underflow).
long double beta_inc_log_prefix(double a, double b, double x, double y);

}  // namespace vek::specfun
