// Korobov lattice rules: primality, the P2 criterion and the coefficient searches, and the shifted rule with its
// periodising transformations (lattice.h).
#include "zeros_quad/lattice.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <vector>

namespace vek::zeros_quad {
namespace {

uint64_t mul_mod(uint64_t x, uint64_t y, uint64_t m) {
  return static_cast<uint64_t>(static_cast<unsigned __int128>(x) * y % m);
}

uint64_t pow_mod(uint64_t x, uint64_t e, uint64_t m) {
  uint64_t r = 1 % m;
  for (x %= m; e; e >>= 1, x = mul_mod(x, x, m))
    if (e & 1) r = mul_mod(r, x, m);
  return r;
}

// A table of n doubles that cannot exist is an allocation failure, not a length error.
size_t table_length(int64_t n) {
  if (static_cast<uint64_t>(n) > std::vector<double>().max_size()) throw std::bad_alloc();
  return static_cast<size_t>(n);
}

// P2 of Korobov rules modulo n in ndim dimensions: the factors 1 + 2 pi^2 B2(m/n) tabulated once.
class KorobovCriterion {
 public:
  KorobovCriterion(int64_t n, int64_t ndim) : n_(n), ndim_(ndim), factor_(table_length(n)), z_(ndim), m_(ndim) {
    const double two_pi2 = 2.0 * std::numbers::pi * std::numbers::pi;
    for (int64_t m = 0; m < n; ++m) {
      const double x = static_cast<double>(m) / static_cast<double>(n);
      factor_[m] = 1.0 + two_pi2 * (x * x - x + 1.0 / 6.0);
    }
  }

  // The terms for k and n - k are equal (B2 is symmetric about 1/2): half the sum, doubled.
  double operator()(int64_t a) {
    korobov_vector(n_, a, z_);
    std::fill(m_.begin(), m_.end(), 0);
    double sum = 0.0;
    for (int64_t k = 1; k <= (n_ - 1) / 2; ++k) {
      double term = 1.0;
      for (int64_t i = 0; i < ndim_; ++i) {
        m_[i] += z_[i];
        if (m_[i] >= n_) m_[i] -= n_;
        term *= factor_[m_[i]];
      }
      sum += term;
    }
    sum *= 2.0;
    if (n_ % 2 == 0) {
      double term = 1.0;
      for (int64_t i = 0; i < ndim_; ++i) term *= factor_[static_cast<size_t>(mul_mod(n_ / 2, z_[i], n_))];
      sum += term;
    }
    return -1.0 + (std::pow(factor_[0], static_cast<double>(ndim_)) + sum) / static_cast<double>(n_);
  }

 private:
  int64_t n_, ndim_;
  std::vector<double> factor_;
  std::vector<int64_t> z_, m_;
};

// x = phi(t) and phi'(t) for t in [0,1).
struct Mapped {
  double x, weight;
};

Mapped periodise(Periodising kind, double t) {
  switch (kind) {
    case Periodising::cubic: return {t * t * (3.0 - 2.0 * t), 6.0 * t * (1.0 - t)};
    case Periodising::sidi: {
      const double angle = 2.0 * std::numbers::pi * t;
      return {t - std::sin(angle) / (2.0 * std::numbers::pi), 1.0 - std::cos(angle)};
    }
    case Periodising::tent: return {1.0 - std::abs(2.0 * t - 1.0), 1.0};
    case Periodising::none: break;
  }
  return {t, 1.0};
}

}  // namespace

bool is_prime(int64_t n) {
  if (n < 2) return false;
  constexpr uint64_t kBases[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37};
  const auto u = static_cast<uint64_t>(n);
  for (uint64_t p : kBases)
    if (u % p == 0) return u == p;
  uint64_t d = u - 1;
  int s = 0;
  for (; d % 2 == 0; d /= 2) ++s;
  for (uint64_t base : kBases) {
    uint64_t x = pow_mod(base, d, u);
    if (x == 1 || x == u - 1) continue;
    bool composite = true;
    for (int r = 1; r < s && composite; ++r) {
      x = mul_mod(x, x, u);
      composite = x != u - 1;
    }
    if (composite) return false;
  }
  return true;
}

void korobov_vector(int64_t n, int64_t a, std::span<int64_t> z) {
  uint64_t power = 1 % static_cast<uint64_t>(n);
  for (int64_t& zi : z) {
    zi = static_cast<int64_t>(power);
    power = mul_mod(power, static_cast<uint64_t>(a), static_cast<uint64_t>(n));
  }
}

// P2 values within this relative distance count as equal: a and its inverse modulo n give the same point set
// with the coordinates reversed, so exact ties are common, and the smaller coefficient is kept.
constexpr double kTie = 1e-12;

int64_t optimal_korobov_prime(int64_t n, int64_t ndim) {
  KorobovCriterion p2(n, ndim);
  int64_t best = 1;
  double least = p2(1);
  for (int64_t a = 2; a <= (n - 1) / 2; ++a)
    if (const double v = p2(a); v < least - kTie * least) least = v, best = a;
  return best;
}

int64_t optimal_korobov_product(int64_t p, int64_t q, int64_t ndim) {
  const int64_t larger = std::max(p, q), smaller = std::min(p, q), n = p * q;
  const int64_t base = optimal_korobov_prime(larger, ndim);
  KorobovCriterion p2(n, ndim);
  int64_t best = 0;
  double least = 0.0;
  for (int64_t t = 0; t < smaller; ++t) {
    const int64_t a = base + larger * t;
    if (a % smaller == 0) continue;  // not a unit modulo n
    if (const double v = p2(a); best == 0 || v < least - kTie * least) least = v, best = a;
  }
  return best;
}

LatticeOutcome integrate_lattice(const LatticeBatchFn& f, const LatticeProblem& p, std::span<const double> shifts) {
  const int64_t n = p.ndim, nrand = static_cast<int64_t>(shifts.size()) / n;
  const int64_t batch = std::min(p.npts, kLatticeBatch);
  std::vector<double> x(static_cast<size_t>(batch * n)), weight(static_cast<size_t>(batch)),
      values(static_cast<size_t>(batch));
  std::vector<uint64_t> m(static_cast<size_t>(n));  // both terms of m + vk are below 2^63: no overflow
  std::vector<double> means(static_cast<size_t>(nrand));
  const double inv_n = 1.0 / static_cast<double>(p.npts);
  LatticeOutcome out;

  for (int64_t s = 0; s < nrand; ++s) {
    const double* shift = shifts.data() + s * n;
    std::fill(m.begin(), m.end(), 0u);  // m_i = k vk_i mod N, k = 0, 1, ...
    double sum = 0.0;
    for (int64_t k0 = 0; k0 < p.npts; k0 += batch) {
      const int64_t count = std::min(batch, p.npts - k0);
      std::fill(weight.begin(), weight.begin() + count, 1.0);
      for (int64_t j = 0; j < count; ++j)
        for (int64_t i = 0; i < n; ++i) {
          double t = static_cast<double>(m[i]) * inv_n + shift[i];
          if (t >= 1.0) t -= 1.0;
          const Mapped y = periodise(p.transform, t);
          x[i * count + j] = p.a[i] + (p.b[i] - p.a[i]) * y.x;
          weight[j] *= (p.b[i] - p.a[i]) * y.weight;
          m[i] += static_cast<uint64_t>(p.vk[i]);
          if (m[i] >= static_cast<uint64_t>(p.npts)) m[i] -= static_cast<uint64_t>(p.npts);
        }
      std::fill(values.begin(), values.begin() + count, std::nan(""));  // a function that writes nothing
      f(count, x.data(), values.data());
      double part = 0.0;
      for (int64_t j = 0; j < count; ++j) part += weight[j] * values[j];
      sum += part;
    }
    means[s] = sum * inv_n;
    if (!std::isfinite(means[s])) {
      out.finite = false;
      out.result = out.abserr = std::nan("");
      return out;
    }
  }
  double mean = 0.0;
  for (double q : means) mean += q;
  mean /= static_cast<double>(nrand);
  double spread = 0.0;
  for (double q : means) spread += (q - mean) * (q - mean);
  out.result = mean;
  out.abserr = std::sqrt(spread / static_cast<double>(nrand * (nrand - 1)));
  return out;
}

}  // namespace vek::zeros_quad
