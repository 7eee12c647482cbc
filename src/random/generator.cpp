#include "random/generator.h"

#include "random/generators.h"

namespace vek::random {

const GeneratorOps& ops_of(int64_t genid) {
  static const GeneratorOps* const table[kGenerators] = {&kMcg59, &kWichmannHill, &kMersenneTwister,
                                                         &kWichmannHill2006, &kAcorn, &kMrg32k3a};
  return *table[genid - 1];
}

void close_state(int64_t* state, int64_t genid, int64_t internal) {
  state[kWordCheck] = check_value(genid);
  state[kWordGenid] = genid;
  state[internal - 1] = check_value(genid);
  state[internal] = 1;
  state[internal + 1] = 1;
  state[internal + 2] = check_value(genid);
  state[kWordLength] = internal + kTrailerWords;
}

StateStatus validate(const int64_t* state) {
  const int64_t genid = state[kWordGenid];
  if (genid < 1 || genid > kGenerators || state[kWordCheck] != check_value(genid)) return StateStatus::bad_check;
  const int64_t n = state[kWordLength];
  if (n < kFirstOwnWord + 1 + kTrailerWords || !ops_of(genid).length_consistent(state)) {
    return StateStatus::bad_length;
  }
  if (state[n - 1] != state[kWordCheck] || state[n - 2] < 1 || state[n - 3] < 1 ||
      state[n - 4] != state[kWordCheck]) {
    return StateStatus::bad_check;
  }
  return StateStatus::valid;
}

Initialisation initialise(int64_t genid, int64_t subid, std::span<const int64_t> seeds, int64_t* state,
                          int64_t lstate) {
  const GeneratorOps& ops = ops_of(genid);
  if (lstate <= 0) return {Initialisation::Result::length_query, ops.internal_length(subid, -1) + kTrailerWords};
  const int64_t minimum = ops.minimum_length(subid) + kTrailerWords;
  if (lstate < minimum) return {Initialisation::Result::too_short, minimum};
  const int64_t internal = ops.internal_length(subid, lstate - kTrailerWords);
  if (ops.seed(subid, seeds, state, internal) != SeedStatus::ok) return {Initialisation::Result::invalid_seed, 0};
  close_state(state, genid, internal);
  return {Initialisation::Result::ok, 0};
}

std::optional<Stream> Stream::open(int64_t* state, StateStatus& status) {
  status = validate(state);
  if (status != StateStatus::valid) return std::nullopt;
  return Stream(state, &ops_of(state[kWordGenid]));
}

}  // namespace vek::random
