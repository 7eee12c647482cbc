// Bodies of G01GBF, G01GCF and G01GDF (non-central t, chi-square and F) and of their deviates G01GTF, G01GXF and
// G01GFF; the declared checks have passed.
#include "frame/text.h"
#include "layers/g01.h"
#include "stats/noncentral.h"

namespace vek::routines {
namespace {

bool upper(const char* tail, int64_t len) { return (text::option_letter(tail, len) & ~0x20) == 'U'; }

double tail_of(const char* tail, int64_t len, const stats::TailPair& p) { return upper(tail, len) ? p.upper : p.lower; }

}  // namespace

double g01gbf::run(frame::ErrorBuffer&, const char* tail, const double* t, const double* df, const double* delta,
                   int64_t tail_len) {
  return tail_of(tail, tail_len, stats::noncentral_t(*t, *df, *delta));
}

double g01gcf::run(frame::ErrorBuffer&, const char* tail, const double* x, const double* df, const double* rlamda,
                   int64_t tail_len) {
  return tail_of(tail, tail_len, stats::noncentral_chi_square(*x, *df, *rlamda));
}

double g01gdf::run(frame::ErrorBuffer&, const char* tail, const double* f, const double* df1, const double* df2,
                   const double* rlamda, int64_t tail_len) {
  return tail_of(tail, tail_len, stats::noncentral_f(*f, *df1, *df2, *rlamda));
}

double g01gtf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df, const double* delta,
                   int64_t tail_len) {
  return stats::noncentral_t_deviate(*p, !upper(tail, tail_len), *df, *delta);
}

double g01gxf::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df, const double* rlamda,
                   int64_t tail_len) {
  return stats::noncentral_chi_square_deviate(*p, !upper(tail, tail_len), *df, *rlamda);
}

double g01gff::run(frame::ErrorBuffer&, const char* tail, const double* p, const double* df1, const double* df2,
                   const double* rlamda, int64_t tail_len) {
  return stats::noncentral_f_deviate(*p, !upper(tail, tail_len), *df1, *df2, *rlamda);
}

}  // namespace vek::routines
