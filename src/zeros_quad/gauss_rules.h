// Gauss rules for the classical weight functions: the N abscissae and weights of the rule exact for
// polynomials of degree 2N - 1 against the weight (or, for the rational family, for polynomials of that degree
// in 1/(x + B)). The families and their parameters are those of d01bcf (docs/quadrature.md).
#pragma once

#include <cstdint>

namespace vek::zeros_quad {

enum class GaussFamily {
  legendre = 1,  // 1 on (a, b)
  rational = 2,  // (x + b)^-c on (a, inf), c > 1, a + b > 0
  laguerre = 3,  // (x - a)^c exp(-b (x - a)) on (a, inf), b > 0, c > -1
  hermite = 4,   // exp(-b (x - a)^2) on (-inf, inf), b > 0
  jacobi = 5,    // (b - x)^c (x - a)^d on (a, b), c, d > -1
};

struct GaussWeight {
  GaussFamily family;
  double a, b, c, d;
};

// Writes the n >= 1 abscissae in increasing order and their weights, for parameters that satisfy the family's
// constraints. adjusted: the weights are divided by the weight function at their abscissae, so that the rule
// applies to the whole integrand rather than to the factor beside the weight. Values beyond the range of
// doubles become 0 or infinity; nothing else can fail.
void gauss_rule(const GaussWeight& weight, int64_t n, bool adjusted, double* weights, double* abscissae);

}  // namespace vek::zeros_quad
