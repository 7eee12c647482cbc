// Order statistics and robust summaries of a sample, and moments accumulated over blocks of data.
#pragma once

#include <cstdint>
#include <span>

namespace vek::stats {

// The quantile of probability p (0 <= p <= 1) of the ascending sample `sorted` (not empty, no NaN) by
// Hyndman and Fan's definition `type` (1 to 9). With n the sample size and x(1..n) the order statistics,
// h = n p + m splits into j = floor(h) and g = h - j, and x(0) = x(1), x(n+1) = x(n):
//   1: x(j) if g = 0, else x(j+1)                       (inverse of the empirical distribution; m = 0)
//   2: (x(j) + x(j+1))/2 if g = 0, else x(j+1)           (averaged at the jumps; m = 0)
//   3: x(j) if g = 0 and j is even, else x(j+1)          (nearest order statistic, ties to even; m = -1/2)
//   4 to 9: (1 - g) x(j) + g x(j+1), with m = 0, 1/2, p, 1 - p, (p + 1)/3, p/4 + 3/8.
// n p is formed exactly (its rounding error kept), so the tests g = 0 of types 1 to 3 are exact for the
// binary value of p.
double quantile(std::span<const double> sorted, double p, int type);

struct Robust {
  double median, mad, trimmed_mean, winsorised_mean;
};
// Median, median absolute deviation from it, and the means of the sample with floor(alpha n) observations
// cut from (trimmed) or pulled in to the nearest kept one at (winsorised) each end, 0 <= alpha < 1/2.
// `work` (n elements) receives the sorted sample and is then overwritten. A NaN makes every result NaN.
Robust robust_summary(std::span<const double> x, double alpha, std::span<double> work);

// A compensated mean of x refined by the mean of the deviations from it (the corrected two-pass mean).
double careful_mean(std::span<const double> x);

// Moments of a sequence met in blocks: count, mean, sums of the 2nd to 4th powers of the deviations from
// the mean, extremes (the layout of the caller's array, in this order).
struct RunningMoments {
  double count, mean, m2, m3, m4, min, max;
};
inline constexpr int kRunningMomentsLength = 7;
RunningMoments load_running(const double* r);
void store_running(const RunningMoments& m, double* r);
// Whether r holds a state a sequence can leave: a whole count >= 0 (below 2^53), and for a count > 0
// non-negative even central sums and min <= max (NaN data leave NaN, which is accepted).
bool valid_running(const RunningMoments& m);
// The moments of a block, by two passes over it, and the union of two sequences by the pairwise
// combination formulas (Chan, Golub and LeVeque for m2; Pebay for m3 and m4).
RunningMoments block_moments(std::span<const double> x);
RunningMoments merge(const RunningMoments& a, const RunningMoments& b);

}  // namespace vek::stats
