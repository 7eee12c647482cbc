// The options-file reader: finds an options block (BEGIN ... END) among the records of a unit and applies
// each of its lines to a family's store.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "frame/units.h"
#include "optim/option_family.h"
#include "optim/option_store.h"

namespace vek::optim {

// Where the records come from: the option routines read them from a unit.
using RecordSource = std::function<units::ReadStatus(std::string&)>;

// INFORM of an options-file reader.
inline constexpr int64_t kFileRead = 0;          // a block was found and applied
inline constexpr int64_t kUnitOutOfRange = 1;    // the unit is outside 0..99
inline constexpr int64_t kEndInBlock = 2;        // the file ended after BEGIN, before END
inline constexpr int64_t kNoBlock = 3;           // the file ended (or could not be read) before BEGIN
inline constexpr int64_t kEndRun = 4;            // an ENDRUN record came before BEGIN
inline constexpr int64_t kFirstRecordWrong = 5;  // the first record was none of BEGIN, SKIP, ENDRUN; a block
                                                 // found later was applied

// Reads the records of `unit` (each cut to 72 characters) with listing set to `listing`:
//   1. records are skipped up to the first whose first token is BEGIN; ENDRUN first ends the search (4),
//      the end of the records too (3, with a note when listing is on); a first record that is none of
//      BEGIN, SKIP and ENDRUN is reported (when listing is on) and remembered as 5;
//   2. the BEGIN record is parsed (BEGIN NOLIST turns listing off), then, when listing is on, the header
//      " OPTIONS file", its underline and the record are written;
//   3. each following record is echoed (when listing is on) and parsed as an option line, LIST and NOLIST
//      switching listing, up to the record whose keyword is END; the end of the records first gives 2.
// The result is INFORM: 5 when remembered, else 0, unless the search or the block failed.
int64_t read_options_file(const Family& family, Areas store, int64_t unit, bool listing, const RecordSource& source,
                          const RecordSink& sink);

}  // namespace vek::optim
