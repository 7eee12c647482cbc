// Summary statistics of a sample with optional weights: mean, standard deviation, skewness, kurtosis,
// extremes and the sum of weights.
#pragma once

#include <cstdint>
#include <span>

namespace vek::stats {

struct Moments {
  double mean, sd, skewness, kurtosis, min, max, weight_sum;
  int64_t positive;  // observations with positive weight
};

// Observations with zero weight are left out of everything; `weights` empty means all weights 1. Weights
// must be >= 0 (checked by the caller). Corrected two-pass algorithm: the mean from a compensated sum, then
// refined by the mean of the deviations, then the central moments. A NaN among the used observations makes
// every result NaN. With W the sum of weights and n the observations of positive weight:
// sd^2 = sum w (x - mean)^2 / (W (n - 1) / n), skewness = (sum w d^3 / W) / sd^3,
// kurtosis = (sum w d^4 / W) / sd^4 - 3 (0 for both when sd = 0).
Moments moments(std::span<const double> x, std::span<const double> weights);

}  // namespace vek::stats
