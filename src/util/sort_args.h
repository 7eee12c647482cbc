// The argument checks the M01 routines share, each recording its failure in the worker's error buffer.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "frame/error_buffer.h"
#include "util/sort_kernel.h"

namespace vek::util {

// M2 >= 1 (99999), M1 >= 1 (99998), M1 <= M2 (99997), all IFAIL 1, in that order. Also the checks on the
// column range N1..N2 of the matrix routines, with their own message numbers.
bool valid_range(frame::ErrorBuffer& err, int64_t m1, int64_t m2, int64_t msgno = 99999);

// The order letter: 'A' or 'D' in either case; anything else fails with (ifail, msgno) and the first
// character shown.
std::optional<Order> order_argument(frame::ErrorBuffer& err, const char* order, int64_t order_len,
                                    int64_t ifail = 2, int64_t msgno = 99996);

// The caller's elements M1..M2 (one-based) of a vector.
template <class T>
std::span<T> segment(T* v, int64_t m1, int64_t m2) {
  return std::span<T>(v + (m1 - 1), static_cast<size_t>(m2 - m1 + 1));
}

}  // namespace vek::util
