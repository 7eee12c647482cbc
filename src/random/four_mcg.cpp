#include "random/four_mcg.h"

#include <cmath>

#include "random/generator.h"
#include "random/modular.h"

namespace vek::random::four_mcg {

void place(int64_t* state, int64_t base, const int64_t (&values)[4], const int64_t (&mult)[4],
           const int64_t (&mod)[4]) {
  for (int j = 0; j < 4; ++j) {
    const int64_t v = ((values[j] % mod[j]) + mod[j]) % mod[j];
    state[base + j] = v == 0 ? 1 : v;
    state[base + 4 + j] = mult[j];
    state[base + 8 + j] = mod[j];
  }
}

// The integer part of a nonnegative v below 2^63, by truncation: one conversion each way, where floor is a
// library call on machines without SSE4.1.
inline double whole_part(double v) { return static_cast<double>(static_cast<int64_t>(v)); }

// a x mod m in double precision: a x < 2^53 for both generators (a < 2^16 with m < 2^31, or a < 2^7 with
// m < 2^24), so the product, the quotient's multiple of m and the remainder are exact; the quotient from the
// rounded reciprocal is off by at most one, which the two corrections mend.
inline double times_mod(double a, double x, double m, double inv_m) {
  const double v = a * x;
  double r = v - whole_part(v * inv_m) * m;
  r = r < 0.0 ? r + m : r;
  return r >= m ? r - m : r;
}

void uniforms(int64_t* state, int64_t base, std::span<double> out) {
  int64_t* x = state + base;
  const int64_t* a = state + base + 4;
  const int64_t* m = state + base + 8;
  double inv[4];
  bool exact_in_double = true;
  for (int j = 0; j < 4; ++j) {
    inv[j] = 1.0 / static_cast<double>(m[j]);
    exact_in_double = exact_in_double && static_cast<double>(a[j]) * static_cast<double>(m[j]) < 0x1p53;
  }
  if (exact_in_double) {  // the generators' own multipliers
    double ad[4], md[4], v[4];
    for (int j = 0; j < 4; ++j) {
      ad[j] = static_cast<double>(a[j]);
      md[j] = static_cast<double>(m[j]);
      v[j] = static_cast<double>(x[j]);
    }
    for (double& u : out) {
      double w = 0.0;
      for (int j = 0; j < 4; ++j) {
        v[j] = times_mod(ad[j], v[j], md[j], inv[j]);
        w += v[j] * inv[j];
      }
      u = strictly_inside(w - whole_part(w));
    }
    for (int j = 0; j < 4; ++j) x[j] = static_cast<int64_t>(v[j]);
    return;
  }
  for (double& u : out) {  // leap-frogged multipliers a^N, up to m - 1
    double w = 0.0;
    for (int j = 0; j < 4; ++j) {
      x[j] = static_cast<int64_t>(mul_mod(static_cast<uint64_t>(x[j]), static_cast<uint64_t>(a[j]),
                                          static_cast<uint64_t>(m[j])));
      w += static_cast<double>(x[j]) * inv[j];
    }
    u = strictly_inside(w - whole_part(w));
  }
}

void skip(int64_t* state, int64_t base, uint64_t n) {
  for (int j = 0; j < 4; ++j) {
    const auto m = static_cast<uint64_t>(state[base + 8 + j]);
    const uint64_t step = pow_mod(static_cast<uint64_t>(state[base + 4 + j]), n, m);
    state[base + j] = static_cast<int64_t>(mul_mod(static_cast<uint64_t>(state[base + j]), step, m));
  }
}

void leapfrog(int64_t* state, int64_t base, int64_t n, int64_t k) {
  for (int j = 0; j < 4; ++j) {
    const auto m = static_cast<uint64_t>(state[base + 8 + j]);
    const auto a = static_cast<uint64_t>(state[base + 4 + j]);
    const uint64_t back = pow_mod_signed(a, static_cast<__int128>(k) - n, m);
    state[base + j] = static_cast<int64_t>(mul_mod(static_cast<uint64_t>(state[base + j]), back, m));
    state[base + 4 + j] = static_cast<int64_t>(pow_mod(a, static_cast<uint64_t>(n), m));
  }
}

}  // namespace vek::random::four_mcg
