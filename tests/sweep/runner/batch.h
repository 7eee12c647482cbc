// Runs the calls of one routine in forked children, so that a crash or a hang ends only its own call: the
// child announces each call before making it, the parent resumes after the call that did not return.
#pragma once

#include <string>
#include <vector>

#include "sweep.h"

namespace sweep {

struct Event {
  std::size_t call;     // index into the routine's calls
  std::string kind;     // crash hang sanitizer exit in-write ifail info flag leak alloc print
  std::string detail;
};

struct BatchResult {
  std::size_t calls_made = 0;
  std::vector<Event> events;
};

struct BatchOptions {
  int timeout_seconds = 2;
  std::string stderr_path;  // the children's error output (sanitizer reports), read back on a crash
  std::string stdout_path;  // the children's console, read back after each call
  bool allocation_failures = false;  // make each allocation of the first call fail in turn
  bool leak_check = false;           // LeakSanitizer over each child at its end (sanitizer build)
};

BatchResult run_routine(const RoutineDesc& d, const std::vector<Case>& calls, const BatchOptions& opt);

}  // namespace sweep
