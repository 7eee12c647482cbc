#include "frame/console.h"

#include <dlfcn.h>

#include <cstdio>
#include <string>

namespace vek::console {
namespace {

using HostPrint = int (*)(const char* format, ...);

// Looked up once: the symbol in the process (a host executable or a library loaded globally), else in the
// host's MEX library if it is loaded privately.
HostPrint host_print() {
  static const HostPrint fn = [] {
    void* sym = dlsym(RTLD_DEFAULT, "mexPrintf");
    if (sym == nullptr) {
      if (void* mex = dlopen("libmex.so", RTLD_LAZY | RTLD_NOLOAD)) sym = dlsym(mex, "mexPrintf");
    }
    return reinterpret_cast<HostPrint>(sym);
  }();
  return fn;
}

}  // namespace

void write_line(std::string_view line) {
  if (HostPrint print = host_print()) {
    std::string format;
    format.reserve(line.size() + 8);
    for (char c : line) {
      if (c == '%') format += "%%";
      else format += (c == '\0' ? ' ' : c);  // a NUL would end the format early
    }
    format += '\n';
    print(format.c_str());
    return;
  }
  std::string record(line);
  record += '\n';
  std::fwrite(record.data(), 1, record.size(), stdout);
  std::fflush(stdout);
}

}  // namespace vek::console
