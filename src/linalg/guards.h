// Guards of the forwarding workers: each decides, before a call reaches OpenBLAS, whether the arguments would
// take the dependency outside the caller's arrays or into an endless iteration, and then handles the case
// itself (a documented result, an argument report, or the library's own kernel); otherwise it forwards.
// The declarations name the guard of a routine ('guard' lines, tools/decl/emit_guard.py).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <type_traits>

#include "vek.h"

namespace vek::linalg::guard {

// A part of an array that an iterating routine reads as its problem: scanned for NaN and infinities, set to
// the identity of its shape, or filled with NaN. Complex arrays are seen as pairs of doubles.
struct Region {
  enum class Shape { full, upper, lower, packed_upper, packed_lower, band_upper, band_lower, hess, vec };
  Shape shape = Shape::vec;
  double* data = nullptr;
  int64_t rows = 0, cols = 0, ld = 0, kd = 0;
  int width = 1;        // doubles per element
  double fill = 0;      // the identity's value of a vector (1 for a diagonal, 0 for an off-diagonal)
  bool valid = true;    // the sizes describe an array the caller has; otherwise the region is not touched

  bool nonfinite() const;
  void set_identity() const;
  void fill_nan() const;
};

Region full(double* a, int64_t m, int64_t n, int64_t ld);
Region full(vek_complex* a, int64_t m, int64_t n, int64_t ld);
Region tri(double* a, char uplo, int64_t n, int64_t ld);
Region tri(vek_complex* a, char uplo, int64_t n, int64_t ld);
Region packed(double* ap, char uplo, int64_t n);
Region packed(vek_complex* ap, char uplo, int64_t n);
Region band(double* ab, char uplo, int64_t n, int64_t kd, int64_t ld);
Region band(vek_complex* ab, char uplo, int64_t n, int64_t kd, int64_t ld);
Region hess(double* h, int64_t n, int64_t ld);
Region hess(vek_complex* h, int64_t n, int64_t ld);
Region vec(double* d, int64_t len, double fill = 0);
Region vec(vek_complex* d, int64_t len, double fill = 0);

// True when every region is valid and one of them holds a NaN or an infinity.
bool any_nonfinite(std::initializer_list<Region> in);

// Non-finite screen of an iterating routine. Clean input (and a workspace query, and sizes the screen cannot
// trust, which the dependency reports) goes straight through. Otherwise the input regions become the
// identity, the dependency makes all its argument checks and solves that trivial problem, and unless it
// reported an argument the output regions are filled with NaN and INFO = max(1, code) (a negative code, the
// published check of a routine that has one, is set as it is).
template <class Forward>
void screen(Forward forward, int64_t* info, int64_t code, bool query, std::initializer_list<Region> in,
            std::initializer_list<Region> out) {
  if (query || !any_nonfinite(in)) return forward();
  for (const Region& r : in) r.set_identity();
  forward();
  if (*info < 0) return;
  for (const Region& r : out) r.fill_nan();
  *info = code < 0 ? code : code > 1 ? code : 1;
}

// The argument-error report under the published name ("F06SAF/ZGEMV").
void report(std::string_view published, int64_t position);

// An option letter of the published set (upper case; the letter is taken in either case).
bool letter_ok(char letter, const char* allowed);
// The letter is `wanted` (upper case) in either case.
bool same(char letter, char wanted);

// The result of a norm routine whose arguments were reported.
double nan();

// Row interchanges (dlaswp, zlaswp). The published routine checks nothing; the sizes that would take it
// outside the caller's arrays are reported by position and leave A unchanged: N < 0 (1), LDA < 1 (3),
// K1 < 1 (4), a row K2 > LDA (5), a pivot outside 1..LDA (6), IPIV(K1 + (K2 - K1)|INCX|) beyond the
// addressable (7). K2 < K1 or INCX = 0: no interchange, as published. A negative INCX runs the library's
// own loop (the dependency misreads IPIV there).
void row_interchange_checked(const char* published, int64_t n, double* a, int64_t lda, int64_t k1, int64_t k2,
                             const int64_t* ipiv, int64_t incx, bool& handled);
void row_interchange_checked(const char* published, int64_t n, vek_complex* a, int64_t lda, int64_t k1, int64_t k2,
                             const int64_t* ipiv, int64_t incx, bool& handled);

template <class Forward, class T>
void row_interchange(Forward forward, const char* published, int64_t n, T* a, int64_t lda, int64_t k1, int64_t k2,
                     const int64_t* ipiv, int64_t incx) {
  bool handled = false;
  row_interchange_checked(published, n, a, lda, k1, k2, ipiv, incx, handled);
  if (!handled) forward();
}

// Pivots of a factorisation handed back to a solve, inverse, condition estimate or refinement: the
// dependency indexes rows with them unchecked. Each predicate is true when IPIV(1..N) is what the
// factorisation can produce, as far as the indexing depends on it (N < 0: true, the size is reported first).
//  - general and band LU: 1 <= IPIV(i) <= N;
//  - tridiagonal LU: IPIV(i) is i or i + 1 (N for i = N);
//  - symmetric / Hermitian indefinite (Bunch-Kaufman): IPIV(k) > 0 a 1 x 1 block, 1 <= IPIV(k) <= N; a 2 x 2
//    block holds the same negative value -p, 1 <= p <= N, in two neighbouring elements, paired from the
//    bottom for UPLO = 'U' and from the top for 'L'.
bool pivots_ok(const int64_t* ipiv, int64_t n);
bool tridiagonal_pivots_ok(const int64_t* ipiv, int64_t n);
bool symmetric_pivots_ok(const int64_t* ipiv, int64_t n, char uplo);

// The equilibration an expert driver is handed with its factorisation (FACT = 'F'): rows scaled for
// EQUED = 'R' or 'B', columns for 'C' or 'B', each factor positive (a NaN is not). N < 0: true.
bool row_scaled(char fact, char equed);
bool column_scaled(char fact, char equed);
bool scales_ok(const double* s, int64_t n);

// The blocks of a split tridiagonal matrix handed to inverse iteration (?stein): IBLOCK(1..M) names blocks
// 1..N, and ISPLIT(1..IBLOCK(M)), the last row of each block, rises strictly within 1..N. (M <= N is
// checked before; the published check of IBLOCK's order comes after, in the dependency.)
bool blocks_ok(const int64_t* iblock, int64_t m, int64_t n);
bool splits_ok(const int64_t* isplit, const int64_t* iblock, int64_t m, int64_t n);

// Dot products with a negative increment (complex ones with any increment but 1): the library's own loop, in
// the published order of elements.
double dot_strided(int64_t n, const double* x, int64_t incx, const double* y, int64_t incy);
float dot_strided(int64_t n, const float* x, int64_t incx, const float* y, int64_t incy);
vek_complex dot_strided(int64_t n, const vek_complex* x, int64_t incx, const vek_complex* y, int64_t incy,
                        bool conjugate);
vek_scomplex dot_strided(int64_t n, const vek_scomplex* x, int64_t incx, const vek_scomplex* y, int64_t incy,
                         bool conjugate);

template <class Forward, class T>
auto dot(Forward forward, int64_t n, const T* x, int64_t incx, const T* y, int64_t incy) {
  if (n > 0 && (incx < 0 || incy < 0)) return dot_strided(n, x, incx, y, incy);
  return forward();
}

// The complex dot products run the library's loop unless both increments are 1: the dependency's strided
// kernels read past X and Y for increments of either sign (0 and 2 as well as negative ones). Its unit-stride
// kernel stays in the arrays and is three times faster.
template <class Forward, class T>
auto dotu(Forward forward, int64_t n, const T* x, int64_t incx, const T* y, int64_t incy) {
  if (n > 0 && (incx != 1 || incy != 1)) return dot_strided(n, x, incx, y, incy, false);
  return forward();
}

template <class Forward, class T>
auto dotc(Forward forward, int64_t n, const T* x, int64_t incx, const T* y, int64_t incy) {
  if (n > 0 && (incx != 1 || incy != 1)) return dot_strided(n, x, incx, y, incy, true);
  return forward();
}

// Packed symmetric / Hermitian indefinite factorisation (?sptrf, zhptrf). The dependency's packed code, on a
// NaN pivot, indexes AP with a row it never set; the unblocked full-storage code (?sytf2, zhetf2: the same
// Bunch-Kaufman pivoting, in the same order) stops at a NaN pivot with INFO = its column. With a NaN or an
// infinity in AP the factorisation runs there, and the factors are packed back: the same AP and IPIV as the
// packed code gives on finite data. False when AP is finite (or its sizes are the dependency's to report).
bool packed_factor_full(const char* published, char uplo, int64_t n, double* ap, int64_t* ipiv, int64_t* info);
bool packed_factor_full(const char* published, char uplo, int64_t n, vek_complex* ap, int64_t* ipiv, int64_t* info);
// The solve ?sptrs / zhptrs with the factors of packed_factor_full.
void packed_solve_factored(const char* published, char uplo, int64_t n, int64_t nrhs, const double* ap,
                           const int64_t* ipiv, double* b, int64_t ldb, int64_t* info);
void packed_solve_factored(const char* published, char uplo, int64_t n, int64_t nrhs, const vek_complex* ap,
                           const int64_t* ipiv, vek_complex* b, int64_t ldb, int64_t* info);

template <class Forward, class T>
void packed_factor(Forward forward, const char* published, char uplo, int64_t n, T* ap, int64_t* ipiv,
                   int64_t* info) {
  if (!packed_factor_full(published, uplo, n, ap, ipiv, info)) forward();
}

// ?spsv, zhpsv: the published checks (UPLO, N, NRHS, LDB) are the dependency's; with valid sizes and a
// non-finite AP, factorise as above and solve unless a pivot failed.
template <class Forward, class T>
void packed_solve(Forward forward, const char* published, char uplo, int64_t n, int64_t nrhs, T* ap, int64_t* ipiv,
                  T* b, int64_t ldb, int64_t* info) {
  if (nrhs < 0 || ldb < (n > 1 ? n : 1) || !packed_factor_full(published, uplo, n, ap, ipiv, info)) return forward();
  if (*info == 0) packed_solve_factored(published, uplo, n, nrhs, ap, ipiv, b, ldb, info);
}

// ?spsvx, zhpsvx with FACT = 'N': the factorisation into AFP as above; a failed pivot returns INFO and
// RCOND = 0 as published, otherwise the dependency goes on with FACT = 'F' (FACT is the forwarding call's own
// argument, passed here by reference). With FACT = 'F' the caller's pivots are checked after the published
// checks and reported as IPIV (7).
bool packed_copy(const double* ap, double* afp, int64_t n);
bool packed_copy(const vek_complex* ap, vek_complex* afp, int64_t n);

template <class Forward, class T>
void packed_expert(Forward forward, const char* published, const char*& fact, char uplo, int64_t n, int64_t nrhs,
                   const T* ap, T* afp, int64_t* ipiv, int64_t ldb, int64_t ldx, double* rcond, int64_t* info) {
  const int64_t least = n > 1 ? n : 1;
  const bool factor = same(*fact, 'N');
  if (same(*fact, 'F') && letter_ok(uplo, "UL") && n >= 0 && nrhs >= 0 && ldb >= least && ldx >= least &&
      !symmetric_pivots_ok(ipiv, n, uplo)) {
    report(published, 7);
    *info = -7;
    return;
  }
  if (!factor || nrhs < 0 || ldb < least || ldx < least || !packed_copy(ap, afp, n) ||
      !packed_factor_full(published, uplo, n, afp, ipiv, info))
    return forward();
  if (*info > 0) {
    *rcond = 0;
    return;
  }
  const char* const own_fact = fact;
  fact = "F";
  forward();
  fact = own_fact;
}

// ?tgsja: the published checks, with those of K (0 <= K <= N) and L (0 <= L <= P, K + L <= N) in their
// places; N = 0 returns at once with U, V (and Q) initialised as asked.
bool generalized_svd_pair_checked(const char* published, char jobu, char jobv, char jobq, int64_t m, int64_t p,
                                  int64_t n, int64_t k, int64_t l, int64_t lda, int64_t ldb, int64_t ldu, int64_t ldv,
                                  int64_t ldq, int64_t* info);
void set_identity(double* u, int64_t n, int64_t ld);
void set_identity(vek_complex* u, int64_t n, int64_t ld);

template <class Forward, class T>
void generalized_svd_pair(Forward forward, const char* published, char jobu, char jobv, char jobq, int64_t m,
                          int64_t p, int64_t n, int64_t k, int64_t l, int64_t lda, int64_t ldb, int64_t ldu,
                          int64_t ldv, int64_t ldq, T* u, T* v, T* q, int64_t* ncycle, int64_t* info) {
  if (!generalized_svd_pair_checked(published, jobu, jobv, jobq, m, p, n, k, l, lda, ldb, ldu, ldv, ldq, info)) return;
  if (n > 0) return forward();
  *ncycle = 0;
  if (jobu == 'I' || jobu == 'i') set_identity(u, m, ldu);
  if (jobv == 'I' || jobv == 'i') set_identity(v, p, ldv);
  (void)q;  // Q is N by N: nothing to set
}

// ?geqp3 with M = 0: nothing to factorise, but the dependency still applies the (empty) reflectors of the
// fixed columns to the free ones with the caller's LWORK, which its own check sized for M = 0, and returns
// that routine's INFO (-12). Here: the published column preprocessing (fixed columns first, in order) alone,
// WORK(1) = 1 and INFO = 0. The sizes the published routine checks go to the dependency.
template <class T>
T one() {
  if constexpr (std::is_same_v<T, double>) return 1.0;
  else return T{1.0, 0.0};
}

bool empty_pivoted_qr(int64_t m, int64_t n, int64_t lda, int64_t* jpvt, int64_t lwork);

template <class Forward, class T>
void pivoted_qr(Forward forward, int64_t m, int64_t n, int64_t lda, int64_t* jpvt, T* work, int64_t lwork,
                int64_t* info) {
  if (!empty_pivoted_qr(m, n, lda, jpvt, lwork)) return forward();
  work[0] = one<T>();
  *info = 0;
}

// The workspace a routine asks for: its query (LWORK = -1, made here with a one-element WORK) before it
// runs; with N > 0, LWORK below the answer is reported at its position (the published minimum of the
// generalized SVD routines, LWORK >= 1, lets them run past WORK or on without end). False when the call
// must not go on (an argument reported by the query, or LWORK too small); a caller's query passes.
template <class T>
double real_part(const T& v) {
  if constexpr (std::is_same_v<T, double>) return v;
  else return v.re;
}

template <class Forward, class T>
bool workspace_enough(Forward forward, const char* published, int64_t n, T*& work, const int64_t*& lwork,
                      int64_t* info, int64_t position) {
  if (*lwork == -1 || n <= 0) return true;
  static constexpr int64_t query = -1;
  T answer[1] = {};
  T* const own_work = work;
  const int64_t* const own_lwork = lwork;
  work = answer;
  lwork = &query;
  forward();
  work = own_work;
  lwork = own_lwork;
  if (*info != 0) return false;
  if (static_cast<double>(*lwork) >= real_part(answer[0])) return true;
  report(published, position);
  *info = -position;
  return false;
}

template <class Forward, class T>
void least_workspace(Forward forward, const char* published, int64_t n, T*& work, const int64_t*& lwork,
                     int64_t* info, int64_t position) {
  if (workspace_enough(forward, published, n, work, lwork, info, position)) forward();
}

// ?ggsvd3: the workspace as above, then the non-finite screen of A and B (ALPHA, BETA NaN, INFO = N).
template <class Forward, class T>
void generalized_svd(Forward forward, const char* published, int64_t m, int64_t n, int64_t p, T* a, int64_t lda,
                     T* b, int64_t ldb, double* alpha, double* beta, T*& work, const int64_t*& lwork, int64_t* info,
                     int64_t position) {
  if (!workspace_enough(forward, published, n, work, lwork, info, position)) return;
  screen(forward, info, n, *lwork == -1, {full(a, m, n, lda), full(b, p, n, ldb)}, {vec(alpha, n), vec(beta, n)});
}

// drotmg: a NaN or an infinity in D1, D2, X1 or Y1 (the dependency rescales an infinite D1 forever) gives
// FLAG = PARAM(1) = -1 with H and D1, D2, X1 all NaN.
bool modified_rotation_nonfinite(double* d1, double* d2, double* x1, double y1, double* param);

template <class Forward>
void modified_rotation(Forward forward, double* d1, double* d2, double* x1, const double* y1, double* param) {
  if (!modified_rotation_nonfinite(d1, d2, x1, *y1, param)) forward();
}

}  // namespace vek::linalg::guard
