#include "batch.h"
#include "printing.h"

#include "fault_site.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <execinfo.h>

#include <cstdio>
#include <exception>
#include <cstring>
#include <fstream>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#define SWEEP_LSAN 1
#endif

namespace sweep {
namespace {

void say(int fd, const std::string& line) {
  std::string s = line;
  for (char& ch : s)
    if (ch == '\n') ch = ' ';
  s += '\n';
  if (write(fd, s.data(), s.size()) < 0) _exit(3);
}

void report(int fd, std::size_t k, const std::vector<Finding>& found) {
  for (const Finding& f : found) say(fd, "F " + std::to_string(k) + " " + f.kind + " " + f.detail);
}

bool hard_failure_mode(const RoutineDesc& d, int64_t ifail) {
  if (d.ifail == 2) return (ifail < 0 ? -ifail : ifail) % 10 == 0;
  return d.ifail == 1 && ifail == 0;
}

// A call with IFAIL 0 may stop the process after its report, which must then end with status 0: it runs in
// a child of its own.
void run_hard(const RoutineDesc& d, const Case& c, std::size_t k, int fd, int timeout) {
  pid_t pid = fork();
  if (pid == 0) {
#ifdef SWEEP_LSAN
    __lsan_disable();  // a stop leaves the workspace of the stopped call behind, as it may
#endif
    alarm(static_cast<unsigned>(timeout));
    report(fd, k, run_case(d, c));
    _exit(0);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFSIGNALED(status))
    say(fd, "F " + std::to_string(k) + (WTERMSIG(status) == SIGALRM ? " hang " : " crash ") + "signal " +
                std::to_string(WTERMSIG(status)) + " in the child of an IFAIL 0 call");
  else if (WEXITSTATUS(status) != 0)
    say(fd, "F " + std::to_string(k) + " exit the process stopped with status " + std::to_string(WEXITSTATUS(status)));
}

// The allocation-failure calls of one case: count what the call allocates, then fail each allocation in turn.
// Returns the count.
int64_t run_allocation_failures(const RoutineDesc& d, const Case& c, int fd, int timeout) {
  CallOutcome out;
  run_case(d, c);  // first use of any cached state
  run_case(d, c, 0, &out);
  const int64_t n = out.allocations;
  say(fd, "N " + std::to_string(n));
  for (int64_t at = 1; at <= n; ++at) {
    say(fd, "S " + std::to_string(at));
    alarm(static_cast<unsigned>(timeout));
    auto found = run_case(d, c, at, &out);
    alarm(0);
    if (d.ifail && out.ifail != -999)
      found.push_back({"alloc", "allocation " + std::to_string(at) + " of " + std::to_string(n) +
                                    " failed and IFAIL = " + std::to_string(out.ifail)});
    if (out.live != 0)
      found.push_back({"leak", "allocation " + std::to_string(at) + " of " + std::to_string(n) + " failed and " +
                                   std::to_string(out.live) + " blocks stayed allocated"});
    report(fd, static_cast<std::size_t>(at), found);
  }
  return n;
}

// An exception escaping an entry ends the process: say so, with the frames that let it escape.
[[noreturn]] void on_terminate() {
  static const char text[] = "sweep: an exception escaped the call (std::terminate); frames:\n";
  if (write(2, text, sizeof text - 1) < 0) _exit(4);
  void* frames[24];
  backtrace_symbols_fd(frames, backtrace(frames, 24), 2);
  std::abort();
}

[[noreturn]] void child(const RoutineDesc& d, const std::vector<Case>& calls, std::size_t from, int fd,
                        const BatchOptions& opt) {
  int null_fd = open("/dev/null", O_RDWR);
  dup2(null_fd, 0);
  // The console is a file, so that what each call prints can be read back (printing.h).
  int console = open(opt.stdout_path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
  dup2(console >= 0 ? console : null_fd, 1);
  int err = open(opt.stderr_path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  if (err >= 0) dup2(err, 2);
  std::set_terminate(on_terminate);
#ifndef SWEEP_LSAN
  locate_faults();
#endif
  [[maybe_unused]] bool leak_check = opt.leak_check;
  if (opt.allocation_failures) {
    // A call that allocates nothing has no failure path to leak from: its LeakSanitizer pass (about 0.1 s)
    // is saved.
    leak_check = run_allocation_failures(d, calls[0], fd, opt.timeout_seconds) > 0 && leak_check;
  } else {
    for (std::size_t k = from; k < calls.size(); ++k) {
      say(fd, "S " + std::to_string(k));
      if (hard_failure_mode(d, calls[k].ifail)) {
        run_hard(d, calls[k], k, fd, opt.timeout_seconds);
        continue;
      }
      const off_t console_from = console_position();
      alarm(static_cast<unsigned>(opt.timeout_seconds));
      auto found = run_case(d, calls[k]);
      alarm(0);
      if (auto printed = unexpected_printing(d, calls[k].ifail, console_from)) found.push_back(*printed);
      report(fd, k, found);
    }
  }
#ifdef SWEEP_LSAN
  if (leak_check && __lsan_do_recoverable_leak_check()) say(fd, "F " + std::to_string(calls.size()) + " leak LeakSanitizer report");
#endif
  say(fd, "D");
  _exit(0);
}

std::string new_error_output(const std::string& path, std::streamoff& offset) {
  std::ifstream in(path, std::ios::binary);
  in.seekg(offset);
  std::stringstream s;
  s << in.rdbuf();
  std::string text = s.str();
  offset += static_cast<std::streamoff>(text.size());
  return text;
}

// The lines of a sanitizer report worth showing: its headline and the first frames.
std::string sanitizer_excerpt(const std::string& text) {
  std::istringstream in(text);
  std::string line, out;
  int kept = 0;
  bool inside = false;
  while (std::getline(in, line) && kept < 12) {
    if (line.find("Sanitizer") != std::string::npos || line.find("runtime error") != std::string::npos) inside = true;
    if (inside && !line.empty()) {
      out += "\n      " + line;
      ++kept;
    }
  }
  return out;
}

}  // namespace

BatchResult run_routine(const RoutineDesc& d, const std::vector<Case>& calls, const BatchOptions& opt) {
  BatchResult result;
  std::streamoff err_offset = 0;
  {
    std::ofstream truncate(opt.stderr_path, std::ios::trunc);
  }
  std::size_t next = 0, total = opt.allocation_failures ? 0 : calls.size();
  bool done = false;
  while (!done) {
    int fds[2];
    if (pipe(fds) != 0) std::abort();
    std::fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
      close(fds[0]);
      child(d, calls, next, fds[1], opt);
    }
    close(fds[1]);
    FILE* in = fdopen(fds[0], "r");
    char* line = nullptr;
    std::size_t cap = 0;
    long long current = -1;
    bool finished = false;
    while (getline(&line, &cap, in) > 0) {
      std::string s(line);
      if (!s.empty() && s.back() == '\n') s.pop_back();
      if (s == "D") {
        finished = true;
      } else if (s.rfind("S ", 0) == 0) {
        current = std::stoll(s.substr(2));
        ++result.calls_made;
      } else if (s.rfind("N ", 0) == 0) {
        total = static_cast<std::size_t>(std::stoll(s.substr(2)));
      } else if (s.rfind("F ", 0) == 0) {
        std::istringstream w(s.substr(2));
        Event e;
        w >> e.call >> e.kind;
        std::getline(w >> std::ws, e.detail);
        if (e.kind == "leak" || e.kind == "exit" || e.kind == "crash" || e.kind == "hang") {
          std::string err = new_error_output(opt.stderr_path, err_offset);
          if (err.find("Sanitizer") != std::string::npos || err.find("runtime error") != std::string::npos) {
            if (e.kind != "leak") e.kind = "sanitizer";
            e.detail += sanitizer_excerpt(err);
          }
        }
        result.events.push_back(e);
      }
    }
    free(line);
    fclose(in);
    int status = 0;
    waitpid(pid, &status, 0);
    if (finished) break;
    // The child ended inside call `current`.
    Event e{static_cast<std::size_t>(current < 0 ? 0 : current), "crash", ""};
    if (WIFSIGNALED(status)) {
      e.kind = WTERMSIG(status) == SIGALRM ? "hang" : "crash";
      e.detail = WTERMSIG(status) == SIGALRM ? "no return within " + std::to_string(opt.timeout_seconds) + " s"
                                             : std::string("signal ") + strsignal(WTERMSIG(status));
    } else {
      e.kind = "exit";
      e.detail = "the process stopped with status " + std::to_string(WEXITSTATUS(status)) + " during the call";
    }
    std::string err = new_error_output(opt.stderr_path, err_offset);
    if (err.find("Sanitizer") != std::string::npos || err.find("runtime error") != std::string::npos) {
      e.kind = "sanitizer";
      e.detail += sanitizer_excerpt(err);
    } else if (auto at = err.find("sweep: an exception"); at != std::string::npos) {
      e.detail += "\n      " + err.substr(at, 1200);
    } else if (auto fault = err.find("sweep: fault"); fault != std::string::npos) {
      e.detail += ", " + err.substr(fault + 13, err.find('\n', fault) - fault - 13);
    }
    result.events.push_back(e);
    next = static_cast<std::size_t>(current + 1);
    if (current < 0 || opt.allocation_failures || next >= total) done = true;
  }
  return result;
}

}  // namespace sweep
