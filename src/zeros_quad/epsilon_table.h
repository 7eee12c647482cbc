// Wynn's epsilon algorithm over the sequence of integral approximations of the extrapolating integrator, in
// the form of QUADPACK's dqelg (Piessens et al. 1983): a table of at most 50 entries, of which the newest
// diagonal is extended, and the error of the extrapolated value taken from the last three results.
#pragma once

#include <array>
#include <cstdint>

#include "frame/constants.h"

namespace vek::zeros_quad {

// The error the integrators hold until an extrapolated value has been accepted: 1 / (safe range minimum).
inline constexpr double kNoErrorEstimate = 1.0 / constants::safe_range();

struct Extrapolation {
  double value;
  double error;  // kNoErrorEstimate (or more) until three extrapolated values have been made
};

class EpsilonTable {
 public:
  static constexpr int64_t kCapacity = 50;

  int64_t size() const { return n_; }
  void append(double area) { table_[++n_] = area; }
  // Extends the table by its newest entry and returns the best extrapolated value; may shorten the table.
  Extrapolation extrapolate();

 private:
  std::array<double, kCapacity + 3> table_{};  // positions 1..n_, with two more for the newest element
  int64_t n_ = 0;
  int64_t results_ = 0;                 // extrapolations made
  std::array<double, 3> last_three_{};  // the last three extrapolated values
};

}  // namespace vek::zeros_quad
