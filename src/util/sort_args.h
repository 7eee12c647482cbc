// What the M01 bodies share once the declared checks (m01.decl) have passed: the order letter, the caller's
// segment, and the permutation check of the rearranging routines.
#pragma once

#include <cstdint>
#include <span>

#include "frame/error_buffer.h"
#include "frame/text.h"
#include "util/rank.h"
#include "util/sort_kernel.h"

namespace vek::util {

// ORDER, already checked to be 'A' or 'D' in either case.
inline Order order_of(const char* order, int64_t order_len) {
  return text::option_letter(order, order_len) == 'D' ? Order::descending : Order::ascending;
}

// The caller's elements M1..M2 (one-based) of a vector.
template <class T>
std::span<T> segment(T* v, int64_t m1, int64_t m2) {
  return std::span<T>(v + (m1 - 1), static_cast<size_t>(m2 - m1 + 1));
}

// PERM(M1:M2) a permutation of M1..M2, for the routine R: the first entry out of range fails with
// R::out_of_range (I and PERM(I)), the first repeated value with R::repeated.
template <class R>
bool valid_permutation(frame::ErrorBuffer& err, std::span<const int64_t> perm, int64_t m1) {
  const PermutationFault fault = check_permutation(perm, m1);
  switch (fault.kind) {
    case PermutationFault::Kind::none: return true;
    case PermutationFault::Kind::out_of_range: err.fail(R::out_of_range, m1 + fault.index, fault.value); break;
    case PermutationFault::Kind::repeated: err.fail(R::repeated, fault.value); break;
  }
  return false;
}

}  // namespace vek::util
