// The real Lambert W function: the solution w of w exp(w) = z on the principal branch (w >= -1, z >= -1/e) and
// on the lower branch (w <= -1, -1/e <= z < 0).
//
// The argument is carried with y = e z + 1, its distance from the branch point -1/e scaled by e, each to full
// relative accuracy: near the branch point W + 1 depends on y, not on z, and a caller who knows the distance
// (c05baf with OFFSET) gives it directly.
//
// Methods. Near the branch point (w in [-2, -1/2]) the equation is solved for t = w + 1 in the form
// h(t) = (t - 1) exp(t) + 1 = y, with h summed as its series (no cancellation near t = 0), from the branch-point
// expansion in p = sqrt(2y) (Corless et al., "On the Lambert W function", Adv. Comput. Math. 5, 1996). Elsewhere
// Halley's iteration on w exp(w) - z = 0, evaluated with a fused multiply-add, from Winitzki's approximation or the
// asymptotic expansion in ln z; beyond the range of exp, Newton's iteration on w + ln w = ln z (principal) or
// u - ln u = -ln(-z), u = -w (lower branch).
#pragma once

#include <complex>
#include <cstdint>

namespace vek::zeros_quad {

enum class LambertBranch { principal = 0, lower = -1 };

struct LambertArgument {
  double z;  // the argument
  double y;  // e z + 1, to full relative accuracy
};

// From the argument itself, or (offset) from its distance above -1/e.
LambertArgument lambert_argument(double x, bool offset);

// The argument at the branch point within rounding: y below 0 by at most this much counts as 0 (the double
// nearest -1/e lies just below it).
inline constexpr double kLambertBranchSlack = 0x1p-53;

// W on the branch. Requires y >= -kLambertBranchSlack, and z < 0 for the lower branch; NaN gives NaN.
double lambert_w(LambertArgument a, LambertBranch branch);

// The complex Lambert W function on any branch k, with the branch cuts of Corless et al.: (-inf, -1/e] for
// k = 0, (-inf, 0] otherwise, each cut belonging to the side reached counter-clockwise; a signed zero imaginary
// part chooses the side. Near -1/e the branches meeting there (W0, W-1 from above, W1 from below) are found as
// for real arguments; elsewhere Halley's iteration from the branch-point expansion, the Pade approximant at 0
// (k = 0) or the asymptotic expansion in ln z + 2 pi i k. W_k(0) = -inf for k /= 0.
struct ComplexLambertArgument {
  std::complex<double> z, y;  // y = e z + 1
};
ComplexLambertArgument lambert_argument(std::complex<double> x, bool offset);
std::complex<double> lambert_w(ComplexLambertArgument a, int64_t branch);

}  // namespace vek::zeros_quad
