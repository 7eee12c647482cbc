// ErrorBuffer::fail accepts a declared message with exactly its values, each of its declared kind: a wrong
// count, a wrong kind or a message written as numbers does not compile. Proved here with requires-expressions
// (a call that would not compile makes the concept false), over hand-built kinds and over constants the
// generator made from src/exports (s14.decl, x04.decl, m01.decl).
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/error_buffer.h"
#include "layers/m01.h"
#include "layers/s14.h"
#include "layers/x04.h"

namespace {

using vek::frame::ErrorBuffer;
using vek::frame::IntValue;
using vek::frame::LetterValue;
using vek::frame::Msg;
using vek::frame::RealValue;
using vek::frame::TextValue;

template <class M, class... A>
concept fails_with = requires(ErrorBuffer& err, const M& m, const A&... values) { err.fail(m, values...); };

// The count of values.
static_assert(fails_with<Msg<>>);
static_assert(!fails_with<Msg<>, int64_t>);
static_assert(fails_with<Msg<IntValue>, int64_t>);
static_assert(!fails_with<Msg<IntValue>>);
static_assert(!fails_with<Msg<IntValue>, int64_t, int64_t>);
static_assert(fails_with<Msg<IntValue, RealValue>, int64_t, double>);
static_assert(!fails_with<Msg<IntValue, RealValue>, int64_t>);

// The kind of each value, in order.
static_assert(fails_with<Msg<IntValue>, int>);
static_assert(!fails_with<Msg<IntValue>, double>);
static_assert(!fails_with<Msg<IntValue>, bool>);
static_assert(!fails_with<Msg<IntValue>, char>);  // an option letter is no integer
static_assert(!fails_with<Msg<IntValue>, std::string_view>);
static_assert(!fails_with<Msg<IntValue>, const int64_t*>);  // the argument, not its value
static_assert(fails_with<Msg<RealValue>, double>);
static_assert(fails_with<Msg<RealValue>, float>);
static_assert(!fails_with<Msg<RealValue>, int64_t>);
static_assert(!fails_with<Msg<RealValue>, const double*>);
static_assert(!fails_with<Msg<IntValue, RealValue>, double, int64_t>);  // swapped
static_assert(fails_with<Msg<TextValue<8>>, std::string_view>);
static_assert(fails_with<Msg<TextValue<8>>, std::string>);
static_assert(fails_with<Msg<TextValue<8>>, char[4]>);  // a literal
static_assert(!fails_with<Msg<TextValue<8>>, const char*>);  // a Fortran text has no terminating NUL
static_assert(!fails_with<Msg<TextValue<8>>, char>);
static_assert(!fails_with<Msg<TextValue<8>>, int64_t>);
static_assert(fails_with<Msg<LetterValue>, std::string_view>);
static_assert(!fails_with<Msg<LetterValue>, char>);
static_assert(!fails_with<Msg<LetterValue>, const char*>);

// A message is a declared constant, never numbers.
static_assert(!fails_with<int, int64_t>);
static_assert(!fails_with<int, int, int64_t>);
static_assert(!fails_with<int64_t>);

// The generated constants: S14AAF's overflow shows X (real), X04ACF's open_read FILE (text) and IOUNIT (int),
// M01CAF's order_invalid a letter.
using vek::routines::m01caf;
using vek::routines::s14aaf;
using vek::routines::x04acf;
static_assert(fails_with<decltype(s14aaf::overflow), double>);
static_assert(!fails_with<decltype(s14aaf::overflow)>);
static_assert(!fails_with<decltype(s14aaf::overflow), int64_t>);
static_assert(!fails_with<decltype(s14aaf::overflow), double, double>);
static_assert(fails_with<decltype(x04acf::open_read), std::string_view, int64_t>);
static_assert(!fails_with<decltype(x04acf::open_read), int64_t, std::string_view>);
static_assert(!fails_with<decltype(x04acf::open_read), const char*, int64_t>);
static_assert(fails_with<decltype(m01caf::order_invalid), std::string_view>);
static_assert(!fails_with<decltype(m01caf::order_invalid), char>);

}  // namespace

// The constants carry their declared pairs, and what fail() writes is read back as that pair and values.
TEST(ErrorBufferKinds, GeneratedConstantsCarryTheirDeclaredPairs) {
  EXPECT_EQ(s14aaf::overflow.ifail, 1);
  EXPECT_EQ(s14aaf::overflow.msgno, 99999);
  EXPECT_EQ(s14aaf::pole.ifail, 4);
  EXPECT_EQ(s14aaf::pole.msgno, 99996);
  EXPECT_EQ(x04acf::open_append.ifail, 4);
  EXPECT_EQ(x04acf::open_append.msgno, 99996);

  char buf[200];
  int64_t ierr = 0;
  ErrorBuffer err(buf, 200, &ierr);
  err.fail(x04acf::open_write, std::string_view("  data.txt  "), int64_t{7});
  EXPECT_EQ(ierr, 3);
  const vek::frame::ParsedBuffer p = vek::frame::parse_error_buffer(std::string_view(buf, 200));
  EXPECT_EQ(p.status, 0);
  EXPECT_EQ(p.msgno, 99997);
  EXPECT_EQ(p.nfields, 5);
  EXPECT_EQ(p.lines[3].substr(0, 9), "data.txt ");
  EXPECT_EQ(p.lines[4].substr(0, 2), "7 ");
}
