// The STATE array of a random-number stream: its header, trailer and validation, shared by every generator.
//
// Words (0-based here; the documentation counts from 1): [0] n, the words in use including the trailer;
// [1] the generator's check value; [2] GENID; [3 .. L-2] the generator's own words; [L-1] the check value
// again, closing the internal words; [L], [L+1] trailer words 1; [L+2] = [1]. So n = L + 3.
#pragma once

#include <cstdint>
#include <span>

namespace vek::random {

inline constexpr int64_t kWordLength = 0;
inline constexpr int64_t kWordCheck = 1;
inline constexpr int64_t kWordGenid = 2;
inline constexpr int64_t kFirstOwnWord = 3;
inline constexpr int64_t kTrailerWords = 3;
inline constexpr int64_t kGenerators = 6;

// The check value of generator `genid` (1234 for GENID 1; each generator its own, so that a STATE whose GENID
// word alone was overwritten is caught).
constexpr int64_t check_value(int64_t genid) { return 1234 + 1000 * (genid - 1); }

enum class StateStatus { valid, bad_check, bad_length };

// Writes the header and the trailer around own words already in place: `internal` is L above.
void close_state(int64_t* state, int64_t genid, int64_t internal);

}  // namespace vek::random
