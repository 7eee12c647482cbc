// Arrays placed against an inaccessible page, so that a read or write past the end (or before the start) of
// exactly the documented length faults at once; and a time limit for calls that must not iterate forever.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <future>
#include <initializer_list>
#include <stdexcept>
#include <thread>
#include <vector>

namespace vek::testing {

enum class Guard { after, before };

// n elements of T (n may be 0) with a PROT_NONE page right after the last one (Guard::after) or right before
// the first one (Guard::before).
template <class T>
class GuardedArray {
 public:
  explicit GuardedArray(std::size_t n, Guard side = Guard::after) : n_(n) {
    page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t bytes = n * sizeof(T);
    const std::size_t data_pages = (bytes + page_ - 1) / page_ + 1;
    size_ = (data_pages + 1) * page_;
    base_ = static_cast<char*>(mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED) throw std::runtime_error("mmap");
    if (side == Guard::after) {
      char* guard = base_ + data_pages * page_;
      mprotect(guard, page_, PROT_NONE);
      data_ = reinterpret_cast<T*>(guard - bytes);
    } else {
      mprotect(base_, page_, PROT_NONE);
      data_ = reinterpret_cast<T*>(base_ + page_);
    }
  }
  GuardedArray(std::initializer_list<T> values, Guard side = Guard::after) : GuardedArray(values.size(), side) {
    std::size_t i = 0;
    for (const T& v : values) data_[i++] = v;
  }
  GuardedArray(std::size_t n, const T& value, Guard side = Guard::after) : GuardedArray(n, side) { fill(value); }
  GuardedArray(const std::vector<T>& values, Guard side = Guard::after) : GuardedArray(values.size(), side) {  // NOLINT
    for (std::size_t i = 0; i < values.size(); ++i) data_[i] = values[i];
  }
  GuardedArray(const GuardedArray&) = delete;
  GuardedArray& operator=(const GuardedArray&) = delete;
  ~GuardedArray() { munmap(base_, size_); }

  T* data() { return data_; }
  T& operator[](std::size_t i) { return data_[i]; }
  std::size_t size() const { return n_; }
  void fill(const T& v) {
    for (std::size_t i = 0; i < n_; ++i) data_[i] = v;
  }

 private:
  std::size_t n_, page_ = 0, size_ = 0;
  char* base_ = nullptr;
  T* data_ = nullptr;
};

// Runs f on another thread and reports whether it returned within the limit. A call that does not return is
// left running (detached): the test fails and the program ends with it.
template <class F>
bool returns_within(std::chrono::milliseconds limit, F f) {
  std::packaged_task<void()> task(f);
  std::future<void> done = task.get_future();
  std::thread(std::move(task)).detach();
  return done.wait_for(limit) == std::future_status::ready;
}

}  // namespace vek::testing
