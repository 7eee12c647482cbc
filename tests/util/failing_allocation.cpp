// Replaces the program's non-throwing array new: it returns null while an AllocationFailure is alive and
// otherwise hands the request to the ordinary array new, so that the ordinary array delete matches it.
#include "failing_allocation.h"

#include <atomic>
#include <new>

namespace {
std::atomic<bool> failing{false};
}

namespace vek::test {
AllocationFailure::AllocationFailure() { failing = true; }
AllocationFailure::~AllocationFailure() { failing = false; }
}  // namespace vek::test

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (failing) return nullptr;
  try {
    return ::operator new[](size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
