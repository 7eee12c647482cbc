// Bodies of G05KFF and G05KGF (the declared GENID and LSEED checks have passed). The seeder's own checks
// follow in the documented order: length query, too-short LSTATE, invalid seed.
//
// G05KGF forms two seeds and seeds as G05KFF with LSEED = 2: SEED(1) from the date and time to the
// millisecond mixed with a draw of the C library's rand(); SEED(2) = (c mod 1073741823) + trunc(r 0.5
// (2^31 - 1)), c the processor's time-stamp counter and r a second rand() draw scaled into [0,1).
#include <x86intrin.h>

#include <cstdlib>
#include <span>

#include "frame/timing.h"
#include "layers/g05.h"
#include "random/generator.h"

namespace vek::routines {
namespace {

template <class Routine>
void initialise_reporting(frame::ErrorBuffer& err, int64_t genid, int64_t subid, std::span<const int64_t> seeds,
                          int64_t* state, int64_t* lstate) {
  const random::Initialisation init = random::initialise(genid, subid, seeds, state, *lstate);
  switch (init.result) {
    case random::Initialisation::Result::ok:
      return;
    case random::Initialisation::Result::length_query:
      *lstate = init.required;
      return err.fail(Routine::length_query);
    case random::Initialisation::Result::too_short:
      return err.fail(Routine::lstate_small, *lstate, init.required);
    case random::Initialisation::Result::invalid_seed:
      if constexpr (requires { Routine::seed_invalid; }) return err.fail(Routine::seed_invalid);
      return;
  }
}

double rand_unit() { return std::rand() / (static_cast<double>(RAND_MAX) + 1.0); }

}  // namespace

void g05kff::run(frame::ErrorBuffer& err, const int64_t* genid, const int64_t* subid, const int64_t* seed,
                 const int64_t* lseed, int64_t* state, int64_t* lstate) {
  initialise_reporting<g05kff>(err, *genid, *subid, std::span(seed, static_cast<size_t>(*lseed)), state, lstate);
}

void g05kgf::run(frame::ErrorBuffer& err, const int64_t* genid, const int64_t* subid, int64_t* state,
                 int64_t* lstate) {
  const timing::DateTime t = timing::now();
  int64_t clock_seed = 0;
  for (int64_t part : t) clock_seed = clock_seed * 61 + part;
  const auto mixed = static_cast<int64_t>(
      (static_cast<uint64_t>(clock_seed) ^ static_cast<uint64_t>(std::rand()) << 20) & ((uint64_t{1} << 62) - 1));
  const auto ticks = static_cast<int64_t>(__rdtsc() & ((uint64_t{1} << 62) - 1));
  const int64_t seeds[2] = {mixed | 1, ticks % 1073741823 + static_cast<int64_t>(rand_unit() * 0.5 * 2147483647.0) + 1};
  initialise_reporting<g05kgf>(err, *genid, *subid, seeds, state, lstate);
}

}  // namespace vek::routines
