// Workers and bodies of the X04 unit routines: unit numbers, open, close, record write and read.
#include "frame/error_buffer.h"
#include "frame/text.h"
#include "frame/units.h"
#include "layers/x04.h"

extern "C" {

void x04aafn_(const int64_t* iflag, int64_t* nerr) {
  if (*iflag == 0) *nerr = vek::units::error_unit();
  else if (*iflag == 1) vek::units::set_error_unit(*nerr);
}

void x04abfn_(const int64_t* iflag, int64_t* nadv) {
  if (*iflag == 0) *nadv = vek::units::advisory_unit();
  else if (*iflag == 1) vek::units::set_advisory_unit(*nadv);
}

void x04bafn_(const int64_t* nout, const char* rec, int64_t rec_len) {
  vek::units::write_record(*nout, vek::text::view(rec, rec_len));
}

}  // extern "C"

namespace vek::routines {

// Opens FILE on IOUNIT: MODE 0 reading (the file must exist), 1 writing (created or emptied), 2 appending.
// A file already open on IOUNIT is closed when the new one opens. The name's trailing blanks are ignored;
// a negative unit, an empty name or a name the system refuses fail with IFAIL 2, 3 or 4 by MODE (the name
// shown cut so that the record fits a message line).
void x04acf::run(frame::ErrorBuffer& err, const int64_t* iounit, const char* file, const int64_t* mode,
                 int64_t file_len) {
  const std::string_view name = text::view(file, file_len);
  if (units::open(*iounit, name, static_cast<units::Mode>(*mode))) return;
  switch (*mode) {
    case 0: return err.fail(open_read, name, *iounit);
    case 1: return err.fail(open_write, name, *iounit);
    default: return err.fail(open_append, name, *iounit);
  }
}

// Closes the file on IOUNIT, writing its buffered records; IFAIL 1 when the system reports a failure.
void x04adf::run(frame::ErrorBuffer& err, const int64_t* iounit) {
  if (!units::close(*iounit)) err.fail(close_failed, *iounit);
}

// Reads one record into RECIN (cut to its length, padded with blanks). Unit 5 with no file open reads
// standard input; any other unit needs a file opened for reading (IFAIL 2). End of file is IFAIL 1.
void x04bbf::run(frame::ErrorBuffer& err, const int64_t* nin, char* recin, int64_t recin_len) {
  if (*nin < 0) return;
  std::string record;
  switch (units::read_record(*nin, record)) {
    case units::ReadStatus::ok: return text::assign(recin, recin_len, record);
    case units::ReadStatus::end_of_file: return err.fail(end_of_file);
    case units::ReadStatus::not_readable: return err.fail(not_readable, *nin);
  }
}

}  // namespace vek::routines
