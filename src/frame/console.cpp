#include "frame/console.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

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

void put_line(std::FILE* file, std::string_view line) {
  char buf[1024];
  if (line.size() < sizeof buf) {
    std::memcpy(buf, line.data(), line.size());
    buf[line.size()] = '\n';
    std::fwrite(buf, 1, line.size() + 1, file);
    return;
  }
  std::fwrite(line.data(), 1, line.size(), file);
  std::fputc('\n', file);
}

void write_line(std::string_view line) {
  if (HostPrint print = host_print()) {
    // '%' doubled, as the host takes a format; sent in pieces of a fixed buffer, the newline with the last.
    char format[512];
    size_t k = 0;
    for (char c : line) {
      if (k + 3 >= sizeof format) {
        format[k] = '\0';
        print(format);
        k = 0;
      }
      if (c == '%') format[k++] = '%';
      format[k++] = c == '\0' ? ' ' : c;  // a NUL would end the format early
    }
    format[k++] = '\n';
    format[k] = '\0';
    print(format);
    return;
  }
  put_line(stdout, line);
  std::fflush(stdout);
}

}  // namespace vek::console
