// Thread control: setting the thread count (with its one failure), the team queries inside and outside a
// parallel region, and the nesting switch.
#include <gtest/gtest.h>
#include <omp.h>

#include <string>
#include <vector>

#include "frame/threads.h"
#include "support/capture.h"
#include "vek.h"

namespace {

// Calls x06aaf with IFAIL = -1 (soft, printed) and returns the printed lines, with IFAIL on exit.
std::vector<std::string> set_threads_reporting(int64_t num, int64_t& ifail) {
  ifail = -1;
  return vek::testing::console_lines([&] { x06aaf_(&num, &ifail); });
}

std::vector<std::string> report_for(const std::string& num) {
  return {" ** On entry, NUM = " + num + ".", " ** Constraint: NUM >= 1.",
          " ** ABNORMAL EXIT from VEK Library routine X06AAF: IFAIL =     1",
          " ** VEK soft failure - control returned"};
}

TEST(ThreadControl, SetThreadCountAndRejectNonPositive) {
  const int64_t before = x06acf_();
  int64_t ifail = -1;
  int64_t three = 3;
  x06aaf_(&three, &ifail);
  EXPECT_EQ(ifail, 0);
  EXPECT_EQ(x06acf_(), 3);

  EXPECT_EQ(set_threads_reporting(0, ifail), report_for("0"));
  EXPECT_EQ(ifail, 1);
  EXPECT_EQ(x06acf_(), 3);
  EXPECT_EQ(set_threads_reporting(-5, ifail), report_for("-5"));
  EXPECT_EQ(ifail, 1);
  EXPECT_EQ(x06acf_(), 3);

  // IFAIL = 1 on entry: silent, soft.
  int64_t minus = -5;
  ifail = 1;
  EXPECT_TRUE(vek::testing::console_lines([&] { x06aaf_(&minus, &ifail); }).empty());
  EXPECT_EQ(ifail, 1);

  int64_t restore = before;
  x06aaf_(&restore, &ifail);
  EXPECT_EQ(x06acf_(), before);
}

TEST(ThreadControl, QueriesOutsideAndInsideARegion) {
  EXPECT_EQ(x06abf_(), 1);
  EXPECT_EQ(x06adf_(), 0);
  EXPECT_EQ(x06aff_(), 0);
  EXPECT_FALSE(vek::threads::in_parallel());

  int64_t sizes[2] = {0, 0}, numbers[2] = {-1, -1}, active[2] = {0, 0}, kernel_sizes[2] = {0, 0};
#pragma omp parallel num_threads(2)
  {
    const int t = omp_get_thread_num();
    if (t < 2) {
      sizes[t] = x06abf_();
      numbers[t] = x06adf_();
      active[t] = x06aff_();
      kernel_sizes[t] = vek::threads::team_size();
    }
  }
  const int64_t team = sizes[0];
  ASSERT_GE(team, 1);
  for (int t = 0; t < team; ++t) {
    EXPECT_EQ(sizes[t], team);
    EXPECT_EQ(kernel_sizes[t], team);
    EXPECT_EQ(numbers[t], t);
    // Active only when the region really has more than one thread.
    EXPECT_EQ(active[t], team > 1 ? 1 : 0);
  }
}

TEST(ThreadControl, NestingSwitchTestsTheWholeWord) {
  const int64_t was = x06ahf_();
  int64_t two = 2, zero = 0, one = 1;
  x06agf_(&two);
  EXPECT_EQ(x06ahf_(), 1);
  EXPECT_TRUE(vek::threads::nested());
  x06agf_(&zero);
  EXPECT_EQ(x06ahf_(), 0);
  x06agf_(&one);
  EXPECT_EQ(x06ahf_(), 1);
  int64_t restore = was;
  x06agf_(&restore);
}

}  // namespace
