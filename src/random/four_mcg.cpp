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

void uniforms(int64_t* state, int64_t base, std::span<double> out) {
  int64_t* x = state + base;
  const int64_t* a = state + base + 4;
  const int64_t* m = state + base + 8;
  const double inv[4] = {1.0 / m[0], 1.0 / m[1], 1.0 / m[2], 1.0 / m[3]};
  int64_t v[4] = {x[0], x[1], x[2], x[3]};
  for (double& u : out) {
    double w = 0.0;
    for (int j = 0; j < 4; ++j) {
      v[j] = static_cast<int64_t>(mul_mod(static_cast<uint64_t>(v[j]), static_cast<uint64_t>(a[j]),
                                          static_cast<uint64_t>(m[j])));
      w += static_cast<double>(v[j]) * inv[j];
    }
    u = strictly_inside(w - std::floor(w));
  }
  for (int j = 0; j < 4; ++j) x[j] = v[j];
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
