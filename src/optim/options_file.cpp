#include "optim/options_file.h"

#include <array>
#include <new>

#include "frame/text.h"
#include "optim/option_line.h"
#include "optim/option_text.h"

namespace vek::optim {
namespace {

// The first token of a record, upper-cased, its comment dropped.
std::string first_token(std::string_view line) {
  std::array<std::string, 1> token;
  tokenize(without_comment(line), token, true);
  return token[0];
}

void note(Areas store, const RecordSink& sink, std::string_view text, int64_t unit) {
  if (store.listing()) sink(std::string(text) + " " + text::int_text(unit));
}

int64_t read_blocks(const Family& family, Areas store, int64_t unit, bool listing, const RecordSource& source,
                    const RecordSink& sink, bool& in_block) {
  store.set_listing(listing);
  int64_t inform = kFileRead;
  std::string record;

  for (bool first = true;; first = false) {
    if (source(record) != units::ReadStatus::ok) {
      note(store, sink, " XXX  End-of-file encountered while looking for an OPTIONS file on unit", unit);
      return kNoBlock;
    }
    const std::string token = first_token(option_line(record));
    if (token == "BEGIN") break;
    if (token == "ENDRUN") return kEndRun;
    if (first && token != "SKIP") {
      if (store.listing()) {
        sink(" XXX  Error while looking for an OPTIONS file on unit " + text::int_text(unit));
        sink(" XXX  The file should start with BEGIN, SKIP or ENDRUN");
        sink(" XXX  but the first record found was the following:");
        echo(option_line(record), sink);
        sink(" ---");
        sink(" XXX  Continuing to look for OPTIONS file...");
      }
      inform = kFirstRecordWrong;
    }
  }

  in_block = true;
  const LineResult begin = process_line(family, store, option_line(record), sink);
  if (begin.after_begin == Directive::list) store.set_listing(true);
  if (begin.after_begin == Directive::nolist) store.set_listing(false);
  if (store.listing()) {
    sink(" OPTIONS file");
    sink(" ------------");
    echo(option_line(record), sink);
  }

  for (;;) {
    if (source(record) != units::ReadStatus::ok) {
      note(store, sink, " XXX  End-of-file encountered while processing an OPTIONS file on unit", unit);
      return kEndInBlock;
    }
    const std::string_view line = option_line(record);
    if (store.listing()) echo(line, sink);
    const LineResult r = process_line(family, store, line, sink);
    if (r.directive == Directive::end) return inform;
    if (r.directive == Directive::list) store.set_listing(true);
    if (r.directive == Directive::nolist) store.set_listing(false);
  }
}

}  // namespace

int64_t read_options_file(const Family& family, Areas store, int64_t unit, bool listing, const RecordSource& source,
                          const RecordSink& sink) {
  if (unit < 0 || unit > 99) return kUnitOutOfRange;
  bool in_block = false;
  try {
    return read_blocks(family, store, unit, listing, source, sink, in_block);
  } catch (const std::bad_alloc&) {
    // Memory ran out (the routine has no IFAIL): reading stops as at an end of file, without its note.
    return in_block ? kEndInBlock : kNoBlock;
  }
}

}  // namespace vek::optim
