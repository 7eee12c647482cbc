// Bodies of G01ERF and G01ESF (the declared TAIL and parameter checks have passed).
#include "layers/g01.h"
#include "stats/log_tails.h"

namespace vek::routines {

double g01erf::run(frame::ErrorBuffer&, const char* tail, const double* x, int64_t tail_len) {
  return stats::normal_log_probability(stats::tail_of(tail, tail_len), *x);
}

double g01esf::run(frame::ErrorBuffer&, const char* tail, const double* g, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::gamma_log_tail(stats::tail_of(tail, tail_len) == stats::Tail::lower, *g, *a, *b);
}

}  // namespace vek::routines
