#include "fault_site.h"

#include <signal.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace sweep {
namespace {

struct Site {
  const char* name;
  std::uintptr_t begin, end;
};

// A signal handler may read only what is plainly in memory: a fixed table.
Site sites[72];
int site_count = 0;

void on_fault(int, siginfo_t* info, void*) {
  const auto at = reinterpret_cast<std::uintptr_t>(info->si_addr);
  // The nearest array ending at or below the address: the guard page right after it.
  const Site* hit = nullptr;
  for (int k = 0; k < site_count; ++k)
    if (sites[k].end <= at && (!hit || sites[k].end > hit->end)) hit = &sites[k];
  char line[200];
  int n;
  if (hit && at - hit->end < 4096)
    n = std::snprintf(line, sizeof line, "sweep: fault %lu bytes past the end of %s (%lu bytes)\n",
                      static_cast<unsigned long>(at - hit->end), hit->name,
                      static_cast<unsigned long>(hit->end - hit->begin));
  else
    n = std::snprintf(line, sizeof line, "sweep: fault at %#lx, beside no argument\n", static_cast<unsigned long>(at));
  if (n > 0 && write(2, line, static_cast<std::size_t>(n)) < 0) _exit(5);
  // SA_RESETHAND: the faulting access runs again and ends the process as it would have
}

}  // namespace

void forget_arrays() { site_count = 0; }

void note_array(const char* name, const void* data, std::size_t bytes) {
  if (site_count == static_cast<int>(std::size(sites))) return;
  const auto p = reinterpret_cast<std::uintptr_t>(data);
  sites[site_count++] = {name, p, p + bytes};
}

void locate_faults() {
  struct sigaction sa;
  std::memset(&sa, 0, sizeof sa);
  sa.sa_sigaction = on_fault;
  sa.sa_flags = SA_SIGINFO | SA_RESETHAND;
  sigaction(SIGSEGV, &sa, nullptr);
}

}  // namespace sweep
