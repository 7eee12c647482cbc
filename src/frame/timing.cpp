#include "frame/timing.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string_view>

namespace vek::timing {
namespace {

constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool in(int64_t v, int64_t lo, int64_t hi) { return v >= lo && v <= hi; }

// Writes a field of `width` digits with leading zeros at `out`, or asterisks when it is out of range (the
// ranges have at most `width` digits); returns the position after it.
char* digits(char* out, int64_t v, int width, int64_t lo, int64_t hi) {
  const bool shown = in(v, lo, hi);
  for (int k = width - 1; k >= 0; --k, v /= 10) out[k] = shown ? static_cast<char>('0' + v % 10) : '*';
  return out + width;
}

char* put(char* out, std::string_view s) { return std::copy(s.begin(), s.end(), out); }

}  // namespace

DateTime now() {
  const auto t = std::chrono::system_clock::now();
  const std::time_t secs = std::chrono::system_clock::to_time_t(t);
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(t.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&secs, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, ms};
}

DateText format(const DateTime& t) {
  // Filled in place: the text is also written when memory has run out.
  const bool valid_date = in(t[0], 1, 9999) && in(t[1], 1, 12) && in(t[2], 1, 31);
  std::string_view day = "???";
  if (valid_date) {
    const std::chrono::year_month_day ymd{std::chrono::year(static_cast<int>(t[0])),
                                          std::chrono::month(static_cast<unsigned>(t[1])),
                                          std::chrono::day(static_cast<unsigned>(t[2]))};
    if (ymd.ok()) day = kDays[std::chrono::weekday(std::chrono::sys_days(ymd)).c_encoding()];
  }
  DateText text;
  char* out = put(text.data(), day);
  out = digits(put(out, " "), t[2], 2, 1, 31);
  out = put(put(out, " "), in(t[1], 1, 12) ? kMonths[t[1] - 1] : "???");
  out = digits(put(out, " "), t[0], 4, 0, 9999);
  out = digits(put(out, " "), t[3], 2, 0, 23);
  out = digits(put(out, ":"), t[4], 2, 0, 59);
  out = digits(put(out, ":"), t[5], 2, 0, 60);
  digits(put(out, "."), t[6], 3, 0, 999);
  return text;
}

double cpu_seconds() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

double wall_seconds() {
  const auto t = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(t).count();
}

}  // namespace vek::timing
