#include "frame/error_buffer.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "frame/text.h"
#include "layers/p01.h"

namespace vek::frame {
namespace {

constexpr char kSep = '\x01';

// A free-form integer read of a whole field: optional sign, digits, nothing else but blanks.
bool read_int(std::string_view s, int64_t& out) {
  s = text::trim(s);
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty()) return false;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && end == s.data() + s.size();
}

}  // namespace

std::string show_value(std::string_view value, int64_t limit, bool keep_leading) {
  const std::string_view t = keep_leading ? text::trim_right(value) : text::trim(value);
  const int64_t l = std::min<int64_t>(limit, kLineLength);
  if (static_cast<int64_t>(t.size()) <= l) return std::string(t);
  if (l <= 0) return std::string();
  if (l <= 3) return std::string(static_cast<size_t>(l), '.');
  return std::string(t.substr(0, static_cast<size_t>(l - 3))) + "...";
}

std::string ErrorBuffer::header(int64_t ifail, int64_t msgno, size_t count) {
  std::string s;
  s += kSep;
  s += text::fixed_int(ifail, 5);
  s += kSep;
  s += text::fixed_int(msgno, 5);
  s += kSep;
  s += text::int_text(static_cast<int64_t>(count));
  s += kSep;
  return s;
}

void IntValue::append(std::string& fields, int64_t v) { fields += text::fixed_int(v, 20) + kSep; }
void RealValue::append(std::string& fields, double v) { fields += text::real_text(v) + kSep; }
// A separator byte inside a character value would split its field and turn the report into an unexpected
// error; it is shown as a blank.
void append_text(std::string& fields, std::string_view v, int64_t limit) {
  std::string shown = show_value(v, limit);
  std::replace(shown.begin(), shown.end(), kSep, ' ');
  fields += shown + kSep;
}

void ErrorBuffer::store(int64_t ifail, const std::string& fields) {
  *ierr_ = ifail;
  text::assign(buf_, len_, fields);
}

ParsedBuffer parse_error_buffer(std::string_view buf) {
  ParsedBuffer p;
  for (auto& line : p.lines) line.assign(kLineLength, ' ');
  if (buf.empty() || buf[0] != kSep) {
    p.status = -1000;
    return p;
  }
  size_t n = buf.size();
  while (n > 1 && (buf[n - 1] == ' ' || buf[n - 1] == '\0')) --n;
  if (n <= 1 || buf[n - 1] != kSep) {
    p.status = -1000;
    return p;
  }
  // Fields lie between successive separators of buf[0..n).
  size_t start = 1;
  while (start < n && p.nfields < kMaxLines) {
    const size_t end = buf.find(kSep, start);
    std::string_view field = buf.substr(start, end - start);
    field = text::trim(field);
    std::string& line = p.lines[static_cast<size_t>(p.nfields)];
    text::assign(line.data(), kLineLength, field);
    ++p.nfields;
    start = end + 1;
  }
  int64_t ifail = 0, count = 0;
  if (!read_int(p.lines[0], ifail) || p.nfields < 2 || !read_int(p.lines[1], p.msgno) || p.nfields < 3 ||
      !read_int(p.lines[2], count)) {
    p.status = -1000;
    return p;
  }
  if (p.nfields != count + 3) p.status = -1001;
  return p;
}

void relabel_error_buffer(char* buf, int64_t len, const int64_t* new_ifail, const int64_t* new_msgno) {
  if (new_ifail == nullptr && new_msgno == nullptr) return;
  ParsedBuffer p = parse_error_buffer(text::view(buf, len));
  if (new_ifail) text::assign(p.lines[0].data(), kLineLength, text::int_text(*new_ifail));
  if (new_msgno) text::assign(p.lines[1].data(), kLineLength, text::int_text(*new_msgno));
  std::string packed;
  for (const std::string& line : p.lines) {
    const std::string_view t = text::trim(line);
    if (t.empty()) continue;
    packed += kSep;
    packed += t;
  }
  packed += kSep;
  text::assign(buf, len, packed);
}

}  // namespace vek::frame

extern "C" {

void p01abtn_(const char* errbuf, int64_t* msgno, char* lines, int64_t* status, int64_t errbuf_len,
              int64_t lines_len) {
  const vek::frame::ParsedBuffer p = vek::frame::parse_error_buffer(vek::text::view(errbuf, errbuf_len));
  *status = p.status;
  *msgno = p.msgno;
  for (int k = 0; k < vek::frame::kMaxLines; ++k)
    vek::text::assign(lines + k * std::max<int64_t>(lines_len, 0), lines_len, p.lines[static_cast<size_t>(k)]);
}

void p01absn_(char* errbuf, const int64_t* ifail, const int64_t* msgno, int64_t errbuf_len) {
  vek::frame::relabel_error_buffer(errbuf, errbuf_len, ifail, msgno);
}

void p01abun_(char* result, int64_t result_len, const char* value, const int64_t* limit, const int64_t* flag,
              int64_t value_len) {
  // FLAG = 0 shows the value as messages do; any other FLAG keeps its leading blanks.
  vek::text::assign(result, result_len,
                    vek::frame::show_value(vek::text::view(value, value_len), *limit, *flag != 0));
}

}  // extern "C"
