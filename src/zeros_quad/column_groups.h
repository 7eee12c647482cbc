// The sparsity pattern of an n-by-n Jacobian, given as (row, column) pairs counted from 1, turned into the
// column groups the hybrid method differences together (hybrid.h, ColumnGroups): Curtis, Powell and Reid's
// sequential rule (On the estimation of sparse Jacobian matrices, J. Inst. Maths Applics 13 (1974) 117-119):
// each group takes, in column order, every column not yet grouped that shares no row with the columns it
// already holds.
#pragma once

#include <cstdint>
#include <vector>

#include "zeros_quad/hybrid.h"

namespace vek::zeros_quad {

class SparsePattern {
 public:
  // The pairs must lie in 1..n (the caller has checked them); repeated pairs are harmless. Sizes beyond
  // memory throw std::bad_alloc.
  SparsePattern(int64_t n, int64_t pairs, const int64_t* row, const int64_t* column);
  ColumnGroups groups() const { return {count_, group_of_.data(), column_start_.data(), rows_.data()}; }

 private:
  int64_t count_ = 0;
  std::vector<int64_t> group_of_, column_start_, rows_;
};

}  // namespace vek::zeros_quad
