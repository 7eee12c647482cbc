// Workers of the X04 unit routines: unit numbers, open, close, record write and read.
#include "frame/error_buffer.h"
#include "frame/text.h"
#include "frame/units.h"
#include "layers/x04.h"

namespace {

// The longest file name shown in an open failure: the record "** Cannot open file '...' for appending on
// channel" must fit in the 79 characters after the leading blank.
constexpr int64_t kShownNameLength = 79 - 21 - 26;

}  // namespace

extern "C" {

void x04aafn_(const int64_t* iflag, int64_t* nerr) {
  if (*iflag == 0) *nerr = vek::units::error_unit();
  else if (*iflag == 1) vek::units::set_error_unit(*nerr);
}

void x04abfn_(const int64_t* iflag, int64_t* nadv) {
  if (*iflag == 0) *nadv = vek::units::advisory_unit();
  else if (*iflag == 1) vek::units::set_advisory_unit(*nadv);
}

// Opens FILE on IOUNIT: MODE 0 reading (the file must exist), 1 writing (created or emptied), 2 appending.
// A file already open on IOUNIT is closed when the new one opens. The name's trailing blanks are ignored;
// a negative unit, an empty name or a name the system refuses fail with IFAIL 2, 3 or 4 by MODE.
void x04acfn_(const int64_t* iounit, const char* file, const int64_t* mode, char* errbuf, int64_t* ierr,
              int64_t file_len, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04ACFN")) return;
  if (*mode < 0 || *mode > 2) return err.fail(1, 99999, *mode);
  const std::string_view name = vek::text::view(file, file_len);
  if (!vek::units::open(*iounit, name, static_cast<vek::units::Mode>(*mode)))
    err.fail(2 + *mode, 99998 - *mode, vek::frame::CharValue{name, kShownNameLength}, *iounit);
}

// Closes the file on IOUNIT, writing its buffered records; IFAIL 1 when the system reports a failure.
void x04adfn_(const int64_t* iounit, char* errbuf, int64_t* ierr, int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04ADFN")) return;
  if (!vek::units::close(*iounit)) err.fail(1, 99999, *iounit);
}

void x04bafn_(const int64_t* nout, const char* rec, int64_t rec_len) {
  vek::units::write_record(*nout, vek::text::view(rec, rec_len));
}

// Reads one record into RECIN (cut to its length, padded with blanks). Unit 5 with no file open reads
// standard input; any other unit needs a file opened for reading (IFAIL 2). End of file is IFAIL 1.
void x04bbfn_(const int64_t* nin, char* recin, char* errbuf, int64_t* ierr, int64_t recin_len,
              int64_t errbuf_len) {
  vek::frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed("X04BBFN")) return;
  if (*nin < 0) return;
  std::string record;
  switch (vek::units::read_record(*nin, record)) {
    case vek::units::ReadStatus::ok:
      vek::text::assign(recin, recin_len, record);
      break;
    case vek::units::ReadStatus::end_of_file:
      err.fail(1, 99998);
      break;
    case vek::units::ReadStatus::not_readable:
      err.fail(2, 99999, *nin);
      break;
  }
}

}  // extern "C"
