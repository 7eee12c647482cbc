// The epsilon algorithm (Wynn 1956) as QUADPACK's dqelg applies it; positions count from 1 as in the table's
// published description.
#include "zeros_quad/epsilon_table.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vek::zeros_quad {

Extrapolation EpsilonTable::extrapolate() {
  constexpr double eps = constants::eps();
  constexpr double huge = std::numeric_limits<double>::max();
  double* e = table_.data();
  ++results_;
  Extrapolation best{e[n_], kNoErrorEstimate};
  auto floored = [&](Extrapolation x) {
    x.error = std::max(x.error, 0.5 * eps * std::abs(x.value));
    return x;
  };
  if (n_ < 3) return floored(best);

  const int64_t num = n_;
  const int64_t new_elements = (n_ - 1) / 2;
  e[n_ + 2] = e[n_];
  e[n_] = huge;
  int64_t k1 = n_;
  for (int64_t i = 1; i <= new_elements; ++i) {
    const double e0 = e[k1 - 2], e1 = e[k1 - 1], e2 = e[k1 + 2];
    const double e1abs = std::abs(e1);
    const double delta2 = e2 - e1, err2 = std::abs(delta2), tol2 = std::max(std::abs(e2), e1abs) * eps;
    const double delta3 = e1 - e0, err3 = std::abs(delta3), tol3 = std::max(e1abs, std::abs(e0)) * eps;
    if (err2 <= tol2 && err3 <= tol3) {
      // e0, e1 and e2 agree to machine accuracy: converged.
      return floored({e2, err2 + err3});
    }
    const double e3 = e[k1];
    e[k1] = e1;
    const double delta1 = e1 - e3, err1 = std::abs(delta1), tol1 = std::max(e1abs, std::abs(e3)) * eps;
    // Two neighbouring elements too close, or irregular behaviour: the table is cut at this element.
    if (err1 <= tol1 || err2 <= tol2 || err3 <= tol3) {
      n_ = i + i - 1;
      break;
    }
    const double ss = 1.0 / delta1 + 1.0 / delta2 - 1.0 / delta3;
    if (!(std::abs(ss * e1) > 1e-4)) {
      n_ = i + i - 1;
      break;
    }
    const double res = e1 + 1.0 / ss;
    e[k1] = res;
    k1 -= 2;
    const double error = err2 + std::abs(res - e2) + err3;
    if (error <= best.error) best = {res, error};
  }

  // Keep the newest entries: a full table loses one, then the table is shifted down.
  if (n_ == kCapacity) n_ = 2 * (kCapacity / 2) - 1;
  int64_t ib = num % 2 == 0 ? 2 : 1;
  for (int64_t i = 1; i <= new_elements + 1; ++i) {
    e[ib] = e[ib + 2];
    ib += 2;
  }
  if (num != n_) {
    int64_t from = num - n_ + 1;
    for (int64_t i = 1; i <= n_; ++i) e[i] = e[from++];
  }
  if (results_ < 4) {
    last_three_[static_cast<size_t>(results_ - 1)] = best.value;
    return floored({best.value, kNoErrorEstimate});
  }
  best.error = std::abs(best.value - last_three_[2]) + std::abs(best.value - last_three_[1]) +
               std::abs(best.value - last_three_[0]);
  last_three_ = {last_three_[1], last_three_[2], best.value};
  return floored(best);
}

}  // namespace vek::zeros_quad
