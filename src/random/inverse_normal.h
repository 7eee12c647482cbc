// The inverse of the standard normal distribution function: Wichura's algorithm AS 241 (PPND16), Appl.
// Statist. 37 (1988) 477-484, accurate to about 1e-16. The normal generator and the statistics chapter's
// normal deviate both use this one kernel.
#pragma once

#include <cstdint>
#include <span>

namespace vek::random {

// z with Phi(z) = p, for 0 < p < 1; p <= 0 or p >= 1 give the value at the smallest normalised tail.
double inverse_normal(double p);

// x(i) <- mu + sigma z(x(i)) for every uniform x(i), shared among the library's threads with a static
// schedule (each element depends only on itself, so the result is the same for any number of threads).
void normal_from_uniforms(std::span<double> x, double mu, double sigma);

}  // namespace vek::random
