// Workers of the X07 routines. Each first asks whether the arithmetic has the feature it needs and has a
// fixed answer when it has not (never taken on an IEEE platform, but part of the contract): the finiteness
// test answers false, the NaN test true (all bits set, where its single twin answers false), the creators
// give the largest finite double.
#include <cmath>
#include <limits>

#include "frame/constants.h"
#include "frame/ieee.h"
#include "layers/x07.h"
#include "vek.h"

namespace {

using Double = std::numeric_limits<double>;
using Single = std::numeric_limits<float>;
constexpr int64_t kTrue = 1;
constexpr int64_t kAllBits = -1;

}  // namespace

extern "C" {

int64_t x07aafn_(const double* x) {
  if constexpr (!Double::is_iec559) return 0;
  return std::isfinite(*x) ? kTrue : 0;
}

int64_t x07abfn_(const double* x) {
  if constexpr (!Double::has_quiet_NaN) return kAllBits;
  return std::isnan(*x) ? kTrue : 0;
}

void x07bafn_(const int64_t* isign, double* x) {
  double v = vek::constants::max_real();
  if constexpr (Double::is_iec559 && Double::has_infinity) v = Double::infinity();
  *x = *isign >= 0 ? v : -v;
}

// QUIET is compared as a whole word with 1: a true value in another representation (all bits set, 3 ...)
// asks for a signalling NaN.
void x07bbfn_(const int64_t* quiet, double* x) {
  if constexpr (!Double::is_iec559 || !Double::has_quiet_NaN) {
    *x = vek::constants::max_real();
    return;
  }
  *x = *quiet == 1 ? vek::ieee::quiet_nan() : vek::ieee::signalling_nan();
}

void x07cafn_(int64_t* exceptionmode) {
  const vek::ieee::TrapState on = vek::ieee::enabled_traps();
  exceptionmode[0] = on.overflow ? 1 : 0;
  exceptionmode[1] = on.divide_by_zero ? 1 : 0;
  exceptionmode[2] = on.invalid ? 1 : 0;
}

void x07cbfn_(const int64_t* exceptionmode) {
  vek::ieee::set_traps({exceptionmode[0] != 0, exceptionmode[1] != 0, exceptionmode[2] != 0});
}

int64_t x07aaen_(const float* x) {
  if constexpr (!Single::is_iec559) return 0;
  return std::isfinite(*x) ? kTrue : 0;
}

int64_t x07aben_(const float* x) {
  if constexpr (!Single::has_quiet_NaN) return 0;
  return std::isnan(*x) ? kTrue : 0;
}

}  // extern "C"
