// Bodies of G01ERF, G01ESF, G01ETF, G01EUF and G01EVF (the declared TAIL and parameter checks have passed).
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

double g01etf::run(frame::ErrorBuffer&, const char* tail, const double* t, const double* df, int64_t tail_len) {
  return stats::t_log_probability(stats::tail_of(tail, tail_len), *t, *df);
}

double g01euf::run(frame::ErrorBuffer&, const char* tail, const double* f, const double* df1, const double* df2,
                   int64_t tail_len) {
  return stats::f_log_tail(stats::tail_of(tail, tail_len) == stats::Tail::lower, *f, *df1, *df2);
}

double g01evf::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::beta_log_tail(stats::tail_of(tail, tail_len) == stats::Tail::lower, *x, *a, *b);
}

}  // namespace vek::routines
