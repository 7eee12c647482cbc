// Makes the library's non-throwing array allocations (plain and aligned) fail while an AllocationFailure is alive, to drive the
// paths that must cope without workspace.
#pragma once

namespace vek::test {

class AllocationFailure {
 public:
  AllocationFailure();
  ~AllocationFailure();
  AllocationFailure(const AllocationFailure&) = delete;
  AllocationFailure& operator=(const AllocationFailure&) = delete;
};

}  // namespace vek::test
