// F07ADF (published as DGETRF): LU factorisation with partial pivoting, A = P L U, of a real M by N matrix.
//
// The arguments are checked here, in argument order (M, N, LDA: INFO = -1, -2, -4 with the argument-error
// report "F07ADF/DGETRF"). The factorisation is right-looking and blocked so that its rounding does not depend
// on the team size: for each panel of kPanel columns,
//   1. the panel is factorised serially (OpenBLAS's recursive LU on one thread),
//   2. its row interchanges are applied to the columns on its left,
//   3. the columns on its right are updated in chunks: interchanges, U12 = L11^-1 A12, A22 -= L21 U12. The
//      chunks are fixed by the matrix, not by the team (the next panel's columns, then kChunk columns at a
//      time); each is computed whole by one thread, so every element sees the same operations in the same
//      order with 1, 2 or any number of threads. The thread that updates the next panel's columns goes on to
//      factorise that panel while the others finish the update (look-ahead), which keeps the serial panel
//      work off the critical path.
// The team is the one x06aaf sets; inside a caller's active parallel region the loop runs on one thread.
// INFO = i > 0 reports the first exactly zero U(i,i), silently; the factorisation is completed.
#include <algorithm>
#include <cstdint>

#include <omp.h>

#include "frame/threads.h"
#include "layers/f07.h"
#include "linalg/argument_error.h"
#include "linalg/level3_symbols.h"
#include "linalg/lu_factor.h"

namespace vek::linalg {
namespace {

constexpr int64_t kPanel = 256;
constexpr int64_t kChunk = 512;
constexpr int64_t kOne = 1;
constexpr double kPlusOne = 1.0;
constexpr double kMinusOne = -1.0;

// Element (i, j), 0-based, of the column-major matrix.
inline double* at(double* a, int64_t lda, int64_t i, int64_t j) { return a + i + j * lda; }

// The panel A(k:m, k:k+jb) factorised by OpenBLAS's recursive LU; the caller makes it serial. Pivots become
// global row numbers; returns the global column of the first exactly zero pivot, or 0.
int64_t factor_panel(int64_t m, int64_t k, int64_t jb, double* a, int64_t lda, int64_t* ipiv) {
  const int64_t rows = m - k;
  int64_t info = 0;
  vekob_dgetrf_(&rows, &jb, at(a, lda, k, k), &lda, ipiv + k, &info);
  for (int64_t i = k; i < k + jb; ++i) ipiv[i] += k;
  return info > 0 ? info + k : 0;
}

// Columns j0 .. j0+nc-1 right of the panel at k: interchanges, triangular solve, trailing update.
void update_chunk(int64_t m, int64_t k, int64_t jb, int64_t j0, int64_t nc, double* a, int64_t lda,
                  const int64_t* ipiv) {
  const int64_t k1 = k + 1, k2 = k + jb, below = m - k - jb;
  vekob_dlaswp_(&nc, at(a, lda, 0, j0), &lda, &k1, &k2, ipiv, &kOne);
  vekob_dtrsm_("L", "L", "N", "U", &jb, &nc, &kPlusOne, at(a, lda, k, k), &lda, at(a, lda, k, j0), &lda, 1, 1, 1, 1);
  if (below > 0)
    vekob_dgemm_("N", "N", &below, &nc, &jb, &kMinusOne, at(a, lda, k + jb, k), &lda, at(a, lda, k, j0), &lda,
                 &kPlusOne, at(a, lda, k + jb, j0), &lda, 1, 1);
}

}  // namespace

int64_t lu_factor(int64_t m, int64_t n, double* a, int64_t lda, int64_t* ipiv) {
  const int64_t mn = std::min(m, n);
  if (mn == 0) return 0;
  const int team = threads::in_parallel() ? 1 : static_cast<int>(std::max<int64_t>(threads::max_threads(), 1));
  int64_t info = 0;
  // The first panel on a team of one whose own thread limit is 1, which OpenBLAS reads as its serial path.
#pragma omp parallel num_threads(1)
  {
    omp_set_num_threads(1);
    info = factor_panel(m, 0, std::min(kPanel, mn), a, lda, ipiv);
  }
  for (int64_t k = 0; k < mn; k += kPanel) {
    const int64_t jb = std::min(kPanel, mn - k), next = k + jb;
    // Look-ahead: item 0 updates the next panel's columns and factorises that panel while the other items
    // update the rest. Every call inside the region runs serially in OpenBLAS (the region is always entered,
    // so with a team of more than one omp_in_parallel() holds, and a team of one has a thread limit of one).
    const int64_t lead = next < mn ? std::min(kPanel, mn - next) : 0, rest = next + lead;
    const int64_t items = (lead > 0 ? 1 : 0) + (n - rest + kChunk - 1) / kChunk;
    int64_t next_info = 0;
#pragma omp parallel for schedule(dynamic, 1) num_threads(team)
    for (int64_t item = 0; item < items; ++item) {
      if (lead > 0 && item == 0) {
        update_chunk(m, k, jb, next, lead, a, lda, ipiv);
        next_info = factor_panel(m, next, lead, a, lda, ipiv);
      } else {
        const int64_t j0 = rest + (item - (lead > 0 ? 1 : 0)) * kChunk;
        update_chunk(m, k, jb, j0, std::min(kChunk, n - j0), a, lda, ipiv);
      }
    }
    if (info == 0) info = next_info;
    if (lead > 0) {  // the next panel's interchanges on the columns to its left
      const int64_t k1 = next + 1, k2 = next + lead;
      vekob_dlaswp_(&next, a, &lda, &k1, &k2, ipiv, &kOne);
    }
  }
  return info;
}

}  // namespace vek::linalg

extern "C" {

void f07adfn_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv, int64_t* info) {
  int64_t bad = 0;
  if (*m < 0) bad = 1;
  else if (*n < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *m)) bad = 4;
  if (bad != 0) {
    *info = -bad;
    vek::linalg::argument_error("F07ADF/DGETRF", bad);
    return;
  }
  *info = vek::linalg::lu_factor(*m, *n, a, *lda, ipiv);
}

}  // extern "C"
