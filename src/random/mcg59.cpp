// GENID 1: the multiplicative congruential generator y <- 13^13 y mod 2^59, kept as x = 2y mod 2^60 in four
// 15-bit limbs (words [4..7], least significant first) with the multiplier in words [8..11]. The limb
// products of the stored form and the 64-bit products used here agree exactly: both are x a mod 2^60.
//
// A draw advances x and returns u = 1 - (hi 2^-30 + lo 2^-60), hi and lo the upper and lower 30 bits of x.
// Mathematically u lies in [2^-59, 1 - 2^-59]; in floating point the extreme few x round u to 0 or 1, and
// those draws are moved just inside (strictly_inside).
//
// Leap-frog (N, K) replaces the multiplier a by a^N and x by x a^(K-N), so that the first draw, which
// multiplies by a^N, is the K-th value of the unsplit stream; a is odd, so a^-1 exists modulo 2^60.
#include <immintrin.h>

#include <bit>
#include <cstdint>

#include "random/generators.h"

namespace vek::random {
namespace {

constexpr uint64_t kMask60 = (uint64_t{1} << 60) - 1;
constexpr uint64_t kMultiplier = 302875106592253;  // 13^13
constexpr int64_t kInternal = 14;
constexpr int64_t kX = 4, kA = 8;                  // first limb word of x and of the multiplier

uint64_t read_limbs(const int64_t* w) {
  return static_cast<uint64_t>(w[0]) | static_cast<uint64_t>(w[1]) << 15 | static_cast<uint64_t>(w[2]) << 30 |
         static_cast<uint64_t>(w[3]) << 45;
}

void write_limbs(uint64_t v, int64_t* w) {
  for (int i = 0; i < 4; ++i) w[i] = static_cast<int64_t>((v >> (15 * i)) & 0x7fff);
}

uint64_t pow60(uint64_t a, uint64_t e) {
  uint64_t r = 1;
  for (; e != 0; e >>= 1) {
    if (e & 1) r = (r * a) & kMask60;
    a = (a * a) & kMask60;
  }
  return r;
}

// The inverse of an odd a modulo 2^64 (hence 2^60) by Newton's iteration: each step doubles the good bits.
uint64_t inverse_odd(uint64_t a) {
  uint64_t inv = a;  // right to 3 bits for any odd a
  for (int i = 0; i < 5; ++i) inv *= 2 - a * inv;
  return inv;
}

// An integer below 2^52 as a double, exactly, by placing it in the mantissa of 2^52: no conversion
// instruction, so the lanes below stay in 64-bit vector lanes.
inline double small_to_double(uint64_t v) {
  return std::bit_cast<double>(v | 0x4330000000000000ULL) - 0x1p52;
}

double to_uniform(uint64_t x) {
  const double hi = small_to_double(x >> 30), lo = small_to_double(x & 0x3fffffff);
  return strictly_inside(1.0 - (hi * 0x1p-30 + lo * 0x1p-60));
}

int64_t internal_length(int64_t, int64_t) { return kInternal; }

SeedStatus seed(int64_t, std::span<const int64_t> seeds, int64_t* state, int64_t) {
  if (seeds.empty() || seeds[0] < 1) return SeedStatus::invalid_seed;
  const uint64_t s = static_cast<uint64_t>(seeds[0]) & ((uint64_t{1} << 58) - 1);
  state[3] = 0;
  write_limbs(((4 * s + 2) * kMultiplier) & kMask60, state + kX);
  write_limbs(kMultiplier, state + kA);
  state[12] = 0;
  return SeedStatus::ok;
}

bool length_consistent(const int64_t* state) { return state[kWordLength] == kInternal + kTrailerWords; }

// Eight interleaved lanes: lane j multiplies the block's starting x by a^(j+1), so the dependency chain is one
// multiplication per eight draws and the values are exactly the sequential stream's.
void uniform_blocks_generic(uint64_t& x, const uint64_t (&power)[8], double* out, size_t blocks) {
  for (size_t b = 0; b < blocks; ++b) {
    for (size_t j = 0; j < 8; ++j) out[8 * b + j] = to_uniform((x * power[j]) & kMask60);
    x = (x * power[7]) & kMask60;
  }
}

// The same lanes in AVX2 registers: the 64-bit products from three 32-bit ones (the high half of x times
// the high half of a power falls beyond 2^64), the halves of x converted through the mantissa of 2^52, and
// the clamp as min and max. Every operation rounds as the scalar code's does.
[[gnu::target("avx2")]] void uniform_blocks_avx2(uint64_t& x, const uint64_t (&power)[8], double* out,
                                                  size_t blocks) {
  const __m256i mask60 = _mm256_set1_epi64x(static_cast<int64_t>(kMask60));
  const __m256i mask30 = _mm256_set1_epi64x(0x3fffffff);
  const __m256i magic = _mm256_set1_epi64x(0x4330000000000000LL);
  const __m256d two52 = _mm256_set1_pd(0x1p52), one = _mm256_set1_pd(1.0);
  const __m256d scale_hi = _mm256_set1_pd(0x1p-30), scale_lo = _mm256_set1_pd(0x1p-60);
  const __m256d smallest = _mm256_set1_pd(0x1p-59), largest = _mm256_set1_pd(1.0 - 0x1p-53);
  const __m256i p[2] = {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(power)),
                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(power + 4))};
  const __m256i p_hi[2] = {_mm256_srli_epi64(p[0], 32), _mm256_srli_epi64(p[1], 32)};
  for (size_t b = 0; b < blocks; ++b) {
    const __m256i xv = _mm256_set1_epi64x(static_cast<int64_t>(x));
    const __m256i x_hi = _mm256_srli_epi64(xv, 32);
    for (int h = 0; h < 2; ++h) {
      const __m256i cross = _mm256_add_epi64(_mm256_mul_epu32(x_hi, p[h]), _mm256_mul_epu32(xv, p_hi[h]));
      const __m256i v = _mm256_and_si256(_mm256_add_epi64(_mm256_mul_epu32(xv, p[h]), _mm256_slli_epi64(cross, 32)),
                                         mask60);
      const __m256d hi = _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(_mm256_srli_epi64(v, 30), magic)), two52);
      const __m256d lo = _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(_mm256_and_si256(v, mask30), magic)), two52);
      const __m256d u = _mm256_sub_pd(one, _mm256_add_pd(_mm256_mul_pd(hi, scale_hi), _mm256_mul_pd(lo, scale_lo)));
      _mm256_storeu_pd(out + 8 * b + 4 * h, _mm256_min_pd(_mm256_max_pd(u, smallest), largest));
    }
    x = (x * power[7]) & kMask60;
  }
}

// With AVX-512DQ the lanes multiply in 64 bits directly and convert x to double in one instruction:
// hi 2^-30 + lo 2^-60 is the exact x 2^-60 rounded once, which is what converting x rounds to, scaled by a
// power of two. Four registers of eight lanes advance by a^32 each, so no lane waits on another's product.
[[gnu::target("avx512f,avx512dq")]] void uniform_blocks_avx512(uint64_t& x, const uint64_t (&power)[8],
                                                              double* out, size_t blocks) {
  const __m512i mask60 = _mm512_set1_epi64(static_cast<int64_t>(kMask60));
  const __m512d scale = _mm512_set1_pd(0x1p-60), one = _mm512_set1_pd(1.0);
  const __m512d smallest = _mm512_set1_pd(0x1p-59), largest = _mm512_set1_pd(1.0 - 0x1p-53);
  constexpr size_t kRegisters = 4;
  // lanes[r] holds x a^(8r + j + 1); every register steps by a^(8 kRegisters).
  __m512i lanes[kRegisters];
  uint64_t start = x;
  for (size_t r = 0; r < kRegisters; ++r) {
    lanes[r] = _mm512_and_si512(_mm512_mullo_epi64(_mm512_set1_epi64(static_cast<int64_t>(start)),
                                                   _mm512_loadu_si512(power)),
                                mask60);
    start = (start * power[7]) & kMask60;
  }
  const __m512i step = _mm512_set1_epi64(static_cast<int64_t>(pow60(power[0], 8 * kRegisters)));
  size_t b = 0;
  for (; b + kRegisters <= blocks; b += kRegisters) {
    for (size_t r = 0; r < kRegisters; ++r) {
      const __m512d sum = _mm512_mul_pd(_mm512_cvtepu64_pd(lanes[r]), scale);
      const __m512d u = _mm512_sub_pd(one, sum);
      _mm512_storeu_pd(out + 8 * (b + r), _mm512_min_pd(_mm512_max_pd(u, smallest), largest));
      lanes[r] = _mm512_and_si512(_mm512_mullo_epi64(lanes[r], step), mask60);
    }
  }
  x = (x * pow60(power[0], 8 * b)) & kMask60;
  uniform_blocks_avx2(x, power, out + 8 * b, blocks - b);
}

void uniforms(int64_t* state, std::span<double> out) {
  uint64_t x = read_limbs(state + kX);
  const uint64_t a = read_limbs(state + kA);
  uint64_t power[8];
  power[0] = a;
  for (size_t j = 1; j < 8; ++j) power[j] = (power[j - 1] * a) & kMask60;
  const size_t blocks = out.size() / 8;
  static const auto blocks_kernel = __builtin_cpu_supports("avx512dq") ? uniform_blocks_avx512
                                    : __builtin_cpu_supports("avx2")   ? uniform_blocks_avx2
                                                                        : uniform_blocks_generic;
  blocks_kernel(x, power, out.data(), blocks);
  for (size_t i = 8 * blocks; i < out.size(); ++i) {
    x = (x * a) & kMask60;
    out[i] = to_uniform(x);
  }
  write_limbs(x, state + kX);
}

SkipStatus skip(int64_t* state, uint64_t n) {
  const uint64_t x = read_limbs(state + kX), a = read_limbs(state + kA);
  write_limbs((x * pow60(a, n)) & kMask60, state + kX);
  return SkipStatus::ok;
}

bool leapfrog(int64_t* state, int64_t n, int64_t k) {
  const uint64_t x = read_limbs(state + kX), a = read_limbs(state + kA);
  const uint64_t back = pow60(inverse_odd(a) & kMask60, static_cast<uint64_t>(n - k));
  write_limbs((x * back) & kMask60, state + kX);
  write_limbs(pow60(a, static_cast<uint64_t>(n)), state + kA);
  return true;
}

}  // namespace

const GeneratorOps kMcg59{internal_length, [](int64_t) { return kInternal; }, seed, length_consistent,
                          uniforms, skip, leapfrog};

void seeds_from_mcg59(int64_t seed_value, double scale, std::span<int64_t> out) {
  int64_t state[kInternal + kTrailerWords];
  const int64_t s[1] = {seed_value < 1 ? 1 : seed_value};
  seed(0, s, state, kInternal);
  for (int64_t& v : out) {
    double u;
    uniforms(state, std::span(&u, 1));
    v = static_cast<int64_t>(u * scale);
  }
}

}  // namespace vek::random
