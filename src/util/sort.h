// Sorting a vector in place: the kernels behind the M01 sort routines, callable by any chapter.
#pragma once

#include <cstdint>
#include <span>

#include "util/sort_kernel.h"

namespace vek::util {

// Sorts v into `order`. Large vectors are cut into one piece per thread, each sorted by the serial quicksort,
// and the pieces merged pairwise; if the merge workspace cannot be allocated the whole vector is sorted
// serially instead. The result does not depend on the thread count.
//
// Reals: NaNs count as greater than every number (last in ascending order, first in descending order) and
// -0 as less than +0, so that the result is one fixed arrangement however the work was shared.
void sort(std::span<double> v, Order order);
void sort(std::span<int64_t> v, Order order);

}  // namespace vek::util
