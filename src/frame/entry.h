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

// Which error exit a routine's IFAIL goes through: the standard form, or the two-digit form that a few
// routines keep.
enum class ExitForm { standard, two_digit };

// The failure path: composes the records and calls the error exit; returns the new IFAIL.
int64_t report_failure(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                       std::span<const Message> table, ExitForm form);

inline int64_t finish_call(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                           std::span<const Message> table) {
  if (ierr == 0) [[likely]] return 0;
  return report_failure(ifail_on_entry, ierr, errbuf, srname, table, ExitForm::standard);
}

inline int64_t finish_call_two_digit(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                                     std::span<const Message> table) {
  if (ierr == 0) [[likely]] return 0;
  return report_failure(ifail_on_entry, ierr, errbuf, srname, table, ExitForm::two_digit);
}

// The illegal-argument report of a routine without IFAIL: its records ('\n' between them, {ROUTINE},
// {NUMBER} and {VALUE} filled in) written on the error unit.
void report_illegal(const char* records, const char* routine, int64_t number, int64_t value);

}  // namespace vek::frame
