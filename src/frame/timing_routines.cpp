// Workers of the X05 routines: the local date and time as seven integers and as text, processor time and
// monotonic wall-clock time in seconds.
#include <algorithm>

#include "frame/text.h"
#include "frame/timing.h"
#include "layers/x05.h"

extern "C" {

void x05aafn_(int64_t* itime) {
  const vek::timing::DateTime t = vek::timing::now();
  std::copy(t.begin(), t.end(), itime);
}

// CTIME receives the 28-character text, cut or blank-padded to its length.
void x05abfn_(const int64_t* itime, char* ctime, int64_t ctime_len) {
  vek::timing::DateTime t;
  std::copy(itime, itime + t.size(), t.begin());
  const vek::timing::DateText text = vek::timing::format(t);
  vek::text::assign(ctime, ctime_len, std::string_view(text.data(), text.size()));
}

double x05bafn_() { return vek::timing::cpu_seconds(); }
double x05bbfn_() { return vek::timing::wall_seconds(); }

}  // extern "C"
