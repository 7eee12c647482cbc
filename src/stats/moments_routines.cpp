// Body of G01AAF (the declared N and IWT checks have passed): the weights are checked here, the first
// negative (or NaN) one reported; then the moments, with IFAIL 3 for fewer than two observations of
// positive weight and IFAIL 4 when they are all equal (results as far as defined, the others 0).
#include <span>

#include "layers/g01.h"
#include "stats/moments.h"

namespace vek::routines {

void g01aaf::run(frame::ErrorBuffer& err, const int64_t* n, const double* x, const int64_t* iwt, const double* wt,
                 double* xmean, double* s2, double* s3, double* s4, double* xmin, double* xmax, double* wtsum) {
  const auto len = static_cast<size_t>(*n);
  std::span<const double> weights;
  if (*iwt == 1) {
    weights = std::span(wt, len);
    for (size_t i = 0; i < len; ++i) {
      if (!(weights[i] >= 0.0)) return err.fail(wt_negative, static_cast<int64_t>(i) + 1, weights[i]);
    }
  }
  const stats::Moments m = stats::moments(std::span(x, len), weights);
  *xmean = m.mean;
  *s2 = m.sd;
  *s3 = m.skewness;
  *s4 = m.kurtosis;
  *xmin = m.positive > 0 ? m.min : 0.0;
  *xmax = m.positive > 0 ? m.max : 0.0;
  *wtsum = m.weight_sum;
  if (m.positive < 2) return err.fail(too_few, m.positive);
  if (m.sd == 0.0) return err.fail(all_equal);
}

}  // namespace vek::routines
