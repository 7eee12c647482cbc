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

// The key substring L1:L2 of strings of length `length`: L1 >= 1 (msgno), L1 <= L2 (msgno - 1), L2 <= length
// (msgno - 2), all IFAIL 1.
bool valid_key(frame::ErrorBuffer& err, int64_t l1, int64_t l2, int64_t length, int64_t msgno = 99996);

// The order letter: 'A' or 'D' in either case; anything else fails with (ifail, msgno) and the first
// character shown.
std::optional<Order> order_argument(frame::ErrorBuffer& err, const char* order, int64_t order_len,
                                    int64_t ifail = 2, int64_t msgno = 99996);

// All the checks of the string sorts and ranks, in order: the range, the key L1:L2 within records of
// `length` characters, then ORDER (IFAIL 2, 99993). The order, or nothing after a failure.
std::optional<Order> string_key_arguments(frame::ErrorBuffer& err, int64_t m1, int64_t m2, int64_t l1, int64_t l2,
                                          int64_t length, const char* order, int64_t order_len);

// PERM(M1:M2) a permutation of M1..M2: the first entry out of range fails with IFAIL 2 (99996, values I and
// PERM(I)), the first repeated value with IFAIL 3 (99995, the value).
bool valid_permutation(frame::ErrorBuffer& err, std::span<const int64_t> perm, int64_t m1);

// The caller's elements M1..M2 (one-based) of a vector.
template <class T>
std::span<T> segment(T* v, int64_t m1, int64_t m2) {
  return std::span<T>(v + (m1 - 1), static_cast<size_t>(m2 - m1 + 1));
}

}  // namespace vek::util
