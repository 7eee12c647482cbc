// Output units: the process-wide error and advisory unit numbers, the files opened on units, and the record
// writer and reader every printed line goes through.
//
// A unit number below 0 suppresses output; 0 and 6 are the host console; any other unit is the file opened on
// it, or the console when none is open for writing. Reading from unit 5 with no file open reads standard
// input.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace vek::units {

inline constexpr int64_t kConsole = 6;

int64_t error_unit();
void set_error_unit(int64_t unit);
int64_t advisory_unit();
void set_advisory_unit(int64_t unit);

enum class Mode { read = 0, write = 1, append = 2 };

// Opens `path` (trailing blanks and anything from a NUL on are ignored) on `unit`. A file already open on the
// unit is closed once the new one is open; a failed open leaves it as it was. False when the unit is
// negative, the name empty or the system refuses.
bool open(int64_t unit, std::string_view path, Mode mode);

// Closes the file on `unit`; a unit with no file is left alone. False only when the system reports an error
// (the last buffered records could not be written).
bool close(int64_t unit);

// Writes one record (trailing blanks removed, at least one character) on `unit`, newline included, in one
// write under the output lock, so records of concurrent callers never tear.
void write_record(int64_t unit, std::string_view record);

// The output lock, held while a group of records must stay together (an error report, a trace block). It is
// recursive: write_record takes it again. It lives for the whole process, so a thread stopping the process
// under it keeps every other thread's output out of the report being finished.
std::unique_lock<std::recursive_mutex> hold_output();

enum class ReadStatus { ok, end_of_file, not_readable };

// Reads the next record of `unit` without its line end.
ReadStatus read_record(int64_t unit, std::string& record);

// Flushes every open file (before the process stops).
void flush_all();

}  // namespace vek::units
