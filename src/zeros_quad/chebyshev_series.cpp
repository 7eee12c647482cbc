// The coefficients are the discrete cosine sums of Chebyshev interpolation at the extrema of T_24 (and T_12),
// c_k = (2/N) sum''_j f(x_j) cos(k j pi/N) with the first and last terms halved and c_0, c_N halved again,
// evaluated as QUADPACK's dqcheb (Piessens et al. 1983) evaluates them: the samples folded three times by the
// symmetries of the cosines (sums and differences of x_j and x_(24-j), then of the sums again), so that each
// coefficient of degree 24 is that of degree 12 plus or minus a short sum over the odd samples.
#include "zeros_quad/chebyshev_series.h"

namespace vek::zeros_quad {

ChebyshevSeries chebyshev_series(const std::array<double, 25>& samples) {
  const double* x = kCosPi24 + 1;  // x[i] = cos((i + 1) pi/24)
  double fval[25], v[12];
  ChebyshevSeries out{};
  double* cheb12 = out.c12.data();
  double* cheb24 = out.c24.data();
  for (int i = 0; i < 25; ++i) fval[i] = samples[i];
  fval[0] *= 0.5;
  fval[24] *= 0.5;
  for (int i = 0; i < 12; i++) {
    const int j = 24 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  {
    const double alam1 = v[0] - v[8];
    const double alam2 = x[5] * (v[2] - v[6] - v[10]);
    cheb12[3] = alam1 + alam2;
    cheb12[9] = alam1 - alam2;
  }
  {
    const double alam1 = v[1] - v[7] - v[9];
    const double alam2 = v[3] - v[5] - v[11];
    {
      const double alam = x[2] * alam1 + x[8] * alam2;
      cheb24[3] = cheb12[3] + alam;
      cheb24[21] = cheb12[3] - alam;
    }
    {
      const double alam = x[8] * alam1 - x[2] * alam2;
      cheb24[9] = cheb12[9] + alam;
      cheb24[15] = cheb12[9] - alam;
    }
  }
  {
    const double part1 = x[3] * v[4];
    const double part2 = x[7] * v[8];
    const double part3 = x[5] * v[6];
    {
      const double alam1 = v[0] + part1 + part2;
      const double alam2 = x[1] * v[2] + part3 + x[9] * v[10];
      cheb12[1] = alam1 + alam2;
      cheb12[11] = alam1 - alam2;
    }
    {
      const double alam1 = v[0] - part1 + part2;
      const double alam2 = x[9] * v[2] - part3 + x[1] * v[10];
      cheb12[5] = alam1 + alam2;
      cheb12[7] = alam1 - alam2;
    }
  }
  {
    const double alam = (x[0] * v[1] + x[2] * v[3] + x[4] * v[5] + x[6] * v[7] + x[8] * v[9] + x[10] * v[11]);
    cheb24[1] = cheb12[1] + alam;
    cheb24[23] = cheb12[1] - alam;
  }
  {
    const double alam = (x[10] * v[1] - x[8] * v[3] + x[6] * v[5] - x[4] * v[7] + x[2] * v[9] - x[0] * v[11]);
    cheb24[11] = cheb12[11] + alam;
    cheb24[13] = cheb12[11] - alam;
  }
  {
    const double alam = (x[4] * v[1] - x[8] * v[3] - x[0] * v[5] - x[10] * v[7] + x[2] * v[9] + x[6] * v[11]);
    cheb24[5] = cheb12[5] + alam;
    cheb24[19] = cheb12[5] - alam;
  }
  {
    const double alam = (x[6] * v[1] - x[2] * v[3] - x[10] * v[5] + x[0] * v[7] - x[8] * v[9] - x[4] * v[11]);
    cheb24[7] = cheb12[7] + alam;
    cheb24[17] = cheb12[7] - alam;
  }
  for (int i = 0; i < 6; i++) {
    const int j = 12 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  {
    const double alam1 = v[0] + x[7] * v[4];
    const double alam2 = x[3] * v[2];
    cheb12[2] = alam1 + alam2;
    cheb12[10] = alam1 - alam2;
  }
  cheb12[6] = v[0] - v[4];
  {
    const double alam = x[1] * v[1] + x[5] * v[3] + x[9] * v[5];
    cheb24[2] = cheb12[2] + alam;
    cheb24[22] = cheb12[2] - alam;
  }
  {
    const double alam = x[5] * (v[1] - v[3] - v[5]);
    cheb24[6] = cheb12[6] + alam;
    cheb24[18] = cheb12[6] - alam;
  }
  {
    const double alam = x[9] * v[1] - x[5] * v[3] + x[1] * v[5];
    cheb24[10] = cheb12[10] + alam;
    cheb24[14] = cheb12[10] - alam;
  }
  for (int i = 0; i < 3; i++) {
    const int j = 6 - i;
    v[i] = fval[i] - fval[j];
    fval[i] = fval[i] + fval[j];
  }
  cheb12[4] = v[0] + x[7] * v[2];
  cheb12[8] = fval[0] - x[7] * fval[2];
  {
    const double alam = x[3] * v[1];
    cheb24[4] = cheb12[4] + alam;
    cheb24[20] = cheb12[4] - alam;
  }
  {
    const double alam = x[7] * fval[1] - fval[3];
    cheb24[8] = cheb12[8] + alam;
    cheb24[16] = cheb12[8] - alam;
  }
  cheb12[0] = fval[0] + fval[2];
  {
    const double alam = fval[1] + fval[3];
    cheb24[0] = cheb12[0] + alam;
    cheb24[24] = cheb12[0] - alam;
  }
  cheb12[12] = v[0] - v[2];
  cheb24[12] = cheb12[12];
  for (int i = 1; i < 12; i++) cheb12[i] *= 1.0 / 6.0;
  cheb12[0] *= 1.0 / 12.0;
  cheb12[12] *= 1.0 / 12.0;
  for (int i = 1; i < 24; i++) cheb24[i] *= 1.0 / 12.0;
  cheb24[0] *= 1.0 / 24.0;
  cheb24[24] *= 1.0 / 24.0;
  return out;
}
SeriesIntegral integrate_series(const ChebyshevSeries& s, const std::array<double, 25>& moments) {
  SeriesIntegral r{0.0, 0.0};
  for (int k = 0; k <= 12; ++k) r.res12 += s.c12[k] * moments[k];
  for (int k = 0; k <= 24; ++k) r.res24 += s.c24[k] * moments[k];
  return r;
}

}  // namespace vek::zeros_quad
