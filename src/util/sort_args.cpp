// The shared argument checks of the M01 routines.
#include "util/sort_args.h"

#include <algorithm>

#include "frame/text.h"
#include "util/rank.h"

namespace vek::util {

bool valid_range(frame::ErrorBuffer& err, int64_t m1, int64_t m2, int64_t msgno) {
  if (m2 < 1) err.fail(1, msgno, m2);
  else if (m1 < 1) err.fail(1, msgno - 1, m1);
  else if (m1 > m2) err.fail(1, msgno - 2, m1, m2);
  else return true;
  return false;
}

bool valid_key(frame::ErrorBuffer& err, int64_t l1, int64_t l2, int64_t length, int64_t msgno) {
  if (l1 < 1) err.fail(1, msgno, l1);
  else if (l1 > l2) err.fail(1, msgno - 1, l1, l2);
  else if (l2 > length) err.fail(1, msgno - 2, l2, length);
  else return true;
  return false;
}

std::optional<Order> string_key_arguments(frame::ErrorBuffer& err, int64_t m1, int64_t m2, int64_t l1, int64_t l2,
                                          int64_t length, const char* order, int64_t order_len) {
  if (!valid_range(err, m1, m2) || !valid_key(err, l1, l2, length)) return std::nullopt;
  return order_argument(err, order, order_len, 2, 99993);
}

bool valid_permutation(frame::ErrorBuffer& err, std::span<const int64_t> perm, int64_t m1) {
  const PermutationFault fault = check_permutation(perm, m1);
  switch (fault.kind) {
    case PermutationFault::Kind::none: return true;
    case PermutationFault::Kind::out_of_range: err.fail(2, 99996, m1 + fault.index, fault.value); break;
    case PermutationFault::Kind::repeated: err.fail(3, 99995, fault.value); break;
  }
  return false;
}

std::optional<Order> order_argument(frame::ErrorBuffer& err, const char* order, int64_t order_len,
                                    int64_t ifail, int64_t msgno) {
  switch (text::option_letter(order, order_len)) {
    case 'A': return Order::ascending;
    case 'D': return Order::descending;
    default:
      err.fail(ifail, msgno, frame::CharValue{text::view(order, std::min<int64_t>(order_len, 1))});
      return std::nullopt;
  }
}

}  // namespace vek::util
