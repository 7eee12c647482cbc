// The error buffer: what workers write, what the parser reads back, the relabeller, the character-value
// formatter and the entry layer's fallback for a pair it does not know.
#include <gtest/gtest.h>

#include <string>

#include "frame/entry.h"
#include "frame/error_buffer.h"
#include "support/capture.h"
#include "vek.h"

namespace {

constexpr char S = '\x01';

std::string padded(std::string s) {
  s.resize(200, ' ');
  return s;
}

struct Parsed {
  int64_t msgno = -1, status = -1;
  std::string lines[12];
};

Parsed parse(const std::string& buf) {
  char lines[12 * 80];
  Parsed p;
  p01abtn_(buf.data(), &p.msgno, lines, &p.status, int64_t(buf.size()), 80);
  for (int k = 0; k < 12; ++k) p.lines[k] = std::string(lines + 80 * k, 80);
  return p;
}

std::string trimmed(const std::string& s) { return s.substr(0, s.find_last_not_of(' ') + 1); }

std::string shown(const std::string& value, int64_t limit, int64_t flag = 0) {
  char out[81];
  p01abun_(out, 81, value.data(), &limit, &flag, int64_t(value.size()));
  return trimmed(std::string(out, 81));
}

}  // namespace

TEST(ErrorBuffer, WriterLayoutIsWhatTheParserReads) {
  char buf[200];
  int64_t ierr = -5;
  vek::frame::ErrorBuffer err(buf, 200, &ierr);
  EXPECT_EQ(ierr, 0);
  EXPECT_EQ(std::string(buf, 200), std::string(200, ' '));
  err.fail(vek::frame::Msg<vek::frame::IntValue>{1, 99998}, int64_t{0});
  EXPECT_EQ(ierr, 1);
  EXPECT_EQ(std::string(buf, 200), padded(std::string{S} + "    1" + S + "99998" + S + "1" + S +
                                          std::string(19, ' ') + "0" + S));
  err.fail(vek::frame::Msg<vek::frame::TextValue<80>, vek::frame::RealValue, vek::frame::IntValue>{2, 99996},
           "  XYZ  ", 2.5, int64_t{-7});
  const Parsed p = parse(std::string(buf, 200));
  EXPECT_EQ(p.status, 0);
  EXPECT_EQ(p.msgno, 99996);
  EXPECT_EQ(trimmed(p.lines[0]), "2");
  EXPECT_EQ(trimmed(p.lines[2]), "3");
  EXPECT_EQ(trimmed(p.lines[3]), "XYZ");
  EXPECT_EQ(trimmed(p.lines[4]), "2.5");
  EXPECT_EQ(trimmed(p.lines[5]), "-7");  // left-justified
  EXPECT_EQ(p.lines[6], std::string(80, ' '));
}

// A character value holding the separator byte keeps its own field (found by fuzzing: the byte split the
// field and the report became an unexpected error).
TEST(ErrorBuffer, SeparatorByteInsideACharacterValue) {
  char buf[200];
  int64_t ierr = 0;
  vek::frame::ErrorBuffer err(buf, 200, &ierr);
  err.fail(vek::frame::Msg<vek::frame::TextValue<80>, vek::frame::IntValue>{2, 99998}, std::string{'A', S, 'B', S},
           int64_t{4});
  Parsed p = parse(std::string(buf, 200));
  EXPECT_EQ(p.status, 0);
  EXPECT_EQ(trimmed(p.lines[3]), "A B");
  EXPECT_EQ(trimmed(p.lines[4]), "4");
  err.fail(vek::frame::Msg<vek::frame::LetterValue>{2, 99997}, std::string{S, 'x'});
  p = parse(std::string(buf, 200));
  EXPECT_EQ(p.status, 0);
  EXPECT_EQ(p.msgno, 99997);
  EXPECT_EQ(trimmed(p.lines[2]), "1");
}

TEST(ErrorBuffer, ParserStatus) {
  // Not starting with the separator, closing with something else, or nothing but a separator: -1000.
  EXPECT_EQ(parse(padded("    1")).status, -1000);
  EXPECT_EQ(parse(padded(std::string{S} + "1" + S + "99999" + S + "0")).status, -1000);
  EXPECT_EQ(parse(padded(std::string{S})).status, -1000);
  EXPECT_EQ(parse(std::string{S} + std::string(199, '\0')).status, -1000);
  // Fields that do not read as integers, or too few of them: -1000.
  EXPECT_EQ(parse(padded(std::string{S} + "one" + S + "99999" + S + "0" + S)).status, -1000);
  EXPECT_EQ(parse(padded(std::string{S} + "1" + S)).status, -1000);
  EXPECT_EQ(parse(padded(std::string{S} + "1" + S + "99999" + S)).status, -1000);
  // A value count that disagrees with the fields: -1001, the message number still read.
  const Parsed p = parse(padded(std::string{S} + "1" + S + "99999" + S + "2" + S + "5" + S));
  EXPECT_EQ(p.status, -1001);
  EXPECT_EQ(p.msgno, 99999);
  // An empty field gives a blank line; a field is cut to 80 characters.
  const Parsed q = parse(padded(std::string{S} + "1" + S + "7" + S + "2" + S + S + std::string(90, 'x') + S));
  EXPECT_EQ(q.status, 0);
  EXPECT_EQ(q.lines[3], std::string(80, ' '));
  EXPECT_EQ(q.lines[4], std::string(80, 'x'));
}

TEST(ErrorBuffer, Relabeller) {
  std::string buf = padded(std::string{S} + "    1" + S + "99998" + S + "1" + S + "  42" + S);
  const int64_t ifail = 3, msgno = 77;
  p01absn_(buf.data(), &ifail, nullptr, 200);
  EXPECT_EQ(buf, padded(std::string{S} + "3" + S + "99998" + S + "1" + S + "42" + S));
  p01absn_(buf.data(), nullptr, &msgno, 200);
  EXPECT_EQ(buf, padded(std::string{S} + "3" + S + "77" + S + "1" + S + "42" + S));
  const std::string before = buf;
  p01absn_(buf.data(), nullptr, nullptr, 200);
  EXPECT_EQ(buf, before);
}

TEST(ErrorBuffer, CharacterValueFormatter) {
  const std::string hundred = "  " + std::string(50, 'a') + std::string(50, 'b') + "   ";
  EXPECT_EQ(shown(hundred, 20), std::string(17, 'a') + "...");
  EXPECT_EQ(shown(hundred, 200), std::string(50, 'a') + std::string(27, 'b') + "...");  // at most 80
  EXPECT_EQ(shown("abcdef", 3), "...");
  EXPECT_EQ(shown("abcdef", 1), ".");
  EXPECT_EQ(shown("abcdef", 0), "");
  EXPECT_EQ(shown(std::string("  name\0\0  ", 10), 20), "name");
  EXPECT_EQ(shown("  name  ", 20, 1), "  name");
  EXPECT_EQ(shown("abcdef", 6), "abcdef");
}

TEST(ErrorBuffer, UnknownPairIsAnUnexpectedError) {
  static constexpr vek::frame::Message table[] = {{1, 99999, "** Known."}};
  char buf[200];
  int64_t ierr;
  vek::frame::ErrorBuffer err(buf, 200, &ierr);
  err.fail(vek::frame::Msg<>{7, 99990});
  int64_t result = 0;
  auto lines = vek::testing::console_lines(
      [&] { result = vek::frame::finish_call(-1, ierr, buf, "ROUTIN", table); });
  EXPECT_EQ(result, -99);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], " ** Unexpected error (    7,99990)");
  EXPECT_EQ(lines[1], " ** ABNORMAL EXIT from VEK Library routine ROUTIN: IFAIL =   -99");
  // A malformed buffer cannot be matched either; -999 has its own record.
  lines = vek::testing::console_lines(
      [&] { result = vek::frame::finish_call(-1, 1, std::string(200, ' ').c_str(), "ROUTIN", table); });
  EXPECT_EQ(result, -99);
  EXPECT_EQ(lines.at(0), " ** Unexpected error (    1,    0)");
  lines = vek::testing::console_lines([&] { result = vek::frame::finish_call(-1, -999, buf, "ROUTIN", table); });
  EXPECT_EQ(result, -999);
  EXPECT_EQ(lines.at(0), " ** Dynamic memory allocation failed.");
}
