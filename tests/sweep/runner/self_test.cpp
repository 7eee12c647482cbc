// The sweep's own check: routines with planted faults must each be caught as the fault they commit, and a
// correct one must pass, so that a clean sweep means something.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "batch.h"

namespace sweep {
namespace {

Len length_n(const Len* s) { return lmax(s[0], Len(0)); }

const ArgDesc args[] = {
    {"N", 'i', 'I', scalar, nullptr, "", 3, 3.0, "", ""},
    {"X", 'b', 'R', known_length, length_n, "max(N,0)", 0, 0.0, "", ""},
    {"Y", 'i', 'R', known_length, length_n, "max(N,0)", 0, 0.0, "", ""},
};
const int64_t ifails[] = {1};

int64_t n_of(Call& c) { return *static_cast<int64_t*>(c.p[0]); }
double* x_of(Call& c) { return static_cast<double*>(c.p[1]); }

void correct(Call& c) {
  for (int64_t i = 0; i < n_of(c); ++i) x_of(c)[i] = 2 * static_cast<const double*>(c.p[2])[i];
  *c.ifail = n_of(c) < 0 ? 1 : 0;
}
void writes_past_end(Call& c) {
  if (n_of(c) >= 0) x_of(c)[n_of(c)] = 1;  // one element too far
  *c.ifail = 0;
}
void writes_in_argument(Call& c) {
  if (n_of(c) > 0) static_cast<double*>(c.p[2])[0] = 0;
  *c.ifail = 0;
}
void undeclared_ifail(Call& c) { *c.ifail = n_of(c) < 0 ? 7 : 0; }
// Prints a record that is no error report, whatever IFAIL asks.
void prints(Call& c) {
  std::printf(" progress: N = %lld\n", static_cast<long long>(n_of(c)));
  *c.ifail = 0;
}
void hangs(Call& c) {
  if (n_of(c) == 0)
    for (;;) pause();
  *c.ifail = 0;
}

RoutineDesc fake(const char* name, void (*call)(Call&)) {
  return {name, "self", "", 1, 'V', args, 3, ifails, 1, -1, call, "", 0};
}

struct Planted {
  RoutineDesc d;
  const char* expected;  // the kind of failure the sweep must report; "" none
};

}  // namespace

int self_test(int timeout) {
  const Planted planted[] = {
      {fake("correct", correct), ""},
      {fake("writes_past_end", writes_past_end), "crash|sanitizer"},
      {fake("writes_in_argument", writes_in_argument), "in-write"},
      {fake("undeclared_ifail", undeclared_ifail), "ifail"},
      {fake("hangs", hangs), "hang"},
      {fake("prints", prints), "print"},
  };
  char dir_template[] = "/tmp/vek_sweep_self_XXXXXX";
  const char* dir = mkdtemp(dir_template);
  if (!dir) return 2;
  BatchOptions opt;
  opt.timeout_seconds = timeout;
  opt.stderr_path = std::string(dir) + "/stderr.txt";
  opt.stdout_path = std::string(dir) + "/console.txt";
  int wrong = 0;
  for (const Planted& p : planted) {
    const BatchResult r = run_routine(p.d, build_cases(p.d, sweep::kSampledCalls), opt);
    std::string kinds;
    for (const Event& e : r.events)
      if (kinds.find(e.kind) == std::string::npos) kinds += (kinds.empty() ? "" : ",") + e.kind;
    const std::string expected = p.expected;
    bool ok = expected.empty() ? kinds.empty() : false;
    for (std::size_t at = 0; !expected.empty() && at != std::string::npos;) {
      const std::size_t bar = expected.find('|', at);
      if (kinds == expected.substr(at, bar == std::string::npos ? bar : bar - at)) ok = true;
      at = bar == std::string::npos ? bar : bar + 1;
    }
    std::printf("%s %-20s expected [%s], found [%s] in %zu calls\n", ok ? "ok  " : "WRONG", p.d.name, p.expected,
                kinds.c_str(), r.calls_made);
    wrong += !ok;
  }
  unlink(opt.stderr_path.c_str());
  unlink(opt.stdout_path.c_str());
  rmdir(dir);
  return wrong ? 1 : 0;
}

}  // namespace sweep
