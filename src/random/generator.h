// Typed access to a random-number stream kept in a caller's STATE array: initialise, validate, draw uniforms,
// skip ahead, leap-frog. Other chapters draw through a Stream and never touch STATE words themselves.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>

#include "random/state.h"

namespace vek::random {

enum class SeedStatus { ok, invalid_seed };
enum class SkipStatus { ok, refused, state_too_short };

// One base generator: the operations a STATE array dispatches to through its GENID word.
struct GeneratorOps {
  // Internal words L (see state.h) for this SUBID when the caller offers `available` = LSTATE - 3 words;
  // `available` < 0 asks for the full length. Saturates rather than overflows for absurd SUBIDs.
  int64_t (*internal_length)(int64_t subid, int64_t available);
  // The least internal length accepted (what the too-short message quotes, less the trailer).
  int64_t (*minimum_length)(int64_t subid);
  // Writes the own words [3 .. internal-2] from the seeds.
  SeedStatus (*seed)(int64_t subid, std::span<const int64_t> seeds, int64_t* state, int64_t internal);
  // Whether the length word agrees with the generator's own words (read only within that length).
  bool (*length_consistent)(const int64_t* state);
  void (*uniforms)(int64_t* state, std::span<double> out);
  SkipStatus (*skip)(int64_t* state, uint64_t n);
  // Null for a generator that cannot leap-frog; false when it refuses these N, K.
  bool (*leapfrog)(int64_t* state, int64_t n, int64_t k);
};

const GeneratorOps& ops_of(int64_t genid);  // genid in 1..6

// Validation: GENID and check value first, then the length word against the generator's own words, then the
// trailer. Reads nothing beyond the length the words claim, and only once that length is consistent.
StateStatus validate(const int64_t* state);

struct Initialisation {
  enum class Result { ok, length_query, too_short, invalid_seed } result;
  int64_t required;  // the length returned by a query, or the least length for `too_short`
};

// Seeds STATE for GENID (1..6) with LSTATE words available, in the documented order: LSTATE <= 0 is a length
// query; a too-short LSTATE; an invalid seed. STATE is written only on success.
Initialisation initialise(int64_t genid, int64_t subid, std::span<const int64_t> seeds, int64_t* state,
                          int64_t lstate);

// A validated stream.
class Stream {
 public:
  // Empty when STATE is not valid; `status` says why.
  static std::optional<Stream> open(int64_t* state, StateStatus& status);

  int64_t genid() const { return state_[kWordGenid]; }
  void uniforms(std::span<double> out) const { ops_->uniforms(state_, out); }
  SkipStatus skip(uint64_t n) const { return ops_->skip(state_, n); }
  bool can_leapfrog() const { return ops_->leapfrog != nullptr; }
  bool leapfrog(int64_t n, int64_t k) const { return ops_->leapfrog(state_, n, k); }

 private:
  Stream(int64_t* state, const GeneratorOps* ops) : state_(state), ops_(ops) {}
  int64_t* state_;
  const GeneratorOps* ops_;
};

// Uniforms from floating-point formulas that may round to an end point are moved just inside (0,1)
// (branch-free, so that loops over it vectorise).
inline double strictly_inside(double u) {
  constexpr double kSmallest = 0x1p-59, kLargest = 1.0 - 0x1p-53;
  return std::min(std::max(u, kSmallest), kLargest);
}

}  // namespace vek::random
