// L'Ecuyer's published floating-point implementation of MRG32k3a, written out as in the paper: the
// independent computation the tests compare GENID 6 with, and the plain baseline of the benchmark.
#pragma once

namespace vek::testing {

struct Mrg32k3aReference {
  double s10, s11, s12, s20, s21, s22;
  double next() {
    const double m1 = 4294967087.0, m2 = 4294944443.0, norm = 2.328306549295728e-10;
    double p1 = 1403580.0 * s11 - 810728.0 * s10;
    long k = static_cast<long>(p1 / m1);
    p1 -= static_cast<double>(k) * m1;
    if (p1 < 0.0) p1 += m1;
    s10 = s11;
    s11 = s12;
    s12 = p1;
    double p2 = 527612.0 * s22 - 1370589.0 * s20;
    k = static_cast<long>(p2 / m2);
    p2 -= static_cast<double>(k) * m2;
    if (p2 < 0.0) p2 += m2;
    s20 = s21;
    s21 = s22;
    s22 = p2;
    return p1 > p2 ? (p1 - p2) * norm : (p1 - p2 + m1) * norm;
  }
};

}  // namespace vek::testing
