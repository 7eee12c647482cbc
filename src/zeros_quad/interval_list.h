// The subintervals of an adaptive integrator, kept in the caller's workspace: W holds four lists of `limit`
// entries one after another (left end points, right end points, error estimates, integrals) and IW the
// ordering list, the interval numbers by decreasing error estimate as far as the order can still matter.
// Interval numbers count from 1, as the list positions do.
#pragma once

#include <cstdint>

namespace vek::zeros_quad {

class IntervalList {
 public:
  IntervalList(double* w, int64_t* iw, int64_t limit)
      : a_(w - 1), b_(w + limit - 1), e_(w + 2 * limit - 1), r_(w + 3 * limit - 1), order_(iw - 1), limit_(limit) {}

  int64_t limit() const { return limit_; }
  int64_t last() const { return last_; }
  double left(int64_t i) const { return a_[i]; }
  double right(int64_t i) const { return b_[i]; }
  double error(int64_t i) const { return e_[i]; }
  double value(int64_t i) const { return r_[i]; }
  // The interval at position `rank` of the ordering list.
  int64_t ranked(int64_t rank) const { return order_[rank]; }

  // The first interval.
  void start(double a, double b, double value, double error);
  // An interval appended as number last() + 1 without ordering (the break-point integrator's start).
  void append(double a, double b, double value, double error);
  void set_ranked(int64_t rank, int64_t interval) { order_[rank] = interval; }
  void set_error(int64_t i, double error) { e_[i] = error; }

  // Interval i bisected at `mid` into halves with values and errors (v1, e1) left and (v2, e2) right: the half
  // with the larger error (the left on a tie) keeps number i, the other becomes number last() + 1.
  void store_halves(int64_t i, double mid, double v1, double e1, double v2, double e2);

  // Re-establishes the ordering list after store_halves on the interval at position nrmax, which it may move
  // up; beyond the positions that can still be reached before the limit the list is not kept in order.
  // Returns the interval at the (new) position nrmax.
  int64_t reorder(int64_t& nrmax);

  // The sum of the interval values in the order of their numbers.
  double sum() const;

  // Packs the lists to last() entries each, sorts the four together into increasing order of left end point
  // (the ranks of the left end points go to IW(1..last), by which each list is rearranged), zeroes the rest of
  // W (length lw) and sets IW(1) = last.
  void pack_sorted(int64_t lw);

 private:
  double* a_;
  double* b_;
  double* e_;
  double* r_;
  int64_t* order_;
  int64_t limit_;
  int64_t last_ = 0;
};

}  // namespace vek::zeros_quad
