// Every message of the M01 routines through the exported entries: the printed report compared line by line,
// IFAIL on exit, and the caller's data left alone.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/report.h"
#include "vek.h"

namespace {

// Records as printed: each after one blank.
std::vector<std::string> with_blank(const std::vector<std::string>& records) {
  std::vector<std::string> out;
  for (const auto& r : records) out.push_back(" " + r);
  return out;
}

struct Case {
  std::string routine;
  int64_t ifail;
  std::vector<std::string> records;
  std::function<void(int64_t*)> call;  // calls the routine with the given IFAIL
};

void check_cases(const std::vector<Case>& cases) {
  for (const auto& c : cases) {
    int64_t ifail = -1;
    const auto lines = vek::testing::console_lines([&] { c.call(&ifail); });
    EXPECT_EQ(ifail, c.ifail) << c.routine << ": " << c.records.front();
    EXPECT_EQ(lines, vek::testing::soft_report(with_blank(c.records), c.routine, c.ifail));
    ifail = 1;  // soft and silent
    EXPECT_TRUE(vek::testing::console_lines([&] { c.call(&ifail); }).empty());
    EXPECT_EQ(ifail, c.ifail);
  }
}

// The range and order checks every sort and rank routine makes, in order.
template <class Call>
std::vector<Case> range_and_order_cases(const std::string& routine, Call call) {
  return {
      {routine, 1, {"** On entry, M2 = 0.", "** Constraint: M2 >= 1."},
       [=](int64_t* f) { call(0, 0, "A", f); }},
      {routine, 1, {"** On entry, M1 = 0.", "** Constraint: M1 >= 1."},
       [=](int64_t* f) { call(0, 3, "X", f); }},
      {routine, 1, {"** On entry, M1 = 4 and M2 = 3.", "** Constraint: M1 <= M2."},
       [=](int64_t* f) { call(4, 3, "A", f); }},
      {routine, 2, {"** On entry, ORDER has an illegal value: ORDER = 'X'."},
       [=](int64_t* f) { call(1, 3, "Xyz", f); }},
      {routine, 2, {"** On entry, ORDER has an illegal value: ORDER = ''."},
       [=](int64_t* f) { call(1, 3, " ", f); }},
  };
}

const std::vector<double> kReals = {3.0, 1.0, 2.0};

TEST(SortMessages, RealAndIntegerSorts) {
  std::vector<double> rv = kReals;
  check_cases(range_and_order_cases("M01CAF", [&rv](int64_t m1, int64_t m2, const char* order, int64_t* ifail) {
    m01caf_(rv.data(), &m1, &m2, order, ifail, static_cast<int64_t>(std::string(order).size()));
  }));
  EXPECT_EQ(rv, kReals);
  std::vector<int64_t> iv = {3, 1, 2};
  check_cases(range_and_order_cases("M01CBF", [&iv](int64_t m1, int64_t m2, const char* order, int64_t* ifail) {
    m01cbf_(iv.data(), &m1, &m2, order, ifail, static_cast<int64_t>(std::string(order).size()));
  }));
  EXPECT_EQ(iv, (std::vector<int64_t>{3, 1, 2}));

  // Lower-case letters and M1 = M2 are accepted; only the first letter counts.
  int64_t m1 = 2, m2 = 2, ifail = -1;
  m01caf_(rv.data(), &m1, &m2, "a", &ifail, 1);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(rv, kReals);
  m1 = 1, m2 = 3;
  m01caf_(rv.data(), &m1, &m2, "dX", &ifail, 2);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(rv, (std::vector<double>{3.0, 2.0, 1.0}));
}

TEST(SortMessages, RankAndRearrange) {
  std::vector<int64_t> irank(3, -7);
  check_cases(range_and_order_cases("M01DAF", [&irank](int64_t m1, int64_t m2, const char* order, int64_t* ifail) {
    m01daf_(kReals.data(), &m1, &m2, order, irank.data(), ifail, static_cast<int64_t>(std::string(order).size()));
  }));
  EXPECT_EQ(irank, (std::vector<int64_t>(3, -7)));

  std::vector<double> rv = kReals;
  auto rearrange = [&rv](int64_t m1, int64_t m2, std::vector<int64_t> perm) {
    return [&rv, m1, m2, perm](int64_t* f) { m01eaf_(rv.data(), &m1, &m2, perm.data(), f); };
  };
  const std::string not_permutation = "** IRANK(M1:M2) does not contain a permutation of the integers M1 to M2.";
  check_cases({
      {"M01EAF", 1, {"** On entry, M2 = -2.", "** Constraint: M2 >= 1."}, rearrange(1, -2, {1, 2, 3})},
      {"M01EAF", 1, {"** On entry, M1 = -1.", "** Constraint: M1 >= 1."}, rearrange(-1, 3, {1, 2, 3})},
      {"M01EAF", 1, {"** On entry, M1 = 3 and M2 = 2.", "** Constraint: M1 <= M2."}, rearrange(3, 2, {1, 2, 3})},
      {"M01EAF", 2, {"** IRANK(I) contains an out-of-range value:", "** I = 3, IRANK(I) = 4", not_permutation},
       rearrange(2, 3, {0, 2, 4})},
      {"M01EAF", 2, {"** IRANK(I) contains an out-of-range value:", "** I = 1, IRANK(I) = 0", not_permutation},
       rearrange(1, 3, {0, 2, 2})},
      {"M01EAF", 3, {"** IRANK contains a repeated value: 2", not_permutation}, rearrange(1, 3, {2, 1, 2})},
  });
  EXPECT_EQ(rv, kReals);
}

// The three range checks of any routine, called through call(m1, m2, ifail).
template <class Call>
std::vector<Case> range_cases(const std::string& routine, Call call) {
  return {
      {routine, 1, {"** On entry, M2 = -3.", "** Constraint: M2 >= 1."}, [=](int64_t* f) { call(1, -3, f); }},
      {routine, 1, {"** On entry, M1 = 0.", "** Constraint: M1 >= 1."}, [=](int64_t* f) { call(0, 2, f); }},
      {routine, 1, {"** On entry, M1 = 3 and M2 = 2.", "** Constraint: M1 <= M2."}, [=](int64_t* f) { call(3, 2, f); }},
  };
}

void append(std::vector<Case>& to, const std::vector<Case>& more) {
  to.insert(to.end(), more.begin(), more.end());
}

TEST(SortMessages, StringsKeyAndOrder) {
  std::string ch = "cc  aa  bb  ";
  const std::string before = ch;
  std::vector<int64_t> irank(3, 0);
  for (const std::string routine : {"M01CCF", "M01DCF"}) {
    // call(m1, m2, l1, l2, order, ifail)
    const auto call = [&ch, &irank, routine](int64_t m1, int64_t m2, int64_t l1, int64_t l2, const char* order,
                                             int64_t* f) {
      if (routine == "M01CCF") m01ccf_(ch.data(), &m1, &m2, &l1, &l2, order, f, 4, 1);
      else m01dcf_(ch.data(), &m1, &m2, &l1, &l2, order, irank.data(), f, 4, 1);
    };
    std::vector<Case> cases = range_cases(routine, [=](int64_t m1, int64_t m2, int64_t* f) { call(m1, m2, 1, 2, "A", f); });
    append(cases, {
        {routine, 1, {"** On entry, L1 = 0.", "** Constraint: L1 >= 1."}, [=](int64_t* f) { call(1, 3, 0, 2, "A", f); }},
        {routine, 1, {"** On entry, L1 = 3 and L2 = 2.", "** Constraint: L1 <= L2."},
         [=](int64_t* f) { call(1, 3, 3, 2, "A", f); }},
        {routine, 1, {"** On entry, L2 = 5 and the length of each element of CH = 4.", "** Constraint: L2 <= the length of CH."},
         [=](int64_t* f) { call(1, 3, 1, 5, "A", f); }},
        {routine, 2, {"** On entry, ORDER has an illegal value: ORDER = 'b'."}, [=](int64_t* f) { call(1, 3, 1, 4, "b", f); }},
    });
    check_cases(cases);
  }
  EXPECT_EQ(ch, before);
}

TEST(SortMessages, MatrixRanks) {
  const std::vector<double> rm(12, 1.0);
  const std::vector<int64_t> im(12, 1);
  std::vector<int64_t> irank(4, 0);
  for (const std::string routine : {"M01DEF", "M01DFF", "M01DJF", "M01DKF"}) {
    const auto call = [&, routine](int64_t m1, int64_t m2, int64_t n1, int64_t n2, int64_t ldm, const char* order,
                                   int64_t* f) {
      if (routine == "M01DEF") m01def_(rm.data(), &ldm, &m1, &m2, &n1, &n2, order, irank.data(), f, 1);
      if (routine == "M01DFF") m01dff_(im.data(), &ldm, &m1, &m2, &n1, &n2, order, irank.data(), f, 1);
      if (routine == "M01DJF") m01djf_(rm.data(), &ldm, &m1, &m2, &n1, &n2, order, irank.data(), f, 1);
      if (routine == "M01DKF") m01dkf_(im.data(), &ldm, &m1, &m2, &n1, &n2, order, irank.data(), f, 1);
    };
    std::vector<Case> cases =
        range_cases(routine, [=](int64_t m1, int64_t m2, int64_t* f) { call(m1, m2, 1, 3, 4, "A", f); });
    append(cases, {
        {routine, 1, {"** On entry, N2 = 0.", "** Constraint: N2 >= 1."}, [=](int64_t* f) { call(1, 4, 1, 0, 4, "A", f); }},
        {routine, 1, {"** On entry, N1 = -1.", "** Constraint: N1 >= 1."}, [=](int64_t* f) { call(1, 4, -1, 3, 4, "A", f); }},
        {routine, 1, {"** On entry, N1 = 3 and N2 = 1.", "** Constraint: N1 <= N2."},
         [=](int64_t* f) { call(1, 4, 3, 1, 4, "A", f); }},
        {routine, 1, {"** On entry, LDM = 3 and M2 = 4.", "** Constraint: LDM >= M2."},
         [=](int64_t* f) { call(1, 4, 1, 3, 3, "A", f); }},
        {routine, 2, {"** On entry, ORDER has an illegal value: ORDER = '?'."},
         [=](int64_t* f) { call(1, 4, 1, 3, 4, "?", f); }},
    });
    check_cases(cases);
  }
}

TEST(SortMessages, IntegerRankPermutationsAndSearches) {
  std::vector<int64_t> iv = {2, 1, 3}, irank(3, 0);
  check_cases(range_and_order_cases("M01DBF", [&](int64_t m1, int64_t m2, const char* order, int64_t* f) {
    m01dbf_(iv.data(), &m1, &m2, order, irank.data(), f, static_cast<int64_t>(std::string(order).size()));
  }));

  std::string ch = "xyz";
  std::vector<vek_complex> cv(3);
  for (const std::string routine : {"M01EBF", "M01ECF", "M01EDF", "M01ZAF", "M01ZBF"}) {
    const std::string name = routine[3] == 'Z' ? "IPERM" : "IRANK";
    const auto call = [&, routine](int64_t m1, int64_t m2, std::vector<int64_t> perm, int64_t* f) {
      if (routine == "M01EBF") m01ebf_(iv.data(), &m1, &m2, perm.data(), f);
      if (routine == "M01ECF") m01ecf_(ch.data(), &m1, &m2, perm.data(), f, 1);
      if (routine == "M01EDF") m01edf_(cv.data(), &m1, &m2, perm.data(), f);
      if (routine == "M01ZAF") m01zaf_(perm.data(), &m1, &m2, f);
      if (routine == "M01ZBF") m01zbf_(perm.data(), &m1, &m2, f);
    };
    const std::string tail = "** " + name + "(M1:M2) does not contain a permutation of the integers M1 to M2.";
    std::vector<Case> cases = range_cases(routine, [=](int64_t m1, int64_t m2, int64_t* f) { call(m1, m2, {1, 2, 3}, f); });
    append(cases, {
        {routine, 2, {"** " + name + "(I) contains an out-of-range value:", "** I = 2, " + name + "(I) = -9", tail},
         [=](int64_t* f) { call(1, 3, {1, -9, 2}, f); }},
        {routine, 3, {"** " + name + " contains a repeated value: 3", tail}, [=](int64_t* f) { call(1, 3, {3, 1, 3}, f); }},
    });
    check_cases(cases);
  }
  EXPECT_EQ(iv, (std::vector<int64_t>{2, 1, 3}));
  EXPECT_EQ(ch, "xyz");

  const std::vector<double> rv = {1.0, 2.0};
  const double x = 1.5;
  const int64_t k = 1;
  check_cases(range_cases("M01NAF", [&](int64_t m1, int64_t m2, int64_t* f) { EXPECT_EQ(m01naf_(rv.data(), &m1, &m2, &x, f), 0); }));
  check_cases(range_cases("M01NBF", [&](int64_t m1, int64_t m2, int64_t* f) { EXPECT_EQ(m01nbf_(iv.data(), &m1, &m2, &k, f), 0); }));
  check_cases(range_cases("M01NCF", [&](int64_t m1, int64_t m2, int64_t* f) { EXPECT_EQ(m01ncf_(ch.data(), &m1, &m2, "y", f, 1, 1), 0); }));
}

}  // namespace
