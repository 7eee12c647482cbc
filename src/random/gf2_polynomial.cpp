#include "random/gf2_polynomial.h"

#include <bit>

namespace vek::random::gf2 {
namespace {

size_t words_for(int64_t bits) { return static_cast<size_t>((bits + 63) / 64); }

void set_bit(Poly& p, int64_t i) { p[static_cast<size_t>(i >> 6)] |= uint64_t{1} << (i & 63); }

// p ^= q << shift, for q with `q_bits` coefficients.
void xor_shifted(Poly& p, const Poly& q, int64_t shift) {
  const size_t words = q.size(), at = static_cast<size_t>(shift >> 6);
  const int r = static_cast<int>(shift & 63);
  for (size_t w = 0; w < words && at + w < p.size(); ++w) {
    p[at + w] ^= q[w] << r;
    if (r != 0 && at + w + 1 < p.size()) p[at + w + 1] ^= q[w] >> (64 - r);
  }
}

// Spreads the 32 bits of v to the even bit positions of the result (squaring over GF(2)).
uint64_t spread(uint32_t v) {
  uint64_t x = v;
  x = (x | x << 16) & 0x0000ffff0000ffffULL;
  x = (x | x << 8) & 0x00ff00ff00ff00ffULL;
  x = (x | x << 4) & 0x0f0f0f0f0f0f0f0fULL;
  x = (x | x << 2) & 0x3333333333333333ULL;
  x = (x | x << 1) & 0x5555555555555555ULL;
  return x;
}

}  // namespace

Minimal berlekamp_massey(const std::vector<uint8_t>& s) {
  const auto n = static_cast<int64_t>(s.size());
  const size_t words = words_for(n + 1);
  // The sequence reversed, so that s[k-i] for i = 0..L is a run of consecutive bits.
  Poly rev(words_for(n) + 2, 0);
  for (int64_t k = 0; k < n; ++k) {
    if (s[static_cast<size_t>(k)]) set_bit(rev, n - 1 - k);
  }
  Poly c(words, 0), b(words, 0);
  c[0] = b[0] = 1;
  int64_t len = 0, gap = 1;
  for (int64_t k = 0; k < n; ++k) {
    // d = sum over i of c_i s[k-i] = parity of c & (rev >> (n-1-k)).
    const int64_t off = n - 1 - k;
    const size_t at = static_cast<size_t>(off >> 6);
    const int r = static_cast<int>(off & 63);
    uint64_t acc = 0;
    for (size_t w = 0; w <= static_cast<size_t>(len >> 6) && w < words; ++w) {
      uint64_t window = rev[at + w] >> r;
      if (r != 0) window |= rev[at + w + 1] << (64 - r);
      acc ^= c[w] & window;
    }
    if ((std::popcount(acc) & 1) == 0) {
      ++gap;
    } else if (2 * len <= k) {
      Poly t = c;
      xor_shifted(c, b, gap);
      len = k + 1 - len;
      b = std::move(t);
      gap = 1;
    } else {
      xor_shifted(c, b, gap);
      ++gap;
    }
  }
  // c is the connection polynomial 1 + c_1 x + ... + c_L x^L (s_k = sum c_i s_(k-i)); the minimal
  // polynomial is its reciprocal x^L c(1/x).
  Poly minimal(words_for(len + 1), 0);
  for (int64_t i = 0; i <= len; ++i) {
    if (bit(c, i)) set_bit(minimal, len - i);
  }
  return {minimal, len};
}

Modulus::Modulus(const Poly& f, int64_t degree) : degree_(degree), shifted_(64) {
  for (int r = 0; r < 64; ++r) {
    shifted_[static_cast<size_t>(r)].assign(words_for(degree + 1) + 1, 0);
    xor_shifted(shifted_[static_cast<size_t>(r)], f, r);
  }
}

void Modulus::reduce(Poly& p, int64_t top) const {
  for (int64_t d = top; d >= degree_; --d) {
    if (!bit(p, d)) continue;
    const int64_t shift = d - degree_;
    const Poly& f = shifted_[static_cast<size_t>(shift & 63)];
    const size_t at = static_cast<size_t>(shift >> 6);
    for (size_t w = 0; w < f.size() && at + w < p.size(); ++w) p[at + w] ^= f[w];
  }
}

Poly Modulus::x_power(unsigned __int128 e) const {
  const size_t words = 2 * words_for(degree_) + 1;
  Poly p(words, 0);
  p[0] = 1;
  int top_bit = 127;
  while (top_bit >= 0 && ((e >> top_bit) & 1) == 0) --top_bit;
  for (int i = top_bit; i >= 0; --i) {
    Poly sq(words, 0);  // p^2: the bits of p spread to even positions
    for (size_t w = 0; w < words_for(degree_); ++w) {
      sq[2 * w] = spread(static_cast<uint32_t>(p[w]));
      sq[2 * w + 1] = spread(static_cast<uint32_t>(p[w] >> 32));
    }
    reduce(sq, 2 * (degree_ - 1));
    if ((e >> i) & 1) {  // times x
      for (size_t w = words - 1; w > 0; --w) sq[w] = sq[w] << 1 | sq[w - 1] >> 63;
      sq[0] <<= 1;
      reduce(sq, degree_);
    }
    p = std::move(sq);
  }
  p.resize(words_for(degree_));
  return p;
}

}  // namespace vek::random::gf2
