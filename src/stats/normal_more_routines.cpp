// Bodies of G01EHF (normal interval) and G01HBF (bivariate normal); the declared checks have passed.
#include "frame/text.h"
#include "layers/g01.h"
#include "stats/normal_more.h"

namespace vek::routines {

double g01ehf::run(frame::ErrorBuffer&, const double* a, const double* b) { return stats::normal_interval(*a, *b); }

double g01hbf::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* y, const double* rho,
                   int64_t tail_len) {
  const bool upper = (text::option_letter(tail, tail_len) & ~0x20) == 'U';
  return upper ? stats::bivariate_normal_upper(*x, *y, *rho) : stats::bivariate_normal_upper(-*x, -*y, *rho);
}

}  // namespace vek::routines
