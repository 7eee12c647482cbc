// The product of one-dimensional rules: the sum over every point of the grid of the product of the weights
// times f at the point, walked as an odometer (the last dimension fastest) with the partial products of the
// weights kept per dimension, and summed with Neumaier's compensation so that millions of terms lose no more
// than a few ulps.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace vek::zeros_quad {

struct ProductOutcome {
  double result = 0.0;
  int64_t bad_point = 0;  // the 1-based number of the point where f was not finite, 0 if none
};

// counts[j] >= 1 points in dimension j, whose weights and abscissae stand at offset[j] in w and x.
template <class F>
ProductOutcome product_rule(int64_t ndim, const int64_t* counts, const double* w, const double* x, F f) {
  const size_t d = static_cast<size_t>(ndim);
  std::vector<int64_t> offset(d, 0), index(d, 0);
  for (size_t j = 1; j < d; ++j) offset[j] = offset[j - 1] + counts[j - 1];
  std::vector<double> point(d), weight(d + 1, 1.0);  // weight[j + 1] = weight[j] * w of dimension j
  for (size_t j = 0; j < d; ++j) {
    point[j] = x[offset[j]];
    weight[j + 1] = weight[j] * w[offset[j]];
  }
  double sum = 0.0, compensation = 0.0;
  for (int64_t k = 1;; ++k) {
    const double fx = f(point.data());
    if (!std::isfinite(fx)) return {sum + compensation, k};
    const double term = weight[d] * fx, t = sum + term;
    compensation += std::abs(sum) >= std::abs(term) ? (sum - t) + term : (term - t) + sum;
    sum = t;
    // The next point: the last dimension that is not at its end advances, the later ones restart.
    size_t j = d;
    while (j > 0 && index[j - 1] + 1 == counts[j - 1]) --j;
    if (j == 0) break;
    ++index[j - 1];
    for (size_t i = j; i < d; ++i) index[i] = 0;
    for (size_t i = j - 1; i < d; ++i) {
      const int64_t at = offset[i] + index[i];
      point[i] = x[at];
      weight[i + 1] = weight[i] * w[at];
    }
  }
  return {sum + compensation, 0};
}

}  // namespace vek::zeros_quad
