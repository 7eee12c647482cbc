// Helpers of the threading tests: the library's thread count set through x06aaf (restored afterwards), and a
// function run on several caller threads at once.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "vek.h"

namespace vek_threads_test {

inline void set_threads(int64_t num) {
  int64_t ifail = 1;
  x06aaf_(&num, &ifail);
  ASSERT_EQ(ifail, 0);
}

inline void set_nesting(bool on) {
  const int64_t nesting = on ? 1 : 0;
  x06agf_(&nesting);
}

// Restores the thread count and the nesting switch a test changes.
class TeamTest : public testing::Test {
 protected:
  void SetUp() override {
    threads_ = x06acf_();
    nested_ = x06ahf_() != 0;
  }
  void TearDown() override {
    set_threads(threads_);
    set_nesting(nested_);
  }

 private:
  int64_t threads_ = 1;
  bool nested_ = false;
};

// Calls f(t) on `count` caller threads (std::thread, not OpenMP) started together; results go to slot t.
template <class F>
void on_caller_threads(int count, F f) {
  std::vector<std::thread> callers;
  callers.reserve(static_cast<size_t>(count));
  for (int t = 0; t < count; ++t) callers.emplace_back([&f, t] { f(t); });
  for (std::thread& c : callers) c.join();
}

// The team sizes a parallel routine is compared over.
inline constexpr int64_t kTeams[] = {1, 2, 3, 4};

}  // namespace vek_threads_test
