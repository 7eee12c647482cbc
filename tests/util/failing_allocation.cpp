// Replaces the program's non-throwing array new: it returns null while an AllocationFailure is alive.
#include "failing_allocation.h"

#include <atomic>
#include <cstdlib>
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
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete[](void* p) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
