// Reproducible test matrices.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

// An m by n matrix (leading dimension ld) of uniform entries in [-1, 1), the same for the same seed.
inline std::vector<double> random_matrix(int64_t m, int64_t n, int64_t ld, unsigned seed) {
  std::mt19937_64 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> a(static_cast<size_t>(ld * n), 0.0);
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < m; ++i) a[static_cast<size_t>(i + j * ld)] = u(gen);
  return a;
}

// A random n by n matrix made diagonally dominant (well conditioned).
inline std::vector<double> dominant_matrix(int64_t n, unsigned seed) {
  std::vector<double> a = random_matrix(n, n, n, seed);
  for (int64_t i = 0; i < n; ++i) a[static_cast<size_t>(i + i * n)] += static_cast<double>(n);
  return a;
}
