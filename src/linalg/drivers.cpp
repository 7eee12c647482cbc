// The simple drivers' kernels, built from the library's own F06/F07 workers (below their entry layers):
// the 1-norm of A first, then the factorisation, the solve and the condition estimate from the factors
// (Hager's method with Higham's refinement, as DGECON/DGBCON/DPOCON implement it). Workspace: 3N reals and
// N integers for the estimate (DGBCON and DPOCON take 3N, DGECON 4N).
#include "linalg/drivers.h"

#include <algorithm>
#include <new>
#include <vector>

#include "frame/constants.h"
#include "layers/f06.h"
#include "layers/f07.h"
#include "linalg/lu_factor.h"

namespace vek::linalg {
namespace {

constexpr char kOneNorm = '1';

// Workspace of per_column * max(n, 1) elements; a size beyond what can be allocated is an allocation
// failure (std::bad_alloc), never an overflowed count.
template <class T>
std::vector<T> workspace(int64_t per_column, int64_t n) {
  const int64_t columns = std::max<int64_t>(n, 1);
  if (columns > static_cast<int64_t>(std::vector<T>().max_size()) / per_column) throw std::bad_alloc();
  return std::vector<T>(static_cast<size_t>(per_column * columns));
}
constexpr char kNoTrans = 'N';

char triangle_letter(Triangle t) { return t == Triangle::upper ? 'U' : 'L'; }

}  // namespace

SolveResult solve_general(int64_t n, int64_t nrhs, double* a, int64_t lda, int64_t* ipiv, double* b,
                          int64_t ldb) {
  std::vector<double> work = workspace<double>(4, n);
  std::vector<int64_t> iwork = workspace<int64_t>(1, n);
  const double anorm = f06rafn_(&kOneNorm, &n, &n, a, &lda, work.data(), 1);
  SolveResult r;
  int64_t info = lu_factor(n, n, a, lda, ipiv, WithoutMemory::throw_bad_alloc);
  if (info > 0) return SolveResult{info, 0.0};
  f07aefn_(&kNoTrans, &n, &nrhs, a, &lda, ipiv, b, &ldb, &info, 1);
  f07agfn_(&kOneNorm, &n, a, &lda, &anorm, &r.rcond, work.data(), iwork.data(), &info, 1);
  return r;
}

SolveResult solve_band(int64_t n, int64_t kl, int64_t ku, int64_t nrhs, double* ab, int64_t ldab, int64_t* ipiv,
                       double* b, int64_t ldb) {
  std::vector<double> work = workspace<double>(3, n);
  std::vector<int64_t> iwork = workspace<int64_t>(1, n);
  const double anorm = f06rbfn_(&kOneNorm, &n, &kl, &ku, ab + kl, &ldab, work.data(), 1);
  SolveResult r;
  int64_t info = 0;
  f07bdfn_(&n, &n, &kl, &ku, ab, &ldab, ipiv, &info);
  if (info > 0) return SolveResult{info, 0.0};
  f07befn_(&kNoTrans, &n, &kl, &ku, &nrhs, ab, &ldab, ipiv, b, &ldb, &info, 1);
  f07bgfn_(&kOneNorm, &n, &kl, &ku, ab, &ldab, ipiv, &anorm, &r.rcond, work.data(), iwork.data(), &info, 1);
  return r;
}

SolveResult solve_spd(Triangle uplo, int64_t n, int64_t nrhs, double* a, int64_t lda, double* b, int64_t ldb) {
  std::vector<double> work = workspace<double>(3, n);
  std::vector<int64_t> iwork = workspace<int64_t>(1, n);
  const char ul = triangle_letter(uplo);
  const double anorm = f06rcfn_(&kOneNorm, &ul, &n, a, &lda, work.data(), 1, 1);
  SolveResult r;
  int64_t info = 0;
  f07fdfn_(&ul, &n, a, &lda, &info, 1);
  if (info > 0) return SolveResult{info, 0.0};
  f07fefn_(&ul, &n, &nrhs, a, &lda, b, &ldb, &info, 1);
  f07fgfn_(&ul, &n, a, &lda, &anorm, &r.rcond, work.data(), iwork.data(), &info, 1);
  return r;
}

int64_t invert_general(int64_t n, double* a, int64_t lda) {
  std::vector<int64_t> ipiv = workspace<int64_t>(1, n);
  int64_t info = lu_factor(n, n, a, lda, ipiv.data(), WithoutMemory::throw_bad_alloc);
  if (info > 0) return info;
  // Workspace query, then the inverse with the blocked algorithm's preferred size.
  double query = 0;
  int64_t lwork = -1;
  f07ajfn_(&n, a, &lda, ipiv.data(), &query, &lwork, &info);
  const int64_t block = std::max<int64_t>(static_cast<int64_t>(query) / std::max<int64_t>(n, 1), 1);
  std::vector<double> work = workspace<double>(block, n);
  lwork = static_cast<int64_t>(work.size());
  f07ajfn_(&n, a, &lda, ipiv.data(), work.data(), &lwork, &info);
  return info;
}

double error_bound(double rcond) {
  if (!(rcond > 0)) return constants::max_real();
  return std::min(constants::eps() / rcond, constants::max_real());
}

}  // namespace vek::linalg
