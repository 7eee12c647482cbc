// The error-buffer parser and relabeller, and the entry layer's composition of records from a parsed buffer.
// The input is the buffer itself (any length, any bytes); a buffer written by a worker with values taken from
// the input must parse back to those values.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "frame/entry.h"
#include "frame/error_buffer.h"
#include "frame/text.h"
#include "require.h"
#include "vek.h"

namespace {

using vek::frame::kErrbufLength;
using vek::frame::kLineLength;
using vek::frame::kMaxLines;

// The parser's output for any text: a known status, twelve lines of 80 characters, and for a well-formed
// buffer the field count it was given.
vek::frame::ParsedBuffer parse_checked(std::string_view buf) {
  const vek::frame::ParsedBuffer p = vek::frame::parse_error_buffer(buf);
  FUZZ_REQUIRE(p.status == 0 || p.status == -1000 || p.status == -1001);
  FUZZ_REQUIRE(p.nfields >= 0 && p.nfields <= kMaxLines);
  for (const std::string& line : p.lines) FUZZ_REQUIRE(line.size() == kLineLength);
  if (p.status != -1000) FUZZ_REQUIRE(p.nfields >= 3);
  return p;
}

// A message table with values in every position a template may name, and one beyond the fields.
constexpr vek::frame::Message kTable[] = {
    {1, 99999, "** On entry, A = {1}.\n** Constraint: A >= {2}."},
    {2, 99998, "** {9}{8}{7}{6}{5}{4}{3}{2}{1}"},
    {3, 99997, "** no values"},
};

// A worker's buffer with an integer, a real and a text from the input; it must parse back exactly.
void round_trip(FuzzedDataProvider& in) {
  const int64_t i = in.ConsumeIntegral<int64_t>();
  const double x = in.ConsumeFloatingPoint<double>();
  const std::string t = in.ConsumeRandomLengthString(120);
  char buf[kErrbufLength];
  int64_t ierr = -1;
  vek::frame::ErrorBuffer err(buf, kErrbufLength, &ierr);
  constexpr vek::frame::Msg<vek::frame::IntValue, vek::frame::RealValue, vek::frame::TextValue<40>> m{2, 99998};
  err.fail(m, i, x, t);
  FUZZ_REQUIRE(ierr == 2);
  const vek::frame::ParsedBuffer p = parse_checked(std::string_view(buf, kErrbufLength));
  FUZZ_REQUIRE(p.status == 0 && p.msgno == 99998 && p.nfields == 6);
  FUZZ_REQUIRE(vek::text::trim(p.lines[3]) == vek::text::int_text(i));
  FUZZ_REQUIRE(vek::text::trim(p.lines[4]) == vek::text::real_text(x));
  const std::string shown = vek::frame::show_value(t, 40);
  FUZZ_REQUIRE(vek::text::trim(p.lines[5]).size() <= shown.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int64_t lines_len = in.ConsumeIntegralInRange<int64_t>(-1, 100);
  const int64_t new_ifail = in.ConsumeIntegral<int64_t>();
  const int64_t new_msgno = in.ConsumeIntegral<int64_t>();
  const uint8_t which = in.ConsumeIntegral<uint8_t>();
  const std::string text = in.ConsumeRandomLengthString(400);

  // The text as it stands, and as the 200-character buffer the entry layers hand over (cut or blank-padded).
  parse_checked(text);
  std::string buf = text;
  buf.resize(kErrbufLength, ' ');
  const vek::frame::ParsedBuffer p = parse_checked(buf);

  // The exported parser with any record length.
  std::string lines(static_cast<size_t>(kMaxLines * std::max<int64_t>(lines_len, 0)), '?');
  int64_t msgno = -1, status = -1;
  p01abtn_(buf.data(), &msgno, lines.data(), &status, kErrbufLength, lines_len);
  FUZZ_REQUIRE(status == p.status && msgno == p.msgno);

  // Relabelling: a well-formed buffer whose fields are all non-blank keeps its values under the new numbers.
  std::string relabelled = buf;
  p01absn_(relabelled.data(), (which & 1) ? &new_ifail : nullptr, (which & 2) ? &new_msgno : nullptr,
           kErrbufLength);
  const vek::frame::ParsedBuffer r = parse_checked(relabelled);
  bool all_fields = p.status == 0;
  for (int k = 0; k < p.nfields; ++k) all_fields = all_fields && !vek::text::trim(p.lines[k]).empty();
  if (all_fields && (which & 3) != 0) {
    // A field that no longer fits the buffer shortens it; only a packing that fits is compared.
    size_t packed = 1;
    for (int k = 0; k < p.nfields; ++k) packed += vek::text::trim(p.lines[k]).size() + 1;
    packed += 40;  // the new numbers may be longer than the old ones
    if (packed <= kErrbufLength) {
      FUZZ_REQUIRE(r.status == 0 && r.nfields == p.nfields);
      FUZZ_REQUIRE(r.msgno == ((which & 2) ? new_msgno : p.msgno));
      if (which & 1) FUZZ_REQUIRE(vek::text::trim(r.lines[0]) == vek::text::int_text(new_ifail));
      // Compared trimmed: a field cut to 80 characters may end in NULs, which count as blanks.
      for (int k = 2; k < p.nfields; ++k) FUZZ_REQUIRE(vek::text::trim(r.lines[k]) == vek::text::trim(p.lines[k]));
    }
  }

  // The entry layer's failure path, silent (IFAIL = 1 on entry): records composed or "Unexpected error".
  const int64_t ierr = 1 + which % 3;
  const int64_t ifail = vek::frame::report_failure(1, ierr, buf.data(), "FUZZ01", kTable,
                                                   vek::frame::ExitForm::standard);
  FUZZ_REQUIRE(ifail == ierr || ifail == vek::frame::kUnexpectedError);
  if (p.status != 0) FUZZ_REQUIRE(ifail == vek::frame::kUnexpectedError);

  round_trip(in);
  return 0;
}
