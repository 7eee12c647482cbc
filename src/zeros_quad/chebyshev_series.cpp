// The coefficients by the discrete cosine sums of Chebyshev interpolation at the extrema of T_24 (and T_12):
// c_k = (2/N) sum''_j f(x_j) cos(k j pi/N), the first and last terms halved, and c_0, c_N halved again.
#include "zeros_quad/chebyshev_series.h"

namespace vek::zeros_quad {
namespace {

// cos(m pi/24) for any m >= 0, from the values on [0, pi/2] by symmetry.
double cos_pi24(int m) {
  m %= 48;
  if (m > 24) m = 48 - m;
  return m <= 12 ? kCosPi24[m] : -kCosPi24[24 - m];
}

}  // namespace

ChebyshevSeries chebyshev_series(const std::array<double, 25>& samples) {
  ChebyshevSeries s{};
  for (int k = 0; k <= 24; ++k) {
    double sum = 0.5 * (samples[0] + (k % 2 == 0 ? samples[24] : -samples[24]));
    for (int j = 1; j < 24; ++j) sum += samples[j] * cos_pi24(k * j);
    s.c24[k] = sum / (k == 0 || k == 24 ? 24.0 : 12.0);
  }
  for (int k = 0; k <= 12; ++k) {
    double sum = 0.5 * (samples[0] + (k % 2 == 0 ? samples[24] : -samples[24]));
    for (int j = 1; j < 12; ++j) sum += samples[2 * j] * cos_pi24(2 * k * j);
    s.c12[k] = sum / (k == 0 || k == 12 ? 12.0 : 6.0);
  }
  return s;
}

SeriesIntegral integrate_series(const ChebyshevSeries& s, const std::array<double, 25>& moments) {
  SeriesIntegral r{0.0, 0.0};
  for (int k = 0; k <= 12; ++k) r.res12 += s.c12[k] * moments[k];
  for (int k = 0; k <= 24; ++k) r.res24 += s.c24[k] * moments[k];
  return r;
}

}  // namespace vek::zeros_quad
