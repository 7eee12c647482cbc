// The Schur drivers with a selector written in C: the published entries take the user's function (not an
// array), the library calls it through its adapter, and the selected eigenvalues lead the ordered Schur form.
// The test matrices are H T H for a Householder reflector H and a block triangular T with known eigenvalues;
// the generalized problems pair them with B = H U H, U upper triangular with unit diagonal, whose pencil has
// the eigenvalues of T as well.
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "layers/f08.h"
#include "vek.h"

namespace {

using cplx = std::complex<double>;
constexpr int64_t kN = 6;
// Eigenvalues of T: -2, 3, -0.5 +- 1.5i (a 2x2 block), 4, -1. Negative real part: 4 of 6 (the pair counts 2).
constexpr int64_t kNegative = 4;

int64_t g_calls = 0;

// Mixes the columns and rows of T by the reflector H = I - 2 v v^T / v^T v (H = H^T = H^-1).
template <class T>
std::vector<T> reflect(const std::vector<T>& t) {
  const double v[kN] = {1.0, -0.5, 0.25, 2.0, -1.0, 0.75};
  double vv = 0;
  for (double x : v) vv += x * x;
  auto h = [&](int64_t i, int64_t j) { return (i == j ? 1.0 : 0.0) - 2.0 * v[i] * v[j] / vv; };
  std::vector<T> ht(kN * kN, T(0)), out(kN * kN, T(0));
  for (int64_t j = 0; j < kN; ++j)
    for (int64_t i = 0; i < kN; ++i)
      for (int64_t k = 0; k < kN; ++k) ht[i + j * kN] += h(i, k) * t[k + j * kN];
  for (int64_t j = 0; j < kN; ++j)
    for (int64_t i = 0; i < kN; ++i)
      for (int64_t k = 0; k < kN; ++k) out[i + j * kN] += ht[i + k * kN] * h(k, j);
  return out;
}

template <class T>
std::vector<T> test_matrix() {
  std::vector<T> t(kN * kN, T(0));
  const double diag[kN] = {-2.0, 3.0, -0.5, -0.5, 4.0, -1.0};
  for (int64_t i = 0; i < kN; ++i) t[i + i * kN] = diag[i];
  t[2 + 3 * kN] = 1.5;  // the block [-0.5 1.5; -1.5 -0.5]: eigenvalues -0.5 +- 1.5i
  t[3 + 2 * kN] = -1.5;
  for (int64_t j = 0; j < kN; ++j)
    for (int64_t i = 0; i < j; ++i)
      if (!(i == 2 && j == 3)) t[i + j * kN] = 0.1 * static_cast<double>(i + 2 * j);
  return reflect(t);
}

template <class T>
std::vector<T> unit_upper() {
  std::vector<T> u(kN * kN, T(0));
  for (int64_t j = 0; j < kN; ++j) {
    u[j + j * kN] = 1.0;
    for (int64_t i = 0; i < j; ++i) u[i + j * kN] = 0.2 * static_cast<double>(j - i);
  }
  return reflect(u);
}

// The selectors: an eigenvalue with negative real part.
int64_t real_select(const double* wr, const double* /*wi*/) {
  ++g_calls;
  return *wr < 0 ? 1 : 0;
}
int64_t complex_select(const vek_complex* w) {
  ++g_calls;
  return w->re < 0 ? 1 : 0;
}
int64_t real_pair_select(const double* alphar, const double* /*alphai*/, const double* beta) {
  ++g_calls;
  return *alphar * *beta < 0 ? 1 : 0;
}
int64_t complex_pair_select(const vek_complex* alpha, const vek_complex* beta) {
  ++g_calls;
  return alpha->re * beta->re + alpha->im * beta->im < 0 ? 1 : 0;  // Re(alpha conj(beta)) < 0
}

// The first SDIM eigenvalues have negative real parts, the others do not.
void expect_leading(const std::vector<cplx>& lambda, int64_t sdim) {
  ASSERT_EQ(sdim, kNegative);
  for (int64_t i = 0; i < kN; ++i)
    EXPECT_EQ(lambda[i].real() < 0, i < sdim) << "eigenvalue " << i << " = " << lambda[i];
}

std::vector<cplx> pairs(const std::vector<double>& re, const std::vector<double>& im) {
  std::vector<cplx> out;
  for (int64_t i = 0; i < kN; ++i) out.emplace_back(re[i], im[i]);
  return out;
}

struct Work {
  int64_t n = kN, lda = kN, ldb = kN, ldv = kN, lwork = 64 * kN, liwork = 64 * kN, sdim = -1, info = -1;
  std::vector<double> work = std::vector<double>(64 * kN), rwork = std::vector<double>(64 * kN);
  std::vector<vek_complex> cwork = std::vector<vek_complex>(64 * kN);
  std::vector<int64_t> iwork = std::vector<int64_t>(64 * kN), bwork = std::vector<int64_t>(kN);
  double rconde[2] = {0, 0}, rcondv[2] = {0, 0};
};

std::vector<vek_complex> as_vek(const std::vector<cplx>& a) {
  std::vector<vek_complex> out;
  for (const cplx& z : a) out.push_back({z.real(), z.imag()});
  return out;
}

std::vector<cplx> ratios(const std::vector<vek_complex>& alpha, const std::vector<vek_complex>& beta) {
  std::vector<cplx> out;
  for (int64_t i = 0; i < kN; ++i) out.push_back(cplx(alpha[i].re, alpha[i].im) / cplx(beta[i].re, beta[i].im));
  return out;
}

TEST(SchurSelectors, RealStandardDriversOrderTheSelectedEigenvaluesFirst) {
  for (bool expert : {false, true}) {
    Work w;
    std::vector<double> a = test_matrix<double>(), wr(kN), wi(kN), vs(kN * kN);
    g_calls = 0;
    if (expert)
      dgeesx_("V", "S", real_select, "N", &w.n, a.data(), &w.lda, &w.sdim, wr.data(), wi.data(), vs.data(), &w.ldv,
              &w.rconde[0], &w.rcondv[0], w.work.data(), &w.lwork, w.iwork.data(), &w.liwork, w.bwork.data(),
              &w.info, 1, 1, 1);
    else
      dgees_("V", "S", real_select, &w.n, a.data(), &w.lda, &w.sdim, wr.data(), wi.data(), vs.data(), &w.ldv,
             w.work.data(), &w.lwork, w.bwork.data(), &w.info, 1, 1);
    SCOPED_TRACE(expert ? "dgeesx" : "dgees");
    EXPECT_EQ(w.info, 0);
    EXPECT_GE(g_calls, kN);
    expect_leading(pairs(wr, wi), w.sdim);
  }
}

TEST(SchurSelectors, ComplexStandardDriversOrderTheSelectedEigenvaluesFirst) {
  for (bool expert : {false, true}) {
    Work w;
    std::vector<vek_complex> a = as_vek(test_matrix<cplx>()), eig(kN), vs(kN * kN);
    g_calls = 0;
    if (expert)
      zgeesx_("V", "S", complex_select, "N", &w.n, a.data(), &w.lda, &w.sdim, eig.data(), vs.data(), &w.ldv,
              &w.rconde[0], &w.rcondv[0], w.cwork.data(), &w.lwork, w.rwork.data(), w.bwork.data(), &w.info, 1, 1,
              1);
    else
      zgees_("V", "S", complex_select, &w.n, a.data(), &w.lda, &w.sdim, eig.data(), vs.data(), &w.ldv,
             w.cwork.data(), &w.lwork, w.rwork.data(), w.bwork.data(), &w.info, 1, 1);
    SCOPED_TRACE(expert ? "zgeesx" : "zgees");
    EXPECT_EQ(w.info, 0);
    EXPECT_GE(g_calls, kN);
    std::vector<cplx> lambda;
    for (const vek_complex& z : eig) lambda.emplace_back(z.re, z.im);
    expect_leading(lambda, w.sdim);
  }
}

TEST(SchurSelectors, RealGeneralizedDriversOrderTheSelectedEigenvaluesFirst) {
  for (int which = 0; which < 3; ++which) {
    Work w;
    std::vector<double> a = test_matrix<double>(), b = unit_upper<double>(), alphar(kN), alphai(kN), beta(kN),
                        vsl(kN * kN), vsr(kN * kN);
    g_calls = 0;
    if (which == 0)
      dgges_("V", "V", "S", real_pair_select, &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim, alphar.data(),
             alphai.data(), beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.work.data(), &w.lwork,
             w.bwork.data(), &w.info, 1, 1, 1);
    else if (which == 1)
      dggesx_("V", "V", "S", real_pair_select, "N", &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim,
              alphar.data(), alphai.data(), beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.rconde, w.rcondv,
              w.work.data(), &w.lwork, w.iwork.data(), &w.liwork, w.bwork.data(), &w.info, 1, 1, 1, 1);
    else
      dgges3_("V", "V", "S", real_pair_select, &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim, alphar.data(),
              alphai.data(), beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.work.data(), &w.lwork,
              w.bwork.data(), &w.info, 1, 1, 1);
    SCOPED_TRACE(which == 0 ? "dgges" : which == 1 ? "dggesx" : "dgges3");
    EXPECT_EQ(w.info, 0);
    EXPECT_GE(g_calls, kN);
    std::vector<cplx> lambda;
    for (int64_t i = 0; i < kN; ++i) lambda.push_back(cplx(alphar[i], alphai[i]) / beta[i]);
    expect_leading(lambda, w.sdim);
  }
}

TEST(SchurSelectors, ComplexGeneralizedDriversOrderTheSelectedEigenvaluesFirst) {
  for (int which = 0; which < 3; ++which) {
    Work w;
    std::vector<vek_complex> a = as_vek(test_matrix<cplx>()), b = as_vek(unit_upper<cplx>()), alpha(kN),
                             beta(kN), vsl(kN * kN), vsr(kN * kN);
    std::vector<double> rwork(8 * kN);
    g_calls = 0;
    if (which == 0)
      zgges_("V", "V", "S", complex_pair_select, &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim, alpha.data(),
             beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.cwork.data(), &w.lwork, rwork.data(),
             w.bwork.data(), &w.info, 1, 1, 1);
    else if (which == 1)
      zggesx_("V", "V", "S", complex_pair_select, "N", &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim,
              alpha.data(), beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.rconde, w.rcondv, w.cwork.data(),
              &w.lwork, rwork.data(), w.iwork.data(), &w.liwork, w.bwork.data(), &w.info, 1, 1, 1, 1);
    else
      zgges3_("V", "V", "S", complex_pair_select, &w.n, a.data(), &w.lda, b.data(), &w.ldb, &w.sdim, alpha.data(),
              beta.data(), vsl.data(), &w.ldv, vsr.data(), &w.ldv, w.cwork.data(), &w.lwork, rwork.data(),
              w.bwork.data(), &w.info, 1, 1, 1);
    SCOPED_TRACE(which == 0 ? "zgges" : which == 1 ? "zggesx" : "zgges3");
    EXPECT_EQ(w.info, 0);
    EXPECT_GE(g_calls, kN);
    expect_leading(ratios(alpha, beta), w.sdim);
  }
}

// A host may call the worker with an adapter of its own: the worker calls the function only through it.
int64_t g_adapter_calls = 0;
int64_t counting_adapter(vek_f08paf_select_fn fn, const double* wr, const double* wi) {
  ++g_adapter_calls;
  return fn(wr, wi);
}

TEST(SchurSelectors, TheWorkerCallsTheSelectorThroughTheAdapterItIsGiven) {
  Work w;
  std::vector<double> a = test_matrix<double>(), wr(kN), wi(kN), vs(kN * kN);
  g_calls = g_adapter_calls = 0;
  f08pafn_("V", "S", counting_adapter, real_select, &w.n, a.data(), &w.lda, &w.sdim, wr.data(), wi.data(),
           vs.data(), &w.ldv, w.work.data(), &w.lwork, w.bwork.data(), &w.info, 1, 1);
  EXPECT_EQ(w.info, 0);
  EXPECT_EQ(g_adapter_calls, g_calls);
  EXPECT_GE(g_calls, kN);
  expect_leading(pairs(wr, wi), w.sdim);
  // The library name with its own entry layers gives the same ordering.
  std::vector<double> a2 = test_matrix<double>(), wr2(kN), wi2(kN);
  int64_t sdim2 = -1;
  f08paf_("V", "S", real_select, &w.n, a2.data(), &w.lda, &sdim2, wr2.data(), wi2.data(), vs.data(), &w.ldv,
          w.work.data(), &w.lwork, w.bwork.data(), &w.info, 1, 1);
  EXPECT_EQ(sdim2, w.sdim);
  EXPECT_EQ(wr2, wr);
}

}  // namespace
