// The six base generators, in GENID order (each in its own file).
#pragma once

#include "random/generator.h"

namespace vek::random {

extern const GeneratorOps kMcg59;              // GENID 1: x <- 13^13 x mod 2^59, in 15-bit limbs
extern const GeneratorOps kWichmannHill;       // GENID 2: four MCGs, one of 273 parameter sets
extern const GeneratorOps kMersenneTwister;    // GENID 3: MT19937
extern const GeneratorOps kWichmannHill2006;   // GENID 4: Wichmann and Hill's 2006 four-MCG combination
extern const GeneratorOps kAcorn;              // GENID 5: ACORN of order k, modulus 2^(30m)
extern const GeneratorOps kMrg32k3a;           // GENID 6: L'Ecuyer's MRG32k3a

// Missing seeds: the integer parts of u * scale for successive uniforms u of a GENID 1 stream seeded with
// `seed` (what GENIDs 2, 4, 5 and 6 do when given fewer seeds than they use).
void seeds_from_mcg59(int64_t seed, double scale, std::span<int64_t> out);

}  // namespace vek::random
