// GENID 4: Wichmann and Hill's 2006 generator, four multiplicative congruential generators with multipliers
// 11600, 47003, 23000, 33000 and moduli 2147483579, 2147483543, 2147483423, 2147483123 (B. A. Wichmann and
// I. D. Hill, Generating good pseudo-random numbers, Comput. Statist. Data Anal. 51 (2006) 1614-1622).
// Own words (0-based): [3..14] the four-generator block (four_mcg.h), [15..24] zero.
//
// Seeds become the four values, each reduced modulo its modulus; with fewer than four seeds the missing ones
// come from a GENID 1 stream seeded with the last seed given, as u * 2^31. Seeds must be at least 1.
#include <algorithm>

#include "random/four_mcg.h"
#include "random/generators.h"

namespace vek::random {
namespace {

constexpr int64_t kMult[4] = {11600, 47003, 23000, 33000};
constexpr int64_t kMod[4] = {2147483579, 2147483543, 2147483423, 2147483123};
constexpr int64_t kInternal = 26;
constexpr int64_t kBase = 3;

SeedStatus seed(int64_t, std::span<const int64_t> seeds, int64_t* state, int64_t) {
  if (std::any_of(seeds.begin(), seeds.end(), [](int64_t s) { return s < 1; })) return SeedStatus::invalid_seed;
  int64_t values[4];
  const size_t given = std::min<size_t>(seeds.size(), 4);
  std::copy_n(seeds.begin(), given, values);
  if (given < 4) seeds_from_mcg59(seeds[given - 1], 0x1p31, std::span(values + given, 4 - given));
  four_mcg::place(state, kBase, values, kMult, kMod);
  std::fill(state + kBase + 12, state + kInternal - 1, 0);
  return SeedStatus::ok;
}

}  // namespace

const GeneratorOps kWichmannHill2006 = four_mcg::ops<kBase, kInternal>(seed);

}  // namespace vek::random
