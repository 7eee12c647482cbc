// Bodies of the distribution functions and their deviates (the declared TAIL, P and parameter checks have
// passed).
#include "layers/g01.h"
#include "stats/continuous.h"
#include "stats/discrete.h"

namespace vek::routines {

double g01ebf::run(frame::ErrorBuffer&, const char* tail, const double* t, const double* df, int64_t tail_len) {
  return stats::t_probability(stats::tail_of(tail, tail_len), *t, *df);
}

double g01ecf::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* df, int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::gamma_tails(*x, 0.5 * *df, 2.0));
}

double g01edf::run(frame::ErrorBuffer&, const char* tail, const double* f, const double* df1, const double* df2,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::f_tails(*f, *df1, *df2));
}

double g01eef::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::beta_tails(*x, *a, *b));
}

double g01eff::run(frame::ErrorBuffer&, const char* tail, const double* g, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::gamma_tails(*g, *a, *b));
}

double g01ekf::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* xmu, const double* sigma,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::lognormal_tails(*x, *xmu, *sigma));
}

double g01bkf::run(frame::ErrorBuffer&, const char* tail, const double* rlamda, const int64_t* k,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::poisson_tails(*k, *rlamda));
}

double g01bjf::run(frame::ErrorBuffer&, const char* tail, const int64_t* n, const double* p, const int64_t* k,
                   int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::binomial_tails(*k, *n, *p));
}

double g01blf::run(frame::ErrorBuffer&, const char* tail, const int64_t* n, const int64_t* l, const int64_t* m,
                   const int64_t* k, int64_t tail_len) {
  return stats::tail_value(stats::tail_of(tail, tail_len), stats::hypergeometric_tails(*k, *n, *l, *m));
}

double g01fbf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df, int64_t tail_len) {
  return stats::t_deviate(stats::tail_of(tail, tail_len), *p, *df);
}

double g01fcf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df, int64_t tail_len) {
  return stats::gamma_deviate(stats::tail_of(tail, tail_len), *p, 0.5 * *df, 2.0);
}

double g01fdf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df1, const double* df2,
                   int64_t tail_len) {
  return stats::f_deviate(stats::tail_of(tail, tail_len), *p, *df1, *df2);
}

double g01fef::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::beta_deviate(stats::tail_of(tail, tail_len), *p, *a, *b);
}

double g01fff::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* a, const double* b,
                   int64_t tail_len) {
  return stats::gamma_deviate(stats::tail_of(tail, tail_len), *p, *a, *b);
}

double g01fkf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* xmu, const double* sigma,
                   int64_t tail_len) {
  return stats::lognormal_deviate(stats::tail_of(tail, tail_len), *p, *xmu, *sigma);
}

int64_t g01bmf::run(frame::ErrorBuffer&, const char* tail, const int64_t* n, const double* p, const double* prob,
                    int64_t tail_len) {
  return stats::binomial_deviate(stats::tail_of(tail, tail_len), *prob, *n, *p);
}

int64_t g01bnf::run(frame::ErrorBuffer&, const char* tail, const double* rlamda, const double* prob,
                    int64_t tail_len) {
  return stats::poisson_deviate(stats::tail_of(tail, tail_len), *prob, *rlamda);
}

int64_t g01bpf::run(frame::ErrorBuffer&, const char* tail, const int64_t* n, const int64_t* l, const int64_t* m,
                    const double* prob, int64_t tail_len) {
  return stats::hypergeometric_deviate(stats::tail_of(tail, tail_len), *prob, *n, *l, *m);
}

}  // namespace vek::routines
