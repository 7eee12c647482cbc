// Bodies of G01AMF (quantiles), G01ANF (robust summaries) and G01APF, G01AQF, G01ARF (moments of data met
// in blocks); the declared checks have passed.
#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "layers/g01.h"
#include "stats/summary.h"

namespace vek::routines {

void g01amf::run(frame::ErrorBuffer& err, const int64_t* n, const double* x, const int64_t* nq, const double* q,
                 const int64_t* itype, double* qv, double* wk) {
  const auto len = static_cast<size_t>(*n), count = static_cast<size_t>(*nq);
  for (size_t i = 0; i < count; ++i) {
    if (!(q[i] >= 0.0 && q[i] <= 1.0)) return err.fail(q_range, static_cast<int64_t>(i) + 1, q[i]);
  }
  const std::span<double> sorted(wk, len);
  std::copy(x, x + len, sorted.begin());
  if (std::any_of(sorted.begin(), sorted.end(), [](double v) { return std::isnan(v); })) {
    std::fill(qv, qv + count, std::numeric_limits<double>::quiet_NaN());
    return;
  }
  std::sort(sorted.begin(), sorted.end());
  for (size_t i = 0; i < count; ++i) qv[i] = stats::quantile(sorted, q[i], static_cast<int>(*itype));
}

void g01anf::run(frame::ErrorBuffer&, const int64_t* n, const double* x, const double* alpha, double* xmed,
                 double* xmad, double* xtrim, double* xwins, double* wk) {
  const auto len = static_cast<size_t>(*n);
  const stats::Robust r = stats::robust_summary(std::span(x, len), *alpha, std::span(wk, len));
  *xmed = r.median;
  *xmad = r.mad;
  *xtrim = r.trimmed_mean;
  *xwins = r.winsorised_mean;
}

void g01apf::run(frame::ErrorBuffer& err, const int64_t* nb, const double* x, double* rcomm) {
  const stats::RunningMoments before = stats::load_running(rcomm);
  if (!stats::valid_running(before)) return err.fail(state_invalid, rcomm[0]);
  const stats::RunningMoments block = stats::block_moments(std::span(x, static_cast<size_t>(*nb)));
  stats::store_running(stats::merge(before, block), rcomm);
}

void g01aqf::run(frame::ErrorBuffer& err, double* rcomm, const double* rcomb) {
  const stats::RunningMoments a = stats::load_running(rcomm), b = stats::load_running(rcomb);
  if (!stats::valid_running(a)) return err.fail(state_invalid, rcomm[0]);
  if (!stats::valid_running(b)) return err.fail(state_b_invalid, rcomb[0]);
  stats::store_running(stats::merge(a, b), rcomm);
}

void g01arf::run(frame::ErrorBuffer& err, const double* rcomm, double* xmean, double* s2, double* s3, double* s4,
                 double* xmin, double* xmax, int64_t* nobs) {
  const stats::RunningMoments m = stats::load_running(rcomm);
  if (!stats::valid_running(m)) return err.fail(state_invalid, rcomm[0]);
  const bool empty = m.count == 0.0;
  *nobs = static_cast<int64_t>(m.count);
  *xmean = empty ? 0.0 : m.mean;
  *xmin = empty ? 0.0 : m.min;
  *xmax = empty ? 0.0 : m.max;
  *s2 = *s3 = *s4 = 0.0;
  if (m.count < 2.0) return err.fail(too_few, *nobs);
  // The definitions of G01AAF for unit weights.
  const double var = m.m2 / (m.count - 1.0), sd = std::sqrt(var);
  *s2 = sd;
  if (!(var > 0.0 || std::isnan(var))) return err.fail(all_equal);
  *s3 = m.m3 / m.count / (var * sd);
  *s4 = m.m4 / m.count / (var * var) - 3.0;
}

}  // namespace vek::routines
