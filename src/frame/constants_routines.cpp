// Workers of the X01 and X02 constant routines and the bodies of their internal companions: each returns
// its constant from constants.h.
#include "frame/constants.h"

#include <limits>

#include "layers/x01.h"
#include "layers/x02.h"
#include "vek.h"

namespace c = vek::constants;

extern "C" {

double x01aafn_() { return c::pi(); }
double x01abfn_() { return c::euler_gamma(); }

double x02ajfn_() { return c::eps(); }
double x02akfn_() { return c::safe_min(); }
double x02alfn_() { return c::max_real(); }
double x02amfn_() { return c::safe_range(); }
double x02anfn_() { return c::safe_range(); }
double x02ahfn_() { return c::big_power(); }
int64_t x02bbfn_() { return c::max_int(); }
int64_t x02befn_() { return c::decimal_digits(); }
int64_t x02bhfn_() { return c::base(); }
int64_t x02bjfn_() { return c::mantissa_digits(); }
int64_t x02bkfn_() { return c::min_exponent(); }
int64_t x02blfn_() { return c::max_exponent(); }

float x02ajen_() { return c::single::eps(); }
float x02aken_() { return c::single::safe_min(); }
float x02alen_() { return c::single::max_real(); }
float x02amen_() { return c::single::safe_range(); }
int64_t x02been_() { return c::distinct_digits(); }
int64_t x02bjen_() { return c::single::mantissa_digits(); }
int64_t x02bken_() { return c::single::min_exponent(); }
int64_t x02blen_() { return c::single::max_exponent(); }

double x02akzn_() { return c::log_safe_min(); }
int64_t x02dazn_() { return std::numeric_limits<double>::has_quiet_NaN ? 1 : 0; }
int64_t x02dbzn_(const double* a, const double* b) { return *a != *b ? 1 : 0; }
double x02dczn_(const double* a, const double* b) { return *a + *b; }

}  // extern "C"
