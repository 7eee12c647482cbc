// Every message of the G05 routines record by record, the length queries, and STATE validation: a STATE that
// fails leaves every routine with STATE untouched.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

using Lines = std::vector<std::string>;
using State = std::vector<int64_t>;
using vek::testing::console_lines;
using vek::testing::soft_report;

const std::string kCorrupted = " ** On entry, STATE vector has been corrupted or not initialized.";

State initialised(int64_t genid, int64_t lstate, int64_t subid = 1) {
  State state(static_cast<size_t>(lstate), 0);
  const int64_t seed[1] = {1234567}, lseed = 1;
  int64_t ifail = 1;
  g05kff_(&genid, &subid, seed, &lseed, state.data(), &lstate, &ifail);
  EXPECT_EQ(ifail, 0);
  return state;
}

TEST(RandomMessages, LengthQueriesLeaveStateUntouched) {
  const int64_t seed[1] = {1}, lseed = 1;
  struct Case {
    int64_t genid, subid, length;
  };
  // ACORN: max(14, m(k+1)+9) + 3 for k = SUBID mod 1000, m = SUBID div 1000 + 1 (default k = 10, m = 2).
  for (const Case c : {Case{1, 1, 17}, Case{2, 1, 21}, Case{3, 1, 1260}, Case{4, 1, 29}, Case{5, 0, 34},
                       Case{5, 3007, 4 * 8 + 9 + 3}, Case{5, 1, 17}, Case{6, 1, 61}}) {
    State state(4, -7);
    int64_t lstate = 0, ifail = -1;
    const Lines lines = console_lines([&] {
      g05kff_(&c.genid, &c.subid, seed, &lseed, state.data(), &lstate, &ifail);
    });
    EXPECT_EQ(lstate, c.length) << "GENID " << c.genid << " SUBID " << c.subid;
    EXPECT_EQ(ifail, -1);
    EXPECT_EQ(state, State(4, -7));
    EXPECT_EQ(lines, soft_report({" ** Required length of STATE array returned in LSTATE but STATE array not",
                                  " ** initialized."},
                                 "G05KFF", -1));
    lstate = -3;
    ifail = 1;
    g05kgf_(&c.genid, &c.subid, state.data(), &lstate, &ifail);
    EXPECT_EQ(lstate, c.length);
    EXPECT_EQ(ifail, -1);
  }
}

TEST(RandomMessages, InitialisationMessagesInOrder) {
  State state(61, 0);
  auto kff = [&](int64_t genid, std::vector<int64_t> seed, int64_t lstate, int64_t& ifail) {
    const int64_t subid = 1, lseed = static_cast<int64_t>(seed.size());
    ifail = -1;
    seed.push_back(0);  // keeps the data pointer valid for LSEED = 0
    return console_lines([&] { g05kff_(&genid, &subid, seed.data(), &lseed, state.data(), &lstate, &ifail); });
  };
  int64_t ifail;
  EXPECT_EQ(kff(7, {1}, 0, ifail), soft_report({" ** On entry, GENID = 7.",
                                                 " ** Constraint: GENID = 1, 2, 3, 4, 5 or 6."}, "G05KFF", 1));
  EXPECT_EQ(kff(0, {}, 10, ifail), soft_report({" ** On entry, GENID = 0.",
                                                 " ** Constraint: GENID = 1, 2, 3, 4, 5 or 6."}, "G05KFF", 1));
  // LSEED before the length query, the query before the length, the length before the seed.
  EXPECT_EQ(kff(1, {}, 0, ifail), soft_report({" ** On entry, LSEED = 0.", " ** Constraint: LSEED >= 1."},
                                              "G05KFF", 4));
  EXPECT_EQ(kff(1, {0}, 0, ifail)[0], " ** Required length of STATE array returned in LSTATE but STATE array not");
  EXPECT_EQ(kff(1, {0}, 16, ifail), soft_report({" ** On entry, LSTATE = 16.",
                                                  " ** Constraint: LSTATE <= 0 or LSTATE >= 17."}, "G05KFF", 6));
  EXPECT_EQ(kff(3, {0}, 632, ifail), soft_report({" ** On entry, LSTATE = 632.",
                                                   " ** Constraint: LSTATE <= 0 or LSTATE >= 633."}, "G05KFF", 6));
  EXPECT_EQ(kff(1, {0}, 17, ifail), soft_report({" ** On entry, invalid SEED."}, "G05KFF", 3));
  EXPECT_EQ(kff(6, {0, 0, 0, 1, 1, 1}, 61, ifail), soft_report({" ** On entry, invalid SEED."}, "G05KFF", 3));
  EXPECT_EQ(state, State(61, 0));  // nothing written by any failure

  const int64_t genid = 9, subid = 0;
  int64_t lstate = 5;
  ifail = -1;
  EXPECT_EQ(console_lines([&] { g05kgf_(&genid, &subid, state.data(), &lstate, &ifail); }),
            soft_report({" ** On entry, GENID = 9.", " ** Constraint: GENID = 1, 2, 3, 4, 5 or 6."}, "G05KGF", 1));
  const int64_t four = 4;
  ifail = -1;
  EXPECT_EQ(console_lines([&] { g05kgf_(&four, &subid, state.data(), &lstate, &ifail); }),
            soft_report({" ** On entry, LSTATE = 5.", " ** Constraint: LSTATE <= 0 or LSTATE >= 29."}, "G05KGF", 4));
  lstate = 29;
  ifail = 1;
  g05kgf_(&four, &subid, state.data(), &lstate, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(state[0], 29);
}

TEST(RandomMessages, StreamRoutineMessages) {
  State state = initialised(1, 17);
  const State before = state;
  int64_t ifail;
  auto report = [&](auto call) {
    ifail = -1;
    return console_lines(call);
  };
  int64_t n = 0, k = 1;
  EXPECT_EQ(report([&] { g05khf_(&n, &k, state.data(), &ifail); }),
            soft_report({" ** On entry, N = 0.", " ** Constraint: N >= 1."}, "G05KHF", 1));
  n = 3;
  k = 4;
  EXPECT_EQ(report([&] { g05khf_(&n, &k, state.data(), &ifail); }),
            soft_report({" ** On entry, K = 4 and N = 3.", " ** Constraint: 0 < K <= N."}, "G05KHF", 2));
  n = -1;
  EXPECT_EQ(report([&] { g05kjf_(&n, state.data(), &ifail); }),
            soft_report({" ** On entry, N = -1.", " ** Constraint: N >= 0."}, "G05KJF", 1));
  double x[4];
  EXPECT_EQ(report([&] { g05saf_(&n, state.data(), x, &ifail); }),
            soft_report({" ** On entry, N = -1.", " ** Constraint: N >= 0."}, "G05SAF", 1));
  const double xmu = 0.0, bad_var = -0.5, var = 1.0;
  EXPECT_EQ(report([&] { g05skf_(&n, &xmu, &var, state.data(), x, &ifail); }),
            soft_report({" ** On entry, N = -1.", " ** Constraint: N >= 0."}, "G05SKF", 1));
  n = 2;
  EXPECT_EQ(report([&] { g05skf_(&n, &xmu, &bad_var, state.data(), x, &ifail); }),
            soft_report({" ** On entry, VAR = -0.5.", " ** Constraint: VAR >= 0.0."}, "G05SKF", 3));
  EXPECT_EQ(state, before);

  // ACORN refuses leap-frog; a short Mersenne Twister state refuses skip-ahead (700 words: short).
  State acorn = initialised(5, 34, 0);
  n = 2;
  k = 1;
  EXPECT_EQ(report([&] { g05khf_(&n, &k, acorn.data(), &ifail); }),
            soft_report({" ** On entry, cannot use leap-frog with the base generator defined by STATE."}, "G05KHF", 4));
  State mt = initialised(3, 700);
  EXPECT_EQ(mt[0], 633);
  n = 10;
  EXPECT_EQ(report([&] { g05kjf_(&n, mt.data(), &ifail); }),
            soft_report({" ** On entry, the base generator is Mersenne Twister, but",
                         " ** the STATE vector defined on initialization is not large enough",
                         " ** to perform a skip ahead. See the initialization routine G05KFF or G05KGF."},
                        "G05KJF", 4));
  State full = initialised(3, 1260);
  ifail = 1;
  g05kjf_(&n, full.data(), &ifail);
  EXPECT_EQ(ifail, 0);
  // ACORN with a modulus beyond 2^240 refuses skip-ahead.
  State wide = initialised(5, 9 * 4 + 9 + 3, 8003);
  EXPECT_EQ(report([&] { g05kjf_(&n, wide.data(), &ifail); }),
            soft_report({" ** On entry, cannot use skip-ahead with the base generator defined by STATE."}, "G05KJF", 3));
}

TEST(RandomMessages, CorruptedStateIsReportedAndLeftAlone) {
  for (int64_t genid = 1; genid <= 6; ++genid) {
    SCOPED_TRACE(genid);
    State good = initialised(genid, genid == 3 ? 1260 : (genid == 5 ? 34 : 61));
    const int64_t n_words = good[0];
    // (word changed, new value, whether it is the length word)
    struct Damage {
      int64_t word, value;
      bool length;
    };
    for (const Damage d : {Damage{n_words - 1, good[1] + 1, false}, Damage{n_words - 2, 0, false},
                           Damage{2, 7, false}, Damage{1, 99, false}, Damage{0, n_words + 1, true},
                           Damage{0, 2, true}}) {
      State state = good;
      state[static_cast<size_t>(d.word)] = d.value;
      const State damaged = state;
      int64_t ifail = -1, n = 3, k = 1;
      double x[3];
      const double xmu = 0.0, var = 1.0;
      EXPECT_EQ(console_lines([&] { g05saf_(&n, state.data(), x, &ifail); }),
                soft_report({kCorrupted}, "G05SAF", d.length ? 4 : 2));
      ifail = -1;
      EXPECT_EQ(console_lines([&] { g05skf_(&n, &xmu, &var, state.data(), x, &ifail); }),
                soft_report({kCorrupted}, "G05SKF", d.length ? 6 : 4));
      ifail = -1;
      EXPECT_EQ(console_lines([&] { g05kjf_(&n, state.data(), &ifail); }), soft_report({kCorrupted}, "G05KJF", 2));
      ifail = -1;
      EXPECT_EQ(console_lines([&] { g05khf_(&n, &k, state.data(), &ifail); }), soft_report({kCorrupted}, "G05KHF", 3));
      EXPECT_EQ(state, damaged);
      // N = 0 in the normal generator returns before STATE is looked at.
      n = 0;
      ifail = -1;
      g05skf_(&n, &xmu, &var, state.data(), x, &ifail);
      EXPECT_EQ(ifail, 0);
    }
  }
}

TEST(RandomMessages, ZeroVarianceGivesTheMeanAndAdvances) {
  State state = initialised(6, 61), reference = state;
  const int64_t n = 5;
  const double xmu = -2.25, var = 0.0;
  double x[5], u[5];
  int64_t ifail = 1;
  g05skf_(&n, &xmu, &var, state.data(), x, &ifail);
  for (double v : x) EXPECT_EQ(v, xmu);
  g05saf_(&n, reference.data(), u, &ifail);
  EXPECT_EQ(state, reference);
  // Two calls for 5 and 7 values give the one call's 12.
  State one = initialised(2, 21), two = one;
  const int64_t twelve = 12, five = 5, seven = 7;
  const double unit = 1.0;
  double all[12], split[12];
  g05skf_(&twelve, &xmu, &unit, one.data(), all, &ifail);
  g05skf_(&five, &xmu, &unit, two.data(), split, &ifail);
  g05skf_(&seven, &xmu, &unit, two.data(), split + 5, &ifail);
  for (int i = 0; i < 12; ++i) EXPECT_EQ(all[i], split[i]);
}

}  // namespace
