// The incomplete beta function for one parameter far larger than the other (incomplete_beta_skewed.cpp).
#pragma once

#include "specfun/specfun.h"

namespace vek::specfun {

// I_x(a, b) and 1 - I_x(a, b), each to full relative accuracy, for a >= 1000 max(b, 1) and b < 1e5 (beyond, its
// terms fall too slowly); x and y = 1 - x with the one not above 1/2 exact.
BetaInc beta_inc_skewed(double a, double b, double x, double y);

}  // namespace vek::specfun
