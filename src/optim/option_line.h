// One option line applied to a family's store, and the option-setting step of a one-line setter routine.
//
// Errors in a line never stop the caller: the line (or the keyword) is skipped and, when listing is on, one
// of the records below is written, followed by the offending token.
#pragma once

#include <string_view>

#include "optim/option_family.h"
#include "optim/option_store.h"

namespace vek::optim {

inline constexpr std::string_view kKeywordNotRecognized = " XXX  Keyword not recognized:         ";
inline constexpr std::string_view kSecondNotRecognized = " XXX  Second keyword not recognized:  ";
inline constexpr std::string_view kAmbiguousKeyword = " XXX  Ambiguous keyword:              ";
inline constexpr std::string_view kSubscriptOutOfRange = " XXX  The PARM subscript is out of range:";
inline constexpr std::string_view kLineNotApplied = " XXX  Not enough memory: the option line was not applied";

// The keywords the routine reading a line acts on itself.
enum class Directive { none, begin, end, list, nolist };

struct LineResult {
  Directive directive = Directive::none;  // of the first keyword
  Directive after_begin = Directive::none;  // of the token after BEGIN (BEGIN NOLIST)
};

// Parses one line and applies it to the store:
//   1. a pending reset puts the marker into every parameter first;
//   2. the line is cut to 72 characters and everything from the first "*" on is dropped;
//   3. the tokens are upper-cased; a line without tokens, or starting with BEGIN, END, LIST or NOLIST,
//      stores nothing;
//   4. the value is the first token after the first that is numeric (0.0 when there is none); IPRMLS and
//      RPRMLS take the subscript from it and the value from the next numeric token;
//   5. the first token is looked up in the keyword table and the second in the second-keyword table, and
//      the first group of cases that fits (see Family) stores.
LineResult process_line(const Family& family, Areas store, std::string_view line, const RecordSink& sink);

// The step of a setter taking one line (E04UEF): on the first call since initialisation the line is parsed,
// listing becomes on or off by LIST or NOLIST, else `listing`, and, when on, the header " Calls to ROUTINE",
// its underline and the line are written; on later calls the line is echoed (when listing is on) before it
// is parsed, and LIST or NOLIST switch listing afterwards.
void set_option(const Family& family, Areas store, std::string_view str, std::string_view routine, bool listing,
                const RecordSink& sink);

// The record echoing an option line: one blank and the line.
void echo(std::string_view line, const RecordSink& sink);

}  // namespace vek::optim
