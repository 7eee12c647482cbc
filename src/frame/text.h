// Fixed-length texts as the calling convention passes them: an address and a length, blank-padded, with no
// terminating NUL. Helpers to read them, trim them, fill them and format integers in fixed columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vek::text {

// The caller's text; a negative length is read as empty.
inline std::string_view view(const char* p, int64_t len) {
  return len > 0 && p != nullptr ? std::string_view(p, static_cast<size_t>(len)) : std::string_view();
}

// Without trailing blanks and NUL bytes.
std::string_view trim_right(std::string_view s);
// Without leading blanks, trailing blanks and trailing NUL bytes.
std::string_view trim(std::string_view s);

// Copies src into the caller's text dst(1:len), cut or padded with blanks.
void assign(char* dst, int64_t len, std::string_view src);

// An integer right-aligned in `width` columns, or `width` asterisks when it does not fit (Fortran Iw output).
std::string fixed_int(int64_t value, int width);

// An integer as its shortest decimal text.
std::string int_text(int64_t value);

// A double as the shortest text that reads back to the same value ("170.5", "1e-20", "-3", "nan", "inf").
std::string real_text(double value);

// The first character of an option argument, upper-cased; 0 for an empty text.
char option_letter(const char* p, int64_t len);

}  // namespace vek::text
