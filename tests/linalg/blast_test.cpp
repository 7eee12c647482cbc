// F16: the technical-forum vector operations, their strides and their argument reports.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/unit_capture.h"
#include "vek.h"

using Lines = std::vector<std::string>;

TEST(TechnicalForum, ResultsWithPositiveAndNegativeStrides) {
  const std::vector<double> x = {1, 2, 3, 4, 5, 6};   // with INCX = 2: 1, 3, 5
  const std::vector<double> y = {10, 20, 30};         // with INCY = -1: 30, 20, 10 as elements 0, 1, 2
  const int64_t n = 3, two = 2, minus_one = -1, one = 1;
  const double alpha = 2, beta = 0.5;

  double r = 4;
  const int64_t no_conj = 192;
  f16eaf_(&no_conj, &n, &alpha, x.data(), &two, &beta, y.data(), &minus_one, &r);
  EXPECT_EQ(r, 0.5 * 4 + 2 * (1 * 30 + 3 * 20 + 5 * 10));

  std::vector<double> yy = y;
  f16ecf_(&n, &alpha, x.data(), &two, &beta, yy.data(), &minus_one);
  EXPECT_EQ(yy, (std::vector<double>{2 * 5 + 5, 2 * 3 + 10, 2 * 1 + 15}));

  std::vector<double> w(6, -1);
  f16ehf_(&n, &alpha, x.data(), &two, &beta, y.data(), &one, w.data(), &two);
  EXPECT_EQ(w, (std::vector<double>{2 + 5, -1, 6 + 10, -1, 10 + 15, -1}));

  const int64_t zero = 0;
  r = 4;
  f16eaf_(&no_conj, &zero, &alpha, x.data(), &one, &beta, y.data(), &one, &r);  // N = 0: R := BETA*R
  EXPECT_EQ(r, 2);
}

TEST(TechnicalForum, ArgumentReportsInOrderAndOutputsUntouched) {
  std::vector<double> v = {1, 2, 3};
  const double alpha = 1, beta = 1;
  auto axpby = [&](int64_t n, int64_t incx, int64_t incy) {
    vek::testing::UnitCapture cap;
    f16ecf_(&n, &alpha, v.data(), &incx, &beta, v.data(), &incy);
    return cap.lines();
  };
  EXPECT_EQ(axpby(-2, 0, 0), (Lines{" ** On entry to F16ECF, parameter number 1", " ** had the illegal value of -2"}));
  EXPECT_EQ(axpby(3, 0, 0), (Lines{" ** On entry to F16ECF, parameter number 4", " ** had the illegal value of 0"}));
  EXPECT_EQ(axpby(3, 1, 0), (Lines{" ** On entry to F16ECF, parameter number 7", " ** had the illegal value of 0"}));
  EXPECT_EQ(v, (std::vector<double>{1, 2, 3}));

  vek::testing::UnitCapture cap;
  const int64_t n = 3, one = 1, zero = 0, conj = 191;
  double r = 7, w[3] = {9, 9, 9};
  f16eaf_(&conj, &n, &alpha, v.data(), &one, &beta, v.data(), &zero, &r);
  f16ehf_(&n, &alpha, v.data(), &one, &beta, v.data(), &one, w, &zero);
  EXPECT_EQ(cap.lines(), (Lines{" ** On entry to F16EAF, parameter number 8", " ** had the illegal value of 0",
                                " ** On entry to F16EHF, parameter number 9", " ** had the illegal value of 0"}));
  EXPECT_EQ(r, 7);
  EXPECT_EQ(w[0], 9);
}
