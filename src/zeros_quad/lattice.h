// Rank-1 lattice rules of Korobov type for periodic integrands over [0,1)^n: the points {k z / N + shift},
// k = 0..N-1, with z = (1, a, a^2, ...) mod N. The coefficient a minimises the worst-case error P2 of the rule
// in the weighted Korobov space of smoothness 2 (Sloan and Joe, Lattice Methods for Multiple Integration, 1994):
//   P2(z) = -1 + (1/N) sum_k prod_i (1 + 2 pi^2 B2({k z_i / N})),   B2(x) = x^2 - x + 1/6.
// Non-periodic integrands over a hyper-rectangle are periodised by a change of variable in each coordinate.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace vek::zeros_quad {

// Deterministic for every 64-bit n (Miller-Rabin with the first twelve primes as bases).
bool is_prime(int64_t n);

// z_i = a^(i-1) mod n, i = 1..z.size().
void korobov_vector(int64_t n, int64_t a, std::span<int64_t> z);

// The a in 1..max(1, (n-1)/2) of least P2 for n points in ndim dimensions (a and n - a give the same rule);
// the smallest such a on ties. Cost n^2 ndim / 4 products.
int64_t optimal_korobov_prime(int64_t n, int64_t ndim);

// For n = p q (distinct primes, P the larger): the a of least P2 modulo n among the lifts a = a_P + P t,
// t = 0..Q-1, of the optimal coefficient a_P modulo P. Cost about P^2 ndim / 4 + Q n ndim / 2 products.
int64_t optimal_korobov_product(int64_t p, int64_t q, int64_t ndim);

// The change of variable x = phi(t) on [0,1] and its weight phi'(t).
enum class Periodising { none = 0, cubic = 1, sidi = 2, tent = 3 };

// The most points handed to the integrand in one batch.
inline constexpr int64_t kLatticeBatch = 1024;

// f(m, x, values): the m points in x coordinate by coordinate (x[i m + j] is coordinate i of point j), the
// integrand values into values[0..m-1].
using LatticeBatchFn = std::function<void(int64_t m, const double* x, double* values)>;

struct LatticeProblem {
  int64_t ndim, npts;
  const int64_t* vk;  // 1 <= vk[i] < npts
  const double* a;    // finite limits
  const double* b;
  Periodising transform;
};

struct LatticeOutcome {
  bool finite = true;
  double result = 0, abserr = 0;
};

// The mean of the rule over the shifts (shifts.size() / ndim of them, each in [0,1)^ndim) and the standard
// error of that mean.
LatticeOutcome integrate_lattice(const LatticeBatchFn& f, const LatticeProblem& p, std::span<const double> shifts);

}  // namespace vek::zeros_quad
