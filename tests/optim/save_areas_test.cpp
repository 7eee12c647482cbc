// E04WBF, the initialiser of save areas a caller keeps (its checks, its messages, what it leaves), and the
// stores kept apart: the two families' library-global stores and a caller's own areas.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "optim/e04dg_options.h"
#include "optim/e04uc_options.h"
#include "optim/option_line.h"
#include "support/unit_capture.h"
#include "vek.h"

namespace vek::optim {
namespace {

constexpr int64_t kSentinel = 4242;
constexpr int64_t kRecord = 8;  // the length of the caller's CWSAV records

// Areas of the lengths given plus one element, all holding a sentinel.
struct CallerAreas {
  CallerAreas(int64_t lc, int64_t ll, int64_t li, int64_t lr)
      : lengths{lc, ll, li, lr},
        cwsav(static_cast<size_t>(std::max<int64_t>(lc, 0) + 1) * kRecord, '#'),
        lwsav(static_cast<size_t>(std::max<int64_t>(ll, 0) + 1), kSentinel),
        iwsav(static_cast<size_t>(std::max<int64_t>(li, 0) + 1), kSentinel),
        rwsav(static_cast<size_t>(std::max<int64_t>(lr, 0) + 1), static_cast<double>(kSentinel)) {}

  // E04WBF on these areas: IFAIL on exit.
  int64_t initialise(const std::string& rname, int64_t ifail) {
    e04wbf_(rname.data(), cwsav.data(), &lengths[0], lwsav.data(), &lengths[1], iwsav.data(), &lengths[2],
            rwsav.data(), &lengths[3], &ifail, static_cast<int64_t>(rname.size()), kRecord);
    return ifail;
  }

  bool untouched() const {
    return cwsav == std::string(cwsav.size(), '#') && lwsav == std::vector<int64_t>(lwsav.size(), kSentinel) &&
           iwsav == std::vector<int64_t>(iwsav.size(), kSentinel) &&
           rwsav == std::vector<double>(rwsav.size(), static_cast<double>(kSentinel));
  }

  int64_t lengths[4];
  std::string cwsav;
  std::vector<int64_t> lwsav, iwsav;
  std::vector<double> rwsav;
};

std::vector<std::string> abnormal_exit(int ifail) {
  return {" ** ABNORMAL EXIT from VEK Library routine E04WBF: IFAIL =     " + std::to_string(ifail),
          " ** VEK soft failure - control returned"};
}

// Every check, in the order made, with its records; nothing is written on a failure.
TEST(E04wbf, ChecksAndMessages) {
  struct Row {
    const char* rname;
    int64_t lc, ll, li, lr;
    int ifail;
    std::vector<std::string> records;
  };
  const std::vector<Row> rows{
      {"E04UCF", 0, 3, 61, 60, 1, {" ** On entry, LCWSAV = 0.", " ** Constraint: LCWSAV >= 1."}},
      {"E04UCF", 1, 2, 61, 60, 1, {" ** On entry, LLWSAV = 2.", " ** Constraint: LLWSAV >= 3."}},
      {"E04UCF", 1, 3, 60, 60, 1, {" ** On entry, LIWSAV = 60.", " ** Constraint: LIWSAV >= 61."}},
      {"E04UCF", 1, 3, 61, 59, 1, {" ** On entry, LRWSAV = 59.", " ** Constraint: LRWSAV >= 60."}},
      {"E04XYZ", 1, 3, -7, 0, 1, {" ** On entry, LIWSAV = -7.", " ** Constraint: LIWSAV >= 61."}},
      {"E04XYZ", 1, 3, 61, 60, 2,
       {" ** On entry, RNAME = 'E04XYZ'.", " ** RNAME is not the name of a solver with optional parameters:",
        " ** E04DGF, E04UCF."}},
      {"  E04UCF with more words", 1, 3, 61, 60, 2,
       {" ** On entry, RNAME = 'E04UCF with m...'.",
        " ** RNAME is not the name of a solver with optional parameters:", " ** E04DGF, E04UCF."}},
      {"", 1, 3, 61, 60, 2,
       {" ** On entry, RNAME = ''.", " ** RNAME is not the name of a solver with optional parameters:",
        " ** E04DGF, E04UCF."}},
  };
  for (const Row& row : rows) {
    CallerAreas areas(row.lc, row.ll, row.li, row.lr);
    EXPECT_EQ(areas.initialise(row.rname, 1), row.ifail) << row.rname;
    testing::UnitCapture capture;
    EXPECT_EQ(areas.initialise(row.rname, -1), row.ifail) << row.rname;
    std::vector<std::string> expected = row.records;
    for (const std::string& r : abnormal_exit(row.ifail)) expected.push_back(r);
    EXPECT_EQ(capture.lines(), expected) << row.rname;
    EXPECT_TRUE(areas.untouched()) << row.rname;
  }
}

// Every parameter unset with a reset pending, the header due, listing on, the advisory unit recorded, the
// solver's name in CWSAV(1); nothing beyond the lengths given is written.
TEST(E04wbf, InitialisedAreas) {
  struct Row {
    const char* rname;
    int64_t lc, ll, li, lr;
    const char* record;
  };
  for (const Row& row : {Row{"E04UCF", 1, 3, 61, 60, "E04UCF  "}, Row{"  e04dgf  ", 2, 5, 70, 64, "E04DGF  "}}) {
    CallerAreas a(row.lc, row.ll, row.li, row.lr);
    EXPECT_EQ(a.initialise(row.rname, 0), 0);
    const Areas view(a.lwsav.data(), a.iwsav.data(), a.rwsav.data());
    EXPECT_TRUE(view.first_call() && view.reset_pending() && view.listing()) << row.rname;
    int64_t advisory = 0;
    const int64_t get = 0;
    x04abf_(&get, &advisory);
    EXPECT_EQ(view.advisory_unit(), advisory);
    for (int64_t e = 1; e <= 2 * kBlockLength; ++e) {
      EXPECT_EQ(view.iwsav(e), kMarker) << e;
      EXPECT_EQ(view.rwsav(e), kRealMarker) << e;
    }
    EXPECT_EQ(a.cwsav.substr(0, kRecord), row.record);
    EXPECT_EQ(a.cwsav.substr(kRecord), std::string(a.cwsav.size() - kRecord, '#'));
    for (size_t i = kLwsavLength; i < a.lwsav.size(); ++i) EXPECT_EQ(a.lwsav[i], kSentinel);
    for (size_t i = kIwsavLength; i < a.iwsav.size(); ++i) EXPECT_EQ(a.iwsav[i], kSentinel);
    for (size_t i = kRwsavLength; i < a.rwsav.size(); ++i) EXPECT_EQ(a.rwsav[i], static_cast<double>(kSentinel));
  }
}

bool same(const SaveAreas& a, const SaveAreas& b) {
  return a.lwsav == b.lwsav && a.iwsav == b.iwsav && a.rwsav == b.rwsav;
}

// A line set through one store changes that store alone: E04UEF the E04UCF family's library-global store,
// E04DKF the E04DGF family's, and the shared machinery a caller's own E04UCF areas initialised by E04WBF.
TEST(SaveAreas, StoresNeverDisturbEachOther) {
  CallerAreas own(1, kLwsavLength, kIwsavLength, kRwsavLength);
  ASSERT_EQ(own.initialise("E04UCF", 0), 0);
  const Areas own_view(own.lwsav.data(), own.iwsav.data(), own.rwsav.data());
  initialise(e04uc::global_store());
  initialise(e04dg::global_store());

  struct Store {
    const char* name;
    std::function<void()> set;  // sets the iterations limit, IWSAV(1), to 77
    std::function<SaveAreas()> areas;
  };
  const std::vector<Store> stores{
      {"E04UCF library-global", [] { e04uef_("Major Iterations Limit 77", 25); },
       [] { return e04uc::global_store().copy(); }},
      {"E04DGF library-global", [] { e04dkf_("Iteration Limit 77", 18); },
       [] { return e04dg::global_store().copy(); }},
      {"caller-owned E04UCF",
       [&] { process_line(e04uc::family, own_view, "Major Iterations Limit 77", [](std::string_view) {}); },
       [&] { return own_view.copy(); }},
  };
  int64_t saved = 0, quiet = -1;
  const int64_t get = 0, put = 1;
  x04abf_(&get, &saved);
  x04abf_(&put, &quiet);
  for (const Store& changed : stores) {
    std::vector<SaveAreas> before;
    for (const Store& s : stores) before.push_back(s.areas());
    changed.set();
    for (size_t k = 0; k < stores.size(); ++k) {
      const SaveAreas after = stores[k].areas();
      if (&stores[k] == &changed) EXPECT_EQ(after.iwsav[0], 77) << changed.name;
      else EXPECT_TRUE(same(after, before[k])) << stores[k].name << " changed by " << changed.name;
    }
  }
  x04abf_(&put, &saved);
}

}  // namespace
}  // namespace vek::optim
