// GENID 3: the Mersenne Twister MT19937 (M. Matsumoto and T. Nishimura, ACM TOMACS 8 (1998) 3-30), one
// 32-bit output r per uniform u = (r + 1/2) 2^-32. Seeding: LSEED = 1 is the reference init_genrand with
// SEED(1) mod 2^32 (the stream of std::mt19937 seeded with that value), LSEED > 1 the reference init_by_array
// with the seeds mod 2^32; every seed is usable.
//
// Own words (0-based): [3] the stride (1, or N after leap-frogs); [4] the index i of the oldest of the 624
// words; [5..628] the words, kept as a circular buffer so that a state is the 624 latest values of the
// recurrence in order from index i; for the full state (LSTATE >= 1260) [629..1252] room for the jump and
// [1253..1255] zero.
//
// Skip-ahead (full state only) of n values: for n below 2^16 the values are generated and dropped; beyond,
// the state s becomes p(T) s with p = x^n modulo the generator's characteristic polynomial, found once by
// Berlekamp-Massey from 2 x 19937 output bits (H. Haramoto et al., Efficient jump ahead for F2-linear random
// number generators, INFORMS J. Comput. 20 (2008) 385-390). Leap-frog keeps a stride: each draw takes a value
// and drops the next stride - 1; a total stride above 2^16 is refused.
#include <algorithm>
#include <array>
#include <mutex>

#include "random/generators.h"
#include "random/gf2_polynomial.h"

namespace vek::random {
namespace {

constexpr int64_t kN = 624, kM = 397;
constexpr int64_t kShort = 630, kFull = 1257;
constexpr int64_t kStride = 3, kIndex = 4, kWords = 5, kWork = kWords + kN;
constexpr int64_t kMaxStride = int64_t{1} << 16;
constexpr uint64_t kDropLimit = uint64_t{1} << 16;
constexpr int64_t kDegree = 19937;

struct Twister {
  std::array<uint32_t, kN> s;
  int64_t i;

  uint32_t step() {
    const int64_t i1 = i + 1 == kN ? 0 : i + 1;
    const int64_t im = i + kM >= kN ? i + kM - kN : i + kM;
    const uint32_t y = (s[static_cast<size_t>(i)] & 0x80000000u) | (s[static_cast<size_t>(i1)] & 0x7fffffffu);
    const uint32_t x = s[static_cast<size_t>(im)] ^ (y >> 1) ^ ((y & 1u) ? 0x9908b0dfu : 0u);
    s[static_cast<size_t>(i)] = x;
    i = i1;
    return x;
  }
  uint32_t next() {
    uint32_t y = step();
    y ^= y >> 11;
    y ^= (y << 7) & 0x9d2c5680u;
    y ^= (y << 15) & 0xefc60000u;
    return y ^ (y >> 18);
  }
  // this += other, as sequences of the 624 latest values.
  void add(const Twister& o) {
    for (int64_t j = 0; j < kN; ++j) s[static_cast<size_t>((i + j) % kN)] ^= o.s[static_cast<size_t>((o.i + j) % kN)];
  }
};

Twister load(const int64_t* state) {
  Twister t;
  for (int64_t j = 0; j < kN; ++j) t.s[static_cast<size_t>(j)] = static_cast<uint32_t>(state[kWords + j]);
  t.i = state[kIndex];
  return t;
}

void store(const Twister& t, int64_t* state) {
  for (int64_t j = 0; j < kN; ++j) state[kWords + j] = t.s[static_cast<size_t>(j)];
  state[kIndex] = t.i;
}

Twister init_genrand(uint32_t seed) {
  Twister t;
  t.s[0] = seed;
  for (size_t j = 1; j < kN; ++j) t.s[j] = 1812433253u * (t.s[j - 1] ^ (t.s[j - 1] >> 30)) + static_cast<uint32_t>(j);
  t.i = 0;
  return t;
}

Twister init_by_array(std::span<const int64_t> key) {
  Twister t = init_genrand(19650218u);
  auto& mt = t.s;
  size_t i = 1, j = 0;
  const size_t len = key.size();
  for (size_t k = std::max<size_t>(kN, len); k > 0; --k) {
    mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1664525u)) + static_cast<uint32_t>(key[j]) +
            static_cast<uint32_t>(j);
    if (++i >= kN) {
      mt[0] = mt[kN - 1];
      i = 1;
    }
    if (++j >= len) j = 0;
  }
  for (size_t k = kN - 1; k > 0; --k) {
    mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1566083941u)) - static_cast<uint32_t>(i);
    if (++i >= kN) {
      mt[0] = mt[kN - 1];
      i = 1;
    }
  }
  mt[0] = 0x80000000u;
  return t;
}

// The characteristic polynomial, from the output bits of any state (it is irreducible, so every nonzero
// output functional has it as minimal polynomial).
const gf2::Modulus& characteristic() {
  static const gf2::Modulus modulus = [] {
    Twister t = init_genrand(5489u);
    std::vector<uint8_t> bits(2 * kDegree);
    for (uint8_t& b : bits) b = t.next() & 1u;
    const gf2::Minimal m = gf2::berlekamp_massey(bits);
    return gf2::Modulus(m.poly, m.degree);
  }();
  return modulus;
}

void jump(Twister& t, unsigned __int128 n) {
  if (n < kDropLimit) {
    for (auto k = static_cast<uint64_t>(n); k > 0; --k) t.step();
    return;
  }
  const gf2::Modulus& f = characteristic();
  const gf2::Poly p = f.x_power(n);
  Twister sum;
  sum.s.fill(0);
  sum.i = 0;
  for (int64_t d = 0; d < f.degree(); ++d) {
    if (gf2::bit(p, d)) sum.add(t);
    t.step();
  }
  t = sum;
}

int64_t internal_length(int64_t, int64_t available) { return available < 0 || available >= kFull ? kFull : kShort; }

SeedStatus seed(int64_t, std::span<const int64_t> seeds, int64_t* state, int64_t internal) {
  const Twister t = seeds.size() == 1 ? init_genrand(static_cast<uint32_t>(seeds[0])) : init_by_array(seeds);
  state[kStride] = 1;
  store(t, state);
  std::fill(state + kWork, state + internal - 1, 0);
  return SeedStatus::ok;
}

bool length_consistent(const int64_t* state) {
  const int64_t n = state[kWordLength];
  if (n != kShort + kTrailerWords && n != kFull + kTrailerWords) return false;
  return state[kIndex] >= 0 && state[kIndex] < kN && state[kStride] >= 1 && state[kStride] <= kMaxStride;
}

void uniforms(int64_t* state, std::span<double> out) {
  Twister t = load(state);
  const int64_t drop = state[kStride] - 1;
  for (double& u : out) {
    u = (static_cast<double>(t.next()) + 0.5) * 0x1p-32;
    for (int64_t k = 0; k < drop; ++k) t.step();
  }
  store(t, state);
}

SkipStatus skip(int64_t* state, uint64_t n) {
  if (state[kWordLength] != kFull + kTrailerWords) return SkipStatus::state_too_short;
  Twister t = load(state);
  jump(t, static_cast<unsigned __int128>(n) * static_cast<uint64_t>(state[kStride]));
  store(t, state);
  return SkipStatus::ok;
}

bool leapfrog(int64_t* state, int64_t n, int64_t k) {
  const int64_t stride = state[kStride];
  if (n > kMaxStride / stride) return false;
  Twister t = load(state);
  jump(t, static_cast<unsigned __int128>(k - 1) * static_cast<uint64_t>(stride));
  store(t, state);
  state[kStride] = stride * n;
  return true;
}

}  // namespace

const GeneratorOps kMersenneTwister{internal_length, [](int64_t) { return kShort; }, seed, length_consistent,
                                    uniforms, skip, leapfrog};

}  // namespace vek::random
