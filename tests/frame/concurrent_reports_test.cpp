// Reports and trace blocks of several threads failing at once: the output, read back, must be a sequence of
// whole reports and whole trace blocks, each exactly as one thread alone prints it, with one report per
// failing call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "frame/trace.h"
#include "frame/units.h"
#include "support/capture.h"
#include "vek.h"

namespace {

using Lines = std::vector<std::string>;
using vek::testing::console_lines;
using vek::testing::file_lines;

constexpr int kThreads = 8;
constexpr int64_t kUnit = 47;

// One failing call with IFAIL = -1 (soft, printed), each kind a different routine or message.
struct FailingCall {
  const char* name;
  std::function<void()> run;
};

std::vector<FailingCall> failing_calls() {
  auto soft = [](auto call) {
    return [call] {
      int64_t ifail = -1;
      call(ifail);
      if (ifail == 0) ADD_FAILURE() << "the call did not fail";
    };
  };
  return {
      {"s14aaf pole", soft([](int64_t& ifail) { const double x = -3.0; s14aaf_(&x, &ifail); })},
      {"s14aaf overflow", soft([](int64_t& ifail) { const double x = 200.0; s14aaf_(&x, &ifail); })},
      {"s14aef order", soft([](int64_t& ifail) {
         const double x = 1.5;
         const int64_t n = 60;
         s14aef_(&x, &n, &ifail);
       })},
      {"s14baf negative x", soft([](int64_t& ifail) {
         const double a = 1.0, x = -1.0;
         double p = 0.0, q = 0.0;
         s14baf_(&a, &x, &p, &q, &ifail);
       })},
      {"x06aaf count", soft([](int64_t& ifail) {
         const int64_t num = 0;
         x06aaf_(&num, &ifail);
       })},
  };
}

// What a call prints when it runs alone, cut into its atoms: the trace blocks (from the blank line that opens
// a header to the blank line that closes the block) and the report (the trailing records, all beginning
// " ** ").
struct Atoms {
  std::vector<Lines> trace_blocks;
  Lines report;
};

Atoms atoms_of(const Lines& alone) {
  Atoms atoms;
  size_t report_start = alone.size();
  while (report_start > 0 && alone[report_start - 1].rfind(" ** ", 0) == 0) --report_start;
  atoms.report.assign(alone.begin() + static_cast<std::ptrdiff_t>(report_start), alone.end());
  size_t block_start = 0;
  for (size_t i = 1; i < report_start; ++i) {
    if (alone[i] == "    On exit:") {
      atoms.trace_blocks.emplace_back(alone.begin() + static_cast<std::ptrdiff_t>(block_start),
                                      alone.begin() + static_cast<std::ptrdiff_t>(i - 3));
      block_start = i - 3;
    }
  }
  if (report_start > 0) {
    atoms.trace_blocks.emplace_back(alone.begin() + static_cast<std::ptrdiff_t>(block_start),
                                    alone.begin() + static_cast<std::ptrdiff_t>(report_start));
  }
  return atoms;
}

bool matches_at(const Lines& lines, size_t at, const Lines& atom) {
  if (atom.empty() || at + atom.size() > lines.size()) return false;
  for (size_t k = 0; k < atom.size(); ++k) {
    if (lines[at + k] != atom[k]) return false;
  }
  return true;
}

// Reads `lines` as a sequence of atoms, the longest that fits at each point; counts the reports and trace
// blocks of each kind. A line belonging to no whole atom fails the test.
void expect_whole_atoms(const Lines& lines, const std::vector<Atoms>& kinds, int64_t calls_per_kind,
                        bool traced) {
  std::vector<int64_t> reports(kinds.size(), 0), blocks(kinds.size(), 0);
  size_t at = 0;
  while (at < lines.size()) {
    size_t best_len = 0, best_kind = 0;
    bool best_is_report = false;
    for (size_t k = 0; k < kinds.size(); ++k) {
      if (matches_at(lines, at, kinds[k].report) && kinds[k].report.size() > best_len) {
        best_len = kinds[k].report.size();
        best_kind = k;
        best_is_report = true;
      }
      for (const Lines& block : kinds[k].trace_blocks) {
        if (matches_at(lines, at, block) && block.size() > best_len) {
          best_len = block.size();
          best_kind = k;
          best_is_report = false;
        }
      }
    }
    if (best_len == 0) {
      std::string context;
      for (size_t k = at; k < std::min(lines.size(), at + 12); ++k) context += "\n  |" + lines[k] + "|";
      FAIL() << "line " << at + 1 << " is not the start of a whole report or trace block:" << context;
    }
    (best_is_report ? reports : blocks)[best_kind] += 1;
    at += best_len;
  }
  for (size_t k = 0; k < kinds.size(); ++k) {
    EXPECT_EQ(reports[k], calls_per_kind) << "reports of kind " << k;
    EXPECT_EQ(blocks[k], traced ? 2 * calls_per_kind : 0) << "trace blocks of kind " << k;
  }
}

// Each thread makes `per_thread` calls, cycling through the kinds from its own starting point, so that every
// kind is called per_thread * kThreads / kinds times in all.
void run_threads(const std::vector<FailingCall>& calls, int per_thread) {
  std::vector<std::thread> team;
  for (int t = 0; t < kThreads; ++t) {
    team.emplace_back([&, t] {
      for (int i = 0; i < per_thread; ++i) calls[static_cast<size_t>(t + i) % calls.size()].run();
    });
  }
  for (std::thread& th : team) th.join();
}

std::vector<Atoms> alone_atoms(const std::vector<FailingCall>& calls) {
  std::vector<Atoms> kinds;
  for (const FailingCall& c : calls) kinds.push_back(atoms_of(console_lines(c.run)));
  return kinds;
}

class TraceLevel {
 public:
  explicit TraceLevel(int64_t level) { vek::trace::set_level(level); }
  ~TraceLevel() { vek::trace::set_level(0); }
};

TEST(ConcurrentReports, ConsoleRecordsAndReportsStayWhole) {
  const auto calls = failing_calls();
  const std::vector<Atoms> kinds = alone_atoms(calls);
  for (const Atoms& a : kinds) ASSERT_GE(a.report.size(), 3U);
  const int per_thread = 1500;
  const Lines lines = console_lines([&] { run_threads(calls, per_thread); });
  expect_whole_atoms(lines, kinds, per_thread * kThreads / static_cast<int64_t>(calls.size()), false);
}

TEST(ConcurrentReports, ReportsOnAFileUnitStayWhole) {
  const auto calls = failing_calls();
  const std::vector<Atoms> kinds = alone_atoms(calls);
  const std::string path = ::testing::TempDir() + "vek_concurrent_reports.txt";
  ASSERT_TRUE(vek::units::open(kUnit, path, vek::units::Mode::write));
  const int64_t saved = vek::units::error_unit();
  vek::units::set_error_unit(kUnit);
  const int per_thread = 1500;
  run_threads(calls, per_thread);
  vek::units::set_error_unit(saved);
  ASSERT_TRUE(vek::units::close(kUnit));
  expect_whole_atoms(file_lines(path), kinds, per_thread * kThreads / static_cast<int64_t>(calls.size()), false);
  std::remove(path.c_str());
}

TEST(ConcurrentReports, TraceBlocksAndReportsStayWhole) {
  const auto calls = failing_calls();
  TraceLevel traced(2);
  const std::vector<Atoms> kinds = alone_atoms(calls);
  for (const Atoms& a : kinds) ASSERT_EQ(a.trace_blocks.size(), 2U);
  const int per_thread = 250;
  const Lines lines = console_lines([&] { run_threads(calls, per_thread); });
  expect_whole_atoms(lines, kinds, per_thread * kThreads / static_cast<int64_t>(calls.size()), true);
}

// A hard failure (IFAIL = 0) while seven threads keep printing soft reports to the same file: the process
// stops with status 0, and the file ends with the hard failure's whole report, its records together.
TEST(ConcurrentReportsDeathTest, HardFailurePrintsWholeReportWhileOthersPrint) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::string path = ::testing::TempDir() + "vek_concurrent_hard.txt";
  const auto calls = failing_calls();
  EXPECT_EXIT(
      {
        vek::units::open(kUnit, path, vek::units::Mode::write);
        vek::units::set_error_unit(kUnit);
        std::vector<std::thread> team;
        for (int t = 1; t < kThreads; ++t) {
          team.emplace_back([&, t] {
            for (int i = 0;; ++i) calls[static_cast<size_t>(t + i) % calls.size()].run();
          });
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        int64_t ifail = 0;
        const double x = -3.0;
        s14aaf_(&x, &ifail);
      },
      ::testing::ExitedWithCode(0), "");
  const Lines lines = file_lines(path);
  const Lines hard_report = {" ** On entry, X = -3.", " ** Constraint: X must not be a negative integer.",
                             " ** ABNORMAL EXIT from VEK Library routine S14AAF: IFAIL =     4",
                             " ** VEK hard failure - execution terminated"};
  ASSERT_GE(lines.size(), hard_report.size());
  const Lines tail(lines.end() - static_cast<std::ptrdiff_t>(hard_report.size()), lines.end());
  EXPECT_EQ(tail, hard_report);
  std::remove(path.c_str());
}

}  // namespace
