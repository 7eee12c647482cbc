// What the generator declares for a solver family (src/exports/<chapter>.decl, `options` blocks) and the
// shared machinery acts on: the keyword tables and, for each keyword, the cases of what a line stores.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "optim/option_lookup.h"

namespace vek::optim {

// Where the machinery's records go: the option routines write them on the advisory unit.
using RecordSink = std::function<void(std::string_view)>;

// What a case does.
enum class Action : uint8_t {
  begin,           // first record of an options block: nothing
  end,             // last record of an options block: nothing
  list,            // listing on (acted on by the routine reading the line)
  nolist,          // listing off (likewise)
  defaults,        // every parameter back to the marker
  int_subscript,   // IPRMLS i = v: element i of the second integer block
  real_subscript,  // RPRMLS i = v
  store_int,       // IWSAV(element) = the value (truncated) or the constant
  store_real,      // RWSAV(element) = the value or the constant
};

// The second token a case asks for: an index into the second-keyword table (1-based), or one of these.
inline constexpr int16_t kAnySecond = 0;      // whatever follows, nothing included
inline constexpr int16_t kBlankSecond = -1;   // nothing follows the keyword
inline constexpr int16_t kNumberSecond = -2;  // a number follows the keyword

struct Case {
  int16_t keyword;  // 1-based index of the keyword in the main table
  int16_t second;
  Action action;
  int16_t element = 0;  // of IWSAV or RWSAV, 1-based
  bool constant = false;
  double value = 0.0;   // stored instead of the number read when `constant`
};

// A family's tables. The cases are grouped by keyword; within a keyword, the cases asking for a named second
// keyword come first, then a number, then nothing, then anything. All cases of the first group that fits
// the line are applied (FEASIBILITY stores two tolerances).
struct Family {
  std::span<const Keyword> keywords;
  std::span<const Keyword> seconds;
  std::span<const Case> cases;
};

}  // namespace vek::optim
