// Replaces the program's non-throwing array news (plain and aligned): they return null while an
// AllocationFailure is alive and otherwise hand the request to the ordinary array new, so that the ordinary
// array delete matches it.
#include "failing_allocation.h"

#include <atomic>
#include <new>

namespace {

std::atomic<bool> failing{false};

template <class... Alignment>
void* allocate_unless_failing(std::size_t size, Alignment... alignment) noexcept {
  if (failing) return nullptr;
  try {
    return ::operator new[](size, alignment...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

namespace vek::test {
AllocationFailure::AllocationFailure() { failing = true; }
AllocationFailure::~AllocationFailure() { failing = false; }
}  // namespace vek::test

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate_unless_failing(size); }

void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate_unless_failing(size, alignment);
}
