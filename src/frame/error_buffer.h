// The error buffer: how a worker hands a failure to its entry layer. 200 characters holding fields, each
// preceded by the byte 0x01 and the whole closed by 0x01: the IFAIL value (5 columns), the message number
// (5 columns), the count of values, then the values (integers in 20 columns, reals as their shortest exact
// text, characters as shown by show_value). The rest is blank.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/licence.h"

namespace vek::frame {

inline constexpr int64_t kErrbufLength = 200;
inline constexpr int kMaxLines = 12;
inline constexpr int kLineLength = 80;
inline constexpr int64_t kUnexpectedError = -99;
inline constexpr int64_t kLicenceRefused = -399;
inline constexpr int64_t kAllocationFailed = -999;

// A character value as a message shows it: without leading blanks, trailing blanks and trailing NULs; cut to
// L = min(limit, 80) characters, the last three replaced by "..." (or L dots when L <= 3). keep_leading
// leaves the leading blanks in place.
std::string show_value(std::string_view value, int64_t limit, bool keep_leading = false);

// A text value for ErrorBuffer::fail, passed through show_value.
struct CharValue {
  std::string_view text;
  int64_t limit = kLineLength;
};

// The worker's side: clears the buffer and IERR on construction; fail() records the first failure.
class ErrorBuffer {
 public:
  // Inline, with the usual length as a constant, so that a worker's success path costs a few stores.
  ErrorBuffer(char* buf, int64_t len, int64_t* ierr) : buf_(buf), len_(len), ierr_(ierr) {
    *ierr_ = 0;
    if (len_ == kErrbufLength) std::memset(buf_, ' ', kErrbufLength);
    else if (len_ > 0) std::memset(buf_, ' ', static_cast<size_t>(len_));
  }

  // The licence gate with the worker's name; on refusal IERR = -399 and false.
  bool licensed(const char* worker) {
    if (licence::granted(worker)) [[likely]] return true;
    *ierr_ = kLicenceRefused;
    return false;
  }

  template <class... Values>
  void fail(int64_t ifail, int64_t msgno, const Values&... values) {
    std::string fields = header(ifail, msgno, sizeof...(Values));
    (append(fields, values), ...);
    store(ifail, fields);
  }
  void fail_allocation() { *ierr_ = kAllocationFailed; }
  int64_t ierr() const { return *ierr_; }

 private:
  static std::string header(int64_t ifail, int64_t msgno, size_t count);
  static void append(std::string& fields, int64_t v);
  static void append(std::string& fields, int v) { append(fields, static_cast<int64_t>(v)); }
  static void append(std::string& fields, double v);
  static void append(std::string& fields, const CharValue& v);
  void store(int64_t ifail, const std::string& fields);

  char* buf_;
  int64_t len_;
  int64_t* ierr_;
};

// The parsed buffer: status 0, -1000 (malformed) or -1001 (value count disagrees with the fields).
struct ParsedBuffer {
  int64_t status = 0;
  int64_t msgno = 0;
  int nfields = 0;
  std::array<std::string, kMaxLines> lines;  // left-justified fields, at most 80 characters each
};

ParsedBuffer parse_error_buffer(std::string_view buf);

// Rewrites field 1 (new IFAIL) and/or field 2 (new message number) of a buffer; nullptr leaves a field.
void relabel_error_buffer(char* buf, int64_t len, const int64_t* new_ifail, const int64_t* new_msgno);

}  // namespace vek::frame
