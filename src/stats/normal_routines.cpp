// Bodies of G01EAF and G01FAF (the declared TAIL and P checks have passed).
#include "layers/g01.h"
#include "stats/normal.h"

namespace vek::routines {

double g01eaf::run(frame::ErrorBuffer&, const char* tail, const double* x, int64_t tail_len) {
  return stats::normal_probability(stats::tail_of(tail, tail_len), *x);
}

double g01faf::run(frame::ErrorBuffer&, const char* tail, const double* p, int64_t tail_len) {
  return stats::normal_deviate(stats::tail_of(tail, tail_len), *p);
}

}  // namespace vek::routines
