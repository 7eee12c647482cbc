// The interval lists of the adaptive integrators; the ordering list is maintained as in QUADPACK's dqpsrt
// (Piessens et al. 1983), and the final sort uses the ranking and rearranging kernels of the sorting chapter.
#include "zeros_quad/interval_list.h"

#include <algorithm>
#include <span>
#include <utility>

#include "util/rank.h"

namespace vek::zeros_quad {

void IntervalList::start(double a, double b, double value, double error) {
  last_ = 0;
  append(a, b, value, error);
}

void IntervalList::append(double a, double b, double value, double error) {
  ++last_;
  a_[last_] = a;
  b_[last_] = b;
  r_[last_] = value;
  e_[last_] = error;
  order_[last_] = last_;
}

void IntervalList::store_halves(int64_t i, double mid, double v1, double e1, double v2, double e2) {
  const int64_t n = ++last_;
  const double a = a_[i], b = b_[i];
  const bool left_stays = !(e2 > e1);
  a_[i] = left_stays ? a : mid;
  b_[i] = left_stays ? mid : b;
  r_[i] = left_stays ? v1 : v2;
  e_[i] = left_stays ? e1 : e2;
  a_[n] = left_stays ? mid : a;
  b_[n] = left_stays ? b : mid;
  r_[n] = left_stays ? v2 : v1;
  e_[n] = left_stays ? e2 : e1;
}

int64_t IntervalList::reorder(int64_t& nrmax) {
  int64_t* ord = order_;
  const int64_t maxerr = ord[nrmax];
  if (last_ <= 2) {
    ord[1] = 1;
    ord[2] = 2;
    return ord[nrmax];
  }
  // A bisection that raised the error estimate: move the interval up the list first.
  const double errmax = e_[maxerr];
  for (int64_t steps = nrmax - 1; steps > 0 && errmax > e_[ord[nrmax - 1]]; --steps) {
    ord[nrmax] = ord[nrmax - 1];
    --nrmax;
  }
  // Only the positions that later bisections can still reach are kept in order.
  const int64_t top = last_ > limit_ / 2 + 2 ? limit_ + 3 - last_ : last_;
  const double errmin = e_[last_];
  const int64_t bottom = top - 1;
  int64_t i = nrmax + 1;
  while (i <= bottom && errmax < e_[ord[i]]) {
    ord[i - 1] = ord[i];
    ++i;
  }
  if (i > bottom) {
    ord[bottom] = maxerr;
    ord[top] = last_;
  } else {
    // Insert the smaller half from the bottom up.
    ord[i - 1] = maxerr;
    int64_t k = bottom;
    while (k >= i && errmin >= e_[ord[k]]) {
      ord[k + 1] = ord[k];
      --k;
    }
    ord[k + 1] = last_;
  }
  return ord[nrmax];
}

double IntervalList::sum() const {
  double s = 0.0;
  for (int64_t k = 1; k <= last_; ++k) s += r_[k];
  return s;
}

void IntervalList::pack_sorted(int64_t lw) {
  double* w = a_ + 1;
  const int64_t n = last_;
  if (n < limit_)
    for (int list = 1; list < 4; ++list) std::copy_n(w + list * limit_, n, w + list * n);
  std::fill(w + 4 * n, w + lw, 0.0);
  const std::span<int64_t> ranks(order_ + 1, static_cast<size_t>(n));
  util::rank(std::span<const double>(w, static_cast<size_t>(n)), util::Order::ascending, ranks, 1);
  util::apply_permutation(std::span<const int64_t>(ranks), 1, [w, n](int64_t i, int64_t j) {
    for (int list = 0; list < 4; ++list) std::swap(w[list * n + i], w[list * n + j]);
  });
  order_[1] = n;
}

}  // namespace vek::zeros_quad
