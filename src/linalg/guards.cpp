// The guards' scans, identities and own kernels (see guards.h).
#include "linalg/guards.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "forwarded.h"
#include "linalg/argument_error.h"
#include "linalg/name_map.h"

// The dependency's unblocked full-storage symmetric / Hermitian indefinite factorisations (not published
// here, so not in forwarded.h).
extern "C" {
void vekob_dsytf2_(const char* uplo, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv, int64_t* info,
                   int64_t uplo_len);
void vekob_zsytf2_(const char* uplo, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* ipiv,
                   int64_t* info, int64_t uplo_len);
void vekob_zhetf2_(const char* uplo, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* ipiv,
                   int64_t* info, int64_t uplo_len);
}

namespace vek::linalg::guard {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Whether x[0..n) holds a NaN or an infinity: |x| <= max fails for both. The flag is an integer OR, so the
// loop vectorises without reassociating floating-point sums.
bool column_nonfinite(const double* x, int64_t n) {
  unsigned bad = 0;
  for (int64_t i = 0; i < n; ++i) bad |= static_cast<unsigned>(!(std::fabs(x[i]) <= std::numeric_limits<double>::max()));
  return bad != 0;
}

Region make(Region::Shape shape, double* data, int width, int64_t rows, int64_t cols, int64_t ld, int64_t kd,
            bool valid) {
  Region r;
  r.shape = shape;
  r.data = data;
  r.width = width;
  r.rows = rows;
  r.cols = cols;
  r.ld = ld;
  r.kd = kd;
  r.valid = valid && data != nullptr;
  return r;
}

bool upper(char uplo) { return uplo == 'U' || uplo == 'u'; }
bool uplo_ok(char uplo) { return upper(uplo) || uplo == 'L' || uplo == 'l'; }

Region full_of(double* a, int width, int64_t m, int64_t n, int64_t ld) {
  return make(Region::Shape::full, a, width, m, n, ld, 0, m >= 0 && n >= 0 && ld >= std::max<int64_t>(1, m));
}
Region tri_of(double* a, int width, char uplo, int64_t n, int64_t ld) {
  return make(upper(uplo) ? Region::Shape::upper : Region::Shape::lower, a, width, n, n, ld, 0,
              uplo_ok(uplo) && n >= 0 && ld >= std::max<int64_t>(1, n));
}
Region packed_of(double* ap, int width, char uplo, int64_t n) {
  return make(upper(uplo) ? Region::Shape::packed_upper : Region::Shape::packed_lower, ap, width, n, n, 0, 0,
              uplo_ok(uplo) && n >= 0);
}
Region band_of(double* ab, int width, char uplo, int64_t n, int64_t kd, int64_t ld) {
  return make(upper(uplo) ? Region::Shape::band_upper : Region::Shape::band_lower, ab, width, kd + 1, n, ld, kd,
              uplo_ok(uplo) && n >= 0 && kd >= 0 && ld >= kd + 1);
}
Region hess_of(double* h, int width, int64_t n, int64_t ld) {
  return make(Region::Shape::hess, h, width, n, n, ld, 0, n >= 0 && ld >= std::max<int64_t>(1, n));
}
Region vec_of(double* d, int width, int64_t len, double fill) {
  Region r = make(Region::Shape::vec, d, width, std::max<int64_t>(0, len), 1, 0, 0, true);
  r.fill = fill;
  return r;
}

double* doubles(vek_complex* z) { return reinterpret_cast<double*>(z); }

// Calls f(first, count, diagonal) for each column's stored part: `count` elements from element `first`
// (in elements, column-major with the region's leading dimension), `diagonal` the element index of the
// diagonal within that part, or -1.
template <class F>
void for_each_column(const Region& r, F f) {
  const int64_t n = r.cols;
  for (int64_t j = 0; j < n; ++j) {
    switch (r.shape) {
      case Region::Shape::full: f(j * r.ld, r.rows, j < r.rows ? j : -1); break;
      case Region::Shape::upper: f(j * r.ld, j + 1, j); break;
      case Region::Shape::lower: f(j * r.ld + j, n - j, 0); break;
      case Region::Shape::packed_upper: f(j * (j + 1) / 2, j + 1, j); break;
      case Region::Shape::packed_lower: f(j * n - j * (j - 1) / 2, n - j, 0); break;
      case Region::Shape::band_upper: {
        const int64_t top = std::max<int64_t>(0, r.kd - j);  // rows above the first row of the matrix
        f(j * r.ld + top, r.kd + 1 - top, r.kd - top);
        break;
      }
      case Region::Shape::band_lower: f(j * r.ld, std::min<int64_t>(r.kd + 1, n - j), 0); break;
      case Region::Shape::hess: f(j * r.ld, std::min<int64_t>(j + 2, n), j); break;
      case Region::Shape::vec: break;
    }
  }
}

}  // namespace

Region full(double* a, int64_t m, int64_t n, int64_t ld) { return full_of(a, 1, m, n, ld); }
Region full(vek_complex* a, int64_t m, int64_t n, int64_t ld) { return full_of(doubles(a), 2, m, n, ld); }
Region tri(double* a, char uplo, int64_t n, int64_t ld) { return tri_of(a, 1, uplo, n, ld); }
Region tri(vek_complex* a, char uplo, int64_t n, int64_t ld) { return tri_of(doubles(a), 2, uplo, n, ld); }
Region packed(double* ap, char uplo, int64_t n) { return packed_of(ap, 1, uplo, n); }
Region packed(vek_complex* ap, char uplo, int64_t n) { return packed_of(doubles(ap), 2, uplo, n); }
Region band(double* ab, char uplo, int64_t n, int64_t kd, int64_t ld) { return band_of(ab, 1, uplo, n, kd, ld); }
Region band(vek_complex* ab, char uplo, int64_t n, int64_t kd, int64_t ld) {
  return band_of(doubles(ab), 2, uplo, n, kd, ld);
}
Region hess(double* h, int64_t n, int64_t ld) { return hess_of(h, 1, n, ld); }
Region hess(vek_complex* h, int64_t n, int64_t ld) { return hess_of(doubles(h), 2, n, ld); }
Region vec(double* d, int64_t len, double fill) { return vec_of(d, 1, len, fill); }
Region vec(vek_complex* d, int64_t len, double fill) { return vec_of(doubles(d), 2, len, fill); }

bool Region::nonfinite() const {
  if (shape == Shape::vec) return column_nonfinite(data, rows * width);
  bool bad = false;
  for_each_column(*this, [&](int64_t first, int64_t count, int64_t) {
    bad = bad || column_nonfinite(data + first * width, count * width);
  });
  return bad;
}

void Region::set_identity() const {
  if (shape == Shape::vec) {
    for (int64_t i = 0; i < rows; ++i) {
      data[i * width] = fill;
      if (width == 2) data[i * width + 1] = 0;
    }
    return;
  }
  for_each_column(*this, [&](int64_t first, int64_t count, int64_t diagonal) {
    std::fill(data + first * width, data + (first + count) * width, 0.0);
    if (diagonal >= 0) data[(first + diagonal) * width] = 1;
  });
}

void Region::fill_nan() const {
  if (!valid) return;
  if (shape == Shape::vec) {
    std::fill(data, data + rows * width, kNaN);
    return;
  }
  for_each_column(*this, [&](int64_t first, int64_t count, int64_t) {
    std::fill(data + first * width, data + (first + count) * width, kNaN);
  });
}

bool any_nonfinite(std::initializer_list<Region> in) {
  if (std::any_of(in.begin(), in.end(), [](const Region& r) { return !r.valid; })) return false;
  return std::any_of(in.begin(), in.end(), [](const Region& r) { return r.nonfinite(); });
}

void report(std::string_view published, int64_t position) { argument_error(report_name(published).view(), position); }

bool letter_ok(char letter, const char* allowed) {
  const char up = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return up != '\0' && std::strchr(allowed, up) != nullptr;
}

bool same(char letter, char wanted) { return std::toupper(static_cast<unsigned char>(letter)) == wanted; }

double nan() { return kNaN; }

// ---- row interchanges ----------------------------------------------------------------------------------
namespace {

template <class T>
void interchange_rows(int64_t n, T* a, int64_t lda, int64_t k1, int64_t k2, const int64_t* ipiv, int64_t incx,
                      int64_t stride) {
  // The published order: with INCX < 0 the pivots are applied from K2 down to K1, IPIV read backwards from
  // its element K1 + (K2 - K1)|INCX| down to element K1 (stride = |INCX|, 0 when K2 = K1).
  const int64_t step = incx > 0 ? 1 : -1;
  const int64_t first = incx > 0 ? k1 : k2, last = incx > 0 ? k2 : k1;
  const int64_t ix0 = (k1 - 1) + (incx > 0 ? 0 : (k2 - k1) * stride);
  for (int64_t j = 0; j < n; ++j) {
    T* col = a + j * lda;
    int64_t ix = ix0;
    for (int64_t i = first;; i += step) {
      const int64_t ip = ipiv[ix];
      if (ip != i) std::swap(col[i - 1], col[ip - 1]);
      if (i == last) break;
      ix += incx;
    }
  }
}

template <class T>
void row_interchange_of(const char* published, int64_t n, T* a, int64_t lda, int64_t k1, int64_t k2,
                        const int64_t* ipiv, int64_t incx, bool& handled) {
  handled = true;
  int64_t bad = 0;
  if (n < 0) bad = 1;
  else if (lda < 1) bad = 3;
  else if (k1 < 1) bad = 4;
  else if (k2 >= k1 && k2 > lda) bad = 5;
  if (bad == 0 && (n == 0 || k2 < k1 || incx == 0)) return;  // no interchange, as published
  // |INCX| in 128 bits (INCX = -2^63 has no 64-bit negation); IPIV's last element K1 + (K2 - K1)|INCX| must
  // be addressable, which for K2 > K1 bounds |INCX| below 2^63.
  const __int128 magnitude = incx > 0 ? static_cast<__int128>(incx) : -static_cast<__int128>(incx);
  if (bad == 0 && static_cast<__int128>(k2 - k1) * magnitude > std::numeric_limits<int64_t>::max() - k1) bad = 7;
  const int64_t stride = bad == 0 && k2 > k1 ? static_cast<int64_t>(magnitude) : 0;
  for (int64_t i = 0; bad == 0 && i <= k2 - k1; ++i)
    if (ipiv[k1 - 1 + i * stride] < 1 || ipiv[k1 - 1 + i * stride] > lda) bad = 6;
  if (bad != 0) {
    report(published, bad);
    return;
  }
  if (incx < 0) {
    interchange_rows(n, a, lda, k1, k2, ipiv, incx, stride);
    return;
  }
  handled = false;
}

}  // namespace

void row_interchange_checked(const char* published, int64_t n, double* a, int64_t lda, int64_t k1, int64_t k2,
                             const int64_t* ipiv, int64_t incx, bool& handled) {
  row_interchange_of(published, n, a, lda, k1, k2, ipiv, incx, handled);
}

void row_interchange_checked(const char* published, int64_t n, vek_complex* a, int64_t lda, int64_t k1, int64_t k2,
                             const int64_t* ipiv, int64_t incx, bool& handled) {
  row_interchange_of(published, n, a, lda, k1, k2, ipiv, incx, handled);
}

// ---- pivots handed back by the caller ------------------------------------------------------------------
bool pivots_ok(const int64_t* ipiv, int64_t n) {
  for (int64_t i = 0; i < n; ++i)
    if (ipiv[i] < 1 || ipiv[i] > n) return false;
  return true;
}

bool tridiagonal_pivots_ok(const int64_t* ipiv, int64_t n) {
  for (int64_t i = 1; i <= n; ++i)
    if (ipiv[i - 1] != i && (ipiv[i - 1] != i + 1 || i == n)) return false;
  return true;
}

bool row_scaled(char fact, char equed) { return same(fact, 'F') && (same(equed, 'R') || same(equed, 'B')); }

bool column_scaled(char fact, char equed) { return same(fact, 'F') && (same(equed, 'C') || same(equed, 'B')); }

bool scales_ok(const double* s, int64_t n) {
  for (int64_t i = 0; i < n; ++i)
    if (!(s[i] > 0)) return false;
  return true;
}

bool blocks_ok(const int64_t* iblock, int64_t m, int64_t n) {
  for (int64_t j = 0; j < m; ++j)
    if (iblock[j] < 1 || iblock[j] > n) return false;
  return true;
}

bool splits_ok(const int64_t* isplit, const int64_t* iblock, int64_t m, int64_t n) {
  int64_t blocks = 0;
  for (int64_t j = 0; j < m; ++j) blocks = std::max(blocks, iblock[j]);
  for (int64_t b = 0, last = 0; b < blocks; last = isplit[b++])
    if (isplit[b] <= last || isplit[b] > n) return false;
  return true;
}

bool symmetric_pivots_ok(const int64_t* ipiv, int64_t n, char uplo) {
  // Walked in the order of the factorisation (from N down for 'U', from 1 up for 'L'); a 2 x 2 block takes
  // the element and its neighbour in that direction, which must exist and hold the same value.
  const bool up = upper(uplo);
  const int64_t step = up ? -1 : 1;
  for (int64_t k = up ? n - 1 : 0; k >= 0 && k < n; k += step) {
    const int64_t p = ipiv[k];
    if (p > 0) {
      if (p > n) return false;
      continue;
    }
    const int64_t partner = k + step;
    if (p == 0 || p < -n || partner < 0 || partner >= n || ipiv[partner] != p) return false;
    k = partner;
  }
  return true;
}

// ---- dot products --------------------------------------------------------------------------------------
namespace {

// The published element order: with a negative increment the vector starts at element 1 + (N - 1)|INC|. A
// single element is element 1 whatever the increment (INC = -2^63 has no 64-bit negation).
int64_t start(int64_t n, int64_t inc) { return inc < 0 && n > 1 ? (n - 1) * -inc : 0; }

template <class R, class T, class Load>
R strided_sum(int64_t n, const T* x, int64_t incx, const T* y, int64_t incy, Load load) {
  R sum{};
  int64_t ix = start(n, incx), iy = start(n, incy);
  for (int64_t i = 0; i < n; ++i, ix += incx, iy += incy) sum += load(x[ix], y[iy]);
  return sum;
}

// A complex dot product over the library's pair type V: each product in the textbook form (as the reference
// BLAS computes it, without the recovery of infinities that std::complex's product makes), then summed.
template <class R, class V>
V complex_dot(int64_t n, const V* x, int64_t incx, const V* y, int64_t incy, bool conjugate) {
  struct Sum {
    R re = 0, im = 0;
    Sum& operator+=(const Sum& t) {
      re += t.re;
      im += t.im;
      return *this;
    }
  };
  const R sign = conjugate ? R(-1) : R(1);
  const Sum s = strided_sum<Sum>(n, x, incx, y, incy, [&](const V& a, const V& b) {
    const R ai = sign * a.im;
    return Sum{a.re * b.re - ai * b.im, a.re * b.im + ai * b.re};
  });
  return {s.re, s.im};
}

}  // namespace

double dot_strided(int64_t n, const double* x, int64_t incx, const double* y, int64_t incy) {
  return strided_sum<double>(n, x, incx, y, incy, [](double a, double b) { return a * b; });
}

float dot_strided(int64_t n, const float* x, int64_t incx, const float* y, int64_t incy) {
  return strided_sum<float>(n, x, incx, y, incy, [](float a, float b) { return a * b; });
}

vek_complex dot_strided(int64_t n, const vek_complex* x, int64_t incx, const vek_complex* y, int64_t incy,
                        bool conjugate) {
  return complex_dot<double>(n, x, incx, y, incy, conjugate);
}

vek_scomplex dot_strided(int64_t n, const vek_scomplex* x, int64_t incx, const vek_scomplex* y, int64_t incy,
                         bool conjugate) {
  return complex_dot<float>(n, x, incx, y, incy, conjugate);
}

// ---- packed symmetric / Hermitian indefinite factorisations ------------------------------------------------
namespace {

bool hermitian(const char* published) { return published[1] == 'H' || published[1] == 'h'; }

void full_factor(const char* published, char uplo, int64_t n, double* a, int64_t* ipiv, int64_t* info) {
  (void)published;
  vekob_dsytf2_(&uplo, &n, a, &n, ipiv, info, 1);
}
void full_factor(const char* published, char uplo, int64_t n, vek_complex* a, int64_t* ipiv, int64_t* info) {
  if (hermitian(published)) vekob_zhetf2_(&uplo, &n, a, &n, ipiv, info, 1);
  else vekob_zsytf2_(&uplo, &n, a, &n, ipiv, info, 1);
}

// Column j of the stored triangle: packed element index of its first entry and the full-storage row range.
template <class T>
void move_triangle(bool up, int64_t n, T* full, T* packed, bool to_full) {
  int64_t k = 0;
  for (int64_t j = 0; j < n; ++j) {
    const int64_t lo = up ? 0 : j, hi = up ? j : n - 1;
    for (int64_t i = lo; i <= hi; ++i, ++k) {
      if (to_full) full[i + j * n] = packed[k];
      else packed[k] = full[i + j * n];
    }
  }
}

template <class T>
bool packed_factor_of(const char* published, char uplo, int64_t n, T* ap, int64_t* ipiv, int64_t* info) {
  if (!packed(ap, uplo, n).valid || !packed(ap, uplo, n).nonfinite()) return false;
  std::vector<T> a(static_cast<size_t>(n) * static_cast<size_t>(n));
  const bool up = upper(uplo);
  move_triangle(up, n, a.data(), ap, true);
  full_factor(published, uplo, n, a.data(), ipiv, info);
  move_triangle(up, n, a.data(), ap, false);
  return true;
}

template <class T>
bool packed_copy_of(const T* ap, T* afp, int64_t n) {
  if (n < 0) return false;
  std::copy(ap, ap + n * (n + 1) / 2, afp);
  return true;
}

}  // namespace

bool packed_factor_full(const char* published, char uplo, int64_t n, double* ap, int64_t* ipiv, int64_t* info) {
  return packed_factor_of(published, uplo, n, ap, ipiv, info);
}
bool packed_factor_full(const char* published, char uplo, int64_t n, vek_complex* ap, int64_t* ipiv,
                        int64_t* info) {
  return packed_factor_of(published, uplo, n, ap, ipiv, info);
}

void packed_solve_factored(const char* published, char uplo, int64_t n, int64_t nrhs, const double* ap,
                           const int64_t* ipiv, double* b, int64_t ldb, int64_t* info) {
  (void)published;
  vekob_dsptrs_(&uplo, &n, &nrhs, ap, ipiv, b, &ldb, info, 1);
}
void packed_solve_factored(const char* published, char uplo, int64_t n, int64_t nrhs, const vek_complex* ap,
                           const int64_t* ipiv, vek_complex* b, int64_t ldb, int64_t* info) {
  if (hermitian(published)) vekob_zhptrs_(&uplo, &n, &nrhs, ap, ipiv, b, &ldb, info, 1);
  else vekob_zsptrs_(&uplo, &n, &nrhs, ap, ipiv, b, &ldb, info, 1);
}

bool packed_copy(const double* ap, double* afp, int64_t n) { return packed_copy_of(ap, afp, n); }
bool packed_copy(const vek_complex* ap, vek_complex* afp, int64_t n) { return packed_copy_of(ap, afp, n); }

// ---- generalized singular values of a triangular pair ---------------------------------------------------
bool generalized_svd_pair_checked(const char* published, char jobu, char jobv, char jobq, int64_t m, int64_t p,
                                  int64_t n, int64_t k, int64_t l, int64_t lda, int64_t ldb, int64_t ldu, int64_t ldv,
                                  int64_t ldq, int64_t* info) {
  const bool wantu = letter_ok(jobu, "IU"), wantv = letter_ok(jobv, "IV"), wantq = letter_ok(jobq, "IQ");
  int64_t bad = 0;
  if (!wantu && !letter_ok(jobu, "N")) bad = 1;
  else if (!wantv && !letter_ok(jobv, "N")) bad = 2;
  else if (!wantq && !letter_ok(jobq, "N")) bad = 3;
  else if (m < 0) bad = 4;
  else if (p < 0) bad = 5;
  else if (n < 0) bad = 6;
  else if (k < 0 || k > n) bad = 7;
  else if (l < 0 || l > p || k + l > n) bad = 8;
  else if (lda < std::max<int64_t>(1, m)) bad = 10;
  else if (ldb < std::max<int64_t>(1, p)) bad = 12;
  else if (ldu < 1 || (wantu && ldu < m)) bad = 18;
  else if (ldv < 1 || (wantv && ldv < p)) bad = 20;
  else if (ldq < 1 || (wantq && ldq < n)) bad = 22;
  *info = -bad;
  if (bad != 0) report(published, bad);
  return bad == 0;
}

void set_identity(double* u, int64_t n, int64_t ld) { full(u, n, n, ld).set_identity(); }
void set_identity(vek_complex* u, int64_t n, int64_t ld) { full(u, n, n, ld).set_identity(); }

// ---- QR with column pivoting of an empty matrix -----------------------------------------------------------
bool empty_pivoted_qr(int64_t m, int64_t n, int64_t lda, int64_t* jpvt, int64_t lwork) {
  if (m != 0 || n < 0 || lda < 1 || lwork < 1) return false;
  int64_t fixed = 0;  // the published preprocessing: fixed columns moved to the front, in order
  for (int64_t j = 0; j < n; ++j) {
    if (jpvt[j] != 0) {
      jpvt[j] = jpvt[fixed];
      jpvt[fixed] = j + 1;
      ++fixed;
    } else {
      jpvt[j] = j + 1;
    }
  }
  return true;
}

// ---- modified rotation ----------------------------------------------------------------------------------
bool modified_rotation_nonfinite(double* d1, double* d2, double* x1, double y1, double* param) {
  const double big = std::numeric_limits<double>::max();
  if (std::fabs(*d1) <= big && std::fabs(*d2) <= big && std::fabs(*x1) <= big && std::fabs(y1) <= big) return false;
  param[0] = -1;
  std::fill(param + 1, param + 5, kNaN);
  *d1 = *d2 = *x1 = kNaN;
  return true;
}

}  // namespace vek::linalg::guard
