// GENID 6: L'Ecuyer's combined multiple recursive generator MRG32k3a (P. L'Ecuyer, Good parameters and
// implementations for combined multiple recursive random number generators, Oper. Res. 47 (1999) 159-164):
//   x_n = (1403580 x_{n-2} - 810728 x_{n-3}) mod m1,   y_n = (527612 y_{n-1} - 1370589 y_{n-3}) mod m2,
//   u = (x_n - y_n mod m1) / (m1 + 1), with m1 + 1 in place of 0 (so 0 < u < 1).
// Own words (0-based): [3..5] x_{n-3}, x_{n-2}, x_{n-1}; [6..8] the same for y; [9..17] and [18..26] the
// transition matrices raised to the stride (row-major, for a leap-frogged stream); [27] the stride (1 for an
// unsplit stream); [28..56] zero.
//
// Seeding: SEED(1..3) are the x seeds modulo m1, SEED(4..6) the y seeds modulo m2. With LSEED < 6, seeds
// LSEED..6 are the integer parts of u 2^30 for uniforms u of a GENID 1 stream seeded with SEED(LSEED).
// Seeds must be at least 0, and each triple must not reduce to all zeros.
//
// Integer arithmetic throughout: products stay below 2^53 and the reductions are divisions by constants.
// A long request is cut into four chunks drawn side by side, each chunk's state obtained by a jump of the
// transition matrices, so four independent recurrences fill the pipeline; the values are those of the
// sequential stream.
#include <algorithm>

#include "random/generators.h"
#include "random/modular.h"

namespace vek::random {
namespace {

constexpr int64_t kM1 = 4294967087, kM2 = 4294944443;
constexpr double kNorm = 1.0 / (kM1 + 1.0);
constexpr int64_t kInternal = 58;
constexpr int64_t kX = 3, kY = 6, kA1 = 9, kA2 = 18, kStride = 27;
constexpr Mat3 kStep1{0, 1, 0, 0, 0, 1, kM1 - 810728, 1403580, 0};
constexpr Mat3 kStep2{0, 1, 0, 0, 0, 1, kM2 - 1370589, 0, 527612};

struct Lane {
  int64_t x0, x1, x2, y0, y1, y2;

  double next() {
    int64_t p1 = (1403580 * x1 - 810728 * x0) % kM1;
    if (p1 < 0) p1 += kM1;
    x0 = x1;
    x1 = x2;
    x2 = p1;
    int64_t p2 = (527612 * y2 - 1370589 * y0) % kM2;
    if (p2 < 0) p2 += kM2;
    y0 = y1;
    y1 = y2;
    y2 = p2;
    return static_cast<double>(p1 > p2 ? p1 - p2 : p1 - p2 + kM1) * kNorm;
  }
};

Lane read_lane(const int64_t* s) { return {s[kX], s[kX + 1], s[kX + 2], s[kY], s[kY + 1], s[kY + 2]}; }

void write_lane(const Lane& l, int64_t* s) {
  const int64_t w[6] = {l.x0, l.x1, l.x2, l.y0, l.y1, l.y2};
  std::copy_n(w, 6, s + kX);
}

void apply(const Mat3& a, uint64_t m, int64_t* v) {
  uint64_t r[3];
  for (int i = 0; i < 3; ++i) {
    unsigned __int128 s = 0;
    for (int k = 0; k < 3; ++k) s += static_cast<unsigned __int128>(a[3 * i + k]) * static_cast<uint64_t>(v[k]);
    r[i] = static_cast<uint64_t>(s % m);
  }
  for (int i = 0; i < 3; ++i) v[i] = static_cast<int64_t>(r[i]);
}

Lane jumped(Lane l, uint64_t n) {
  int64_t x[3] = {l.x0, l.x1, l.x2}, y[3] = {l.y0, l.y1, l.y2};
  apply(mat_pow(kStep1, n, kM1), kM1, x);
  apply(mat_pow(kStep2, n, kM2), kM2, y);
  return {x[0], x[1], x[2], y[0], y[1], y[2]};
}

Mat3 read_mat(const int64_t* w) {
  Mat3 m;
  for (int i = 0; i < 9; ++i) m[i] = static_cast<uint64_t>(w[i]);
  return m;
}

void write_mat(const Mat3& m, int64_t* w) {
  for (int i = 0; i < 9; ++i) w[i] = static_cast<int64_t>(m[i]);
}

int64_t internal_length(int64_t, int64_t) { return kInternal; }

SeedStatus seed(int64_t, std::span<const int64_t> seeds, int64_t* state, int64_t) {
  if (std::any_of(seeds.begin(), seeds.end(), [](int64_t s) { return s < 0; })) return SeedStatus::invalid_seed;
  int64_t s[6];
  if (seeds.size() >= 6) {
    std::copy_n(seeds.begin(), 6, s);
  } else {
    const size_t kept = seeds.size() - 1;
    std::copy_n(seeds.begin(), kept, s);
    seeds_from_mcg59(seeds[kept], 0x1p30, std::span(s + kept, 6 - kept));
  }
  for (int i = 0; i < 3; ++i) {
    s[i] %= kM1;
    s[3 + i] %= kM2;
  }
  if ((s[0] | s[1] | s[2]) == 0 || (s[3] | s[4] | s[5]) == 0) return SeedStatus::invalid_seed;
  std::copy_n(s, 6, state + kX);
  write_mat(kStep1, state + kA1);
  write_mat(kStep2, state + kA2);
  state[kStride] = 1;
  std::fill(state + kStride + 1, state + kInternal - 1, 0);
  return SeedStatus::ok;
}

bool length_consistent(const int64_t* state) { return state[kWordLength] == kInternal + kTrailerWords; }

void uniforms(int64_t* state, std::span<double> out) {
  if (state[kStride] != 1) {  // a leap-frogged stream: one matrix step per draw
    const Mat3 a1 = read_mat(state + kA1), a2 = read_mat(state + kA2);
    for (double& u : out) {
      apply(a1, kM1, state + kX);
      apply(a2, kM2, state + kY);
      const int64_t p1 = state[kX + 2], p2 = state[kY + 2];
      u = static_cast<double>(p1 > p2 ? p1 - p2 : p1 - p2 + kM1) * kNorm;
    }
    return;
  }
  Lane first = read_lane(state);
  constexpr size_t kLanes = 4, kMinChunk = 256;
  const size_t chunk = out.size() / kLanes;
  size_t done = 0;
  if (chunk >= kMinChunk) {
    Lane lane[kLanes] = {first, jumped(first, chunk), jumped(first, 2 * chunk), jumped(first, 3 * chunk)};
    for (size_t i = 0; i < chunk; ++i) {
      for (size_t j = 0; j < kLanes; ++j) out[j * chunk + i] = lane[j].next();
    }
    first = lane[kLanes - 1];
    done = kLanes * chunk;
  }
  for (size_t i = done; i < out.size(); ++i) out[i] = first.next();
  write_lane(first, state);
}

SkipStatus skip(int64_t* state, uint64_t n) {
  const Mat3 a1 = mat_pow(read_mat(state + kA1), n, kM1), a2 = mat_pow(read_mat(state + kA2), n, kM2);
  apply(a1, kM1, state + kX);
  apply(a2, kM2, state + kY);
  return SkipStatus::ok;
}

// The stream's own step B (A^stride) becomes B^N, and the state moves by B^(K-N), so that the first draw,
// one step of B^N, lands on the K-th value.
bool leapfrog(int64_t* state, int64_t n, int64_t k) {
  const Mat3 b1 = read_mat(state + kA1), b2 = read_mat(state + kA2);
  const auto back = static_cast<uint64_t>(n - k);
  apply(mat_pow(mat_inverse(b1, kM1), back, kM1), kM1, state + kX);
  apply(mat_pow(mat_inverse(b2, kM2), back, kM2), kM2, state + kY);
  write_mat(mat_pow(b1, static_cast<uint64_t>(n), kM1), state + kA1);
  write_mat(mat_pow(b2, static_cast<uint64_t>(n), kM2), state + kA2);
  const unsigned __int128 stride = static_cast<unsigned __int128>(state[kStride]) * static_cast<uint64_t>(n);
  state[kStride] = stride > INT64_MAX ? INT64_MAX : static_cast<int64_t>(stride);
  return true;
}

}  // namespace

const GeneratorOps kMrg32k3a{internal_length, [](int64_t) { return kInternal; }, seed, length_consistent,
                             uniforms, skip, leapfrog};

}  // namespace vek::random
