#include "ode/elimination.h"

#include <cmath>
#include <utility>

#include "frame/constants.h"

namespace vek::ode {

bool solve_in_place(int64_t n, double* j, double* r) {
  auto at = [&](int64_t row, int64_t col) -> double& { return j[row + col * n]; };
  double largest = 0.0;
  for (int64_t k = 0; k < n * n; ++k) largest = std::fmax(largest, std::abs(j[k]));
  const double tiny = static_cast<double>(n) * constants::eps() * largest;
  for (int64_t col = 0; col < n; ++col) {
    int64_t pivot = col;
    for (int64_t row = col + 1; row < n; ++row)
      if (std::abs(at(row, col)) > std::abs(at(pivot, col))) pivot = row;
    // A NaN pivot fails here too: its comparison is false.
    if (!(std::abs(at(pivot, col)) > tiny)) return false;
    if (pivot != col) {
      for (int64_t c = col; c < n; ++c) std::swap(at(pivot, c), at(col, c));
      std::swap(r[pivot], r[col]);
    }
    // The multipliers replace column col below the pivot; the rest is updated a column at a time.
    const double inverse = 1.0 / at(col, col);
    for (int64_t row = col + 1; row < n; ++row) {
      at(row, col) *= inverse;
      r[row] -= at(row, col) * r[col];
    }
    for (int64_t c = col + 1; c < n; ++c) {
      const double top = at(col, c);
      if (top == 0.0) continue;
      for (int64_t row = col + 1; row < n; ++row) at(row, c) -= at(row, col) * top;
    }
  }
  for (int64_t col = n - 1; col >= 0; --col) {
    double sum = r[col];
    for (int64_t c = col + 1; c < n; ++c) sum -= at(col, c) * r[c];
    r[col] = sum / at(col, col);
  }
  return true;
}

}  // namespace vek::ode
