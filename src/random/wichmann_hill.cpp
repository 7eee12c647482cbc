// GENID 2: the Wichmann-Hill combination of four multiplicative congruential generators with one of 273
// parameter sets, chosen by SUBID (reduced into 1..273). Own words (0-based): [3] the set, [4..15] the
// four-generator block (four_mcg.h), [16] zero.
//
// Seeds are reduced modulo 16909320 and then into each component's range; with fewer than four seeds the
// missing ones come from a GENID 1 stream seeded with the last seed given, as u * 16909320. Seeds must be
// at least 1.
#include <algorithm>

#include "random/four_mcg.h"
#include "random/generators.h"

namespace vek::random {
namespace {

struct ParameterSet {
  int64_t mult[4];
  int64_t mod[4];
};

constexpr ParameterSet kSets[] = {
#include "random/wichmann_hill_table.inc"
};
constexpr int64_t kSetCount = sizeof kSets / sizeof kSets[0];
static_assert(kSetCount == 273);

constexpr int64_t kInternal = 18;
constexpr int64_t kBase = 4;
constexpr int64_t kSeedModulus = 16909320;

SeedStatus seed(int64_t subid, std::span<const int64_t> seeds, int64_t* state, int64_t) {
  if (std::any_of(seeds.begin(), seeds.end(), [](int64_t s) { return s < 1; })) return SeedStatus::invalid_seed;
  int64_t values[4];
  const size_t given = std::min<size_t>(seeds.size(), 4);
  for (size_t j = 0; j < given; ++j) values[j] = seeds[j] % kSeedModulus;
  if (given < 4) {
    seeds_from_mcg59(seeds[given - 1], static_cast<double>(kSeedModulus), std::span(values + given, 4 - given));
  }
  const int64_t set = ((subid - 1) % kSetCount + kSetCount) % kSetCount;
  state[3] = set + 1;
  four_mcg::place(state, kBase, values, kSets[set].mult, kSets[set].mod);
  state[16] = 0;
  return SeedStatus::ok;
}

}  // namespace

const GeneratorOps kWichmannHill = four_mcg::ops<kBase, kInternal>(seed);

}  // namespace vek::random
