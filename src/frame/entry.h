// What a generated IFAIL entry layer does after its worker returns: turn (IERR, error buffer) into message
// records through the routine's message table, and call the error exit.
#pragma once

#include <cstdint>
#include <span>

namespace vek::frame {

// One row of a routine's message table: the worker's pair and its records, separated by '\n', with {k}
// standing for the k-th value of the error buffer.
struct Message {
  int64_t ierr;
  int64_t msgno;
  const char* records;
};

// The failure path: composes the records and calls the error exit; returns the new IFAIL.
int64_t report_failure(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                       std::span<const Message> table);

inline int64_t finish_call(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                           std::span<const Message> table) {
  if (ierr == 0) [[likely]] return 0;
  return report_failure(ifail_on_entry, ierr, errbuf, srname, table);
}

}  // namespace vek::frame
