// Column groups of a sparse Jacobian (column_groups.h).
#include "zeros_quad/column_groups.h"

#include <algorithm>
#include <new>

namespace vek::zeros_quad {

namespace {

std::vector<int64_t> sized(int64_t count, int64_t value) {
  if (count < 0 || static_cast<uint64_t>(count) > std::vector<int64_t>().max_size()) throw std::bad_alloc();
  return std::vector<int64_t>(static_cast<size_t>(count), value);
}

}  // namespace

SparsePattern::SparsePattern(int64_t n, int64_t pairs, const int64_t* row, const int64_t* column)
    : group_of_(sized(n, -1)), column_start_(sized(n + 1, 0)), rows_(sized(pairs, 0)) {
  // Compressed columns: count, then place each pair after the ones before it.
  for (int64_t k = 0; k < pairs; ++k) ++column_start_[column[k]];
  for (int64_t j = 0; j < n; ++j) column_start_[j + 1] += column_start_[j];
  std::vector<int64_t> next(column_start_.begin(), column_start_.end() - 1);
  for (int64_t k = 0; k < pairs; ++k) rows_[next[column[k] - 1]++] = row[k] - 1;

  // Sequential grouping: a row is taken by group g once a column of g has an element in it.
  std::vector<int64_t> taken_by = sized(n, -1);
  for (int64_t grouped = 0; grouped < n; ++count_) {
    for (int64_t j = 0; j < n; ++j) {
      if (group_of_[j] >= 0) continue;
      const int64_t* first = rows_.data() + column_start_[j];
      const int64_t* last = rows_.data() + column_start_[j + 1];
      if (std::any_of(first, last, [&](int64_t i) { return taken_by[i] == count_; })) continue;
      for (const int64_t* i = first; i < last; ++i) taken_by[*i] = count_;
      group_of_[j] = count_;
      ++grouped;
    }
  }
}

}  // namespace vek::zeros_quad
