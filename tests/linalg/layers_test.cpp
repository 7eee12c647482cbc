// The two roads to one worker: the library name goes through the entry layer, the trace wrapper and the
// dispatch stub; the published name jumps to the worker. Same results for every kind of argument list and
// result type; only the library name is traced.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/unit_capture.h"
#include "test_matrices.h"
#include "vek.h"

namespace {

TEST(Layers, BothNamesGiveTheSameResults) {
  const int64_t n = 6, inc = 1;
  const std::vector<double> a0 = random_matrix(n, n, n, 31);
  // A symmetric matrix for the eigensolver.
  std::vector<double> s(n * n);
  for (int64_t j = 0; j < n; ++j)
    for (int64_t i = 0; i < n; ++i) s[i + j * n] = a0[i + j * n] + a0[j + i * n];
  std::vector<double> s1 = s, s2 = s, w1(n), w2(n), work(64 * n);
  int64_t lwork = 64 * n, info1 = -1, info2 = -1;
  dsyev_("V", "U", &n, s1.data(), &n, w1.data(), work.data(), &lwork, &info1, 1, 1);
  f08faf_("V", "U", &n, s2.data(), &n, w2.data(), work.data(), &lwork, &info2, 1, 1);
  EXPECT_EQ(info1, 0);
  EXPECT_EQ(info2, 0);
  EXPECT_EQ(w1, w2);
  EXPECT_EQ(s1, s2);

  EXPECT_EQ(ddot_(&n, a0.data(), &inc, a0.data() + n, &inc), f06eaf_(&n, a0.data(), &inc, a0.data() + n, &inc));
  EXPECT_EQ(dlange_("F", &n, &n, a0.data(), &n, work.data(), 1), f06raf_("F", &n, &n, a0.data(), &n, work.data(), 1));
  EXPECT_EQ(idamax_(&n, a0.data(), &inc), f06jlf_(&n, a0.data(), &inc));

  std::vector<vek_complex> z(n);
  for (int64_t i = 0; i < n; ++i) z[i] = {a0[i], a0[i + n]};
  const vek_complex d1 = zdotc_(&n, z.data(), &inc, z.data(), &inc), d2 = f06gbf_(&n, z.data(), &inc, z.data(), &inc);
  EXPECT_EQ(d1.re, d2.re);
  EXPECT_EQ(d1.im, d2.im);
  EXPECT_EQ(d1.im, 0.0) << "x**H x is real";

  std::vector<vek_complex> c1(n * n), c2(n * n);
  const vek_complex alpha{1, 0.5}, beta{0, 0};
  std::vector<vek_complex> zm(n * n);
  for (int64_t i = 0; i < n * n; ++i) zm[i] = {a0[i], -a0[n * n - 1 - i]};
  zgemm_("N", "C", &n, &n, &n, &alpha, zm.data(), &n, zm.data(), &n, &beta, c1.data(), &n, 1, 1);
  f06zaf_("N", "C", &n, &n, &n, &alpha, zm.data(), &n, zm.data(), &n, &beta, c2.data(), &n, 1, 1);
  EXPECT_EQ(0, std::memcmp(c1.data(), c2.data(), c1.size() * sizeof(vek_complex)));
}

TEST(Layers, OnlyTheLibraryNameIsTraced) {
  const int64_t n = 3, one = 1, off = 0;
  std::vector<double> a = random_matrix(n, n, n, 4), a2 = a;
  std::vector<int64_t> ipiv(n);
  int64_t info = -1;
  std::vector<std::string> published, library;
  {
    vek::testing::UnitCapture capture;
    y90gcft_(&one);
    dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
    y90gcft_(&off);
    published = capture.lines();
  }
  {
    vek::testing::UnitCapture capture;
    y90gcft_(&one);
    f07adf_(&n, &n, a2.data(), &n, ipiv.data(), &info);
    y90gcft_(&off);
    library = capture.lines();
  }
  EXPECT_TRUE(published.empty());
  ASSERT_FALSE(library.empty());
  std::string all;
  for (const std::string& line : library) all += line + "\n";
  EXPECT_NE(all.find("F07ADFT"), std::string::npos) << all;
  EXPECT_NE(all.find("LDA"), std::string::npos) << all;
  EXPECT_EQ(a, a2);
}

}  // namespace
