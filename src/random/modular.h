// Exact modular arithmetic for the generators: products through 128 bits, powers by squaring, and 3x3
// matrices modulo a prime (MRG32k3a's transitions).
#pragma once

#include <array>
#include <cstdint>

namespace vek::random {

inline uint64_t mul_mod(uint64_t a, uint64_t b, uint64_t m) {
  return static_cast<uint64_t>(static_cast<unsigned __int128>(a) * b % m);
}

inline uint64_t pow_mod(uint64_t a, uint64_t e, uint64_t m) {
  uint64_t r = 1 % m;
  for (a %= m; e != 0; e >>= 1) {
    if (e & 1) r = mul_mod(r, a, m);
    a = mul_mod(a, a, m);
  }
  return r;
}

// a^e modulo a prime m for a signed exponent (a not a multiple of m): the exponent is reduced modulo m - 1.
inline uint64_t pow_mod_signed(uint64_t a, __int128 e, uint64_t m) {
  const __int128 order = m - 1;
  return pow_mod(a, static_cast<uint64_t>(((e % order) + order) % order), m);
}

using Mat3 = std::array<uint64_t, 9>;  // row-major

inline Mat3 mat_mul(const Mat3& a, const Mat3& b, uint64_t m) {
  Mat3 c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      unsigned __int128 s = 0;
      for (int k = 0; k < 3; ++k) s += static_cast<unsigned __int128>(a[3 * i + k]) * b[3 * k + j];
      c[3 * i + j] = static_cast<uint64_t>(s % m);
    }
  }
  return c;
}

inline Mat3 mat_pow(Mat3 a, uint64_t e, uint64_t m) {
  Mat3 r{1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (; e != 0; e >>= 1) {
    if (e & 1) r = mat_mul(r, a, m);
    a = mat_mul(a, a, m);
  }
  return r;
}

// The inverse modulo the prime m of an invertible matrix: adjugate over determinant.
inline Mat3 mat_inverse(const Mat3& a, uint64_t m) {
  auto at = [&](int i, int j) { return static_cast<__int128>(a[3 * i + j]); };
  auto minor = [&](int r0, int r1, int c0, int c1) { return at(r0, c0) * at(r1, c1) - at(r0, c1) * at(r1, c0); };
  const __int128 cof[9] = {minor(1, 2, 1, 2), -minor(1, 2, 0, 2), minor(1, 2, 0, 1),
                           -minor(0, 2, 1, 2), minor(0, 2, 0, 2), -minor(0, 2, 0, 1),
                           minor(0, 1, 1, 2), -minor(0, 1, 0, 2), minor(0, 1, 0, 1)};
  auto reduce = [&](__int128 v) { return static_cast<uint64_t>(((v % m) + m) % m); };
  const uint64_t det = reduce(at(0, 0) * cof[0] + at(0, 1) * cof[1] + at(0, 2) * cof[2]);
  const uint64_t inv_det = pow_mod(det, m - 2, m);
  Mat3 r{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) r[3 * i + j] = mul_mod(reduce(cof[3 * j + i]), inv_det, m);
  }
  return r;
}

}  // namespace vek::random
