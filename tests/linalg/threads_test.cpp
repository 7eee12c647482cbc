// F07ADF's threading: the team size follows x06aaf, the factors do not depend on it, and a call from inside
// a parallel region runs serially with the same results.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <omp.h>

#include "test_matrices.h"
#include "vek.h"

namespace {

struct Factors {
  std::vector<double> a;
  std::vector<int64_t> ipiv;
  int64_t info = -1;
};

Factors factorise(int64_t n) {
  Factors f{random_matrix(n, n, n, 3), std::vector<int64_t>(static_cast<size_t>(n)), -1};
  f07adf_(&n, &n, f.a.data(), &n, f.ipiv.data(), &f.info);
  return f;
}

bool same(const Factors& x, const Factors& y) {
  return x.info == y.info && x.ipiv == y.ipiv && !std::memcmp(x.a.data(), y.a.data(), x.a.size() * sizeof(double));
}

class ThreadCount : public testing::Test {
 protected:
  void SetUp() override { saved_ = omp_get_max_threads(); }
  void TearDown() override { set_threads(saved_); }
  static void set_threads(int64_t num) {
    int64_t ifail = 1;
    x06aaf_(&num, &ifail);
    ASSERT_EQ(ifail, 0);
  }
  int64_t saved_ = 1;
};

TEST_F(ThreadCount, FollowsX06aafAndLeavesTheFactorsUnchanged) {
  // The team follows x06aaf (f07adf asks the thread-control query); the factors and a solve with them do not
  // depend on it.
  const int64_t n = 1001;  // four panels, chunk edges not aligned with any team size
  set_threads(1);
  const Factors serial = factorise(n);
  for (int threads : {2, 3}) {
    set_threads(threads);
    const Factors parallel = factorise(n);
    int64_t nrhs = 1, info = -1;
    std::vector<double> b(static_cast<size_t>(n), 1.0);
    f07aef_("N", &n, &nrhs, parallel.a.data(), &n, parallel.ipiv.data(), b.data(), &n, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_TRUE(same(serial, parallel)) << threads << " threads: the factors do not depend on the team";
  }
  EXPECT_EQ(serial.info, 0);
}

TEST_F(ThreadCount, InsideAParallelRegionEachCallIsSerial) {
  const int64_t n = 320;
  set_threads(2);
  const Factors reference = factorise(n);
  std::vector<Factors> inside(2);
  std::vector<int> in_parallel(2, 0);
#pragma omp parallel num_threads(2)
  {
    const int t = omp_get_thread_num();
    in_parallel[t] = omp_in_parallel();
    inside[t] = factorise(n);
  }
  for (int t = 0; t < 2; ++t) {
    EXPECT_TRUE(same(reference, inside[t])) << "thread " << t;
  }
  EXPECT_TRUE(in_parallel[0] || omp_get_max_threads() == 1);
}

}  // namespace
