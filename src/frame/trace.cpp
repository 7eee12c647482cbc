#include "frame/trace.h"

#include <cmath>
#include <cstdio>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/y90.h"

namespace vek::trace {

std::atomic<int64_t> g_level{0};
namespace {
std::atomic<int64_t> g_nan_count{0};

constexpr int kNameColumns = 45;
constexpr size_t kTextChunk = kLineWidth - kValueColumn + 1;  // 46 characters of a text per line

std::string printable(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '|';
  }
  return out;
}

}  // namespace

void set_level(int64_t level) { g_level.store(level, std::memory_order_relaxed); }
int64_t nan_count() { return g_nan_count.load(std::memory_order_relaxed); }
void reset_nan_count() { g_nan_count.store(0, std::memory_order_relaxed); }
void count_nan() { g_nan_count.fetch_add(1, std::memory_order_relaxed); }

std::string line(std::string_view name, std::string_view value) {
  std::string out(kLineWidth, ' ');
  const std::string_view n = text::trim_right(name);
  out.replace(4, std::min(n.size(), size_t{kNameColumns}), n.substr(0, kNameColumns));
  if (n.size() > kNameColumns) out.replace(46, 3, "...");
  out.replace(49, 5, ":    ");
  out.replace(kValueColumn - 1, std::min(value.size(), kTextChunk), value.substr(0, kTextChunk));
  return out;
}

void write_text(std::string_view s) {
  units::write_record(units::error_unit(), "    " + std::string(s.substr(0, kLineWidth - 4)));
}

void write_separator() { write_text(std::string(75, '-')); }

void write_header(std::string_view wrapper_name, bool on_entry) {
  write_text("");
  write_separator();
  write_text(text::trim(wrapper_name));
  write_text(on_entry ? "On entry:" : "On exit:");
  write_separator();
}

void write_trailer(int64_t level) {
  if (level == 3) units::write_record(units::error_unit(), line("NaNs so far", integer_text(nan_count())));
}

std::string integer_text(int64_t v) { return text::fixed_int(v, 20); }
std::string logical_text(int64_t v) { return (v & 1) ? ".TRUE." : ".FALSE."; }

std::string real_text(double v) {
  if (std::isnan(v)) return "NaN";
  if (std::isinf(v)) return v > 0 ? "Infinity" : "-Infinity";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%24.16E", v);
  return buf;
}

void Record::begin(bool on_entry) const {
  output_ = units::hold_output();
  write_header(name_, on_entry);
}

void Record::end() const {
  write_trailer(level_);
  write_separator();
  if (prints()) write_text("");
  output_.unlock();
}

void Record::integer(const char* name, const int64_t* v) const {
  if (prints()) units::write_record(units::error_unit(), line(name, integer_text(*v)));
}
void Record::logical(const char* name, const int64_t* v) const {
  if (prints()) units::write_record(units::error_unit(), line(name, logical_text(*v)));
}
void Record::real(const char* name, const double* v) const {
  if (level_ == 3 && std::isnan(*v)) count_nan();
  if (prints()) units::write_record(units::error_unit(), line(name, real_text(*v)));
}
void Record::single(const char* name, const float* v) const {
  if (prints()) units::write_record(units::error_unit(), line(name, real_text(*v)));
}
void Record::complex(const char* name, const vek_complex* v) const {
  if (prints()) units::write_record(units::error_unit(), line(name, real_text(v->re) + real_text(v->im)));
}
void Record::scomplex(const char* name, const vek_scomplex* v) const {
  if (prints()) units::write_record(units::error_unit(), line(name, real_text(v->re) + real_text(v->im)));
}

void Record::text(const char* name, const char* s, int64_t len) const {
  if (!prints()) return;
  const std::string shown = printable(text::trim_right(text::view(s, len)));
  size_t at = 0;
  do {
    units::write_record(units::error_unit(), line(at == 0 ? name : "", shown.substr(at, kTextChunk)));
    at += kTextChunk;
  } while (at < shown.size());
}

void Record::address(const char* name, const void* p) const {
  if (!prints()) return;
  char buf[32];
  std::snprintf(buf, sizeof buf, "address %p", p);
  units::write_record(units::error_unit(), line(name, buf));
}

template <class T, class Show>
void Record::array(const char* name, const T* v, int64_t n, Show show) const {
  if (!prints()) return;
  const int64_t nerr = units::error_unit();
  if (n <= 0) {
    units::write_record(nerr, line(name, "(empty)"));
    return;
  }
  const int64_t shown = level_ == 1 ? std::min<int64_t>(n, kShownAtLevel1) : n;
  for (int64_t i = 0; i < shown; ++i)
    units::write_record(nerr, line(std::string(name) + "(" + text::int_text(i + 1) + ")", show(v[i])));
  if (shown < n)
    units::write_record(nerr, line(std::string(name) + "(" + text::int_text(shown + 1) + ":" + text::int_text(n) + ")",
                                   "not shown at trace level 1"));
}

void Record::integers(const char* name, const int64_t* v, int64_t n) const { array(name, v, n, integer_text); }
void Record::logicals(const char* name, const int64_t* v, int64_t n) const { array(name, v, n, logical_text); }
void Record::reals(const char* name, const double* v, int64_t n) const { array(name, v, n, real_text); }
void Record::singles(const char* name, const float* v, int64_t n) const {
  array(name, v, n, [](float x) { return real_text(x); });
}
void Record::complexes(const char* name, const vek_complex* v, int64_t n) const {
  array(name, v, n, [](const vek_complex& z) { return real_text(z.re) + real_text(z.im); });
}
void Record::scomplexes(const char* name, const vek_scomplex* v, int64_t n) const {
  array(name, v, n, [](const vek_scomplex& z) { return real_text(z.re) + real_text(z.im); });
}
void Record::texts(const char* name, const char* s, int64_t n, int64_t len) const {
  const int64_t l = std::max<int64_t>(len, 0);
  for (int64_t i = 0; i < std::max<int64_t>(n, 0); ++i)
    text((std::string(name) + "(" + text::int_text(i + 1) + ")").c_str(), s + i * l, l);
}

}  // namespace vek::trace

// The exported trace entries: level switch, setter, NaN counter, record parts and the typed dumpers. A
// dumper prints nothing above level 2 (the real dumper counts a NaN at level 3); ADDRESS true adds a line
// with the argument's address.
namespace {

void address_line(const int64_t* flag, const void* p) {
  if (flag != nullptr && (*flag & 1)) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", p);
    vek::units::write_record(vek::units::error_unit(), vek::trace::line("   Address", buf));
  }
}

using vek::trace::Record;

// A dump by an exported dumper: nothing above level 2, else the value's lines under NAME and, when asked,
// its address.
template <class Dump>
void dump_named(const char* name, int64_t name_len, int64_t level, const int64_t* address, const void* p,
                Dump dump) {
  if (level > 2) return;
  const std::string n(vek::text::view(name, name_len));
  dump(Record(nullptr, level), n.c_str());
  address_line(address, p);
}

}  // namespace

extern "C" {

void y90gczn_(const int64_t* iflag, int64_t* value) {
  if (*iflag == 0) *value = vek::trace::level();
  else vek::trace::set_level(*value);
}

void y90gcft_(const int64_t* level) {
  const int64_t set = 1;
  int64_t v = *level;
  y90gczn_(&set, &v);
}

void y90gdzn_(const int64_t* iflag, int64_t* value) {
  if (*iflag == 0) vek::trace::reset_nan_count();
  else if (*iflag == 1) *value = vek::trace::nan_count();
  else vek::trace::count_nan();
}

void y90gazn_(const char* name, const int64_t* on_entry, int64_t name_len) {
  vek::trace::write_header(vek::text::view(name, name_len), (*on_entry & 1) != 0);
}

void y90gbzn_() { vek::trace::write_separator(); }

void y90ahft_(const char* text, const int64_t* level, int64_t text_len) {
  if (*level <= 2) vek::trace::write_text(vek::text::view(text, text_len));
}

void y90gdyn_(const int64_t* level) { vek::trace::write_trailer(*level); }

void y90adft_(const char* name, const int64_t* value, const int64_t* level, const int64_t* address,
              int64_t name_len) {
  dump_named(name, name_len, *level, address, value, [&](const Record& r, const char* n) { r.integer(n, value); });
}

void y90aeft_(const char* name, const int64_t* value, const int64_t* level, const int64_t* address,
              int64_t name_len) {
  dump_named(name, name_len, *level, address, value, [&](const Record& r, const char* n) { r.logical(n, value); });
}

void y90agft_(const char* name, const double* value, const int64_t* level, const int64_t* address,
              int64_t name_len) {
  if (*level == 3 && std::isnan(*value)) vek::trace::count_nan();
  dump_named(name, name_len, *level, address, value, [&](const Record& r, const char* n) { r.real(n, value); });
}

void y90aaft_(const char* name, const char* value, const int64_t* level, const int64_t* address,
              int64_t name_len, int64_t value_len) {
  dump_named(name, name_len, *level, address, value,
             [&](const Record& r, const char* n) { r.text(n, value, value_len); });
}

void y90bgzn_(const char* name, const double* x, const int64_t* n, const int64_t* level, const int64_t* address,
              int64_t name_len) {
  dump_named(name, name_len, *level, address, x, [&](const Record& r, const char* nm) { r.reals(nm, x, *n); });
}

}  // extern "C"
