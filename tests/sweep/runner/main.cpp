// The hostile-input sweep over every declared routine, and (with --alloc) the allocation-failure sweep.
//
//   vek_sweep [--self-test] [--long] [--alloc] [--print-known] [--only=NAME,...] [--calls=N] [--timeout=SECONDS]
//             [--known=FILE]
//
// Environment: VEK_SWEEP_LONG=1 makes every call of every routine (the default samples at most 60 per
// routine, --calls=N at most N); VEK_SWEEP_ONLY and VEK_SWEEP_TIMEOUT as the options. Exit status 1 when a
// failure is found that the known-failures list does not hold.
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "batch.h"
#include "known.h"

namespace {

struct Options {
  bool long_run = false, alloc = false, print_known = false, self_test = false;
  std::size_t calls = sweep::kSampledCalls;  // per routine, unless the long run
  std::set<std::string> only;
  int timeout = 2;
  std::string known;
};

Options read_options(int argc, char** argv) {
  Options o;
  auto only = [&](const std::string& list) {
    std::istringstream in(list);
    std::string name;
    while (std::getline(in, name, ','))
      if (!name.empty()) o.only.insert(name);
  };
  if (const char* e = getenv("VEK_SWEEP_LONG")) o.long_run = std::strcmp(e, "0") != 0 && *e;
  if (const char* e = getenv("VEK_SWEEP_ONLY")) only(e);
  if (const char* e = getenv("VEK_SWEEP_TIMEOUT")) o.timeout = std::atoi(e);
  for (int k = 1; k < argc; ++k) {
    std::string a = argv[k];
    if (a == "--long") o.long_run = true;
    else if (a == "--alloc") o.alloc = true;
    else if (a == "--print-known") o.print_known = true;
    else if (a == "--self-test") o.self_test = true;
    else if (a.rfind("--only=", 0) == 0) only(a.substr(7));
    else if (a.rfind("--calls=", 0) == 0) o.calls = std::max(1, std::atoi(a.c_str() + 8));
    else if (a.rfind("--timeout=", 0) == 0) o.timeout = std::atoi(a.c_str() + 10);
    else if (a.rfind("--known=", 0) == 0) o.known = a.substr(8);
  }
  if (o.timeout < 1) o.timeout = 1;
  return o;
}

const char* const kinds[] = {"crash", "hang", "sanitizer", "exit", "in-write", "ifail", "info", "flag", "alloc",
                             "leak", "print"};
const char* const kind_titles[] = {"crashes", "hangs", "sanitizer reports", "unexpected process stops",
                                   "writes to in arguments", "undeclared IFAIL values", "INFO faults",
                                   "flag not cleared on failure", "allocation failures not reported as -999",
                                   "leaks", "printing beyond the documented report"};

}  // namespace

int main(int argc, char** argv) {
  using namespace sweep;
  // One thread everywhere: a child forked after a thread pool started would wait for threads it does not
  // have, and the calls are tiny. The pools read these when the program starts, hence the new image.
  if (!getenv("VEK_SWEEP_SERIAL")) {
    setenv("VEK_SWEEP_SERIAL", "1", 1);
    setenv("OMP_NUM_THREADS", "1", 1);
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    // Sanitizer reports unsymbolised (module and offset): symbolising each of hundreds of reports costs a
    // second apiece. Set ASAN_OPTIONS to have them symbolised.
    setenv("ASAN_OPTIONS", "symbolize=0", 0);
    execv("/proc/self/exe", argv);
    return 2;
  }
  const Options opt = read_options(argc, argv);
  if (opt.self_test) return self_test(opt.timeout);
  const auto known = read_known_failures(opt.known);
  // The children run in a directory of their own: routines that open files by name create them there.
  char dir_template[] = "/tmp/vek_sweep_XXXXXX";
  const char* dir = mkdtemp(dir_template);
  if (!dir || chdir(dir) != 0) return 2;
  BatchOptions bopt;
  bopt.timeout_seconds = opt.timeout;
  bopt.stderr_path = std::string(dir) + "/stderr.txt";
  bopt.stdout_path = std::string(dir) + "/console.txt";
  bopt.allocation_failures = opt.alloc;
  // A leak check costs about 0.1 s per child: made by the allocation-failure sweep and the long run.
  bopt.leak_check = opt.alloc || opt.long_run;

  const auto start = std::chrono::steady_clock::now();
  std::map<std::string, int> counts, known_counts;
  std::set<std::string> new_lines;  // the new failures as lines of the known-failures list
  std::size_t routines = 0, small_only = 0, calls = 0, allocating = 0, new_failures = 0;
  for (std::size_t r = 0; r < routine_count; ++r) {
    const RoutineDesc& d = routine_table[r];
    if (!opt.only.empty() && !opt.only.count(d.name) && !opt.only.count(d.chapter)) continue;
    if (opt.alloc && has_unknown_lengths(d)) continue;  // the lengths needed to judge the arrays are missing
    const std::vector<Case> all = build_cases(d, opt.long_run ? 0 : opt.calls);
    ++routines;
    if (has_unknown_lengths(d)) ++small_only;
    // The allocation-failure sweep takes the baseline call and the first hostile one, which usually fails a
    // check, so that composing its report runs out of memory too.
    std::vector<std::vector<Case>> runs;
    if (opt.alloc)
      for (std::size_t k = 0; k < std::min<std::size_t>(2, all.size()); ++k) runs.push_back({all[k]});
    else
      runs.push_back(all);
    bool allocates = false;
    for (const std::vector<Case>& cases : runs) {
      BatchResult res = run_routine(d, cases, bopt);
      calls += res.calls_made;
      allocates = allocates || res.calls_made > 0;
      for (const Event& e : res.events) {
        const Case& c = cases[std::min(opt.alloc ? 0 : e.call, cases.size() - 1)];
        const std::string varied = opt.alloc ? "allocation" : c.varied;
        const std::string call = describe(d, c);
        const KnownFailure* k = find_known(known, d.name, e.kind, varied, call);
        if (k) {
          ++k->seen;
          ++known_counts[e.kind];
        } else {
          ++counts[e.kind];
          ++new_failures;
          new_lines.insert(std::string(d.name) + " " + e.kind + " " + varied);
        }
        std::printf("%s [%s] %s: %s\n    call: %s\n", k ? "KNOWN" : "FAIL", e.kind.c_str(), d.name,
                    e.detail.c_str(),
                    (opt.alloc ? call + " with allocation " + std::to_string(e.call) + " failing"
                               : call + "   (hostile: " + c.varied + ")").c_str());
      }
    }
    if (opt.alloc && allocates) ++allocating;
    std::fflush(stdout);
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::filesystem::remove_all(dir);

  std::printf("\n%s summary\n", opt.alloc ? "allocation-failure sweep" : "hostile-input sweep");
  if (opt.alloc)
    std::printf("  routines with declared lengths: %zu, of which allocate: %zu; failing allocations tried: %zu\n",
                routines, allocating, calls);
  else
    std::printf("  routines swept: %zu (%zu only with small sizes: array lengths not declared); calls: %zu%s\n",
                routines, small_only, calls, opt.long_run ? " (long run)" : "");
  std::printf("  time: %.1f s\n", seconds);
  for (std::size_t k = 0; k < std::size(kinds); ++k)
    std::printf("  %-42s %4d new, %4d known\n", kind_titles[k], counts[kinds[k]], known_counts[kinds[k]]);
  std::printf("  not swept: internal auxiliaries (no entry layer): %s\n", internal_routines);
  if (opt.alloc) std::printf("  not swept for allocation failures: routines whose array lengths are not declared\n");
  for (const KnownFailure& k : known)
    if (!k.seen && (opt.only.empty() || opt.only.count(k.routine)) && !opt.alloc)
      std::printf("  known failure not seen in this run (fixed, or invisible in this build?): %s %s %s\n", k.routine.c_str(),
                  k.kind.c_str(), k.varied.c_str());
  if (opt.print_known) {
    std::printf("\nthe new failures as lines of the known-failures list:\n");
    for (const std::string& line : new_lines) std::printf("%s\n", line.c_str());
  }
  std::printf("  %zu new failure%s\n", new_failures, new_failures == 1 ? "" : "s");
  return new_failures ? 1 : 0;
}
