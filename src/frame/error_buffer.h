// The error buffer: how a worker hands a failure to its entry layer. 200 characters holding fields, each
// preceded by the byte 0x01 and the whole closed by 0x01: the IFAIL value (5 columns), the message number
// (5 columns), the count of values, then the values (integers in 20 columns, reals as their shortest exact
// text, characters as shown by show_value). The rest is blank.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

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

// Appends a text value as show_value shows it (a separator byte in it shown as a blank), followed by the
// separator.
void append_text(std::string& fields, std::string_view v, int64_t limit);

// How each kind of message value enters the buffer; a declared message lists one per value, and fail()
// accepts exactly those. A character is no integer, and a text is never a bare pointer: a Fortran text has
// no terminating NUL, so it is passed as a std::string_view of its hidden length.
template <class A>
inline constexpr bool is_character_v =
    std::is_same_v<A, char> || std::is_same_v<A, signed char> || std::is_same_v<A, unsigned char> ||
    std::is_same_v<A, wchar_t> || std::is_same_v<A, char8_t> || std::is_same_v<A, char16_t> ||
    std::is_same_v<A, char32_t>;
template <class A>
inline constexpr bool is_text_v = std::is_convertible_v<const A&, std::string_view> && !std::is_pointer_v<A>;

struct IntValue {
  template <class A>
  static constexpr bool accepts = std::is_integral_v<A> && !std::is_same_v<A, bool> && !is_character_v<A>;
  static void append(std::string& fields, int64_t v);
};
struct RealValue {
  template <class A>
  static constexpr bool accepts = std::is_floating_point_v<A>;
  static void append(std::string& fields, double v);
};
// A text shown as show_value does, cut to Limit characters.
template <int64_t Limit>
struct TextValue {
  template <class A>
  static constexpr bool accepts = is_text_v<A>;
  static void append(std::string& fields, std::string_view v) { append_text(fields, v, Limit); }
};
// The first character of an option argument.
struct LetterValue {
  template <class A>
  static constexpr bool accepts = is_text_v<A>;
  static void append(std::string& fields, std::string_view v) { append_text(fields, v.substr(0, 1), kLineLength); }
};
// A declared message: its IFAIL value and message number, and the kinds of its values in buffer order. The
// generator makes one constant per message of a routine (vek::routines::<routine>::<name>).
template <class... Values>
struct Msg {
  int64_t ifail;
  int64_t msgno;
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

  // Records the failure `m` with its values, which must match the declaration in number and kind. Writing
  // the values takes memory: without it the failure becomes an allocation failure.
  template <class... Kinds, class... Args>
    requires(sizeof...(Kinds) == sizeof...(Args) && (Kinds::template accepts<Args> && ...))
  void fail(const Msg<Kinds...>& m, const Args&... values) {
    try {
      std::string fields = header(m.ifail, m.msgno, sizeof...(Kinds));
      (Kinds::append(fields, values), ...);
      store(m.ifail, fields);
    } catch (const std::bad_alloc&) {
      fail_allocation();
    }
  }
  void fail_allocation() { *ierr_ = kAllocationFailed; }
  int64_t ierr() const { return *ierr_; }

 private:
  static std::string header(int64_t ifail, int64_t msgno, size_t count);
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
