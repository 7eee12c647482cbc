// Solving the small dense systems of a Newton iteration: Gaussian elimination with partial pivoting on the
// matrix and one right-hand side, both overwritten, with no pivot vector to keep.
#pragma once

#include <cstdint>

namespace vek::ode {

// Solves J x = r for the n-by-n column-major J (leading dimension n): x replaces r, J is destroyed. Returns
// false, leaving r undefined, when a pivot is at most n eps max|J(i,j)| (J singular to working precision).
bool solve_in_place(int64_t n, double* j, double* r);

}  // namespace vek::ode
