// The 25-point Chebyshev expansion of the modified Clenshaw-Curtis rules (Piessens et al., QUADPACK 1983): f is
// sampled on [a, b] at x_j = c + h cos(j pi/24), j = 0..24 (c the centre, h the half-length), and expanded in
// the Chebyshev polynomials T_k(t) of t = (x - c)/h, to degree 24 from all the samples and to degree 12 from
// every other one. The integral of f times a weight is then the sum of the coefficients times the modified
// moments of the weight, the integrals of the weight times T_k over [-1, 1]; the two degrees give the error.
#pragma once

#include <array>
#include <cmath>

namespace vek::zeros_quad {

// cos(j pi/24), j = 0..12, correctly rounded.
inline constexpr double kCosPi24[13] = {1.0,
                                        0.9914448613738104,
                                        0.9659258262890683,
                                        0.9238795325112867,
                                        0.8660254037844386,
                                        0.7933533402912352,
                                        0.7071067811865476,
                                        0.6087614290087207,
                                        0.5,
                                        0.3826834323650898,
                                        0.25881904510252074,
                                        0.1305261922200516,
                                        0.0};

struct ChebyshevSeries {
  std::array<double, 13> c12;  // f = sum c12[k] T_k, interpolating at the 13 points x_0, x_2, ..., x_24
  std::array<double, 25> c24;  // f = sum c24[k] T_k, interpolating at all 25 points
};

// The two expansions from samples[j] = f(x_j).
ChebyshevSeries chebyshev_series(const std::array<double, 25>& samples);

// f at b, the centre and a, then at the pairs c + h cos(j pi/24), c - h cos(j pi/24), j = 1..11.
template <class Integrand>
ChebyshevSeries chebyshev_series(Integrand& f, double a, double b) {
  const double centre = 0.5 * (a + b), h = 0.5 * (b - a);
  std::array<double, 25> v;
  v[0] = f(b);
  v[12] = f(centre);
  v[24] = f(a);
  for (int j = 1; j < 12; ++j) {
    const double u = h * kCosPi24[j];
    v[j] = f(centre + u);
    v[24 - j] = f(centre - u);
  }
  return chebyshev_series(v);
}

// sum c[k] m[k] over each expansion.
struct SeriesIntegral {
  double res12;
  double res24;
};
SeriesIntegral integrate_series(const ChebyshevSeries& s, const std::array<double, 25>& moments);

}  // namespace vek::zeros_quad
