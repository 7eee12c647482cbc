// Every test program linked with the static library logs the declared messages its calls report through the
// exported entries: one line "ROUTINE IFAIL MSGNO" appended to a file of its own process in the build's
// message log folder (VEK_MESSAGE_LOG_DIR). The message-coverage test compares their union with the declared
// pairs. Each line is appended and the file closed at once, so that a program stopped by a hard failure keeps
// what it logged; without the folder (a program run outside CTest) nothing is written.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

extern "C" void vek_message_reported(const char* routine, int64_t ierr, int64_t msgno) {
  const std::string path = std::string(VEK_MESSAGE_LOG_DIR) + "/" + std::to_string(getpid()) + ".log";
  if (std::FILE* f = std::fopen(path.c_str(), "a")) {
    std::fprintf(f, "%s %lld %lld\n", routine, static_cast<long long>(ierr), static_cast<long long>(msgno));
    std::fclose(f);
  }
}
