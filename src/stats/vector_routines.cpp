// Bodies of the vectorised probabilities G01SAF, G01SBF, G01SCF and G01SFF (TAIL, N and the array lengths have
// passed their checks). Each point is computed by the scalar routine's kernel with the scalar routine's checks
// as a per-point status, so a result is bit for bit the scalar routine's; the points are shared among the
// library's threads by a static schedule and are independent, so the results do not depend on the team size.
#include <algorithm>
#include <cstdint>

#include "frame/threads.h"
#include "layers/g01.h"
#include "stats/continuous.h"

namespace vek::routines {
namespace {

constexpr int64_t kMinPointsPerThread = 256;

struct PointResult {
  double p;
  int64_t status;  // 0, or the number of the first failed check
};

// Fills P and IVALID for the n points (P = 0 where the status is not 0); returns the count of invalid points.
template <class Point>
int64_t evaluate(int64_t n, double* p, int64_t* ivalid, Point point) {
  const int threads = static_cast<int>(std::clamp<int64_t>(n / kMinPointsPerThread, 1, threads::max_threads()));
#pragma omp parallel for schedule(static) num_threads(threads) if (threads > 1)
  for (int64_t i = 0; i < n; ++i) {
    const PointResult r = point(i);
    ivalid[i] = r.status;
    p[i] = r.status == 0 ? r.p : 0.0;
  }
  return std::count_if(ivalid, ivalid + n, [](int64_t s) { return s != 0; });
}

// Point i's value of a parameter array of length len, taken cyclically.
double cyclic(const double* v, int64_t len, int64_t i) { return v[i % len]; }

}  // namespace

void g01saf::run(frame::ErrorBuffer& err, const char* tail, const int64_t* n, const double* x, const int64_t* lxmu,
                 const double* xmu, const int64_t* lxstd, const double* xstd, double* p, int64_t* ivalid,
                 int64_t tail_len) {
  const stats::Tail t = stats::tail_of(tail, tail_len);
  const int64_t bad = evaluate(*n, p, ivalid, [&](int64_t i) {
    const double sd = cyclic(xstd, *lxstd, i);
    if (!(sd > 0.0)) return PointResult{0.0, 1};
    return PointResult{stats::normal_probability(t, (x[i] - cyclic(xmu, *lxmu, i)) / sd), 0};
  });
  if (bad != 0) err.fail(invalid_points, bad);
}

void g01sbf::run(frame::ErrorBuffer& err, const char* tail, const int64_t* n, const double* t, const int64_t* ldf,
                 const double* df, double* p, int64_t* ivalid, int64_t tail_len) {
  const stats::Tail which = stats::tail_of(tail, tail_len);
  const int64_t bad = evaluate(*n, p, ivalid, [&](int64_t i) {
    const double d = cyclic(df, *ldf, i);
    if (!(d > 0.0)) return PointResult{0.0, 1};
    return PointResult{stats::t_probability(which, t[i], d), 0};
  });
  if (bad != 0) err.fail(invalid_points, bad);
}

void g01scf::run(frame::ErrorBuffer& err, const char* tail, const int64_t* n, const double* x, const int64_t* ldf,
                 const double* df, double* p, int64_t* ivalid, int64_t tail_len) {
  const stats::Tail which = stats::tail_of(tail, tail_len);
  const int64_t bad = evaluate(*n, p, ivalid, [&](int64_t i) {
    const double d = cyclic(df, *ldf, i);
    if (!(x[i] >= 0.0)) return PointResult{0.0, 1};
    if (!(d > 0.0)) return PointResult{0.0, 2};
    return PointResult{stats::tail_value(which, stats::gamma_tails(x[i], 0.5 * d, 2.0)), 0};
  });
  if (bad != 0) err.fail(invalid_points, bad);
}

void g01sff::run(frame::ErrorBuffer& err, const char* tail, const int64_t* n, const double* g, const int64_t* la,
                 const double* a, const int64_t* lb, const double* b, double* p, int64_t* ivalid, int64_t tail_len) {
  const stats::Tail which = stats::tail_of(tail, tail_len);
  const int64_t bad = evaluate(*n, p, ivalid, [&](int64_t i) {
    const double shape = cyclic(a, *la, i), scale = cyclic(b, *lb, i);
    if (!(g[i] >= 0.0)) return PointResult{0.0, 1};
    if (!(shape > 0.0 && scale > 0.0)) return PointResult{0.0, 2};
    return PointResult{stats::tail_value(which, stats::gamma_tails(g[i], shape, scale)), 0};
  });
  if (bad != 0) err.fail(invalid_points, bad);
}

}  // namespace vek::routines
