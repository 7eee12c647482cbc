// The text of option lines: cutting, comments, tokens, the numeric test and the value read from a token.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "optim/option_text.h"

namespace vek::optim {
namespace {

std::vector<std::string> tokens_of(std::string_view line, bool upper = true) {
  std::array<std::string, kMaxTokens> t;
  const size_t n = tokenize(line, t, upper);
  return {t.begin(), t.begin() + static_cast<std::ptrdiff_t>(n)};
}

TEST(OptionText, LineIsCutAt72AndCommentDropped) {
  const std::string long_line = std::string(70, ' ') + "12345";
  EXPECT_EQ(option_line(long_line).size(), 72u);
  EXPECT_EQ(option_line(long_line).substr(70), "12");
  EXPECT_EQ(option_line("Iter 100"), "Iter 100");
  EXPECT_EQ(without_comment("Step Limit = 2.0 * was 1.0"), "Step Limit = 2.0 ");
  EXPECT_EQ(without_comment("* all comment"), "");
  EXPECT_EQ(without_comment("no comment"), "no comment");
}

TEST(OptionText, DelimitersInAnyMixture) {
  const std::vector<std::string> expected{"STEP", "LIMIT", "2.0"};
  EXPECT_EQ(tokens_of("Step Limit = 2.0"), expected);
  EXPECT_EQ(tokens_of("step,limit:2.0"), expected);
  EXPECT_EQ(tokens_of("\tSTEP \t,,LIMIT=:= 2.0  "), expected);
  EXPECT_EQ(tokens_of("step limit 2.0", false), (std::vector<std::string>{"step", "limit", "2.0"}));
  EXPECT_TRUE(tokens_of("  =,: \t").empty());
  EXPECT_TRUE(tokens_of("").empty());
}

TEST(OptionText, AtMostTenTokensOfFortyCharacters) {
  EXPECT_EQ(tokens_of("a b c d e f g h i j k l").size(), 10u);
  EXPECT_EQ(tokens_of("a b c d e f g h i j k l").back(), "J");
  const std::string word(45, 'x');
  const auto t = tokens_of(word + " y");
  ASSERT_EQ(t.size(), 2u);
  EXPECT_EQ(t[0], std::string(40, 'X'));
  EXPECT_EQ(t[1], "Y");
  // Fields beyond the count are cleared.
  std::array<std::string, 3> fields{"old", "old", "old"};
  EXPECT_EQ(tokenize("one", fields, true), 1u);
  EXPECT_EQ(fields[1], "");
  EXPECT_EQ(fields[2], "");
}

TEST(OptionText, FindTokenBounds) {
  const std::string_view text = "  ab,cd  ";
  TokenBounds b = find_token(text, 0, text.size());
  EXPECT_EQ(b.first, 2u);
  EXPECT_EQ(b.last, 4u);
  b = find_token(text, b.last, text.size());
  EXPECT_EQ(b.first, 5u);
  EXPECT_EQ(b.last, 7u);
  b = find_token(text, b.last, text.size());
  EXPECT_EQ(b.first, b.last);
  b = find_token(text, 0, 3);  // the range ends inside the first token
  EXPECT_EQ(b.first, 2u);
  EXPECT_EQ(b.last, 3u);
  b = find_token(text, 50, 60);  // beyond the text: nothing
  EXPECT_EQ(b.first, b.last);
}

TEST(OptionText, NumericTest) {
  for (const char* yes : {"100", "2.0", "-1", "+5", ".5", "5.", "1E5", "1D-10", "1e+5", "-1E-5", "1-2", "E1",
                          "++1", "+-1", "1+-", "--1", "1.0E+-3", "0"})
    EXPECT_TRUE(is_numeric(yes)) << yes;
  for (const char* no : {"", "ITER", "E", ".", "1..2", "1E5E", "1D5E", "1.2.3", "+++1", "---1", "1,5", "1X",
                         "NAN", "INF", "0x10", "--1-"})
    EXPECT_FALSE(is_numeric(no)) << no;
  EXPECT_TRUE(is_numeric("12 ABC"));  // the scan stops at the first blank
}

TEST(OptionText, NumbersReadAsFortranReals) {
  EXPECT_EQ(read_number("100"), 100.0);
  EXPECT_EQ(read_number("2.0"), 2.0);
  EXPECT_EQ(read_number("-1.5"), -1.5);
  EXPECT_EQ(read_number("+.25"), 0.25);
  EXPECT_EQ(read_number("5."), 5.0);
  EXPECT_EQ(read_number("1E5"), 1e5);
  EXPECT_EQ(read_number("1D-10"), 1e-10);
  EXPECT_EQ(read_number("2.5e+3"), 2500.0);
  EXPECT_EQ(read_number("1-2"), 0.01);    // an exponent without its letter
  EXPECT_EQ(read_number("3+2"), 300.0);
  EXPECT_EQ(read_number("9.9999E19"), 9.9999e19);
  EXPECT_EQ(read_number("0.1"), 0.1);     // correctly rounded
  // Numeric by the test but no number in full: the leading number, or 0.
  EXPECT_EQ(read_number("--1"), 0.0);
  EXPECT_EQ(read_number("E1"), 0.0);
  EXPECT_EQ(read_number("1+-"), 1.0);
  EXPECT_EQ(read_number("1E"), 1.0);
  EXPECT_EQ(read_number("1.0E+-3"), 1.0);
  // Beyond the double range.
  EXPECT_EQ(read_number("1E999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(read_number("-1E999"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(read_number("123456E99999999999999999999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(read_number("1E-999"), 0.0);
  EXPECT_EQ(read_number("0.00001E-400"), 0.0);
  EXPECT_EQ(read_number("100000E-405"), 0.0);
  EXPECT_EQ(read_number("1E-310"), 1e-310);  // subnormal results are kept
  EXPECT_EQ(read_number("3E-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_TRUE(std::signbit(read_number("-1E-999")));
}

TEST(OptionText, IntegerValuesTruncateAndSaturate) {
  EXPECT_EQ(truncate_to_int(99.7), 99);
  EXPECT_EQ(truncate_to_int(-1.5), -1);
  EXPECT_EQ(truncate_to_int(-0.9), 0);
  EXPECT_EQ(truncate_to_int(1e300), std::numeric_limits<int64_t>::max());
  EXPECT_EQ(truncate_to_int(-1e300), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(truncate_to_int(std::numeric_limits<double>::infinity()), std::numeric_limits<int64_t>::max());
  EXPECT_EQ(truncate_to_int(-0x1p63), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(truncate_to_int(0x1p62), int64_t{1} << 62);
  EXPECT_EQ(truncate_to_int(std::nan("")), 0);
}

}  // namespace
}  // namespace vek::optim
