// Keyword lookup: the E04UCF tables as declared, abbreviation, synonyms, ambiguity and the 16-character key.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "optim/e04uc_options.h"
#include "optim/option_lookup.h"

namespace vek::optim {
namespace {

std::vector<std::string> names(std::span<const Keyword> table) {
  std::vector<std::string> out;
  for (const Keyword& k : table) out.emplace_back(k.name);
  return out;
}

// The tables of the option set, in order, with their synonyms.
TEST(OptionLookup, E04ucTablesAsDocumented) {
  const std::vector<std::string> main{
      "BEGIN",  "CENTRAL",    "COLD",   "CONDITION", "CONSTRAINTS", "CRASH",   "DEFAULTS",   "DERIVATIVE",
      "DIFFERENCE", "END",    "FEASIBILITY", "FUNCTION", "HESSIAN", "INFINITE", "IPRMLS",   "ITERATIONS",
      "ITERS",  "ITNS",       "LINE",   "LINEAR",    "LINESEARCH",  "LIST",    "LOWER",      "MAJOR",
      "MINOR",  "MONITORING", "NOLIST", "NONLINEAR", "OPTIMALITY",  "PRINT",   "PROBLEM",    "ROW",
      "RPRMLS", "START",      "STEP",   "STOP",      "UPPER",       "VARIABLES", "VERIFY",   "WARM"};
  EXPECT_EQ(names(e04uc::keywords), main);
  const std::vector<std::string> second{"BOUND", "CONSTRAINTS", "FEASIBILITY", "GRADIENTS", "ITERATIONS", "ITERS",
                                        "ITNS", "JACOBIAN", "LEVEL", "NO", "NO.", "NUMBER", "OBJECTIVE", "PRINT",
                                        "SEARCH", "STEP", "TOLERANCE", "VARIABLES", "YES"};
  EXPECT_EQ(names(e04uc::seconds), second);
  for (const Keyword& k : e04uc::keywords) {
    const std::string expected = k.name == "ITERS" || k.name == "ITNS" ? "ITERATIONS" : k.name == "LINESEARCH" ? "LINE" : "";
    EXPECT_EQ(k.target, expected) << k.name;
  }
  for (const Keyword& k : e04uc::seconds) {
    const std::string expected = k.name == "ITERS" || k.name == "ITNS" ? "ITERATIONS" : k.name == "NO." ? "NUMBER" : "";
    EXPECT_EQ(k.target, expected) << k.name;
  }
}

struct Expect {
  const char* token;
  int index;
  const char* rewritten;
};

void check(std::span<const Keyword> table, std::initializer_list<Expect> cases) {
  for (const Expect& e : cases) {
    std::string token = e.token;
    EXPECT_EQ(lookup(table, token), e.index) << e.token;
    EXPECT_EQ(token, e.rewritten) << e.token;
  }
}

TEST(OptionLookup, MainTable) {
  check(e04uc::keywords, {
      {"ITERATIONS", 16, "ITERATIONS"},
      {"ITER", 16, "ITERATIONS"},        // ITERATIONS and ITERS lead to the same keyword
      {"IT", 16, "ITERATIONS"},          // ... and so does ITNS
      {"ITERS", 16, "ITERATIONS"},       // a synonym gives its target
      {"ITNS", 16, "ITERATIONS"},
      {"LINE", 19, "LINE"},              // exact: beats LINEAR and LINESEARCH
      {"LINES", 19, "LINE"},             // LINESEARCH, a synonym of LINE
      {"LINEA", 20, "LINEAR"},
      {"LIN", -20, "LIN"},               // LINE and LINEAR differ: ambiguous at the second match
      {"L", -20, "L"},
      {"LIS", 22, "LIST"},
      {"ST", -35, "ST"},                 // START, STEP
      {"STE", 35, "STEP"},
      {"STA", 34, "START"},
      {"B", 1, "BEGIN"},
      {"W", 40, "WARM"},
      {"C", -3, "C"},                    // CENTRAL, COLD
      {"CON", -5, "CON"},                // CONDITION, CONSTRAINTS
      {"CONS", 5, "CONSTRAINTS"},
      {"NO", -28, "NO"},                 // NOLIST, NONLINEAR
      {"NON", 28, "NONLINEAR"},
      {"ITERATIONSX", 0, "ITERATIONSX"}, // longer than the keyword: no match
      {"XYZ", 0, "XYZ"},
      {"AAA", 0, "AAA"},                 // before the first entry
      {"ZZZ", 0, "ZZZ"},                 // after the last
      {"", 0, ""},
  });
}

TEST(OptionLookup, SecondTable) {
  check(e04uc::seconds, {
      {"ITER", 5, "ITERATIONS"},
      {"NO", 10, "NO"},                  // exact, though NO. and NUMBER share the prefix
      {"NO.", 12, "NUMBER"},
      {"NUM", 12, "NUMBER"},
      {"N", -11, "N"},                   // NO and NO. (NUMBER) differ
      {"Y", 19, "YES"},
      {"S", -16, "S"},                   // SEARCH, STEP
      {"CON", 2, "CONSTRAINTS"},
      {"LIMIT", 0, "LIMIT"},
  });
}

// The lookup compares at most 16 characters of the token: a longer token is a prefix of nothing shorter.
TEST(OptionLookup, SixteenCharacterKey) {
  static constexpr Keyword table[] = {{"ABCDEFGHIJKLMNOP", ""}, {"ABCDEFGHIJKLMNOQ", ""}, {"SHORT", ""}};
  check(table, {
      {"ABCDEFGHIJKLMNOPQRSTUV", 1, "ABCDEFGHIJKLMNOP"},  // the first 16 characters match exactly
      {"ABCDEFGHIJKLMNOQ", 2, "ABCDEFGHIJKLMNOQ"},
      {"ABCDEFGHIJKLMNO", -2, "ABCDEFGHIJKLMNO"},
      {"SHORTER", 0, "SHORTER"},
  });
}

}  // namespace
}  // namespace vek::optim
