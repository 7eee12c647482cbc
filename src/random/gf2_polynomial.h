// Polynomials over GF(2) as bit sets (bit i the coefficient of x^i), for jumping a linear generator ahead:
// the minimal polynomial of a bit sequence (Berlekamp-Massey) and x^n modulo it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vek::random::gf2 {

using Poly = std::vector<uint64_t>;

inline bool bit(const Poly& p, int64_t i) { return (p[static_cast<size_t>(i >> 6)] >> (i & 63)) & 1; }

// The minimal polynomial of the sequence s (bits, s[0] first) and its degree.
struct Minimal {
  Poly poly;
  int64_t degree;
};
Minimal berlekamp_massey(const std::vector<uint8_t>& s);

// x^e modulo the polynomial f of degree d (f(0) = 1), for e up to 2^128 - 1; the result has d coefficients.
class Modulus {
 public:
  Modulus(const Poly& f, int64_t degree);
  Poly x_power(unsigned __int128 e) const;
  int64_t degree() const { return degree_; }

 private:
  void reduce(Poly& p, int64_t top) const;  // p has coefficients up to x^top
  int64_t degree_;
  std::vector<Poly> shifted_;  // f << r for r = 0..63, so every reduction step is word-aligned
};

}  // namespace vek::random::gf2
