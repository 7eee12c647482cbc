// The level-3 BLAS whose results do not depend on the number of threads: each routine cuts its result into
// tiles fixed by the problem's sizes (tiling.h) and has the dependency compute every tile on one thread.
//   gemm               an m by n grid of C; the inner dimension whole in every tile.
//   symm, hemm, trmm,  the columns of B and C when A is on the left, their rows when it is on the right: each
//   trsm               column (row) is its own problem.
//   syrk, herk,        column panels of the stored triangle of C with nearly equal areas: the panel's
//   syr2k, her2k       diagonal block by the routine itself, the rest of the panel by gemm (two for the
//                      rank-2k updates).
// Arguments a tile could not be cut from (an illegal value, an empty result) go to the dependency whole,
// which reports them through the library's argument-error routine as before.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "linalg/level3_symbols.h"
#include "linalg/tiling.h"

namespace vek::linalg {
namespace {

using tiling::Span;

template <class T>
struct Dependency;

#define VEK_DEPENDENCY_COMMON(P)                                \
  static constexpr auto gemm = vekob_##P##gemm_;                \
  static constexpr auto symm = vekob_##P##symm_;                \
  static constexpr auto syrk = vekob_##P##syrk_;                \
  static constexpr auto syr2k = vekob_##P##syr2k_;              \
  static constexpr auto trmm = vekob_##P##trmm_;                \
  static constexpr auto trsm = vekob_##P##trsm_;
#define VEK_DEPENDENCY_HERMITIAN(P)                             \
  static constexpr auto hemm = vekob_##P##hemm_;                \
  static constexpr auto herk = vekob_##P##herk_;                \
  static constexpr auto her2k = vekob_##P##her2k_;

template <>
struct Dependency<float> {
  using Real = float;
  VEK_DEPENDENCY_COMMON(s)
};
template <>
struct Dependency<double> {
  using Real = double;
  VEK_DEPENDENCY_COMMON(d)
};
template <>
struct Dependency<vek_scomplex> {
  using Real = float;
  VEK_DEPENDENCY_COMMON(c)
  VEK_DEPENDENCY_HERMITIAN(c)
};
template <>
struct Dependency<vek_complex> {
  using Real = double;
  VEK_DEPENDENCY_COMMON(z)
  VEK_DEPENDENCY_HERMITIAN(z)
};
#undef VEK_DEPENDENCY_HERMITIAN
#undef VEK_DEPENDENCY_COMMON

template <class T>
constexpr bool kComplex = !std::is_floating_point_v<T>;

// A real or complex scalar of the element type T.
template <class T, class S>
T as_element(S value) {
  if constexpr (kComplex<T>) {
    if constexpr (std::is_same_v<S, T>) return value;
    else return T{value, 0};
  } else {
    return value;
  }
}

template <class T>
T conjugate(T value) {
  if constexpr (kComplex<T>) return T{value.re, -value.im};
  else return value;
}

char upper(const char* letter) { return static_cast<char>(std::toupper(static_cast<unsigned char>(*letter))); }

bool one_of(const char* letter, const char* allowed) {
  const char u = upper(letter);
  return u != '\0' && std::strchr(allowed, u) != nullptr;
}

int64_t at_least_one(int64_t n) { return std::max<int64_t>(1, n); }

double product(int64_t a, int64_t b, int64_t c) {
  return static_cast<double>(a) * static_cast<double>(b) * static_cast<double>(c);
}

template <class T>
void gemm(const char* transa, const char* transb, const int64_t* m, const int64_t* n, const int64_t* k,
          const T* alpha, const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const T* beta, T* c,
          const int64_t* ldc, int64_t transa_len, int64_t transb_len) {
  const bool plain_a = upper(transa) == 'N', plain_b = upper(transb) == 'N';
  const bool valid = one_of(transa, "NTC") && one_of(transb, "NTC") && *m >= 0 && *n >= 0 && *k >= 0 &&
                     *lda >= at_least_one(plain_a ? *m : *k) && *ldb >= at_least_one(plain_b ? *k : *n) &&
                     *ldc >= at_least_one(*m);
  const tiling::Grid grid = valid ? tiling::product_grid(*m, *n, *k) : tiling::Grid{};
  const int64_t count = grid.rows * grid.cols;
  if (count == 1)
    return Dependency<T>::gemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, transa_len, transb_len);
  tiling::run(count, [&](int64_t t) {
    const Span r = tiling::piece(*m, grid.rows, t % grid.rows), s = tiling::piece(*n, grid.cols, t / grid.rows);
    if (r.size == 0 || s.size == 0) return;
    Dependency<T>::gemm(transa, transb, &r.size, &s.size, k, alpha, a + (plain_a ? r.begin : r.begin * *lda), lda,
                        b + (plain_b ? s.begin * *ldb : s.begin), ldb, beta, c + r.begin + s.begin * *ldc, ldc,
                        transa_len, transb_len);
  });
}

// symm and hemm: C = alpha A B + beta C (side L) or alpha B A + beta C (side R), A symmetric or Hermitian.
template <class T, auto Routine>
void side_product(const char* side, const char* uplo, const int64_t* m, const int64_t* n, const T* alpha,
                  const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const T* beta, T* c,
                  const int64_t* ldc, int64_t side_len, int64_t uplo_len) {
  const bool left = upper(side) == 'L';
  const bool valid = one_of(side, "LR") && one_of(uplo, "UL") && *m >= 0 && *n >= 0 &&
                     *lda >= at_least_one(left ? *m : *n) && *ldb >= at_least_one(*m) && *ldc >= at_least_one(*m);
  const int64_t cut = left ? *n : *m;
  const int64_t count = valid ? tiling::pieces(cut, 2.0 * product(*m, *n, left ? *m : *n)) : 1;
  if (count == 1) return Routine(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc, side_len, uplo_len);
  tiling::run(count, [&](int64_t t) {
    const Span s = tiling::piece(cut, count, t);
    if (s.size == 0) return;
    if (left)
      Routine(side, uplo, m, &s.size, alpha, a, lda, b + s.begin * *ldb, ldb, beta, c + s.begin * *ldc, ldc,
              side_len, uplo_len);
    else
      Routine(side, uplo, &s.size, n, alpha, a, lda, b + s.begin, ldb, beta, c + s.begin, ldc, side_len, uplo_len);
  });
}

// trmm and trsm: B = alpha op(A) B, alpha B op(A), or the solutions of those systems, A triangular.
template <class T, auto Routine>
void triangular(const char* side, const char* uplo, const char* transa, const char* diag, const int64_t* m,
                const int64_t* n, const T* alpha, const T* a, const int64_t* lda, T* b, const int64_t* ldb,
                int64_t side_len, int64_t uplo_len, int64_t transa_len, int64_t diag_len) {
  const bool left = upper(side) == 'L';
  const bool valid = one_of(side, "LR") && one_of(uplo, "UL") && one_of(transa, "NTC") && one_of(diag, "UN") &&
                     *m >= 0 && *n >= 0 && *lda >= at_least_one(left ? *m : *n) && *ldb >= at_least_one(*m);
  const int64_t cut = left ? *n : *m;
  const int64_t count = valid ? tiling::pieces(cut, product(*m, *n, left ? *m : *n)) : 1;
  if (count == 1)
    return Routine(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb, side_len, uplo_len, transa_len, diag_len);
  tiling::run(count, [&](int64_t t) {
    const Span s = tiling::piece(cut, count, t);
    if (s.size == 0) return;
    if (left)
      Routine(side, uplo, transa, diag, m, &s.size, alpha, a, lda, b + s.begin * *ldb, ldb, side_len, uplo_len,
              transa_len, diag_len);
    else
      Routine(side, uplo, transa, diag, &s.size, n, alpha, a, lda, b + s.begin, ldb, side_len, uplo_len, transa_len,
              diag_len);
  });
}

// The shape of a rank-k or rank-2k update: which triangle, whether A is n by k ('N') or k by n, the TRANS
// letters the routine accepts, and the letter of the transposition in the off-diagonal products ("T" for the
// symmetric updates, "C" for the Hermitian ones).
struct Update {
  bool valid, lower, plain;
  const char* op;
  // The rows (plain) or columns of an operand from index i.
  template <class T>
  const T* from(const T* a, const int64_t* lda, int64_t i) const {
    return a + (plain ? i : i * *lda);
  }
  // The off-diagonal part of column panel s: its first row and its number of rows.
  Span beside(int64_t n, Span s) const { return lower ? Span{s.begin + s.size, n - s.begin - s.size} : Span{0, s.begin}; }
  const char* first() const { return plain ? "N" : op; }
  const char* second() const { return plain ? op : "N"; }
};

Update update_shape(const char* uplo, const char* trans, const char* allowed, const char* op, int64_t n,
                    int64_t k, int64_t lda, int64_t ldc) {
  const bool plain = upper(trans) == 'N';
  const bool valid = one_of(uplo, "UL") && one_of(trans, allowed) && n >= 0 && k >= 0 &&
                     lda >= at_least_one(plain ? n : k) && ldc >= at_least_one(n);
  return {valid, upper(uplo) == 'L', plain, op};
}

// syrk and herk: C = alpha A A^T + beta C or alpha A^T A + beta C (^H for herk); S is the type of the scalars.
template <class T, class S, auto Routine>
void rank_k(const char* allowed, const char* op, const char* uplo, const char* trans, const int64_t* n,
            const int64_t* k, const S* alpha, const T* a, const int64_t* lda, const S* beta, T* c, const int64_t* ldc,
            int64_t uplo_len, int64_t trans_len) {
  const Update u = update_shape(uplo, trans, allowed, op, *n, *k, *lda, *ldc);
  const int64_t count = u.valid ? tiling::pieces(*n, product(*n, *n, *k)) : 1;
  if (count == 1) return Routine(uplo, trans, n, k, alpha, a, lda, beta, c, ldc, uplo_len, trans_len);
  const T alpha_t = as_element<T>(*alpha), beta_t = as_element<T>(*beta);
  tiling::run(count, [&](int64_t t) {
    const Span s = tiling::triangle_piece(*n, count, t, u.lower);
    if (s.size == 0) return;
    Routine(uplo, trans, &s.size, k, alpha, u.from(a, lda, s.begin), lda, beta, c + s.begin + s.begin * *ldc, ldc,
            uplo_len, trans_len);
    const Span p = u.beside(*n, s);
    if (p.size == 0) return;
    Dependency<T>::gemm(u.first(), u.second(), &p.size, &s.size, k, &alpha_t, u.from(a, lda, p.begin), lda,
                        u.from(a, lda, s.begin), lda, &beta_t, c + p.begin + s.begin * *ldc, ldc, 1, 1);
  });
}

// syr2k and her2k: C = alpha A B^T + alpha' B A^T + beta C or the transposed form, alpha' = alpha for syr2k
// and conj(alpha) for her2k (^H there).
template <class T, class S, auto Routine>
void rank_2k(const char* allowed, const char* op, const char* uplo, const char* trans, const int64_t* n,
             const int64_t* k, const T* alpha, const T* a, const int64_t* lda, const T* b, const int64_t* ldb,
             const S* beta, T* c, const int64_t* ldc, int64_t uplo_len, int64_t trans_len) {
  Update u = update_shape(uplo, trans, allowed, op, *n, *k, *lda, *ldc);
  u.valid = u.valid && *ldb >= at_least_one(u.plain ? *n : *k);
  const int64_t count = u.valid ? tiling::pieces(*n, 2.0 * product(*n, *n, *k)) : 1;
  if (count == 1) return Routine(uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc, uplo_len, trans_len);
  const T alpha_other = *op == 'C' ? conjugate(*alpha) : *alpha;
  const T beta_t = as_element<T>(*beta), one = as_element<T>(typename Dependency<T>::Real{1});
  tiling::run(count, [&](int64_t t) {
    const Span s = tiling::triangle_piece(*n, count, t, u.lower);
    if (s.size == 0) return;
    Routine(uplo, trans, &s.size, k, alpha, u.from(a, lda, s.begin), lda, u.from(b, ldb, s.begin), ldb, beta,
            c + s.begin + s.begin * *ldc, ldc, uplo_len, trans_len);
    const Span p = u.beside(*n, s);
    if (p.size == 0) return;
    T* cp = c + p.begin + s.begin * *ldc;
    Dependency<T>::gemm(u.first(), u.second(), &p.size, &s.size, k, alpha, u.from(a, lda, p.begin), lda,
                        u.from(b, ldb, s.begin), ldb, &beta_t, cp, ldc, 1, 1);
    Dependency<T>::gemm(u.first(), u.second(), &p.size, &s.size, k, &alpha_other, u.from(b, ldb, p.begin), ldb,
                        u.from(a, lda, s.begin), lda, &one, cp, ldc, 1, 1);
  });
}

}  // namespace
}  // namespace vek::linalg

// The entries, one per precision and operation (prototypes in level3_symbols.h).
#define VEK_TILED_COMMON(P, T, SYMMETRIC_TRANS)                                                                    \
  void vektl_##P##gemm_(const char* ta, const char* tb, const int64_t* m, const int64_t* n, const int64_t* k,      \
                        const T* alpha, const T* a, const int64_t* lda, const T* b, const int64_t* ldb,          \
                        const T* beta, T* c, const int64_t* ldc, int64_t ta_len, int64_t tb_len) {               \
    vek::linalg::gemm<T>(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, ta_len, tb_len);                  \
  }                                                                                                              \
  void vektl_##P##symm_(const char* side, const char* uplo, const int64_t* m, const int64_t* n, const T* alpha,   \
                        const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const T* beta, T* c,      \
                        const int64_t* ldc, int64_t side_len, int64_t uplo_len) {                                \
    vek::linalg::side_product<T, vekob_##P##symm_>(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc,         \
                                                   side_len, uplo_len);                                          \
  }                                                                                                              \
  void vektl_##P##syrk_(const char* uplo, const char* trans, const int64_t* n, const int64_t* k, const T* alpha,  \
                        const T* a, const int64_t* lda, const T* beta, T* c, const int64_t* ldc, int64_t uplo_len, \
                        int64_t trans_len) {                                                                     \
    vek::linalg::rank_k<T, T, vekob_##P##syrk_>(SYMMETRIC_TRANS, "T", uplo, trans, n, k, alpha, a, lda, beta, c,  \
                                                ldc, uplo_len, trans_len);                                       \
  }                                                                                                              \
  void vektl_##P##syr2k_(const char* uplo, const char* trans, const int64_t* n, const int64_t* k, const T* alpha, \
                         const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const T* beta, T* c,     \
                         const int64_t* ldc, int64_t uplo_len, int64_t trans_len) {                              \
    vek::linalg::rank_2k<T, T, vekob_##P##syr2k_>(SYMMETRIC_TRANS, "T", uplo, trans, n, k, alpha, a, lda, b, ldb, \
                                                  beta, c, ldc, uplo_len, trans_len);                            \
  }                                                                                                              \
  void vektl_##P##trmm_(const char* side, const char* uplo, const char* ta, const char* diag, const int64_t* m,   \
                        const int64_t* n, const T* alpha, const T* a, const int64_t* lda, T* b, const int64_t* ldb, \
                        int64_t side_len, int64_t uplo_len, int64_t ta_len, int64_t diag_len) {                  \
    vek::linalg::triangular<T, vekob_##P##trmm_>(side, uplo, ta, diag, m, n, alpha, a, lda, b, ldb, side_len,     \
                                                 uplo_len, ta_len, diag_len);                                    \
  }                                                                                                              \
  void vektl_##P##trsm_(const char* side, const char* uplo, const char* ta, const char* diag, const int64_t* m,   \
                        const int64_t* n, const T* alpha, const T* a, const int64_t* lda, T* b, const int64_t* ldb, \
                        int64_t side_len, int64_t uplo_len, int64_t ta_len, int64_t diag_len) {                  \
    vek::linalg::triangular<T, vekob_##P##trsm_>(side, uplo, ta, diag, m, n, alpha, a, lda, b, ldb, side_len,     \
                                                 uplo_len, ta_len, diag_len);                                    \
  }

#define VEK_TILED_HERMITIAN(P, T, R)                                                                               \
  void vektl_##P##hemm_(const char* side, const char* uplo, const int64_t* m, const int64_t* n, const T* alpha,   \
                        const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const T* beta, T* c,      \
                        const int64_t* ldc, int64_t side_len, int64_t uplo_len) {                                \
    vek::linalg::side_product<T, vekob_##P##hemm_>(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc,         \
                                                   side_len, uplo_len);                                          \
  }                                                                                                              \
  void vektl_##P##herk_(const char* uplo, const char* trans, const int64_t* n, const int64_t* k, const R* alpha,  \
                        const T* a, const int64_t* lda, const R* beta, T* c, const int64_t* ldc, int64_t uplo_len, \
                        int64_t trans_len) {                                                                     \
    vek::linalg::rank_k<T, R, vekob_##P##herk_>("NC", "C", uplo, trans, n, k, alpha, a, lda, beta, c, ldc,        \
                                                uplo_len, trans_len);                                            \
  }                                                                                                              \
  void vektl_##P##her2k_(const char* uplo, const char* trans, const int64_t* n, const int64_t* k, const T* alpha, \
                         const T* a, const int64_t* lda, const T* b, const int64_t* ldb, const R* beta, T* c,     \
                         const int64_t* ldc, int64_t uplo_len, int64_t trans_len) {                              \
    vek::linalg::rank_2k<T, R, vekob_##P##her2k_>("NC", "C", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c,   \
                                                  ldc, uplo_len, trans_len);                                     \
  }

extern "C" {
// TRANS = 'C' means 'T' in the real symmetric updates; the complex symmetric ones take only 'N' and 'T'.
VEK_TILED_COMMON(s, float, "NTC")
VEK_TILED_COMMON(d, double, "NTC")
VEK_TILED_COMMON(c, vek_scomplex, "NT")
VEK_TILED_COMMON(z, vek_complex, "NT")
VEK_TILED_HERMITIAN(c, vek_scomplex, float)
VEK_TILED_HERMITIAN(z, vek_complex, double)
}
