// Combinations of four multiplicative congruential generators x_j <- a_j x_j mod m_j (m_j prime, a_j a
// primitive root), the uniform being the fractional part of x_1/m_1 + ... + x_4/m_4: the Wichmann-Hill
// generators GENID 2 and GENID 4. STATE keeps, from word `base` on (0-based), the four values, the four
// current multipliers (a_j^N after a leap-frog) and the four moduli.
#pragma once

#include <cstdint>
#include <span>

#include "random/generator.h"

namespace vek::random::four_mcg {

// Places the seeds: each reduced into 1..m_j-1 (a value that reduces to 0 becomes 1).
void place(int64_t* state, int64_t base, const int64_t (&values)[4], const int64_t (&mult)[4],
           const int64_t (&mod)[4]);
void uniforms(int64_t* state, int64_t base, std::span<double> out);
void skip(int64_t* state, int64_t base, uint64_t n);
// Multipliers a_j^N, values x_j a_j^(K-N) (exponents modulo m_j - 1).
void leapfrog(int64_t* state, int64_t base, int64_t n, int64_t k);

// The GeneratorOps of a four-generator block at word `Base` of a STATE with `Internal` internal words, given
// the generator's own seeding.
template <int64_t Base, int64_t Internal>
GeneratorOps ops(SeedStatus (*seed)(int64_t, std::span<const int64_t>, int64_t*, int64_t)) {
  return {[](int64_t, int64_t) { return Internal; },
          [](int64_t) { return Internal; },
          seed,
          [](const int64_t* state) { return state[kWordLength] == Internal + kTrailerWords; },
          [](int64_t* state, std::span<double> out) { uniforms(state, Base, out); },
          [](int64_t* state, uint64_t n) {
            skip(state, Base, n);
            return SkipStatus::ok;
          },
          [](int64_t* state, int64_t n, int64_t k) {
            leapfrog(state, Base, n, k);
            return true;
          }};
}

}  // namespace vek::random::four_mcg
