#include "frame/error_exit.h"

#include <cstdlib>
#include <vector>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/p01.h"

namespace vek::frame {

void write_report(bool silent, bool hard, int64_t ierr, std::string_view srname,
                  std::span<const std::string> records) {
  if (silent) return;
  // The whole report under the output lock; a hard failure stops the process still holding it.
  const auto output = units::hold_output();
  const int64_t nerr = units::error_unit();
  for (const std::string& rec : records) units::write_record(nerr, rec);
  std::string header = " ** ABNORMAL EXIT from VEK Library routine ";
  header += srname;
  header += ": IFAIL =";
  header += text::fixed_int(ierr, 6);
  units::write_record(nerr, header.substr(0, 72));
  if (hard) {
    units::write_record(nerr, " ** VEK hard failure - execution terminated");
    units::flush_all();
    std::exit(0);
  }
  units::write_record(nerr, " ** VEK soft failure - control returned");
}

int64_t error_exit(int64_t ifail_on_entry, int64_t ierr, std::string_view srname,
                   std::span<const std::string> records) {
  if (ierr == 0) return 0;
  const bool hard = ifail_on_entry == 0;
  const bool printed = hard || ifail_on_entry == -1;
  write_report(!printed, hard, ierr, srname, records);
  return ierr;
}

int64_t error_exit_two_digit(int64_t ifail_on_entry, int64_t ierr, std::string_view srname,
                             std::span<const std::string> records) {
  if (ierr == 0) return 0;
  // |IFAIL| without overflow for the most negative value.
  const uint64_t a = ifail_on_entry < 0 ? 0 - static_cast<uint64_t>(ifail_on_entry)
                                        : static_cast<uint64_t>(ifail_on_entry);
  const bool hard = a % 10 == 0;
  const bool printed = hard || (a / 10) % 10 != 0;
  write_report(!printed, hard, ierr, srname, records);
  return ierr;
}

}  // namespace vek::frame

namespace {

std::vector<std::string> records_of(const int64_t* nrec, const char* rec, int64_t rec_len) {
  std::vector<std::string> out;
  const int64_t len = std::max<int64_t>(rec_len, 0);
  for (int64_t k = 0; k < *nrec; ++k) out.emplace_back(vek::text::view(rec + k * len, len));
  return out;
}

}  // namespace

extern "C" {

int64_t p01abzu_(const int64_t* ifail, const int64_t* ierr, const char* srname, const int64_t* nrec,
                 const char* rec, int64_t srname_len, int64_t rec_len) {
  if (*ierr == 0) return 0;
  return vek::frame::error_exit(*ifail, *ierr, vek::text::view(srname, srname_len),
                                records_of(nrec, rec, rec_len));
}

int64_t p01abyu_(const int64_t* ifail, const int64_t* ierr, const char* srname, const int64_t* nrec,
                 const char* rec, int64_t srname_len, int64_t rec_len) {
  if (*ierr == 0) return 0;
  return vek::frame::error_exit_two_digit(*ifail, *ierr, vek::text::view(srname, srname_len),
                                          records_of(nrec, rec, rec_len));
}

void p01abxu_(const int64_t* silent, const int64_t* hard, const int64_t* ierr, const char* srname,
              const int64_t* nrec, const char* rec, int64_t srname_len, int64_t rec_len) {
  vek::frame::write_report((*silent & 1) != 0, (*hard & 1) != 0, *ierr, vek::text::view(srname, srname_len),
                           records_of(nrec, rec, rec_len));
}

void p01zzwn_(const char* rec, int64_t rec_len) {
  vek::units::write_record(vek::units::error_unit(), vek::text::view(rec, rec_len));
}

}  // extern "C"
