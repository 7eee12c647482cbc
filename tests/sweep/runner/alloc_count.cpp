// The global allocation functions of the sweep programs: they count what the library allocates and, on
// request, make the n-th allocation from now on fail, so that every workspace allocation of a routine can be
// made to fail in turn.
#include <cstdlib>
#include <new>

#include "sweep.h"

namespace sweep {
namespace {
int64_t made = 0;
int64_t live = 0;
int64_t fail_at = 0;  // the value of `made` whose allocation fails; 0: none

void* allocate(std::size_t n, bool nothrow, std::size_t align = 0) {
  ++made;
  if (fail_at != 0 && made == fail_at) {
    if (nothrow) return nullptr;
    throw std::bad_alloc();
  }
  void* p = align ? std::aligned_alloc(align, (n + align - 1) / align * align) : std::malloc(n ? n : 1);
  if (!p) {
    if (nothrow) return nullptr;
    throw std::bad_alloc();
  }
  ++live;
  return p;
}

void release(void* p) {
  if (!p) return;
  --live;
  std::free(p);
}
}  // namespace

void fail_allocation_at(int64_t n) { fail_at = n > 0 ? made + n : 0; }
int64_t allocations_made() { return made; }
int64_t allocations_live() { return live; }

}  // namespace sweep

void* operator new(std::size_t n) { return sweep::allocate(n, false); }
void* operator new[](std::size_t n) { return sweep::allocate(n, false); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return sweep::allocate(n, true); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return sweep::allocate(n, true); }
void operator delete(void* p) noexcept { sweep::release(p); }
void operator delete[](void* p) noexcept { sweep::release(p); }
void operator delete(void* p, std::size_t) noexcept { sweep::release(p); }
void operator delete[](void* p, std::size_t) noexcept { sweep::release(p); }
void* operator new(std::size_t n, std::align_val_t a) { return sweep::allocate(n, false, std::size_t(a)); }
void* operator new[](std::size_t n, std::align_val_t a) { return sweep::allocate(n, false, std::size_t(a)); }
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return sweep::allocate(n, true, std::size_t(a));
}
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
  return sweep::allocate(n, true, std::size_t(a));
}
void operator delete(void* p, std::align_val_t) noexcept { sweep::release(p); }
void operator delete[](void* p, std::align_val_t) noexcept { sweep::release(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { sweep::release(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { sweep::release(p); }
