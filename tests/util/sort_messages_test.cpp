// Every message of the M01 routines through the exported entries: the printed report compared line by line,
// IFAIL on exit, and the caller's data left alone.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "report.h"
#include "vek.h"

namespace {

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
    EXPECT_EQ(lines, vek::test::soft_report(c.records, c.routine, c.ifail));
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

}  // namespace
