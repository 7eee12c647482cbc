// The test problems for systems of nonlinear equations of J. J. More, B. S. Garbow and K. E. Hillstrom,
// Testing unconstrained optimization software, ACM TOMS 7 (1981) 17-41, in the form of MINPACK-1's test
// collection for its equation solvers (the same 14 problems, Watson's and Wood's as the zero of a gradient),
// with their standard starting points; data/make_systems_reference.py transcribes the same functions. The
// Jacobians are written out for the problems the user-Jacobian solvers are tested on.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace vek::testing {

using SystemFunction = void (*)(int64_t n, const double* x, double* f);
using SystemJacobian = void (*)(int64_t n, const double* x, double* jac);  // column-major, jac[i + j*n]

struct SystemProblem {
  const char* name;
  SystemFunction f;
  SystemJacobian jacobian;  // nullptr when not written out
  void (*start)(int64_t n, double* x);
};

namespace mgh {

inline double h_of(int64_t n) { return 1.0 / static_cast<double>(n + 1); }
inline double sq(double t) { return t * t; }

inline void rosenbrock(int64_t, const double* x, double* f) {
  f[0] = 1.0 - x[0];
  f[1] = 10.0 * (x[1] - x[0] * x[0]);
}
inline void rosenbrock_j(int64_t, const double* x, double* j) {
  j[0] = -1.0, j[1] = -20.0 * x[0], j[2] = 0.0, j[3] = 10.0;
}

inline void powell_singular(int64_t, const double* x, double* f) {
  f[0] = x[0] + 10.0 * x[1];
  f[1] = std::sqrt(5.0) * (x[2] - x[3]);
  f[2] = sq(x[1] - 2.0 * x[2]);
  f[3] = std::sqrt(10.0) * sq(x[0] - x[3]);
}
inline void powell_singular_j(int64_t, const double* x, double* j) {
  std::fill(j, j + 16, 0.0);
  const double a = 2.0 * (x[1] - 2.0 * x[2]), b = 2.0 * std::sqrt(10.0) * (x[0] - x[3]);
  j[0] = 1.0, j[4] = 10.0;
  j[1 + 8] = std::sqrt(5.0), j[1 + 12] = -std::sqrt(5.0);
  j[2 + 4] = a, j[2 + 8] = -2.0 * a;
  j[3] = b, j[3 + 12] = -b;
}

inline void powell_badly_scaled(int64_t, const double* x, double* f) {
  f[0] = 1e4 * x[0] * x[1] - 1.0;
  f[1] = std::exp(-x[0]) + std::exp(-x[1]) - 1.0001;
}
inline void powell_badly_scaled_j(int64_t, const double* x, double* j) {
  j[0] = 1e4 * x[1], j[1] = -std::exp(-x[0]), j[2] = 1e4 * x[0], j[3] = -std::exp(-x[1]);
}

inline void wood(int64_t, const double* x, double* f) {
  const double t1 = x[1] - x[0] * x[0], t2 = x[3] - x[2] * x[2];
  f[0] = -200.0 * x[0] * t1 - (1.0 - x[0]);
  f[1] = 200.0 * t1 + 20.2 * (x[1] - 1.0) + 19.8 * (x[3] - 1.0);
  f[2] = -180.0 * x[2] * t2 - (1.0 - x[2]);
  f[3] = 180.0 * t2 + 20.2 * (x[3] - 1.0) + 19.8 * (x[1] - 1.0);
}
inline void wood_j(int64_t, const double* x, double* j) {
  std::fill(j, j + 16, 0.0);
  const double t1 = x[1] - x[0] * x[0], t2 = x[3] - x[2] * x[2];
  j[0] = -200.0 * t1 + 400.0 * x[0] * x[0] + 1.0, j[4] = -200.0 * x[0];
  j[1] = -400.0 * x[0], j[1 + 4] = 220.2, j[1 + 12] = 19.8;
  j[2 + 8] = -180.0 * t2 + 360.0 * x[2] * x[2] + 1.0, j[2 + 12] = -180.0 * x[2];
  j[3 + 4] = 19.8, j[3 + 8] = -360.0 * x[2], j[3 + 12] = 200.2;
}

inline void helical_valley(int64_t, const double* x, double* f) {
  const double tpi = 8.0 * std::atan(1.0);
  double theta = std::copysign(0.25, x[1]);
  if (x[0] > 0.0) theta = std::atan(x[1] / x[0]) / tpi;
  if (x[0] < 0.0) theta = std::atan(x[1] / x[0]) / tpi + 0.5;
  f[0] = 10.0 * (x[2] - 10.0 * theta);
  f[1] = 10.0 * (std::sqrt(x[0] * x[0] + x[1] * x[1]) - 1.0);
  f[2] = x[2];
}
inline void helical_valley_j(int64_t, const double* x, double* j) {
  const double tpi = 8.0 * std::atan(1.0), r2 = x[0] * x[0] + x[1] * x[1], r = std::sqrt(r2);
  j[0] = 100.0 * x[1] / (tpi * r2), j[3] = -100.0 * x[0] / (tpi * r2), j[6] = 10.0;
  j[1] = 10.0 * x[0] / r, j[4] = 10.0 * x[1] / r, j[7] = 0.0;
  j[2] = 0.0, j[5] = 0.0, j[8] = 1.0;
}

inline void watson(int64_t n, const double* x, double* f) {
  std::fill(f, f + n, 0.0);
  for (int i = 1; i <= 29; ++i) {
    const double ti = i / 29.0;
    double sum1 = 0.0, sum2 = 0.0, t = 1.0;
    for (int64_t j = 1; j < n; ++j, t *= ti) sum1 += static_cast<double>(j) * t * x[j];
    t = 1.0;
    for (int64_t j = 0; j < n; ++j, t *= ti) sum2 += t * x[j];
    const double t1 = sum1 - sum2 * sum2 - 1.0, t2 = 2.0 * ti * sum2;
    t = 1.0 / ti;
    for (int64_t k = 0; k < n; ++k, t *= ti) f[k] += t * (static_cast<double>(k) - t2) * t1;
  }
  const double t = x[1] - x[0] * x[0] - 1.0;
  f[0] += x[0] * (1.0 - 2.0 * t);
  f[1] += t;
}

inline void chebyquad(int64_t n, const double* x, double* f) {
  std::fill(f, f + n, 0.0);
  for (int64_t j = 0; j < n; ++j) {
    double t1 = 1.0, t2 = 2.0 * x[j] - 1.0;
    const double t = 2.0 * t2;
    for (int64_t i = 0; i < n; ++i) {
      f[i] += t2;
      const double ti = t * t2 - t1;
      t1 = t2, t2 = ti;
    }
  }
  const double dx = 1.0 / static_cast<double>(n);
  for (int64_t k = 0; k < n; ++k) {
    f[k] *= dx;
    if (k % 2 == 1) f[k] += 1.0 / (sq(static_cast<double>(k + 1)) - 1.0);
  }
}

inline void brown_almost_linear(int64_t n, const double* x, double* f) {
  double sum = -static_cast<double>(n + 1), prod = 1.0;
  for (int64_t j = 0; j < n; ++j) sum += x[j], prod *= x[j];
  for (int64_t k = 0; k + 1 < n; ++k) f[k] = x[k] + sum;
  f[n - 1] = prod - 1.0;
}
inline void brown_almost_linear_j(int64_t n, const double* x, double* j) {
  for (int64_t c = 0; c < n; ++c) {
    double prod = 1.0;
    for (int64_t i = 0; i < n; ++i)
      if (i != c) prod *= x[i];
    for (int64_t k = 0; k + 1 < n; ++k) j[k + c * n] = k == c ? 2.0 : 1.0;
    j[n - 1 + c * n] = prod;
  }
}

inline void discrete_bvp(int64_t n, const double* x, double* f) {
  const double h = h_of(n);
  for (int64_t k = 0; k < n; ++k) {
    const double t = std::pow(x[k] + static_cast<double>(k + 1) * h + 1.0, 3);
    const double left = k > 0 ? x[k - 1] : 0.0, right = k + 1 < n ? x[k + 1] : 0.0;
    f[k] = 2.0 * x[k] - left - right + t * h * h / 2.0;
  }
}
inline void discrete_bvp_j(int64_t n, const double* x, double* j) {
  const double h = h_of(n);
  std::fill(j, j + n * n, 0.0);
  for (int64_t k = 0; k < n; ++k) {
    j[k + k * n] = 2.0 + 1.5 * h * h * sq(x[k] + static_cast<double>(k + 1) * h + 1.0);
    if (k > 0) j[k + (k - 1) * n] = -1.0;
    if (k + 1 < n) j[k + (k + 1) * n] = -1.0;
  }
}

inline void discrete_integral(int64_t n, const double* x, double* f) {
  const double h = h_of(n);
  for (int64_t k = 0; k < n; ++k) {
    const double tk = static_cast<double>(k + 1) * h;
    double sum1 = 0.0, sum2 = 0.0;
    for (int64_t j = 0; j <= k; ++j) {
      const double tj = static_cast<double>(j + 1) * h;
      sum1 += tj * std::pow(x[j] + tj + 1.0, 3);
    }
    for (int64_t j = k + 1; j < n; ++j) {
      const double tj = static_cast<double>(j + 1) * h;
      sum2 += (1.0 - tj) * std::pow(x[j] + tj + 1.0, 3);
    }
    f[k] = x[k] + h * ((1.0 - tk) * sum1 + tk * sum2) / 2.0;
  }
}
inline void discrete_integral_j(int64_t n, const double* x, double* j) {
  const double h = h_of(n);
  for (int64_t k = 0; k < n; ++k) {
    const double tk = static_cast<double>(k + 1) * h;
    for (int64_t c = 0; c < n; ++c) {
      const double tc = static_cast<double>(c + 1) * h;
      const double weight = c <= k ? (1.0 - tk) * tc : tk * (1.0 - tc);
      j[k + c * n] = (k == c ? 1.0 : 0.0) + 1.5 * h * weight * sq(x[c] + tc + 1.0);
    }
  }
}

inline void trigonometric(int64_t n, const double* x, double* f) {
  double sum = 0.0;
  for (int64_t j = 0; j < n; ++j) f[j] = std::cos(x[j]), sum += f[j];
  for (int64_t k = 0; k < n; ++k)
    f[k] = static_cast<double>(n + k + 1) - std::sin(x[k]) - sum - static_cast<double>(k + 1) * f[k];
}
inline void trigonometric_j(int64_t n, const double* x, double* j) {
  for (int64_t c = 0; c < n; ++c)
    for (int64_t k = 0; k < n; ++k)
      j[k + c * n] = k == c ? std::sin(x[c]) * static_cast<double>(k + 2) - std::cos(x[c]) : std::sin(x[c]);
}

inline void variably_dimensioned(int64_t n, const double* x, double* f) {
  double sum = 0.0;
  for (int64_t j = 0; j < n; ++j) sum += static_cast<double>(j + 1) * (x[j] - 1.0);
  const double t = sum * (1.0 + 2.0 * sum * sum);
  for (int64_t k = 0; k < n; ++k) f[k] = x[k] - 1.0 + static_cast<double>(k + 1) * t;
}
inline void variably_dimensioned_j(int64_t n, const double* x, double* j) {
  double sum = 0.0;
  for (int64_t i = 0; i < n; ++i) sum += static_cast<double>(i + 1) * (x[i] - 1.0);
  const double d = 1.0 + 6.0 * sum * sum;
  for (int64_t c = 0; c < n; ++c)
    for (int64_t k = 0; k < n; ++k)
      j[k + c * n] = (k == c ? 1.0 : 0.0) + static_cast<double>((k + 1) * (c + 1)) * d;
}

inline void broyden_tridiagonal(int64_t n, const double* x, double* f) {
  for (int64_t k = 0; k < n; ++k) {
    const double left = k > 0 ? x[k - 1] : 0.0, right = k + 1 < n ? x[k + 1] : 0.0;
    f[k] = (3.0 - 2.0 * x[k]) * x[k] - left - 2.0 * right + 1.0;
  }
}
inline void broyden_tridiagonal_j(int64_t n, const double* x, double* j) {
  std::fill(j, j + n * n, 0.0);
  for (int64_t k = 0; k < n; ++k) {
    j[k + k * n] = 3.0 - 4.0 * x[k];
    if (k > 0) j[k + (k - 1) * n] = -1.0;
    if (k + 1 < n) j[k + (k + 1) * n] = -2.0;
  }
}

// Lower and upper bandwidths of the banded problem's Jacobian.
inline constexpr int64_t kBandedLower = 5, kBandedUpper = 1;

inline void broyden_banded(int64_t n, const double* x, double* f) {
  for (int64_t k = 0; k < n; ++k) {
    double t = 0.0;
    for (int64_t j = std::max<int64_t>(0, k - kBandedLower); j <= std::min(k + kBandedUpper, n - 1); ++j)
      if (j != k) t += x[j] * (1.0 + x[j]);
    f[k] = x[k] * (2.0 + 5.0 * x[k] * x[k]) + 1.0 - t;
  }
}
inline void broyden_banded_j(int64_t n, const double* x, double* j) {
  std::fill(j, j + n * n, 0.0);
  for (int64_t k = 0; k < n; ++k)
    for (int64_t c = std::max<int64_t>(0, k - kBandedLower); c <= std::min(k + kBandedUpper, n - 1); ++c)
      j[k + c * n] = c == k ? 2.0 + 15.0 * x[k] * x[k] : -(1.0 + 2.0 * x[c]);
}

inline void fill(int64_t n, double* x, double v) { std::fill(x, x + n, v); }
inline void grid_start(int64_t n, double* x) {  // t (t - 1) at t = jh
  for (int64_t j = 0; j < n; ++j) {
    const double t = static_cast<double>(j + 1) * h_of(n);
    x[j] = t * (t - 1.0);
  }
}

}  // namespace mgh

inline const std::vector<SystemProblem>& mgh_system_problems() {
  using namespace mgh;
  static const std::vector<SystemProblem> table = {
      {"rosenbrock", rosenbrock, rosenbrock_j, [](int64_t, double* x) { x[0] = -1.2, x[1] = 1.0; }},
      {"powell_singular", powell_singular, powell_singular_j,
       [](int64_t, double* x) { x[0] = 3.0, x[1] = -1.0, x[2] = 0.0, x[3] = 1.0; }},
      {"powell_badly_scaled", powell_badly_scaled, powell_badly_scaled_j,
       [](int64_t, double* x) { x[0] = 0.0, x[1] = 1.0; }},
      {"wood", wood, wood_j, [](int64_t, double* x) { x[0] = -3.0, x[1] = -1.0, x[2] = -3.0, x[3] = -1.0; }},
      {"helical_valley", helical_valley, helical_valley_j,
       [](int64_t, double* x) { x[0] = -1.0, x[1] = 0.0, x[2] = 0.0; }},
      {"watson", watson, nullptr, [](int64_t n, double* x) { fill(n, x, 0.0); }},
      {"chebyquad", chebyquad, nullptr,
       [](int64_t n, double* x) {
         for (int64_t j = 0; j < n; ++j) x[j] = static_cast<double>(j + 1) * h_of(n);
       }},
      {"brown_almost_linear", brown_almost_linear, brown_almost_linear_j, [](int64_t n, double* x) { fill(n, x, 0.5); }},
      {"discrete_bvp", discrete_bvp, discrete_bvp_j, grid_start},
      {"discrete_integral", discrete_integral, discrete_integral_j, grid_start},
      {"trigonometric", trigonometric, trigonometric_j,
       [](int64_t n, double* x) { fill(n, x, 1.0 / static_cast<double>(n)); }},
      {"variably_dimensioned", variably_dimensioned, variably_dimensioned_j,
       [](int64_t n, double* x) {
         for (int64_t j = 0; j < n; ++j) x[j] = 1.0 - static_cast<double>(j + 1) / static_cast<double>(n);
       }},
      {"broyden_tridiagonal", broyden_tridiagonal, broyden_tridiagonal_j, [](int64_t n, double* x) { fill(n, x, -1.0); }},
      {"broyden_banded", broyden_banded, broyden_banded_j, [](int64_t n, double* x) { fill(n, x, -1.0); }},
  };
  return table;
}

inline const SystemProblem& mgh_system(const std::string& name) {
  const auto& t = mgh_system_problems();
  return *std::find_if(t.begin(), t.end(), [&](const SystemProblem& p) { return name == p.name; });
}

}  // namespace vek::testing
