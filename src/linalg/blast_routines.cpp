// Workers of chapter F16 (BLAS technical-forum operations). Arguments are checked in order; the first illegal
// one is reported on the error unit in the chapter's two records and the routine returns without touching
// its outputs. Vectors follow the BLAS stride rule: element i (0-based) of X is X(1 + i*INCX) for INCX > 0
// and X(1 + (N-1-i)*|INCX|) for INCX < 0; a zero increment is illegal. Sums run in element order.
#include <cstdint>
#include <string>

#include "frame/text.h"
#include "frame/units.h"
#include "layers/f16.h"

namespace {

// " ** On entry to NAME, parameter number K" / " ** had the illegal value of V".
void report(const char* name, int64_t number, int64_t value) {
  const int64_t nerr = vek::units::error_unit();
  vek::units::write_record(nerr, std::string(" ** On entry to ") + name + ", parameter number " +
                                     vek::text::int_text(number));
  vek::units::write_record(nerr, " ** had the illegal value of " + vek::text::int_text(value));
}

// The first illegal of N (at position pos_n) and the increments (at their positions), reported; false then.
bool valid(const char* name, int64_t n, int64_t pos_n, std::initializer_list<std::pair<int64_t, int64_t>> incs) {
  if (n < 0) {
    report(name, pos_n, n);
    return false;
  }
  for (const auto& [inc, pos] : incs) {
    if (inc == 0) {
      report(name, pos, inc);
      return false;
    }
  }
  return true;
}

// Offset of element i of a strided vector of n elements.
inline int64_t at(int64_t i, int64_t n, int64_t inc) { return inc > 0 ? i * inc : (n - 1 - i) * -inc; }

}  // namespace

extern "C" {

void f16eafn_(const int64_t* /*conj*/, const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
              const double* beta, const double* y, const int64_t* incy, double* r) {
  if (!valid("F16EAF", *n, 2, {{*incx, 5}, {*incy, 8}})) return;
  double dot = 0.0;
  for (int64_t i = 0; i < *n; ++i) dot += x[at(i, *n, *incx)] * y[at(i, *n, *incy)];
  *r = *beta * *r + *alpha * dot;
}

void f16ecfn_(const int64_t* n, const double* alpha, const double* x, const int64_t* incx, const double* beta,
              double* y, const int64_t* incy) {
  if (!valid("F16ECF", *n, 1, {{*incx, 4}, {*incy, 7}})) return;
  for (int64_t i = 0; i < *n; ++i) {
    double& yi = y[at(i, *n, *incy)];
    yi = *alpha * x[at(i, *n, *incx)] + *beta * yi;
  }
}

void f16ehfn_(const int64_t* n, const double* alpha, const double* x, const int64_t* incx, const double* beta,
              const double* y, const int64_t* incy, double* w, const int64_t* incw) {
  if (!valid("F16EHF", *n, 1, {{*incx, 4}, {*incy, 7}, {*incw, 9}})) return;
  for (int64_t i = 0; i < *n; ++i)
    w[at(i, *n, *incw)] = *alpha * x[at(i, *n, *incx)] + *beta * y[at(i, *n, *incy)];
}

}  // extern "C"
