// GENID 5: the additive congruential generator ACORN of order k and modulus M = 2^(30m) (R. S. Wikramaratna,
// ACORN - a new method for generating sequences of uniformly distributed pseudo-random numbers, J. Comput.
// Phys. 83 (1989) 16-31): Y^0 fixed and odd, Y^j <- (Y^j + Y^(j-1)) mod M for j = 1..k in turn, u = Y^k / M.
// SUBID gives k = SUBID mod 1000 and m = SUBID div 1000 + 1; SUBID < 1, or k = 0, gives k = 10 (and for
// SUBID < 1, m = 2). Own words (0-based): [3] k, [4] m, then Y^0 .. Y^k, m limbs of 30 bits each, least
// significant first; the rest zero. Internal length max(14, m (k + 1) + 9).
//
// Seeding: Y^0 = 2 SEED(1) + 1 mod M (odd, as the period requires); Y^1 .. Y^k from SEED(2), SEED(3), ...
// while they last, the others from a GENID 1 stream seeded with the last seed given, one limb per uniform
// (u 2^30). Seeds must be at least 1.
//
// Skip-ahead by n: one step maps Y^j to the sum of Y^0 .. Y^j, a lower triangular Toeplitz matrix with
// symbol 1 / (1 - x); n steps have symbol (1 - x)^-n, whose coefficients modulo x^(k+1) and M come from
// powering the truncated series. No leap-frog; no skip-ahead for moduli above 2^240.
#include <algorithm>
#include <vector>

#include "random/generators.h"

namespace vek::random {
namespace {

constexpr int64_t kMaxOrder = 999;
constexpr int64_t kMaxSkipLimbs = 8;
constexpr uint64_t kLimbMask = (uint64_t{1} << 30) - 1;
constexpr int64_t kK = 3, kM = 4, kY = 5;

struct Shape {
  int64_t k, m;
};

Shape shape_of(int64_t subid) {
  if (subid < 1) return {10, 2};
  const int64_t k = subid % 1000;
  return {k == 0 ? 10 : k, subid / 1000 + 1};
}

// max(14, m (k + 1) + 9), saturated far below overflow of the caller's length arithmetic.
int64_t internal_of(Shape s) {
  const __int128 n = static_cast<__int128>(s.m) * (s.k + 1) + 9;
  constexpr int64_t kCap = INT64_MAX / 2;
  return n > kCap ? kCap : std::max<int64_t>(14, static_cast<int64_t>(n));
}

int64_t internal_length(int64_t subid, int64_t) { return internal_of(shape_of(subid)); }

SeedStatus seed(int64_t subid, std::span<const int64_t> seeds, int64_t* state, int64_t internal) {
  if (std::any_of(seeds.begin(), seeds.end(), [](int64_t s) { return s < 1; })) return SeedStatus::invalid_seed;
  const Shape s = shape_of(subid);
  state[kK] = s.k;
  state[kM] = s.m;
  int64_t* y = state + kY;
  std::fill(y, state + internal - 1, 0);
  // Y^0 = 2 SEED(1) + 1 (at most 65 bits, so three limbs), truncated to m limbs.
  const unsigned __int128 y0 = static_cast<unsigned __int128>(seeds[0]) * 2 + 1;
  for (int64_t i = 0; i < std::min<int64_t>(s.m, 3); ++i) y[i] = static_cast<int64_t>((y0 >> (30 * i)) & kLimbMask);
  const auto given = std::min<int64_t>(static_cast<int64_t>(seeds.size()) - 1, s.k);
  for (int64_t j = 1; j <= given; ++j) {
    const auto v = static_cast<uint64_t>(seeds[static_cast<size_t>(j)]);
    for (int64_t i = 0; i < std::min<int64_t>(s.m, 3); ++i) y[j * s.m + i] = static_cast<int64_t>((v >> (30 * i)) & kLimbMask);
  }
  // Y^(given+1) .. Y^k are contiguous: one stream fills them limb by limb.
  seeds_from_mcg59(seeds.back(), 0x1p30, std::span(y + (given + 1) * s.m, static_cast<size_t>((s.k - given) * s.m)));
  return SeedStatus::ok;
}

bool length_consistent(const int64_t* state) {
  const int64_t k = state[kK], m = state[kM];
  if (k < 1 || k > kMaxOrder || m < 1 || m > INT64_MAX / (2 * (kMaxOrder + 1))) return false;
  return state[kWordLength] == internal_of({k, m}) + kTrailerWords;
}

// a <- a + b modulo 2^(30m).
void add_into(int64_t* a, const int64_t* b, int64_t m) {
  uint64_t carry = 0;
  for (int64_t i = 0; i < m; ++i) {
    const uint64_t s = static_cast<uint64_t>(a[i]) + static_cast<uint64_t>(b[i]) + carry;
    a[i] = static_cast<int64_t>(s & kLimbMask);
    carry = s >> 30;
  }
}

void uniforms(int64_t* state, std::span<double> out) {
  const int64_t k = state[kK], m = state[kM];
  int64_t* y = state + kY;
  for (double& u : out) {
    for (int64_t j = 1; j <= k; ++j) add_into(y + j * m, y + (j - 1) * m, m);
    const int64_t* top = y + k * m + m - 1;
    const double v = m == 1 ? static_cast<double>(top[0]) * 0x1p-30
                            : (static_cast<double>(top[0]) * 0x1p30 + static_cast<double>(top[-1])) * 0x1p-60;
    u = strictly_inside(v);
  }
}

// Truncated series with coefficients of m limbs modulo 2^(30m).
using Series = std::vector<std::vector<uint64_t>>;

std::vector<uint64_t> mul_limbs(const std::vector<uint64_t>& a, const std::vector<uint64_t>& b) {
  const size_t m = a.size();
  std::vector<unsigned __int128> acc(m, 0);
  for (size_t i = 0; i < m; ++i) {
    if (a[i] == 0) continue;
    for (size_t j = 0; i + j < m; ++j) acc[i + j] += static_cast<unsigned __int128>(a[i]) * b[j];
  }
  std::vector<uint64_t> r(m);
  unsigned __int128 carry = 0;
  for (size_t i = 0; i < m; ++i) {
    const unsigned __int128 s = acc[i] + carry;
    r[i] = static_cast<uint64_t>(s & kLimbMask);
    carry = s >> 30;
  }
  return r;
}

void add_limbs(std::vector<uint64_t>& a, const std::vector<uint64_t>& b) {
  uint64_t carry = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const uint64_t s = a[i] + b[i] + carry;
    a[i] = s & kLimbMask;
    carry = s >> 30;
  }
}

Series mul_series(const Series& a, const Series& b) {
  const size_t len = a.size(), m = a[0].size();
  Series c(len, std::vector<uint64_t>(m, 0));
  for (size_t i = 0; i < len; ++i) {
    for (size_t j = 0; i + j < len; ++j) add_limbs(c[i + j], mul_limbs(a[i], b[j]));
  }
  return c;
}

SkipStatus skip(int64_t* state, uint64_t n) {
  const int64_t k = state[kK], m = state[kM];
  // The series powers cost (k m)^2 log n limb products: beyond a modulus of 2^(30*kMaxSkipLimbs) skip-ahead
  // is refused rather than left to run for hours.
  if (m > kMaxSkipLimbs) return SkipStatus::refused;
  const auto len = static_cast<size_t>(k + 1), width = static_cast<size_t>(m);
  std::vector<uint64_t> one(width, 0);
  one[0] = 1;
  Series step(len, one), power(len, std::vector<uint64_t>(width, 0));
  power[0] = one;
  for (; n != 0; n >>= 1) {
    if (n & 1) power = mul_series(power, step);
    if (n > 1) step = mul_series(step, step);
  }
  int64_t* y = state + kY;
  Series old(len, std::vector<uint64_t>(width));
  for (size_t j = 0; j < len; ++j) std::copy_n(y + j * width, width, old[j].begin());
  for (size_t j = 1; j < len; ++j) {
    std::vector<uint64_t> sum(width, 0);
    for (size_t i = 0; i <= j; ++i) add_limbs(sum, mul_limbs(power[j - i], old[i]));
    std::copy_n(sum.begin(), width, y + j * width);
  }
  return SkipStatus::ok;
}

}  // namespace

const GeneratorOps kAcorn{internal_length, [](int64_t subid) { return internal_length(subid, 0); }, seed,
                          length_consistent, uniforms, skip, nullptr};

}  // namespace vek::random
