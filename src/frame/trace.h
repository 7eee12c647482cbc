// The argument trace: when the trace level is not 0, every routine's trace wrapper prints its arguments on
// entry and on exit to the error unit; level 3 prints no arguments but counts NaN reals.
//
// A trace line is 100 columns: blanks in 1-4, the name from column 5 (a name longer than 45 characters shows
// "..." in columns 47-49), ":    " in columns 50-54, the value from column 55. Values: integers right-aligned
// in 20 columns; logicals .TRUE. / .FALSE.; reals in 1PE24.16 style (17 significant digits, enough to read
// back the same double); complex values as two such reals; texts as they are, with control characters shown
// as '|' and long texts continued on further lines of 46 characters. Arrays are shown one element a line,
// "NAME(i)"; level 1 shows at most the first 10 elements of each array, level 2 all of them.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "vek.h"

namespace vek::trace {

extern std::atomic<int64_t> g_level;

inline int64_t level() { return g_level.load(std::memory_order_relaxed); }
void set_level(int64_t level);
int64_t nan_count();
void reset_nan_count();
void count_nan();

inline constexpr int kLineWidth = 100;
inline constexpr int kValueColumn = 55;
inline constexpr int kShownAtLevel1 = 10;

// One trace line: name and value laid out in the 100 columns.
std::string line(std::string_view name, std::string_view value);
// Writes a text line (4 blanks, then at most 96 characters) on the error unit.
void write_text(std::string_view text);
void write_separator();
void write_header(std::string_view wrapper_name, bool on_entry);
// The trailer: at level 3 the "NaNs so far" line, otherwise nothing.
void write_trailer(int64_t level);

// The dumps of one traced call, made by the generated wrappers. Each block, from begin to end, holds the
// output lock, so blocks and reports of other threads never come between its lines.
class Record {
 public:
  Record(const char* wrapper_name, int64_t level) : name_(wrapper_name), level_(level) {}
  void begin(bool on_entry) const;
  void end() const;

  void integer(const char* name, const int64_t* v) const;
  void logical(const char* name, const int64_t* v) const;
  void real(const char* name, const double* v) const;
  void single(const char* name, const float* v) const;
  void complex(const char* name, const vek_complex* v) const;
  void scomplex(const char* name, const vek_scomplex* v) const;
  void text(const char* name, const char* s, int64_t len) const;
  void integers(const char* name, const int64_t* v, int64_t n) const;
  void logicals(const char* name, const int64_t* v, int64_t n) const;
  void reals(const char* name, const double* v, int64_t n) const;
  void singles(const char* name, const float* v, int64_t n) const;
  void complexes(const char* name, const vek_complex* v, int64_t n) const;
  void scomplexes(const char* name, const vek_scomplex* v, int64_t n) const;
  void texts(const char* name, const char* s, int64_t n, int64_t len) const;
  void address(const char* name, const void* p) const;

 private:
  bool prints() const { return level_ <= 2; }
  template <class T, class Show>
  void array(const char* name, const T* v, int64_t n, Show show) const;

  const char* name_;
  int64_t level_;
  mutable std::unique_lock<std::recursive_mutex> output_;
};

// Value texts shared by the dumpers.
std::string integer_text(int64_t v);
std::string real_text(double v);
std::string logical_text(int64_t v);

}  // namespace vek::trace
