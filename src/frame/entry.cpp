#include "frame/entry.h"

#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "frame/error_buffer.h"
#include "frame/error_exit.h"
#include "frame/licence.h"
#include "frame/text.h"
#include "frame/units.h"

// The message-coverage test's log: a test program linked with the static library defines this and is told of
// every declared message an entry reports. Weak and hidden, it is neither exported by nor needed from the
// shared library, where it stays null.
extern "C" [[gnu::weak, gnu::visibility("hidden")]] void vek_message_reported(const char* routine, int64_t ierr,
                                                                             int64_t msgno);

namespace vek::frame {
namespace {

// A message record: one blank, then the text, cut to the 80-character record.
std::string record(std::string_view text) { return (" " + std::string(text)).substr(0, kLineLength); }

// Fills one record template with the buffer's values: {k} is field k + 3, trimmed.
std::string fill(std::string_view tmpl, const ParsedBuffer& p) {
  std::string out;
  for (size_t i = 0; i < tmpl.size(); ++i) {
    if (tmpl[i] == '{' && i + 2 < tmpl.size() && tmpl[i + 1] >= '1' && tmpl[i + 1] <= '9' && tmpl[i + 2] == '}') {
      const size_t field = static_cast<size_t>(tmpl[i + 1] - '1') + 3;
      if (field < p.lines.size()) out += text::trim(p.lines[field]);
      i += 2;
    } else {
      out += tmpl[i];
    }
  }
  return out;
}

int64_t exit_with(ExitForm form, int64_t ifail_on_entry, int64_t ierr, const char* srname,
                  std::span<const std::string> records) {
  if (form == ExitForm::two_digit) return error_exit_two_digit(ifail_on_entry, ierr, srname, records);
  return error_exit(ifail_on_entry, ierr, srname, records);
}

int64_t compose_and_exit(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                         std::span<const Message> table, ExitForm form) {
  std::vector<std::string> records;
  if (ierr == kAllocationFailed) {
    records.push_back(record("** Dynamic memory allocation failed."));
  } else if (ierr == kLicenceRefused) {
    records.push_back(record(licence::kRefusedRecord));
  } else {
    const ParsedBuffer p = parse_error_buffer(text::view(errbuf, kErrbufLength));
    const Message* found = nullptr;
    if (p.status == 0) {
      for (const Message& m : table) {
        if (m.ierr == ierr && m.msgno == p.msgno) found = &m;
      }
    }
    if (found != nullptr) {
      if (vek_message_reported != nullptr) vek_message_reported(srname, ierr, found->msgno);
      std::string_view all(found->records);
      for (size_t start = 0; start <= all.size();) {
        const size_t end = std::min(all.find('\n', start), all.size());
        records.push_back(record(fill(all.substr(start, end - start), p)));
        start = end + 1;
      }
    } else {
      records.push_back(record("** Unexpected error (" + text::fixed_int(ierr, 5) + "," +
                               text::fixed_int(p.msgno, 5) + ")"));
      ierr = kUnexpectedError;
    }
  }
  return exit_with(form, ifail_on_entry, ierr, srname, records);
}

}  // namespace

int64_t report_failure(int64_t ifail_on_entry, int64_t ierr, const char* errbuf, const char* srname,
                       std::span<const Message> table, ExitForm form) {
  // Composing the records takes memory; when there is none left the failure being reported has become an
  // allocation failure, reported with its own record if that still fits, else with none.
  try {
    return compose_and_exit(ifail_on_entry, ierr, errbuf, srname, table, form);
  } catch (const std::bad_alloc&) {
  }
  try {
    const std::string records[] = {record("** Dynamic memory allocation failed.")};
    return exit_with(form, ifail_on_entry, kAllocationFailed, srname, records);
  } catch (const std::bad_alloc&) {
  }
  try {
    return exit_with(form, ifail_on_entry, kAllocationFailed, srname, {});
  } catch (const std::bad_alloc&) {
    return kAllocationFailed;
  }
}

void report_illegal(const char* records, const char* routine, int64_t number, int64_t value) {
  const int64_t nerr = units::error_unit();
  auto each_record = [records](auto&& write) {
    for (std::string_view rest(records);;) {
      const size_t end = std::min(rest.find('\n'), rest.size());
      write(rest.substr(0, end));
      if (end == rest.size()) break;
      rest.remove_prefix(end + 1);
    }
  };
  try {
    each_record([&](std::string_view text) {
      std::string line = record(text);
      for (auto [key, value_text] : {std::pair<std::string_view, std::string>{"{ROUTINE}", routine},
                                     {"{NUMBER}", text::int_text(number)}, {"{VALUE}", text::int_text(value)}}) {
        if (const size_t at = line.find(key); at != std::string::npos) line.replace(at, key.size(), value_text);
      }
      units::write_record(nerr, line);
    });
  } catch (const std::bad_alloc&) {
    // No memory for the substitutions (a routine without IFAIL cannot say -999): the records as declared.
    each_record([&](std::string_view text) { units::write_record(nerr, text); });
  }
}

}  // namespace vek::frame
